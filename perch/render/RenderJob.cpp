#include "RenderJob.h"

#include <fmt/format.h>
#include <time.h>

#include <algorithm>
#include <memory>
#include <type_traits>
#include <utility>

#include "Error.h"
#include "LayerReader.h"
#include "OrderedTasks.h"
#include "PF_Values.h"
#include "Sequence.h"
#include "StillLayers.h"
#include "Whereabouts.h"

namespace perch {
namespace {

namespace fs = std::filesystem;

std::chrono::nanoseconds timeOf(clockid_t clock) {
    timespec now{};
    clock_gettime(clock, &now);
    return std::chrono::seconds(now.tv_sec) + std::chrono::nanoseconds(now.tv_nsec);
}

// Adds the time of its life to a sum.
class Timer {
public:
    Timer(clockid_t clock, RenderReport::Time& sum) : clock(clock), sum(sum) {}
    ~Timer() { sum += (timeOf(clock) - start).count(); }
    Timer(const Timer&) = delete;
    Timer& operator=(const Timer&) = delete;

private:
    const clockid_t clock;
    RenderReport::Time& sum;
    const std::chrono::nanoseconds start = timeOf(clock);
};

// What a frame is rendered from, and the form in which it is written.
struct FramePictures {
    std::shared_ptr<const FileWorld> input;
    LayerWorlds layers{};
    // Of the input where it has been made smaller; else 0.
    std::int32_t fullWidth = 0;
    std::int32_t fullHeight = 0;
    OutputFormat output;
};

void requireDepth(const Effect& effect, const World& input) {
    if (!input.isDeep() || effect.supportsDeepColor()) return;
    throw Error("the effect does not declare 16 bits per channel; render with --depth 8");
}

// One run through a plan. Reading and writing tasks share only what is const or guarded.
class Job {
public:
    Job(Effect& effect, const RenderSettings& settings, const std::vector<ParameterCurve>& parameters,
        const FramePlan& plan, const RenderWatch& watch, RenderReport& report)
        : effect(effect),
          settings(settings),
          parameters(parameters),
          plan(plan),
          watch(watch),
          report(report) {}

    void run() {
        prepare();
        for (std::size_t index = 0; index < plan.frames.size(); ++index) {
            readAhead();
            throwIfCancelled(index);
            const FramePictures pictures = reads.next();
            readAhead();
            RenderedFrame result = render(index, pictures);
            throwIfCancelled(index);
            startWriting(index, std::move(result), pictures);
        }
        while (!writes.isEmpty())
            writes.next();
    }

private:
    void prepare() {
        layerReader.findRanges(plan);
        std::vector<fs::path> outputs;
        for (const FrameFiles& files : plan.frames)
            outputs.push_back(files.output);
        prepareOutputs(outputs);
    }

    // Runs `body` and tells the frame of an error in it.
    template <typename F>
    std::invoke_result_t<F> named(std::size_t index, const F& body) const {
        try {
            return body();
        } catch (const Error& error) {
            if (!plan.isSequence) throw;
            throw Error(fmt::format("frame {}: {}", plan.frames[index].frame, error.what()));
        }
    }

    void readAhead() {
        for (; !reads.isFull() && nextRead < plan.frames.size(); ++nextRead)
            reads.start([this, index = nextRead] { return named(index, [&] { return read(index); }); });
    }

    FramePictures read(std::size_t index) {
        const Timer timer(CLOCK_THREAD_CPUTIME_ID, report.decodeTime);
        const FrameFiles& files = plan.frames[index];
        const SharedPicture picture = readPictureFile(files.input, "", settings.limits);
        if (picture->parts > 1) report.notes.add("parts", partsNote(files.input, picture->parts));
        FramePictures pictures;
        pictures.output = {outputType(files.output, *picture), settings.encoding};
        requireOutput(files.output, pictures.output.type, picture->hasAlpha());
        LayerPictures layers;
        for (const auto& [layer, path] : files.layers)
            layers[layer] = layerReader.read(layer, path);
        const Depth depth = chooseDepth(*picture, layers, stillLayers.read());
        pictures.input =
            std::make_shared<const FileWorld>(resized(worldOf(picture, depth, transferFor(*picture)), scale));
        requireDepth(effect, pictures.input->pixels);
        if (settings.resizes) {
            pictures.fullWidth = picture->width;
            pictures.fullHeight = picture->height;
        }
        report.pixelsRead += std::int64_t{picture->width} * picture->height;
        report.pixelsClipped += pictures.input->clippedPixels;
        pictures.layers = stillLayers.worlds(depth);
        for (const auto& [layer, layerPicture] : layers) {
            pictures.layers[layer] =
                std::make_shared<const FileWorld>(resized(worldOf(layerPicture, depth), scale));
        }
        return pictures;
    }

    // The deepest, so that a matte of 16 bits stays one beside a beauty of 8.
    Depth chooseDepth(const pictures::Picture& input, const LayerPictures& layers,
                      const LayerPictures& still) const {
        if (settings.depth) return *settings.depth;
        if (!effect.supportsDeepColor()) return depthOf(input);
        Depth depth = depthOf(input);
        for (const LayerPictures* const some : {&layers, &still}) {
            for (const auto& [index, picture] : *some)
                depth = std::max(depth, depthOf(*picture));
        }
        return depth;
    }

    // The input's, unless another is asked for; the nearest that the format has.
    pictures::SampleType outputType(const fs::path& path, const pictures::Picture& input) const {
        if (settings.outputType) return *settings.outputType;
        pictures::SampleType type = input.type();
        if (settings.depth && (!isFloat(type) || *settings.depth == Depth::Bits8))
            type =
                *settings.depth == Depth::Bits16 ? pictures::SampleType::Bits16 : pictures::SampleType::Bits8;
        const auto format = pictures::formatOfName(path);
        return format ? nearestType(*format, type).value_or(type) : type;
    }

    pictures::Transfer transferFor(const pictures::Picture& input) {
        if (settings.transfer) return *settings.transfer;
        if (!isFloat(input.type())) return pictures::Transfer::Linear;
        report.notes.add(
            "transfer",
            "the pictures hold light in floats, which the effect gets by the curve of sRGB, as with "
            "--encode srgb");
        return pictures::Transfer::Srgb;
    }

    RenderedFrame render(std::size_t index, const FramePictures& pictures) {
        const Timer timer(CLOCK_MONOTONIC, report.renderTime);
        if (watch.frameBegins) watch.frameBegins(index);
        if (index == 0) tellTheUsersChoices(pictures.input->pixels);
        return sequence.render(requestFor(index, pictures));
    }

    // Before the first frame the effect is told of what the user has set, parameter by parameter, as it would
    // be where the user sets it in a window; what it changes then holds for all frames, except where a value
    // has keys.
    void tellTheUsersChoices(const World& input) {
        const std::vector<Parameter>& declared = effect.description().parameters;
        const auto isSupervised = [](const Parameter& parameter) {
            return (parameter.definition.flags & PF_ParamFlag_SUPERVISE) != 0;
        };
        const ParameterValues given = valuesFor(plan.firstFrame, input);
        ParameterValues values = given;
        for (const Parameter& parameter : declared)
            if (isSupervised(parameter) && isSetByUser(parameter.index))
                sequence.userChangedParam(parameter.index, values);
        if (std::ranges::any_of(declared, isSupervised) ||
            (effect.description().flags & PF_OutFlag_SEND_UPDATE_PARAMS_UI) != 0) {
            sequence.updateParamsUi(values);
        }
        for (std::size_t index = 1; index < values.size(); ++index)
            if (!isSameValue(given[index], values[index])) changedByEffect[index] = values[index];
    }

    bool isSetByUser(PF_ParamIndex index) const {
        return plan.stillLayers.contains(index) || plan.frames.front().layers.contains(index) ||
               plan.frames.front().missingLayers.contains(index) || plan.emptyLayers.contains(index) ||
               std::ranges::find(parameters, index, &ParameterCurve::index) != parameters.end();
    }

    FrameRequest requestFor(std::size_t index, const FramePictures& pictures) const {
        const World& input = pictures.input->pixels;
        FrameRequest request;
        request.frame = plan.frames[index].frame;
        request.input = &input;
        for (const auto& [layer, picture] : pictures.layers)
            request.layers[layer] = &picture->pixels;
        for (const PF_ParamIndex layer : plan.emptyLayers)
            request.layers[layer] = nullptr;
        for (const PF_ParamIndex layer : plan.frames[index].missingLayers)
            request.layers[layer] = nullptr;
        request.downsampleX = request.downsampleY = settings.downsample;
        request.fullWidth = pictures.fullWidth;
        request.fullHeight = pictures.fullHeight;
        request.values = valuesFor(request.frame, input);
        // A frame has one time, whichever frames are rendered beside it.
        request.time = request.frame * request.timeStep;
        request.totalTime = (std::max(plan.lastFrame, 0) + 1) * request.timeStep;
        request.quality = settings.quality;
        request.smart = settings.smart;
        request.cancelled = watch.cancelled;
        request.progress = watch.frameProgresses;
        return request;
    }

    ParameterValues valuesFor(std::int32_t frame, const World& input) const {
        ParameterValues values = effect.defaultValues(input.width(), input.height());
        for (const auto& [index, value] : changedByEffect)
            takeValue(value, values[index]);
        for (const ParameterCurve& curve : parameters)
            if (curve.moves() || !changedByEffect.contains(static_cast<std::size_t>(curve.index)))
                applySetting(settingAt(curve, frame), values, settings.downsample);
        return values;
    }

    void startWriting(std::size_t index, RenderedFrame result, const FramePictures& pictures) {
        while (writes.isFull() || writes.isNextReady())
            writes.next();
        writes.start(
            [this, index, input = pictures.input, output = pictures.output, result = std::move(result)] {
                named(index, [&] { write(index, result.picture, *input, output); });
            });
    }

    void write(std::size_t index, const World& picture, const FileWorld& input, const OutputFormat& output) {
        const Timer timer(CLOCK_THREAD_CPUTIME_ID, report.encodeTime);
        writeWorld(plan.frames[index].output, picture, input, output);
        ++report.framesWritten;
        whereabouts().hasWritten = true;
    }

    void throwIfCancelled(std::size_t index) const {
        if (watch.cancelled != nullptr && watch.cancelled->load())
            throw Cancelled("RENDER", PF_Interrupt_CANCEL, "", plan.frames[index].frame);
    }

    Effect& effect;
    const RenderSettings& settings;
    const std::vector<ParameterCurve>& parameters;
    const FramePlan& plan;
    const RenderWatch& watch;
    RenderReport& report;
    const PF_RationalScale scale =  // that pictures are resized by
        settings.resizes ? settings.downsample : PF_RationalScale{1, 1};
    LayerReader layerReader{settings.layers, settings.limits, report.notes};
    StillLayers stillLayers{plan.stillLayers, layerReader, scale};
    Sequence sequence{effect};
    std::map<std::size_t, PF_ParamDef> changedByEffect;  // values, by index
    std::size_t nextRead = 0;
    // Last, so that the tasks end before what they use.
    OrderedTasks<FramePictures> reads{settings.framesAhead};
    OrderedTasks<void> writes{settings.framesAhead};
};

}  // namespace

void renderFrames(Effect& effect, const RenderSettings& settings,
                  const std::vector<ParameterCurve>& parameters, const FramePlan& plan,
                  const RenderWatch& watch, RenderReport& report) {
    Job(effect, settings, parameters, plan, watch, report).run();
}

}  // namespace perch

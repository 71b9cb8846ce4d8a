#include "RenderJob.h"

#include <fmt/format.h>
#include <time.h>

#include <algorithm>
#include <memory>
#include <mutex>
#include <type_traits>
#include <utility>

#include "Error.h"
#include "OrderedTasks.h"
#include "PF_Values.h"
#include "PixelOps.h"
#include "Sequence.h"

namespace perch {
namespace {

namespace fs = std::filesystem;

using SharedPicture = std::shared_ptr<const FileWorld>;
using LayerPictures = std::map<PF_ParamIndex, SharedPicture>;

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

// Of a picture of `extent` pixels that is made smaller. Nothing at its edge is cut off: where the extent is
// not whole, the picture is stretched to the next pixel.
std::int32_t smallerExtent(std::int32_t extent, const PF_RationalScale& scale) {
    return static_cast<std::int32_t>((std::int64_t{extent} * scale.num + scale.den - 1) / scale.den);
}

// A picture as it was read, or made smaller where the job asks for that.
FileWorld resized(FileWorld picture, const RenderSettings& settings) {
    if (!settings.resizes) return picture;
    World& pixels = picture.pixels;
    World smaller(smallerExtent(pixels.width(), settings.downsample),
                  smallerExtent(pixels.height(), settings.downsample), pixels.isDeep());
    copyWorldFiltered(pixels.record(), nullptr, smaller.record(), nullptr);
    pixels = std::move(smaller);
    return picture;
}

// The pictures of layers that stay the same, each read once per depth. Any thread.
class StillLayers {
public:
    StillLayers(const std::map<PF_ParamIndex, fs::path>& paths, const RenderSettings& settings)
        : paths(paths), settings(settings) {}

    LayerPictures read(Depth depth) {
        const std::lock_guard lock(mutex);
        LayerPictures& layers = pictures[depth];
        for (const auto& [index, path] : paths) {
            SharedPicture& layer = layers[index];
            if (layer == nullptr)
                layer = std::make_shared<const FileWorld>(resized(readWorld(path, depth), settings));
        }
        return layers;
    }

private:
    const std::map<PF_ParamIndex, fs::path>& paths;
    const RenderSettings& settings;
    std::mutex mutex;
    std::map<Depth, LayerPictures> pictures;
};

// What a frame is rendered from.
struct FramePictures {
    FileWorld input;
    LayerPictures layers{};
    // Of the input where it has been made smaller; else 0.
    std::int32_t fullWidth = 0;
    std::int32_t fullHeight = 0;
};

Depth depthOf(const World& world) {
    return world.isDeep() ? Depth::Bits16 : Depth::Bits8;
}

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
            startWriting(index, std::move(result), pictures.input.hasAlpha);
        }
        while (!writes.isEmpty())
            writes.next();
    }

private:
    void prepare() const {
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
        FileWorld input = readWorld(files.input, settings.depth);
        const std::int32_t fullWidth = settings.resizes ? input.pixels.width() : 0;
        const std::int32_t fullHeight = settings.resizes ? input.pixels.height() : 0;
        FramePictures pictures{
            .input = resized(std::move(input), settings), .fullWidth = fullWidth, .fullHeight = fullHeight};
        requireDepth(effect, pictures.input.pixels);
        const Depth depth = depthOf(pictures.input.pixels);
        requireWritable(files.output, depth, pictures.input.hasAlpha);
        pictures.layers = stillLayers.read(depth);
        for (const auto& [layer, path] : files.layers)
            pictures.layers[layer] =
                std::make_shared<const FileWorld>(resized(readWorld(path, depth), settings));
        return pictures;
    }

    RenderedFrame render(std::size_t index, const FramePictures& pictures) {
        const Timer timer(CLOCK_MONOTONIC, report.renderTime);
        if (watch.frameBegins) watch.frameBegins(index);
        if (index == 0) tellTheUsersChoices(pictures.input.pixels);
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
        const ParameterValues given = valuesFor(plan.frames.front().frame, input);
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
               plan.emptyLayers.contains(index) ||
               std::ranges::find(parameters, index, &ParameterCurve::index) != parameters.end();
    }

    FrameRequest requestFor(std::size_t index, const FramePictures& pictures) const {
        const World& input = pictures.input.pixels;
        FrameRequest request;
        request.frame = plan.frames[index].frame;
        request.input = &input;
        for (const auto& [layer, picture] : pictures.layers)
            request.layers[layer] = &picture->pixels;
        for (const PF_ParamIndex layer : plan.emptyLayers)
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

    void startWriting(std::size_t index, RenderedFrame result, bool inputHasAlpha) {
        while (writes.isFull() || writes.isNextReady())
            writes.next();
        writes.start([this, index, inputHasAlpha, result = std::move(result)] {
            named(index, [&] { write(index, result.picture, inputHasAlpha); });
        });
    }

    void write(std::size_t index, const World& picture, bool inputHasAlpha) {
        const Timer timer(CLOCK_THREAD_CPUTIME_ID, report.encodeTime);
        // An effect may make an opaque picture transparent.
        writeWorld(plan.frames[index].output, picture, inputHasAlpha || !needsNoAlpha(picture),
                   settings.compression);
        ++report.framesWritten;
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
    StillLayers stillLayers{plan.stillLayers, settings};
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

#include "RenderJob.h"

#include <algorithm>
#include <exception>
#include <limits>
#include <memory>
#include <numeric>
#include <thread>
#include <type_traits>
#include <utility>

#include "Error.h"
#include "FramePictures.h"
#include "FrameReader.h"
#include "GivenValues.h"
#include "NamingFrame.h"
#include "OrderedTasks.h"
#include "PF_Values.h"
#include "Sequence.h"
#include "ShotForm.h"
#include "Step.h"
#include "StepTimer.h"
#include "Whereabouts.h"

namespace perch {
namespace {

namespace fs = std::filesystem;

// A frame on its way to its end.
struct EndingFrame {
    FrameEnd end;
    std::exception_ptr error{};
    bool isCancelled = false;  // neither done nor failed
};

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
        frameReader.prepare();
        if (!watch.takesPicture) prepareOutputs(outputsOf(plan));
        if (watch.nextFrames) {
            while (mayGoOn() && takeAsked())
                runOrder();
        } else {
            order.resize(plan.frames.size());
            std::iota(order.begin(), order.end(), std::size_t{0});
            runOrder();
        }
        if (firstCancelled) throwIfCancelled(*firstCancelled);
        if (!mayGoOn()) std::rethrow_exception(firstError);
    }

private:
    bool mayGoOn() const { return settings.goesOn || !hasFailure; }

    bool takeAsked() {
        const auto asked = watch.nextFrames();
        if (isCancelled()) throw Cancelled("RENDER", PF_Interrupt_CANCEL, "", {});
        order = asked.value_or(std::vector<std::size_t>{});
        nextRead = 0;
        return asked.has_value();
    }

    // The frames of the order, to their ends.
    void runOrder() {
        try {
            for (const std::size_t index : order) {
                if (!mayGoOn()) break;
                run(index);
            }
        } catch (...) {
            takeAllEnds();
            throw;
        }
        takeAllEnds();
    }

    void run(std::size_t index) {
        readAhead();
        // Frames that are being written may have taken all the memory.
        for (; reads.isEmpty(); readAhead())
            takeEnd();
        throwIfCancelled(index);
        Step<FramePictures> pictures = reads.next();
        readAhead();
        FrameEnd end{.index = index, .retries = pictures.retries, .decodeTime = pictures.time};
        if (pictures.error == nullptr) pictures.error = errorOfPictures(index, *pictures.result);
        if (pictures.error != nullptr) return endFailed(end, pictures.error);
        if (watch.frameBegins) watch.frameBegins(index);
        tellTheUsersChoices(pictures.result->input->pixels);
        if (watch.takesPicture) return handOver(index, *pictures.result);
        Step<RenderedFrame> rendered = render(index, *pictures.result, {});
        end.retries += rendered.retries;
        end.renderTime = rendered.time;
        if (rendered.error != nullptr) return endFailed(end, rendered.error);
        throwIfCancelled(index);
        startWriting(end, std::move(*rendered.result), *pictures.result);
    }

    void handOver(std::size_t index, const FramePictures& pictures) {
        for (const Variant& variant : settings.variants) {
            const Step<RenderedFrame> rendered = render(index, pictures, variant);
            if (rendered.error != nullptr) std::rethrow_exception(rendered.error);
            throwIfCancelled(index);
            watch.takesPicture(rendered.result->picture);
        }
        --inFlight;
    }

    // Does `body` when its turn comes, and until it does not fail, as often as the settings say. `pause` is
    // before each further time.
    template <typename F>
    auto tried(ThreadTurn turn, clockid_t clock, RenderReport::Time& sum, std::chrono::milliseconds pause,
               const F& body) const {
        Step<std::invoke_result_t<F, ThreadShare&>> step;
        for (;; ++step.retries) {
            try {
                ThreadShare share(std::move(turn));
                const StepTimer timer(clock, sum, step.time);
                step.result.emplace(body(share));
                return step;
            } catch (const Cancelled&) {
                throw;
            } catch (const EffectBroke&) {
                throw;
            } catch (const Error&) {
                if (step.retries == settings.retries || isCancelled()) {
                    step.error = std::current_exception();
                    return step;
                }
            }
            std::this_thread::sleep_for(pause);
            turn = ThreadTurn(settings.budget);
        }
    }

    void readAhead() {
        for (; !reads.isFull() && inFlight < mostInFlight && nextRead < order.size(); ++nextRead) {
            ++inFlight;
            reads.start([this, index = order[nextRead], turn = ThreadTurn(settings.budget)]() mutable {
                return tried(std::move(turn), CLOCK_THREAD_CPUTIME_ID, report.decodeTime, settings.pause,
                             [&](ThreadShare&) { return frameReader.read(index); });
            });
        }
    }

    // Its first frame shows how many of a shot there is memory for.
    void takeMemory(const FramePictures& pictures) {
        if (!settings.memory) return;
        mostInFlight = framesWithin(*settings.memory, pictures);
        requireMemory(*settings.memory, pictures);
    }

    std::exception_ptr errorOfPictures(std::size_t index, const FramePictures& pictures) {
        try {
            namingFrame(plan, index, [&] {
                takeMemory(pictures);
                form.require(plan.frames[index], *pictures.input, pictures.layers);
            });
        } catch (const Error&) {
            return std::current_exception();
        }
        return nullptr;
    }

    Step<RenderedFrame> render(std::size_t index, const FramePictures& pictures, const Variant& variant) {
        FrameRequest request = requestFor(index, pictures);
        for (const ParameterSetting& setting : variant)
            applySetting(setting, request.values, settings.downsample);
        return tried(ThreadTurn(settings.budget), CLOCK_MONOTONIC, report.renderTime, {},
                     [&](ThreadShare&) { return sequence.render(request); });
    }

    void tellTheUsersChoices(const World& input) {
        if (std::exchange(knowsTheUsersChoices, true)) return;
        values.tell(sequence, plan.firstFrame, input);
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
        request.values = values.at(request.frame, input);
        // A frame has one time, whichever frames are rendered beside it.
        request.time = request.frame * request.timeStep;
        request.totalTime = (std::max(plan.lastFrame, 0) + 1) * request.timeStep;
        request.quality = settings.quality;
        request.smart = settings.smart;
        request.cancelled = watch.cancelled;
        request.progress = watch.frameProgresses;
        return request;
    }

    void startWriting(const FrameEnd& rendered, RenderedFrame result, const FramePictures& pictures) {
        startEnding([this, end = rendered, input = pictures.input, output = pictures.output,
                     result = std::move(result), turn = ThreadTurn(settings.budget)]() mutable {
            output.encoding.checkpoint = [&] { throwIfCancelled(end.index); };
            const auto write = [&](ThreadShare& share) {
                output.encoding.isEncoded = [&share] { share.giveBack(); };
                const fs::path& path = plan.frames[end.index].output;
                const std::vector<std::string> unheld = writeWorld(path, result.picture, *input, output);
                if (!unheld.empty()) report.notes.add("unheld", unheldNote(path, unheld), end.index + 1);
                return true;
            };
            try {
                const Step<bool> written =
                    tried(std::move(turn), CLOCK_THREAD_CPUTIME_ID, report.encodeTime, settings.pause,
                          [&](ThreadShare& share) {
                              return namingFrame(plan, end.index, [&] { return write(share); });
                          });
                end.retries += written.retries;
                end.encodeTime = written.time;
                if (written.error == nullptr) {
                    ++report.framesWritten;
                    whereabouts().hasWritten = true;
                }
                return EndingFrame{end, written.error};
            } catch (const Cancelled&) {
                return EndingFrame{.end = end, .isCancelled = true};
            }
        });
    }

    // A failed frame ends in its turn, behind those that are still being written.
    void endFailed(const FrameEnd& end, const std::exception_ptr& error) {
        hasFailure = true;
        startEnding([end, error] { return EndingFrame{end, error}; });
    }

    template <typename F>
    void startEnding(F task) {
        while (writes.isFull() || writes.isNextReady())
            takeEnd();
        writes.start(std::move(task));
    }

    void takeEnd() {
        EndingFrame frame = writes.next();
        --inFlight;
        if (frame.isCancelled) {
            if (!firstCancelled) firstCancelled = frame.end.index;
            return;
        }
        if (frame.error != nullptr) {
            frame.end.state = FrameEnd::State::Failed;
            frame.end.message = messageOf(frame.error);
            if (firstError == nullptr) firstError = frame.error;
            hasFailure = true;
        }
        if (watch.frameEnds) watch.frameEnds(frame.end);
    }

    void takeAllEnds() {
        while (!writes.isEmpty())
            takeEnd();
    }

    bool isCancelled() const { return watch.cancelled != nullptr && watch.cancelled->load(); }

    void throwIfCancelled(std::size_t index) const {
        if (isCancelled()) throw Cancelled("RENDER", PF_Interrupt_CANCEL, "", plan.frames[index].frame);
    }

    Effect& effect;
    const RenderSettings& settings;
    const std::vector<ParameterCurve>& parameters;
    const FramePlan& plan;
    const RenderWatch& watch;
    RenderReport& report;
    FrameReader frameReader{effect, settings, parameters, plan, !watch.takesPicture, report};
    Sequence sequence{effect};
    GivenValues values{effect, parameters, layersSetByUser(plan), settings.downsample};
    bool knowsTheUsersChoices = false;
    ShotForm form;
    std::vector<std::size_t> order;  // of the frames under way, by their places in the plan
    std::size_t nextRead = 0;        // in the order
    std::size_t inFlight = 0;        // frames of which anything is in memory
    std::size_t mostInFlight = settings.memory ? 1 : std::numeric_limits<std::size_t>::max();
    bool hasFailure = false;                    // of a frame
    std::exception_ptr firstError;              // in the order of the frames
    std::optional<std::size_t> firstCancelled;  // of the frames that were being written
    // Last, so that the tasks end before what they use.
    OrderedTasks<Step<FramePictures>> reads{settings.framesAhead};
    OrderedTasks<EndingFrame> writes{settings.framesAhead};
};

}  // namespace

void renderFrames(Effect& effect, const RenderSettings& settings,
                  const std::vector<ParameterCurve>& parameters, const FramePlan& plan,
                  const RenderWatch& watch, RenderReport& report) {
    Job(effect, settings, parameters, plan, watch, report).run();
}

}  // namespace perch

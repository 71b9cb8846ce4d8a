// An effect under this host: loads it, declares its parameters, drives its commands in a host's order.
//
//     Effect effect("Kestrel.plugin", HostOptions{});       // GLOBAL_SETUP, PARAMS_SETUP
//     Sequence sequence(effect);                            // SEQUENCE_SETUP
//     FrameRequest request;
//     request.input = &picture;
//     request.values = effect.defaultValues(picture.width(), picture.height());
//     RenderedFrame result = sequence.render(request);      // FRAME_SETUP, RENDER, FRAME_SETDOWN
//     std::vector<std::byte> saved = sequence.flatten();    // SEQUENCE_FLATTEN, SEQUENCE_RESETUP
//
// Every object sends its tear-down when it is destroyed, after errors as well, and destructors never throw.
// Commands are sent on the calling thread, which must be the one that made the Effect. One Effect at a time
// per process: most callbacks carry nothing that would tell two hosts apart.
// A command that fails throws EffectError, or Cancelled when the user's cancel was the reason.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "Error.h"
#include "Finding.h"
#include "PF_Entry.h"
#include "PF_Params.h"
#include "PF_Values.h"
#include "PiPL.h"
#include "World.h"

namespace perch {

class Host;
struct Call;

// A parameter as the effect declared it; everything is copied, nothing points into the effect.
struct Parameter {
    PF_ParamIndex index = 0;         // 1 and up; 0 is the input layer and is not listed
    std::string name;                // "Focal Point"
    std::string typeName;            // "float slider"
    PF_ParamDef definition{};        // as declared; its label pointers are null
    std::vector<std::string> items;  // of a popup, counted from 1 by the effect
    std::string label;               // beside a check box or on a button

    // Numbers in the unit of the control: 16.16 values are converted. Absent where the type has none.
    struct Range {
        double minimum = 0.0;
        double maximum = 0.0;
        bool operator==(const Range&) const = default;
    };
    std::optional<Range> validRange;
    std::optional<Range> sliderRange;
    std::optional<double> defaultNumber;
    int precision = 0;  // digits shown after the point
    bool isPercent = false;
};

struct EffectDescription {
    std::filesystem::path path;
    std::string entryPoint;  // symbol
    // From the PiPL; empty where the file has none.
    std::string name;
    std::string category;
    std::string matchName;
    bool hasPropertyList = false;
    std::uint32_t propertyListVersion = 0;  // packed, see PF_VERSION
    PF_OutFlags propertyListFlags = 0;
    PF_OutFlags2 propertyListFlags2 = 0;
    // From GLOBAL_SETUP.
    std::uint32_t version = 0;
    PF_OutFlags flags = 0;
    PF_OutFlags2 flags2 = 0;
    std::vector<Parameter> parameters;
};

// Lets the n-th call of one callback fail, counted from 1 over the life of the effect.
struct CallFailure {
    std::string callback;  // "checkout_param", "AcquireSuite", "PF_NewWorld"; as named in its table
    int call = 1;          // 0: every call
    PF_Err code = PF_Err_OUT_OF_MEMORY;  // callbacks that return a pointer answer null instead
};

struct SuiteName {
    std::string name;
    std::int32_t version = 0;  // 0: every version
};

struct HostOptions {
    int threads = 0;      // workers of the iterate calls, the calling thread included; 0: one per processor
    bool strict = false;  // account for everything the effect does; see Effect::findings
    PF_SpecVersion interfaceVersion{PF_INTERFACE_MAJOR, PF_INTERFACE_MINOR};
    bool offersSuites = true;               // else pica_basicP is null
    bool keepsFrameData = true;             // else frame_data is null at every command
    std::vector<SuiteName> withheldSuites;  // answered as not found
    std::vector<CallFailure> failures;
    std::function<void(std::string_view command)> onCommand;    // before each command: "FRAME_SETUP"
    std::function<void(std::string_view callback)> onCallback;  // at each callback, also from workers
    // The effect's return_msg after a command that did not fail.
    std::function<void(std::string_view command, std::string_view message)> onMessage;
};

// The values of params[], by index. Entry 0 stands for the input layer; layer entries carry no pixels.
using ParameterValues = std::vector<PF_ParamDef>;

// What one frame is rendered from. Pictures are borrowed and must outlive the Frame. A picture stands for
// all times, and the same holds for the values: a checkout at another time answers with the same.
struct FrameRequest {
    std::int32_t frame = 0;                        // number told in errors
    const World* input = nullptr;                  // required
    std::map<PF_ParamIndex, const World*> layers;  // per layer parameter; absent or null: none
    ParameterValues values;                        // empty: the defaults

    std::int32_t time = 0;  // in units of 1 / timeScale s, as the three below
    std::int32_t timeStep = 1;
    std::int32_t localTimeStep = 1;
    std::int32_t totalTime = 1;
    std::uint32_t timeScale = 24;

    // Of the output; 0: as the input. The effect may ask for another size at FRAME_SETUP.
    std::int32_t outputWidth = 0;
    std::int32_t outputHeight = 0;
    std::int32_t outputOriginX = 0;  // the input's origin in the output, pixels
    std::int32_t outputOriginY = 0;
    std::int32_t outputRowPadding = 0;  // bytes at the end of each output row, a multiple of the pixel size
    // Of the source layer at full resolution; 0: the input's size divided by the downsampling.
    std::int32_t fullWidth = 0;
    std::int32_t fullHeight = 0;
    PF_RationalScale downsampleX{1, 1};
    PF_RationalScale downsampleY{1, 1};
    PF_RationalScale pixelAspectRatio{1, 1};
    PF_Quality quality = PF_Quality_HI;

    const std::atomic<bool>* cancelled = nullptr;   // may be set from any thread or a signal handler
    std::function<void(double fraction)> progress;  // on the calling thread, 0 to 1
};

// A FrameRequest's full extent: as given, else the picture's `extent` divided by `scale`, or the largest that
// there is where that is larger.
std::int32_t fullExtent(std::int32_t given, std::int32_t extent, const PF_RationalScale& scale);

struct RenderedFrame {
    World picture;
    PF_Point origin{};  // of the input in the picture, where the effect asked for another size
};

// The outcome of a command sent as it is; nothing is thrown.
struct CommandResult {
    PF_Err code = 0;
    std::string message;
    PF_OutFlags flags = 0;
    PF_OutFlags2 flags2 = 0;
};

class Effect {
public:
    // Throws Error when the file cannot be loaded or is of a kind that this host declines.
    Effect(const std::filesystem::path& plugin, HostOptions options);
    // An effect of this process; `description` needs nothing but what the caller wants to read back.
    Effect(PF_EntryPoint entryPoint, EffectDescription description, HostOptions options);
    ~Effect();  // GLOBAL_SETDOWN
    Effect(const Effect&) = delete;
    Effect& operator=(const Effect&) = delete;

    const EffectDescription& description() const;
    // The values of a fresh instance on a layer of that full-resolution size, by which points are placed.
    ParameterValues defaultValues(std::int32_t width, std::int32_t height) const;
    bool supportsDeepColor() const;

    std::string about();
    // Any command, outside of a frame, with the current data; for hostile orders. Never throws for errors.
    CommandResult send(PF_Cmd command, void* extra = nullptr);

    // GLOBAL_SETDOWN now, so that findings are complete; the effect takes no commands afterwards.
    void close();
    // What strict mode has found so far, in order. Readable after close().
    const std::vector<Finding>& findings() const;

private:
    friend class Sequence;
    friend class Frame;
    std::unique_ptr<Host> host;
};

// One applied instance. Must end before its Effect is closed.
class Sequence {
public:
    explicit Sequence(Effect& effect);  // SEQUENCE_SETUP
    // SEQUENCE_RESETUP from what flatten() gave.
    Sequence(Effect& effect, const std::vector<std::byte>& flattened);
    ~Sequence();  // SEQUENCE_SETDOWN
    Sequence(const Sequence&) = delete;
    Sequence& operator=(const Sequence&) = delete;

    // Saves: SEQUENCE_FLATTEN where the effect declares that it needs it, the bytes, SEQUENCE_RESETUP.
    std::vector<std::byte> flatten();
    // FRAME_SETUP, RENDER, FRAME_SETDOWN.
    RenderedFrame render(const FrameRequest& request);
    // The user has changed that value; the effect may change others and the look of controls in `values`.
    void userChangedParam(PF_ParamIndex index, ParameterValues& values);
    void updateParamsUi(ParameterValues& values);
    // Any command with this instance's data; see Effect::send.
    CommandResult send(PF_Cmd command, void* extra = nullptr);

private:
    friend class Frame;
    void resetup();
    void throwIfFailed(const Call& call);
    void setDown() noexcept;
    void sendWithValues(PF_Cmd command, ParameterValues& values, void* extra);

    Effect& effect;
    PF_Handle data = nullptr;  // the effect's, carried from command to command
    bool isSetUp = false;
};

// The steps of one frame, for callers that interleave frames; Sequence::render is the usual way.
class Frame {
public:
    Frame(Sequence& sequence, const FrameRequest& request);  // FRAME_SETUP
    ~Frame();                                                // FRAME_SETDOWN unless finished
    Frame(const Frame&) = delete;
    Frame& operator=(const Frame&) = delete;

    void render();  // RENDER
    void finish();  // FRAME_SETDOWN
    const World& picture() const;
    RenderedFrame take();

private:
    void checkRequest();
    void takeOutputSize(const PF_OutData& out);
    void checkPixels();
    void checkInput();
    void setDown() noexcept;

    Sequence& sequence;
    FrameRequest request;
    std::unique_ptr<World> inputCopy;  // the effect's own in strict mode, or when it may write to its input
    std::unique_ptr<World> output;     // once rendered
    PF_Handle data = nullptr;          // the effect's, carried from command to command
    bool isSetUp = false;
    bool isOutputDamaged = false;
};

}  // namespace perch

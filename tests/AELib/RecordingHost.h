// A host for the tests: it answers every callback that the framework uses, records the arguments, keeps track
// of what it lent, and fails on demand.
//
//   RecordingHost host(PluginMain);
//   host.call(PF_Cmd_GLOBAL_SETUP);          // handles travel from call to call as a host carries them
//   host.failures.at(Callback::kBlend, 2, 77);   // the second blend from now on answers 77
//   EXPECT_EQ("", host.faults());            // misuse of callbacks, and what was not given back
//
// One host lives at a time. All callbacks are for the thread that made the host.
#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "HostInterface.h"
#include "HostWorld.h"

enum class Callback {
    kCheckoutParam,
    kCheckinParam,
    kAddParam,
    kAbort,
    kProgress,
    kBlend,
    kNewWorld,
    kDisposeWorld,
    kTransformWorld,
    kGetPixelData8,
    kGetPixelData16,
    kNewHandle,
    kLockHandle,
    kUnlockHandle,
    kDisposeHandle,
    kGetHandleSize,
    kResizeHandle,
    kAcquireSuite,
    kReleaseSuite,
    kIterateGeneric,
    kUpdateParamUI,
    kRegister,
    kGetNewEffect,
    kGetNewStream,
    kSetStreamFlag,
    kDisposeEffect,
    kDisposeStream,
    kCount,
};
const char* NameOf(Callback callback);

// Counts the calls of each callback and says which one fails.
class Failures {
public:
    // Of the calls from now on, the `nth` (from 1) of `callback` answers `code`.
    void at(Callback callback, int nth, PF_Err code);
    void clear();
    // Since the last clear().
    int calls(Callback callback) const { return counts[static_cast<std::size_t>(callback)]; }
    // What this call answers.
    PF_Err count(Callback callback);

private:
    std::array<int, static_cast<std::size_t>(Callback::kCount)> counts{};
    Callback failing = Callback::kCount;
    int failingCall = 0;
    PF_Err failingCode = 0;
};

struct TransformCall {
    PF_Quality quality;
    PF_ModeFlags modeFlags;
    PF_Field field;
    PF_CompositeMode mode;
    bool hasMask;
    PF_FloatMatrix matrix;
    A_long matrices;
    PF_Boolean sourceToDestination;
    bool wholeDestination;
};

struct BlendCall {
    const PF_EffectWorld* first;
    const PF_EffectWorld* second;
    PF_Fixed ratio;
    const PF_EffectWorld* destination;
};

struct CheckoutCall {
    PF_ParamIndex index;
    A_long time;
    A_long step;
    A_u_long scale;
};

class RecordingHost {
public:
    explicit RecordingHost(PF_EntryPoint entryPoint);
    ~RecordingHost();
    RecordingHost(const RecordingHost&) = delete;
    RecordingHost& operator=(const RecordingHost&) = delete;

    // One command. All of the output record except the handles is cleared first; afterwards the host keeps
    // the handles that it finds there.
    PF_Err call(PF_Cmd command, void* extra = nullptr);
    // Frame set-up, render and set-down; the set-down also after a failed render. The first error.
    PF_Err renderFrame();
    // Set-down of sequence and global instance, where there are any.
    void tearDown();

    std::string message() const { return out.return_msg; }
    // The parameters as the host hands them out: the source layer and a copy of each declaration.
    std::vector<PF_ParamDef*> paramPointers();
    PF_ParamDef& param(std::size_t index) { return params.at(index); }
    // Takes the declarations over as parameters at their defaults.
    void adoptDeclaredParams();

    // Misuse so far, one per line, and what was lent and not given back.
    std::string faults() const;
    // The misuse so far, which is then forgotten.
    std::string takeFaults();
    // Takes back the checkouts and worlds that are lent.
    void endLoans();
    int liveHandles() const { return static_cast<int>(handles.size()); }
    int lockedHandles() const;
    int liveWorlds() const { return static_cast<int>(worlds.size()); }
    int openCheckouts() const { return static_cast<int>(checkedOut.size()); }
    int liveSuites() const { return liveSuiteCount; }

    PF_Handle newHandle(A_u_longlong size);
    bool isAlive(PF_Handle handle) const { return handles.contains(handle); }

    PF_EntryPoint entryPoint;
    PF_InData in{};
    PF_OutData out{};
    PF_UtilCallbacks utils{};
    SPBasicSuite basic{};
    PF_LayerDef* output = nullptr;         // given with every command but FRAME_SETUP and FRAME_SETDOWN
    const HostWorld* control = nullptr;    // what a checkout of any layer gives; null is none
    int threads = 3;                       // what iterate_generic uses and reports for -1
    std::optional<A_long> toldIterations;  // what its functions hear in place of the true numbers
    std::optional<A_long> toldIndex;
    std::set<std::string> missingSuites;

    Failures failures;
    std::vector<std::string> log;       // names of the callbacks, in order
    std::vector<PF_ParamDef> declared;  // whole records
    std::vector<std::pair<A_long, A_long>> progress;
    std::vector<TransformCall> transforms;
    std::vector<BlendCall> blends;
    std::vector<CheckoutCall> checkouts;
    std::vector<A_long> iterations;     // of each iterate_generic, as asked for
    std::vector<std::string> suiteLog;  // "acquire NAME VERSION", "release NAME VERSION"
    std::vector<std::string> registeredNames;
    std::vector<std::pair<PF_ParamIndex, PF_ParamDef>> uiUpdates;
    std::vector<std::string> streamLog;  // calls of the AEGP suites with their arguments
    static constexpr AEGP_PluginID kPluginID = 4711;

protected:
    std::vector<PF_ParamDef> params;

private:
    friend struct HostCallbacks;
    struct Block {
        char* address;
        std::unique_ptr<char[]> bytes;
        std::size_t size;
        int locks;
    };

    void fault(const std::string& text) { faultList.push_back(text); }
    PF_Err enter(Callback callback);

    std::map<PF_Handle, std::unique_ptr<Block>> handles;
    std::map<const void*, std::unique_ptr<HostWorld>> worlds;  // by first pixel
    std::multiset<const PF_ParamDef*> checkedOut;              // records of the checkouts that are open
    std::vector<std::string> faultList;
    std::thread::id mainThread = std::this_thread::get_id();
    int liveSuiteCount = 0;
};

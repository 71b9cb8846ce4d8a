#include "Misdeeds.h"

namespace perch::test {
namespace {

struct Deed {
    const char* name;
    End end;
};

// What ends the effect's code wherever it is done.
const Deed kEnds[] = {
    {"read", End::Crash},     {"write", End::Crash}, {"call", End::Crash},       {"bus", End::Crash},
    {"divide", End::Crash},   {"trap", End::Crash},  {"abort", End::Crash},      {"terminate", End::Crash},
    {"overflow", End::Crash}, {"kill", End::Crash},  {"exit0", End::Exit},       {"exit7", End::Exit},
    {"_exit0", End::Exit},    {"exec", End::Exit},   {"quick_exit0", End::Exit},
};

const char* const kCommands[] = {"GLOBAL_SETUP", "PARAMS_SETUP",  "SEQUENCE_SETUP",   "FRAME_SETUP",
                                 "RENDER",       "FRAME_SETDOWN", "SEQUENCE_SETDOWN", "GLOBAL_SETDOWN"};

// Places and deeds one by one.
const Misdeed kOthers[] = {
    {"abort", "loading", End::Crash, ""},
    {"read", "loading", End::Crash, ""},
    {"exit0", "loading", End::Exit, ""},
    {"_exit0", "loading", End::Exit, ""},
    {"abort", "unloading", End::Crash, ""},
    {"exit0", "unloading", End::Exit, ""},
    {"read", "pixel", End::Crash, ""},
    {"abort", "pixel", End::Crash, ""},
    {"exit0", "pixel", End::Exit, ""},
    {"overflow", "pixel", End::Crash, ""},
    {"throw", "pixel", End::Throw, "RENDER, iterate: an exception left the effect's function"},
    {"read", "thread", End::Crash, ""},
    {"exit0", "thread", End::Exit, ""},
    {"throw", "thread", End::Crash, ""},
    {"throw", "RENDER", End::Throw, "RENDER: an exception left the entry point"},
    {"throw", "GLOBAL_SETUP", End::Throw, ""},
    {"throw-error", "PARAMS_SETUP", End::Throw, ""},
    {"throw-error", "SEQUENCE_SETUP", End::Throw, ""},
    {"throw-error", "FRAME_SETUP", End::Throw, ""},
    {"throw", "FRAME_SETDOWN", End::Throw, ""},
    {"throw", "SEQUENCE_SETDOWN", End::Throw, ""},
    {"throw", "GLOBAL_SETDOWN", End::Throw, "GLOBAL_SETDOWN: an exception left the entry point"},
    {"signal-parent", "RENDER", End::Signal, ""},
    {"alarm", "RENDER", End::Crash, ""},
    {"hang", "RENDER", End::Hang, ""},
    {"hang", "loading", End::Hang, ""},
    {"hang", "GLOBAL_SETUP", End::Hang, ""},
    {"hang", "GLOBAL_SETDOWN", End::Hang, ""},
    {"hang", "unloading", End::Hang, ""},
    {"hang", "pixel", End::Hang, ""},
    {"spin", "RENDER", End::Hang, ""},
    {"stop", "RENDER", End::Hang, ""},
    {"deaf", "FRAME_SETUP", End::Hang, ""},
    {"error", "GLOBAL_SETUP", End::Failure, ""},
    {"error", "SEQUENCE_SETUP", End::Failure, ""},
    {"error", "RENDER", End::Failure, ""},
    {"error", "SEQUENCE_SETDOWN", End::Tolerated, "SEQUENCE_SETDOWN: the effect answered -1"},
    {"error", "GLOBAL_SETDOWN", End::Tolerated, "GLOBAL_SETDOWN: the effect answered -1"},
    {"cancel", "GLOBAL_SETUP", End::Failure, ""},
    {"cancel", "RENDER", End::Failure, ""},
    {"close-all-fail", "RENDER", End::Failure, ""},
    {"many-parameters", "PARAMS_SETUP", End::Failure, ""},
    {"unknown-parameter", "PARAMS_SETUP", End::Failure, ""},
    {"file-limit", "RENDER", End::Failure, ""},
    {"long-name", "PARAMS_SETUP", End::Tolerated, ""},
    {"long-message", "RENDER", End::Tolerated, "RENDER: return_msg is not terminated within its 256 bytes"},
    {"escapes", "RENDER", End::Tolerated, ""},
    {"noise", "RENDER", End::Tolerated, ""},
    {"close-outputs", "RENDER", End::Tolerated, ""},
    {"fork", "RENDER", End::Tolerated, ""},
    {"two-of-us", "SEQUENCE_SETUP", End::Tolerated, ""},
    {"folder", "FRAME_SETUP", End::Tolerated, "FRAME_SETUP: the current folder was changed"},
    {"folder", "RENDER", End::Tolerated, "RENDER: the current folder was changed"},
    {"rounding", "RENDER", End::Tolerated, "RENDER: the rounding mode was changed"},
    {"handler", "RENDER", End::Tolerated, "RENDER: the handler of SIGINT was changed"},
    {"table", "FRAME_SETDOWN", End::Tolerated, "FRAME_SETDOWN: a table of callbacks was changed"},
    {"leave-thread", "RENDER", End::Tolerated,
     "GLOBAL_SETDOWN: threads of the effect that have not ended: 1"},
    {"wrong-count", "PARAMS_SETUP", End::Tolerated, "PARAMS_SETUP: num_params is 1000000"},
    {"huge-output", "FRAME_SETUP", End::Tolerated, "FRAME_SETUP: another output size is asked for"},
    {"handle-left", "RENDER", End::Tolerated, "a handle of 40 bytes was never disposed"},
    {"handle-overrun", "RENDER", End::Tolerated, "bytes after a block of 40 bytes were written"},
    {"handle-twice", "RENDER", End::Tolerated,
     "RENDER, host_dispose_handle: the handle has been disposed before"},
    {"handle-wild", "RENDER", End::Tolerated,
     "RENDER, host_lock_handle: the handle is not one of the host's"},
    {"data-wild", "SEQUENCE_SETUP", End::Tolerated,
     "SEQUENCE_SETUP: sequence_data is not a handle of the host"},
    {"world-wild", "RENDER", End::Tolerated, "RENDER, fill: a world's pixels are not in memory"},
    {"world-nowhere", "RENDER", End::Tolerated, "RENDER, copy: a world's record is not in memory"},
    {"world-grown", "RENDER", End::Tolerated,
     "RENDER, fill: a world's record extends past the memory of its pixels"},
    {"world-twice", "RENDER", End::Tolerated, "RENDER, dispose_world: the world has been disposed before"},
    {"sample-wild", "RENDER", End::Tolerated, "RENDER, subpixel_sample: a world's pixels are not in memory"},
    {"iterate-grown", "RENDER", End::Tolerated,
     "RENDER, iterate: a world's record extends past the memory of its pixels"},
    {"block-wild", "RENDER", End::Tolerated, "RENDER, FreeBlock: the block is not one of the host's"},
    {"parameters-on-threads", "PARAMS_SETUP", End::Tolerated,
     "PARAMS_SETUP, add_param: called from a worker thread"},
    {"world-left", "RENDER", End::Tolerated,
     "a world of 4 x 4 pixels was not disposed by the end of the command"},
    {"checkout-left", "RENDER", End::Tolerated, "parameter 0 was checked out and never checked in"},
    {"checkout-wild", "RENDER", End::Tolerated, "index 1000000 is not from 0 to 0"},
    {"suite-null", "RENDER", End::Tolerated, "released more often than acquired"},
    {"foreign-reference", "RENDER", End::Tolerated, "the effect reference is not that of the call"},
    {"block-left", "RENDER", End::Tolerated, "a block of 64 bytes was never freed"},
    {"beyond-row", "RENDER", End::Tolerated, "the output: bytes in the gap after row 0 were written"},
    {"write-input", "RENDER", End::Tolerated, "the input's pixels were written"},
};

std::vector<Misdeed> makeAll() {
    std::vector<Misdeed> all(std::begin(kOthers), std::end(kOthers));
    for (const Deed& deed : kEnds)
        for (const char* const command : kCommands)
            all.push_back({deed.name, command, deed.end, "", true});
    return all;
}

// Under sanitizers a crash is an exit after a report of their own.
std::vector<std::string> wordsFor(End end) {
    switch (end) {
        case End::Crash:
            return {"crashed", "ended the program"};
        case End::Exit:
            return {"ended the program"};
        case End::Throw:
            return {"let an exception out"};
        case End::Hang:
            return {"did not come back"};
        case End::Signal:
            return {"sent the program a signal"};
        default:
            return {};
    }
}

}  // namespace

bool endsTheEffect(End end) {
    return end != End::Failure && end != End::Tolerated;
}

bool tellsOfTheEnd(const std::string& text, End end, const std::string& command) {
    for (const std::string& how : wordsFor(end))
        for (const char* const when : {" at ", " after "})
            if (text.find("the effect \"Hostile.so\" " + how + when + command) != std::string::npos)
                return true;
    return false;
}

const std::vector<Misdeed>& misdeeds() {
    static const std::vector<Misdeed> all = makeAll();
    return all;
}

}  // namespace perch::test

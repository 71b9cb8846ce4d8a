#include "CommandName.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>

#include "PF_Values.h"

namespace perch {
namespace {

struct KnownCommand {
    PF_Cmd command;
    const char* name;
};

constexpr std::array kCommandNames{
    KnownCommand{PF_Cmd_ABOUT, "ABOUT"},
    KnownCommand{PF_Cmd_GLOBAL_SETUP, "GLOBAL_SETUP"},
    KnownCommand{PF_Cmd_GLOBAL_SETDOWN, "GLOBAL_SETDOWN"},
    KnownCommand{PF_Cmd_PARAMS_SETUP, "PARAMS_SETUP"},
    KnownCommand{PF_Cmd_SEQUENCE_SETUP, "SEQUENCE_SETUP"},
    KnownCommand{PF_Cmd_SEQUENCE_RESETUP, "SEQUENCE_RESETUP"},
    KnownCommand{PF_Cmd_SEQUENCE_FLATTEN, "SEQUENCE_FLATTEN"},
    KnownCommand{PF_Cmd_SEQUENCE_SETDOWN, "SEQUENCE_SETDOWN"},
    KnownCommand{PF_Cmd_DO_DIALOG, "DO_DIALOG"},
    KnownCommand{PF_Cmd_FRAME_SETUP, "FRAME_SETUP"},
    KnownCommand{PF_Cmd_RENDER, "RENDER"},
    KnownCommand{PF_Cmd_FRAME_SETDOWN, "FRAME_SETDOWN"},
    KnownCommand{PF_Cmd_USER_CHANGED_PARAM, "USER_CHANGED_PARAM"},
    KnownCommand{PF_Cmd_UPDATE_PARAMS_UI, "UPDATE_PARAMS_UI"},
    KnownCommand{PF_Cmd_EVENT, "EVENT"},
    KnownCommand{PF_Cmd_GET_EXTERNAL_DEPENDENCIES, "GET_EXTERNAL_DEPENDENCIES"},
    KnownCommand{PF_Cmd_COMPLETELY_GENERAL, "COMPLETELY_GENERAL"},
    KnownCommand{PF_Cmd_QUERY_DYNAMIC_FLAGS, "QUERY_DYNAMIC_FLAGS"},
    KnownCommand{PF_Cmd_AUDIO_RENDER, "AUDIO_RENDER"},
    KnownCommand{PF_Cmd_AUDIO_SETUP, "AUDIO_SETUP"},
    KnownCommand{PF_Cmd_AUDIO_SETDOWN, "AUDIO_SETDOWN"},
    KnownCommand{PF_Cmd_ARBITRARY_CALLBACK, "ARBITRARY_CALLBACK"},
    KnownCommand{PF_Cmd_SMART_PRE_RENDER, "SMART_PRE_RENDER"},
    KnownCommand{PF_Cmd_SMART_RENDER, "SMART_RENDER"},
    KnownCommand{PF_Cmd_GET_FLATTENED_SEQUENCE_DATA, "GET_FLATTENED_SEQUENCE_DATA"},
    KnownCommand{PF_Cmd_SMART_RENDER_GPU, "SMART_RENDER_GPU"},
};

}  // namespace

std::string commandName(PF_Cmd command) {
    const auto* found =
        std::find_if(kCommandNames.begin(), kCommandNames.end(),
                     [command](const KnownCommand& known) { return known.command == command; });
    return found != kCommandNames.end() ? found->name : fmt::format("command {}", command);
}

}  // namespace perch

// An effect that misbehaves on demand: the environment variable PERCH_HOSTILE names a deed and the place
// where it is done, "abort@RENDER". Places are the commands, and
//     loading, unloading   in a constructor and a destructor of the library
//     pixel                in a pixel function, on whatever thread the host calls it
//     thread               on a thread of the effect's own, during RENDER
//     frame5               FRAME_SETUP of the frame of that number
//     deleting             in the function that frees what SMART_PRE_RENDER has kept
// An effect whose place is of smart rendering renders so alone, and one whose place is of arbitrary data or
// of supervised parameters declares such a parameter. Everywhere else the effect behaves, and its picture is
// half transparent grey. PERCH_HOSTILE_MARK names a file that it makes just before the deed.
#include <cstdlib>
#include <string_view>
#include <thread>

#include "HostileDeeds.h"

namespace {

std::string_view wanted() {
    const char* const text = std::getenv("PERCH_HOSTILE");
    return text != nullptr ? text : "";
}

bool isPlace(std::string_view place) {
    const std::string_view mode = wanted();
    const std::size_t at = mode.find('@');
    return at != std::string_view::npos && mode.substr(at + 1) == place;
}

PF_Err doIt(const Scene& scene) {
    return doDeed(wanted().substr(0, wanted().find('@')), scene);
}

// Loaded and unloaded with the library.
struct Library {
    Library() {
        if (isPlace("loading")) doIt({});
    }
    ~Library() {
        if (isPlace("unloading")) doIt({});
    }
} library;

PF_Err makeGrey(void* refcon, A_long, A_long, PF_Pixel*, PF_Pixel* out) {
    *out = {128, 64, 64, 64};
    return isPlace("pixel") ? doIt(*static_cast<const Scene*>(refcon)) : PF_Err{PF_Err_NONE};
}

PF_Err render(Scene& scene) {
    if (isPlace("thread")) {
        std::thread([&scene] { doIt(scene); }).join();
    }
    return scene.in->utils->iterate(scene.in, 0, 1, nullptr, nullptr, &scene, makeGrey, scene.output);
}

// What the parameter declared for arbitrary data and the sequence's data hold.
PF_Handle newHandle(const Scene& scene) {
    return scene.in->utils->host_new_handle(4);
}

struct Command {
    PF_Cmd command;
    const char* name;
};

constexpr Command kCommands[] = {
    {PF_Cmd_ABOUT, "ABOUT"},
    {PF_Cmd_GLOBAL_SETUP, "GLOBAL_SETUP"},
    {PF_Cmd_PARAMS_SETUP, "PARAMS_SETUP"},
    {PF_Cmd_SEQUENCE_SETUP, "SEQUENCE_SETUP"},
    {PF_Cmd_SEQUENCE_RESETUP, "SEQUENCE_RESETUP"},
    {PF_Cmd_SEQUENCE_FLATTEN, "SEQUENCE_FLATTEN"},
    {PF_Cmd_USER_CHANGED_PARAM, "USER_CHANGED_PARAM"},
    {PF_Cmd_UPDATE_PARAMS_UI, "UPDATE_PARAMS_UI"},
    {PF_Cmd_ARBITRARY_CALLBACK, "ARBITRARY_CALLBACK"},
    {PF_Cmd_FRAME_SETUP, "FRAME_SETUP"},
    {PF_Cmd_RENDER, "RENDER"},
    {PF_Cmd_SMART_PRE_RENDER, "SMART_PRE_RENDER"},
    {PF_Cmd_SMART_RENDER, "SMART_RENDER"},
    {PF_Cmd_FRAME_SETDOWN, "FRAME_SETDOWN"},
    {PF_Cmd_SEQUENCE_SETDOWN, "SEQUENCE_SETDOWN"},
    {PF_Cmd_GLOBAL_SETDOWN, "GLOBAL_SETDOWN"},
};

bool isPlace(PF_Cmd command, const PF_InData& in) {
    constexpr A_long kMarkedFrame = 5;
    if (command == PF_Cmd_FRAME_SETUP && in.current_time == kMarkedFrame * in.time_step && isPlace("frame5"))
        return true;
    for (const Command& known : kCommands)
        if (known.command == command && isPlace(known.name)) return true;
    return false;
}

bool isSmart() {
    return isPlace("SMART_PRE_RENDER") || isPlace("SMART_RENDER") || isPlace("deleting");
}

bool isSaved() {
    return isPlace("SEQUENCE_FLATTEN") || isPlace("SEQUENCE_RESETUP");
}

PF_Err declare(const Scene& scene) {
    scene.out->my_version = PF_VERSION(1, 0, 0, PF_Stage_DEVELOP, 1);
    if (isSmart()) scene.out->out_flags2 = PF_OutFlag2_SUPPORTS_SMART_RENDER;
    if (isSaved()) scene.out->out_flags = PF_OutFlag_SEQUENCE_DATA_NEEDS_FLATTENING;
    return PF_Err_NONE;
}

PF_Err declareParameters(const Scene& scene) {
    scene.out->num_params = 1;
    const bool isArbitrary = isPlace("ARBITRARY_CALLBACK");
    if (!isArbitrary && !isPlace("USER_CHANGED_PARAM") && !isPlace("UPDATE_PARAMS_UI")) return PF_Err_NONE;
    scene.out->num_params = 2;
    PF_ParamDef definition = plainParameter(isArbitrary ? PF_Param_ARBITRARY_DATA : PF_Param_CHECKBOX);
    definition.flags = PF_ParamFlag_SUPERVISE;
    if (isArbitrary) definition.u.arb_d.dephault = newHandle(scene);
    return scene.in->inter.add_param(scene.in->effect_ref, -1, &definition);
}

void doItWhereKept(void*) {
    doIt({});
}

PF_Err preRender(const PF_PreRenderExtra& extra) {
    static char kept = 0;
    extra.output->result_rect = extra.output->max_result_rect = extra.input->output_request.rect;
    if (isPlace("deleting")) {
        extra.output->pre_render_data = &kept;
        extra.output->delete_pre_render_data_func = doItWhereKept;
    }
    return PF_Err_NONE;
}

PF_Err renderSmart(Scene& scene, const PF_SmartRenderExtra& extra) {
    if (const PF_Err code = extra.cb->checkout_output(scene.in->effect_ref, &scene.output)) return code;
    return render(scene);
}

PF_Err behave(PF_Cmd command, Scene& scene, void* extra) {
    switch (command) {
        case PF_Cmd_GLOBAL_SETUP:
            return declare(scene);
        case PF_Cmd_PARAMS_SETUP:
            return declareParameters(scene);
        case PF_Cmd_SEQUENCE_SETUP:
            if (isSaved()) scene.out->sequence_data = newHandle(scene);
            return PF_Err_NONE;
        case PF_Cmd_RENDER:
            return isSmart() ? PF_Err{PF_Err_NONE} : render(scene);
        case PF_Cmd_SMART_PRE_RENDER:
            return preRender(*static_cast<PF_PreRenderExtra*>(extra));
        case PF_Cmd_SMART_RENDER:
            return renderSmart(scene, *static_cast<PF_SmartRenderExtra*>(extra));
        default:
            return PF_Err_NONE;
    }
}

}  // namespace

extern "C" __attribute__((visibility("default"))) PF_Err PluginMain(PF_Cmd cmd, PF_InData* in,
                                                                    PF_OutData* out, PF_ParamDef* params[],
                                                                    PF_LayerDef* output, void* extra) {
    Scene scene{in, out, params, output};
    if (!isPlace(cmd, *in)) return behave(cmd, scene, extra);
    if (cmd == PF_Cmd_RENDER) {
        const PF_Err code = doIt(scene);
        return code == PF_Err_NONE ? behave(cmd, scene, extra) : code;
    }
    // The deed has the last word where it declares or keeps something.
    const PF_Err code = behave(cmd, scene, extra);
    return code == PF_Err_NONE ? doIt(scene) : code;
}

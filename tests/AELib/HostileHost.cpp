#include "HostileHost.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>

namespace {

constexpr A_long kAbsurdExtents[] = {INT32_MIN, -30000, -1, 0, 1 << 21, INT32_MAX};
constexpr A_long kAbsurdItems[] = {INT32_MIN, -1, 0, 2, 7, 8, INT32_MAX};
constexpr double kInfinity = std::numeric_limits<double>::infinity();
const double kAbsurdNumbers[] = {-1e300, -1, 0, 3, 50, 100, 201, -kInfinity, std::nan("")};
constexpr double kLargeNumbers[] = {1e9, 1e300, kInfinity};

bool IsDeep(const PF_LayerDef& world) {
    return (world.world_flags & PF_WorldFlag_DEEP) != 0;
}

}  // namespace

std::size_t Choices::below(std::size_t limit) {
    if (bytes.empty()) return random() % limit;
    const std::size_t value = bytes.front();
    bytes = bytes.subspan(1);
    return value % limit;
}

// What one command is called with.
struct HostileHost::Call {
    PF_InData* in;
    PF_OutData* out;
    std::vector<PF_ParamDef*> pointers;
    PF_ParamDef** params;
    PF_LayerDef* output;
    void* extra;
};

HostileHost::HostileHost(PF_EntryPoint entryPoint, Choices& choices)
    : RecordingHost(entryPoint), choices(choices), allUtils(utils), allInteractions(in.inter) {
    const bool deep = choices.oneIn(2);
    for (const auto& [width, height] : {std::pair{7, 5}, std::pair{9, 6}, std::pair{1, 1}})
        pictures.push_back(std::make_unique<HostWorld>(width, height, deep));
    controlPicture = std::make_unique<HostWorld>(4, 6, deep);
}

void HostileHost::makeHandles() {
    for (const A_u_longlong size : {0U, 1U, 4U, 8U, 16U})
        known.push_back(newHandle(size));
    const PF_Handle garbage = newHandle(32);
    std::memset(*garbage, 0x41, 32);
    const PF_Handle withoutBlock = newHandle(8);
    *withoutBlock = nullptr;
    known.insert(known.end(), {garbage, withoutBlock});
}

// Mostly what a host would send next, as else no frame would ever be rendered.
PF_Cmd HostileHost::chooseCommand() {
    if (!choices.oneIn(4)) {
        if (!isAlive(global)) return PF_Cmd_GLOBAL_SETUP;
        if (!hasParams) return PF_Cmd_PARAMS_SETUP;
        if (sequence == nullptr) return PF_Cmd_SEQUENCE_SETUP;
    }
    if (following > PF_Cmd_FRAME_SETUP && following <= PF_Cmd_FRAME_SETDOWN && !choices.oneIn(8))
        return following++;
    following = -1;
    constexpr PF_Cmd kCommands[] = {PF_Cmd_GLOBAL_SETUP,     PF_Cmd_GLOBAL_SETDOWN,   PF_Cmd_PARAMS_SETUP,
                                    PF_Cmd_SEQUENCE_SETUP,   PF_Cmd_SEQUENCE_RESETUP, PF_Cmd_SEQUENCE_FLATTEN,
                                    PF_Cmd_SEQUENCE_SETDOWN, PF_Cmd_FRAME_SETUP,      PF_Cmd_RENDER,
                                    PF_Cmd_FRAME_SETDOWN};
    switch (choices.below(6)) {
        case 0:
            return static_cast<PF_Cmd>(choices.below(34)) - 1;
        case 1:
        case 2:
            following = PF_Cmd_RENDER;
            return PF_Cmd_FRAME_SETUP;
        default:
            return choices.of(kCommands);
    }
}

PF_Handle HostileHost::chooseHandle(PF_Handle usual) {
    if (!choices.oneIn(6)) return usual;
    if (choices.oneIn(6)) return nullptr;
    if (usual != nullptr && isAlive(usual) && choices.oneIn(6)) {
        const auto size = static_cast<std::size_t>(utils.host_get_handle_size(usual));
        if (choices.oneIn(2)) {
            if (*usual != nullptr) std::memset(*usual, 0, size);  // cleared
            return usual;
        }
        const PF_Handle copy = newHandle(size);
        if (*usual != nullptr) std::copy_n(*usual, size, *copy);
        known.push_back(copy);
        return copy;
    }
    return choices.of(known);
}

// In every extent that is possible, the picture lies within its memory.
PF_LayerDef HostileHost::chooseWorld() {
    PF_LayerDef world = choices.of(pictures)->def;
    if (!choices.oneIn(3)) return world;
    const A_long rowSize = world.width * (IsDeep(world) ? 8 : 4);
    const A_long shortRows[] = {0, 1, -1, -4, rowSize - 1, 1 - rowSize, rowSize + 1, INT32_MIN};
    switch (choices.below(7)) {
        case 0:
            world.width = choices.of(kAbsurdExtents);
            break;
        case 1:
            world.height = choices.of(kAbsurdExtents);
            break;
        case 2:
            world.width = choices.of(kAbsurdExtents);
            world.height = choices.of(kAbsurdExtents);
            break;
        case 3:
            world.width = 0;
            world.height = INT32_MAX;
            break;
        case 4:
            world.data = nullptr;
            break;
        case 5:
            world.rowbytes = choices.of(shortRows);
            break;
        default:
            world.world_flags ^= PF_WorldFlag_DEEP;
            break;
    }
    return world;
}

void HostileHost::bendValues() {
    if (params.size() < 2) return;
    PF_ParamDef& value = params[1 + choices.below(params.size() - 1)];
    if (choices.oneIn(8)) value.param_type = static_cast<PF_ParamType>(choices.below(21)) - 1;
    switch (value.param_type) {
        case PF_Param_POPUP:
            value.u.pd.value = choices.of(kAbsurdItems);
            break;
        case PF_Param_FLOAT_SLIDER:
            // As a radius a large number would take a gigabyte of tables.
            value.u.fs_d.value = choices.oneIn(4) && value.u.fs_d.valid_max <= 100
                                     ? choices.of(kLargeNumbers)
                                     : choices.of(kAbsurdNumbers);
            break;
        default:
            value.u.sd.value = choices.of(kAbsurdItems);
            break;
    }
}

void HostileHost::bendCallbacks() {
    constexpr PF_Err kErrors[] = {1, 87, 517, 999, -1, INT32_MIN};
    constexpr A_long kIterations[] = {0, -1, 1, INT32_MAX, INT32_MIN};
    switch (choices.below(8)) {
        case 0:
            failures.at(static_cast<Callback>(choices.below(static_cast<std::size_t>(Callback::kCount))),
                        1 + static_cast<int>(choices.below(3)), choices.of(kErrors));
            break;
        case 1:
            toldIterations = choices.of(kIterations);
            break;
        case 2:
            toldIndex = choices.of(kIterations);
            break;
        case 3:
            utils.get_pixel_data8 = nullptr;
            utils.new_world = nullptr;
            utils.dispose_world = nullptr;
            break;
        case 4:
            utils.get_pixel_data16 = nullptr;
            utils.transform_world = nullptr;
            utils.blend = nullptr;
            break;
        case 5:
            in.inter.checkout_param = nullptr;
            in.inter.checkin_param = nullptr;
            break;
        case 6:
            in.inter.abort = nullptr;
            in.inter.progress = nullptr;
            in.inter.add_param = nullptr;
            break;
        default:
            utils.ansi.sprintf = nullptr;
            utils.host_resize_handle = nullptr;
            break;
    }
}

void HostileHost::bendRecords(Call& call) {
    switch (choices.below(10)) {
        case 0:
            call.in = nullptr;
            break;
        case 1:
            call.out = nullptr;
            break;
        case 2:
            call.params = nullptr;
            break;
        case 3:
            call.pointers[choices.below(call.pointers.size())] = nullptr;
            break;
        case 4:
            call.output = nullptr;
            break;
        case 5:
            in.utils = nullptr;
            break;
        case 6:
            in.pica_basicP = nullptr;
            break;
        case 7:
            in.version = choices.oneIn(2) ? PF_SpecVersion{12, 10} : PF_SpecVersion{INT16_MIN, INT16_MAX};
            break;
        case 8:
            in.output_origin_x = choices.of(kAbsurdItems);
            in.output_origin_y = choices.of(kAbsurdItems);
            in.downsample_x = {choices.of(kAbsurdItems), static_cast<A_u_long>(choices.below(2))};
            in.pixel_aspect_ratio = {choices.of(kAbsurdItems), static_cast<A_u_long>(choices.below(2))};
            break;
        default:
            in.current_time = in.time_step = in.local_time_step = choices.of(kAbsurdItems);
            in.time_scale = 0;
            break;
    }
}

PF_Err HostileHost::send(PF_Cmd command, bool bent) {
    log.clear();
    failures.clear();
    toldIterations.reset();
    toldIndex.reset();
    utils = allUtils;
    in.inter = allInteractions;
    in.utils = &utils;
    in.pica_basicP = &basic;
    in.version = {PF_INTERFACE_MAJOR, PF_INTERFACE_MINOR};
    in.output_origin_x = in.output_origin_y = 0;
    in.downsample_x = in.pixel_aspect_ratio = {1, 1};
    params = defaults;
    threads = 1;

    params.front().u.ld = bent ? chooseWorld() : pictures.front()->def;
    outputDef = bent ? chooseWorld() : pictures.front()->def;
    if (bent) controlPicture->def = chooseWorld();
    control = bent && choices.oneIn(5) ? nullptr : controlPicture.get();
    in.global_data = bent ? chooseHandle(global) : global;
    in.sequence_data = bent ? chooseHandle(sequence) : sequence;
    in.frame_data = bent ? chooseHandle(frame) : frame;
    out = PF_OutData{};
    out.global_data = in.global_data;
    out.sequence_data = in.sequence_data;
    out.frame_data = in.frame_data;

    Call call{&in, &out, paramPointers(), nullptr, &outputDef, nullptr};
    call.params = call.pointers.data();
    for (int bends = bent ? static_cast<int>(choices.below(3)) : 0; bends > 0; --bends)
        bendValues();
    if (bent && choices.oneIn(4)) bendCallbacks();
    if (bent && choices.oneIn(4)) bendRecords(call);

    // Asked before the call, as the plug-in's new handle may get the address of one that was freed.
    const PF_Handle flat = isAlive(in.sequence_data) ? in.sequence_data : nullptr;
    const PF_Err result = entryPoint(command, call.in, call.out, call.params, call.output, call.extra);
    judge(command, result, call.out != nullptr);
    if (call.in != nullptr && call.out != nullptr) keepHandles(command, result, flat);
    return result;
}

// As a host does; and it frees the flat handle that a sequence was rebuilt from.
void HostileHost::keepHandles(PF_Cmd command, PF_Err result, PF_Handle flat) {
    const auto keep = [this](PF_Handle& kept, PF_Handle given) {
        kept = given;
        if (given != nullptr) known.push_back(given);
    };
    if (command == PF_Cmd_GLOBAL_SETUP) hasParams = false;
    if (command == PF_Cmd_PARAMS_SETUP && result == PF_Err_NONE) hasParams = true;
    if (command == PF_Cmd_GLOBAL_SETUP || command == PF_Cmd_GLOBAL_SETDOWN) keep(global, out.global_data);
    if (command >= PF_Cmd_SEQUENCE_SETUP && command <= PF_Cmd_SEQUENCE_SETDOWN)
        keep(sequence, out.sequence_data);
    if (command == PF_Cmd_FRAME_SETUP || command == PF_Cmd_FRAME_SETDOWN) keep(frame, out.frame_data);
    if (command == PF_Cmd_SEQUENCE_RESETUP && result == PF_Err_NONE && flat != nullptr)
        allUtils.host_dispose_handle(flat);
}

void HostileHost::judge(PF_Cmd command, PF_Err result, bool hasMessage) {
    const auto complain = [&](const std::string& what) {
        wrong +=
            "command " + std::to_string(command) + ", result " + std::to_string(result) + ": " + what + '\n';
    };
    const std::string text = hasMessage ? message() : "";
    const bool isSilent = result == PF_Err_NONE || result == PF_Interrupt_CANCEL;
    if (hasMessage && isSilent && !text.empty() && command != PF_Cmd_ABOUT) complain(text);
    if (hasMessage && !isSilent && !text.starts_with("Error ") &&
        !text.starts_with("Assert Failure - file: "))
        complain("no message");
    for (const auto& picture : pictures) {
        if (!picture->guardsAreIntact()) complain("written outside a picture");
    }
    if (!isSilent) ++refusals;
    if (command == PF_Cmd_RENDER && result == PF_Err_NONE) ++renders;
}

std::string HostileHost::run(int count) {
    makeHandles();
    defaults.resize(1);
    send(PF_Cmd_GLOBAL_SETUP, false);
    send(PF_Cmd_PARAMS_SETUP, false);
    adoptDeclaredParams();
    defaults = params;
    for (int i = 0; i < count && wrong.empty(); ++i)
        send(chooseCommand(), choices.oneIn(2));
    // The plug-in must not keep the suites of this host.
    if (!isAlive(global) || send(PF_Cmd_GLOBAL_SETDOWN, false) != PF_Err_NONE) {
        send(PF_Cmd_GLOBAL_SETUP, false);
        send(PF_Cmd_GLOBAL_SETDOWN, false);
    }
    return wrong;
}

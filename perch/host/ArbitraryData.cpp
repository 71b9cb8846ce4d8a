#include "ArbitraryData.h"

#include <fmt/format.h>

#include <algorithm>

#include "Error.h"
#include "Host.h"
#include "PF_Values.h"

namespace perch {
namespace {

// More is a mistake in the effect.
constexpr A_u_long kLargestSize = 1U << 28;

constexpr std::byte kGuard{0xA5};

// Zeros for the effect to write into, and behind them a few bytes that it must leave alone.
std::vector<std::byte> guardedRoom(A_u_long size) {
    constexpr std::size_t kGuardSize = 16;
    std::vector<std::byte> room(size);
    room.resize(size + kGuardSize, kGuard);
    return room;
}

}  // namespace

bool isArbitrary(const Parameter& parameter) {
    return parameter.definition.param_type == PF_Param_ARBITRARY_DATA;
}

PF_ArbParamsExtra ArbitraryData::request(PF_FunctionSelector function) const {
    PF_ArbParamsExtra extra{};
    extra.which_function = function;
    extra.id = parameter.definition.u.arb_d.id;
    // It is first in every member of the union.
    extra.u.new_func_params.refconPV = parameter.definition.u.arb_d.refconPV;
    return extra;
}

void ArbitraryData::send(PF_ArbParamsExtra& extra, const char* function) {
    Call call{.command = PF_Cmd_ARBITRARY_CALLBACK, .extra = &extra};
    host.send(call);
    if (call.code != PF_Err_NONE && resultOf(call).message.empty() && call.refusal.empty())
        call.refusal = fmt::format("{} of parameter {}", function, parameter.index);
    host.throwIfFailed(call);
}

// Leaves of a guarded room what the effect was to write.
void ArbitraryData::cutGuard(std::vector<std::byte>& room, A_u_long size, const char* function) {
    if (std::any_of(room.begin() + size, room.end(), [](std::byte b) { return b != kGuard; }))
        host.ledger.fault(function, fmt::format("bytes behind the {} that it asked for were written", size));
    room.resize(size);
}

// A value that the effect has made. Without one there is nothing to go on with.
PF_ArbitraryH ArbitraryData::checked(PF_ArbitraryH made, PF_ArbitraryH from, const char* function) {
    if (made == nullptr || !host.handles.isLive(made))
        throw EffectFault(fmt::format("{} made no value of parameter {}, \"{}\"", function, parameter.index,
                                      parameter.name));
    if (made == from)
        host.ledger.fault(function,
                          fmt::format("parameter {}: the copy is the value itself", parameter.index));
    return made;
}

PF_ArbitraryH ArbitraryData::makeDefault() {
    if (const PF_ArbitraryH declared = parameter.definition.u.arb_d.dephault) return copy(declared);
    PF_ArbParamsExtra extra = request(PF_Arbitrary_NEW_FUNC);
    PF_ArbitraryH made = nullptr;
    extra.u.new_func_params.arbPH = &made;
    send(extra, "NEW_FUNC");
    return checked(made, nullptr, "NEW_FUNC");
}

PF_ArbitraryH ArbitraryData::copy(PF_ArbitraryH value) {
    PF_ArbParamsExtra extra = request(PF_Arbitrary_COPY_FUNC);
    PF_ArbitraryH made = nullptr;
    extra.u.copy_func_params.src_arbH = value;
    extra.u.copy_func_params.dst_arbPH = &made;
    send(extra, "COPY_FUNC");
    return checked(made, value, "COPY_FUNC");
}

void ArbitraryData::dispose(PF_ArbitraryH value) {
    if (value == nullptr) return;
    if (!host.handles.isLive(value)) {
        host.ledger.fault("DISPOSE_FUNC", fmt::format("the value of parameter {} is gone before it was to be "
                                                      "disposed of",
                                                      parameter.index));
        return;
    }
    PF_ArbParamsExtra extra = request(PF_Arbitrary_DISPOSE_FUNC);
    extra.u.dispose_func_params.arbH = value;
    Call call{.command = PF_Cmd_ARBITRARY_CALLBACK, .extra = &extra};
    host.send(call);
    host.reportFailedTearDown(call);
    if (host.handles.isLive(value))
        host.ledger.fault("DISPOSE_FUNC",
                          fmt::format("the handle of parameter {} was not disposed of", parameter.index));
}

std::vector<std::byte> ArbitraryData::flatten(PF_ArbitraryH value) {
    A_u_long size = 0;
    PF_ArbParamsExtra sizeOf = request(PF_Arbitrary_FLAT_SIZE_FUNC);
    sizeOf.u.flat_size_func_params.arbH = value;
    sizeOf.u.flat_size_func_params.flat_data_sizePLu = &size;
    send(sizeOf, "FLAT_SIZE_FUNC");
    if (size > kLargestSize) throw EffectFault(fmt::format("FLAT_SIZE_FUNC asks for {} bytes", size));
    std::vector<std::byte> bytes = guardedRoom(size);
    PF_ArbParamsExtra extra = request(PF_Arbitrary_FLATTEN_FUNC);
    extra.u.flatten_func_params.arbH = value;
    extra.u.flatten_func_params.buf_sizeLu = size;
    extra.u.flatten_func_params.flat_dataPV = bytes.data();
    send(extra, "FLATTEN_FUNC");
    cutGuard(bytes, size, "FLATTEN_FUNC");
    return bytes;
}

PF_ArbitraryH ArbitraryData::unflatten(std::span<const std::byte> bytes) {
    PF_ArbParamsExtra extra = request(PF_Arbitrary_UNFLATTEN_FUNC);
    PF_ArbitraryH made = nullptr;
    extra.u.unflatten_func_params.buf_sizeLu = static_cast<A_u_long>(bytes.size());
    extra.u.unflatten_func_params.flat_dataPV = bytes.data();
    extra.u.unflatten_func_params.arbPH = &made;
    send(extra, "UNFLATTEN_FUNC");
    return checked(made, nullptr, "UNFLATTEN_FUNC");
}

PF_ArbCompareResult ArbitraryData::compare(PF_ArbitraryH a, PF_ArbitraryH b) {
    PF_ArbParamsExtra extra = request(PF_Arbitrary_COMPARE_FUNC);
    PF_ArbCompareResult result = PF_ArbCompare_NOT_EQUAL;
    extra.u.compare_func_params.a_arbH = a;
    extra.u.compare_func_params.b_arbH = b;
    extra.u.compare_func_params.compareP = &result;
    send(extra, "COMPARE_FUNC");
    if (result < PF_ArbCompare_EQUAL || result > PF_ArbCompare_NOT_EQUAL)
        host.ledger.fault("COMPARE_FUNC", fmt::format("{} is not one of the answers", result));
    return result;
}

PF_ArbitraryH ArbitraryData::interpolate(PF_ArbitraryH left, PF_ArbitraryH right, double share) {
    PF_ArbParamsExtra extra = request(PF_Arbitrary_INTERP_FUNC);
    PF_ArbitraryH made = nullptr;
    extra.u.interp_func_params.left_arbH = left;
    extra.u.interp_func_params.right_arbH = right;
    extra.u.interp_func_params.tF = share;
    extra.u.interp_func_params.interpPH = &made;
    send(extra, "INTERP_FUNC");
    return checked(made, left, "INTERP_FUNC");
}

std::string ArbitraryData::print(PF_ArbitraryH value) {
    A_u_long size = 0;
    PF_ArbParamsExtra sizeOf = request(PF_Arbitrary_PRINT_SIZE_FUNC);
    sizeOf.u.print_size_func_params.arbH = value;
    sizeOf.u.print_size_func_params.print_sizePLu = &size;
    send(sizeOf, "PRINT_SIZE_FUNC");
    if (size > kLargestSize) throw EffectFault(fmt::format("PRINT_SIZE_FUNC asks for {} bytes", size));
    std::vector<std::byte> bytes = guardedRoom(size);
    PF_ArbParamsExtra extra = request(PF_Arbitrary_PRINT_FUNC);
    extra.u.print_func_params.print_flags = PF_ArbPrint_NONE;
    extra.u.print_func_params.arbH = value;
    extra.u.print_func_params.print_sizeLu = size;
    extra.u.print_func_params.print_bufferPC = reinterpret_cast<A_char*>(bytes.data());
    send(extra, "PRINT_FUNC");
    cutGuard(bytes, size, "PRINT_FUNC");
    // Zero-terminated or not.
    const auto end = std::ranges::find(bytes, std::byte{0});
    return {reinterpret_cast<const char*>(bytes.data()), static_cast<std::size_t>(end - bytes.begin())};
}

PF_ArbitraryH ArbitraryData::scan(const std::string& text) {
    PF_ArbParamsExtra extra = request(PF_Arbitrary_SCAN_FUNC);
    PF_ArbitraryH made = nullptr;
    extra.u.scan_func_params.bufPC = text.c_str();
    extra.u.scan_func_params.bytes_to_scanLu = static_cast<A_u_long>(text.size());
    extra.u.scan_func_params.arbPH = &made;
    send(extra, "SCAN_FUNC");
    return checked(made, nullptr, "SCAN_FUNC");
}

}  // namespace perch

// One parameter whose values only the effect understands: what a host has it do with them, each by a
// PF_Cmd_ARBITRARY_CALLBACK. Values are handles that the effect makes and disposes of; the host keeps them.
// Between other commands only. A function that the effect answers with an error throws as a command does.
#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <vector>

#include "PF_Arbitrary.h"
#include "Parameter.h"

namespace perch {

class Host;

bool isArbitrary(const Parameter& parameter);

class ArbitraryData {
public:
    // Both must outlive this.
    ArbitraryData(Host& host, const Parameter& parameter) : host(host), parameter(parameter) {}

    // A value of its own, as by default.
    PF_ArbitraryH makeDefault();
    PF_ArbitraryH copy(PF_ArbitraryH value);
    // A failure is a finding: there is nothing else to be done about it. Null is passed over.
    void dispose(PF_ArbitraryH value);

    std::vector<std::byte> flatten(PF_ArbitraryH value);
    PF_ArbitraryH unflatten(std::span<const std::byte> bytes);

    PF_ArbCompareResult compare(PF_ArbitraryH a, PF_ArbitraryH b);
    // `share` 0 is the left one, 1 the right one.
    PF_ArbitraryH interpolate(PF_ArbitraryH left, PF_ArbitraryH right, double share);

    std::string print(PF_ArbitraryH value);
    PF_ArbitraryH scan(const std::string& text);

private:
    PF_ArbParamsExtra request(PF_FunctionSelector function) const;
    void send(PF_ArbParamsExtra& extra, const char* function);
    void cutGuard(std::vector<std::byte>& room, A_u_long size, const char* function);
    PF_ArbitraryH checked(PF_ArbitraryH made, PF_ArbitraryH from, const char* function);

    Host& host;
    const Parameter& parameter;
};

}  // namespace perch

// Any parameters under any names, and any text as their values: options have names of their own, and a value
// that is accepted lies in the declared range.
#include <fuzzer/FuzzedDataProvider.h>

#include <algorithm>
#include <cstdlib>
#include <set>

#include "PF_Values.h"
#include "ParameterOptions.h"
#include "ParameterText.h"

namespace {

using perch::Parameter;

constexpr std::size_t kLongestText = 64;

void require(bool condition) {
    if (!condition) std::abort();
}

Parameter makeParameter(FuzzedDataProvider& input, PF_ParamIndex index) {
    Parameter parameter;
    parameter.index = index;
    parameter.definition.param_type = input.ConsumeIntegralInRange<PF_ParamType>(0, PF_Param_POINT_3D);
    parameter.name = input.ConsumeRandomLengthString(kLongestText);
    if (input.ConsumeBool()) {
        parameter.validRange = {input.ConsumeFloatingPoint<double>(), input.ConsumeFloatingPoint<double>()};
    }
    for (int count = input.ConsumeIntegralInRange(0, 4); count > 0; --count) {
        parameter.items.push_back(input.ConsumeRandomLengthString(kLongestText));
    }
    parameter.definition.u.pd.dephault = input.ConsumeIntegral<A_short>();
    return parameter;
}

bool isOptionName(const std::string& name) {
    const auto isAllowed = [](char c) {
        return (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '-';
    };
    return !name.empty() && name.front() != '-' && name.back() != '-' && std::ranges::all_of(name, isAllowed);
}

void requireWithinRange(const Parameter& parameter, double number) {
    const auto& range = parameter.validRange;
    if (range && range->minimum < range->maximum)
        require(number >= range->minimum && number <= range->maximum);
}

void requireValid(const Parameter& parameter, const PF_ParamDefUnion& value) {
    switch (parameter.definition.param_type) {
        case PF_Param_SLIDER:
            return requireWithinRange(parameter, value.sd.value);
        case PF_Param_FLOAT_SLIDER:
            return requireWithinRange(parameter, value.fs_d.value);
        case PF_Param_FIX_SLIDER:
            return requireWithinRange(parameter, value.fd.value / 65536.0);
        case PF_Param_POPUP:
            return require(value.pd.value >= 1 &&
                           static_cast<std::size_t>(value.pd.value) <= parameter.items.size());
        case PF_Param_CHECKBOX:
            return require(value.bd.value == 0 || value.bd.value == 1);
        default:
            return;
    }
}

void tryValue(const perch::ParameterOption& option, const std::string& text) {
    perch::ParameterValues values(static_cast<std::size_t>(option.parameter.index) + 1,
                                  option.parameter.definition);
    try {
        perch::applySetting(perch::requireSetting(option, text), values);
        requireValid(option.parameter, values.back().u);
    } catch (const perch::Error&) {
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    FuzzedDataProvider input(data, size);
    std::vector<Parameter> parameters;
    const auto count = input.ConsumeIntegralInRange<PF_ParamIndex>(1, 4);
    for (PF_ParamIndex index = 1; index <= count; ++index) {
        parameters.push_back(makeParameter(input, index));
    }
    const std::vector<std::string> reserved{"input", "output", input.ConsumeRandomLengthString(kLongestText)};
    std::set<std::string> names(reserved.begin(), reserved.end());
    for (const perch::ParameterOption& option : perch::parameterOptions(parameters, reserved)) {
        require(isOptionName(option.name));
        require(names.insert(option.name).second);
        perch::expectedValue(option.parameter);
        perch::defaultText(option.parameter);
        tryValue(option, input.ConsumeRandomLengthString(kLongestText));
    }
    return 0;
}

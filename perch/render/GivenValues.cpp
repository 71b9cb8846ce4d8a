#include "GivenValues.h"

#include <algorithm>
#include <utility>

#include "PF_Values.h"
#include "ParameterSetting.h"

namespace perch {
namespace {

bool isSupervised(const Parameter& parameter) {
    return (parameter.definition.flags & PF_ParamFlag_SUPERVISE) != 0;
}

}  // namespace

bool mayChangeValues(const EffectDescription& effect) {
    return std::ranges::any_of(effect.parameters, isSupervised) ||
           (effect.flags & PF_OutFlag_SEND_UPDATE_PARAMS_UI) != 0;
}

GivenValues::GivenValues(const Effect& effect, const std::vector<ParameterCurve>& curves,
                         std::set<PF_ParamIndex> layers, const PF_RationalScale& downsample)
    : effect(effect), curves(curves), layers(std::move(layers)), downsample(downsample) {}

void GivenValues::tell(Sequence& sequence, std::int32_t frame, const World& input) {
    if (!mayChangeValues(effect.description())) return;
    const ParameterValues given = at(frame, input);
    ParameterValues values = given;
    for (const Parameter& parameter : effect.description().parameters)
        if (isSupervised(parameter) && isSetByUser(parameter.index))
            sequence.userChangedParam(parameter.index, values);
    sequence.updateParamsUi(values);
    for (std::size_t index = 1; index < values.size(); ++index)
        if (!isSameValue(given[index], values[index])) changedByEffect[index] = values[index];
}

ParameterValues GivenValues::at(std::int32_t frame, const World& input) const {
    ParameterValues values = effect.defaultValues(input.width(), input.height());
    for (const auto& [index, value] : changedByEffect)
        takeValue(value, values[index]);
    for (const ParameterCurve& curve : curves)
        if (curve.moves() || !changedByEffect.contains(static_cast<std::size_t>(curve.index)))
            applySetting(settingAt(curve, frame), values, downsample);
    return values;
}

bool GivenValues::isSetByUser(PF_ParamIndex index) const {
    return layers.contains(index) || std::ranges::find(curves, index, &ParameterCurve::index) != curves.end();
}

}  // namespace perch

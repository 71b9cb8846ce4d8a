#include "SessionJson.h"

#include <fmt/format.h>

#include <algorithm>
#include <nlohmann/json.hpp>

#include "CurveText.h"
#include "Error.h"
#include "PF_Values.h"
#include "ParameterText.h"
#include "Preset.h"

namespace perch {
namespace {

using Json = nlohmann::ordered_json;

constexpr char kFocalPoint[] = "Focal Point";
constexpr char kControlLayer[] = "Control Layer";
constexpr char kControlChannel[] = "Control Channel";
constexpr char kInvertControl[] = "Invert Control";
constexpr char kViewMode[] = "View Mode";
constexpr char kFocus[] = "Focus";

std::string typeOf(const Parameter& parameter) {
    switch (parameter.definition.param_type) {
        case PF_Param_SLIDER:
        case PF_Param_FIX_SLIDER:
        case PF_Param_FLOAT_SLIDER:
            return "slider";
        case PF_Param_ANGLE:
            return "angle";
        case PF_Param_CHECKBOX:
            return "checkbox";
        case PF_Param_POPUP:
            return "popup";
        case PF_Param_COLOR:
            return "colour";
        case PF_Param_POINT:
        case PF_Param_POINT_3D:
            return "point";
        case PF_Param_LAYER:
            return "layer";
        case PF_Param_GROUP_START:
            return "group";
        case PF_Param_GROUP_END:
            return "group-end";
        case PF_Param_BUTTON:
            return "button";
        default:
            return "other";
    }
}

bool isSlider(const Parameter& parameter) {
    return typeOf(parameter) == "slider";
}

const ParameterOption* optionNamed(const LookReader& looks, const std::string& name) {
    const auto& options = looks.parameters();
    const auto found = std::ranges::find_if(
        options, [&](const ParameterOption& option) { return option.parameter.name == name; });
    return found != options.end() ? &*found : nullptr;
}

Json parameterJson(const Parameter& parameter, const LookReader& looks) {
    Json json{{"name", parameter.name}, {"type", typeOf(parameter)}};
    const auto isIt = [&](const ParameterOption& known) { return known.parameter.index == parameter.index; };
    for (const auto* const options : {&looks.parameters(), &looks.layers()}) {
        const auto option = std::ranges::find_if(*options, isIt);
        if (option == options->end()) continue;
        json["key"] = looks.keyOf(*option);
        json["option"] = option->name;
        if (!option->hint.empty()) json["hint"] = option->hint;
        json["default"] =
            looks.json(Look{.frame = looks.frameNumbers().front()})["parameters"][looks.keyOf(*option)];
    }
    if (parameter.validRange) {
        json["minimum"] = parameter.validRange->minimum;
        json["maximum"] = parameter.validRange->maximum;
    }
    if (const auto& range = parameter.sliderRange ? parameter.sliderRange : parameter.validRange) {
        json["sliderMinimum"] = range->minimum;
        json["sliderMaximum"] = range->maximum;
    }
    json["precision"] = parameter.precision;
    json["unit"] = parameter.isPercent ? "%" : "";
    if (!parameter.items.empty()) json["items"] = parameter.items;
    json["label"] = parameter.label;
    const PF_ParamUIFlags flags = parameter.definition.ui_flags;
    json["enabled"] = (flags & PF_PUI_DISABLED) == 0;
    json["visible"] = (flags & (PF_PUI_INVISIBLE | PF_PUI_NO_ECW_UI)) == 0;
    json["groupDepth"] = parameter.depth;
    return json;
}

const Parameter& parameterOf(const std::vector<Parameter>& parameters, PF_ParamIndex index) {
    return *std::ranges::find(parameters, index, &Parameter::index);
}

}  // namespace

nlohmann::ordered_json sessionJson(const EffectDescription& effect, const LookReader& looks,
                                   const std::optional<Pick>& pick) {
    const std::string name = effect.name.empty() ? effect.path.stem().string() : effect.name;
    Json json{{"effect", {{"name", name}, {"category", effect.category}}}};
    Json given = Json::array();
    for (const LayerWords& layer : looks.layerFiles())
        given.push_back(
            {{"parameter", parameterOf(effect.parameters, layer.index).name}, {"file", layer.picture}});
    json["layers"] = std::move(given);
    Json parameters = Json::array();
    for (const Parameter& parameter : effect.parameters)
        parameters.push_back(parameterJson(parameter, looks));
    json["parameters"] = std::move(parameters);
    json["pick"] = nullptr;
    if (pick) {
        json["pick"] = {{"layer", parameterOf(effect.parameters, pick->layer).name},
                        {"parameter", parameterOf(effect.parameters, pick->parameter).name}};
    }
    return json;
}

std::optional<Pick> usualPick(const LookReader& looks) {
    const std::vector<ParameterOption>& options = looks.parameters();
    const auto slider = std::ranges::find_if(
        options, [](const ParameterOption& option) { return isSlider(option.parameter); });
    const std::vector<LayerWords> files = looks.layerFiles();
    if (slider == options.end() || files.empty()) return std::nullopt;
    Pick pick{.layer = files.front().index, .parameter = slider->parameter.index};
    for (const ParameterOption& option : options)
        if (isSlider(option.parameter) && option.parameter.name == kFocalPoint)
            pick.parameter = option.parameter.index;
    for (const ParameterOption& option : looks.layers())
        if (option.parameter.name == kControlLayer) pick.layer = option.parameter.index;
    return pick;
}

std::string controlChannel(const Look& look, const LookReader& looks) {
    const ParameterOption* const option = optionNamed(looks, kControlChannel);
    if (option == nullptr || option->parameter.items.empty()) return "Luma";
    return valueText(option->parameter, settingAt(looks.curveOf(look, *option), look.frame));
}

double pickedValue(const Look& look, const LookReader& looks, const Pick& pick, double share) {
    const ParameterOption* const invert = optionNamed(looks, kInvertControl);
    const bool isInverted =
        invert != nullptr && settingAt(looks.curveOf(look, *invert), look.frame).numbers[0] != 0;
    const auto& options = looks.parameters();
    const auto option = std::ranges::find_if(
        options, [&](const ParameterOption& known) { return known.parameter.index == pick.parameter; });
    const Parameter::Range range = option->parameter.validRange.value_or(Parameter::Range{0, 100});
    return range.minimum + (isInverted ? 1 - share : share) * (range.maximum - range.minimum);
}

Look inFocusView(const Look& look, const LookReader& looks) {
    const ParameterOption* const option = optionNamed(looks, kViewMode);
    const std::optional<ParameterSetting> setting =
        option != nullptr ? parseSetting(option->parameter, kFocus) : std::nullopt;
    if (!setting) throw UsageError("the effect has no view of what is in focus");
    Look view = look;
    std::erase_if(view.curves, [&](const ParameterCurve& curve) { return curve.index == setting->index; });
    view.curves.push_back(constantCurve(*setting));
    return looks.tidied(std::move(view));
}

}  // namespace perch

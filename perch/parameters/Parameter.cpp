#include "Parameter.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>

#include "Error.h"
#include "PF_Values.h"

namespace perch {
namespace {

struct TypeName {
    PF_ParamType type;
    const char* name;
};

constexpr std::array kTypeNames{
    TypeName{PF_Param_LAYER, "layer"},
    TypeName{PF_Param_SLIDER, "slider"},
    TypeName{PF_Param_FIX_SLIDER, "fixed slider"},
    TypeName{PF_Param_ANGLE, "angle"},
    TypeName{PF_Param_CHECKBOX, "check box"},
    TypeName{PF_Param_COLOR, "color"},
    TypeName{PF_Param_POINT, "point"},
    TypeName{PF_Param_POPUP, "popup"},
    TypeName{PF_Param_CUSTOM, "custom"},
    TypeName{PF_Param_NO_DATA, "no data"},
    TypeName{PF_Param_FLOAT_SLIDER, "float slider"},
    TypeName{PF_Param_ARBITRARY_DATA, "arbitrary data"},
    TypeName{PF_Param_PATH, "path"},
    TypeName{PF_Param_GROUP_START, "group start"},
    TypeName{PF_Param_GROUP_END, "group end"},
    TypeName{PF_Param_BUTTON, "button"},
    TypeName{PF_Param_POINT_3D, "3D point"},
};

const char* typeName(PF_ParamType type) {
    const auto* found = std::find_if(kTypeNames.begin(), kTypeNames.end(),
                                     [type](const TypeName& known) { return known.type == type; });
    if (found == kTypeNames.end())
        throw EffectFault(fmt::format("parameter type {} is not one of the interface's", type));
    return found->name;
}

double fromFixed(PF_Fixed value) {
    return value / 65536.0;
}

std::string boundedText(const A_char* text, std::size_t room) {
    return {text, std::find(text, text + room, '\0')};
}

std::string textOrEmpty(const A_char* text) {
    return text != nullptr ? text : "";
}

std::vector<std::string> splitItems(const std::string& names) {
    std::vector<std::string> items;
    std::size_t begin = 0;
    while (begin <= names.size() && !names.empty()) {
        const std::size_t end = std::min(names.find('|', begin), names.size());
        items.push_back(names.substr(begin, end - begin));
        begin = end + 1;
    }
    return items;
}

// Both ranges, the default and the display of a slider whose numbers `convert` turns into the control's.
template <typename Definition, typename Convert>
void describeSlider(const Definition& slider, const Convert& convert, Parameter& parameter) {
    parameter.validRange = {convert(slider.valid_min), convert(slider.valid_max)};
    parameter.sliderRange = {convert(slider.slider_min), convert(slider.slider_max)};
    parameter.defaultNumber = convert(slider.dephault);
}

template <typename Definition>
void describeDisplay(const Definition& slider, Parameter& parameter) {
    parameter.precision = slider.precision;
    parameter.isPercent = (slider.display_flags & PF_ValueDisplayFlag_PERCENT) != 0;
}

void describeAngle(const PF_AngleDef& angle, Parameter& parameter) {
    // Most effects leave the range at zero, which sets no limit.
    if (angle.valid_min < angle.valid_max)
        parameter.validRange = {fromFixed(angle.valid_min), fromFixed(angle.valid_max)};
    parameter.defaultNumber = fromFixed(angle.dephault);
}

void describePopup(PF_PopupDef& popup, Parameter& parameter) {
    parameter.label = textOrEmpty(popup.u.namesptr);
    parameter.items = splitItems(parameter.label);
    parameter.validRange = {1.0, static_cast<double>(popup.num_choices)};
    parameter.defaultNumber = popup.dephault;
    popup.u.namesptr = nullptr;
}

void describeCheckBox(PF_CheckBoxDef& box, Parameter& parameter) {
    parameter.label = textOrEmpty(box.u.nameptr);
    parameter.validRange = {0.0, 1.0};
    parameter.defaultNumber = box.dephault;
    box.u.nameptr = nullptr;
}

}  // namespace

bool isLayer(const Parameter& parameter) {
    return parameter.definition.param_type == PF_Param_LAYER;
}

bool isCheckBox(const Parameter& parameter) {
    return parameter.definition.param_type == PF_Param_CHECKBOX;
}

bool isOfThisLayer(const Parameter& parameter) {
    return isLayer(parameter) && parameter.definition.u.ld.dephault == PF_LayerDefault_MYSELF;
}

bool isSeparator(const std::string& item) {
    return item.starts_with("(-");
}

// An end closes the nearest group that is open; one without a start closes none.
void nestInGroups(std::vector<Parameter>& parameters) {
    int depth = 0;
    for (Parameter& parameter : parameters) {
        if (parameter.definition.param_type == PF_Param_GROUP_END && depth > 0) --depth;
        parameter.depth = depth;
        if (parameter.definition.param_type == PF_Param_GROUP_START) ++depth;
    }
}

Parameter describeParameter(const PF_ParamDef& definition) {
    Parameter parameter;
    parameter.typeName = typeName(definition.param_type);
    parameter.name = boundedText(definition.name, sizeof definition.name);
    parameter.definition = definition;
    PF_ParamDefUnion& u = parameter.definition.u;
    switch (definition.param_type) {
        case PF_Param_SLIDER:
            describeSlider(
                u.sd, [](PF_ParamValue value) { return static_cast<double>(value); }, parameter);
            break;
        case PF_Param_FIX_SLIDER:
            describeSlider(u.fd, fromFixed, parameter);
            describeDisplay(u.fd, parameter);
            break;
        case PF_Param_FLOAT_SLIDER:
            describeSlider(
                u.fs_d, [](PF_FpShort value) { return static_cast<double>(value); }, parameter);
            describeDisplay(u.fs_d, parameter);
            break;
        case PF_Param_ANGLE:
            describeAngle(u.ad, parameter);
            break;
        case PF_Param_POPUP:
            describePopup(u.pd, parameter);
            break;
        case PF_Param_CHECKBOX:
            describeCheckBox(u.bd, parameter);
            break;
        case PF_Param_BUTTON:
            parameter.label = textOrEmpty(u.button_d.u.namesptr);
            u.button_d.u.namesptr = nullptr;
            break;
        default:
            break;
    }
    return parameter;
}

}  // namespace perch

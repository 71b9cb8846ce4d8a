// Reads parameter definitions: what an effect declared, in the terms that a user is shown.
#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <limits>

#include "Host.h"
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
        throw Error(fmt::format("parameter type {} is not one of the interface's", type));
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

// `percent` is 16.16 per cent of the extent; the result 16.16 pixels, held to what they reach.
PF_Fixed placeInLayer(PF_Fixed percent, std::int32_t extent) {
    using Limits = std::numeric_limits<PF_Fixed>;
    return static_cast<PF_Fixed>(
        std::clamp<std::int64_t>(std::int64_t{percent} * extent / 100, Limits::min(), Limits::max()));
}

void setToDefault(const Parameter& parameter, std::int32_t width, std::int32_t height, PF_ParamDef& value) {
    PF_ParamDefUnion& u = value.u;
    switch (value.param_type) {
        case PF_Param_LAYER:
            u.ld = {};
            break;
        case PF_Param_SLIDER:
            u.sd.value = u.sd.dephault;
            break;
        case PF_Param_FIX_SLIDER:
            u.fd.value = u.fd.dephault;
            break;
        case PF_Param_ANGLE:
            u.ad.value = u.ad.dephault;
            break;
        case PF_Param_CHECKBOX:
            u.bd.value = u.bd.dephault;
            u.bd.u.nameptr = parameter.label.c_str();
            break;
        case PF_Param_COLOR:
            u.cd.value = u.cd.dephault;
            break;
        case PF_Param_POINT:
            u.td.x_value = placeInLayer(u.td.x_dephault, width);
            u.td.y_value = placeInLayer(u.td.y_dephault, height);
            break;
        case PF_Param_POPUP:
            u.pd.value = u.pd.dephault;
            u.pd.u.namesptr = parameter.label.c_str();
            break;
        case PF_Param_FLOAT_SLIDER:
            u.fs_d.value = static_cast<double>(u.fs_d.dephault);
            break;
        case PF_Param_BUTTON:
            u.button_d.u.namesptr = parameter.label.c_str();
            break;
        case PF_Param_POINT_3D:
            u.point3d_d.x_value = u.point3d_d.x_dephault * width / 100.0;
            u.point3d_d.y_value = u.point3d_d.y_dephault * height / 100.0;
            u.point3d_d.z_value = u.point3d_d.z_dephault;
            break;
        default:
            break;
    }
}

}  // namespace

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

ParameterValues defaultParameterValues(const EffectDescription& description, std::int32_t width,
                                       std::int32_t height) {
    ParameterValues values(1);
    values[0].param_type = PF_Param_LAYER;
    for (const Parameter& parameter : description.parameters) {
        values.push_back(parameter.definition);
        setToDefault(parameter, width, height, values.back());
    }
    return values;
}

}  // namespace perch

#include "ParameterValues.h"

#include <algorithm>
#include <limits>

#include "PF_Values.h"

namespace perch {
namespace {

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
            u.point3d_d.z_value = u.point3d_d.z_dephault * height / 100.0;
            break;
        default:
            break;
    }
}

// Calls visit(a's member, b's member) for each number that makes up a value of the records' type.
template <typename A, typename B, typename F>
void forEachNumber(A& a, B& b, const F& visit) {
    switch (a.param_type) {
        case PF_Param_SLIDER:
            return visit(a.u.sd.value, b.u.sd.value);
        case PF_Param_FIX_SLIDER:
            return visit(a.u.fd.value, b.u.fd.value);
        case PF_Param_ANGLE:
            return visit(a.u.ad.value, b.u.ad.value);
        case PF_Param_CHECKBOX:
            return visit(a.u.bd.value, b.u.bd.value);
        case PF_Param_POPUP:
            return visit(a.u.pd.value, b.u.pd.value);
        case PF_Param_FLOAT_SLIDER:
            return visit(a.u.fs_d.value, b.u.fs_d.value);
        case PF_Param_COLOR:
            visit(a.u.cd.value.alpha, b.u.cd.value.alpha);
            visit(a.u.cd.value.red, b.u.cd.value.red);
            visit(a.u.cd.value.green, b.u.cd.value.green);
            return visit(a.u.cd.value.blue, b.u.cd.value.blue);
        case PF_Param_POINT:
            visit(a.u.td.x_value, b.u.td.x_value);
            return visit(a.u.td.y_value, b.u.td.y_value);
        case PF_Param_POINT_3D:
            visit(a.u.point3d_d.x_value, b.u.point3d_d.x_value);
            visit(a.u.point3d_d.y_value, b.u.point3d_d.y_value);
            return visit(a.u.point3d_d.z_value, b.u.point3d_d.z_value);
        default:
            return;
    }
}

}  // namespace

// A value that is not a number is not the same as itself, and so is taken for a change.
bool isSameValue(const PF_ParamDef& a, const PF_ParamDef& b) {
    bool isSame = true;
    forEachNumber(a, b, [&](const auto& x, const auto& y) { isSame = isSame && x == y; });
    return isSame;
}

void takeValue(const PF_ParamDef& from, PF_ParamDef& to) {
    forEachNumber(from, to, [](const auto& x, auto& y) { y = x; });
}

ParameterValues defaultParameterValues(const std::vector<Parameter>& parameters, std::int32_t width,
                                       std::int32_t height) {
    ParameterValues values(1);
    values[0].param_type = PF_Param_LAYER;
    for (const Parameter& parameter : parameters) {
        values.push_back(parameter.definition);
        setToDefault(parameter, width, height, values.back());
    }
    return values;
}

}  // namespace perch

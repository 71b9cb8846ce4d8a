#include "ParameterSetting.h"

#include <cmath>

#include "PF_Values.h"

namespace perch {
namespace {

PF_Fixed toFixed(double number) {
    constexpr double kFixedOne = 65536.0;
    return static_cast<PF_Fixed>(std::lround(number * kFixedOne));
}

PF_ParamValue toWhole(double number) {
    return static_cast<PF_ParamValue>(std::lround(number));
}

A_u_char toByte(double number) {
    return static_cast<A_u_char>(std::lround(number));
}

}  // namespace

void applySetting(const ParameterSetting& setting, ParameterValues& values,
                  const PF_RationalScale& downsample) {
    const auto scaled = [&](double pixels) { return pixels * downsample.num / downsample.den; };
    PF_ParamDef& value = values.at(static_cast<std::size_t>(setting.index));
    PF_ParamDefUnion& u = value.u;
    const auto& [first, second, third, fourth] = setting.numbers;
    switch (value.param_type) {
        case PF_Param_SLIDER:
            u.sd.value = toWhole(first);
            break;
        case PF_Param_FIX_SLIDER:
            u.fd.value = toFixed(first);
            break;
        case PF_Param_ANGLE:
            u.ad.value = toFixed(first);
            break;
        case PF_Param_CHECKBOX:
            u.bd.value = toWhole(first);
            break;
        case PF_Param_COLOR:
            u.cd.value = {toByte(fourth), toByte(first), toByte(second), toByte(third)};
            break;
        case PF_Param_POINT:
            u.td.x_value = toFixed(scaled(first));
            u.td.y_value = toFixed(scaled(second));
            break;
        case PF_Param_POPUP:
            u.pd.value = toWhole(first);
            break;
        case PF_Param_FLOAT_SLIDER:
            u.fs_d.value = first;
            break;
        case PF_Param_POINT_3D:
            u.point3d_d.x_value = scaled(first);
            u.point3d_d.y_value = scaled(second);
            u.point3d_d.z_value = scaled(third);
            break;
        default:
            break;
    }
}

}  // namespace perch

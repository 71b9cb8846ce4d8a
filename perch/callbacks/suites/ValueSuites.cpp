// Values of parameters as floating-point numbers, and the name of the options button.
#include <fmt/format.h>

#include <algorithm>

#include "CallGuard.h"
#include "PF_ValueSuites.h"
#include "SuiteEntry.h"

namespace perch {
namespace {

// Serves a call that reads a definition of one type.
template <typename T, typename F>
PF_Err answerFrom(const char* callback, PF_ProgPtr effectRef, PF_ParamType type,
                  const PF_ParamDef* definition, T* value, const F& read) {
    return answer(callback, Caller::AnyThread, effectRef, [&](Host&) -> PF_Err {
        if (definition == nullptr || value == nullptr || definition->param_type != type)
            return PF_Err_BAD_CALLBACK_PARAM;
        *value = read(definition->u);
        return PF_Err_NONE;
    });
}

PF_Err floatColor(PF_ProgPtr effectRef, const PF_ParamDef* definition, PF_PixelFloat* color) {
    return answerFrom("PF_GetFloatingPointColorFromColorDef", effectRef, PF_Param_COLOR, definition, color,
                      [](const PF_ParamDefUnion& u) -> PF_PixelFloat {
                          const auto channel = [](A_u_char value) { return static_cast<float>(value) / 255; };
                          const PF_Pixel& c = u.cd.value;
                          return {channel(c.alpha), channel(c.red), channel(c.green), channel(c.blue)};
                      });
}

PF_Err floatPoint(PF_ProgPtr effectRef, const PF_ParamDef* definition, A_FloatPoint* point) {
    return answerFrom("PF_GetFloatingPointValueFromPointDef", effectRef, PF_Param_POINT, definition, point,
                      [](const PF_ParamDefUnion& u) -> A_FloatPoint {
                          return {u.td.x_value / 65536.0, u.td.y_value / 65536.0};
                      });
}

PF_Err floatAngle(PF_ProgPtr effectRef, const PF_ParamDef* definition, A_FpLong* degrees) {
    return answerFrom("PF_GetFloatingPointValueFromAngleDef", effectRef, PF_Param_ANGLE, definition, degrees,
                      [](const PF_ParamDefUnion& u) { return u.ad.value / 65536.0; });
}

// There is no button; the name is checked and forgotten.
PF_Err setOptionsButtonName(PF_ProgPtr effectRef, const A_char* name) {
    const char* const callback = "PF_SetOptionsButtonName";
    return answer(callback, Caller::MainThread, effectRef, [&](Host& host) -> PF_Err {
        constexpr std::ptrdiff_t kMost = 31;
        if (name == nullptr) return PF_Err_BAD_CALLBACK_PARAM;
        if (!host.isDuring(PF_Cmd_PARAMS_SETUP)) {
            host.refuse(callback, "the button is named at PARAMS_SETUP only");
            return PF_Err_INVALID_CALLBACK;
        }
        if (std::find(name, name + kMost + 1, '\0') == name + kMost + 1) {
            host.refuse(callback, fmt::format("the name is longer than {} characters", kMost));
            return PF_Err_BAD_CALLBACK_PARAM;
        }
        return PF_Err_NONE;
    });
}

}  // namespace

std::span<const SuiteEntry> valueSuites() {
    static PF_EffectUISuite1 button{setOptionsButtonName};
    static PF_ColorParamSuite1 colors{floatColor};
    static PF_PointParamSuite1 points{floatPoint};
    static PF_AngleParamSuite1 angles{floatAngle};
    static const SuiteEntry entries[] = {
        {"PF Effect UI Suite", 1, &button},
        {"PF ColorParamSuite", 1, &colors},
        {"PF PointParamSuite", 1, &points},
        {"PF AngleParamSuite", 1, &angles},
    };
    return entries;
}

}  // namespace perch

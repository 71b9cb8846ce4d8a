#include "ParameterCurve.h"

#include <algorithm>
#include <iterator>

namespace perch {
namespace {

using Kind = ParameterKey::Kind;

// How far the value has come from one key to the next, 0 to 1, at `t` of the way in time: the cubic with the
// given slopes at its ends, which for slopes of 0 and 1 never turns back.
double progress(double t, Kind from, Kind to) {
    if (from == Kind::Hold) return 0;
    if (from == Kind::Linear && to != Kind::Smooth) return t;
    const double startSlope = from == Kind::Smooth ? 0 : 1;
    const double endSlope = to == Kind::Smooth ? 0 : 1;
    const double rest = 1 - t;
    return std::clamp(t * t * (3 - 2 * t) + startSlope * t * rest * rest - endSlope * t * t * rest, 0.0, 1.0);
}

double between(double a, double b, double progress) {
    const auto [least, most] = std::minmax(a, b);
    return std::clamp(a + (b - a) * progress, least, most);
}

}  // namespace

bool glides(const ParameterCurve& curve) {
    const auto isSpan = [](const ParameterKey& from, const ParameterKey& to) {
        return from.kind != Kind::Hold && from.numbers != to.numbers;
    };
    return std::ranges::adjacent_find(curve.keys, isSpan) != curve.keys.end();
}

ParameterCurve constantCurve(const ParameterSetting& setting) {
    return {setting.index, {{.frame = 0, .numbers = setting.numbers, .kind = Kind::Hold}}};
}

ParameterSetting settingAt(const ParameterCurve& curve, std::int32_t frame) {
    const auto next = std::ranges::upper_bound(curve.keys, frame, {}, &ParameterKey::frame);
    if (next == curve.keys.begin()) return {curve.index, next->numbers};
    const ParameterKey& from = *std::prev(next);
    ParameterSetting setting{curve.index, from.numbers};
    if (next == curve.keys.end()) return setting;
    const auto distanceTo = [&](std::int32_t end) { return static_cast<double>(end) - from.frame; };
    const double share = progress(distanceTo(frame) / distanceTo(next->frame), from.kind, next->kind);
    for (std::size_t i = 0; i < setting.numbers.size(); ++i)
        setting.numbers[i] = between(from.numbers[i], next->numbers[i], share);
    return setting;
}

}  // namespace perch

#include "Transfer.h"

#include <cmath>

namespace pictures {
namespace {

constexpr double kLogSlope = 255;  // against the light of one, near black

double logRange() {
    static const double range = std::log2(1 + kLogSlope * kLogWhite);
    return range;
}

}  // namespace

double codeOfLight(Transfer transfer, double light) {
    switch (transfer) {
        case Transfer::Linear:
            return light;
        case Transfer::Srgb:
            return light <= 0.0031308 ? 12.92 * light : 1.055 * std::pow(light, 1 / 2.4) - 0.055;
        case Transfer::Log:
            return light <= 0 ? light : std::log2(1 + kLogSlope * light) / logRange();
    }
    return light;
}

double lightOfCode(Transfer transfer, double code) {
    switch (transfer) {
        case Transfer::Linear:
            return code;
        case Transfer::Srgb:
            return code <= 0.04045 ? code / 12.92 : std::pow((code + 0.055) / 1.055, 2.4);
        case Transfer::Log:
            return (std::exp2(code * logRange()) - 1) / kLogSlope;
    }
    return code;
}

}  // namespace pictures

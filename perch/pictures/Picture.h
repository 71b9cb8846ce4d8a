// A picture as its file has it: interleaved samples, rows from the top, without gaps.
#pragma once

#include <cstddef>
#include <cstdint>
#include <variant>
#include <vector>

namespace pictures {

enum class SampleType { Bits8, Bits16 };  // unsigned; the greatest value is white

struct Picture {
    SampleType type() const { return samples.index() == 0 ? SampleType::Bits8 : SampleType::Bits16; }
    bool hasAlpha() const { return channels % 2 == 0; }
    std::size_t sampleCount() const {
        return static_cast<std::size_t>(width) * static_cast<std::size_t>(height) * channels;
    }

    std::int32_t width = 0;
    std::int32_t height = 0;
    std::size_t channels = 0;      // 1 grey, 2 grey and alpha, 3 RGB, 4 RGBA
    bool isPremultiplied = false;  // colours are multiplied by alpha
    std::variant<std::vector<std::uint8_t>, std::vector<std::uint16_t>> samples;
};

// Black and transparent.
inline Picture newPicture(std::int32_t width, std::int32_t height, std::size_t channels, SampleType type) {
    Picture picture{
        .width = width, .height = height, .channels = channels, .isPremultiplied = false, .samples = {}};
    if (type == SampleType::Bits16) picture.samples.emplace<std::vector<std::uint16_t>>();
    std::visit([&](auto& samples) { samples.resize(picture.sampleCount()); }, picture.samples);
    return picture;
}

}  // namespace pictures

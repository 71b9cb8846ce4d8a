// A picture as its file has it: interleaved samples, rows from the top, without gaps.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <variant>
#include <vector>

namespace pictures {

// Whole numbers, whose greatest value is white, or floating point, where 1 is.
enum class SampleType { Bits8, Bits16, Half, Float };

constexpr bool isFloat(SampleType type) {
    return type == SampleType::Half || type == SampleType::Float;
}

// What a file says of its picture beside the samples. Only the codec looks inside.
class Metadata;

struct Picture {
    SampleType type() const {
        if (samples.index() == 0) return SampleType::Bits8;
        if (samples.index() == 1) return SampleType::Bits16;
        return isHalf ? SampleType::Half : SampleType::Float;
    }
    bool hasAlpha() const { return channels % 2 == 0; }
    std::size_t rowSamples() const { return static_cast<std::size_t>(width) * channels; }

    std::int32_t width = 0;
    std::int32_t height = 0;
    std::size_t channels = 0;      // 1 grey, 2 grey and alpha, 3 RGB, 4 RGBA
    bool isPremultiplied = false;  // colours are multiplied by alpha
    bool isHalf = false;           // each float is one of 16 bits
    bool isDamaged = false;        // what could not be read is black, or whatever the decoder makes of it
    std::string depthChannel{};    // of the same part, where the picture is made of its colours; empty: none
    int parts = 1;                 // of the file; the picture is the first, or that of the channel asked for
    std::variant<std::vector<std::uint8_t>, std::vector<std::uint16_t>, std::vector<float>> samples;
    std::shared_ptr<const Metadata> metadata;  // may be null
    std::string software{};                    // what the file says that it was made by
    double frameRate = 0;                      // that the file tells, per second; 0: none
};

// Black and transparent, and not premultiplied.
inline Picture newPicture(std::int32_t width, std::int32_t height, std::size_t channels, SampleType type) {
    Picture picture;
    picture.width = width;
    picture.height = height;
    picture.channels = channels;
    picture.isHalf = type == SampleType::Half;
    if (type == SampleType::Bits16) picture.samples.emplace<std::vector<std::uint16_t>>();
    if (isFloat(type)) picture.samples.emplace<std::vector<float>>();
    const std::size_t count = picture.rowSamples() * static_cast<std::size_t>(height);
    std::visit([&](auto& samples) { samples.resize(count); }, picture.samples);
    return picture;
}

}  // namespace pictures

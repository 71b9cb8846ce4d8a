// Rows of pictures as the codes of effects: alpha, red, green and blue, alpha straight, from 0 to a white
// that the caller chooses. Codes are rounded to the nearest, so that each code of a white up to 32768
// survives 16 bits.
#pragma once

#include <cstdint>
#include <span>

#include "Picture.h"
#include "Transfer.h"

namespace pictures {

struct Codes {
    std::uint16_t alpha;
    std::uint16_t red;
    std::uint16_t green;
    std::uint16_t blue;
};

// `value` on the scale of 0 to `from`, which it may exceed, on the scale of 0 to `to`, rounded to the
// nearest. All three are at most 65535, so that the product stays below 2^32.
constexpr std::uint32_t rescale(std::uint32_t value, std::uint32_t from, std::uint32_t to) {
    return from == to ? value : (value * to + from / 2) / from;
}

// How many pixels have a colour that the codes do not reach, and that was clipped.
struct Clipped {
    std::int64_t above = 0;
    std::int64_t below = 0;

    Clipped& operator+=(const Clipped& more) {
        above += more.above;
        below += more.below;
        return *this;
    }
};

// Fills a row of the picture's width. Without alpha a picture is opaque; premultiplied colours are divided by
// it. What is no number is 0.
Clipped readCodes(const Picture& picture, std::int32_t y, std::uint32_t white, std::span<Codes> row,
                  Transfer transfer = Transfer::Linear);

// How whole numbers come from more exact ones: the nearest, or up or down in a fixed pattern of 8 x 8 pixels
// whose mean is the exact one. Numbers that are whole stay.
enum class Rounding { Nearest, Dithered };

// Into a picture of any channels; grey takes red. Codes above white are taken for white, and `transfer` is
// undone.
void writeCodes(std::span<const Codes> row, std::uint32_t white, std::int32_t y, Picture& picture,
                Transfer transfer = Transfer::Linear, Rounding rounding = Rounding::Nearest);

// Copies the pixels of a row for which `isCopied` is not 0, bit by bit. The pictures have the same size and
// type, and both or neither are premultiplied. Grey becomes red, green and blue; alpha that one of them lacks
// is full.
void copyPixels(const Picture& from, std::span<const std::uint8_t> isCopied, std::int32_t y, Picture& to);

}  // namespace pictures

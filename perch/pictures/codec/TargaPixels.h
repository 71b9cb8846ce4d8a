// The pixels of TGA files. The image library holds all of them a second time, and takes runs that end too
// late and files that are too long.
//
//     header, 18 bytes | identifier | palette | pixels | areas of any kind | footer, 26 bytes
//
// Older files end with the pixels. The footer begins with the places of two areas, or 0, and the first of
// these has at its end those of others.
#pragma once

#include <cstdint>
#include <optional>
#include <span>

namespace pictures {

class TargaPixels {
public:
    explicit TargaPixels(std::span<const unsigned char> bytes);

    // Whether they are grey, RGB or RGBA of 8 bits each, in rows from the left; others are left to the
    // library.
    bool arePlain() const;

    // Whether they are cut short or do not end where the file says that they do.
    bool areDamaged() const;

    // Plain ones, as far as they are there. There must be room for all.
    void readTo(std::span<std::uint8_t> samples) const;

private:
    std::size_t number(std::size_t place, std::size_t size) const;
    std::size_t areasBegin() const;
    bool hasFooter() const;
    template <typename Take>
    std::optional<std::size_t> walk(const Take& take) const;

    std::span<const unsigned char> bytes;
    std::size_t type;
    std::size_t width;
    std::size_t height;
    std::size_t pixelSize;
    std::size_t descriptor;
    std::size_t begin;
};

}  // namespace pictures

// A sheet of small pictures with labels below them, in rows from the upper left.
//
//   +------------+ +------------+
//   |            | |            |
//   +------------+ +------------+
//   focal-point 0  focal-point 25
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "World.h"

namespace perch {

struct SheetForm {
    std::size_t count = 1;  // of the pictures
    std::size_t columns = 1;
    std::int32_t pictureWidth = 320;
    std::size_t lines = 1;  // of each label
};

class SheetPicture {
public:
    explicit SheetPicture(const SheetForm& form) : form(form) {}

    // The next picture, of any size, as the first one is in proportion. Throws UsageError where the sheet
    // would be larger than a picture can be.
    void add(const World& picture, const std::vector<std::string>& label);
    // After a picture.
    const World& world() const { return *sheet; }

private:
    void begin(const World& first);

    const SheetForm form;
    std::int32_t pictureHeight = 0;
    std::size_t added = 0;
    std::optional<World> sheet;  // 8 bits
};

}  // namespace perch

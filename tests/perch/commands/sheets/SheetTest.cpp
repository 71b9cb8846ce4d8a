// Sheets: the values that they show, and where pictures and labels are.
#include <gtest/gtest.h>

#include <set>

#include "Error.h"
#include "Lettering.h"
#include "ParameterText.h"
#include "PixelAccess.h"
#include "SheetAxis.h"
#include "SheetPicture.h"

namespace perch::test {
namespace {

std::vector<ParameterOption> options() {
    Parameter amount;
    amount.index = 1;
    amount.name = "Amount";
    amount.definition.param_type = PF_Param_FLOAT_SLIDER;
    amount.validRange = {-10, 100};
    Parameter type;
    type.index = 2;
    type.name = "Type";
    type.definition.param_type = PF_Param_POPUP;
    type.items = {"Coarse", "Fine"};
    return {{.name = "amount", .parameter = amount, .rangeName = {}, .offsetName = {}},
            {.name = "type", .parameter = type, .rangeName = {}, .offsetName = {}}};
}

TEST(SheetAxisTest, ValuesAreListedOrCountedOff) {
    const std::pair<const char*, std::vector<std::string>> cases[] = {
        {"amount=5", {"5"}},
        {"amount=5,1,-10", {"5", "1", "-10"}},
        {"amount=0:100:25", {"0", "25", "50", "75", "100"}},
        {"amount=0:9:5", {"0", "5"}},
        {"amount=9:0:-5", {"9", "4"}},
        {"amount=0:0.3:0.1", {"0", "0.1", "0.2", "0.3"}},
        {"amount=7:7:1", {"7"}},
        {"type=Fine,Coarse", {"Fine", "Coarse"}},
    };
    for (const auto& [text, expected] : cases) {
        const SheetAxis axis = parseSheetAxis(options(), text);
        std::vector<std::string> values;
        for (const ParameterSetting& value : axis.values)
            values.push_back(valueText(axis.option.parameter, value));
        EXPECT_EQ(values, expected) << text;
    }
}

TEST(SheetAxisTest, OtherTextsAreRefused) {
    for (const char* const text :
         {"", "amount", "amount=", "=1", "amuont=1", "amount=1,", "amount=101", "amount=0:100",
          "amount=0:100:25:2", "amount=0:100:0", "amount=0:100:-1", "amount=0:100:0.01", "amount=0:200:100",
          "amount=a:b:c", "amount=0:inf:1", "amount=0:100:nan", "type=Rough", "type=1:2:x"})
        EXPECT_THROW(parseSheetAxis(options(), text), UsageError) << '"' << text << '"';
}

World filled(std::int32_t width, std::int32_t height, PF_Pixel colour) {
    World world(width, height, false);
    for (std::int32_t y = 0; y < height; ++y)
        std::ranges::fill(pixelRow<PF_Pixel>(world.record(), y), colour);
    return world;
}

bool hasText(const World& world, std::int32_t left, std::int32_t top, std::int32_t right,
             std::int32_t bottom) {
    for (std::int32_t y = top; y < bottom; ++y)
        for (std::int32_t x = left; x < right; ++x)
            if (rowOf<PF_Pixel>(world.record(), y)[x].red == 220) return true;
    return false;
}

//     12 |40| 12 |40| 12        across
//     12 |20| 6 |22| 12 ...     downwards: picture, gap, one line
TEST(SheetPictureTest, PicturesStandInRowsWithTheirLabelsBelow) {
    SheetPicture sheet({.count = 3, .columns = 2, .pictureWidth = 40, .lines = 1});
    const PF_Pixel colours[] = {{255, 200, 0, 0}, {255, 0, 200, 0}, {0, 200, 200, 200}};
    for (const PF_Pixel& colour : colours)
        sheet.add(filled(80, 40, colour), {"abc"});
    const World& world = sheet.world();
    ASSERT_EQ(world.width(), 12 + 2 * (40 + 12));
    ASSERT_EQ(world.height(), 12 + 2 * (20 + 6 + 22 + 12));
    const auto at = [&](std::int32_t x, std::int32_t y) { return rowOf<PF_Pixel>(world.record(), y)[x]; };
    for (const std::int32_t y : {12, 31}) {
        EXPECT_EQ(at(12, y).red, 200);
        EXPECT_EQ(at(51, y).red, 200);
        EXPECT_EQ(at(64, y).green, 200);
    }
    for (const auto& [x, y] : {std::pair{11, 12}, {52, 12}, {12, 11}, {12, 32}, {104, 12}, {20, 80}})
        EXPECT_EQ(at(x, y).red, 32) << x << ", " << y;  // the sheet; the third picture is transparent
    EXPECT_TRUE(hasText(world, 12, 38, 52, 60));
    EXPECT_TRUE(hasText(world, 64, 38, 104, 60));
    EXPECT_TRUE(hasText(world, 12, 98, 52, 120));
    EXPECT_FALSE(hasText(world, 64, 72, 116, 132));
}

TEST(SheetPictureTest, LargerSheetsThanPicturesAreRefused) {
    SheetPicture sheet({.count = 1000000, .columns = 1000, .pictureWidth = 320, .lines = 1});
    EXPECT_THROW(sheet.add(filled(2, 2, {}), {"a"}), UsageError);
}

TEST(LetteringTest, NoTwoCharactersLookAlike) {
    std::set<std::uint64_t> looks;
    const std::string_view characters =
        "0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz.,-+:/#%()=_? ";
    for (const char character : characters) {
        World world(kLetterWidth, kLineHeight, false);
        writeLine(std::string_view(&character, 1), 0, 0, kLetterWidth, world);
        looks.insert(world.checksum());
    }
    EXPECT_EQ(looks.size(), characters.size());
}

TEST(LetteringTest, LineEndsWhereItsWidthDoes) {
    World world(3 * kLetterWidth, kLineHeight, false);
    writeLine("HHH", 0, 0, 2 * kLetterWidth + 1, world);
    EXPECT_TRUE(hasText(world, kLetterWidth, 0, 2 * kLetterWidth, kLineHeight));
    EXPECT_FALSE(hasText(world, 2 * kLetterWidth, 0, 3 * kLetterWidth, kLineHeight));
}

}  // namespace
}  // namespace perch::test

#include "Console.h"

#include <gtest/gtest.h>

#include <utility>

namespace perch::test {
namespace {

TEST(ConsoleTest, ControlCharactersBecomeQuestionMarks) {
    const std::pair<const char*, const char*> cases[] = {
        {"plain text", "plain text"},
        {"\x1B[2Jred", "?[2Jred"},
        {"bell\a tab\t line\n", "bell? tab? line?"},
        {"\x7F", "?"},
        {"\xC2\x9B"
         "31m",
         "?31m"},                                  // the same as an escape and a bracket
        {"\xC2\xA0\xC3\xA4", "\xC2\xA0\xC3\xA4"},  // a blank that does not break, and a letter
        {"\x9B"
         "31m",
         "?31m"},  // the same to a terminal of 8-bit characters
        {"\xE2\x80\x9Cquoted", "\xE2\x80\x9Cquoted"},
        {"cut \xC2", "cut \xC2"},
    };
    for (const auto& [text, clean] : cases)
        EXPECT_EQ(printable(text), clean);
}

}  // namespace
}  // namespace perch::test

#include "Console.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <sstream>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "Error.h"
#include "PictureFiles.h"
#include "TemporaryFolder.h"

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

// To a program that ends: the log stays open for good.
TEST(ConsoleDeathTest, LogHasWhatIsSaidWithItsTimesBehindWhatItHad) {
    const TemporaryFolder folder;
    writeBytes(folder / "log", "2026-01-02T03:04:05Z before\n");
    EXPECT_EXIT(
        {
            keepLog(folder / "log");
            say("one\ntwo");
            sayInLog("three");
            sayAsItIs("not in the log");
            std::_Exit(0);
        },
        testing::ExitedWithCode(0), "perch: one\\?two");
    std::istringstream lines(bytesOf(folder / "log"));
    std::vector<std::string> sentences;
    for (std::string time, sentence; lines >> time && std::getline(lines, sentence);) {
        EXPECT_EQ(time.size(), std::string_view("2026-01-02T03:04:05Z").size()) << time;
        sentences.push_back(sentence);
    }
    EXPECT_EQ(sentences, (std::vector<std::string>{" before", " one?two", " three"}));
}

TEST(ConsoleTest, FileThatIsNoLogIsLeftAlone) {
    const TemporaryFolder folder;
    writeBytes(folder / "picture.png", "\x89PNG");
    EXPECT_THROW(keepLog(folder / "picture.png"), UsageError);
    EXPECT_EQ(bytesOf(folder / "picture.png"), "\x89PNG");
    EXPECT_THROW(keepLog(folder / "none" / "here" / "log"), OutputError);
}

}  // namespace
}  // namespace perch::test

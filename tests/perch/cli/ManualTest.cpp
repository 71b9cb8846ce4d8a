// The manual page, which is made from what the program's own help lists.
#include <gtest/gtest.h>

#include <filesystem>
#include <sstream>
#include <string>
#include <vector>

#include "CommandCase.h"
#include "CommandLine.h"
#include "PictureFiles.h"

namespace perch::test {
namespace {

// Of help, from here on. They are not the program's own.
constexpr char kParameters[] = "Parameters of the effect:";

struct Row {
    std::string name;
    std::string meaning;
};

// The rows of two columns of a help text, without the effect's parameters.
std::vector<Row> rowsOf(const std::string& help) {
    std::vector<Row> rows;
    std::istringstream stream(help);
    for (std::string line; std::getline(stream, line) && line != kParameters;) {
        if (!line.starts_with("  ")) continue;
        const std::size_t end = line.find("  ", 2);
        rows.push_back({line.substr(2, end - 2), line.substr(line.find_first_not_of(' ', end))});
    }
    return rows;
}

std::string escaped(const std::string& text) {
    return replaceAll(text, "-", "\\-");
}

// In the form of the page.
std::string paragraph(const Row& row) {
    return ".TP\n.B " + escaped(row.name) + "\n" + escaped(row.meaning) + "\n";
}

TEST(ManualTest, HoldsEveryRowOfEveryHelpAndNoOther) {
    const CommandLine commandLine;
    const std::string page = bytesOf(PERCH_MANUAL);
    std::size_t paragraphs = 0;
    const auto expectParagraph = [&](const Row& row, const std::string& command) {
        ++paragraphs;
        EXPECT_NE(page.find(paragraph(row)), std::string::npos) << command << ' ' << row.name;
    };
    const auto rowsOfHelp = [&](const std::string& command) {
        const std::vector<Row> rows = rowsOf(commandLine.run(command + " --help").out);
        EXPECT_GE(rows.size(), 2U) << command;
        return rows;
    };
    for (const Row& commandOrCode : rowsOfHelp("perch")) {
        if (commandOrCode.name.find_first_of("0123456789") != std::string::npos) {
            expectParagraph(commandOrCode, "perch");
            continue;
        }
        const std::string command = "perch " + commandOrCode.name;
        EXPECT_NE(page.find(".SS " + escaped(command) + "\n"), std::string::npos) << command;
        for (const Row& option : rowsOfHelp(command))
            expectParagraph(option, command);
    }
    std::size_t found = 0;
    for (std::size_t at = 0; (at = page.find(".TP\n", at)) != std::string::npos; ++at)
        ++found;
    EXPECT_EQ(found, paragraphs);
}

TEST(ManualTest, IsNotMadeWhereTheProgramCannotListItsOptions) {
    const CommandLine commandLine;
    const std::string sources = PERCH_SOURCES;
    for (const char* const program : {"/bin/false", "/bin/true"}) {
        const ProgramResult result = runProgram({"/bin/sh", sources + "/packaging/man-page.sh", program,
                                                 sources + "/packaging/perch.1.in", "page.1"},
                                                commandLine.folder);
        EXPECT_NE(result.status, 0) << program;
        EXPECT_FALSE(std::filesystem::exists(commandLine.folder / "page.1")) << program;
    }
}

}  // namespace
}  // namespace perch::test

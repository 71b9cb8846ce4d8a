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

TEST(ManualTest, HoldsEveryRowOfEveryHelp) {
    const CommandLine commandLine;
    const std::string page = bytesOf(PERCH_MANUAL);
    const auto expectRows = [&](const std::string& command) {
        const std::vector<Row> rows = rowsOf(commandLine.run(command + " --help").out);
        EXPECT_GE(rows.size(), 2U) << command;
        return rows;
    };
    const std::vector<Row> commandsAndCodes = expectRows("perch");
    for (const auto& [command, summary] : commandsAndCodes) {
        if (command.find_first_of("0123456789") == std::string::npos) {
            EXPECT_NE(page.find(".SS perch " + escaped(command) + "\n"), std::string::npos) << command;
            for (const auto& [option, meaning] : expectRows("perch " + command))
                EXPECT_NE(page.find(".TP\n.B " + escaped(option) + "\n" + escaped(meaning) + "\n"),
                          std::string::npos)
                    << command << ' ' << option;
        } else {
            EXPECT_NE(page.find(".TP\n.B " + command + "\n" + escaped(summary) + "\n"), std::string::npos)
                << command;
        }
    }
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

#include "ExitCodes.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <fstream>
#include <string>

namespace perch::test {
namespace {

// The rows of the table in docs/perch.md, in the form of the help.
std::string documentedCodes() {
    std::ifstream document(std::string(PERCH_SOURCES) + "/docs/perch.md");
    std::string line;
    while (std::getline(document, line) && line != "| exit code | means |") {
    }
    std::getline(document, line);  // between heading and rows
    std::string rows;
    while (std::getline(document, line) && line.starts_with("| ")) {
        const std::size_t middle = line.find(" | ");
        const std::string meaning = line.substr(middle + 3, line.size() - middle - 5);
        rows += fmt::format("  {:<10}{}\n", line.substr(2, middle - 2), meaning);
    }
    return rows;
}

TEST(ExitCodesTest, HelpAndDocumentationHaveTheSame) {
    EXPECT_EQ(exitCodesText(), documentedCodes());
}

}  // namespace
}  // namespace perch::test

// The files of the page, which are part of the program.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace perch {

struct PageFile {
    const char* type;
    std::string_view bytes;
};

// Absent where the page has no such file.
std::optional<PageFile> pageFile(std::string_view path);

// False where the program was built without the page: its files then are one that says so.
bool hasPage();

// What a user without a page can do.
constexpr char kNoPage[] =
    "this program was built without the page of perch view, which takes Node; install nodejs and npm, and "
    "build it again";

}  // namespace perch

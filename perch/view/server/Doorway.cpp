#include "Doorway.h"

#include <fmt/format.h>
#include <stdlib.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

#include "Error.h"

namespace perch {
namespace {

namespace fs = std::filesystem;

fs::path folderOfSession() {
    std::error_code error;
    const char* const folder = getenv("XDG_RUNTIME_DIR");
    if (folder != nullptr && fs::path(folder).is_absolute() && fs::is_directory(folder, error)) return folder;
    return fs::temp_directory_path(error);
}

}  // namespace

Doorway::Doorway(const std::string& address) {
    constexpr char kEnding[] = ".html";
    std::string name = (folderOfSession() / "perch-view-XXXXXX").string() + kEnding;
    const int file = mkstemps(name.data(), sizeof kEnding - 1);  // for its owner alone
    if (file < 0)
        throw Error(fmt::format("cannot write \"{}\": {}", name, std::generic_category().message(errno)));
    path = name;
    const std::string text = pageLeadingTo(address);
    const bool isWritten = write(file, text.data(), text.size()) == static_cast<ssize_t>(text.size());
    close(file);
    if (isWritten) return;
    unlink(name.c_str());
    throw Error(fmt::format("cannot write \"{}\"; is the disk full?", name));
}

Doorway::~Doorway() {
    unlink(path.c_str());
}

std::string pageLeadingTo(const std::string& address) {
    return fmt::format(
        "<!doctype html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n<title>perch view</title>\n"
        "<meta http-equiv=\"refresh\" content=\"0; url={0}\">\n</head>\n<body><a href=\"{0}\">perch "
        "view</a></body>\n"
        "</html>\n",
        address);
}

}  // namespace perch

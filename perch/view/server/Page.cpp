#include "Page.h"

namespace perch {

// The page's script as it was built; empty without one. Made by the build.
std::string_view pageScript();

namespace {

constexpr char kDocument[] =
    "<!doctype html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n"
    "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">\n<title>perch view</title>\n"
    "<link rel=\"icon\" href=\"data:,\">\n<link rel=\"stylesheet\" href=\"/page.css\">\n"
    "<script type=\"module\" src=\"/page.js\"></script>\n</head>\n<body></body>\n</html>\n";
constexpr char kStyle[] = "html, body { margin: 0; height: 100%; }\n";

}  // namespace

bool hasPage() {
    return !pageScript().empty();
}

std::optional<PageFile> pageFile(std::string_view path) {
    if (!hasPage())
        return path == "/" ? std::optional(PageFile{"text/plain; charset=utf-8", kNoPage}) : std::nullopt;
    if (path == "/") return PageFile{"text/html; charset=utf-8", kDocument};
    if (path == "/page.css") return PageFile{"text/css; charset=utf-8", kStyle};
    if (path == "/page.js") return PageFile{"text/javascript; charset=utf-8", pageScript()};
    return std::nullopt;
}

}  // namespace perch

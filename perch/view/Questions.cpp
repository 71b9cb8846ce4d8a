#include "Questions.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>

#include "Error.h"

namespace perch {
namespace {

constexpr Question kQuestions[] = {
    {"/api/session", "GET"},
    {"/api/state", "GET, POST"},
    {"/api/preset", "GET, PUT"},
    {"/words", "GET"},  // of the state's command: for the server alone, which starts it
    {"/api/picture", "GET, POST", true},
    {"/api/pixel", "GET", true},
    {"/api/histogram", "GET", true},
};

}  // namespace

bool Question::takes(const std::string& method) const {
    std::string_view rest = methods;
    while (!rest.empty()) {
        const std::size_t end = std::min(rest.find(", "), rest.size());
        if (rest.substr(0, end) == method) return true;
        rest.remove_prefix(std::min(end + 2, rest.size()));
    }
    return false;
}

const Question* questionAt(std::string_view path) {
    const auto* const found = std::ranges::find(kQuestions, path, &Question::path);
    return found != std::end(kQuestions) ? found : nullptr;
}

std::optional<std::string_view> kindOf(const ViewRequest& request) {
    const std::string text = request.value("kind");
    if (text.empty()) return kResult;
    for (const std::string_view kind : {kResult, kOriginal, kLayer, kFocus})
        if (kind == text) return kind;
    return std::nullopt;
}

std::optional<std::int64_t> wholeNumber(const std::string& text) {
    std::int64_t number = 0;
    const char* const end = text.data() + text.size();
    const auto parsed = std::from_chars(text.data(), end, number);
    return parsed.ec == std::errc() && parsed.ptr == end ? std::optional(number) : std::nullopt;
}

std::int64_t numberOf(const ViewRequest& request, const std::string& name) {
    const std::string text = request.value(name);
    const std::optional<std::int64_t> number = wholeNumber(text);
    if (!number) throw UsageError(fmt::format("\"{}\" takes a whole number, not \"{}\"", name, text));
    return *number;
}

std::optional<PictureSize> sizeOf(const ViewRequest& request) {
    const std::string text = request.value("size");
    if (text.empty() || text == "full") return std::nullopt;
    PictureSize size;
    const char* const end = text.data() + text.size();
    const auto width = std::from_chars(text.data(), end, size.width);
    const bool hasCross = width.ec == std::errc() && width.ptr != end && *width.ptr == 'x';
    const auto height = std::from_chars(hasCross ? width.ptr + 1 : end, end, size.height);
    if (height.ec != std::errc() || height.ptr != end || size.width < 1 || size.height < 1)
        throw UsageError(fmt::format("\"size\" is like 640x360, or full, not \"{}\"", text));
    return size;
}

}  // namespace perch

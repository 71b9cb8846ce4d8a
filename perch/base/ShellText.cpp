#include "ShellText.h"

namespace perch {
namespace {

bool isPlain(std::string_view text) {
    constexpr char kPlain[] = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789@%+=:,./_#-";
    constexpr std::string_view kMeaningInFront = "#=";  // a comment; to zsh, the place of a program
    return !text.empty() && text.find_first_not_of(kPlain) == std::string_view::npos &&
           kMeaningInFront.find(text.front()) == std::string_view::npos;
}

}  // namespace

std::string shellWord(std::string_view text) {
    if (isPlain(text)) return std::string(text);
    std::string word = "'";
    for (const char c : text)
        word += c == '\'' ? "'\\''" : std::string(1, c);
    return word + '\'';
}

std::string shellWords(std::span<const std::string> words) {
    std::string text;
    for (const std::string& word : words) {
        if (!text.empty()) text += ' ';
        text += shellWord(word);
    }
    return text;
}

}  // namespace perch

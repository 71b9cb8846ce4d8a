// Options that take one of a few words. What parses them, what the help lists and what shells complete comes
// from the same table.
#pragma once

#include <fmt/format.h>

#include <array>
#include <cstddef>
#include <string>
#include <string_view>

#include "Error.h"

namespace perch {

template <typename T>
struct Word {
    const char* text;
    T meaning;
};

// "stop|continue"
template <typename T, std::size_t N>
std::string listOf(const std::array<Word<T>, N>& words) {
    std::string list;
    for (const Word<T>& word : words)
        list.append(list.empty() ? "" : "|").append(word.text);
    return list;
}

// Throws UsageError where the text is none of them.
template <typename T, std::size_t N>
T meaningOf(std::string_view option, std::string_view text, const std::array<Word<T>, N>& words) {
    std::string known;
    for (std::size_t i = 0; i < N; ++i) {
        if (text == words[i].text) return words[i].meaning;
        known.append(i == 0 ? "" : i + 1 == N ? " or " : ", ").append(words[i].text);
    }
    throw UsageError(fmt::format("{} takes {}, not \"{}\"", option, known, text));
}

}  // namespace perch

// Words of a command as text for the shell.
#pragma once

#include <span>
#include <string>
#include <string_view>

namespace perch {

// What a POSIX shell reads as the one word `text`; left as it is where nothing in it means anything to a
// shell.
std::string shellWord(std::string_view text);
// The same for several words, with spaces between them.
std::string shellWords(std::span<const std::string> words);

}  // namespace perch

#include "NearestName.h"

#include <fmt/format.h>

#include <algorithm>
#include <cctype>
#include <cstddef>
#include <vector>

namespace perch {
namespace {

// Longer words are compared by their beginning: the work grows with the square of the length.
constexpr std::size_t kComparedLength = 64;

char lower(char c) {
    return static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
}

std::size_t editDistance(std::string_view a, std::string_view b) {
    a = a.substr(0, kComparedLength);
    b = b.substr(0, kComparedLength);
    // Row i holds the distances of the first i characters of `a` to every beginning of `b`.
    std::vector<std::vector<std::size_t>> rows(a.size() + 1, std::vector<std::size_t>(b.size() + 1));
    for (std::size_t i = 0; i <= a.size(); ++i) {
        for (std::size_t j = 0; j <= b.size(); ++j) {
            if (i == 0 || j == 0) {
                rows[i][j] = i + j;
                continue;
            }
            const bool isSame = lower(a[i - 1]) == lower(b[j - 1]);
            rows[i][j] =
                std::min({rows[i - 1][j] + 1, rows[i][j - 1] + 1, rows[i - 1][j - 1] + (isSame ? 0U : 1U)});
            const bool isSwap =
                i > 1 && j > 1 && lower(a[i - 1]) == lower(b[j - 2]) && lower(a[i - 2]) == lower(b[j - 1]);
            if (isSwap) rows[i][j] = std::min(rows[i][j], rows[i - 2][j - 2] + 1);
        }
    }
    return rows[a.size()][b.size()];
}

}  // namespace

std::optional<std::string> nearestName(std::string_view word, std::span<const std::string> names) {
    std::optional<std::string> nearest;
    std::size_t fewest = std::max<std::size_t>(2, word.size() / 3) + 1;
    for (const std::string& name : names) {
        const std::size_t distance = editDistance(word, name);
        // A word of which nothing is kept is not a misspelling.
        if (distance >= fewest || distance >= word.size()) continue;
        fewest = distance;
        nearest = name;
    }
    return nearest;
}

std::string suggestion(std::string_view word, std::span<const std::string> names) {
    const std::optional<std::string> name = nearestName(word, names);
    return name ? fmt::format(" (did you mean \"{}\"?)", *name) : "";
}

}  // namespace perch

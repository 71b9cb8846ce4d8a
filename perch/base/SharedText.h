// Text in memory that two processes share.
#pragma once

#include <array>
#include <atomic>
#include <cstddef>
#include <string>
#include <string_view>

namespace perch {

// Characters that another process may read at any time: always terminated, cut to what there is room for.
template <std::size_t N>
class SharedText {
public:
    void set(std::string_view text) { putAt(0, text); }
    void append(std::string_view text) { putAt(get().size(), text); }
    std::string get() const {
        std::string text;
        for (const std::atomic<char>& character : characters) {
            const char c = character.load(std::memory_order_relaxed);
            if (c == '\0' || text.size() == N - 1) break;
            text += c;
        }
        return text;
    }

private:
    void putAt(std::size_t place, std::string_view text) {
        for (const char c : text.substr(0, N - 1 - place))
            characters[place++].store(c, std::memory_order_relaxed);
        characters[place].store('\0', std::memory_order_relaxed);
    }

    std::array<std::atomic<char>, N> characters{};
};

}  // namespace perch

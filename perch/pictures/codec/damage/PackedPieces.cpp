#include "PackedPieces.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <optional>

namespace pictures {
namespace {

// Codes of 9 to 12 bits, the first bit of each being the highest that is left of a byte.
class CodeReader {
public:
    explicit CodeReader(std::span<const unsigned char> bytes) : bytes(bytes) {}

    // Nothing where fewer bits are left.
    std::optional<unsigned> next(int bits) {
        while (held < bits) {
            if (bytes.empty()) return std::nullopt;
            buffer = buffer << 8 | bytes.front();
            bytes = bytes.subspan(1);
            held += 8;
        }
        held -= bits;
        return buffer >> held & ((1U << bits) - 1);
    }

private:
    std::span<const unsigned char> bytes;
    std::uint32_t buffer = 0;
    int held = 0;  // bits of the buffer that no code has yet
};

// What the codes stand for, of which the lengths alone matter here:
//
//     0 to 255   that byte
//     256        clear: the table begins anew, with codes of 9 bits
//     257        end
//     258 and on the string of the code before the last, and the first byte of the last one's; each code but
//                the first after a clear adds the next of these
//
// Codes get a bit longer as the table reaches 511, 1023 and 2047 entries.
class LzwLengths {
public:
    static constexpr unsigned kClear = 256;
    static constexpr unsigned kEnd = 257;

    LzwLengths() { lengths.fill(1); }

    int bits() const { return codeBits; }

    void clear() {
        free = kFirst;
        codeBits = 9;
        hasLast = false;
    }

    // The length of what a code stands for, which is neither clear nor end; 0 where it stands for nothing.
    std::uint32_t take(unsigned code) {
        if (!hasLast && code > 255) return 0;
        if (code > free) return 0;
        if (hasLast && free < lengths.size()) {
            lengths[free] = lengths[last] + 1;
            ++free;
            if (free == (1U << codeBits) - 1 && codeBits < 12) ++codeBits;
        }
        last = code;
        hasLast = true;
        return code < free ? lengths[code] : 0;
    }

private:
    static constexpr unsigned kFirst = 258;

    std::array<std::uint32_t, 1 << 12> lengths{};
    unsigned free = kFirst;
    int codeBits = 9;
    unsigned last = 0;
    bool hasLast = false;
};

bool isOldLzw(std::span<const unsigned char> piece) {
    return piece.size() >= 2 && piece[0] == 0 && (piece[1] & 1) != 0;
}

bool isPadding(std::span<const unsigned char> rest) {
    constexpr std::size_t kToWholeWord = 3;
    return rest.size() <= kToWholeWord || std::ranges::all_of(rest, [](auto byte) { return byte == 0; });
}

}  // namespace

bool isWholeLzw(std::span<const unsigned char> piece, const PieceLength& length) {
    if (isOldLzw(piece)) return true;
    CodeReader reader(piece);
    LzwLengths table;
    std::uint64_t made = 0;
    bool wasComplete = false;
    while (const std::optional<unsigned> code = reader.next(table.bits())) {
        if (*code == LzwLengths::kEnd) return length.allows(made);
        if (*code == LzwLengths::kClear) {
            table.clear();
            continue;
        }
        const std::uint32_t added = table.take(*code);
        if (added == 0) break;
        made += added;
        wasComplete = wasComplete || length.allows(made);
    }
    return wasComplete;
}

bool isWholePackBits(std::span<const unsigned char> piece, const PieceLength& length) {
    constexpr unsigned kNothing = 128;  // below it are literal bytes, above it runs of one
    std::uint64_t made = 0;
    while (!piece.empty()) {
        const unsigned header = piece.front();
        const std::size_t literals = header < kNothing ? header + 1 : header > kNothing ? 1 : 0;
        if (literals >= piece.size()) return false;
        made += header > kNothing ? 257 - header : literals;
        piece = piece.subspan(1 + literals);
        if (length.allows(made) && isPadding(piece)) return true;
    }
    return false;
}

}  // namespace pictures

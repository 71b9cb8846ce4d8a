#include "PngChunks.h"

#include <zlib.h>

#include <algorithm>

#include "FileText.h"

namespace pictures {
namespace {

constexpr std::size_t kSignature = 8;
constexpr std::size_t kAroundData = 12;

std::uint32_t checkSumOf(std::string_view bytes) {
    return static_cast<std::uint32_t>(
        crc32_z(0, reinterpret_cast<const unsigned char*>(bytes.data()), bytes.size()));
}

// The number in 4 bytes.
std::string bigEndian(std::size_t number) {
    std::string bytes;
    for (int shift = 24; shift >= 0; shift -= 8)
        bytes += static_cast<char>(number >> shift);
    return bytes;
}

bool isText(std::string_view name) {
    return name == "tEXt" || name == "zTXt" || name == "iTXt";
}

bool isDescribing(const PngChunk& chunk) {
    constexpr std::string_view kNames[] = {"gAMA", "cHRM", "sRGB", "iCCP", "cICP",
                                           "mDCv", "cLLi", "pHYs", "eXIf"};
    if (isText(chunk.name)) return !chunk.data.starts_with(std::string_view("Software\0", 9));
    return std::ranges::find(kNames, chunk.name) != std::end(kNames);
}

// Up to the end chunk, or to the first that is cut or has a wrong check sum.
std::vector<PngChunk> chunksOf(std::string_view rest) {
    std::vector<PngChunk> chunks;
    while (rest.size() >= kAroundData) {
        const std::size_t length = bigEndianAt(rest, 0, 4);
        if (length > rest.size() - kAroundData) break;
        const std::string_view whole = rest.substr(0, kAroundData + length);
        if (checkSumOf(whole.substr(4, 4 + length)) != bigEndianAt(whole, 8 + length, 4)) break;
        chunks.push_back({whole.substr(4, 4), whole.substr(8, length), whole});
        if (chunks.back().name == "IEND") break;
        rest.remove_prefix(whole.size());
    }
    return chunks;
}

}  // namespace

std::vector<PngChunk> pngChunks(std::span<const unsigned char> bytes) {
    return chunksOf(textOf(bytes).substr(std::min(kSignature, bytes.size())));
}

std::string describingChunks(std::span<const unsigned char> bytes) {
    std::string result;
    for (const PngChunk& chunk : pngChunks(bytes)) {
        if (isDescribing(chunk)) result += chunk.whole;
    }
    return result;
}

std::vector<PngChunk> describingChunksIn(const std::string& chunks) {
    return chunksOf(chunks);
}

std::vector<unsigned char> describedBy(const std::string& chunks, bool keepsProfile,
                                       std::span<const unsigned char> bytes) {
    std::string result(textOf(bytes).substr(0, kSignature));
    for (const PngChunk& chunk : pngChunks(bytes)) {
        if (isDescribing(chunk)) continue;
        result += chunk.whole;
        if (chunk.name != "IHDR") continue;
        for (const PngChunk& describing : describingChunksIn(chunks)) {
            if (keepsProfile || describing.name != "iCCP") result += describing.whole;
        }
    }
    return {result.begin(), result.end()};
}

std::string pngChunk(std::string_view name, std::string_view data) {
    const std::string checked = std::string(name) + std::string(data);
    return bigEndian(data.size()) + checked + bigEndian(checkSumOf(checked));
}

void insertChunk(const std::string& chunk, std::vector<unsigned char>& bytes) {
    constexpr std::size_t kFirst = kAroundData + 13;
    bytes.insert(bytes.begin() + kSignature + kFirst, chunk.begin(), chunk.end());
}

}  // namespace pictures

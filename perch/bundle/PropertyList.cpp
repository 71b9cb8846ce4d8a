#include "PropertyList.h"

#include <bit>
#include <map>

#include "PiPL.h"

namespace perch {
namespace {

constexpr char kBadHeader[] = "its property list is cut short";
constexpr char kBadProperty[] = "a property extends past the end of its property list";
constexpr char kBadNumber[] = "a number in its property list is cut short";
constexpr char kBadString[] = "a string extends past the end of its property";
constexpr char kBadVersion[] = "its property list is of an unknown version";
constexpr char kBadKind[] = "its property list is not that of an effect";
constexpr std::uint32_t kWindowsStart = 0x0100;  // the bytes 01 00
constexpr std::uint64_t kListHeaderSize = 8;
constexpr std::uint64_t kPropertyHeaderSize = 16;

struct Properties {
    std::endian order;
    std::map<std::uint32_t, ByteSpan> data;  // by key

    std::uint32_t numberAt(ByteSpan bytes, std::uint64_t offset, const char* sentence) const {
        const std::uint32_t number = perch::numberAt(bytes, offset, 4, sentence);
        return order == std::endian::big ? number : byteSwapped(number);
    }

private:
    static std::uint32_t byteSwapped(std::uint32_t number) {
        return number >> 24 | (number >> 8 & 0xFF00U) | (number << 8 & 0xFF0000U) | number << 24;
    }
};

Properties splitProperties(ByteSpan list, std::endian order) {
    Properties properties{.order = order, .data = {}};
    if (properties.numberAt(list, 0, kBadHeader) != PiPL_LIST_VERSION) throw LoadError(kBadVersion);
    const std::uint32_t count = properties.numberAt(list, 4, kBadHeader);
    std::uint64_t at = kListHeaderSize;
    for (std::uint32_t i = 0; i < count; ++i) {
        const ByteSpan header = bytesAt(list, at, kPropertyHeaderSize, kBadProperty);
        const std::uint64_t length = properties.numberAt(header, 12, kBadProperty);
        const std::uint64_t paddedLength = (length + 3) / 4 * 4;
        const ByteSpan data = bytesAt(list, at + kPropertyHeaderSize, paddedLength, kBadProperty);
        if (properties.numberAt(header, 0, kBadProperty) == PiPL_VENDOR) {
            properties.data.emplace(properties.numberAt(header, 4, kBadProperty), data.first(length));
        }
        at += kPropertyHeaderSize + paddedLength;
    }
    return properties;
}

std::string toString(ByteSpan bytes) {
    return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

std::string pascalString(const Properties& properties, std::uint32_t key) {
    const auto found = properties.data.find(key);
    if (found == properties.data.end()) return {};
    return toString(bytesAt(found->second, 1, numberAt(found->second, 0, 1, kBadString), kBadString));
}

std::string zeroTerminatedString(const Properties& properties, std::uint32_t key) {
    const auto found = properties.data.find(key);
    if (found == properties.data.end()) return {};
    std::string text = toString(found->second);
    const std::size_t end = text.find('\0');
    if (end == std::string::npos) throw LoadError(kBadString);
    text.resize(end);
    return text;
}

std::uint32_t number(const Properties& properties, std::uint32_t key) {
    const auto found = properties.data.find(key);
    return found == properties.data.end() ? 0 : properties.numberAt(found->second, 0, kBadNumber);
}

// Lists name no entry point for Linux; that for another system on the same processor comes nearest.
std::string entryPoint(const Properties& properties) {
    const std::string intel = pascalString(properties, PiPL_ENTRY_MAC_INTEL);
    const std::string arm = pascalString(properties, PiPL_ENTRY_MAC_ARM);
    const std::string windows = zeroTerminatedString(properties, PiPL_ENTRY_WINDOWS);
#if defined(_WIN32)
    if (!windows.empty()) return windows;
#endif
#if defined(__aarch64__)
    const std::string& first = arm;
    const std::string& second = intel;
#else
    const std::string& first = intel;
    const std::string& second = arm;
#endif
    if (!first.empty()) return first;
    return windows.empty() ? second : windows;
}

}  // namespace

PropertyList readPropertyList(ByteSpan bytes, ListForm form) {
    const bool isWindows = form == ListForm::kWindows;
    if (isWindows && perch::numberAt(bytes, 0, 2, kBadHeader) != kWindowsStart) throw LoadError(kBadVersion);
    const Properties properties = isWindows ? splitProperties(bytes.subspan(2), std::endian::little)
                                            : splitProperties(bytes, std::endian::big);
    if (number(properties, PiPL_KIND) != PiPL_KIND_EFFECT) throw LoadError(kBadKind);
    return {.name = pascalString(properties, PiPL_NAME),
            .category = pascalString(properties, PiPL_CATEGORY),
            .matchName = pascalString(properties, PiPL_MATCH_NAME),
            .entryPoint = entryPoint(properties),
            .version = number(properties, PiPL_EFFECT_VERSION),
            .flags = static_cast<PF_OutFlags>(number(properties, PiPL_OUT_FLAGS)),
            .flags2 = static_cast<PF_OutFlags2>(number(properties, PiPL_OUT_FLAGS2))};
}

}  // namespace perch

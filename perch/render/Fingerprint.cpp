#include "Fingerprint.h"

#include <fmt/format.h>
#include <sys/stat.h>

#include <algorithm>
#include <cstdint>
#include <string_view>

#include "Error.h"
#include "FailingAs.h"
#include "FileBytes.h"
#include "StartFolder.h"

namespace perch {
namespace {

namespace fs = std::filesystem;

constexpr std::size_t kDigits = 16;

// FNV-1a of 64 bits: short, and the same on every machine. Nobody gains by forging one.
class Hash {
public:
    void add(std::string_view bytes) {
        for (const char c : bytes)
            value = (value ^ static_cast<unsigned char>(c)) * 0x100000001B3;
    }
    std::string text() const { return fmt::format("{:0{}x}", value, kDigits); }

private:
    std::uint64_t value = 0xCBF29CE484222325;
};

std::string textOf(const fs::path& path) {
    const std::optional<FileState> state = fileState(path);
    return state ? fmt::format("\"{}\", {} bytes at {}", path.string(), state->bytes, state->time) : "none";
}

std::string textOf(const ParameterSetting& setting) {
    return fmt::format("parameter {} is {}", setting.index, fmt::join(setting.numbers, ","));
}

std::string textOf(PF_ParamIndex layer, const LayerReading& reading) {
    std::string text = fmt::format("layer {} by \"{}\" {}", layer, reading.selected, reading.hasUsualRange);
    if (const auto& range = reading.range)
        text += fmt::format(" {}:{}:{}", range->near, range->far, range->isReciprocal);
    return text;
}

template <typename T>
int numberOf(const std::optional<T>& choice) {
    return choice ? static_cast<int>(*choice) : -1;
}

std::string textOf(const RenderSettings& settings) {
    const pictures::EncodingOptions& encoding = settings.encoding;
    return fmt::format("settings {} {} {} {} {} {}/{} {} {} {} {} {} {} {}", numberOf(settings.depth),
                       numberOf(settings.outputType), numberOf(settings.transfer),
                       static_cast<int>(settings.quality), static_cast<int>(settings.smart),
                       settings.downsample.num, settings.downsample.den, settings.resizes,
                       encoding.compression, encoding.openExrCompression, encoding.jpegQuality,
                       !encoding.software.empty(), settings.isDithered, settings.reading.acceptsDamage);
}

}  // namespace

std::optional<FileState> fileState(const fs::path& path) {
    struct stat status {};
    if (stat(pictures::placeOf(path).c_str(), &status) != 0) return std::nullopt;
    return FileState{.bytes = static_cast<std::uintmax_t>(status.st_size),
                     .time = fmt::format("{}.{:09}", status.st_mtim.tv_sec, status.st_mtim.tv_nsec)};
}

std::string fileFingerprint(const fs::path& path) {
    const auto bytes = failingAs<InputError>([&] { return pictures::readFile(path); });
    Hash hash;
    hash.add({reinterpret_cast<const char*>(bytes.data()), bytes.size()});
    return hash.text();
}

// Each line begins with what it is of, so that no two accounts read the same.
std::string frameFingerprint(const FrameSources& sources, const FrameFiles& frame) {
    Hash hash;
    const auto add = [&hash](const std::string& line) { hash.add(line + '\n'); };
    add("made by " + sources.maker);
    add(textOf(sources.settings));
    add("input " + textOf(frame.input));
    if (const std::string& selected = sources.settings.selectedInput; !selected.empty())
        add("of the input " + selected);
    for (const auto* const layers : {&frame.layers, &sources.plan.stillLayers})
        for (const auto& [index, path] : *layers)
            add(fmt::format("layer {} {}", index, textOf(path)));
    for (const auto* const layers : {&frame.missingLayers, &sources.plan.emptyLayers})
        for (const PF_ParamIndex index : *layers)
            add(fmt::format("layer {} none", index));
    for (const auto& [index, reading] : sources.settings.layers) {
        add(textOf(index, reading));
        const auto first = sources.plan.firstLayers.find(index);
        if (reading.hasUsualRange && first != sources.plan.firstLayers.end())
            add("range of " + textOf(first->second));
    }
    // What else an effect knows of the whole shot.
    if (sources.mayChangeValues) add(fmt::format("until frame {}", sources.plan.lastFrame));
    for (const ParameterCurve& curve : sources.parameters) {
        add(textOf(settingAt(curve, frame.frame)));
        if (sources.mayChangeValues) add("first " + textOf(settingAt(curve, sources.plan.firstFrame)));
    }
    return hash.text();
}

std::string withFingerprint(const std::string& software, const std::string& fingerprint) {
    if (software.empty() || fingerprint.empty()) return software;
    const std::size_t comma = std::min(software.find(','), software.size());
    return fmt::format("{} [{}]{}", software.substr(0, comma), fingerprint, software.substr(comma));
}

std::string fingerprintIn(const std::string& software) {
    const std::size_t open = software.find(" [");
    if (open == std::string::npos) return "";
    const std::string fingerprint = software.substr(open + 2, kDigits);
    const bool isClosed = software.find(']', open) == open + 2 + kDigits;
    return isClosed && fingerprint.find_first_not_of("0123456789abcdef") == std::string::npos ? fingerprint
                                                                                              : "";
}

}  // namespace perch

#include "CommandLine.h"

#include <algorithm>
#include <cstdint>

#include "CommandCase.h"
#include "PictureFiles.h"

namespace perch::test {
namespace {

namespace fs = std::filesystem;

template <typename T>
std::vector<T> ramp(std::size_t size, unsigned step) {
    std::vector<T> samples(size);
    unsigned value = 0;
    for (T& sample : samples)
        sample = static_cast<T>(value += step);
    return samples;
}

void writeStills(const fs::path& folder) {
    const FileShape rgba{6, 4, 4};
    const FileShape rgb{6, 4, 3};
    writeFile(folder / "rgba8.png", rgba, ramp<std::uint8_t>(96, 5));
    writeFile(folder / "rgba16.png", rgba, ramp<std::uint16_t>(96, 1237));
    writeFile(folder / "rgb8.png", rgb, ramp<std::uint8_t>(72, 3));
    writeFile(folder / "take#2.png", rgb, ramp<std::uint8_t>(72, 3));
    writeFile(folder / "matte.png", {3, 2, 1}, ramp<std::uint16_t>(6, 9000));
    writeFile(folder / "float.exr", {1, 1, 4}, std::vector<float>(4));
    writeBytes(folder / "text.png", "not a picture");
    writeBytes(folder / "cut.png", bytesOf(folder / "rgba16.png").substr(0, 100));
}

// shot.0001.png to shot.0005.png without 0004; lead.-002.png to lead.0001.png; depth.01.png to depth.03.png;
// in torn.####.png 0002 is damaged.
void writeSequences(const fs::path& folder) {
    for (const unsigned frame : {1U, 2U, 3U, 5U})
        writeFile(folder / ("shot.000" + std::to_string(frame) + ".png"), {6, 4, 3},
                  ramp<std::uint8_t>(72, frame));
    for (const char* const number : {"-002", "-001", "0000", "0001"})
        writeFile(folder / ("lead." + std::string(number) + ".png"), {6, 4, 3}, ramp<std::uint8_t>(72, 7));
    for (const unsigned frame : {1U, 2U, 3U}) {
        writeFile(folder / ("depth.0" + std::to_string(frame) + ".png"), {3, 2, 1},
                  ramp<std::uint8_t>(6, 10 * frame));
        writeFile(folder / ("torn.000" + std::to_string(frame) + ".png"), {6, 4, 3},
                  ramp<std::uint8_t>(72, frame));
    }
    writeBytes(folder / "torn.0002.png", "not a picture");
}

// look.json is whole; each other file has one mistake.
void writePresets(const fs::path& folder) {
    writeBytes(folder / "look.json",
               "{\n  // comments are allowed\n  \"amount\": [{\"frame\": 1, \"value\": 20}, "
               "{\"frame\": 3, \"value\": 70, \"key\": \"smooth\"}],\n  \"softness\": 0.1,\n"
               "  \"invert-control\": true, \"centre\": [1, 2.5], \"tint\": \"2:#000000,3:#0a141e\",\n"
               "  \"blur-type\": \"Fast\"\n}\n");
    writeBytes(folder / "misspelt.json", "{\"amout\": 3}");
    writeBytes(folder / "layer.json", "{\"matte\": \"matte.png\"}");
    writeBytes(folder / "wide.json", "{\"amount\": 101}");
    writeBytes(folder / "keyless.json", "{\"amount\": [{\"frame\": 1}]}");
    writeBytes(folder / "between.json", "{\"amount\": [{\"frame\": 1.5, \"value\": 20}]}");
    writeBytes(folder / "field.json", "{\"amount\": [{\"frame\": 1, \"value\": 20, \"kee\": \"smooth\"}]}");
    writeBytes(folder / "twice.json", "{\"amount\": 3, \"amount\": 4}");
    writeBytes(folder / "null.json", "{\"amount\": null}");
    writeBytes(folder / "list.json", "[1, 2]");
    writeBytes(folder / "cut.json", "{\n\"amount\": 4,\n");
}

}  // namespace

CommandLine::CommandLine() {
    fs::create_directory(folder);
    writeStills(folder);
    writeSequences(folder);
    writePresets(folder);
    fs::create_directory(folder / "Empty.plugin");
}

ProgramResult CommandLine::run(const std::string& command, const std::string& input) const {
    ProgramResult result = runProgram(commandOf(command), folder, input);
    result.out = withoutTimes(replaceAll(result.out, PERCH_TEST_PLUGINS, "{plugins}"));
    result.err = withoutTimes(withoutProgress(replaceAll(result.err, PERCH_TEST_PLUGINS, "{plugins}")));
    return result;
}

std::vector<std::string> CommandLine::commandOf(const std::string& command) const {
    std::vector<std::string> words = wordsOf(replaceAll(command, "{plugins}", PERCH_TEST_PLUGINS));
    words.front() = PERCH_PROGRAM;
    return words;
}

std::vector<std::string> CommandLine::files() const {
    std::vector<std::string> names;
    for (const fs::directory_entry& entry : fs::directory_iterator(folder))
        names.push_back(entry.path().filename());
    std::ranges::sort(names);
    return names;
}

}  // namespace perch::test

// What the page shows: a frame, with values of the effect's parameters. A look is as good as a command line.
#pragma once

#include <cstdint>
#include <filesystem>
#include <nlohmann/json_fwd.hpp>
#include <string>
#include <vector>

#include "ParameterCurve.h"
#include "ParameterOptions.h"

namespace perch {

struct Look {
    std::int64_t serial = 0;
    std::int32_t frame = 0;
    std::vector<ParameterCurve> curves{};  // in the order of the options; defaults are left out
};

// Understands looks, for one effect and one list of frames.
class LookReader {
public:
    // `defaults` are of all options that can have a value, points in pixels of the full-size layer. `words`
    // are those of the command line that no look changes: the program, its command, pictures and settings.
    LookReader(std::vector<ParameterOption> options, std::vector<ParameterCurve> defaults,
               std::vector<std::int32_t> frames, std::vector<std::string> words);

    // {"serial": 3, "frame": 1, "parameters": {"Focal Point": 40}}. What is not named has its default. What
    // json() writes is read back: names under "keys" have their keys from there. Throws UsageError, which
    // names what is not understood.
    Look parse(const std::string& json) const;
    // The same look with the values of a preset.
    Look withPreset(const Look& look, const std::string& text) const;
    // With what is as by default left out, and in order.
    Look tidied(Look look) const;

    // With the values at the look's frame, the keys of those that move, and the command.
    nlohmann::ordered_json json(const Look& look) const;
    std::string presetText(const Look& look) const;
    // The command that renders the look, as words and as a shell takes it.
    std::vector<std::string> words(const Look& look) const;
    std::string command(const Look& look) const;

    // What a parameter is known by in looks: its name, or its option's where others have the same.
    std::string keyOf(const ParameterOption& option) const;
    const std::vector<ParameterOption>& parameters() const { return options; }
    const std::vector<std::int32_t>& frameNumbers() const { return frames; }
    // Also of an option that the look leaves out.
    ParameterCurve curveOf(const Look& look, const ParameterOption& option) const;

private:
    const ParameterOption& optionOf(const std::string& key) const;
    const ParameterCurve* defaultOf(PF_ParamIndex index) const;

    const std::vector<ParameterOption> options;  // without layers
    const std::vector<ParameterCurve> defaults;
    const std::vector<std::int32_t> frames;
    const std::vector<std::string> fixedWords;
};

}  // namespace perch

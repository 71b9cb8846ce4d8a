// What the page shows: a frame, with values of the effect's parameters. A look is as good as a command line.
#pragma once

#include <cstdint>
#include <map>
#include <nlohmann/json_fwd.hpp>
#include <string>
#include <vector>

#include "ParameterArguments.h"
#include "ParameterCurve.h"
#include "ParameterOptions.h"

namespace perch {

struct Look {
    std::int64_t serial = 0;
    std::int32_t frame = 0;
    std::vector<ParameterCurve> curves{};  // in the order of the options; defaults are left out
    // Layers that show another picture than on the command line: by the layer it was given for, or kNoLayer.
    std::map<PF_ParamIndex, PF_ParamIndex> layers{};
};

constexpr PF_ParamIndex kNoLayer = -1;

// The words of a command that no look changes: the program, its command, pictures and settings; and those
// about layers, which a look may exchange.
struct FixedWords {
    std::vector<std::string> words;
    std::vector<LayerWords> layers{};
};

// Understands looks, for one effect and one list of frames.
class LookReader {
public:
    // `defaults` are of all options that can have a value, points in pixels of the full-size layer.
    LookReader(const std::vector<ParameterOption>& options, std::vector<ParameterCurve> defaults,
               std::vector<std::int32_t> frames, FixedWords words);

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
    // Without the layers, and the layers.
    const std::vector<ParameterOption>& parameters() const { return options; }
    const std::vector<ParameterOption>& layers() const { return layerOptions; }
    // What the command line says of layers with a picture.
    std::vector<LayerWords> layerFiles() const;
    // The layer whose picture on the command line a layer shows; kNoLayer for none.
    PF_ParamIndex layerShown(const Look& look, PF_ParamIndex index) const;
    const std::vector<std::int32_t>& frameNumbers() const { return frames; }
    // Also of an option that the look leaves out.
    ParameterCurve curveOf(const Look& look, const ParameterOption& option) const;
    // Throws UsageError where there is no such frame.
    void requireFrame(std::int64_t frame) const;

private:
    const LayerWords* wordsOf(PF_ParamIndex index) const;
    void takeLayer(const ParameterOption& option, const nlohmann::ordered_json& value, Look& look) const;
    const ParameterOption& optionOf(const std::string& key) const;
    const ParameterCurve* defaultOf(PF_ParamIndex index) const;

    const std::vector<ParameterOption> options;
    const std::vector<ParameterOption> layerOptions;
    const std::vector<ParameterCurve> defaults;
    const std::vector<std::int32_t> frames;
    const FixedWords fixedWords;
};

}  // namespace perch

#include "SequenceOptions.h"

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <array>
#include <charconv>
#include <optional>

#include "Error.h"
#include "FrameList.h"
#include "FramePattern.h"
#include "PictureFile.h"
#include "Words.h"

namespace perch {
namespace {

constexpr std::array<Word<MissingFrame>, 2> kMissingFrame{
    {{"error", MissingFrame::Error}, {"skip", MissingFrame::Skip}}};

constexpr std::array<Word<MissingLayerFrame>, 3> kMissingLayerFrame{{{"error", MissingLayerFrame::Error},
                                                                     {"hold", MissingLayerFrame::Hold},
                                                                     {"none", MissingLayerFrame::None}}};

// "2/8". The numbers are read as unsigned ones, which takes digits alone: no sign and no space.
Shard parseShard(const std::string& text) {
    constexpr std::size_t kMostShards = kMostFrames;
    const char* const end = text.data() + text.size();
    std::size_t number = 0;
    std::size_t count = 0;
    const auto [slash, numberError] = std::from_chars(text.data(), end, number);
    const bool isFraction = numberError == std::errc() && slash != end && *slash == '/';
    const auto [rest, countError] = std::from_chars(isFraction ? slash + 1 : end, end, count);
    if (countError != std::errc() || rest != end || number < 1 || number > count || count > kMostShards) {
        throw UsageError(
            fmt::format("--shard takes a number and how many there are, from 1/1 to {0}/{0}, "
                        "like 2/8, not \"{1}\"",
                        kMostShards, text));
    }
    return {.number = number, .count = count};
}

}  // namespace

void addSequenceOptions(CLI::App& app, SequenceTexts& texts) {
    app.add_option(
           "--frames", texts.frames,
           "the frames of the sequence in the order to render them, like 1-24, 1-24x2, 9-1 or 1,3,5-9 "
           "(default: all that exist)")
        ->type_name("LIST");
    app.add_flag("--no-pattern", texts.noPattern, "take names with # and the like as those of single files");
    app.add_option("--missing-frame", texts.missingFrame,
                   "where the input has no file for a frame: error, or skip the frame (default error)")
        ->type_name(listOf(kMissingFrame));
    app.add_option("--missing-layer-frame", texts.missingLayerFrame,
                   "where a layer has no file for a frame: error, hold the one before, or render with none "
                   "(default error)")
        ->type_name(listOf(kMissingLayerFrame));
    app.add_option("--shard", texts.shard,
                   "every N-th of the frames, from the I-th on: the part of one task of N, like 2/8")
        ->type_name("I/N");
}

void takeSequenceOptions(const CLI::App& app, const SequenceTexts& texts, PictureNames& names) {
    if (app.count("--frames") > 0) names.frames = parseFrameList(texts.frames);
    names.areFiles = texts.noPattern;
    names.missingFrame = meaningOf("--missing-frame", texts.missingFrame, kMissingFrame);
    names.missingLayerFrame = meaningOf("--missing-layer-frame", texts.missingLayerFrame, kMissingLayerFrame);
    if (app.count("--shard") > 0) names.shard = parseShard(texts.shard);
}

// The files of a sequence may really be named with a colon.
std::string takeSelected(PictureNames& names) {
    const pictures::SelectedPicture input = pictures::parseSelectedPicture(names.input);
    if (input.selected.empty()) return "";
    const auto pattern = names.areFiles ? std::nullopt : FramePattern::parse(names.input);
    if (pattern && !pattern->framesOnDisk().empty()) return "";
    names.input = input.path;
    return input.selected;
}

}  // namespace perch

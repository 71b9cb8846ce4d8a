#include "PlanReport.h"

#include <fmt/format.h>

#include <algorithm>
#include <iterator>
#include <nlohmann/json.hpp>
#include <set>
#include <string_view>
#include <system_error>
#include <utility>

#include "Error.h"
#include "FailingAs.h"
#include "FileFormat.h"
#include "FrameList.h"
#include "ParameterText.h"
#include "PictureFile.h"

namespace perch {
namespace {

namespace fs = std::filesystem;
using Json = nlohmann::ordered_json;

// A picture of the first frame.
struct PictureFacts {
    std::string use;  // "input", or the option of a layer
    fs::path path;
    std::string selected;  // of the file, a layer or a channel; empty: its first picture
    std::int32_t width;
    std::int32_t height;
    pictures::SampleType type;
    std::size_t channels;
};

// A parameter that was given, with its text at some frames.
struct GivenValue {
    std::string option;
    std::vector<std::pair<std::int32_t, std::string>> values;
};

PictureFacts factsOf(const PlannedJob& job, const std::string& use, const fs::path& path,
                     const std::string& selected) {
    const auto picture =
        failingAs<InputError>([&] { return pictures::readPicture(path, selected, job.settings.reading); });
    return {.use = use,
            .path = path,
            .selected = selected,
            .width = picture.width,
            .height = picture.height,
            .type = picture.type(),
            .channels = picture.channels};
}

std::string selectedOf(const PlannedJob& job, PF_ParamIndex layer) {
    const auto reading = job.parameters.readings.find(layer);
    return reading == job.parameters.readings.end() ? "" : reading->second.selected;
}

std::vector<PictureFacts> firstPictures(const PlannedJob& job) {
    std::vector<PictureFacts> facts;
    if (job.plan.frames.empty()) return facts;
    const FrameFiles& first = job.plan.frames.front();
    facts.push_back(factsOf(job, "input", first.input, job.settings.selectedInput));
    for (const auto* const layers : {&first.layers, &job.plan.stillLayers})
        for (const auto& [index, path] : *layers)
            facts.push_back(factsOf(job, layerOption(job, index), path, selectedOf(job, index)));
    return facts;
}

// Of the first, the middle and the last frame, as far as they differ.
std::vector<GivenValue> givenValues(const PlannedJob& job) {
    std::vector<GivenValue> given;
    const std::vector<FrameFiles>& frames = job.plan.frames;
    if (frames.empty()) return given;
    for (const ParameterCurve& curve : job.parameters.curves) {
        const ParameterOption& option = optionOf(job, curve.index);
        GivenValue value{"--" + option.name, {}};
        for (const std::size_t place : std::set<std::size_t>{0, frames.size() / 2, frames.size() - 1}) {
            const std::int32_t frame = frames[place].frame;
            value.values.emplace_back(frame, valueText(option.parameter, settingAt(curve, frame)));
        }
        given.push_back(std::move(value));
    }
    return given;
}

bool isThere(const fs::path& path) {
    std::error_code ignored;
    return fs::exists(path, ignored);
}

// Of the pictures of all frames at once, should they be as the first's: those that are read ahead, the one
// that renders, and those that wait to be written; layers for all frames once.
std::int64_t memoryFor(const PlannedJob& job, const FramePictures& first) {
    std::int64_t ofStillLayers = 0;
    for (const auto& [index, path] : job.plan.stillLayers)
        ofStillLayers += bytesOf(*first.layers.at(index));
    std::size_t atOnce = std::min(2 * job.settings.framesAhead + 1, job.plan.frames.size());
    if (job.settings.memory) atOnce = std::min(atOnce, framesWithin(*job.settings.memory, first));
    return static_cast<std::int64_t>(atOnce) * (bytesOf(first) - ofStillLayers) + ofStillLayers;
}

std::size_t bitsOf(pictures::SampleType type) {
    if (type == pictures::SampleType::Bits8) return 8;
    return type == pictures::SampleType::Float ? 32 : 16;
}

std::string bitsText(pictures::SampleType type) {
    return fmt::format("{} bits{}", bitsOf(type), isFloat(type) ? " in floating point" : "");
}

int workBits(const FramePictures& pictures) {
    return pictures.input->pixels.isDeep() ? 16 : 8;
}

// Of the first frame's file, whose name has been found to have one.
std::string_view outputFormat(const PlannedJob& job) {
    return nameOf(*pictures::formatOfName(job.plan.frames.front().output));
}

std::string channelsText(std::size_t channels) {
    constexpr const char* kNames[] = {"grey", "grey and alpha", "RGB", "RGBA"};
    return kNames[channels - 1];
}

std::string filesText(const PlannedJob& job, const FrameFiles& files) {
    std::string text = files.input.string();
    for (const auto& [index, path] : files.layers)
        text += fmt::format(", {} {}", layerOption(job, index), path.string());
    for (const PF_ParamIndex index : files.missingLayers)
        text += fmt::format(", {} none", layerOption(job, index));
    return text + fmt::format(" -> {}{}", files.output.string(), isThere(files.output) ? " (exists)" : "");
}

std::vector<std::int32_t> numbersOf(const std::vector<FrameFiles>& frames) {
    std::vector<std::int32_t> numbers;
    for (const FrameFiles& files : frames)
        numbers.push_back(files.frame);
    return numbers;
}

std::size_t existingOutputs(const FramePlan& plan) {
    return static_cast<std::size_t>(
        std::ranges::count_if(plan.frames, [](const FrameFiles& files) { return isThere(files.output); }));
}

Json frameToJson(const PlannedJob& job, const FrameFiles& files) {
    Json layers = Json::object();
    for (const auto& [index, path] : files.layers)
        layers[layerOption(job, index)] = path.string();
    for (const PF_ParamIndex index : files.missingLayers)
        layers[layerOption(job, index)] = nullptr;
    return {{"frame", files.frame},
            {"input", files.input.string()},
            {"layers", layers},
            {"output", files.output.string()},
            {"exists", isThere(files.output)}};
}

}  // namespace

std::string planLine(const FramePlan& plan, const PictureNames& names, bool isFed) {
    const std::string frames = countedFrames(numbersOf(plan.frames));
    const std::string files = fmt::format("{} -> {}", names.input, names.output);
    if (isFed) return fmt::format("{}, can be asked for: {}", frames, files);
    const std::size_t existing = existingOutputs(plan);
    return fmt::format("{}: {}{}", frames, files,
                       existing == 0 ? ""
                                     : fmt::format(" ({} exist{} replaced)", existing,
                                                   existing == 1 ? "s and is" : " and are"));
}

std::string planAsText(const PlannedJob& job, const std::optional<FramePictures>& first) {
    const std::vector<FrameFiles>& frames = job.plan.frames;
    const std::vector<PictureFacts> pictures = firstPictures(job);
    std::string text = frames.empty() ? "no frames\n" : countedFrames(numbersOf(frames)) + '\n';
    for (const PictureFacts& picture : pictures) {
        text += fmt::format("{}: {}{}{}, {} x {}, {}, {}\n", picture.use, picture.path.string(),
                            picture.selected.empty() ? "" : ":", picture.selected, picture.width,
                            picture.height, bitsText(picture.type), channelsText(picture.channels));
    }
    for (const GivenValue& given : givenValues(job)) {
        text += given.option + ':';
        for (const auto& [frame, value] : given.values)
            text += fmt::format("{} {} at frame {}", &value == &given.values.front().second ? "" : ",", value,
                                frame);
        text += '\n';
    }
    if (first) {
        text += fmt::format("work: {} bits\noutput: {}, {}\n", workBits(*first), bitsText(first->output.type),
                            outputFormat(job));
    }
    text += fmt::format("outputs that exist: {} of {}\n", existingOutputs(job.plan), frames.size());
    constexpr double kMegabyte = 1e6;
    text += fmt::format("memory for pictures: {:.1f} MB\n",
                        first ? static_cast<double>(memoryFor(job, *first)) / kMegabyte : 0);
    for (const FrameFiles& files : frames)
        text += fmt::format("frame {}: {}\n", files.frame, filesText(job, files));
    return text;
}

std::string planAsJson(const PlannedJob& job, const std::optional<FramePictures>& first,
                       const std::vector<Note>& notes) {
    const std::vector<PictureFacts> facts = firstPictures(job);
    Json pictures = Json::object();
    for (const PictureFacts& picture : facts) {
        pictures[picture.use] = {{"file", picture.path.string()},    {"width", picture.width},
                                 {"height", picture.height},         {"bits", bitsOf(picture.type)},
                                 {"isFloat", isFloat(picture.type)}, {"channels", picture.channels}};
        if (!picture.selected.empty()) pictures[picture.use]["selected"] = picture.selected;
    }
    Json values = Json::object();
    for (const GivenValue& given : givenValues(job))
        for (const auto& [frame, value] : given.values)
            values[given.option][std::to_string(frame)] = value;
    Json frames = Json::array();
    for (const FrameFiles& files : job.plan.frames)
        frames.push_back(frameToJson(job, files));
    std::vector<std::string> sentences = sentencesOf(job.plan.notes);
    std::ranges::copy(sentencesOf(notes), std::back_inserter(sentences));
    Json json{{"frames", frameListText(numbersOf(job.plan.frames))},
              {"count", job.plan.frames.size()},
              {"upToDate", frameListText(numbersOf(job.plan.current))},
              {"notes", sentences},
              {"firstFrame", pictures},
              {"values", values},
              {"memoryBytes", first ? memoryFor(job, *first) : 0}};
    if (first) {
        json["workBits"] = workBits(*first);
        json["output"] = {{"format", outputFormat(job)},
                          {"bits", bitsOf(first->output.type)},
                          {"isFloat", isFloat(first->output.type)}};
    }
    json["plan"] = frames;
    // Names of files have no certain encoding.
    constexpr int kIndent = 2;
    return json.dump(kIndent, ' ', false, Json::error_handler_t::replace) + '\n';
}

}  // namespace perch

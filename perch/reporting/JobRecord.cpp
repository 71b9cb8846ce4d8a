#include "JobRecord.h"

#include <fmt/format.h>

#include <array>
#include <fstream>
#include <nlohmann/json.hpp>
#include <string_view>

#include "Error.h"
#include "FrameList.h"
#include "StartFolder.h"

namespace perch {
namespace {

using Json = nlohmann::ordered_json;

constexpr int kForm = 1;  // of reports; programs may rely on what it has
constexpr std::array<std::string_view, 3> kStates{"waiting", "done", "failed"};

Json jsonOf(const OptionTexts& texts) {
    Json json = Json::object();
    for (const auto& [option, text] : texts)
        json[option] = text;
    return json;
}

OptionTexts textsOf(const Json& json) {
    OptionTexts texts;
    for (const auto& [option, text] : json.items())
        texts.emplace_back(option, text.get<std::string>());
    return texts;
}

Json jsonOf(const FrameRecord& frame) {
    Json json{{"frame", frame.frame},
              {"state", kStates[static_cast<std::size_t>(frame.state)]},
              {"input", frame.input},
              {"layers", jsonOf(frame.layers)},
              {"output", frame.output},
              {"values", jsonOf(frame.values)},
              {"fingerprint", frame.fingerprint},
              {"retries", frame.retries},
              {"warnings", frame.warnings},
              {"messages", frame.messages}};
    if (frame.outputState) {
        json["outputBytes"] = frame.outputState->bytes;
        json["outputTime"] = frame.outputState->time;
    }
    if (frame.seconds) {
        json["decodeSeconds"] = frame.seconds->decode;
        json["renderSeconds"] = frame.seconds->render;
        json["encodeSeconds"] = frame.seconds->encode;
    }
    if (!frame.error.empty()) json["error"] = frame.error;
    return json;
}

FrameRecord::State stateOf(const Json& json) {
    const auto state = std::ranges::find(kStates, json.get<std::string>());
    if (state == kStates.end()) throw Error("unknown state");
    return static_cast<FrameRecord::State>(state - kStates.begin());
}

FrameRecord frameOf(const Json& json) {
    FrameRecord frame{.frame = json.at("frame").get<std::int32_t>(),
                      .state = stateOf(json.at("state")),
                      .input = json.at("input").get<std::string>(),
                      .layers = textsOf(json.at("layers")),
                      .output = json.at("output").get<std::string>(),
                      .values = textsOf(json.at("values")),
                      .fingerprint = json.at("fingerprint").get<std::string>(),
                      .retries = json.at("retries").get<int>(),
                      .warnings = json.at("warnings").get<std::vector<std::string>>(),
                      .messages = json.at("messages").get<std::vector<std::string>>(),
                      .error = json.value("error", "")};
    if (json.contains("outputBytes")) {
        frame.outputState = FileState{.bytes = json.at("outputBytes").get<std::uintmax_t>(),
                                      .time = json.at("outputTime").get<std::string>()};
    }
    if (json.contains("decodeSeconds")) {
        frame.seconds = FrameRecord::Times{.decode = json.at("decodeSeconds").get<double>(),
                                           .render = json.at("renderSeconds").get<double>(),
                                           .encode = json.at("encodeSeconds").get<double>()};
    }
    return frame;
}

Shard shardOf(const Json& json) {
    const Shard shard{.number = json.at("number").get<std::size_t>(),
                      .count = json.at("count").get<std::size_t>()};
    if (shard.number < 1 || shard.number > shard.count || shard.count > kMostFrames)
        throw Error("no such shard");
    return shard;
}

JobRecord recordOf(const Json& json) {
    if (json.at("form").get<int>() != kForm) throw Error("unknown form");
    JobRecord record{.version = json.at("perch").get<std::string>(),
                     .arguments = json.at("arguments").get<std::vector<std::string>>(),
                     .effect = json.at("effect").get<std::string>(),
                     .effectBuild = json.at("effectBuild").get<std::string>(),
                     .parameters = textsOf(json.at("parameters")),
                     .state = json.at("state").get<std::string>(),
                     .error = json.value("error", ""),
                     .begin = json.at("begin").get<std::string>(),
                     .seconds = json.at("seconds").get<double>(),
                     .skipped = json.at("skipped").get<std::vector<std::int32_t>>(),
                     .notes = json.at("notes").get<std::vector<std::string>>(),
                     .frames = {}};
    if (json.contains("shard")) record.shard = shardOf(json.at("shard"));
    for (const Json& frame : json.at("frames"))
        record.frames.push_back(frameOf(frame));
    return record;
}

}  // namespace

std::string recordText(const JobRecord& record) {
    Json json{{"form", kForm},
              {"perch", record.version},
              {"arguments", record.arguments},
              {"effect", record.effect},
              {"effectBuild", record.effectBuild},
              {"parameters", jsonOf(record.parameters)},
              {"state", record.state},
              {"begin", record.begin},
              {"seconds", record.seconds},
              {"skipped", record.skipped},
              {"notes", record.notes},
              {"frames", Json::array()}};
    if (record.shard) json["shard"] = {{"number", record.shard->number}, {"count", record.shard->count}};
    if (!record.error.empty()) json["error"] = record.error;
    for (const FrameRecord& frame : record.frames)
        json["frames"].push_back(jsonOf(frame));
    // Names of files have no certain encoding.
    constexpr int kIndent = 1;
    return json.dump(kIndent, ' ', false, Json::error_handler_t::replace) + '\n';
}

std::optional<JobRecord> readRecord(const std::filesystem::path& report) {
    std::ifstream file(pictures::placeOf(report));
    if (!file) return std::nullopt;
    try {
        return recordOf(Json::parse(file));
    } catch (const std::exception&) {
        throw InputError(
            fmt::format("\"{}\" is not a report of perch render; name another file, or remove this one",
                        report.string()));
    }
}

std::optional<JobRecord> recordToReplace(const std::filesystem::path& report) {
    try {
        return readRecord(report);
    } catch (const InputError& error) {
        throw UsageError(error.what());
    }
}

FrameTraces tracesOf(const JobRecord& record) {
    FrameTraces traces;
    for (const FrameRecord& frame : record.frames) {
        if (frame.state == FrameRecord::State::Done && frame.outputState)
            traces[{frame.frame, frame.output}] = {.fingerprint = frame.fingerprint,
                                                   .output = *frame.outputState};
    }
    return traces;
}

}  // namespace perch

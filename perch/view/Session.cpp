#include "Session.h"

#include <fmt/format.h>

#include <algorithm>
#include <future>
#include <thread>
#include <utility>

#include "Codec.h"
#include "Console.h"
#include "Error.h"
#include "JsonAnswers.h"
#include "PF_Values.h"
#include "Questions.h"
#include "ReadOut.h"
#include "SessionJson.h"

namespace perch {
namespace {

using Json = nlohmann::ordered_json;

constexpr std::size_t kMostLooks = 8;
constexpr std::chrono::milliseconds kProgressStep{100};

ViewAnswer overtaken(std::uint64_t id) {
    ViewAnswer answer = refusal(409, "a newer picture was asked for");
    answer.id = id;
    return answer;
}

double milliseconds(std::chrono::nanoseconds time) {
    return std::chrono::duration<double, std::milli>(time).count();
}

void take(const std::vector<unsigned char>& bytes, const char* type, ViewAnswer& answer) {
    answer.type = type;
    answer.body.assign(bytes.begin(), bytes.end());
}

// RGBA, straight, or an image file of it. For the screen what it can show first: JPEG, which holds no alpha.
ViewAnswer encoded(const Development& development, const std::string& format) {
    const pictures::Picture picture =
        pictureOf(development.picture, *development.input, pictures::SampleType::Bits8);
    ViewAnswer answer;
    if (format == "png") {
        pictures::Encoding encoding;
        encoding.options.compression = 1;
        take(pictures::codec().encode(picture, encoding).bytes, "image/png", answer);
    } else if (format == "jpeg" || (format == "screen" && needsNoAlpha(development.picture))) {
        take(pictures::codec().encodeForScreen(picture), "image/jpeg", answer);
    } else if (format.empty() || format == "raw" || format == "screen") {
        take(std::get<0>(picture.samples), "application/octet-stream", answer);
    } else {
        throw UsageError(fmt::format("\"format\" is raw, screen, png or jpeg, not \"{}\"", format));
    }
    return answer;
}

}  // namespace

ViewEvent messageEvent(std::string_view message) {
    return {"message", jsonText({{"text", printable(message)}})};
}

Session::Session(const Shot& shot)
    : shot(shot), looks(shot.looks), pick(usualPick(looks)), store(shot), darkroom(shot, store) {
    recent.push_back(shot.first);
}

void Session::run(Wire& wire) {
    wireInUse = &wire;
    wire.send(ViewEvent{"ready", jsonText(looks.json(look()))});
    tellWarnings(wire);
    std::thread reading([&] { read(wire); });
    std::future<void> ahead;
    try {
        while (std::optional<QueuedRequest> queued = queue.next()) {
            ViewAnswer answer = answerInTurn(queued->request);
            answer.id = queued->request.id;
            wire.send(answer);
            tellWarnings(wire);
            const bool isReading =
                ahead.valid() && ahead.wait_for(std::chrono::seconds(0)) != std::future_status::ready;
            if (isReading || queued->kind.empty()) continue;
            ahead = std::async(std::launch::async, [this, frame = look().frame] {
                try {
                    store.readAround(frame);
                } catch (const Error&) {
                    // Told when the frame itself is asked for.
                }
            });
        }
    } catch (...) {
        wire.end();
        reading.join();
        throw;
    }
    reading.join();
}

void Session::tellWarnings(Wire& wire) {
    for (const std::string& sentence : shot.notes.sentences())
        if (toldWarnings.insert(sentence).second)
            wire.send(ViewEvent{"warning", jsonText({{"text", printable(sentence)}})});
}

void Session::read(Wire& wire) {
    while (std::optional<ViewRequest> request = wire.receiveRequest()) {
        if (std::optional<ViewAnswer> refused = takeLookWithin(*request)) {
            refused->id = request->id;
            wire.send(*refused);
            continue;
        }
        if (isAnsweredAtOnce(*request)) {
            ViewAnswer answer = answerAtOnce(*request);
            answer.id = request->id;
            wire.send(answer);
            continue;
        }
        for (const ViewRequest& late : queue.add(queued(std::move(*request))))
            wire.send(overtaken(late.id));
    }
    queue.end();
}

// A picture that is refused in its turn, of a kind or a state that there is not, overtakes none.
QueuedRequest Session::queued(ViewRequest request) const {
    QueuedRequest queued{.request = std::move(request)};
    if (queued.request.path != "/api/picture") return queued;
    const std::optional<std::int64_t> serial = wholeNumber(queued.request.value("serial"));
    const std::optional<std::string_view> kind = kindOf(queued.request);
    if (!serial || !kind || *serial > look().serial) return queued;
    queued.serial = *serial;
    queued.kind = *kind;
    return queued;
}

ViewAnswer Session::answer(ViewRequest request) {
    if (std::optional<ViewAnswer> refused = takeLookWithin(request)) return *refused;
    return isAnsweredAtOnce(request) ? answerAtOnce(request) : answerInTurn(request);
}

bool Session::isAnsweredAtOnce(const ViewRequest& request) const {
    const Question* const question = questionAt(request.path);
    return question == nullptr || !question->isForTheEffect;
}

ViewAnswer Session::answerAtOnce(const ViewRequest& request) {
    const Question* const question = questionAt(request.path);
    if (question == nullptr) return refusal(404, "there is no such page");
    if (!question->takes(request.method)) return wrongMethod(std::string(question->methods));
    try {
        if (request.path == "/api/session") return description();
        if (request.path == "/words") return jsonAnswer(looks.words(look()));
        if (request.path == "/api/preset" && request.method == "PUT") return takePreset(request.body);
        if (request.path == "/api/preset") return {.body = looks.presetText(look())};
        if (request.method == "POST") return takeLook(request.body);
        return jsonAnswer(looks.json(look()));
    } catch (const Error& error) {
        return refusal(422, error.what());
    }
}

ViewAnswer Session::answerInTurn(const ViewRequest& request) {
    const Question& question = *questionAt(request.path);
    if (!question.takes(request.method)) return wrongMethod(std::string(question.methods));
    std::optional<Look> wanted;
    const auto failed = [&](const std::exception& error, const Json& command) {
        return failure(printable(error.what()), wanted ? Json(wanted->frame) : Json(nullptr), command);
    };
    try {
        wanted = lookFor(request);
        if (!wanted) return refusal(409, "that state is no longer known");
        if (request.path == "/api/picture") return picture(request, *wanted);
        if (request.path == "/api/pixel") return pixel(request, *wanted);
        return histogram(*wanted);
    } catch (const Cancelled&) {
        return overtaken(request.id);
    } catch (const EffectBroke&) {
        throw;
    } catch (const UsageError& error) {
        return refusal(422, error.what());
    } catch (const EffectError& error) {
        return failed(error, error.command);
    } catch (const std::exception& error) {
        return failed(error, nullptr);
    }
}

Look Session::look() const {
    const std::lock_guard lock(mutex);
    return recent.back();
}

std::optional<Look> Session::lookOf(std::int64_t serial) const {
    const std::lock_guard lock(mutex);
    const auto found = std::ranges::find(recent, serial, &Look::serial);
    return found != recent.end() ? std::optional(*found) : std::nullopt;
}

// That a request is about; absent where it is forgotten.
std::optional<Look> Session::lookFor(const ViewRequest& request) const {
    if (request.path != "/api/histogram") return lookOf(numberOf(request, "serial"));
    Look wanted = look();
    if (request.value("frame").empty()) return wanted;
    const std::int64_t frame = numberOf(request, "frame");
    looks.requireFrame(frame);
    wanted.frame = static_cast<std::int32_t>(frame);
    return wanted;
}

bool Session::keepLook(Look look) {
    const std::lock_guard lock(mutex);
    if (look.serial <= recent.back().serial) return false;
    recent.push_back(std::move(look));
    if (recent.size() > kMostLooks) recent.pop_front();
    return true;
}

ViewAnswer Session::takeLook(const std::string& body) {
    keepLook(looks.parse(body));
    return jsonAnswer(looks.json(look()));
}

std::optional<ViewAnswer> Session::takeLookWithin(ViewRequest& request) {
    if (request.path != "/api/picture" || request.method != "POST") return std::nullopt;
    try {
        Look sent = looks.parse(request.body);
        request.query["serial"] = std::to_string(sent.serial);
        if (!keepLook(std::move(sent))) return refusal(409, "newer values have been set");
        if (wireInUse != nullptr) wireInUse->send(ViewEvent{kTakenState, request.body});
        return std::nullopt;
    } catch (const Error& error) {
        return refusal(422, error.what());
    }
}

ViewAnswer Session::takePreset(const std::string& body) {
    Look changed = looks.withPreset(look(), body);
    ++changed.serial;
    keepLook(std::move(changed));
    return jsonAnswer(looks.json(look()));
}

ViewAnswer Session::picture(const ViewRequest& request, const Look& wanted) {
    const std::int64_t serial = wanted.serial;
    const std::optional<PictureSize> room = sizeOf(request);
    const std::optional<std::string_view> kind = kindOf(request);
    if (!kind)
        throw UsageError(fmt::format("\"kind\" is {}, {}, {} or {}, not \"{}\"", kResult, kOriginal, kLayer,
                                     kFocus, request.value("kind")));
    // Of a picture that comes at once nothing is told.
    auto toldAt = std::chrono::steady_clock::now();
    const auto progress = [&](double fraction) {
        const auto now = std::chrono::steady_clock::now();
        if (now - toldAt < kProgressStep) return;
        toldAt = now;
        if (wireInUse != nullptr)
            wireInUse->send(ViewEvent{"progress", jsonText({{"serial", serial}, {"fraction", fraction}})});
    };
    const auto develop = [&] {
        if (*kind == kOriginal) return darkroom.original(wanted, room);
        if (*kind == kLayer) {
            const PF_ParamIndex shown = pick ? looks.layerShown(wanted, pick->layer) : kNoLayer;
            if (shown == kNoLayer) throw UsageError("there is no layer to be shown");
            return darkroom.layer(wanted, shown, room);
        }
        const Look view = *kind == kFocus ? inFocusView(wanted, looks) : wanted;
        return darkroom.render(view, room, queue.cancelled(), progress);
    };
    Development development = develop();
    const auto begin = std::chrono::steady_clock::now();
    ViewAnswer answer = encoded(development, request.value("format"));
    answer.headers = {{"X-Serial", fmt::format("{}", serial)},
                      {"X-Width", fmt::format("{}", development.picture.width())},
                      {"X-Height", fmt::format("{}", development.picture.height())},
                      {"X-Full", development.isFull ? "1" : "0"},
                      {"Server-Timing",
                       fmt::format("decode;dur={:.2f}, render;dur={:.2f}, encode;dur={:.2f}",
                                   milliseconds(development.decodeTime), milliseconds(development.renderTime),
                                   milliseconds(std::chrono::steady_clock::now() - begin))}};
    if (development.isFull && *kind == kResult) {
        fullSerial = serial;
        store.keepResult(std::move(development.picture));
    }
    return answer;
}

ViewAnswer Session::pixel(const ViewRequest& request, const Look& wanted) {
    const FrameFiles& files = store.filesOf(wanted.frame);
    const SharedPicture input = store.input(files);
    const std::int64_t x = numberOf(request, "x");
    const std::int64_t y = numberOf(request, "y");
    if (x < 0 || y < 0 || x >= input->width || y >= input->height)
        throw UsageError(fmt::format("the picture has {} x {} pixels; there is none at {}, {}", input->width,
                                     input->height, x, y));
    Json json{{"source", codesAt(*input, static_cast<std::int32_t>(x), static_cast<std::int32_t>(y))},
              {"result", nullptr},
              {"layer", nullptr},
              {"depth", input->type() == pictures::SampleType::Bits8 ? 8 : 16},
              {"value", nullptr},
              {"distance", nullptr}};
    // Light in floats is not what the effect's codes are.
    const auto full = fullSerial == wanted.serial ? store.result() : nullptr;
    const bool isKnown =
        full != nullptr && !isFloat(input->type()) && x < full->pixels.width() && y < full->pixels.height();
    if (isKnown)
        json["result"] = codesAt(full->pixels, static_cast<std::int32_t>(x), static_cast<std::int32_t>(y),
                                 input->type() == pictures::SampleType::Bits16);
    const PF_ParamIndex shown = pick ? looks.layerShown(wanted, pick->layer) : kNoLayer;
    const SharedPicture layer = store.layer(files, shown);
    if (layer == nullptr) return jsonAnswer(json);
    // A layer of another size covers the same picture.
    const auto layerX =
        static_cast<std::int32_t>((2 * x + 1) * layer->width / (2 * std::int64_t{input->width}));
    const auto layerY =
        static_cast<std::int32_t>((2 * y + 1) * layer->height / (2 * std::int64_t{input->height}));
    const double share = shareAt(*layer, layerX, layerY, controlChannel(wanted, looks));
    json["layer"] = codesAt(*layer, layerX, layerY);
    json["value"] = pickedValue(wanted, looks, *pick, share);
    const auto reading = shot.settings.layers.find(shown);
    if (reading != shot.settings.layers.end() && reading->second.range)
        json["distance"] = distanceOf(share, *reading->second.range);
    return jsonAnswer(json);
}

ViewAnswer Session::histogram(const Look& wanted) {
    const PF_ParamIndex shown = pick ? looks.layerShown(wanted, pick->layer) : kNoLayer;
    const SharedPicture layer = store.layer(store.filesOf(wanted.frame), shown);
    if (layer == nullptr) return jsonAnswer({{"bins", Json::array()}});
    return jsonAnswer({{"bins", histogramOf(*layer, controlChannel(wanted, looks))}});
}

ViewAnswer Session::description() {
    const SharedPicture first = store.input(shot.plan.frames.front());
    const FrameRequest usual;
    const double rate = static_cast<double>(usual.timeScale) / usual.timeStep;
    Json json = sessionJson(shot.effect.description(), looks, pick);
    json["picture"] = {{"width", first->width},
                       {"height", first->height},
                       {"depth", first->type() == pictures::SampleType::Bits8 ? 8 : 16},
                       {"frames", looks.frameNumbers()},
                       {"rate", first->frameRate > 0 ? first->frameRate : rate},
                       {"input", shot.input}};
    json["warnings"] = shot.notes.sentences();
    json["state"] = looks.json(look());
    return jsonAnswer(json);
}

}  // namespace perch

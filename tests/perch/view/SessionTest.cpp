#include "Session.h"

#include <gtest/gtest.h>
#include <sys/socket.h>

#include <filesystem>
#include <memory>
#include <nlohmann/json.hpp>
#include <thread>

#include "Codec.h"
#include "Error.h"
#include "Misdeeds.h"
#include "ParameterText.h"
#include "PixelAccess.h"
#include "RenderJob.h"
#include "TemporaryFolder.h"
#include "WorldPictures.h"

namespace perch::test {
namespace {

using Json = nlohmann::json;

constexpr std::int32_t kWidth = 64;
constexpr std::int32_t kHeight = 36;
constexpr PF_ParamIndex kControlLayer = 3;

// Two frames of noise, with a matte that is white on the right.
class ShotTest : public testing::Test {
protected:
    ShotTest() {
        for (int frame = 1; frame <= 2; ++frame) {
            const std::string number = std::to_string(frame) + ".png";
            writeWorld(folder / ("in." + number),
                       noise<PF_Pixel>(kWidth, kHeight, static_cast<unsigned>(frame)), true);
            plan.frames.push_back({frame,
                                   folder / ("in." + number),
                                   folder / ("out." + number),
                                   {{kControlLayer, folder / "matte.png"}}});
        }
        plan.isSequence = true;
        plan.firstFrame = 1;
        plan.lastFrame = 2;
        World matte = filled<PF_Pixel>(kWidth, kHeight, {255, 51, 51, 51});
        for (std::int32_t y = 0; y < kHeight; ++y)
            for (std::int32_t x = kWidth / 2; x < kWidth; ++x)
                rowOf<PF_Pixel>(matte.record(), y)[x] = {255, 255, 255, 255};
        writeWorld(folder / "matte.png", matte, false);
    }

    const TemporaryFolder folder;
    FramePlan plan;
    RenderSettings settings;
    Notes notes;
};

// A session of Kestrel on the shot.
class SessionTest : public ShotTest {
protected:
    LookReader reader() const {
        const std::vector<ParameterOption> options = parameterOptions(effect.description().parameters, {});
        std::vector<ParameterCurve> defaults;
        for (const ParameterOption& option : options)
            if (const auto setting = parseSetting(option.parameter, defaultText(option.parameter)))
                defaults.push_back(constantCurve(*setting));
        return {options,
                defaults,
                {1, 2},
                {.words = {"perch", "render"}, .layers = {{.index = kControlLayer, .picture = "matte.png"}}}};
    }

    ViewAnswer ask(const std::string& method, const std::string& path,
                   std::map<std::string, std::string> query, const std::string& body = {}) {
        return session.answer(
            {.id = 0, .method = method, .path = path, .query = std::move(query), .body = body});
    }

    ViewAnswer show(int serial, int frame, const std::string& parameters) {
        const Json state{{"serial", serial}, {"frame", frame}, {"parameters", Json::parse(parameters)}};
        return ask("POST", "/api/state", {}, state.dump());
    }

    // What perch render makes of the look, as the page gets pictures.
    std::string rendered(const RenderSettings& asked, const std::string& parameters, int frame) {
        const Look look = looks.parse(
            Json{{"serial", 1}, {"frame", frame}, {"parameters", Json::parse(parameters)}}.dump());
        FramePlan one = plan;
        one.frames = {plan.frames[static_cast<std::size_t>(frame - 1)]};
        RenderReport report;
        renderFrames(effect, asked, look.curves, one, {}, report);
        const FileWorld result = readWorld(one.frames.front().output);
        const pictures::Picture picture = pictureOf(result.pixels, result, pictures::SampleType::Bits8);
        const auto& samples = std::get<0>(picture.samples);
        return {samples.begin(), samples.end()};
    }

    Effect effect{std::filesystem::path(PERCH_EFFECT), HostOptions{}};
    const LookReader looks = reader();
    Session session{{.effect = effect,
                     .settings = settings,
                     .plan = plan,
                     .looks = looks,
                     .notes = notes,
                     .first = {.frame = 1},
                     .input = "in.#.png",
                     .memory = std::int64_t{1} << 20}};
};

constexpr char kBlurred[] = R"({"Focal Point": 20, "Maximum Blur": 12, "Blur Type": "Fine"})";

TEST_F(SessionTest, ThePictureIsTheCommands) {
    for (const int frame : {1, 2, 1}) {
        static int serial = 0;
        ++serial;
        show(serial, frame, kBlurred);
        const ViewAnswer picture =
            ask("GET", "/api/picture", {{"serial", std::to_string(serial)}, {"size", "full"}});
        ASSERT_EQ(picture.status, 200) << picture.body;
        EXPECT_EQ(picture.headers.at("X-Width"), "64");
        EXPECT_EQ(picture.headers.at("X-Height"), "36");
        EXPECT_EQ(picture.headers.at("X-Full"), "1");
        EXPECT_TRUE(picture.body == rendered({}, kBlurred, frame)) << frame;
    }
}

TEST_F(SessionTest, APreviewIsWhatTheCommandMakesOfSmallerPictures) {
    show(1, 1, kBlurred);
    const ViewAnswer picture = ask("GET", "/api/picture", {{"serial", "1"}, {"size", "32x100"}});
    ASSERT_EQ(picture.status, 200) << picture.body;
    EXPECT_EQ(picture.headers.at("X-Width"), "32");
    EXPECT_EQ(picture.headers.at("X-Height"), "18");
    EXPECT_EQ(picture.headers.at("X-Full"), "0");
    RenderSettings smaller;
    smaller.downsample = {1, 2};
    smaller.resizes = true;
    EXPECT_TRUE(picture.body == rendered(smaller, kBlurred, 1));
}

TEST_F(SessionTest, WithoutItsLayerThePictureStaysAsItIs) {
    show(1, 1, R"({"Maximum Blur": 12, "Control Layer": "none"})");
    const std::string original = ask("GET", "/api/picture", {{"serial", "1"}, {"kind", "original"}}).body;
    EXPECT_TRUE(ask("GET", "/api/picture", {{"serial", "1"}}).body == original);
    EXPECT_EQ(ask("GET", "/api/histogram", {}).body, R"({"bins":[]})")
        << "no error, which browsers would tell of";
    EXPECT_EQ(ask("GET", "/api/picture", {{"serial", "1"}, {"kind", "layer"}}).status, 422);
    show(2, 1, R"({"Maximum Blur": 12, "Control Layer": "matte.png"})");
    EXPECT_FALSE(ask("GET", "/api/picture", {{"serial", "2"}}).body == original);
}

TEST_F(SessionTest, TheNewestStateIsTheOneThatIsShown) {
    show(3, 1, R"({"Focal Point": 30})");
    const ViewAnswer late = show(2, 2, R"({"Focal Point": 20})");
    EXPECT_EQ(Json::parse(late.body)["parameters"]["Focal Point"], 30);
    EXPECT_EQ(Json::parse(ask("GET", "/api/state", {}).body)["serial"], 3);
    EXPECT_EQ(ask("GET", "/api/picture", {{"serial", "2"}}).status, 409);
    for (int serial = 4; serial < 20; ++serial)
        show(serial, 1, "{}");
    EXPECT_EQ(ask("GET", "/api/picture", {{"serial", "3"}}).status, 409);
    EXPECT_EQ(ask("GET", "/api/picture", {{"serial", "19"}}).status, 200);
}

TEST_F(ShotTest, AnErrorOfTheEffectIsToldWithFrameAndCommandAndTheNextPictureGoesOn) {
    for (FrameFiles& files : plan.frames)
        files.layers.clear();
    Effect hostile(std::filesystem::path(PERCH_TEST_PLUGINS) / "Hostile.so", HostOptions{});
    const LookReader nothing({}, {}, {1, 2}, {.words = {"perch", "render"}});
    Session broken({.effect = hostile,
                    .settings = settings,
                    .plan = plan,
                    .looks = nothing,
                    .notes = notes,
                    .first = {.frame = 2}});
    const ViewRequest picture{
        .id = 0, .method = "GET", .path = "/api/picture", .query = {{"serial", "0"}}, .body = {}};
    const std::string newer = R"({"serial": 1, "frame": 1, "parameters": {}})";
    broken.answer({.id = 0, .method = "POST", .path = "/api/state", .query = {}, .body = newer});
    {
        const HostileMode mode("error@RENDER");
        const ViewAnswer answer = broken.answer(picture);
        EXPECT_EQ(answer.status, 500);
        const Json told = Json::parse(answer.body);
        EXPECT_EQ(told["frame"], 2);
        EXPECT_EQ(told["command"], "RENDER");
        EXPECT_FALSE(told["error"].get<std::string>().empty());
    }
    EXPECT_EQ(broken.answer(picture).status, 200);
}

TEST_F(SessionTest, AStateAndItsPictureAreOneQuestion) {
    const auto shown = [&](int serial, const std::string& parameters) {
        const Json state{{"serial", serial}, {"frame", 1}, {"parameters", Json::parse(parameters)}};
        return ask("POST", "/api/picture", {{"size", "full"}}, state.dump());
    };
    const ViewAnswer picture = shown(4, kBlurred);
    EXPECT_EQ(picture.status, 200);
    EXPECT_EQ(picture.headers.at("X-Serial"), "4");
    EXPECT_TRUE(picture.body == ask("GET", "/api/picture", {{"serial", "4"}}).body);
    EXPECT_EQ(Json::parse(ask("GET", "/api/state", {}).body)["parameters"]["Focal Point"], 20);
    EXPECT_EQ(shown(4, R"({"Focal Point": 30})").status, 409);
    EXPECT_EQ(shown(5, R"({"Focal Point": 1000})").status, 422);
    EXPECT_EQ(Json::parse(ask("GET", "/api/state", {}).body)["parameters"]["Focal Point"], 20);
    EXPECT_FALSE(shown(5, R"({"Focal Point": 30})").body == picture.body);
}

TEST_F(SessionTest, ForTheScreenPicturesThatLackAlphaAreJpeg) {
    show(1, 1, "{}");
    const auto picture = [&](const std::string& kind, const std::string& format) {
        return ask("GET", "/api/picture", {{"serial", "1"}, {"kind", kind}, {"format", format}});
    };
    EXPECT_TRUE(picture("original", "screen").body == picture("original", "raw").body);
    const ViewAnswer jpeg = picture("layer", "screen");
    ASSERT_EQ(jpeg.type, "image/jpeg");
    const pictures::Picture matte =
        pictures::codec().decode({reinterpret_cast<const unsigned char*>(jpeg.body.data()), jpeg.body.size()},
                                 pictures::FileFormat::Jpeg, "", {});
    const auto& samples = std::get<0>(matte.samples);
    ASSERT_EQ(samples.size(), std::size_t{3} * kWidth * kHeight);
    for (std::size_t i = 0; i < samples.size(); ++i)
        EXPECT_NEAR(samples[i], i / 3 % kWidth < kWidth / 2 ? 51 : 255, 3) << i;
}

TEST_F(SessionTest, WhatIsNotUnderstoodIsRefusedInASentence) {
    EXPECT_EQ(show(1, 1, R"({"Focal Point": 1000})").status, 422);
    EXPECT_EQ(show(1, 9, "{}").status, 422);
    show(1, 1, "{}");
    for (const std::map<std::string, std::string>& query :
         std::vector<std::map<std::string, std::string>>{{},
                                                         {{"serial", "x"}},
                                                         {{"serial", "1"}, {"size", "0x0"}},
                                                         {{"serial", "1"}, {"size", "-1x5"}},
                                                         {{"serial", "1"}, {"kind", "/etc/passwd"}},
                                                         {{"serial", "1"}, {"format", "exe"}}}) {
        const ViewAnswer answer = ask("GET", "/api/picture", query);
        EXPECT_EQ(answer.status, 422) << answer.body;
        EXPECT_FALSE(Json::parse(answer.body)["error"].get<std::string>().empty());
    }
    EXPECT_EQ(ask("GET", "/api/nothing", {}).status, 404);
    for (const char* const frame : {"3", "4294967297", "x", "-1"})
        EXPECT_EQ(ask("GET", "/api/histogram", {{"frame", frame}}).status, 422) << frame;
}

TEST_F(SessionTest, WhatAPathDoesNotTakeIsRefusedWithWhatItTakes) {
    struct Case {
        const char* path;
        const char* method;
        const char* taken;
    };
    for (const auto& [path, method, taken] :
         {Case{"/api/session", "POST", "GET"}, Case{"/api/state", "DELETE", "GET, POST"},
          Case{"/api/state", "PUT", "GET, POST"}, Case{"/api/preset", "DELETE", "GET, PUT"},
          Case{"/api/picture", "PUT", "GET, POST"}, Case{"/api/pixel", "DELETE", "GET"},
          Case{"/api/histogram", "PUT", "GET"}}) {
        const ViewAnswer answer = ask(method, path, {{"serial", "0"}}, "{}");
        EXPECT_EQ(answer.status, 405) << method << ' ' << path;
        EXPECT_EQ(answer.headers.at("Allow"), taken);
        EXPECT_NE(answer.body.find(taken), std::string::npos) << answer.body;
    }
    EXPECT_EQ(Json::parse(ask("GET", "/api/state", {}).body)["serial"], 0);
}

TEST_F(SessionTest, APictureThatIsRefusedOvertakesNone) {
    show(5, 1, "{}");
    int sockets[2];
    ASSERT_EQ(socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, sockets), 0);
    Wire ours(sockets[0]);
    Wire theirs(sockets[1]);
    // Both are in the queue before anything is answered.
    std::uint64_t id = 0;
    for (const auto& [serial, kind] : {std::pair{"0", "result"}, {"5x", "result"}, {"5", "of no kind"}})
        ours.send(ViewRequest{.id = ++id,
                              .method = "GET",
                              .path = "/api/picture",
                              .query = {{"serial", serial}, {"kind", kind}, {"size", "8x8"}},
                              .body = {}});
    std::map<std::uint64_t, int> statuses;
    std::thread page([&] {
        while (statuses.size() < id) {
            const auto received = ours.receiveAnswer();
            if (!received) break;
            const auto* const answer = std::get_if<ViewAnswer>(&*received);
            if (answer != nullptr) statuses[answer->id] = answer->status;
        }
        ours.end();
    });
    session.run(theirs);
    page.join();
    EXPECT_EQ(statuses, (std::map<std::uint64_t, int>{{1, 200}, {2, 422}, {3, 422}}));
}

TEST_F(SessionTest, APixelTellsWhatAPickWouldSet) {
    show(1, 1, "{}");
    const Json left = Json::parse(ask("GET", "/api/pixel", {{"serial", "1"}, {"x", "3"}, {"y", "4"}}).body);
    EXPECT_NEAR(left["value"].get<double>(), 20, 1e-9);
    EXPECT_EQ(left["layer"][0], 51);
    EXPECT_EQ(left["depth"], 8);
    EXPECT_EQ(left["result"], nullptr);
    const Json right =
        Json::parse(ask("GET", "/api/pixel", {{"serial", "1"}, {"x", "63"}, {"y", "35"}}).body);
    EXPECT_NEAR(right["value"].get<double>(), 100, 1e-9);
    show(2, 1, R"({"Invert Control": true})");
    const Json inverted =
        Json::parse(ask("GET", "/api/pixel", {{"serial", "2"}, {"x", "3"}, {"y", "4"}}).body);
    EXPECT_NEAR(inverted["value"].get<double>(), 80, 1e-9);
    EXPECT_EQ(ask("GET", "/api/pixel", {{"serial", "2"}, {"x", "64"}, {"y", "4"}}).status, 422);
    const std::string picture = ask("GET", "/api/picture", {{"serial", "2"}, {"size", "full"}}).body;
    const Json rendered =
        Json::parse(ask("GET", "/api/pixel", {{"serial", "2"}, {"x", "3"}, {"y", "4"}}).body);
    const auto pixel = static_cast<std::size_t>(4 * (4 * kWidth + 3));
    for (std::size_t channel = 0; channel < 4; ++channel)
        EXPECT_EQ(rendered["result"][channel], static_cast<unsigned char>(picture[pixel + channel]));
}

TEST_F(SessionTest, TheHistogramCountsEveryPixelOfTheLayer) {
    const Json bins = Json::parse(ask("GET", "/api/histogram", {{"frame", "2"}}).body)["bins"];
    EXPECT_EQ(bins[51], kWidth * kHeight / 2);
    EXPECT_EQ(bins[255], kWidth * kHeight / 2);
}

TEST_F(SessionTest, TheDescriptionHasWhatControlsAreMadeOf) {
    const Json json = Json::parse(ask("GET", "/api/session", {}).body);
    EXPECT_EQ(json["effect"]["name"], "Kestrel");
    EXPECT_EQ(json["picture"]["width"], kWidth);
    EXPECT_EQ(json["pick"]["parameter"], "Focal Point");
    EXPECT_EQ(json["pick"]["layer"], "Control Layer");
    const Json& blurType = json["parameters"][1];
    EXPECT_EQ(blurType["type"], "popup");
    EXPECT_EQ(blurType["items"], Json({"Coarse", "Fine"}));
    EXPECT_EQ(blurType["default"], "Coarse");
    EXPECT_EQ(json["parameters"][2]["default"], "matte.png");
    for (const Json& parameter : json["parameters"])
        EXPECT_FALSE(parameter["hint"].get<std::string>().empty()) << parameter["name"];
    EXPECT_EQ(json["warnings"], Json::array());
    EXPECT_EQ(json["state"]["frame"], 1);
}

TEST_F(SessionTest, RequestsOverTheWireAreAnsweredUntilItsEnd) {
    int sockets[2];
    ASSERT_EQ(socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, sockets), 0);
    Wire ours(sockets[0]);
    Wire theirs(sockets[1]);
    int answers = 0;
    std::thread page([&] {
        const std::string state = R"({"serial": 1, "frame": 2, "parameters": {}})";
        ours.send(ViewRequest{.id = 7, .method = "POST", .path = "/api/state", .query = {}, .body = state});
        ours.send(ViewRequest{
            .id = 8, .method = "GET", .path = "/api/picture", .query = {{"serial", "1"}}, .body = {}});
        while (auto received = ours.receiveAnswer()) {
            const auto* const answer = std::get_if<ViewAnswer>(&*received);
            if (answer == nullptr) continue;
            EXPECT_EQ(answer->status, 200) << answer->body;
            EXPECT_EQ(answer->id, static_cast<std::uint64_t>(7 + answers));
            if (++answers == 2) break;
        }
        ours.end();
    });
    session.run(theirs);
    page.join();
    EXPECT_EQ(answers, 2);
}

}  // namespace
}  // namespace perch::test

// Every way to misbehave that Hostile.so has, through the built program: a sentence, in time, the right exit
// code, no file that is not whole, and nothing that claims success without a picture.
#include <gtest/gtest.h>

#include <chrono>

#include "CommandLine.h"
#include "Misdeeds.h"
#include "PictureFiles.h"

namespace perch::test {
namespace {

constexpr auto kInTime = std::chrono::seconds(60);
const char kPlugin[] = "{plugins}/Hostile.so";
const std::string kEndOfPng = "IEND\xAE\x42\x60\x82";

bool tellsOfTheEnd(const std::string& text, const Misdeed& misdeed) {
    const bool isInRender = misdeed.place == "pixel" || misdeed.place == "thread";
    return tellsOfTheEnd(text, misdeed.end, isInRender ? "RENDER" : misdeed.place);
}

std::string lastLine(const std::string& text) {
    const std::size_t end = text.find_last_not_of('\n') + 1;
    return text.substr(0, end).substr(text.rfind('\n', end - 1) + 1);
}

class MisdeedsTest : public testing::TestWithParam<Misdeed> {
protected:
    const CommandLine commandLine;

    ProgramResult runInTime(const std::string& command) {
        const HostileMode mode(GetParam().mode());
        const auto start = std::chrono::steady_clock::now();
        ProgramResult result = commandLine.run(command);
        EXPECT_LT(std::chrono::steady_clock::now() - start, kInTime);
        return result;
    }

    // The exit code: the effect's fault, except where it keeps the host from writing.
    static int failure() { return GetParam().deed == "file-limit" ? 4 : 6; }

    void renderAndExpect(const std::string& options, int status) {
        const std::vector<std::string> files = commandLine.files();
        const ProgramResult result = runInTime("perch render --plugin " + std::string(kPlugin) +
                                               " -i rgb8.png -o out.png --threads 3" + options +
                                               (GetParam().end == End::Hang ? " --timeout-frame 0.5" : ""));
        EXPECT_EQ(result.status, status) << result.err;
        EXPECT_EQ(result.out, "");
        std::vector<std::string> left = commandLine.files();
        const bool hasPicture = std::erase(left, "out.png") == 1;
        EXPECT_EQ(left, files);
        EXPECT_TRUE(status != 0 || hasPicture) << "success without a picture";
        EXPECT_TRUE(status == 0 || lastLine(result.err).starts_with("perch: ")) << result.err;
        EXPECT_TRUE(!endsTheEffect(GetParam().end) || tellsOfTheEnd(lastLine(result.err), GetParam()))
            << result.err;
        EXPECT_EQ(result.err.find('\x1B'), std::string::npos);
        EXPECT_TRUE(!hasPicture || bytesOf(commandLine.folder / "out.png").ends_with(kEndOfPng))
            << "half a picture";
        lastErr = result.err;
    }

    std::string lastErr;
};

class RenderMisdeedsTest : public MisdeedsTest {};
class CheckMisdeedsTest : public MisdeedsTest {};

TEST_P(RenderMisdeedsTest, RenderEndsWithASentence) {
    const End end = GetParam().end;
    renderAndExpect("", endsTheEffect(end) ? 8 : end == End::Failure ? failure() : 0);
}

TEST_P(RenderMisdeedsTest, StrictRenderNamesTheFault) {
    const End end = GetParam().end;
    const bool isFault = end == End::Failure || !GetParam().strict.empty();
    renderAndExpect(" --strict", endsTheEffect(end) ? 8 : isFault ? failure() : 0);
    EXPECT_NE(lastErr.find(GetParam().strict), std::string::npos) << lastErr;
}

// Every rule loads the effect and ends it; most of them render.
TEST_P(CheckMisdeedsTest, CheckFailsTheRule) {
    const ProgramResult result = runInTime("perch check " + std::string(kPlugin) + " --rule 3" +
                                           (GetParam().end == End::Hang ? " --timeout 1" : ""));
    const bool isFault =
        endsTheEffect(GetParam().end) || GetParam().end == End::Failure || !GetParam().strict.empty();
    // A limit on files is not in the way of frames that are not written.
    const bool isPassed = !isFault || GetParam().deed == "file-limit";
    EXPECT_EQ(result.status, isPassed ? 0 : 6) << result.out << result.err;
    EXPECT_NE(result.out.find(isPassed ? " ok\n" : " FAILED: "), std::string::npos) << result.out;
    EXPECT_TRUE(isPassed || !endsTheEffect(GetParam().end) || tellsOfTheEnd(result.out, GetParam()))
        << result.out;
}

std::string nameOf(const testing::TestParamInfo<Misdeed>& test) {
    std::string name = test.param.deed + "At" + test.param.place;
    std::erase_if(name, [](unsigned char c) { return std::isalnum(c) == 0 && c != '_'; });
    return name;
}

// A render loads the image library, which takes most of a test's time: each end in RENDER, and a part of them
// elsewhere. `check` meets them all.
std::vector<Misdeed> rendered() {
    constexpr std::size_t kOneIn = 5;
    std::vector<Misdeed> chosen;
    for (std::size_t i = 0; i < misdeeds().size(); ++i) {
        if (!misdeeds()[i].isOfTheMatrix || misdeeds()[i].place == "RENDER" || i % kOneIn == 0)
            chosen.push_back(misdeeds()[i]);
    }
    return chosen;
}

INSTANTIATE_TEST_SUITE_P(Hostile, RenderMisdeedsTest, testing::ValuesIn(rendered()), nameOf);
INSTANTIATE_TEST_SUITE_P(Hostile, CheckMisdeedsTest, testing::ValuesIn(misdeeds()), nameOf);

}  // namespace
}  // namespace perch::test

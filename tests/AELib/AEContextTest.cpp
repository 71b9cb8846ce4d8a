// Host services through the context: progress, threads, handles and versions.

#include "AEContext.h"

#include <atomic>
#include <cstring>

#include "Errors.h"
#include "HandleMemory.h"
#include "TestEffect.h"

namespace {

using AELib::AEContext;

constexpr char kFile[] = "AELib/AELib Source/AEContext";

class AEContextTest : public HostedEffectTest {};

TEST_F(AEContextTest, RatiosAreThoseOfTheHost) {
    host.in.downsample_x = {1, 2};
    host.in.downsample_y = {1, 4};
    host.in.pixel_aspect_ratio = {3, 2};
    const AEContext context = makeContext();
    EXPECT_EQ(0.5F, context.downsampleX);
    EXPECT_EQ(0.25F, context.downsampleY);
    EXPECT_EQ(0.75F, context.pixelAspectRatio);
    EXPECT_EQ(0.75F, context.getPixelAspectRatio());
}

TEST_F(AEContextTest, RatiosWithADenominatorOfZeroAreOne) {
    host.in.downsample_x = host.in.downsample_y = host.in.pixel_aspect_ratio = {5, 0};
    const AEContext context = makeContext();
    EXPECT_EQ(1.0F, context.downsampleX);
    EXPECT_EQ(1.0F, context.downsampleY);
    EXPECT_EQ(1.0F, context.getPixelAspectRatio());
}

TEST_F(AEContextTest, DefaultHasNoCall) {
    const AEContext context;
    EXPECT_EQ(nullptr, context.inData);
    EXPECT_EQ(nullptr, context.outData);
    EXPECT_EQ(nullptr, context.params);
    EXPECT_EQ(nullptr, context.output);
    EXPECT_EQ(nullptr, context.extra);
    EXPECT_EQ(nullptr, context.globalManager);
    EXPECT_EQ(nullptr, context.sequenceManager);
}

TEST_F(AEContextTest, AssignmentCopiesTheWholeCall) {
    host.in.downsample_x = {1, 2};
    host.in.downsample_y = {1, 4};
    TestSequence sequence;
    HostWorld picture(1, 1, false);
    host.output = &picture.def;
    AEContext context = makeContext(PF_Cmd_UPDATE_PARAMS_UI, &sequence);
    context.sequenceManager = &sequence;
    context.setProgress(0.25F, 0.75F);
    host.param(0).uu.id = 77;
    context.copyParam(0);

    AEContext copy;
    copy = context;
    ASSERT_EQ(1U, copy.paramCopies.size());
    EXPECT_EQ(0, std::memcmp(&context.paramCopies[0], &copy.paramCopies[0], sizeof(PF_ParamDef)));
    EXPECT_NE(&context.paramCopies[0], &copy.paramCopies[0]);
    EXPECT_EQ(PF_Cmd_UPDATE_PARAMS_UI, copy.cmd);
    EXPECT_EQ(&host.in, copy.inData);
    EXPECT_EQ(&host.out, copy.outData);
    EXPECT_EQ(params.data(), copy.params);
    EXPECT_EQ(&picture.def, copy.output);
    EXPECT_EQ(&sequence, copy.extra);
    EXPECT_EQ(&manager, copy.globalManager);
    EXPECT_EQ(&sequence, copy.sequenceManager);
    EXPECT_EQ(0.5F, copy.downsampleX);
    EXPECT_EQ(0.25F, copy.downsampleY);
    EXPECT_EQ(0.5F, copy.pixelAspectRatio);
    EXPECT_EQ(2500, copy.progressOffset);
    EXPECT_EQ(5000, copy.progressScale);
}

TEST_F(AEContextTest, OnlyBestQualityIsNoDraft) {
    for (const PF_Quality quality : {-1, 0, 1, 2}) {
        host.in.quality = quality;
        EXPECT_EQ(quality != 1, makeContext().isDraftMode()) << quality;
    }
}

TEST_F(AEContextTest, CurrentTimeIsTheHosts) {
    host.in.current_time = -77;
    EXPECT_EQ(-77, makeContext().getCurrentTime());
}

TEST_F(AEContextTest, AbortThrowsTheHostsCode) {
    const AEContext context = makeContext();
    EXPECT_EQ(0, CodeOf([&] { context.checkAbort(); }));
    host.failures.at(Callback::kAbort, 1, 517);
    EXPECT_EQ(517, CodeOf([&] { context.checkAbort(); }));
}

struct ProgressCase {
    float start, end;  // of the range
    int i, n;
    float base, span;
    int reported;  // -1 for nothing
};

TEST_F(AEContextTest, ProgressReportsEverySixteenthStepOfItsRange) {
    const ProgressCase cases[] = {
        {0, 1, 15, 100, 0, 1, -1},
        {0, 1, 16, 100, 0, 1, 1600},
        {0, 1, 17, 100, 0, 1, -1},
        {0, 1, 0, 100, 0, 1, 0},
        {0, 1, 32, 32, 0, 1, 10000},
        {0.5F, 1, 0, 10, 0, 1, 5000},
        {0.5F, 1, 16, 32, 0, 1, 7500},
        {0, 1, 16, 32, 0.5F, 0.5F, 7500},
        {0.25F, 0.75F, 16, 32, 0.5F, 0.5F, 6250},
        {0, 1, 16, 48, 0, 1, 3333},  // truncates
        {0, 1, 16, 3, 0.1F, 0, 0},   // n * base truncates before it is scaled
        {0.5F, 1, 16, 30000, 0, 1, 5002},
        {0, 1, 1600000, 3200000, 0, 1, 5000},  // beyond 32 bits on the way
        {0, 1, 0, 0, 0, 1, -1},
        {0, 1, 16, 0, 0, 1, -1},
        {1, 0, 16, 32, 0, 1, 5000},  // a range that runs backwards
    };
    for (const ProgressCase& c : cases) {
        host.progress.clear();
        AEContext context = makeContext();
        context.setProgress(c.start, c.end);
        context.progress(c.i, c.n, c.base, c.span);
        const auto text = testing::Message() << c.start << " to " << c.end << ", " << c.i << " of " << c.n;
        if (c.reported < 0) {
            EXPECT_TRUE(host.progress.empty()) << text;
        } else {
            ASSERT_EQ(1U, host.progress.size()) << text;
            EXPECT_EQ(std::make_pair(A_long{c.reported}, A_long{10000}), host.progress[0]) << text;
        }
    }
}

TEST_F(AEContextTest, ProgressStartsWithTheWholeRange) {
    makeContext().progress(16, 100, 0, 1);
    EXPECT_EQ(std::make_pair(A_long{1600}, A_long{10000}), host.progress.at(0));
}

TEST_F(AEContextTest, ProgressRangeIsTruncatedToTenThousandths) {
    AEContext context = makeContext();
    context.setProgress(0.12345F, 0.99999F);
    EXPECT_EQ(1234, context.progressOffset);
    EXPECT_EQ(8765, context.progressScale);
}

TEST_F(AEContextTest, ProgressThrowsTheHostsCode) {
    host.failures.at(Callback::kProgress, 1, 517);
    EXPECT_EQ(517, CodeOf([&] { makeContext().progress(0, 10, 0, 1); }));
}

TEST_F(AEContextTest, SuitesAndVersionsLaterThan1210AreCompatible) {
    struct Case {
        PF_SpecVersion version;
        bool compatible;
    };
    const Case cases[] = {{{12, 10}, false}, {{12, 11}, true}, {{13, 0}, true},   {{13, 29}, true},
                          {{11, 20}, false}, {{12, 9}, false}, {{12, -1}, false}, {{-1, 20}, false},
                          {{0, 0}, false},   {{127, 0}, true}};
    for (const Case& c : cases) {
        host.in.version = c.version;
        EXPECT_FALSE(makeContext().isAE6Compatible()) << "without suites";
        EXPECT_FALSE(makeContext().supportsFrameData()) << "without suites";
        useSuites();
        EXPECT_EQ(c.compatible, makeContext().isAE6Compatible()) << c.version.major << "." << c.version.minor;
        EXPECT_EQ(c.compatible, makeContext().supportsFrameData())
            << c.version.major << "." << c.version.minor;
        delete std::exchange(AELib::gSuites, nullptr);
    }
}

// The count is asked for once in a process: each case runs in a process of its own.
class ProcessorCountDeathTest : public AEContextTest {
protected:
    ProcessorCountDeathTest() { GTEST_FLAG_SET(death_test_style, "threadsafe"); }
};

TEST_F(ProcessorCountDeathTest, IsAskedOfTheHostOnce) {
    EXPECT_EXIT(
        {
            useSuites();
            host.threads = 5;
            const AEContext context = makeContext();
            const int first = context.numProcessors();
            host.threads = 2;
            const bool once =
                first == 5 && context.numProcessors() == 5 && host.iterations == std::vector<A_long>{-1};
            std::_Exit(once ? 0 : 1);
        },
        testing::ExitedWithCode(0), "");
}

TEST_F(ProcessorCountDeathTest, IsOneWithoutSuites) {
    EXPECT_EXIT(std::_Exit(makeContext().numProcessors()), testing::ExitedWithCode(1), "");
}

TEST_F(ProcessorCountDeathTest, OneWithoutSuitesIsKeptWhenSuitesAppear) {
    EXPECT_EXIT(
        {
            const int before = makeContext().numProcessors();
            useSuites();
            host.threads = 5;
            const bool kept = before == 1 && makeContext().numProcessors() == 1 && host.iterations.empty();
            std::_Exit(kept ? 0 : 1);
        },
        testing::ExitedWithCode(0), "");
}

TEST_F(ProcessorCountDeathTest, BelowOneFails) {
    EXPECT_EXIT(
        {
            useSuites();
            host.threads = -4;  // no call at all: the count stays 0
            const int code = CodeOf([&] { makeContext().numProcessors(); });
            std::_Exit(code == 999 && PILib::AssertLine == 219 && std::strcmp(PILib::AssertFile, kFile) == 0
                           ? 0
                           : 1);
        },
        testing::ExitedWithCode(0), "");
}

TEST_F(ProcessorCountDeathTest, HostErrorIsThrownAndTheCountAskedAgain) {
    EXPECT_EXIT(
        {
            useSuites();
            host.failures.at(Callback::kIterateGeneric, 1, 88);
            const int code = CodeOf([&] { makeContext().numProcessors(); });
            std::_Exit(code == 88 && makeContext().numProcessors() == 3 ? 0 : 1);
        },
        testing::ExitedWithCode(0), "");
}

TEST_F(ProcessorCountDeathTest, MissingSuiteIsAnError) {
    EXPECT_EXIT(
        {
            useSuites();
            host.missingSuites.insert("PF Iterate8 Suite");
            try {
                makeContext().numProcessors();
            } catch (long code) {
                std::_Exit(code == 512 ? 0 : 1);
            }
            std::_Exit(2);
        },
        testing::ExitedWithCode(0), "");
}

struct Job {
    std::atomic<int> calls = 0;
    std::atomic<int> iterations = 0;
    std::atomic<int> otherThreads = 0;
    std::thread::id caller = std::this_thread::get_id();
    static int run(void* refcon, int thread, int i, int iterations) {
        Job& job = *static_cast<Job*>(refcon);
        ++job.calls;
        job.iterations = iterations;
        if (std::this_thread::get_id() != job.caller) ++job.otherThreads;
        return i == 0 ? -thread : -i;  // 0 for thread 0 with iteration 0 alone
    }
};

TEST_F(AEContextTest, ThreadsAreTheHosts) {
    useSuites();
    Job job;
    EXPECT_EQ(-1, makeContext().multiThread(4, &job, &Job::run)) << "the host's first non-zero result";
    EXPECT_EQ(4, job.calls);
    EXPECT_EQ(4, job.iterations);
    EXPECT_EQ(3, job.otherThreads);
    EXPECT_EQ(std::vector<A_long>{4}, host.iterations);
}

TEST_F(AEContextTest, OneIterationNeverUsesTheHost) {
    useSuites();
    Job job;
    EXPECT_EQ(0, makeContext().multiThread(1, &job, &Job::run));
    EXPECT_EQ(1, job.calls);
    EXPECT_EQ(1, job.iterations);
    EXPECT_TRUE(host.iterations.empty());
    EXPECT_TRUE(host.suiteLog.empty());
}

TEST_F(AEContextTest, OneIterationRunsTheWholeJobWhereThereAreNoThreads) {
    for (const bool hasSuites : {false, true}) {
        if (hasSuites) {
            useSuites();
            host.missingSuites.insert("PF Iterate8 Suite");
        }
        Job job;
        EXPECT_EQ(0, makeContext().multiThread(8, &job, &Job::run)) << hasSuites;
        EXPECT_EQ(1, job.calls) << hasSuites;
        EXPECT_EQ(1, job.iterations) << hasSuites;
        EXPECT_EQ(0, job.otherThreads) << hasSuites;
    }
}

TEST_F(AEContextTest, TwoThreadRunsAcquireTheSuiteOnce) {
    useSuites();
    Job job;
    makeContext().multiThread(2, &job, &Job::run);
    makeContext().multiThread(2, &job, &Job::run);
    EXPECT_EQ(std::vector<std::string>{"acquire PF Iterate8 Suite 1"}, host.suiteLog);
}

TEST_F(AEContextTest, HandlesAreTheHosts) {
    const AEContext context = makeContext();
    char** handle = context.newLockedHandle(10);
    EXPECT_EQ(1, host.lockedHandles());
    EXPECT_EQ(10U, context.getHandleSize(handle));
    std::memcpy(*handle, "123456789", 10);
    context.unlockHandle(handle);
    EXPECT_EQ(0, host.lockedHandles());
    char** const before = handle;
    context.resizeHandle(20, &handle);
    EXPECT_NE(before, handle);
    EXPECT_EQ(20U, context.getHandleSize(handle));
    EXPECT_STREQ("123456789", *handle);
    EXPECT_EQ(*handle, context.lockHandle(handle));
    context.disposeHandle(handle);
    context.disposeHandle(nullptr);
    EXPECT_EQ(0, host.liveHandles());
    EXPECT_EQ((std::vector<std::string>{"host_new_handle", "host_lock_handle", "host_get_handle_size",
                                        "host_unlock_handle", "host_resize_handle", "host_get_handle_size",
                                        "host_lock_handle", "host_dispose_handle"}),
              host.log);
}

TEST_F(AEContextTest, ShortMemoryThrowsTheHostsCodeForIt) {
    host.failures.at(Callback::kNewHandle, 1, 1);
    EXPECT_EQ(4, CodeOf([&] { makeContext().newHandle(8); }));
    host.failures.at(Callback::kNewHandle, 1, 1);
    EXPECT_EQ(4, CodeOf([&] { makeContext().newLockedHandle(8); }));
}

TEST_F(AEContextTest, FailedResizeThrowsTheHostsCode) {
    char** handle = makeContext().newHandle(8);
    host.failures.at(Callback::kResizeHandle, 1, 4);
    EXPECT_EQ(4, CodeOf([&] { makeContext().resizeHandle(9, &handle); }));
    makeContext().disposeHandle(handle);
}

TEST_F(AEContextTest, HandlesAreThePlatformsWhereTheHostHasNone) {
    host.utils.host_new_handle = nullptr;
    host.utils.host_lock_handle = nullptr;
    host.utils.host_unlock_handle = nullptr;
    host.utils.host_dispose_handle = nullptr;
    host.utils.host_get_handle_size = nullptr;
    host.utils.host_resize_handle = nullptr;
    const AEContext context = makeContext();
    char** handle = context.newLockedHandle(12);
    EXPECT_TRUE(AELib::IsPlatformHandle(handle));
    EXPECT_EQ(12U, context.getHandleSize(handle));
    EXPECT_EQ(*handle, context.lockHandle(handle));
    context.unlockHandle(handle);
    EXPECT_EQ(515, CodeOf([&] { context.resizeHandle(20, &handle); })) << "resizing has no stand-in";
    context.disposeHandle(handle);
    EXPECT_FALSE(AELib::IsPlatformHandle(handle));
    EXPECT_TRUE(host.log.empty());
}

TEST_F(AEContextTest, HandlesWorkWithoutUtilityCallbacks) {
    host.in.utils = nullptr;
    const AEContext context = makeContext();
    char** const handle = context.newLockedHandle(3);
    EXPECT_EQ(3U, context.getHandleSize(handle));
    context.unlockHandle(handle);
    context.disposeHandle(handle);
    host.in.utils = &host.utils;
}

TEST_F(AEContextTest, NullHandlesFail) {
    const AEContext context = makeContext();
    ExpectAssertion(kFile, 2, [&] { context.lockHandle(nullptr); });
    ExpectAssertion(kFile, 2, [&] { context.unlockHandle(nullptr); });
    ExpectAssertion(kFile, 2, [&] { context.getHandleSize(nullptr); });
}

}  // namespace

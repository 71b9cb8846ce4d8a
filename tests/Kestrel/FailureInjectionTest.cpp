// Every place where a render can fail: the failure arrives, nothing leaks, and the next render is right.

#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <cstdint>
#include <cstdlib>
#include <fstream>
#include <new>
#include <ostream>
#include <random>
#include <variant>
#include <vector>

#ifdef MAPS_LARGE_ARRAYS
#include <sys/resource.h>
#include <unistd.h>
#endif

#include "AllocationFailure.h"
#include "ChannelTypes.h"
#include "FocusPipeline.h"
#include "Kestrel.h"
#include "NaivePipeline.h"
#include "OracleBuffers.h"
#include "RandomImage.h"
#include "SATExactTentBlur.h"
#include "ThreadPoolContext.h"
#include "ThreadRows.h"

namespace {

using PILib::Channel15;
using PILib::Channel8;
using PILib::Pixel;
using PILib::SimplePixelBuffer;
using PILib::ThreadPoolContext;

constexpr int kHostError = 23;
constexpr int kBadAlloc = -1;  // what CodeOf gives for std::bad_alloc

// The code with which `action` ends; 0 if it does not fail.
template <class Action>
int CodeOf(Action action) {
    try {
        action();
        return 0;
    } catch (int code) {
        return code;
    } catch (const std::bad_alloc&) {
        return kBadAlloc;
    }
}

struct Variant {
    const char* name;
    int viewMode;
    int blurType;
    int threads;
    int allocations;  // at least: the map and its rows, the blur and its four tables
};

constexpr Variant kVariants[] = {
    {"coarse, 1 thread", 0, 0, 1, 7}, {"coarse, 3 threads", 0, 0, 3, 7}, {"fine, 1 thread", 0, 1, 1, 7},
    {"fine, 3 threads", 0, 1, 3, 7},  {"Focus view", 1, 0, 1, 2},
};

std::ostream& operator<<(std::ostream& out, const Variant& variant) {
    return out << variant.name;
}

template <class C>
class Render {
public:
    explicit Render(const Variant& variant) : context(variant.threads) {
        std::mt19937 random(1);
        const oracle::Image inputImage = oracle::RandomImage(random, kWidth, kHeight, oracle::kFull<C>);
        const oracle::Image controlImage = oracle::RandomImage(random, kWidth, kHeight, oracle::kFull<C>);
        oracle::Store<C>(inputImage, input);
        oracle::Store<C>(controlImage, control);
        inputs.viewMode = variant.viewMode;
        inputs.blurType = variant.blurType;
        inputs.maxBlur = 3.5F;
        inputs.blend = 0.25F;
        const oracle::Controls controls{variant.viewMode == 1,
                                        variant.blurType == 1,
                                        inputs.channel,
                                        0.0F,
                                        0.0F,
                                        inputs.maxBlur,
                                        0.0F,
                                        false,
                                        inputs.blend,
                                        1.0F,
                                        1.0F};
        expected = oracle::RenderedFrame(controls, inputImage, &controlImage).values;
        context.onProgress([this](float) { report(); });
    }

    void run() { RenderFrame(context, inputs, {}, output, input, &control); }

    // Whether a render without failures gives the right frame.
    testing::AssertionResult isRightNow() {
        failingReport = 0;
        context.clearCancel();
        output.clear();
        const int code = CodeOf([this] { run(); });
        if (code != 0) return testing::AssertionFailure() << "the next render ends with " << code;
        if (oracle::Fetched(output).values != expected) return testing::AssertionFailure() << "wrong pixels";
        return testing::AssertionSuccess();
    }

    // From now on, the `n`-th progress report fails with kHostError, or cancels.
    void failAtReport(int n, bool byCancel) {
        reports = 0;
        failingReport = n;
        cancels = byCancel;
    }
    bool reportFailed() const { return failingReport > 0 && reports >= failingReport; }

private:
    static constexpr int kWidth = 9;
    static constexpr int kHeight = 8;

    void report() {
        if (++reports != failingReport) return;
        if (!cancels) throw kHostError;
        context.cancel();
    }

    ThreadPoolContext context;
    RenderInputs inputs;
    SimplePixelBuffer<Pixel<C>> input{kWidth, kHeight};
    SimplePixelBuffer<Pixel<C>> control{kWidth, kHeight};
    SimplePixelBuffer<Pixel<C>> output{kWidth, kHeight};
    std::vector<oracle::Colour> expected;
    int reports = 0;
    int failingReport = 0;
    bool cancels = false;
};

template <class C>
class FailureInjectionTest : public testing::Test {};

TYPED_TEST_SUITE(FailureInjectionTest, HostChannels, ChannelNames);

// Lets each progress report fail in turn, until a render has fewer reports. How many rows are reported
// depends on the threads, so only the reports of table rows are counted; the Focus view reports nothing.
template <class C>
void FailAtEachReport(const Variant& variant, bool byCancel) {
    Render<C> render(variant);
    ASSERT_TRUE(render.isRightNow()) << variant;
    int n = 1;
    for (bool reached = true; reached; ++n) {
        render.failAtReport(n, byCancel);
        const long before = allocation::Living();
        const int code = CodeOf([&] { render.run(); });
        ASSERT_EQ(before, allocation::Living()) << variant << ", report " << n;
        reached = render.reportFailed();
        const int expected = byCancel ? PILib::kUserCancelled : kHostError;
        ASSERT_EQ(reached ? expected : 0, code) << variant << ", report " << n;
        ASSERT_TRUE(render.isRightNow()) << variant << ", after report " << n;
    }
    constexpr int kCoarseTableRows = 8 + 2 * 5;
    if (variant.viewMode == 0) {
        EXPECT_GT(n, kCoarseTableRows) << variant;
    }
}

TYPED_TEST(FailureInjectionTest, HostErrorAtAnyProgressReportArrives) {
    for (const Variant& variant : kVariants)
        FailAtEachReport<TypeParam>(variant, false);
}

TYPED_TEST(FailureInjectionTest, CancelAtAnyProgressReportArrives) {
    for (const Variant& variant : kVariants)
        FailAtEachReport<TypeParam>(variant, true);
}

TYPED_TEST(FailureInjectionTest, AnyFailingAllocationArrives) {
    for (const Variant& variant : kVariants) {
        Render<TypeParam> render(variant);
        ASSERT_TRUE(render.isRightNow()) << variant;
        int n = 1;
        for (bool happened = true; happened; ++n) {
            const long before = allocation::Living();
            int code = 0;
            {
                const allocation::FailureAt failure(n);
                code = CodeOf([&] { render.run(); });
                happened = failure.happened();
            }
            ASSERT_EQ(before, allocation::Living()) << variant << ", allocation " << n;
            ASSERT_EQ(happened ? kBadAlloc : 0, code) << variant << ", allocation " << n;
            ASSERT_TRUE(render.isRightNow()) << variant << ", after allocation " << n;
        }
        EXPECT_GT(n - 1, variant.allocations) << variant;
    }
}

template <class Tables>
std::array<const void*, 4> AddressesOf(const Tables& tables) {
    return {tables.sumRed.get(), tables.sumGreen.get(), tables.sumBlue.get(), tables.sumAlpha.get()};
}

template <class P>
std::array<const void*, 4> TablesOf(const PILib::SATBoxBlur<P>& blur) {
    return AddressesOf(blur);
}

template <class P>
std::array<const void*, 4> TablesOf(const PILib::SATExactTentBlur<P>& blur) {
    return std::visit([](const auto& tables) { return AddressesOf(tables); }, blur.tables);
}

template <class Blur, class P>
void ExpectTablesAllocatedInOrder() {
    ThreadPoolContext context(1);
    const SimplePixelBuffer<P> source(3, 2);
    const Blur blur(context, source, 1, 1);
    const std::array<const void*, 4> last = allocation::LastFour();
    EXPECT_EQ(TablesOf(blur), last);
}

TYPED_TEST(FailureInjectionTest, TablesAreAllocatedRedGreenBlueThenAlpha) {
    using P = Pixel<TypeParam>;
    ExpectTablesAllocatedInOrder<PILib::SATBoxBlur<P>, P>();
    ExpectTablesAllocatedInOrder<PILib::SATExactTentBlur<P>, P>();
}

#ifdef MAPS_LARGE_ARRAYS

// With address space for so many more tables of 2 MiB: whether making a blur is std::bad_alloc and leaves the
// blurs that follow as they should be.
bool IsShortOfTables(int tables) {
    constexpr rlim_t kTable = rlim_t{2} << 20;
    using P = Pixel<Channel8>;
    ThreadPoolContext context(1);
    const SimplePixelBuffer<P> source(900, 500);
    const auto makeBlur = [&] { PILib::SATExactTentBlur<P>(context, source, 1, 1).initialize(); };
    PILib::detail::MakeLargeArray<char>(5 * kTable);  // in place of what was kept of other tests
    const auto mapped = [] {
        rlim_t pages = 0;
        std::ifstream("/proc/self/statm") >> pages;
        return pages * static_cast<rlim_t>(sysconf(_SC_PAGESIZE));
    };
    const rlim_t before = mapped() - 5 * kTable;
    rlimit limit{};
    getrlimit(RLIMIT_AS, &limit);
    // A table is cut out of a mapping of twice its size.
    const rlimit tight = {before + static_cast<rlim_t>(tables) * kTable + 3 * kTable / 2, limit.rlim_max};
    setrlimit(RLIMIT_AS, &tight);
    const int code = CodeOf(makeBlur);
    setrlimit(RLIMIT_AS, &limit);
    return code == kBadAlloc && CodeOf(makeBlur) == 0 && mapped() <= before + 4 * kTable + kTable / 2;
}

TEST(LargeTablesTest, AnyTableThatMemoryIsTooShortForIsBadAllocAndNoneIsLost) {
    for (int tables = 0; tables < 4; ++tables)
        EXPECT_EXIT(std::exit(IsShortOfTables(tables) ? 0 : 1), testing::ExitedWithCode(0), "") << tables;
}

#endif

TEST(PoolFailureTest, AnyFailingAllocationOfANewPoolArrives) {
    int n = 1;
    for (bool happened = true; happened; ++n) {
        const long before = allocation::Living();
        int code = 0;
        {
            const allocation::FailureAt failure(n);
            code = CodeOf([] { const ThreadPoolContext context(5); });
            happened = failure.happened();
        }
        ASSERT_EQ(before, allocation::Living()) << "allocation " << n;
        ASSERT_EQ(happened ? kBadAlloc : 0, code) << "allocation " << n;
    }
    EXPECT_GT(n, 5) << "the pool, its list and a state for each thread";
}

TEST(PoolFailureTest, FailingAllocationOfAHandleIsTheHostsCode) {
    const ThreadPoolContext context(1);
    const long before = allocation::Living();
    int code = 0;
    {
        const allocation::FailureAt failure(1);
        code = CodeOf([&] { context.newHandle(100); });
    }
    EXPECT_EQ(before, allocation::Living());
    EXPECT_EQ(PILib::kOutOfMemory, code);
}

// Rows that need memory of their own. Called by name, as compilers may leave out the memory of an expression.
struct AllocatingRows {
    std::atomic<int> rendered = 0;

    void rowOp(PILib::PIContext& /*context*/, int /*row*/) {
        ::operator delete(::operator new(64));
        ++rendered;
    }
};

TEST(RowFailureTest, FailingAllocationOfAnyRowArrivesAs512) {
    constexpr int kRows = 40;
    for (const int threads : {1, 2, 5}) {
        ThreadPoolContext context(threads);
        for (int n = 1; n <= kRows; ++n) {
            AllocatingRows handler;
            const long before = allocation::Living();
            int code = 0;
            {
                const allocation::FailureAt failure(n);
                code = CodeOf([&] { PILib::ThreadRows(context, handler, kRows, -1); });
            }
            ASSERT_EQ(before, allocation::Living()) << threads << " threads, allocation " << n;
            ASSERT_EQ(PILib::kInternalDamage, code) << threads << " threads, allocation " << n;
            AllocatingRows next;
            PILib::ThreadRows(context, next, kRows, -1);
            ASSERT_EQ(kRows, next.rendered) << threads << " threads, after allocation " << n;
        }
    }
}

// A blur whose read-out fails at one pixel, with an int or another exception.
template <class P>
class FailingBlur : public PILib::SATBlur<P> {
public:
    FailingBlur(PILib::PIContext& context, const PILib::FrameBuf<P>& source, bool withInt)
        : PILib::SATBlur<P>(context, source, 1, 1), withInt(withInt) {}

    P getBlur(int x, int y, std::int32_t /*radiusX*/, std::int32_t /*radiusY*/) override {
        if (x != failingX || y != failingY) return P::kGrayColor;
        if (withInt) throw kHostError;
        throw std::bad_alloc();
    }
    P getBlurInt(int, int, int, int) override { return P::kGrayColor; }
    void initialize() override {}

    int failingX = -1;
    int failingY = -1;

private:
    bool withInt;
};

TYPED_TEST(FailureInjectionTest, ExceptionOfAnyRowArrives) {
    using P = Pixel<TypeParam>;
    constexpr int kWidth = 3;
    constexpr int kHeight = 17;
    const SimplePixelBuffer<P> input(kWidth, kHeight);
    const SimplePixelBuffer<P> output(kWidth, kHeight);
    const PILib::ChannelBuf<TypeParam> map(kWidth, kHeight);
    for (int y = 0; y < kHeight; ++y) {
        for (auto& value : map.row(y))
            value = 1;
    }
    for (const int threads : {1, 2, 5}) {
        for (const bool withInt : {true, false}) {
            ThreadPoolContext context(threads);
            FailingBlur<P> blur(context, input, withInt);
            KestrelThreadHandler<P> handler{output, input, map, &blur, 1.0F, 1.0F};
            for (int y = 0; y < kHeight; ++y) {
                blur.failingX = y % kWidth;
                blur.failingY = y;
                EXPECT_EQ(withInt ? kHostError : PILib::kInternalDamage,
                          CodeOf([&] { PILib::ThreadRows(context, handler, kHeight, -1); }))
                    << threads << " threads, row " << y;
                blur.failingY = -1;
                output.clear();
                EXPECT_EQ(0, CodeOf([&] { PILib::ThreadRows(context, handler, kHeight, -1); }));
                for (int row = 0; row < kHeight; ++row) {
                    for (const P& pixel : output.row(row))
                        ASSERT_EQ(P::kGrayColor, pixel) << threads << " threads, row " << row;
                }
            }
        }
    }
}

}  // namespace

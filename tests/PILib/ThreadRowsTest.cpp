#include "ThreadRows.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <new>
#include <numeric>
#include <stdexcept>
#include <string>
#include <typeinfo>
#include <utility>
#include <vector>

#include "FakeContext.h"

namespace {

using PILib::ThreadRows;
using PILib::ThreadRowsHelper;
using PILib::ThreadRowsWork;

// Notes the rows it is given; `fail` may throw for a row before it is noted.
struct RecordingHandler {
    std::vector<int> rows;
    std::function<void(int row)> fail = [](int /*row*/) {};

    void rowOp(PILib::PIContext& /*context*/, int row) {
        fail(row);
        rows.push_back(row);
    }
};

// Rows that iteration `i` of `iterations` renders.
std::vector<int> RowsOf(int rows, int i, int iterations) {
    FakeContext context;
    RecordingHandler handler;
    ThreadRowsWork<RecordingHandler> work{handler, context, rows};
    EXPECT_EQ(0, ThreadRowsHelper<RecordingHandler>(&work, 1, i, iterations));
    EXPECT_TRUE(context.progressCalls.empty()) << "thread 1 reports no progress";
    return handler.rows;
}

TEST(ThreadRowsTest, RowsAreHandedOutInContiguousChunksRoundedUp) {
    using Chunks = std::vector<std::pair<int, int>>;  // first row, number of rows
    struct Partition {
        int rows, iterations;
        Chunks chunks;
    };
    for (const Partition& p : {
             Partition{100, 4, {{0, 25}, {25, 25}, {50, 25}, {75, 25}}},
             Partition{10, 4, {{0, 3}, {3, 3}, {6, 3}, {9, 1}}},
             Partition{3, 4, {{0, 1}, {1, 1}, {2, 1}, {3, 0}}},
             Partition{4, 4, {{0, 1}, {1, 1}, {2, 1}, {3, 1}}},
             Partition{5, 4, {{0, 2}, {2, 2}, {4, 1}, {5, 0}}},
             Partition{7, 1, {{0, 7}}},
             Partition{0, 2, {{0, 0}, {0, 0}}},
         }) {
        for (int i = 0; i < p.iterations; ++i) {
            const auto [first, count] = p.chunks[static_cast<std::size_t>(i)];
            std::vector<int> expected;
            for (int row = first; row < first + count; ++row)
                expected.push_back(row);
            EXPECT_EQ(expected, RowsOf(p.rows, i, p.iterations))
                << p.rows << " rows, iteration " << i << " of " << p.iterations;
        }
    }
}

TEST(ThreadRowsTest, ChunksCoverEveryRowOnceAndNoRowPastTheImage) {
    for (int rows = 0; rows <= 130; ++rows) {
        for (int iterations = 1; iterations <= 64; ++iterations) {
            std::vector<int> all;
            for (int i = 0; i < iterations; ++i) {
                const std::vector<int> chunk = RowsOf(rows, i, iterations);
                all.insert(all.end(), chunk.begin(), chunk.end());
            }
            std::vector<int> expected;
            for (int row = 0; row < rows; ++row)
                expected.push_back(row);
            ASSERT_EQ(expected, all) << rows << " rows, " << iterations << " iterations";
        }
    }
}

TEST(ThreadRowsTest, WithoutThreadsAllRowsAreRenderedInOrderWithAReportBeforeEach) {
    for (const bool canThread : {true, false}) {
        FakeContext context;
        context.processors = canThread ? 1 : 4;
        context.canThread = canThread;
        RecordingHandler handler;
        handler.fail = [&](int row) {
            EXPECT_EQ(static_cast<std::size_t>(row) + 1, context.progressCalls.size()) << "row " << row;
        };
        ThreadRows(context, handler, 5, -1);
        EXPECT_EQ(1, context.lastIterations);
        EXPECT_EQ((std::vector<int>{0, 1, 2, 3, 4}), handler.rows);
        std::vector<ProgressCall> expected;
        for (int k = 0; k < 5; ++k)
            expected.push_back({k, 5, 0.0F, 1.0F});
        EXPECT_EQ(expected, context.progressCalls) << "can thread " << canThread;
    }
}

TEST(ThreadRowsTest, ThreadZeroReportsItsOwnChunkOnly) {
    FakeContext context;
    RecordingHandler handler;
    ThreadRowsWork<RecordingHandler> work{handler, context, 10};
    EXPECT_EQ(0, ThreadRowsHelper<RecordingHandler>(&work, 0, 2, 4));
    const std::vector<ProgressCall> expected{{0, 3, 0.0F, 1.0F}, {1, 3, 0.0F, 1.0F}, {2, 3, 0.0F, 1.0F}};
    EXPECT_EQ(expected, context.progressCalls);
    EXPECT_EQ((std::vector<int>{6, 7, 8}), handler.rows);
}

TEST(ThreadRowsTest, NoProgressIsReportedWhereEveryRowHasItsOwnIteration) {
    FakeContext context;
    context.processors = 4;
    for (int rows = 0; rows <= 4; ++rows) {
        RecordingHandler handler;
        ThreadRows(context, handler, rows, -1);
        EXPECT_EQ(static_cast<std::size_t>(rows), handler.rows.size());
        EXPECT_TRUE(context.progressCalls.empty()) << rows << " rows";
    }
}

TEST(ThreadRowsTest, IntOfARowIsThrownAfterTheOtherChunksAreDone) {
    FakeContext context;
    context.processors = 3;
    RecordingHandler handler;
    handler.fail = [](int row) {
        if (row == 1) throw -50;
    };
    try {
        ThreadRows(context, handler, 9, -1);
        ADD_FAILURE() << "nothing thrown";
    } catch (int code) {
        EXPECT_EQ(-50, code);
    }
    std::sort(handler.rows.begin(), handler.rows.end());
    EXPECT_EQ((std::vector<int>{0, 3, 4, 5, 6, 7, 8}), handler.rows);
}

TEST(ThreadRowsTest, OtherExceptionsOfARowBecome512) {
    struct Thrown {
        const char* name;
        void (*fail)(int row);
    };
    for (const Thrown& t : {
             Thrown{"bad_alloc", [](int) { throw std::bad_alloc(); }},
             Thrown{"bad_cast", [](int) { throw std::bad_cast(); }},
             Thrown{"runtime_error", [](int) { throw std::runtime_error("row"); }},
             Thrown{"end of archive", [](int) { throw PILib::kEndOfArchive; }},
             Thrown{"long", [](int) { throw 7L; }},
         }) {
        for (const int processors : {1, 4}) {
            FakeContext context;
            context.processors = processors;
            RecordingHandler handler;
            handler.fail = t.fail;
            try {
                ThreadRows(context, handler, 9, -1);
                ADD_FAILURE() << t.name << ": nothing thrown";
            } catch (int code) {
                EXPECT_EQ(512, code) << t.name << ", " << processors << " processors";
            }
        }
    }
}

TEST(ThreadRowsTest, CancelEndsTheChunkOfThreadZeroAlone) {
    FakeContext context;
    context.processors = 3;
    context.failAtProgress(2, PILib::kUserCancelled);
    RecordingHandler handler;
    try {
        ThreadRows(context, handler, 9, -1);
        ADD_FAILURE() << "not cancelled";
    } catch (int code) {
        EXPECT_EQ(PILib::kUserCancelled, code);
    }
    std::sort(handler.rows.begin(), handler.rows.end());
    EXPECT_EQ((std::vector<int>{0, 3, 4, 5, 6, 7, 8}), handler.rows);
}

TEST(ThreadRowsTest, MinusOneIsOneIterationPerProcessor) {
    FakeContext context;
    context.processors = 7;
    RecordingHandler handler;
    ThreadRows(context, handler, 20, -1);
    EXPECT_EQ(7, context.lastIterations);
    EXPECT_EQ(20U, handler.rows.size());
}

// Notes the bands it is given, first row and count.
struct BandHandler : RecordingHandler {
    static constexpr int kBandRows = 4;
    std::vector<std::pair<int, int>> bands;

    void bandOp(PILib::PIContext& /*context*/, int first, int count) { bands.emplace_back(first, count); }
};

TEST(ThreadRowsTest, BandsCoverAChunkWithAReportForEachRow) {
    using Bands = std::vector<std::pair<int, int>>;
    for (const int thread : {0, 1}) {
        FakeContext context;
        BandHandler handler;
        ThreadRowsWork<BandHandler> work{handler, context, 70};
        EXPECT_EQ(0, ThreadRowsHelper<BandHandler>(&work, thread, 1, 2));
        EXPECT_EQ((Bands{{35, 4}, {39, 4}, {43, 4}, {47, 4}, {51, 4}, {55, 4}, {59, 4}, {63, 4}, {67, 3}}),
                  handler.bands);
        EXPECT_TRUE(handler.rows.empty());
        std::vector<ProgressCall> expected;
        for (int k = 0; thread == 0 && k < 35; ++k)
            expected.push_back({k, 35, 0.0F, 1.0F});
        EXPECT_EQ(expected, context.progressCalls);
    }
}

TEST(ThreadRowsTest, BandIsAnEighthOfItsChunkAtMost) {
    for (const auto& [rows, band] : {std::pair{31, 3}, {24, 3}, {16, 2}, {9, 1}, {2, 1}}) {
        FakeContext context;
        BandHandler handler;
        ThreadRows(context, handler, rows, 1);
        EXPECT_EQ(band, handler.bands.front().second) << rows;
    }
}

TEST(ThreadRowsTest, CancelWithinABandLeavesTheRowsBeforeItRendered) {
    using Bands = std::vector<std::pair<int, int>>;
    struct Cancel {
        int call;
        Bands bands;
    };
    for (const Cancel& c : {Cancel{1, {}}, Cancel{2, {{0, 1}}}, Cancel{4, {{0, 3}}}, Cancel{5, {{0, 4}}},
                            Cancel{7, {{0, 4}, {4, 2}}}}) {
        FakeContext context;
        context.failAtProgress(c.call, PILib::kUserCancelled);
        BandHandler handler;
        EXPECT_THROW(ThreadRows(context, handler, 33, -1), int) << c.call;
        EXPECT_EQ(c.bands, handler.bands) << c.call;
    }
}

TEST(ThreadRowsTest, RowsWithAnIterationEachAreNoBandsAndAreNotReported) {
    using Rows = std::vector<int>;
    FakeContext context;
    for (int i = 0; i < 4; ++i) {
        BandHandler handler;
        ThreadRowsWork<BandHandler> work{handler, context, 3};
        EXPECT_EQ(0, ThreadRowsHelper<BandHandler>(&work, 0, i, 4));
        EXPECT_EQ(i < 3 ? Rows{i} : Rows{}, handler.rows);
        EXPECT_TRUE(handler.bands.empty()) << i;
    }
    EXPECT_TRUE(context.progressCalls.empty());
}

// Notes the rows of its bands; a band for one of whose rows `fail` throws is not noted.
struct RowsOfBandsHandler : RecordingHandler {
    static constexpr int kBandRows = 4;

    void bandOp(PILib::PIContext& /*context*/, int first, int count) {
        for (int row = first; row < first + count; ++row)
            fail(row);
        for (int row = first; row < first + count; ++row)
            rows.push_back(row);
    }
};

std::vector<int> Sequence(int first, int count) {
    std::vector<int> rows(static_cast<std::size_t>(count));
    std::iota(rows.begin(), rows.end(), first);
    return rows;
}

// What the run of all rows ends with; 0 if nothing is thrown.
template <class H>
int CodeOfRows(PILib::PIContext& context, H& handler, int rows) {
    try {
        ThreadRows(context, handler, rows, -1);
        return 0;
    } catch (int code) {
        return code;
    }
}

TEST(ThreadRowsTest, ExceptionOfABandEndsItsChunkAlone) {
    for (const int code : {-50, PILib::kInternalDamage}) {
        FakeContext context;
        context.processors = 3;
        RowsOfBandsHandler handler;
        handler.fail = [code](int row) {
            if (row == 45 && code == -50) throw code;
            if (row == 45) throw std::bad_alloc();
        };
        EXPECT_EQ(code, CodeOfRows(context, handler, 120));
        // The rows before the failing band, whose size is the handler's largest or less.
        const auto done = static_cast<int>(handler.rows.size()) - 80;
        EXPECT_GE(done, 5 - (RowsOfBandsHandler::kBandRows - 1)) << code;
        EXPECT_LE(done, 5) << code;
        std::vector<int> expected = Sequence(0, 40 + std::max(done, 0));
        const std::vector<int> last = Sequence(80, 40);
        expected.insert(expected.end(), last.begin(), last.end());
        EXPECT_EQ(expected, handler.rows) << code;
    }
}

TEST(ThreadRowsTest, ExceptionOfARowBeforeACancelledOneArrivesInItsPlace) {
    FakeContext context;
    context.failAtProgress(7, PILib::kUserCancelled);
    RowsOfBandsHandler handler;
    handler.fail = [](int row) {
        if (row == 5) throw 23;
    };
    EXPECT_EQ(23, CodeOfRows(context, handler, 33));
}

// Its third progress report is out of memory.
struct ExhaustedContext : FakeContext {
    void progress(int i, int n, float base, float span) const override {
        FakeContext::progress(i, n, base, span);
        if (progressCalls.size() == 3) throw std::bad_alloc();
    }
};

TEST(ThreadRowsTest, OtherExceptionsOfAReportBecome512AfterTheRowsBeforeIt) {
    ExhaustedContext context;
    RecordingHandler rows;
    EXPECT_EQ(512, CodeOfRows(context, rows, 9));
    EXPECT_EQ((std::vector<int>{0, 1}), rows.rows);

    ExhaustedContext other;
    RowsOfBandsHandler bands;
    EXPECT_EQ(512, CodeOfRows(other, bands, 33));
    EXPECT_EQ((std::vector<int>{0, 1}), bands.rows);
}

TEST(ThreadRowsTest, NumberOfIterationsIsWhatTheCallerAsksFor) {
    FakeContext context;
    context.processors = 2;
    RecordingHandler handler;
    ThreadRows(context, handler, 10, 5);
    EXPECT_EQ(5, context.lastIterations);
    EXPECT_EQ(10U, handler.rows.size());
}

TEST(ThreadRowsTest, CodeOfTheHostIsThrown) {
    FakeContext context;
    context.multiThreadError = 514;
    RecordingHandler handler;
    try {
        ThreadRows(context, handler, 10, -1);
        ADD_FAILURE() << "nothing thrown";
    } catch (int code) {
        EXPECT_EQ(514, code);
    }
    EXPECT_TRUE(handler.rows.empty());
}

}  // namespace

// Runs a handler's rowOp over every row of an image on the context's threads.
//
// A handler is any class with `void rowOp(PIContext& context, int row)` that may run for different rows at
// once. Each row is rendered by exactly one iteration; nothing is locked. Rows are handed out in contiguous
// chunks, so that a thread walks neighbouring rows.
#pragma once

#include <algorithm>
#include <concepts>
#include <cstdint>

#include "AssertSites.h"
#include "Errors.h"
#include "PIContext.h"

namespace PILib {

// Shared read-only by all iterations of one run; lives on the stack of ThreadRows.
template <class H>
struct ThreadRowsWork {
    H& handler;
    PIContext& context;
    int rows;
};

// A handler may also render a band of neighbouring rows at once, at most kBandRows: bandOp then takes the
// place of rowOp wherever an iteration has several rows. What a band that throws leaves of its own rows is up
// to the handler.
template <class H>
concept RendersBands = requires(H& handler, PIContext& context) {
    { H::kBandRows } -> std::convertible_to<int>;
    handler.bandOp(context, 0, H::kBandRows);
};

// The rows of one chunk, band by band. What the context and the caller see is what rows one by one give: each
// row's report comes before the row, and a report that throws leaves the rows before its own rendered. A band
// is at most an eighth of its chunk, so that the bar moves on and a cancel comes in time in small chunks too.
// An exception of a band takes the place of the report's.
template <class H>
void RenderBands(const ThreadRowsWork<H>& work, int thread, int start, int count) {
    constexpr int kBandsOfChunk = 8;
    const int bandRows = std::clamp<int>(count / kBandsOfChunk, 1, H::kBandRows);
    for (int first = 0; first < count; first += bandRows) {
        const int end = first + std::min(bandRows, count - first);
        int k = first;
        try {
            for (; thread == 0 && k < end; ++k)
                work.context.progress(k, count, 0.0F, 1.0F);
        } catch (...) {
            if (k > first) work.handler.bandOp(work.context, start + first, k - first);
            throw;
        }
        work.handler.bandOp(work.context, start + first, end - first);
    }
}

// The callback that ThreadRows hands to multiThread; for the library's own use. Returns 0, the int that a row
// threw, or kInternalDamage for any other exception: none may cross the host's threads. An iteration outside
// 0 .. iterations - 1 fails an assertion.
template <class H>
int ThreadRowsHelper(void* refcon, int thread, int i, int iterations) {
    try {
        _Assert(i >= 0 && i < iterations, site::kIterationInRun, site::kThreadRowsFile);
        const auto& work = *static_cast<const ThreadRowsWork<H>*>(refcon);
        if (work.rows <= i) return 0;
        if (work.rows <= iterations) {
            work.handler.rowOp(work.context, i);
            return 0;
        }
        // Deliberate: chunks are rounded up, so the last iterations may find few rows or none. Chunk ends are
        // clipped at the row count. Pinned by ThreadRowsTest.ChunksCoverEveryRowOnceAndNoRowPastTheImage.
        const std::int64_t chunk = (std::int64_t{work.rows} + iterations - 1) / iterations;
        const auto start = static_cast<int>(std::min<std::int64_t>(work.rows, i * chunk));
        const int count = i == iterations - 1
                              ? work.rows - start
                              : static_cast<int>(std::min<std::int64_t>(chunk, work.rows - start));
        if constexpr (RendersBands<H>) {
            RenderBands(work, thread, start, count);
        } else {
            for (int k = 0; k < count; ++k) {
                if (thread == 0) work.context.progress(k, count, 0.0F, 1.0F);
                work.handler.rowOp(work.context, start + k);
            }
        }
        return 0;
    } catch (int code) {
        return code;
    } catch (...) {
        return kInternalDamage;
    }
}

// Renders rows 0 .. rows - 1. `threads` is the number of iterations, -1 for one per processor. Throws the
// code of a failed row or of the host after all iterations have returned; rows already rendered stay as they
// are.
template <class H>
void ThreadRows(PIContext& context, H& handler, int rows, int threads) {
    ThreadRowsWork<H> work{handler, context, rows};
    ThrowIfErr(context.multiThread(threads, &work, &ThreadRowsHelper<H>));
}

}  // namespace PILib

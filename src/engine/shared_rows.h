#pragma once

#include "engine/run_context.h"

#include <algorithm>
#include <atomic>

namespace lumiran {

// work(first, end) for bands of rows that together cover [firstRow,
// endRow) once, on the run's threads, bands claimed in turn; no progress
// and no cancel test. Fewer pixels than two bands stay on this thread as
// one band. For passes that carry something from one row of a band to the
// next (rolling row buffers).
template <typename BandWork>
void forEachBandShared(RunContext& context, int firstRow, int endRow, int width, BandWork&& work) {
    const RowThreading& threading = context.threading;
    const int threads = std::max(1, threading.threads);
    const int rows = endRow - firstRow;
    if (rows <= 0) return;
    if (threads == 1 || static_cast<long long>(rows) * std::max(width, 0) <
                            2LL * std::max(threading.bandPixels, 1)) {
        work(firstRow, endRow);
        return;
    }
    const int bandRows = std::max(1, rows / (4 * threads));
    std::atomic<int> next{firstRow};
    context.workers().run(threads, [&](int) {
        for (int first = next.fetch_add(bandRows); first < endRow;
             first = next.fetch_add(bandRows)) {
            work(first, std::min(endRow, first + bandRows));
        }
    });
}

// work(y) for every row of [firstRow, endRow), a row's work touching only
// that row, by the bands above; for the passes a run makes before or after
// its counted rows (fills, copies).
template <typename RowWork>
void forEachRowShared(RunContext& context, int firstRow, int endRow, int width, RowWork&& work) {
    forEachBandShared(context, firstRow, endRow, width, [&](int first, int end) {
        for (int y = first; y < end; ++y)
            work(y);
    });
}

} // namespace lumiran

#pragma once

#include "engine/run_context.h"

#include <algorithm>
#include <atomic>

namespace lumiran {

// work(y) for every row of [firstRow, endRow), a row's work touching only
// that row, on the run's threads in bands claimed in turn; no progress and
// no cancel test, for the passes a run makes before or after its counted
// rows (fills, copies). Fewer pixels than two bands stay on this thread.
template <typename RowWork>
void forEachRowShared(RunContext& context, int firstRow, int endRow, int width, RowWork&& work) {
    const RowThreading& threading = context.threading;
    const int threads = std::max(1, threading.threads);
    const int rows = endRow - firstRow;
    if (rows <= 0) return;
    if (threads == 1 || static_cast<long long>(rows) * std::max(width, 0) <
                            2LL * std::max(threading.bandPixels, 1)) {
        for (int y = firstRow; y < endRow; ++y)
            work(y);
        return;
    }
    const int bandRows = std::max(1, rows / (4 * threads));
    std::atomic<int> next{firstRow};
    context.workers().run(threads, [&](int) {
        for (int first = next.fetch_add(bandRows); first < endRow;
             first = next.fetch_add(bandRows)) {
            const int end = std::min(endRow, first + bandRows);
            for (int y = first; y < end; ++y)
                work(y);
        }
    });
}

} // namespace lumiran

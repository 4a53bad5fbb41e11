#pragma once

#include <algorithm>
#include <atomic>
#include <climits>
#include <exception>
#include <mutex>

namespace lumiran {

// How the rows of one loop are shared out: bands of rows are claimed in
// increasing order, so that when a row fails, every row above it has been
// claimed already and still runs; the failure of the lowest row is the one
// the loop reports, as on one thread.
class RowBands {
  public:
    RowBands(int firstRow, int endRow, int bandRows)
        : firstRow_(firstRow), endRow_(endRow), bandRows_(bandRows) {}

    struct Band {
        int begin = 0;
        int end = 0;
        [[nodiscard]] bool empty() const { return begin >= end; }
    };

    // The next band to work on; empty when the loop is over for this worker.
    [[nodiscard]] Band claim() {
        const long long begin =
            firstRow_ +
            static_cast<long long>(next_.fetch_add(1, std::memory_order_relaxed)) * bandRows_;
        if (begin >= endRow_ || begin >= stopRow_.load(std::memory_order_acquire)) return {};
        const int first = static_cast<int>(begin);
        return {first, static_cast<int>(std::min<long long>(begin + bandRows_, endRow_))};
    }

    // Whether row y is still to run: no cancel has been seen and no row
    // at or above y has failed.
    [[nodiscard]] bool mayStart(int y) const {
        return !cancelled_.load(std::memory_order_acquire) &&
               y < stopRow_.load(std::memory_order_acquire);
    }

    // The end of every row's work: progress and the cancel test, one
    // thread at a time.
    [[nodiscard]] std::mutex& rowEnd() { return rowEnd_; }

    void cancel() { cancelled_.store(true, std::memory_order_release); }

    // Row y threw: rows below it need not run.
    void fail(int y, std::exception_ptr error) {
        const std::scoped_lock lock(failure_);
        if (y < failedRow_) {
            failedRow_ = y;
            error_ = std::move(error);
            stopRow_.store(y, std::memory_order_release);
        }
    }

    // After all workers have returned: rethrows the first failure in row
    // order; otherwise false when a cancel ended the loop.
    [[nodiscard]] bool finish() const {
        if (error_) std::rethrow_exception(error_);
        return !cancelled_.load(std::memory_order_acquire);
    }

  private:
    const int firstRow_;
    const int endRow_;
    const int bandRows_;
    std::atomic<int> next_{0};
    std::atomic<int> stopRow_{INT_MAX};
    std::atomic<bool> cancelled_{false};
    std::mutex rowEnd_;
    std::mutex failure_;
    int failedRow_ = INT_MAX;
    std::exception_ptr error_;
};

} // namespace lumiran

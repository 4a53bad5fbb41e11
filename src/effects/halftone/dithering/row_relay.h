#pragma once

#include <algorithm>
#include <atomic>
#include <chrono>
#include <climits>
#include <vector>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace lumiran::diffusion {

// A group of rows run on one thread, alone: nothing to wait for, and the
// columns go in one stretch.
struct NoGate {
    static constexpr int Block = 1 << 20;
    [[nodiscard]] static bool wait(int /*column*/) { return true; }
    static void publish(int /*column*/) {}
};

// A group of rows that trails the group above on another thread. The
// columns go in blocks; before a block the group waits until the row
// above has finished the columns the block needs, after it tells the
// group below how far its last row has come. Columns are counted as the
// end of what is finished, so a finished row stands at the right bound.
class RowGate {
  public:
    static constexpr int Block = 32;

    RowGate(const std::atomic<int>* above, std::atomic<int>& own, const std::atomic<bool>& stop,
            std::atomic<int>& slept)
        : above_(above), own_(own), stop_(stop), slept_(slept) {}

    // False when the run stopped while waiting: the group must give up.
    [[nodiscard]] bool wait(int column) const {
        if (above_ == nullptr) return true;
        int seen = above_->load(std::memory_order_acquire);
        for (int spins = 0; seen < column; ++spins) {
            // The row above's thread may have lost its core to another
            // process: after a short spin, sleep until it tells.
            if (spins < 256) {
#if defined(__SSE2__)
                _mm_pause();
#endif
            } else {
                const auto start = std::chrono::steady_clock::now();
                above_->wait(seen, std::memory_order_acquire);
                const auto slept = std::chrono::duration_cast<std::chrono::microseconds>(
                    std::chrono::steady_clock::now() - start);
                slept_.fetch_add(static_cast<int>(std::min<long long>(slept.count(), 1000000)),
                                 std::memory_order_relaxed);
            }
            seen = above_->load(std::memory_order_acquire);
        }
        return !stop_.load(std::memory_order_relaxed);
    }

    void publish(int column) const {
        own_.store(column, std::memory_order_release);
        own_.notify_one();
    }

  private:
    const std::atomic<int>* above_;
    std::atomic<int>& own_;
    const std::atomic<bool>& stop_;
    std::atomic<int>& slept_; // microseconds, all groups together
};

// The row groups of a run shared out to threads in top-to-bottom order.
// A thread claims the next group once its last one is done, so a group
// waits only on a group claimed before it, whose thread is running: on
// one thread the groups simply run in order.
//
// The threads trail one another by a few columns, so when the system
// takes the core of one for a while the other soon waits on it. Where that
// keeps happening (other processes want the cores) the two threads cost
// more than they gain, and the calling thread goes on alone.
class GroupRelay {
  public:
    explicit GroupRelay(int groups) : groups_(groups), reached_(static_cast<std::size_t>(groups)) {}

    // The next group for a worker (0 the calling thread), or -1 when there
    // is none, the run stopped, or the calling thread goes on alone.
    [[nodiscard]] int claim(int worker) {
        if (stopped() || (worker != 0 && alone())) return -1;
        const int g = next_.fetch_add(1, std::memory_order_relaxed);
        return g < groups_ ? g : -1;
    }

    [[nodiscard]] RowGate gate(int group) {
        const auto g = static_cast<std::size_t>(group);
        return {group > 0 ? &reached_[g - 1].column : nullptr, reached_[g].column, stop_, slept_};
    }

    [[nodiscard]] bool alone() const {
        return slept_.load(std::memory_order_relaxed) >= SleepBeforeAlone;
    }

    // Every group still waiting wakes, finds the stop and gives up.
    void stop() {
        stop_.store(true, std::memory_order_relaxed);
        for (Reached& r : reached_) {
            r.column.store(INT_MAX, std::memory_order_release);
            r.column.notify_all();
        }
    }
    [[nodiscard]] bool stopped() const { return stop_.load(std::memory_order_relaxed); }

  private:
    // A line of its own each, so the threads do not share the line one
    // of them writes.
    struct alignas(64) Reached {
        std::atomic<int> column{INT_MIN};
    };

    // On a quiet machine the threads sleep a few milliseconds of a 4K run
    // at most, on hiccups of the host; a core taken by another process
    // costs whole time slices, and this much sleep bounds what the second
    // thread can lose against one thread alone.
    static constexpr int SleepBeforeAlone = 8000;

    int groups_;
    std::vector<Reached> reached_;
    std::atomic<int> slept_{0};
    std::atomic<int> next_{0};
    std::atomic<bool> stop_{false};
};

} // namespace lumiran::diffusion

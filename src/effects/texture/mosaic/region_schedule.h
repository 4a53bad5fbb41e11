#pragma once

// Shapes that read and write what earlier shapes left, laid in drawing order
// on several threads: the picture's rows are cut into regions at least as
// tall as a shape, so a shape lies in one region or straddles two
// neighbours. Each region takes its own shapes in order; a straddling shape
// waits until both its regions have reached it and is then laid alone over
// both. Every shape so sees exactly what it would one shape at a time.
#include "engine/picture_memory.h"
#include "engine/worker_pool.h"

#include <algorithm>
#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <exception>
#include <mutex>
#include <thread>
#include <vector>

namespace lumiran::mosaic {

class RegionSchedule {
  public:
    // Regions of equal share over rows firstRow .. endRow - 1.
    RegionSchedule(int regions, int firstRow, int endRow)
        : firstRow_(firstRow), endRow_(endRow), lists_(static_cast<std::size_t>(regions)),
          cursor_(lists_.size(), 0), busy_(lists_.size(), 0) {}

    // Room for about shapes in all: lists of a megabyte or so start at a
    // huge page, which costs one fault rather than hundreds of small ones.
    void reserve(std::size_t shapes) {
        const std::size_t each = shapes / lists_.size() + shapes / 16 + 16;
        const std::size_t huge = HugePageBytes / sizeof(Entry);
        for (List& list : lists_)
            list.reserve(each >= huge / 4 ? std::max(each, huge) : each);
    }

    [[nodiscard]] int regions() const { return static_cast<int>(lists_.size()); }
    [[nodiscard]] int regionBegin(int r) const {
        return firstRow_ +
               static_cast<int>(static_cast<long long>(endRow_ - firstRow_) * r / regions());
    }
    [[nodiscard]] int regionOf(int row) const {
        int r = static_cast<int>(static_cast<long long>(row - firstRow_) * regions() /
                                 std::max(endRow_ - firstRow_, 1));
        r = std::clamp(r, 0, regions() - 1);
        while (r > 0 && row < regionBegin(r))
            --r;
        while (r + 1 < regions() && row >= regionBegin(r + 1))
            ++r;
        return r;
    }

    // The next shape in drawing order, laid over rows top .. bottom
    // (inclusive, inside firstRow .. endRow - 1, at most a region tall).
    void add(std::uint32_t shape, int top, int bottom) {
        const int upper = regionOf(top), lower = regionOf(bottom);
        if (upper == lower) {
            lists_[static_cast<std::size_t>(upper)].push_back({shape, false});
        } else {
            lists_[static_cast<std::size_t>(upper)].push_back({shape, true});
            lists_[static_cast<std::size_t>(lower)].push_back({shape, true});
        }
    }

    // lay(worker, shape) for every shape on workers threads of the pool, in the
    // order above; enter(region) once for each region before any shape is
    // laid in it. A lay that throws, or stop() turning true, ends the run
    // after the shapes under way; the first error is thrown here.
    template <typename Enter, typename Lay, typename Stop>
    void run(WorkerPool& pool, int workers, Enter&& enter, Lay&& lay, Stop&& stop) {
        entered_.assign(lists_.size(), 0);
        pool.run(workers, [&](int worker) {
            std::unique_lock lock(mutex_);
            for (;;) {
                const Task task = pick();
                if (task.region < 0) {
                    if (finished_ || allDone()) return;
                    wait(lock);
                    continue;
                }
                lock.unlock();
                bool ok = true;
                try {
                    const int last = task.straddle ? task.region + 1 : task.region;
                    for (int r = task.region; r <= last; ++r) {
                        if (entered_[static_cast<std::size_t>(r)] == 0) {
                            enter(r);
                            entered_[static_cast<std::size_t>(r)] = 1;
                        }
                    }
                    const List& list = lists_[static_cast<std::size_t>(task.region)];
                    for (std::size_t i = task.begin; i < task.end; ++i) {
                        if ((i - task.begin) % 1024 == 0 && stop()) {
                            ok = false;
                            break;
                        }
                        lay(worker, list[i].shape);
                    }
                } catch (...) {
                    const std::scoped_lock failure(mutex_);
                    if (!error_) error_ = std::current_exception();
                    ok = false;
                }
                lock.lock();
                finish(task, ok);
            }
        });
        if (error_) std::rethrow_exception(error_);
    }

    // Whether enter(region) ran: regions without shapes (or left by a
    // stop) are the caller's to finish.
    [[nodiscard]] bool entered(int region) const {
        return entered_[static_cast<std::size_t>(region)] != 0;
    }

  private:
    struct Entry {
        std::uint32_t shape;
        bool straddle; // also in the next region's list (or the one before)
    };
    struct Task {
        int region = -1;
        std::size_t begin = 0;
        std::size_t end = 0;
        bool straddle = false; // the shape at begin, over region and region + 1
    };

    [[nodiscard]] bool allDone() const {
        for (std::size_t r = 0; r < lists_.size(); ++r)
            if (cursor_[r] < lists_[r].size()) return false;
        return true;
    }

    // Under the lock: a run of region-local shapes, or a straddling shape
    // both of whose regions stand at it.
    Task pick() {
        if (finished_) return {};
        for (std::size_t r = 0; r < lists_.size(); ++r) {
            const List& list = lists_[r];
            const std::size_t at = cursor_[r];
            if (busy_[r] != 0 || at == list.size()) continue;
            if (!list[at].straddle) {
                std::size_t end = at;
                while (end < list.size() && !list[end].straddle)
                    ++end;
                busy_[r] = 1;
                return {static_cast<int>(r), at, end, false};
            }
            // A straddling shape is the upper region's to start.
            const std::size_t next = r + 1;
            if (next == lists_.size() || busy_[next] != 0) continue;
            const std::size_t there = cursor_[next];
            if (there == lists_[next].size() || !lists_[next][there].straddle ||
                lists_[next][there].shape != list[at].shape) {
                continue;
            }
            busy_[r] = busy_[next] = 1;
            return {static_cast<int>(r), at, at + 1, true};
        }
        return {};
    }

    void finish(const Task& task, bool ok) {
        cursor_[static_cast<std::size_t>(task.region)] = task.end;
        busy_[static_cast<std::size_t>(task.region)] = 0;
        if (task.straddle) {
            ++cursor_[static_cast<std::size_t>(task.region) + 1];
            busy_[static_cast<std::size_t>(task.region) + 1] = 0;
        }
        if (!ok) finished_ = true;
        version_.fetch_add(1, std::memory_order_release);
        changed_.notify_all();
    }

    // Until another thread ends a task: a short spin first, since the task
    // awaited is mostly a few microseconds of work (two regions keep about
    // the same pace between the shapes they share); then asleep, so that a
    // thread the system has stopped costs no time of a waiting one.
    void wait(std::unique_lock<std::mutex>& lock) {
        const std::uint64_t seen = version_.load(std::memory_order_relaxed);
        lock.unlock();
        for (int spin = 0; spin < 1000 && version_.load(std::memory_order_acquire) == seen; ++spin)
            pause();
        lock.lock();
        changed_.wait(lock, [&] { return version_.load(std::memory_order_relaxed) != seen; });
    }

    static void pause() {
#if defined(__x86_64__) || defined(__i386__)
        __builtin_ia32_pause();
#else
        std::this_thread::yield();
#endif
    }

    int firstRow_;
    int endRow_;
    // Picture memory: large lists grow by huge pages, not by small fresh ones.
    using List = std::vector<Entry, PictureAllocator<Entry>>;
    std::vector<List> lists_;
    std::vector<std::size_t> cursor_;
    std::vector<std::uint8_t> busy_;
    std::vector<std::uint8_t> entered_;
    bool finished_ = false;
    std::exception_ptr error_;
    std::mutex mutex_;
    std::condition_variable changed_;
    std::atomic<std::uint64_t> version_{0};
};

} // namespace lumiran::mosaic

#pragma once

#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <functional>
#include <mutex>
#include <thread>
#include <vector>

namespace lumiran {

// The cores this process may use, at least 1.
[[nodiscard]] int availableCores();

// Threads kept for the row loops of one run, so that an effect of several
// passes does not start threads for every pass. The calling thread is
// worker 0 and works alongside the helpers.
class WorkerPool {
  public:
    // threads counts the calling thread: threads - 1 helpers are started.
    explicit WorkerPool(int threads);
    WorkerPool(const WorkerPool&) = delete;
    WorkerPool& operator=(const WorkerPool&) = delete;
    ~WorkerPool();

    [[nodiscard]] int threads() const { return static_cast<int>(helpers_.size()) + 1; }

    // Calls task(worker) for worker 0 .. workers - 1 at once, worker 0 on the
    // calling thread, and returns when every call has returned. The task
    // must not throw; workers beyond threads() are not started. Called
    // again from inside a task, it runs every part on the calling thread.
    void run(int workers, const std::function<void(int)>& task);
    // Whether run() would now do every part on the calling thread: parts
    // that wait for one another must then not be handed to it.
    [[nodiscard]] bool runsInTurn() const { return threads() == 1 || busy_.load(); }

  private:
    void serve(int worker);

    std::mutex mutex_;
    std::condition_variable wake_;
    std::condition_variable done_;
    const std::function<void(int)>* task_ = nullptr;
    int workers_ = 0;
    int running_ = 0;
    std::uint64_t generation_ = 0;
    bool stopping_ = false;
    std::atomic<bool> busy_{false};
    std::vector<std::thread> helpers_;
};

} // namespace lumiran

#include "engine/worker_pool.h"

#include <algorithm>
#include <sched.h>

namespace lumiran {

int availableCores() {
    // The affinity mask, not the machine's count: a process pinned to fewer
    // cores gains nothing from more threads.
    cpu_set_t set;
    CPU_ZERO(&set);
    if (sched_getaffinity(0, sizeof(set), &set) == 0) return std::max(1, CPU_COUNT(&set));
    return std::max(1, static_cast<int>(std::thread::hardware_concurrency()));
}

WorkerPool::WorkerPool(int threads) {
    const int helpers = std::max(threads, 1) - 1;
    helpers_.reserve(static_cast<std::size_t>(helpers));
    for (int i = 1; i <= helpers; ++i) {
        helpers_.emplace_back([this, i] { serve(i); });
    }
}

WorkerPool::~WorkerPool() {
    {
        const std::scoped_lock lock(mutex_);
        stopping_ = true;
    }
    wake_.notify_all();
    for (std::thread& helper : helpers_)
        helper.join();
}

void WorkerPool::run(int workers, const std::function<void(int)>& task) {
    workers = std::clamp(workers, 1, threads());
    if (busy_.exchange(true)) {
        // A loop inside a row of another: its helpers are taken, so the
        // calling thread does every worker's part itself.
        for (int worker = 0; worker < workers; ++worker)
            task(worker);
        return;
    }
    if (workers > 1) {
        {
            const std::scoped_lock lock(mutex_);
            task_ = &task;
            workers_ = workers;
            running_ = workers - 1;
            ++generation_;
        }
        wake_.notify_all();
    }
    task(0);
    if (workers > 1) {
        std::unique_lock lock(mutex_);
        done_.wait(lock, [this] { return running_ == 0; });
        task_ = nullptr;
    }
    busy_.store(false);
}

void WorkerPool::serve(int worker) {
    std::uint64_t seen = 0;
    for (;;) {
        const std::function<void(int)>* task = nullptr;
        {
            std::unique_lock lock(mutex_);
            wake_.wait(lock, [&] { return stopping_ || generation_ != seen; });
            if (stopping_) return;
            seen = generation_;
            if (worker >= workers_) continue;
            task = task_;
        }
        (*task)(worker);
        {
            const std::scoped_lock lock(mutex_);
            --running_;
        }
        done_.notify_one();
    }
}

} // namespace lumiran

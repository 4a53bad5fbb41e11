#pragma once

#include "engine/effect_error.h"
#include "engine/effect_flags.h"
#include "engine/random_generator.h"
#include "engine/surface.h"
#include "engine/worker_pool.h"

#include <atomic>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace lumiran {

// Receives the percentage after each row. A front end forwards it to its
// progress bar; this call is also where the original let other events in.
// During a load, showPercent may throw LoadCancelled to stop it; loaders
// that pass through C libraries catch it there and rethrow it after.
class ProgressSink {
  public:
    virtual ~ProgressSink() = default;
    virtual void showPercent(int percent) = 0;
    // Effects of several passes name the pass by a string-table id
    // ("しばらくお待ちください。1/2" and so on) for the progress window.
    virtual void showCaption(int /*stringId*/) {}
    // A remark on how a picture was loaded (a metafile drawn smaller than
    // its frame), for the front end to pass on.
    virtual void showNote(const std::string& /*note*/) {}
};

// 1 asks the row loop to stop after the current row. Set from the progress
// window's thread, read by the effect after each row.
using CancelFlag = std::atomic<std::uint8_t>;

// How the row loops whose rows are independent use the cores.
struct RowThreading {
    // 1 runs every row on the calling thread.
    int threads = availableCores();
    // The smallest band of rows handed to one thread, in pixels: small
    // pictures are not worth a second thread.
    int bandPixels = 1 << 15;
};

// Everything an effect object reads besides its own arguments.
struct RunContext {
    RunContext(CancelFlag& cancelFlag, RandomGenerator& randomGenerator)
        : cancel(cancelFlag), random(randomGenerator) {}

    EffectFlags flags;
    // 1: the row loop reports progress; previews run with 2.
    std::uint8_t progressFlag = 1;
    CancelFlag& cancel;
    RandomGenerator& random;
    ProgressSink* progress = nullptr;
    // The kept pictures 0 and 1 of the run, for the few effects that read
    // or draw on them directly; null in contexts without them.
    Surface* kept0 = nullptr;
    Surface* kept1 = nullptr;
    // The kept image of composition; null or empty while none is held.
    const Surface* composeImage = nullptr;
    // Errors the effects' handlers caught, in order; the front end shows
    // each under "ｴﾗｰ" plus its number.
    std::vector<EffectError> failures;
    RowThreading threading;

    // The threads of the run, started on first use.
    [[nodiscard]] WorkerPool& workers() {
        if (!workers_ || workers_->threads() != threading.threads) {
            workers_ = std::make_unique<WorkerPool>(threading.threads);
        }
        return *workers_;
    }

    [[nodiscard]] bool cancelled() const { return cancel.load(std::memory_order_relaxed) == 1; }
    void requestCancel() { cancel.store(1, std::memory_order_relaxed); }

  private:
    std::unique_ptr<WorkerPool> workers_;
};

} // namespace lumiran

#pragma once

#include "engine/effect_error.h"
#include "engine/effect_flags.h"
#include "engine/random_generator.h"
#include "engine/surface.h"

#include <atomic>
#include <cstdint>
#include <vector>

namespace lumiran {

// Receives the percentage after each row. A front end forwards it to its
// progress bar; this call is also where the original let other events in.
class ProgressSink {
  public:
    virtual ~ProgressSink() = default;
    virtual void showPercent(int percent) = 0;
};

// 1 asks the row loop to stop after the current row. Set from the progress
// window's thread, read by the effect after each row.
using CancelFlag = std::atomic<std::uint8_t>;

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
    // Errors the effects' handlers caught, in order; the front end shows
    // each under "ｴﾗｰ" plus its number.
    std::vector<EffectError> failures;

    [[nodiscard]] bool cancelled() const { return cancel.load(std::memory_order_relaxed) == 1; }
    void requestCancel() { cancel.store(1, std::memory_order_relaxed); }
};

} // namespace lumiran

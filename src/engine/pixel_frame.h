#pragma once

#include "engine/calculation.h"
#include "engine/numeric.h"
#include "engine/pixel.h"
#include "engine/process_rect.h"
#include "engine/run_context.h"
#include "engine/surface.h"

#include <algorithm>
#include <cstdint>
#include <new>

namespace lumiran {

// What an effect does with its result when the calculation type is 0.
enum class ResultTail {
    Raw,   // store the low bytes as they stand
    Clamp, // limit to 0..255 first (the shared tail of most effects)
};

// Where the row loop stores: back into the source, or into the separate
// destination for effects that still read what they would overwrite.
enum class Destination { InPlace, Trans };

struct MaxMin {
    std::int16_t max = 0;
    std::int16_t min = 0;
};

[[nodiscard]] constexpr MaxMin MaxMinOfThree(int a, int b, int c) {
    return {static_cast<std::int16_t>(std::max({a, b, c})),
            static_cast<std::int16_t>(std::min({a, b, c}))};
}

// The scaffolding every effect class shares: the pixel round trip, the row
// loop with progress and cancel, the blend by calculation type and the
// handler that turns a run-time error into a cancelled run. An effect class
// derives from it and adds only its formulas.
//
// An object serves one run: its progress counter is never reset.
class PixelFrame {
  public:
    explicit PixelFrame(RunContext& context) : context_(context) {}
    PixelFrame(const PixelFrame&) = delete;
    PixelFrame& operator=(const PixelFrame&) = delete;
    virtual ~PixelFrame() = default;

    void ImageGetDiBits(const Surface& picture);
    void ImageGetDiBitsTrans(const Surface& picture);
    // Write the array into the picture and free both arrays.
    void ImageSetDiBits(Surface& picture);
    void ImageSetDiBitsTrans(Surface& picture);

    [[nodiscard]] int progressCount() const { return ProgressCount; }
    [[nodiscard]] int progressTotal() const { return ProgressTotal; }

  protected:
    void SetProgressRange(int top, int bottom);
    void StepProgress();

    [[nodiscard]] RunContext& context() { return context_; }
    [[nodiscard]] std::uint8_t calculationFlag() const { return context_.flags.calculationFlag; }

    // The end of every row: progress when enabled, then the cancel test.
    // Returns false when the loop over rows is to stop.
    bool finishRow() {
        if (context_.progressFlag == 1) StepProgress();
        return !context_.cancelled();
    }

    // Runs an effect body under the shared handler: a run-time error is
    // recorded for the front end and the run ends as cancelled.
    template <typename Body>
    void guarded(Body&& body) {
        try {
            body();
        } catch (const EffectError& error) {
            fail(error);
        } catch (const std::bad_alloc&) {
            fail(EffectError::outOfMemory());
        }
    }

    // The blend or clamp that ends each pixel, by the calculation type.
    template <ResultTail Tail>
    [[nodiscard]] Rgb16 finishPixel(int r, int g, int b, Rgb16 result) const {
        const std::uint8_t flag = context_.flags.calculationFlag;
        if (flag > 0) return applyCalculationType(flag, r, g, b, result);
        if constexpr (Tail == ResultTail::Clamp) return clampResult(result);
        return result;
    }

    // The row loop of a per-pixel effect: rule(r, g, b) gives the result
    // fields for one source pixel. Rows and columns that fall outside the
    // picture are dropped rather than reached.
    template <ResultTail Tail, Destination Dest = Destination::InPlace, typename Rule>
    void mapPixels(const ProcessRect& rect, Rule&& rule) {
        SetProgressRange(rect.top, rect.bottom);
        Surface& target = Dest == Destination::InPlace ? ImageBits : TransBits;
        const int endRow = loopEnd(rect.bottom);
        const int firstColumn = std::max<int>(rect.left, 0);
        const int endColumn = std::min(loopEnd(rect.right), ImageBits.width());
        const bool blend = calculationFlag() > 0;
        for (int y = rect.top; y < endRow; ++y) {
            if (y >= 0 && y < ImageBits.height()) {
                const Pixel* source = ImageBits.row(y).data();
                Pixel* destination = target.row(y).data();
                // Without a blend the loop is free of branches, so the
                // compiler can vectorise the rule.
                if (blend) {
                    mapRow<Tail, true>(source, destination, firstColumn, endColumn, rule);
                } else {
                    mapRow<Tail, false>(source, destination, firstColumn, endColumn, rule);
                }
            }
            if (!finishRow()) break;
        }
    }

    template <ResultTail Tail, bool Blend, typename Rule>
    void mapRow(const Pixel* source, Pixel* destination, int begin, int end, Rule& rule) const {
        // In place the two pointers are one: say so, or the compiler's
        // overlap check sends every row down the scalar path.
        if (source == destination) {
            Pixel* row = destination;
            for (int x = begin; x < end; ++x)
                row[x] = mapPixel<Tail, Blend>(row[x], row[x], rule);
        } else {
            const Pixel* __restrict in = source;
            Pixel* __restrict out = destination;
            for (int x = begin; x < end; ++x)
                out[x] = mapPixel<Tail, Blend>(in[x], out[x], rule);
        }
    }

    template <ResultTail Tail, bool Blend, typename Rule>
    [[nodiscard]] Pixel mapPixel(Pixel source, Pixel previous, Rule& rule) const {
        const int r = redOf(source), g = greenOf(source), b = blueOf(source);
        Rgb16 v = rule(r, g, b);
        if constexpr (Blend) {
            v = applyCalculationType(calculationFlag(), r, g, b, v);
        } else if constexpr (Tail == ResultTail::Clamp) {
            v = clampResult(v);
        }
        return withColour(previous, v.red, v.green, v.blue);
    }

    // The exclusive loop limit as the 16-bit "limit minus 1" gives it.
    [[nodiscard]] static int loopEnd(std::int16_t exclusiveLimit) {
        return wrap16(exclusiveLimit - 1) + 1;
    }

    Surface ImageBits;
    Surface TransBits;
    int ProgressCount = 0;
    int ProgressPercent = 0;
    int ProgressTotal = 0;

  private:
    void fail(const EffectError& error);

    RunContext& context_;
};

} // namespace lumiran

#pragma once

#include "engine/calculation.h"
#include "engine/numeric.h"
#include "engine/pixel.h"
#include "engine/process_rect.h"
#include "engine/row_bands.h"
#include "engine/run_context.h"
#include "engine/surface.h"

#include <algorithm>
#include <cstdint>
#include <mutex>
#include <new>
#include <type_traits>
#include <utility>
#include <vector>

namespace lumiran {

// How a pixel's result fields reach the array.
enum class ResultTail {
    Clamp,     // blended by the calculation type, otherwise clamped: the shared tail
    Raw,       // blended by the calculation type, otherwise the low bytes as they stand
    StoreOnly, // the low bytes as they stand, never blended
    ClampOnly, // clamped, never blended
};

// Whether a row loop may hand its rows to several threads. Rules that carry
// state from pixel to pixel or row to row, or that draw from the one random
// generator, must name TopToBottom: their result depends on the order.
enum class RowOrder { AnyOrder, TopToBottom };

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

    // Lends a picture to ImageBits for the loan's lifetime instead of
    // copying it, and hands it back however the call ends: for calls that
    // write TransBits, only read ImageBits and never read the kept pictures
    // through the context. A 4096x4096 run then holds two pictures, not three.
    // In-place calls take such a loan of a picture the run lets them change
    // (runInPlaceOnSource).
    class SourceLoan {
      public:
        SourceLoan(PixelFrame& effect, Surface& picture) : effect_(effect), picture_(picture) {
            effect_.ImageBits = std::move(picture_);
        }
        SourceLoan(const SourceLoan&) = delete;
        SourceLoan& operator=(const SourceLoan&) = delete;
        ~SourceLoan() { picture_ = std::move(effect_.ImageBits); }

      private:
        PixelFrame& effect_;
        Surface& picture_;
    };

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
        if (blends(Tail) && calculationFlag() > 0) return endPixel<Tail, true>(r, g, b, result);
        return endPixel<Tail, false>(r, g, b, result);
    }

    // The same with the blend decided once for a whole loop.
    template <ResultTail Tail, bool Blend>
    [[nodiscard]] Rgb16 endPixel(int r, int g, int b, Rgb16 result) const {
        if constexpr (Blend) {
            return applyCalculationType(calculationFlag(), r, g, b, result);
        } else if constexpr (Tail == ResultTail::Clamp || Tail == ResultTail::ClampOnly) {
            return clampResult(result);
        } else {
            return result;
        }
    }

    [[nodiscard]] static constexpr bool blends(ResultTail tail) {
        return tail == ResultTail::Clamp || tail == ResultTail::Raw;
    }

    // The part of a rectangle that lies inside the picture.
    struct Span {
        int firstColumn = 0;
        int endColumn = 0;
        int firstRow = 0;
        int endRow = 0;
        [[nodiscard]] bool empty() const { return firstColumn >= endColumn || firstRow >= endRow; }
    };
    [[nodiscard]] Span spanOf(const ProcessRect& rect) const {
        return {std::max<int>(rect.left, 0), std::min(loopEnd(rect.right), ImageBits.width()),
                std::max<int>(rect.top, 0), std::min(loopEnd(rect.bottom), ImageBits.height())};
    }

    // A result the call makes itself rather than fetches: TransBits a fresh
    // picture whose rows outside the worked span (none when it has no
    // columns) are the source's, copied here on every core. The loop that
    // works the others copies each first (copyRowToTrans), while the row is
    // at hand.
    void makeTransOutside(const Span& worked);
    void copyRowToTrans(int y) {
        const std::span<const Pixel> in = ImageBits.row(y);
        std::copy(in.begin(), in.end(), TransBits.row(y).begin());
    }

    // The rows of the rectangle that lie in the picture, as work(y,
    // firstColumn, endColumn); every row of the rectangle counts for
    // progress, also those outside the picture. Returns false when the run
    // was cancelled. With AnyOrder, rows run at once on several threads in
    // bands: work must then write nothing but its own row of its destination
    // and read nothing another row writes. Progress still counts each
    // finished row, a cancel stops every thread after its current row, and
    // an error thrown by a row ends the loop with the error of the first
    // failing row, as on one thread. The caller sets the progress range.
    template <RowOrder Order = RowOrder::AnyOrder, typename RowWork>
    bool forEachRow(const ProcessRect& rect, RowWork&& work) {
        if constexpr (Order == RowOrder::AnyOrder) {
            return rowsInBands(rect, bandPlan(rect),
                               [&](int, int y, int begin, int end) { work(y, begin, end); });
        } else {
            return rowsInOrder(rect, work);
        }
    }

    // The row loop of a per-pixel effect. The rule is called as rule(r, g, b)
    // or rule(x, y, r, g, b) and gives the result fields; the second form
    // takes r, g, b by reference where it changes what the blend sees as the
    // source. Rows and columns that fall outside the picture are dropped
    // rather than reached; rows still count for progress. With AnyOrder each
    // thread calls a copy of the rule of its own, so a rule may keep a cache;
    // a rule that carries state from pixel to pixel names TopToBottom. A
    // rule with a member startRow(y) has it called before each of its rows.
    template <ResultTail Tail, Destination Dest = Destination::InPlace,
              RowOrder Order = RowOrder::AnyOrder, typename Rule>
    void mapPixels(const ProcessRect& rect, Rule&& rule) {
        SetProgressRange(rect.top, rect.bottom);
        Surface& target = Dest == Destination::InPlace ? ImageBits : TransBits;
        const Span span = spanOf(rect);
        const bool blend = blends(Tail) && calculationFlag() > 0;
        auto mapOneRow = [&](auto& ownRule, int y) {
            // A rule with terms by row works them out here, outside the
            // pixel loop, which then stays free of the test.
            if constexpr (requires { ownRule.startRow(y); }) ownRule.startRow(y);
            const Pixel* source = ImageBits.row(y).data();
            Pixel* destination = target.row(y).data();
            // Without a blend the loop is free of branches, so the
            // compiler can vectorise the rule.
            if (blend) {
                mapRow<Tail, true>(source, destination, y, span, ownRule);
            } else {
                mapRow<Tail, false>(source, destination, y, span, ownRule);
            }
        };
        using OwnRule = std::decay_t<Rule>;
        if constexpr (Order == RowOrder::TopToBottom || !std::is_copy_constructible_v<OwnRule>) {
            if constexpr (Order == RowOrder::TopToBottom) {
                rowsInOrder(rect, [&](int y, int, int) { mapOneRow(rule, y); });
            } else {
                forEachRow(rect, [&](int y, int, int) { mapOneRow(rule, y); });
            }
        } else {
            const BandPlan plan = bandPlan(rect);
            std::vector<OwnRule> rules(static_cast<std::size_t>(plan.workers), rule);
            rowsInBands(rect, plan, [&](int worker, int y, int, int) {
                mapOneRow(rules[static_cast<std::size_t>(worker)], y);
            });
        }
    }

    // How the rows of a rectangle are shared out among threads.
    struct BandPlan {
        int workers = 1;
        int bandRows = 1;
    };
    [[nodiscard]] BandPlan bandPlan(const ProcessRect& rect) const;

    template <typename RowWork>
    bool rowsInOrder(const ProcessRect& rect, RowWork&& work) {
        const Span span = spanOf(rect);
        const int endRow = loopEnd(rect.bottom);
        for (int y = rect.top; y < endRow; ++y) {
            if (inPicture(y, span)) work(y, span.firstColumn, span.endColumn);
            if (!finishRow()) return false;
        }
        return true;
    }

    // work(worker, y, firstColumn, endColumn) on plan.workers threads.
    template <typename RowWork>
    bool rowsInBands(const ProcessRect& rect, const BandPlan& plan, RowWork&& work) {
        if (plan.workers <= 1) {
            auto one = [&](int y, int begin, int end) { work(0, y, begin, end); };
            return rowsInOrder(rect, one);
        }
        const Span span = spanOf(rect);
        RowBands bands(rect.top, loopEnd(rect.bottom), plan.bandRows);
        context_.workers().run(plan.workers, [&](int worker) {
            for (RowBands::Band band = bands.claim(); !band.empty(); band = bands.claim()) {
                for (int y = band.begin; y < band.end; ++y) {
                    if (!bands.mayStart(y)) return;
                    try {
                        if (inPicture(y, span)) work(worker, y, span.firstColumn, span.endColumn);
                        const std::scoped_lock lock(bands.rowEnd());
                        if (!finishRow()) {
                            bands.cancel();
                            return;
                        }
                    } catch (...) {
                        bands.fail(y, std::current_exception());
                        return;
                    }
                }
            }
        });
        return bands.finish();
    }

    [[nodiscard]] bool inPicture(int y, const Span& span) const {
        return y >= 0 && y < ImageBits.height() && span.firstColumn < span.endColumn;
    }

    // Flattened so that the rule's helpers are inlined whatever the
    // inliner's budget for the translation unit. In place the row is one
    // pointer, and a restrict parameter tells the compiler that it overlaps
    // neither a second array nor the rule's tables; otherwise its overlap
    // checks send every row down the scalar path.
    template <ResultTail Tail, bool Blend, typename Rule>
    [[gnu::flatten]] void mapRowInPlace(Pixel* __restrict row, int y, const Span& span,
                                        Rule& rule) const {
        for (int x = span.firstColumn; x < span.endColumn; ++x) {
            row[x] = mapPixel<Tail, Blend>(row[x], row[x], x, y, rule);
        }
    }

    template <ResultTail Tail, bool Blend, typename Rule>
    [[gnu::flatten]] void mapRowInto(const Pixel* __restrict in, Pixel* __restrict out, int y,
                                     const Span& span, Rule& rule) const {
        for (int x = span.firstColumn; x < span.endColumn; ++x) {
            out[x] = mapPixel<Tail, Blend>(in[x], out[x], x, y, rule);
        }
    }

    template <ResultTail Tail, bool Blend, typename Rule>
    void mapRow(const Pixel* source, Pixel* destination, int y, const Span& span,
                Rule& rule) const {
        if (source == destination) {
            mapRowInPlace<Tail, Blend>(destination, y, span, rule);
        } else {
            mapRowInto<Tail, Blend>(source, destination, y, span, rule);
        }
    }

    template <ResultTail Tail, bool Blend, typename Rule>
    [[nodiscard]] Pixel mapPixel(Pixel source, Pixel previous, int x, int y, Rule& rule) const {
        int r = redOf(source), g = greenOf(source), b = blueOf(source);
        Rgb16 v;
        if constexpr (std::is_invocable_v<Rule&, int, int, int&, int&, int&>) {
            v = rule(x, y, r, g, b);
        } else {
            v = rule(r, g, b);
        }
        v = endPixel<Tail, Blend>(r, g, b, v);
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

#pragma once

#include "effects/neighbourhood/window.h"
#include "engine/pixel_frame.h"
#include "engine/shared_rows.h"

#include <algorithm>
#include <cstdint>
#include <span>
#include <vector>

namespace lumiran {

// What the two neighbourhood classes share beyond the pixel frame: the
// part of a rectangle inside the picture, and the tail that stores a
// result into the separate destination.
class NeighbourhoodFrame : public PixelFrame {
  public:
    using PixelFrame::PixelFrame;

  protected:
    // The rectangle cut to the picture; windows are laid inside this, so
    // nothing outside the array is ever read.
    [[nodiscard]] neighbourhood::Area areaOf(const ProcessRect& rect) const {
        const Span span = spanOf(rect);
        return {span.firstColumn, span.endColumn, span.firstRow, span.endRow};
    }

    // The shared tail with the centre `source` as what the blend sees, into
    // the element of TransBits at (x, y); its spare byte stays.
    void storeTrans(int x, int y, Pixel source, Rgb16 result) {
        const Rgb16 v =
            finishPixel<ResultTail::Clamp>(redOf(source), greenOf(source), blueOf(source), result);
        Pixel& target = TransBits.at(x, y);
        target = withColour(target, v.red, v.green, v.blue);
    }
    // The same in place, into ImageBits.
    void storeInPlace(int x, int y, Rgb16 result) {
        Pixel& target = ImageBits.at(x, y);
        const Rgb16 v =
            finishPixel<ResultTail::Clamp>(redOf(target), greenOf(target), blueOf(target), result);
        target = withColour(target, v.red, v.green, v.blue);
    }

    // A call lent its source may find TransBits unfetched: it is then made
    // here as the source's copy, its rows on every core. Fresh pages cost
    // more than the copy, so both threads take their share of them.
    void fetchTransOnCores() {
        if (!TransBits.empty()) return;
        TransBits = Surface::uninitialised(ImageBits.width(), ImageBits.height());
        forEachRowShared(context(), 0, ImageBits.height(), ImageBits.width(), [this](int y) {
            const std::span<const Pixel> in = ImageBits.row(y);
            std::copy(in.begin(), in.end(), TransBits.row(y).begin());
        });
    }

    // For a call lent its source that finds TransBits unfetched: the result
    // array is made without clearing or copying it first. Rows outside
    // [firstRow, endRow) are copied at once on every core; each row inside
    // is copied by takeRow from the row loop, just before the call writes
    // its results over it, while the row is in the cache. Rows that a cancel
    // or a failure left untaken are copied when the guard ends, so the array
    // is always whole. With TransBits fetched by the caller it does nothing.
    class OwnTransRows {
      public:
        OwnTransRows(NeighbourhoodFrame& frame, int firstRow, int endRow)
            : frame_(frame), firstRow_(std::max(firstRow, 0)),
              endRow_(std::min(endRow, frame.ImageBits.height())) {
            if (!frame_.TransBits.empty() || frame_.ImageBits.empty()) return;
            Surface& trans = frame_.TransBits;
            const Surface& source = frame_.ImageBits;
            taken_.assign(static_cast<std::size_t>(source.height()), 0);
            trans = Surface::uninitialised(source.width(), source.height());
            own_ = true;
            forEachRowShared(frame_.context(), 0, source.height(), source.width(), [&](int y) {
                if (y < firstRow_ || y >= endRow_) copyRow(y);
            });
        }
        OwnTransRows(const OwnTransRows&) = delete;
        OwnTransRows& operator=(const OwnTransRows&) = delete;
        ~OwnTransRows() {
            if (!own_) return;
            for (int y = firstRow_; y < endRow_; ++y) {
                if (taken_[static_cast<std::size_t>(y)] == 0) copyRow(y);
            }
        }

        // Row y of TransBits as the source's; rows differ between threads.
        void takeRow(int y) {
            if (!own_) return;
            copyRow(y);
            taken_[static_cast<std::size_t>(y)] = 1;
        }

      private:
        void copyRow(int y) {
            const std::span<const Pixel> in = frame_.ImageBits.row(y);
            std::copy(in.begin(), in.end(), frame_.TransBits.row(y).begin());
        }

        NeighbourhoodFrame& frame_;
        int firstRow_;
        int endRow_;
        bool own_ = false;
        std::vector<std::uint8_t> taken_;
    };

    // Without a calculation type the tail is the clamp alone, and whole
    // rows of clamped results can be stored with vector operations.
    [[nodiscard]] bool blending() const { return calculationFlag() > 0; }
};

} // namespace lumiran

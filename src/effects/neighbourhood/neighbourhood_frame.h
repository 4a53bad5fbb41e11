#pragma once

#include "effects/neighbourhood/window.h"
#include "engine/pixel_frame.h"
#include "engine/shared_rows.h"

#include <algorithm>
#include <span>

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

    // Without a calculation type the tail is the clamp alone, and whole
    // rows of clamped results can be stored with vector operations.
    [[nodiscard]] bool blending() const { return calculationFlag() > 0; }
};

} // namespace lumiran

#pragma once

#include "engine/drawing/raster_code.h"
#include "engine/pixel_frame.h"

#include <algorithm>
#include <array>
#include <cstdint>

namespace lumiran {

// Merges the document with the kept image (the run context's composeImage)
// and hides one picture in another. Every merge covers only the top left
// area the two pictures share, cut by the process rectangle; the kept image
// is read pixel by pixel at the same x, y. Without a kept image nothing
// changes.
class Class_Composition : public PixelFrame {
  public:
    using PixelFrame::PixelFrame;

    // Kept image swapped in where the document is brighter or darker than
    // a band: type 0 by the mean of the three channels, type 1 channel by
    // channel. The band S1 < v < S2 excludes both limits.
    void Composite_Exchange(std::uint8_t type, std::int16_t S2, std::int16_t S1, std::int16_t left,
                            std::int16_t top, std::int16_t right, std::int16_t bottom);
    // The dialog's colour where document and kept image have the same mean
    // (type 0) or the same channel (type 1).
    void Composite_Exchange2(std::uint8_t type, std::int16_t left, std::int16_t top,
                             std::int16_t right, std::int16_t bottom, std::int16_t red,
                             std::int16_t green, std::int16_t blue);
    // Modes 0 c + c1, 1 |round(255 - (c1 - c)^2 / 2)|, 2 the mean less a
    // square (255 where equal); the selector row picks the channels.
    void Composite_Addition(std::uint8_t mode, std::uint8_t type, std::int16_t left,
                            std::int16_t top, std::int16_t right, std::int16_t bottom);
    // Weight w of 1..9 tenths of the kept image.
    void Composite_Mean(std::int16_t weight, std::uint8_t type, std::int16_t left, std::int16_t top,
                        std::int16_t right, std::int16_t bottom);
    // The document's pixel displaced right and down by the difference of
    // the two pictures' means.
    void Composite_Diffuse(std::uint8_t unused, std::uint8_t direction, std::int16_t left,
                           std::int16_t top, std::int16_t right, std::int16_t bottom);
    // A relief of the kept image's brightness lit from one of eight sides,
    // pressed into the document (type 0) or on the given colour (type 1).
    void Composite_Embossing(std::uint8_t direction, std::uint8_t type, std::int16_t left,
                             std::int16_t top, std::int16_t right, std::int16_t bottom, double red,
                             double green, double blue, double filterSize);
    // Both channels thresholded (the compare value stays, anything else
    // becomes coefficient minus value), then combined bit by bit: And, Or,
    // Xor, Eqv.
    void Composite_Morphological(std::uint8_t mode, std::int16_t compare, std::int16_t coefficient,
                                 std::int16_t left, std::int16_t top, std::int16_t right,
                                 std::int16_t bottom);
    void Suteganography_Hide(std::uint8_t type, std::int16_t left, std::int16_t top,
                             std::int16_t right, std::int16_t bottom);
    void Suteganography_Extraction(std::uint8_t type, std::int16_t left, std::int16_t top,
                                   std::int16_t right, std::int16_t bottom);
    // A ripple whose height comes from the kept image: ImageBits into
    // TransBits, four bytes copied, no calculation step, progress of its own.
    void Composite_Coordinate(std::uint8_t type, std::uint8_t direction, std::int16_t S,
                              std::int16_t left, std::int16_t top, std::int16_t right,
                              std::int16_t bottom);
    // Modes 0..4 the difference (plain, then |c - c1| times 1..4), 5 the
    // product scaled to 255, 6 the quotient c / c1.
    void Composite_Subtraction(std::uint8_t mode, std::uint8_t type, std::int16_t left,
                               std::int16_t top, std::int16_t right, std::int16_t bottom);
    // Mode 0 the kept image stretched over the whole picture, mode 1 tiled.
    void Composite_Tiling(std::uint8_t mode, std::int16_t unused1, std::int16_t unused2);
    // Copies of the kept image side by side from the rectangle's upper left
    // corner, cut at its far edges; the second over the whole picture.
    void Draw_TilePicture(std::int16_t left, std::int16_t top, std::int16_t right,
                          std::int16_t bottom, RasterCode code = SRCCOPY);
    void Draw_TilePictureAll(RasterCode code = SRCCOPY);
    // "ﾗｽﾀ演算による合成": the kept image laid over the document by a raster
    // code, as it is (layout 0), stretched to the rectangle (1) or tiled (2).
    void Composite_Raster(RasterCode code, std::uint8_t layout, std::int16_t left, std::int16_t top,
                          std::int16_t right, std::int16_t bottom);

  private:
    [[nodiscard]] const Surface& keptImage();
    // The per-pixel frame of the merges: rule(r, g, b, r1, g1, b1) gives
    // the result fields of the document's pixel against the kept image's at
    // the same place, over the shared area, in place, then the shared tail.
    // Rules are chosen per mode outside the loop and kept free of branches
    // and of checked conversions, so the rows vectorise.
    template <typename Rule>
    void mergeRows(const ProcessRect& area, const Rule& rule) {
        SetProgressRange(area.top, area.bottom);
        const Surface& kept = keptImage();
        const bool blend = calculationFlag() > 0;
        forEachRow(area, [&](int y, int first, int end) {
            Pixel* row = ImageBits.row(y).data();
            const Pixel* keptRow = kept.row(y).data();
            if (blend) {
                mergeRow<true>(row, keptRow, first, end, rule);
            } else {
                mergeRow<false>(row, keptRow, first, end, rule);
            }
        });
    }

    template <bool Blend, typename Rule>
    [[gnu::flatten]] void mergeRow(Pixel* __restrict row, const Pixel* __restrict keptRow,
                                   int first, int end, const Rule& shared) const {
        // A copy of its own: the stores to the row cannot reach it, so its
        // values stay in registers and the loop vectorises.
        const Rule rule = shared;
        for (int x = first; x < end; ++x) {
            const Pixel d = row[x];
            const Pixel k = keptRow[x];
            const int r = redOf(d), g = greenOf(d), b = blueOf(d);
            const Rgb16 v = endPixel<ResultTail::Clamp, Blend>(
                r, g, b, rule(r, g, b, redOf(k), greenOf(k), blueOf(k)));
            row[x] = withColour(d, v.red, v.green, v.blue);
        }
    }

    // One row of the relief: d = height here - height toward the light;
    // pressed into the document by the tint, or laid on the base colour.
    template <bool Blend, bool Pressed>
    [[gnu::flatten]] void reliefRow(Pixel* __restrict row, const Pixel* __restrict here,
                                    const Pixel* __restrict lit, int first, int end, int dx,
                                    int lastX, std::array<double, 3> tint,
                                    std::array<int, 3> base) const {
        auto height = [](Pixel k) {
            return roundInRange<int>(0.59 * greenOf(k) + 0.3 * redOf(k) + 0.11 * blueOf(k));
        };
        auto pixel = [&](int x, Pixel litPixel) {
            // Rising away from the light faces it: bright.
            const int d = height(here[x]) - height(litPixel);
            const Pixel p = row[x];
            const int r = redOf(p), g = greenOf(p), b = blueOf(p);
            Rgb16 v;
            if constexpr (Pressed) {
                v = {static_cast<std::int16_t>(r + roundInRange<int>(d * tint[0])),
                     static_cast<std::int16_t>(g + roundInRange<int>(d * tint[1])),
                     static_cast<std::int16_t>(b + roundInRange<int>(d * tint[2]))};
            } else {
                v = {static_cast<std::int16_t>(base[0] + d), static_cast<std::int16_t>(base[1] + d),
                     static_cast<std::int16_t>(base[2] + d)};
            }
            v = endPixel<ResultTail::Clamp, Blend>(r, g, b, v);
            row[x] = withColour(p, v.red, v.green, v.blue);
        };
        // Only the edges need the neighbour held inside; between them it is
        // a plain offset, and that loop vectorises.
        const int inFirst = std::clamp(dx, first, end);
        const int inEnd = std::clamp(lastX + dx + 1, inFirst, end);
        for (int x = first; x < inFirst; ++x)
            pixel(x, lit[std::clamp(x - dx, 0, lastX)]);
        for (int x = inFirst; x < inEnd; ++x)
            pixel(x, lit[x - dx]);
        for (int x = inEnd; x < end; ++x)
            pixel(x, lit[std::clamp(x - dx, 0, lastX)]);
    }

    // A channel rule op(c, c1) -> int over the channels of a selector row.
    template <typename ChannelRule>
    void mergeSelected(const ProcessRect& area, int selector, const ChannelRule& op);
    // The process rectangle cut to the area the document and the kept image
    // share.
    [[nodiscard]] ProcessRect sharedArea(std::int16_t left, std::int16_t top, std::int16_t right,
                                         std::int16_t bottom);
};

} // namespace lumiran

#pragma once

#include "effects/texture/net_mosaic/net_grid.h"
#include "engine/pixel_frame.h"

#include <cstdint>
#include <optional>

namespace lumiran {

// A net of irregular cells over the rectangle, drawn through the drawing
// calls: as a mosaic of the cells' mean colours ("Fractal Mosaic") or as
// joints over the picture ("Tile Wall Net"). It holds no pixel array; it
// reads the source picture with GetPixel and writes the target with
// SetPixelV and the canvas, so no calculation type applies.
//
// The net's vertices lie on a grid of blockSize; type 0 ("ﾗﾝﾀﾞﾑ") moves each
// at random by up to noise / 2 and bends every side into a midpoint-
// displaced line; type 1 ("境界") moves each to the strongest change of
// colour within the same reach and keeps the sides straight. Vertices stay
// within their half cell, so cells never cross.
class Class_NetMosaic : public PixelFrame {
  public:
    using PixelFrame::PixelFrame;

    // Every pixel of the rectangle takes the mean colour of its cell.
    void Mosaic_Net(const Surface& source, Surface& target, std::int16_t left, std::int16_t top,
                    std::int16_t right, std::int16_t bottom, std::int16_t blockSize,
                    std::int16_t noise, std::uint8_t type);

    // The rectangle of the source with the net's sides drawn over it in the
    // given colour.
    void Net_Line(const Surface& source, Surface& target, std::int16_t left, std::int16_t top,
                  std::int16_t right, std::int16_t bottom, std::int16_t blockSize,
                  std::int16_t noise, std::uint8_t type, std::int16_t red, std::int16_t green,
                  std::int16_t blue);

    // The dispatch has not filled the target's rectangle with the
    // background: Mosaic_Net takes it as filled with this colour (it reads
    // only the spare bytes there) and writes it whole.
    void takeRectangleAsFilled(Pixel background) { rectangleFill_ = background; }
    // Mosaic_Net writes its result's colour bytes into this picture (of the
    // target's size, its spare bytes kept) instead of the target, which is
    // then only its work picture: for a run that lends the source picture.
    void putResultInto(Surface& picture) { result_ = &picture; }

  private:
    std::optional<Pixel> rectangleFill_;
    Surface* result_ = nullptr;
    struct Bands {
        int workers = 1;
        int unitsPerBand = 1;
        int count = 0;
    };
    [[nodiscard]] Bands bandsOf(int count, long long pixelsPerUnit, int perThread);
    // Calls work(worker, k) for every band k, on several threads when the
    // bands allow; work returns how many units (progress steps) band k
    // held. A cancel stops the bands not yet begun; an error thrown by a
    // band is rethrown here, the lowest band's when several fail. Returns
    // false when the run was cancelled.
    template <typename Work>
    bool inBands(const Bands& bands, Work&& work) {
        return inBands(
            bands, work, [](int) {}, [](int) { return true; }, [](int, bool) {});
    }
    // The same, each worker first calling start(worker) (an error there
    // counts before every band's), and band k begun only once ready(k).
    // Before each look at the next band a worker calls pace(worker, ready)
    // with what ready said of it, over and over while it is not ready.
    // Band by band in order on one thread, so a band that the start of
    // worker 0 makes ready never waits.
    template <typename Work, typename Start, typename Ready, typename Pace>
    bool inBands(const Bands& bands, Work&& work, Start&& start, Ready&& ready, Pace&& pace);
};

} // namespace lumiran

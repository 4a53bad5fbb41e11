#pragma once

#include "effects/neighbourhood/neighbourhood_frame.h"
#include "effects/neighbourhood/rank_rows.h"

#include <cstdint>

namespace lumiran {

// Effects that look at a window around each pixel: the packed-colour rank
// filters, the threshold and bit filters, embossing and the glass filters.
//
// Window filters read ImageBits and write TransBits (fetch both); the
// rows and columns their window does not fit stay as fetched. FiascoFilter
// and PaturnMatrixMethod also make TransBits themselves when it is left
// unfetched (a lent source). Kakekomi, ColdSeed and ShadingLast work in
// place on ImageBits.
// A window never reaches outside the rectangle cut to the picture.
class Class_NeighborhoodOp : public NeighbourhoodFrame {
  public:
    using NeighbourhoodFrame::NeighbourhoodFrame;

    // The packed-colour median: window 0 is 3x3, 1 is 5x5. Output kind 0
    // writes it, 1 doubles the channels equal to the centre's, 2 those that
    // differ.
    void MedianFilter(std::uint8_t window, std::uint8_t outputKind, std::int16_t left,
                      std::int16_t top, std::int16_t right, std::int16_t bottom);

    // The element at `rank` of the window (0 the largest). Sort mode 0 sorts
    // packed colours with the early stop, any other sorts each channel on
    // its own; the channel kind (0..7) picks the channels that take it.
    void RankFilter(std::int16_t rank, std::uint8_t channelKind, std::int16_t left,
                    std::int16_t top, std::int16_t right, std::int16_t bottom, std::uint8_t window,
                    std::uint8_t sortMode);

    // Each channel moved by `amount` away from a statistic of its window:
    // 0 the mean, 1 the median, 2 the smallest, 3 the largest element.
    void FiascoFilter(std::uint8_t window, std::uint8_t sortMode, std::uint8_t statistic,
                      std::int16_t left, std::int16_t top, std::int16_t right, std::int16_t bottom,
                      std::int16_t amount);

    // Grey or each channel (colour 0 or 1) combined by operation 0..4 (+, -,
    // Or, And, Eqv) with the grey's distance from black or white plus the
    // value; snow takes the value less that distance instead.
    void ColdSeed(std::uint8_t colour, std::uint8_t operation, std::int16_t left, std::int16_t top,
                  std::int16_t right, std::int16_t bottom, bool snow, std::int16_t value);

    // Cells of size kind 0..3 pushed to black or white, the amount handed
    // to their neighbours as grey (operation 0) or per channel (1). Reads
    // ImageBits and writes TransBits, as the walk in place would leave it.
    void PaturnMatrixMethod(std::uint8_t sizeKind, std::uint8_t operation, std::int16_t left,
                            std::int16_t top, std::int16_t right, std::int16_t bottom,
                            std::int16_t value);

    // The packed colour times the factor, unpacked again: channels spill
    // into one another.
    void Kakekomi(double factor, std::int16_t left, std::int16_t top, std::int16_t right,
                  std::int16_t bottom);

    // The drawing colour where the quantised grey steps to the right or
    // below; the two differ only in the order of the grey's terms.
    void Moire(std::int16_t divisor, std::int16_t left, std::int16_t top, std::int16_t right,
               std::int16_t bottom);
    void BleedingFilter(std::int16_t divisor, std::int16_t left, std::int16_t top,
                        std::int16_t right, std::int16_t bottom);

    // The 3x3 rank element blended with the pixel through the weights
    // weight and 10 - weight, then tinted by the colour.
    void TransperentColor(std::int16_t left, std::int16_t top, std::int16_t right,
                          std::int16_t bottom, std::int16_t rank, std::int16_t sortMode,
                          std::int16_t weight, std::int16_t red, std::int16_t green,
                          std::int16_t blue);

    // Shading correction: the kept source over this array's background
    // estimate, per channel, times the colour.
    void ShadingLast(std::int16_t left, std::int16_t top, std::int16_t right, std::int16_t bottom,
                     std::int16_t red, std::int16_t green, std::int16_t blue);

    // Relief from the pixel (weight 1) and two samples at distance d in the
    // direction 0..7, weighted +d and -d; colour kind 0..6 changes the
    // samples, kind 0..7 finishes with the source pixel. Samples are means
    // over size x size pixels.
    void Embossing(std::uint8_t direction, std::uint8_t colourKind, std::uint8_t kind,
                   std::int16_t left, std::int16_t top, std::int16_t right, std::int16_t bottom,
                   std::int16_t d, std::int16_t offsetRed, std::int16_t offsetGreen,
                   std::int16_t offsetBlue, std::int16_t size);

    // A relief whose strength follows a texture of random grey stamps.
    void WallEmboss(std::uint8_t direction, std::uint8_t type, std::int16_t left, std::int16_t top,
                    std::int16_t right, std::int16_t bottom, std::int16_t noise,
                    std::int16_t offsetRed, std::int16_t offsetGreen, std::int16_t offsetBlue,
                    std::int16_t distance);
    void ForceFields(std::uint8_t type, std::int16_t left, std::int16_t top, std::int16_t right,
                     std::int16_t bottom, std::int16_t noise, std::int16_t distance);

    // The light-dark fold of each pixel by its grey or the grey of its
    // window (kind 0 one pixel, 1..3 windows 3x3..7x7), where that grey lies
    // within lower..upper; form 1 folds the result once more.
    void DarkLighten(std::uint8_t kind, std::uint8_t form, std::int16_t left, std::int16_t top,
                     std::int16_t right, std::int16_t bottom, std::int16_t upper,
                     std::int16_t lower);

    // Local contrast: the root of the squared differences between the
    // window's mean and some of its samples (window 0..2: 3x3..7x7).
    void Glass_Painting(std::uint8_t window, std::uint8_t kind, std::int16_t left, std::int16_t top,
                        std::int16_t right, std::int16_t bottom);

    // Gradients in four directions; kind 1 runs a second, wider pass over
    // the first one's result.
    void Glass_EdgeExtract(std::uint8_t kind, std::int16_t left, std::int16_t top,
                           std::int16_t right, std::int16_t bottom);

    // The rank element of the negative window compared with one sample
    // (filter 0 the centre, 1..8 the ring), shaped by kind 0..2.
    void Glass_Impression(std::uint8_t kind, std::uint8_t filter, std::int16_t rank,
                          std::int16_t left, std::int16_t top, std::int16_t right,
                          std::int16_t bottom);

    // The most frequent value of the window (0..2: 3x3..7x7) per channel or
    // by grey, over the shape that kind 0..7 picks.
    void CountFilter(std::uint8_t window, std::uint8_t mode, std::int16_t left, std::int16_t top,
                     std::int16_t right, std::int16_t bottom, std::uint8_t kind);

  private:
    // The rank filters' walk: the centres whose window of `reach` lies in
    // the rectangle, a row at a time in chunks of columns, each chunk with
    // the element `rank` of its windows sorted by `sort` (none for a rank
    // below 0): chunk(y, first, count, ranked). Lent its source, it makes
    // TransBits itself (OwnTransRows), each row before its chunks.
    template <typename Chunk>
    void rankedChunks(const ProcessRect& rect, int reach, neighbourhood::RankSort sort, int rank,
                      Chunk&& chunk);

    // Moire and BleedingFilter: the grey summed as the luminance rule does
    // or red first.
    void quantisedGreySteps(bool redFirst, std::int16_t divisor, const ProcessRect& rect);

    // WallEmboss and ForceFields: the stamps, then the relief they weight.
    struct WallRelief {
        std::uint8_t direction = 0;
        int distance = 1;
        int divisor = 20; // from the map's grey to the weight
        bool invertMap = false;
        bool greyFromPlace = false;
        int noise = 0;
        int offsetRed = 128;
        int offsetGreen = 128;
        int offsetBlue = 128;
    };
    void wallRelief(const WallRelief& wall, const ProcessRect& rect);
};

} // namespace lumiran

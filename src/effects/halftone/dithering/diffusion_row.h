#pragma once

#include "effects/halftone/dithering/diffusion_kernel.h"
#include "effects/halftone/dithering/level_tables.h"
#include "effects/halftone/dithering/row_relay.h"
#include "engine/pixel.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <type_traits>
#include <utility>

#if defined(__SSE4_1__)
#include <smmintrin.h>
#elif defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace lumiran::diffusion {

// round(h / 100) for h = 30 r + 59 g + 11 b, 0..25500, as one multiply:
// the product of h + 50 and 2^22 / 100 rounded up is exact at that
// range, its low 22 bits under one hundredth where h ends in 50 (there
// the dither grey rounds the double sum).
inline constexpr std::uint32_t Hundredth = 41944;
[[nodiscard]] constexpr std::uint32_t hundredths(int h) {
    return static_cast<std::uint32_t>(h + 50) * Hundredth;
}
[[nodiscard]] constexpr int greyOf(std::uint32_t hundredths) {
    return static_cast<int>(hundredths >> 22);
}
[[nodiscard]] constexpr bool endsIn50(std::uint32_t hundredths) {
    return (hundredths << 10) < (Hundredth << 10);
}

#if defined(__SSE4_1__)
// hundredths of the pixel in lane 0, its colour bytes held less 128 each:
// 30 r + 59 g + 11 b by two multiply-adds, the spare byte weighing nothing.
[[nodiscard, gnu::always_inline]] inline std::uint32_t heldHundredths(__m128i held) {
    const __m128i pairs = _mm_maddubs_epi16(_mm_set1_epi32(0x1E3B0B), held);
    return hundredths(_mm_cvtsi128_si32(_mm_madd_epi16(pairs, _mm_set1_epi16(1))) + 100 * 128);
}
// Its dither grey where the sum ends in 50.
[[nodiscard]] inline int heldTiedGrey(__m128i held) {
    const auto p =
        static_cast<Pixel>(_mm_cvtsi128_si32(_mm_xor_si128(held, _mm_set1_epi32(0x808080))));
    return ditherGrey(redOf(p), greenOf(p), blueOf(p));
}
#endif

// Entry 0's new colour and the error each channel hands on.
struct Quantised {
    int grey = 0; // the grey quantised, where entry 0 was quantised by its grey
    int red = 0;
    int green = 0;
    int blue = 0;
    int errorRed = 0;
    int errorGreen = 0;
    int errorBlue = 0;
};

// The part of the picture a diffusion works in; positions are clamped
// into it, right and bottom exclusive.
struct Bounds {
    int left = 0;
    int top = 0;
    int right = 0;
    int bottom = 0;
};

// Adds a shift (-255..255) to each colour byte, each limited to 0..255,
// and keeps the spare byte. The bytes are spread into 16-bit lanes and
// biased by 256, so a lane below 256 went under 0 and one from 512 up
// went over 255.
[[nodiscard]] inline Pixel shifted(Pixel p, int red, int green, int blue) {
    constexpr std::uint64_t Lanes = 0x0000'0001'0001'0001ull;
    std::uint64_t v = (p & 0xFFu) | (static_cast<std::uint64_t>(p & 0xFF00u) << 8) |
                      (static_cast<std::uint64_t>(p & 0xFF0000u) << 16);
    v += static_cast<std::uint64_t>(256 + blue) | static_cast<std::uint64_t>(256 + green) << 16 |
         static_cast<std::uint64_t>(256 + red) << 32;
    const std::uint64_t over = (v >> 9) & Lanes;
    const std::uint64_t under = ~((v >> 8) | (v >> 9)) & Lanes;
    v = ((v & Lanes * 0xFF) | over * 0xFF) & ~(under * 0xFF);
    return (p & 0xFF000000u) | static_cast<Pixel>(v & 0xFFu) |
           static_cast<Pixel>((v >> 8) & 0xFF00u) | static_cast<Pixel>((v >> 16) & 0xFF0000u);
}

// The same for one shift s laid on all three colour bytes, given as the
// bytes to add (s above 0) and to take away (s below 0): saturating byte
// arithmetic clamps each channel as the sum would be.
[[nodiscard, gnu::always_inline]] inline Pixel shiftedBy(Pixel p, Pixel add, Pixel take) {
#if defined(__SSE2__)
    __m128i v = _mm_cvtsi32_si128(static_cast<int>(p));
    v = _mm_subs_epu8(_mm_adds_epu8(v, _mm_cvtsi32_si128(static_cast<int>(add))),
                      _mm_cvtsi32_si128(static_cast<int>(take)));
    return static_cast<Pixel>(_mm_cvtsi128_si32(v));
#else
    const int s = static_cast<int>(add & 0xFFu) - static_cast<int>(take & 0xFFu);
    return shifted(p, s, s, s);
#endif
}

// A lower row's pixel while a row's shares go on it. With SSE2 its colour
// bytes are held less 128 in a vector register, so that one signed
// saturating addition of a share (-128..127 in each colour byte, 0 in the
// spare byte) limits each channel to 0..255 as the sum would be.
#if defined(__SSE2__)
struct Held {
    __m128i bytes;
};
[[nodiscard, gnu::always_inline]] inline Held hold(Pixel p) {
    return {_mm_xor_si128(_mm_cvtsi32_si128(static_cast<int>(p)), _mm_cvtsi32_si128(0x808080))};
}
[[nodiscard, gnu::always_inline]] inline Pixel release(Held h) {
    return static_cast<Pixel>(
        _mm_cvtsi128_si32(_mm_xor_si128(h.bytes, _mm_cvtsi32_si128(0x808080))));
}
[[nodiscard, gnu::always_inline]] inline Held sharedOn(Held h, Pixel shareBytes) {
    return {_mm_adds_epi8(h.bytes, _mm_cvtsi32_si128(static_cast<int>(shareBytes)))};
}
#else
using Held = Pixel;
[[nodiscard]] inline Held hold(Pixel p) {
    return p;
}
[[nodiscard]] inline Pixel release(Held h) {
    return h;
}
[[nodiscard]] inline Held sharedOn(Held h, Pixel shareBytes) {
    const int s = static_cast<std::int8_t>(shareBytes & 0xFFu);
    return shifted(h, s, s, s);
}
#endif

// A tie rounded to even: a byte that is odd after the share's floor goes
// up by one (tie holds one in each colour byte where the share was a
// half, else nothing), limited to 255. A share of a half always moves a
// channel to an even value or to a limit, and adding floor first then
// rounding up from odd gives exactly that, the limits included.
[[nodiscard, gnu::always_inline]] inline Pixel tiedBy(Pixel p, Pixel tie) {
#if defined(__SSE2__)
    const __m128i v = _mm_cvtsi32_si128(static_cast<int>(p));
    return static_cast<Pixel>(_mm_cvtsi128_si32(
        _mm_adds_epu8(v, _mm_and_si128(v, _mm_cvtsi32_si128(static_cast<int>(tie))))));
#else
    const Pixel up = p & tie;
    return shifted(p, (up >> 16) & 1, (up >> 8) & 1, up & 1);
#endif
}

// The same for a held pixel: the bias of 128 keeps each byte's parity.
[[nodiscard, gnu::always_inline]] inline Held tiedOn(Held h, Pixel tie) {
#if defined(__SSE2__)
    return {
        _mm_adds_epi8(h.bytes, _mm_and_si128(h.bytes, _mm_cvtsi32_si128(static_cast<int>(tie))))};
#else
    return tiedBy(h, tie);
#endif
}

// One share laid on a neighbour: each channel round(error * weight +
// old), limited to 0..255. With OneError the three errors are equal.
template <bool OneError>
[[nodiscard, gnu::always_inline]] inline Pixel spreadInto(Pixel old, const DiffusionKernel& kernel,
                                                          std::size_t tap, const Quantised& q) {
    constexpr int No = DiffusionKernel::NoShift;
    if constexpr (OneError) {
        const int s = kernel.shift(tap, q.errorRed);
        if (s != No) return shifted(old, s, s, s);
    } else {
        const int sr = kernel.shift(tap, q.errorRed);
        const int sg = kernel.shift(tap, q.errorGreen);
        const int sb = kernel.shift(tap, q.errorBlue);
        if (sr != No && sg != No && sb != No) return shifted(old, sr, sg, sb);
    }
    return withColour(old, toChannel(kernel.exact(tap, q.errorRed, redOf(old))),
                      toChannel(kernel.exact(tap, q.errorGreen, greenOf(old))),
                      toChannel(kernel.exact(tap, q.errorBlue, blueOf(old))));
}

// Entry 0 as the pixel's new value.
[[nodiscard]] inline Pixel settled(Pixel old, const Quantised& q) {
    return withColour(old, toChannel(q.red), toChannel(q.green), toChannel(q.blue));
}

// What the row loop needs to know of a kernel when it is compiled: the
// shares on the row itself (one and two to the right, -1 where there is
// none) and those on lower rows.
template <int Filter>
struct KernelShape {
    static constexpr KernelSpec Kernel = DiffusionKernels[Filter];

    static constexpr int tapAt(int dx) {
        for (std::size_t t = 0; t < Kernel.taps.size(); ++t) {
            if (Kernel.taps[t].dy == 0 && Kernel.taps[t].dx == dx) return static_cast<int>(t);
        }
        return -1;
    }
    static constexpr int Next = tapAt(1);
    static constexpr int SecondNext = tapAt(2);

    static constexpr std::size_t LowerCount = [] {
        std::size_t n = 0;
        for (const KernelTap& t : Kernel.taps)
            n += t.dy > 0 ? 1 : 0;
        return n;
    }();
    // The largest of(tap) over the taps kept, and 0.
    template <typename Keep, typename Of>
    static constexpr int largest(Keep keep, Of of) {
        int most = 0;
        for (const KernelTap& t : Kernel.taps)
            most = keep(t) ? std::max<int>(most, of(t)) : most;
        return most;
    }
    static constexpr bool isLower(const KernelTap& t) { return t.dy > 0; }
    static constexpr bool isAny(const KernelTap&) { return true; }
    static constexpr int dxOf(const KernelTap& t) { return t.dx; }
    static constexpr int leftOf(const KernelTap& t) { return -t.dx; }
    static constexpr int dyOf(const KernelTap& t) { return t.dy; }

    // The columns the lower shares reach, from the pixel's own.
    static constexpr int LowerLeft = -largest(isLower, leftOf);
    static constexpr int LowerRight = largest(isLower, dxOf);
    static constexpr int LowerRows = largest(isAny, dyOf);
    // The columns any share reaches, left and right of the pixel's own.
    static constexpr int ReachLeft = largest(isAny, leftOf);
    static constexpr int ReachRight = largest(isAny, dxOf);
    static constexpr std::array<std::size_t, LowerCount> Lower = [] {
        std::array<std::size_t, LowerCount> lower{};
        std::size_t n = 0;
        for (std::size_t t = 0; t < Kernel.taps.size(); ++t) {
            if (Kernel.taps[t].dy > 0) lower[n++] = t;
        }
        return lower;
    }();
};

// Calls body with the filter as a compile-time constant; filters outside
// 0..6 call nothing.
template <typename Body>
void withFilter(int filter, Body&& body) {
    auto call = [&]<int... F>(std::integer_sequence<int, F...>) {
        ((filter == F ? body(std::integral_constant<int, F>{}) : void()), ...);
    };
    call(std::make_integer_sequence<int, static_cast<int>(DiffusionKernels.size())>{});
}

// Rows diffused in place, left to right, exactly as one pixel after the
// other reading every entry, working out the shares from those values and
// writing the entries from the last back to entry 0.
//
// Several rows run at once as a wavefront, each Lag columns behind the
// row above. A pixel in flight touches only the columns within the
// kernel's reach of its own (the pixels its shares are held in included),
// and Lag lies past both reaches together, so no two rows in flight touch
// one pixel in a step, and each pixel takes its shares row after row and
// within a row in scan order, as one row after the other gives them. The
// rows' chains of errors do not depend on one another, so the processor
// overlaps them.
//
// quantise gives entry 0's colour and errors: from the grey with OneError
// (the three errors equal), from the channels otherwise. It is called in
// the wavefront's order, so it must not draw from the generator. byGrey,
// where not null, is quantise called with the grey alone, whatever the
// errors: the picture is then quantised by its grey.
template <bool OneError, int Filter, typename Quantise>
class RowDiffusion {
    using Shape = KernelShape<Filter>;
    static constexpr bool GreyPath = std::is_invocable_r_v<Quantised, Quantise&, int>;
    static constexpr int Next = Shape::Next;
    static constexpr int Second = Shape::SecondNext;
    static constexpr int Left = Shape::LowerLeft;
    static constexpr int Width = Shape::LowerRight - Left + 1;
    static constexpr int Rows = Shape::LowerRows;
    static constexpr std::size_t Taps = Shape::Kernel.taps.size();
    // The grey before a stretch's first pixel: its shares are nothing.
    static constexpr int NoGrey = 256;
    // Weights of a power-of-two divisor are exact in binary, so a share
    // that is a half is exactly one and rounds to even by old's parity.
    static constexpr bool Dyadic = (Shape::Kernel.divisor & (Shape::Kernel.divisor - 1)) == 0;
    // One lower row of at most four columns and one share on the row
    // (Floyd & Steinberg, Shiau & Fan): the lower row's held pixels fit one
    // vector, and with a lane to spare that lane carries the share on the
    // row, else a vector of its own does.
#if defined(__SSE4_1__)
    static constexpr bool InLanes = Rows == 1 && Width <= 4 && Second < 0 && Next >= 0;
    static constexpr bool OwnApart = Width == 4;
#else
    static constexpr bool InLanes = false;
    static constexpr bool OwnApart = false;
#endif

  public:
    static constexpr int BandRows = 4;
    static constexpr int Lag = Shape::ReachLeft + Shape::ReachRight + 1;

    // With byGrey the shares are looked up by the grey that made them.
    RowDiffusion(Pixel* picture, int width, const Bounds& bounds, const DiffusionKernel& kernel,
                 Quantise& quantise, Quantise* byGrey)
        : picture_(picture), width_(width), bounds_(bounds), kernel_(kernel), quantise_(quantise),
          byGrey_(byGrey), fastFrom_(bounds.left + Shape::ReachLeft),
          fastTo_(bounds.right - 1 - Shape::ReachRight), bands_(countBands()) {
        if constexpr (GreyPath) {
            if (byGrey_ == nullptr) return;
            for (int grey = 0; grey < 256; ++grey) {
                const Quantised q = (*byGrey_)(grey);
                const auto g = static_cast<std::size_t>(grey);
                settledGrey_[g] =
                    withColour(0, toChannel(q.red), toChannel(q.green), toChannel(q.blue));
                bool carried = true;
                for (std::size_t t = 0; t < Taps; ++t) {
                    const std::array<Share, 3> share{
                        shareOf(t, q.errorRed), shareOf(t, q.errorGreen), shareOf(t, q.errorBlue)};
                    bool known = true, small = true;
                    for (const Share& c : share) {
                        known = known && c.known && c.floor >= -255 && c.floor <= 255;
                        small = small && c.floor >= INT8_MIN && c.floor <= INT8_MAX;
                    }
                    // A share the bytes cannot carry goes the exact way.
                    if (Shape::Kernel.taps[t].dy == 0) {
                        ownExact_[g] = ownExact_[g] || !known;
                    } else {
                        carried = carried && known && small;
                    }
                    if (!known) continue;
                    // Red, green, blue into their colour bytes.
                    const auto bytes = [&share](auto byteOf) {
                        return static_cast<Pixel>(byteOf(share[0])) << 16 |
                               static_cast<Pixel>(byteOf(share[1])) << 8 |
                               static_cast<Pixel>(byteOf(share[2]));
                    };
                    add_[t][g] = bytes([](const Share& c) { return std::max(c.floor, 0); });
                    take_[t][g] = bytes([](const Share& c) { return std::max(-c.floor, 0); });
                    tie_[t][g] = bytes([](const Share& c) { return c.tie ? 1 : 0; });
                    shareBytes_[t][g] =
                        bytes([](const Share& c) { return static_cast<std::uint8_t>(c.floor); });
                }
                byShifts_[g] = carried;
                if constexpr (InLanes) laneRecord(g, carried && !ownExact_[g]);
            }
        }
    }

    // One row alone.
    void run(int y) {
        (void)runRow(y, NoGate{});
    }

    // The rows from y on: a band of BandRows where no share of theirs is
    // clamped onto a lower row, else row y alone. Gives the rows done.
    int runFrom(int y) {
        if (bandAt(y)) {
            withCursor([&]<typename Cursor>() { (void)runRows<Cursor, BandRows>(y, NoGate{}); });
            return BandRows;
        }
        run(y);
        return 1;
    }

    // The rows as groups from the top, as runFrom takes them: bands while
    // they fit, then the rows one at a time.
    [[nodiscard]] int groups() const {
        return bands_ + (bounds_.bottom - bandsEnd());
    }
    [[nodiscard]] int groupTop(int g) const {
        return g < bands_ ? bounds_.top + g * BandRows : bandsEnd() + (g - bands_);
    }
    [[nodiscard]] int groupRows(int g) const {
        return g < bands_ ? BandRows : 1;
    }

    // Group g trailing the group above through the gate. False where it
    // gave up, the run having stopped.
    [[nodiscard]] bool runGroup(int g, const RowGate& gate) {
        const int y = groupTop(g);
        if (g >= bands_) return runRow(y, gate);
        bool done = false;
        withCursor([&]<typename Cursor>() { done = runRows<Cursor, BandRows>(y, gate); });
        return done;
    }

  private:
    // A row's state along its stretch away from the edges: the shares on
    // the row itself are held back until the pixel they land on is
    // reached, so the row's chain of errors runs through registers rather
    // than memory, and they are laid on in the order they were made.
    struct ExactCursor {
        Pixel* row = nullptr;
        Quantised before1{}; // the pixel before, none (zero errors) at first
        Quantised before2{};
    };
    // The same for a grey quantised by its grey alone, with everything a
    // grey leads to looked up in tables made once. The pixels of the lower
    // rows that the row's shares reach are held in a window while they
    // take them, each loaded before its first share and stored after its
    // last, so the shares follow one another in registers, in scan order.
    struct GreyCursor {
        Pixel* row = nullptr;
        std::array<Pixel*, Rows> below{};
        std::array<std::array<Held, Width>, Rows> window{};
        int grey1 = NoGrey;
        int grey2 = NoGrey;
    };
#if defined(__SSE4_1__)
    // The grey path in vector lanes, where InLanes. The lower row's pixels
    // from x + Left to x + LowerRight are held in the top lanes of one
    // vector, their colour bytes less 128, and one grey's shares on them
    // are one signed saturating addition, its ties one more. Lane 0 of a
    // grey's shares (or of its own shares, OwnApart) carries its share on
    // the row, laid on the next pixel the same way; that pixel's grey is
    // then worked out in the vector unit. The chain of greys runs through a
    // byte offset into the records.
    struct LaneCursor {
        Pixel* row = nullptr;
        Pixel* below = nullptr;
        __m128i window{};
        std::size_t before = 0; // the record of the pixel before: NoGrey's at first
    };
    // The share on the row and its tie where it has a vector of its own.
    struct OwnShare {
        __m128i share{};
        __m128i tie{};
    };
    struct NoOwnShare {};
    // What a grey leads to, one record a grey (and NoGrey's: nothing).
    struct alignas(64) LaneRecord {
        __m128i shares{}; // signed bytes: lane 0 on the row, the others below
        __m128i ties{};   // a one in each colour byte whose share is a half
        std::conditional_t<OwnApart, OwnShare, NoOwnShare> own{};
        Pixel settled = 0;
        std::uint32_t byLanes = 0; // every share fits a signed byte and is known
    };
    static constexpr int FirstLane = 4 - Width; // the window's lane of x + Left
    static constexpr int RecordShift = OwnApart ? 7 : 6;
    static_assert(sizeof(LaneRecord) == std::size_t{1} << RecordShift);
#else
    struct LaneCursor {};
    struct LaneRecord {};
#endif

    template <typename Body>
    void withCursor(Body&& body) {
        if constexpr (GreyPath) {
            if (byGrey_ != nullptr) {
                if constexpr (InLanes) {
                    body.template operator()<LaneCursor>();
                } else {
                    body.template operator()<GreyCursor>();
                }
                return;
            }
        }
        body.template operator()<ExactCursor>();
    }

    [[nodiscard]] Pixel* rowAt(int y) const {
        return picture_ + static_cast<std::ptrdiff_t>(y) * width_;
    }

    [[nodiscard]] bool bandAt(int y) const {
        return y + BandRows - 1 + Rows <= bounds_.bottom - 1 && fastFrom_ <= fastTo_;
    }
    [[nodiscard]] int bandsEnd() const {
        return bounds_.top + bands_ * BandRows;
    }
    [[nodiscard]] int countBands() const {
        int n = 0;
        while (bandAt(bounds_.top + n * BandRows))
            ++n;
        return n;
    }

    // Row y alone: by the clamped step where the kernel reaches below the
    // bounds or no column is free of clamping.
    template <typename Gate>
    bool runRow(int y, const Gate& gate) {
        if (y + Rows > bounds_.bottom - 1 || fastFrom_ > fastTo_) {
            Pixel* row = rowAt(y);
            for (int x = bounds_.left; x < bounds_.right;) {
                const int end = std::min(bounds_.right, x + Gate::Block);
                if (!gate.wait(std::min(end + Lag, bounds_.right))) return false;
                for (; x < end; ++x)
                    clampedStep(row, x, y);
                gate.publish(end);
            }
            return true;
        }
        bool done = false;
        withCursor([&]<typename Cursor>() { done = runRows<Cursor, 1>(y, gate); });
        return done;
    }

    // R rows from y0, row r at column left + t - r Lag in step t. Where
    // every row is inside its stretch the steps run without a test. The
    // steps go in blocks; the first row of a block's last step stands Lag
    // columns behind where the row above must have come, as a row below
    // in the band stands behind the one above it.
    template <typename Cursor, int R, typename Gate>
    [[gnu::flatten]] bool runRows(int y0, const Gate& gate) {
        const int left = bounds_.left;
        const int steps = bounds_.right - left + (R - 1) * Lag;
        std::array<Cursor, R> cursors{};
        for (int r = 0; r < R; ++r)
            cursors[static_cast<std::size_t>(r)].row = rowAt(y0 + r);
        const int steadyFrom = fastFrom_ - left + (R - 1) * Lag + 1;
        const int steadyTo = fastTo_ - left;
        for (int t = 0; t < steps;) {
            const bool inSteady = t >= steadyFrom && t < steadyTo;
            const int stretchEnd = t < steadyFrom ? steadyFrom : inSteady ? steadyTo : steps;
            const int end = std::min({steps, t + Gate::Block, stretchEnd});
            if (!gate.wait(std::min(left + end + Lag, bounds_.right))) return false;
            if (inSteady) {
                steady<Cursor, R>(cursors, left, t, end);
            } else {
                for (int s = t; s < end; ++s) {
                    for (int r = 0; r < R; ++r)
                        stepAnywhere(cursors[static_cast<std::size_t>(r)], left + s - r * Lag,
                                     y0 + r);
                }
            }
            gate.publish(left + end - (R - 1) * Lag);
            t = end;
        }
        return true;
    }

    template <typename Cursor, int R>
    [[gnu::always_inline]] void steady(std::array<Cursor, R>& cursors, int left, int from, int to) {
        auto local = cursors;
        for (int t = from; t < to; ++t) {
            [&]<std::size_t... I>(std::index_sequence<I...>) {
                (step(local[I], left + t - static_cast<int>(I) * Lag), ...);
            }
            (std::make_index_sequence<R>{});
        }
        cursors = local;
    }

    template <typename Cursor>
    void stepAnywhere(Cursor& c, int x, int y) {
        if (x < bounds_.left || x >= bounds_.right) return;
        if (x < fastFrom_ || x > fastTo_) {
            clampedStep(c.row, x, y);
            return;
        }
        if (x == fastFrom_) begin(c);
        step(c, x);
        if (x == fastTo_) finish(c, x);
    }

    Quantised quantiseChannels(Pixel p) {
        if constexpr (OneError) {
            return quantise_(ditherGrey(redOf(p), greenOf(p), blueOf(p)));
        } else {
            return quantise_(redOf(p), greenOf(p), blueOf(p));
        }
    }

    // Near the bounds: positions clamped into them, so shares may land on
    // one pixel. Of two shares on one pixel the earlier in list order
    // stands, and a share clamped onto the pixel itself vanishes under
    // entry 0.
    void clampedStep(Pixel* row, int x, int y) {
        const auto& taps = kernel_.taps();
        Pixel* self = row + x;
        const Quantised q = quantiseChannels(*self);
        std::array<Pixel*, 16> at{};
        std::array<Pixel, 16> value{};
        for (std::size_t t = 0; t < taps.size(); ++t) {
            const int nx = std::clamp(x + taps[t].dx, bounds_.left, bounds_.right - 1);
            const int ny = std::clamp(y + taps[t].dy, bounds_.top, bounds_.bottom - 1);
            at[t] = picture_ + static_cast<std::ptrdiff_t>(ny) * width_ + nx;
            value[t] = *at[t];
        }
        for (std::size_t t = 0; t < taps.size(); ++t)
            value[t] = spreadInto<OneError>(value[t], kernel_, t, q);
        for (std::size_t t = taps.size(); t-- > 0;)
            *at[t] = value[t];
        *self = settled(*self, q);
    }

    // Where no position is clamped every share lands on a pixel of its
    // own, so the order of the writes does not matter.
    void begin(ExactCursor& c) {
        c.before1 = Quantised{};
        c.before2 = Quantised{};
    }

    [[gnu::always_inline]] void step(ExactCursor& c, int x) {
        Pixel* self = c.row + x;
        const Pixel stored = *self;
        const Quantised q = quantiseHeld(stored, c.before2, c.before1);
        *self = settled(stored, q);
        [&]<std::size_t... I>(std::index_sequence<I...>) {
            (spreadBelow(self, Shape::Lower[I], q), ...);
        }
        (std::make_index_sequence<Shape::LowerCount>{});
        c.before2 = c.before1;
        c.before1 = q;
    }

    // The held shares of the last pixels go on the pixels after the stretch.
    void finish(ExactCursor& c, int to) {
        Pixel* row = c.row;
        if constexpr (Second >= 0)
            row[to + 1] = spreadInto<OneError>(row[to + 1], kernel_, Second, c.before2);
        if constexpr (Next >= 0)
            row[to + 1] = spreadInto<OneError>(row[to + 1], kernel_, Next, c.before1);
        if constexpr (Second >= 0)
            row[to + 2] = spreadInto<OneError>(row[to + 2], kernel_, Second, c.before1);
    }

    void begin(GreyCursor& c) {
        for (int r = 0; r < Rows; ++r) {
            c.below[r] = c.row + static_cast<std::ptrdiff_t>(r + 1) * width_;
            for (int i = 0; i + 1 < Width; ++i)
                c.window[r][i] = hold(c.below[r][fastFrom_ + Left + i]);
        }
        c.grey1 = NoGrey;
        c.grey2 = NoGrey;
    }

    [[gnu::always_inline]] void step(GreyCursor& c, int x) {
        for (int r = 0; r < Rows; ++r)
            c.window[r][Width - 1] = hold(c.below[r][x + Left + Width - 1]);
        const Pixel stored = c.row[x];
        const int grey = greyHeld(stored, c.grey2, c.grey1);
        const auto g = static_cast<std::size_t>(grey);
        c.row[x] = (stored & 0xFF000000u) | settledGrey_[g];
        if (byShifts_[g]) {
            [&]<std::size_t... I>(std::index_sequence<I...>) {
                ((shareInWindow<Shape::Lower[I]>(c.window, shareBytes_[Shape::Lower[I]][g],
                                                 tie_[Shape::Lower[I]][g])),
                 ...);
            }
            (std::make_index_sequence<Shape::LowerCount>{});
        } else {
            const Quantised q = (*byGrey_)(grey);
            [&]<std::size_t... I>(std::index_sequence<I...>) {
                ((exactInWindow<Shape::Lower[I]>(c.window, q)), ...);
            }
            (std::make_index_sequence<Shape::LowerCount>{});
        }
        for (int r = 0; r < Rows; ++r) {
            c.below[r][x + Left] = release(c.window[r][0]);
            for (int i = 0; i + 1 < Width; ++i)
                c.window[r][i] = c.window[r][i + 1];
        }
        c.grey2 = c.grey1;
        c.grey1 = grey;
    }

    void finish(GreyCursor& c, int to) {
        for (int r = 0; r < Rows; ++r) {
            for (int i = 0; i + 1 < Width; ++i)
                c.below[r][to + 1 + Left + i] = release(c.window[r][i]);
        }
        Pixel* row = c.row;
        if constexpr (Second >= 0) {
            if (c.grey2 != NoGrey)
                row[to + 1] = spreadInto<false>(row[to + 1], kernel_, Second, (*byGrey_)(c.grey2));
        }
        if constexpr (Next >= 0)
            row[to + 1] = spreadInto<false>(row[to + 1], kernel_, Next, (*byGrey_)(c.grey1));
        if constexpr (Second >= 0)
            row[to + 2] = spreadInto<false>(row[to + 2], kernel_, Second, (*byGrey_)(c.grey1));
    }

#if defined(__SSE4_1__)
    static __m128i laneBias() {
        return _mm_set1_epi32(0x808080);
    }

    void laneRecord(std::size_t g, bool byLanes) {
        alignas(16) std::array<Pixel, 4> shares{}, ties{}, ownShares{}, ownTies{};
        for (std::size_t t = 0; t < Taps; ++t) {
            const KernelTap& tap = Shape::Kernel.taps[t];
            const auto lane = static_cast<std::size_t>(tap.dy == 0 ? 0 : FirstLane + tap.dx - Left);
            const bool apart = OwnApart && tap.dy == 0;
            (apart ? ownShares : shares)[lane] = shareBytes_[t][g];
            (apart ? ownTies : ties)[lane] = Dyadic ? tie_[t][g] : 0;
            // The share on the row must fit a signed byte too.
            if (tap.dy == 0) {
                for (int shift = 0; shift < 24; shift += 8) {
                    const int floor = static_cast<std::int8_t>(shareBytes_[t][g] >> shift);
                    const int wanted = static_cast<int>((add_[t][g] >> shift) & 0xFFu) -
                                       static_cast<int>((take_[t][g] >> shift) & 0xFFu);
                    byLanes = byLanes && floor == wanted;
                }
            }
        }
        LaneRecord& r = laneRecords_[g];
        r.shares = _mm_load_si128(reinterpret_cast<const __m128i*>(shares.data()));
        r.ties = _mm_load_si128(reinterpret_cast<const __m128i*>(ties.data()));
        if constexpr (OwnApart) {
            r.own.share = _mm_load_si128(reinterpret_cast<const __m128i*>(ownShares.data()));
            r.own.tie = _mm_load_si128(reinterpret_cast<const __m128i*>(ownTies.data()));
        }
        r.settled = settledGrey_[g];
        r.byLanes = byLanes ? 1 : 0;
    }

    [[nodiscard, gnu::always_inline]] const LaneRecord& recordAt(std::size_t offset) const {
        return *reinterpret_cast<const LaneRecord*>(
            reinterpret_cast<const char*>(laneRecords_.data()) + offset);
    }

    void begin(LaneCursor& c) {
        c.below = c.row + width_;
        alignas(16) std::array<Pixel, 4> lanes{};
        for (int i = 0; i + 1 < Width; ++i)
            lanes[static_cast<std::size_t>(FirstLane + 1 + i)] = c.below[fastFrom_ + Left + i];
        c.window = _mm_xor_si128(_mm_load_si128(reinterpret_cast<const __m128i*>(lanes.data())),
                                 laneBias());
        c.before = NoGrey * sizeof(LaneRecord);
    }

    [[gnu::always_inline]] void step(LaneCursor& c, int x) {
        const __m128i bias = laneBias();
        // The lower row's next column comes in at the top lane.
        const __m128i entering = _mm_xor_si128(
            _mm_cvtsi32_si128(static_cast<int>(c.below[x + Shape::LowerRight])), bias);
        c.window = _mm_alignr_epi8(entering, c.window, 4);
        // Entry 0 after the share on the row, and its grey.
        const Pixel stored = c.row[x];
        const LaneRecord& before = recordAt(c.before);
        __m128i own = _mm_xor_si128(_mm_cvtsi32_si128(static_cast<int>(stored)), bias);
        if constexpr (OwnApart) {
            own = _mm_adds_epi8(own, before.own.share);
            if constexpr (Dyadic) own = _mm_adds_epi8(own, _mm_and_si128(own, before.own.tie));
        } else {
            own = _mm_adds_epi8(own, before.shares);
            if constexpr (Dyadic) own = _mm_adds_epi8(own, _mm_and_si128(own, before.ties));
        }
        const std::uint32_t product = heldHundredths(own);
        // The grey times the record's size.
        std::size_t offset = (product >> (22 - RecordShift)) & ~(sizeof(LaneRecord) - 1);
        if (endsIn50(product)) [[unlikely]]
            offset = static_cast<std::size_t>(heldTiedGrey(own)) * sizeof(LaneRecord);
        const LaneRecord& now = recordAt(offset);
        c.row[x] = (stored & 0xFF000000u) | now.settled;
        if (now.byLanes != 0) [[likely]] {
            c.window = _mm_adds_epi8(c.window, now.shares);
            if constexpr (Dyadic)
                c.window = _mm_adds_epi8(c.window, _mm_and_si128(c.window, now.ties));
            c.before = offset;
        } else {
            c.window = laneExact(c.row, c.window, x, static_cast<int>(offset / sizeof(LaneRecord)));
            c.before = NoGrey * sizeof(LaneRecord);
        }
        c.below[x + Left] =
            static_cast<Pixel>(_mm_extract_epi32(_mm_xor_si128(c.window, bias), FirstLane));
    }

    // A grey whose shares the bytes cannot carry: each share worked out
    // as it stands, in list order, the one on the row laid on the next
    // pixel at once (the pixel before it left nothing held).
    // Gives the window after the shares. The cursor stays in registers:
    // nothing of it is passed by address.
    [[gnu::noinline]] __m128i laneExact(Pixel* row, __m128i window, int x, int grey) const {
        const Quantised q = (*byGrey_)(grey);
        alignas(16) std::array<Pixel, 4> lanes{};
        _mm_store_si128(reinterpret_cast<__m128i*>(lanes.data()),
                        _mm_xor_si128(window, laneBias()));
        for (std::size_t t = 0; t < Taps; ++t) {
            const KernelTap& tap = Shape::Kernel.taps[t];
            Pixel& p = tap.dy == 0 ? row[x + tap.dx]
                                   : lanes[static_cast<std::size_t>(FirstLane + tap.dx - Left)];
            p = spreadInto<false>(p, kernel_, t, q);
        }
        return _mm_xor_si128(_mm_load_si128(reinterpret_cast<const __m128i*>(lanes.data())),
                             laneBias());
    }

    void finish(LaneCursor& c, int to) {
        alignas(16) std::array<Pixel, 4> lanes{};
        _mm_store_si128(reinterpret_cast<__m128i*>(lanes.data()),
                        _mm_xor_si128(c.window, laneBias()));
        for (int i = 0; i + 1 < Width; ++i)
            c.below[to + 1 + Left + i] = lanes[static_cast<std::size_t>(FirstLane + 1 + i)];
        const std::size_t before = c.before / sizeof(LaneRecord);
        if (before != NoGrey)
            c.row[to + 1] = spreadInto<false>(c.row[to + 1], kernel_, Next,
                                              (*byGrey_)(static_cast<int>(before)));
    }
#else
    void laneRecord(std::size_t, bool) {}
    void begin(LaneCursor&) {}
    void step(LaneCursor&, int) {}
    void finish(LaneCursor&, int) {}
#endif

    template <std::size_t Tap, typename Window>
    [[gnu::always_inline]] static void shareInWindow(Window& window, Pixel shareBytes, Pixel tie) {
        constexpr KernelTap t = Shape::Kernel.taps[Tap];
        Held& n = window[t.dy - 1][t.dx - Left];
        n = sharedOn(n, shareBytes);
        if constexpr (Dyadic) n = tiedOn(n, tie);
    }

    template <std::size_t Tap, typename Window>
    [[gnu::always_inline]] void exactInWindow(Window& window, const Quantised& q) const {
        constexpr KernelTap t = Shape::Kernel.taps[Tap];
        Held& n = window[t.dy - 1][t.dx - Left];
        n = hold(spreadInto<false>(release(n), kernel_, Tap, q));
    }

    // The grey of entry 0 after the held shares of the pixels before, given
    // by their greys: the one from two pixels before first. Laid on by
    // saturating bytes, which needs no branch on where a channel is limited.
    [[gnu::always_inline]] int greyHeld(Pixel stored, int grey2, int grey1) {
        const auto g2 = static_cast<std::size_t>(grey2), g1 = static_cast<std::size_t>(grey1);
        if (ownExact_[g2] || ownExact_[g1]) [[unlikely]] {
            Pixel p = stored;
            if constexpr (Second >= 0) p = ownShare(p, Second, grey2);
            if constexpr (Next >= 0) p = ownShare(p, Next, grey1);
            return ditherGrey(redOf(p), greenOf(p), blueOf(p));
        }
        Pixel p = stored;
        if constexpr (Second >= 0)
            p = tiedBy(shiftedBy(p, add_[Second][g2], take_[Second][g2]), tie_[Second][g2]);
        if constexpr (Next >= 0)
            p = tiedBy(shiftedBy(p, add_[Next][g1], take_[Next][g1]), tie_[Next][g1]);
        return ditherGrey(redOf(p), greenOf(p), blueOf(p));
    }

    // One share on the row laid on the exact way where it needs to be.
    Pixel ownShare(Pixel p, std::size_t tap, int grey) {
        const auto g = static_cast<std::size_t>(grey);
        if (grey == NoGrey) return p;
        if (!ownExact_[g]) return tiedBy(shiftedBy(p, add_[tap][g], take_[tap][g]), tie_[tap][g]);
        return spreadInto<false>(p, kernel_, tap, (*byGrey_)(grey));
    }

    // A share round(error * weight + old) as floor(error * weight) added to
    // old, and where the product is a half, old + floor rounded to even:
    // the tie. Known is false where the product is not exact in binary, so
    // old decides in doubles.
    struct Share {
        bool known = false;
        int floor = 0;
        bool tie = false;
    };
    Share shareOf(std::size_t tap, int error) const {
        const int shift = kernel_.shift(tap, error);
        if (shift != DiffusionKernel::NoShift) return {true, shift, false};
        const double product = error * kernel_.taps()[tap].weight;
        const double floor = std::floor(product);
        if (!Dyadic || product - floor != 0.5 || std::abs(product) > 512) return {};
        return {true, static_cast<int>(floor), true};
    }

    [[gnu::always_inline]] void spreadBelow(Pixel* self, std::size_t tap, const Quantised& q) {
        const KernelTap& t = Shape::Kernel.taps[tap];
        Pixel* n = self + static_cast<std::ptrdiff_t>(t.dy) * width_ + t.dx;
        *n = spreadInto<OneError>(*n, kernel_, tap, q);
    }

    // Entry 0 quantised after the held shares: the one from two pixels
    // before first, then the one from the pixel before.
    [[gnu::always_inline]] Quantised quantiseHeld(Pixel stored, const Quantised& before2,
                                                  const Quantised& before1) {
        if constexpr (OneError) {
            // While no channel is limited, a shift s moves 30 r + 59 g + 11 b
            // by 100 s and so the grey by exactly s.
            const int s2 = Second >= 0 ? kernel_.shift(Second, before2.errorRed) : 0;
            const int s1 = Next >= 0 ? kernel_.shift(Next, before1.errorRed) : 0;
            const int r = redOf(stored), g = greenOf(stored), b = blueOf(stored);
            const int hundredfold = 30 * r + 59 * g + 11 * b;
            const int low = std::min({r, g, b}), high = std::max({r, g, b});
            const int total = s2 + s1;
            const bool exact = s1 != DiffusionKernel::NoShift && s2 != DiffusionKernel::NoShift &&
                               hundredfold % 100 != 50 && low + std::min(s2, total) >= 0 &&
                               high + std::max(s2, total) <= 255;
            if (exact) return quantise_((hundredfold + 50) / 100 + total);
        }
        Pixel p = stored;
        if constexpr (Second >= 0) p = spreadInto<OneError>(p, kernel_, Second, before2);
        if constexpr (Next >= 0) p = spreadInto<OneError>(p, kernel_, Next, before1);
        return quantiseChannels(p);
    }

    Pixel* picture_;
    int width_;
    Bounds bounds_;
    const DiffusionKernel& kernel_;
    Quantise& quantise_;
    Quantise* byGrey_;
    int fastFrom_; // the stretch of columns where no share is clamped
    int fastTo_;
    int bands_; // the groups of BandRows from the top
    // By grey, and nothing for NoGrey: each share as the bytes to add and
    // to take away and, where it is a tie, a one in each colour byte;
    // ownExact_ where a share on the row rounds by the old value in doubles.
    std::array<std::array<Pixel, 257>, Taps> add_{};
    std::array<std::array<Pixel, 257>, Taps> take_{};
    std::array<std::array<Pixel, 257>, Taps> tie_{};
    std::array<bool, 257> ownExact_{};
    // By grey: the new colour; each share as a signed byte in the three
    // colour bytes for the held pixels of the lower rows, where byShifts_.
    std::array<Pixel, 256> settledGrey_{};
    std::array<bool, 256> byShifts_{};
    std::array<std::array<Pixel, 256>, Taps> shareBytes_{};
    // Where InLanes: by grey, and NoGrey's record of nothing.
    std::array<LaneRecord, InLanes ? 257 : 1> laneRecords_{};
};

} // namespace lumiran::diffusion

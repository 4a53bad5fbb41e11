#include "effects/halftone/dithering/class_dithering.h"
#include "effects/halftone/dithering/diffusion_row.h"

#include <exception>
#include <mutex>

namespace lumiran {
namespace {

using diffusion::Quantised;

// The error handed on keeps only its sign, zero counting as positive.
int withSign(int error, int magnitude) {
    return error >= 0 ? magnitude : wrap16(-magnitude);
}

} // namespace

template <bool OneError, typename Quantise>
void Class_Dithering::rowsOf(int kernel, const ProcessRect& rect, const diffusion::Bounds& bounds,
                             const DiffusionKernel& prepared, Quantise& quantise, bool byGreyAlone,
                             bool inScanOrder) {
    diffusion::withFilter(kernel, [&](auto filter) {
        diffusion::RowDiffusion<OneError, decltype(filter)::value, Quantise> rows(
            result().pixels().data(), result().width(), bounds, prepared, quantise,
            byGreyAlone ? &quantise : nullptr);
        if (!inScanOrder && sharesRows(bounds)) {
            rowsOnTwoThreads(rect, bounds, rows);
            return;
        }
        // A band of rows runs at its first row; progress and cancel still
        // come once a row.
        int doneUntil = bounds.top;
        forEachRow<RowOrder::TopToBottom>(rect, [&](int y, int, int) {
            if (y < doneUntil) return;
            if (inScanOrder) {
                rows.run(y);
                doneUntil = y + 1;
            } else {
                doneUntil = y + rows.runFrom(y);
            }
        });
    });
}

bool Class_Dithering::sharesRows(const diffusion::Bounds& bounds) {
    // Below these a second thread costs more than it gains; a band of one
    // pixel (the tests' setting) shares every picture out.
    constexpr long long BandsForTwo = 4;
    constexpr int NarrowestShared = 256;
    const RowThreading& threading = context().threading;
    const int width = bounds.right - bounds.left;
    const int height = bounds.bottom - bounds.top;
    return threading.threads >= 2 && height >= 2 && width >= 1 &&
           width >= std::min(threading.bandPixels, NarrowestShared) &&
           static_cast<long long>(width) * height >= BandsForTwo * threading.bandPixels;
}

// The groups of rows in a wavefront on two threads, each group trailing
// the one above by the kernel's lag. Every row of the rectangle still
// counts for progress, the rows outside the picture before and after the
// others as on one thread; a cancel stops both threads at the end of
// their groups, a thread waiting on a stopped group gives up at once. Where
// the threads keep waiting on each other the calling thread goes on alone.
template <typename Rows>
void Class_Dithering::rowsOnTwoThreads(const ProcessRect& rect, const diffusion::Bounds& bounds,
                                       Rows& rows) {
    for (int y = rect.top; y < bounds.top; ++y) {
        if (!finishRow()) return;
    }
    diffusion::GroupRelay relay(rows.groups());
    std::mutex rowEnd;
    std::exception_ptr failure;
    context().workers().run(2, [&](int worker) {
        try {
            for (int g = relay.claim(worker); g >= 0; g = relay.claim(worker)) {
                if (!rows.runGroup(g, relay.gate(g))) return;
                const std::scoped_lock lock(rowEnd);
                for (int i = 0; i < rows.groupRows(g); ++i) {
                    if (!finishRow()) {
                        relay.stop();
                        return;
                    }
                }
            }
        } catch (...) {
            const std::scoped_lock lock(rowEnd);
            if (!failure) failure = std::current_exception();
            relay.stop();
        }
    });
    if (failure) std::rethrow_exception(failure);
    if (relay.stopped()) return;
    for (int y = bounds.bottom; y < loopEnd(rect.bottom); ++y) {
        if (!finishRow()) return;
    }
}

void Class_Dithering::diffuse(int kernel, const ProcessRect& rect, bool mono, std::int16_t level,
                              ErrorSize size, std::int16_t fixedError) {
    BuildLevelTable(level, mono ? 0 : 1);
    SetProgressRange(rect.top, rect.bottom);
    if (!resultReady()) return;
    const Span span = spanOf(rect);
    const DiffusionKernel prepared(DiffusionKernels[static_cast<std::size_t>(kernel)],
                                   result().width());
    const diffusion::Bounds bounds{span.firstColumn, span.firstRow, span.endColumn, span.endRow};
    RandomGenerator& random = context().random;
    const double randomScale = 255.0 / level;
    auto randomSize = [&] { return roundTo<std::int16_t>(randomScale * random.next() + 1); };
    auto resize = [&](int error) {
        switch (size) {
        case ErrorSize::Random:
            return withSign(error, randomSize());
        case ErrorSize::Fixed:
            return withSign(error, fixedError);
        case ErrorSize::Exact:
            break;
        }
        return error;
    };

    // Each row takes the shares of the rows above it. The random sizes come
    // from the one generator in scan order, so those rows run one after the
    // other; the others in a wavefront.
    const bool inScanOrder = size == ErrorSize::Random;
    if (mono) {
        auto quantise = [&](int grey) {
            const int v = MonoLevelTable[static_cast<std::size_t>(grey)];
            const int e = resize(grey - v);
            return Quantised{grey, v, v, v, e, e, e};
        };
        rowsOf<true>(kernel, rect, bounds, prepared, quantise, !inScanOrder, inScanOrder);
    } else {
        auto quantise = [&](int r, int g, int b) {
            Quantised q{0, LevelTableR[static_cast<std::size_t>(r)],
                        LevelTableG[static_cast<std::size_t>(g)],
                        LevelTableB[static_cast<std::size_t>(b)]};
            q.errorRed = resize(r - q.red);
            q.errorGreen = resize(g - q.green);
            q.errorBlue = resize(b - q.blue);
            return q;
        };
        rowsOf<false>(kernel, rect, bounds, prepared, quantise, false, inScanOrder);
    }
}

void Class_Dithering::diffuseColorPaint(int kernel, const ProcessRect& rect) {
    SetProgressRange(rect.top, rect.bottom);
    if (!resultReady()) return;
    const Span span = spanOf(rect);
    const DiffusionKernel prepared(DiffusionKernels[static_cast<std::size_t>(kernel)],
                                   result().width());
    const diffusion::Bounds bounds{span.firstColumn, span.firstRow, span.endColumn, span.endRow};
    // The grey indexes all three tables; each channel hands on the grey
    // minus its own table value. Called with the grey alone, the shares
    // are looked up by grey.
    struct ByGreyOrChannels {
        const Class_Dithering& self;
        Quantised operator()(int v) const {
            const auto grey = static_cast<std::size_t>(v);
            const int nr = self.LevelTableR[grey], ng = self.LevelTableG[grey],
                      nb = self.LevelTableB[grey];
            return Quantised{v, nr, ng, nb, v - nr, v - ng, v - nb};
        }
        Quantised operator()(int r, int g, int b) const { return (*this)(ditherGrey(r, g, b)); }
    } quantise{*this};
    rowsOf<false>(kernel, rect, bounds, prepared, quantise, true, false);
}

void Class_Dithering::Dither_ErrorDiffuse(std::int16_t filter, std::int16_t left, std::int16_t top,
                                          std::int16_t right, std::int16_t bottom,
                                          std::int16_t colourMode, std::int16_t level) {
    guarded([&] {
        if (filter < 0 || filter > 6) return;
        diffuse(filter, {left, top, right, bottom}, colourMode == 0, level, ErrorSize::Exact, 0);
    });
}

void Class_Dithering::Dither_ErrorDiffuseRandom(std::int16_t filter, std::int16_t left,
                                                std::int16_t top, std::int16_t right,
                                                std::int16_t bottom, std::int16_t colourMode,
                                                std::int16_t level) {
    guarded([&] {
        const ProcessRect rect{left, top, right, bottom};
        if (filter == 0) {
            randomDither(rect, colourMode == 0, level);
        } else if (filter >= 1 && filter <= 4) {
            diffuse(filter - 1, rect, colourMode == 0, level, ErrorSize::Random, 0);
        }
    });
}

void Class_Dithering::Dither_ErrorFixed(std::int16_t filter, std::int16_t left, std::int16_t top,
                                        std::int16_t right, std::int16_t bottom,
                                        std::int16_t colourMode, std::int16_t level,
                                        std::int16_t fixedError) {
    guarded([&] {
        if (filter < 0 || filter > 3) return;
        diffuse(filter, {left, top, right, bottom}, colourMode == 0, level, ErrorSize::Fixed,
                fixedError);
    });
}

void Class_Dithering::Dither_ErrorDiffuseColorPaint(std::int16_t filter, std::int16_t left,
                                                    std::int16_t top, std::int16_t right,
                                                    std::int16_t bottom, std::int16_t paintType,
                                                    std::int16_t level) {
    guarded([&] {
        if (filter < 0 || filter > 6) return;
        BuildDrawingColorLevelTable(level, paintType);
        diffuseColorPaint(filter, {left, top, right, bottom});
    });
}

} // namespace lumiran

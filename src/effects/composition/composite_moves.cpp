// The merges that move or light the document by the kept image: the
// diffusion, the ripple whose height is the kept image, and its relief.
#include "effects/composition/class_composition.h"
#include "effects/composition/composition_support.h"
#include "effects/geometry/vector_trig.h"

#include <array>
#include <cmath>
#include <cstdlib>
#include <numeric>
#include <span>
#include <vector>

namespace lumiran {
namespace {

// The last column and row both pictures have; -1 when they share nothing.
struct SharedLimits {
    int lastX = -1;
    int lastY = -1;
};

SharedLimits sharedLimits(const Surface& document, const Surface& kept) {
    return {std::min(document.width(), kept.width()) - 1,
            std::min(document.height(), kept.height()) - 1};
}

// The way the light travels for each row of the relief's direction list:
// from above, below, left, right, upper left, upper right, lower left,
// lower right.
struct Step {
    int dx, dy;
};
constexpr std::array<Step, 8> LightTravel{
    {{0, 1}, {0, -1}, {1, 0}, {-1, 0}, {1, 1}, {-1, 1}, {1, -1}, {-1, -1}}};

// store(i, source[index[i]]) along a row. The places are scattered over
// rows far apart, beyond what the hardware's prefetchers follow, so each
// is fetched well ahead of its use.
template <typename Store>
void gatherRow(const Pixel* source, std::span<const std::uint32_t> index, Store store) {
    constexpr std::size_t Ahead = 256;
    const std::size_t n = index.size();
    for (std::size_t i = 0; i < std::min(Ahead, n); ++i)
        __builtin_prefetch(source + index[i]);
    for (std::size_t i = 0; i < n; ++i) {
        __builtin_prefetch(source + index[std::min(i + Ahead, n - 1)]);
        store(i, source[index[i]]);
    }
}

// The values of the ripple's nine types, x' = x + ax fx(x, y), y' = y + ay
// fy(x, y) with ax and ay of the kept image's level (see rippleSources).
// Types 0..5: f of k t, t = sqrt(0.6 dx^2 + dy^2), which depends on dx
// through its size only, so each distance's value serves both sides of the
// centre; they come from the vectorised functions, which agree with the
// library's to a few units in the last place, and the pixels whose rounded
// coordinate that could change are redone with the library's (exact).
// 6..8: fx of the row, fy of the column, the library's own.
class RippleField {
  public:
    RippleField(int type, int S, int cx, double cy, int firstColumn, int endColumn, bool moveX,
                bool moveY)
        : type_(type), S_(S), moveX_(moveX), moveY_(moveY), k_(1.0 - S / 100.0), cx_(cx), cy_(cy),
          first_(firstColumn),
          columns_(static_cast<std::size_t>(std::max(endColumn - firstColumn, 0))) {
        fx_.resize(columns_);
        fy_.resize(columns_);
        if (type >= 6) {
            for (std::size_t i = 0; i < columns_; ++i)
                fy_[i] =
                    moveY ? f(static_cast<double>(first_ + static_cast<int>(i)) / (S + 1)) : 0.0;
        }
    }

    // Moves the pixels in place: whether this type moves them at all.
    [[nodiscard]] bool moves() const { return type_ <= 8; }

    // fx and fy of row y, one per column; 0 on an axis that stays. Types
    // 6..8 have one fx a row: rowFx.
    void fillRow(int y) {
        if (type_ >= 6) {
            rowFx_ = moveX_ ? f(static_cast<double>(y) / (S_ + 1)) : 0.0;
        } else {
            radialRow(y);
        }
    }
    [[nodiscard]] double rowFx() const { return rowFx_; }

    [[nodiscard]] std::span<const double> fx() const { return fx_; }
    [[nodiscard]] std::span<const double> fy() const { return fy_; }

    // The library's fx and fy of column i of the row last filled (types
    // 0..5), as the approximations stand for them.
    [[nodiscard]] std::array<double, 2> exact(std::size_t i) const {
        const int dx = first_ - cx_ + static_cast<int>(i);
        const double kt = kt_[static_cast<std::size_t>(std::abs(dx) - nearest_)];
        double x = 0, y = 0;
        switch (type_) {
        case 0:
            x = y = std::atan(kt);
            break;
        case 1:
            x = y = std::sin(kt);
            break;
        case 2:
            x = y = std::cos(kt);
            break;
        case 3:
            x = y = std::tan(kt);
            break;
        case 4:
            x = std::sin(kt);
            y = std::cos(kt);
            break;
        default:
            x = y = std::sin(kt) + std::cos(kt);
            break;
        }
        return {moveX_ ? x : 0.0, moveY_ ? y : 0.0};
    }

  private:
    void radialRow(int y) {
        // Rows as far above the centre as below share their values.
        const int fromCentre = std::abs(y - static_cast<int>(cy_));
        if (fromCentre == filledFor_) return;
        filledFor_ = fromCentre;
        const double dy = y - cy_;
        const int firstDx = first_ - cx_;
        const int lastDx = firstDx + static_cast<int>(columns_) - 1;
        // The distances the row reaches, nearest first.
        nearest_ = firstDx <= 0 && lastDx >= 0 ? 0 : std::min(std::abs(firstDx), std::abs(lastDx));
        const auto count =
            static_cast<std::size_t>(std::max(std::abs(firstDx), std::abs(lastDx)) - nearest_) + 1;
        kt_.resize(count);
        byX_.resize(count);
        byY_.resize(count);
        for (std::size_t j = 0; j < count; ++j) {
            const double dx = nearest_ + static_cast<int>(j);
            kt_[j] = std::sqrt(0.6 * dx * dx + dy * dy) * k_;
        }
        switch (type_) {
        case 0:
            trig::arcTangent(kt_, byX_);
            break;
        case 1:
            trig::sine(kt_, byX_);
            break;
        case 2:
            trig::cosine(kt_, byX_);
            break;
        case 3:
            trig::tangent(kt_, byX_);
            break;
        case 4:
            trig::sinCos(kt_, byX_, byY_);
            break;
        default:
            trig::sinCos(kt_, byX_, byY_);
            for (std::size_t j = 0; j < count; ++j)
                byX_[j] += byY_[j];
            break;
        }
        // Columns left of the centre take the distances backwards, the
        // others forwards.
        const auto before =
            static_cast<std::size_t>(std::clamp(-firstDx, 0, static_cast<int>(columns_)));
        const auto spread = [&](const std::vector<double>& byDistance, std::vector<double>& out) {
            const double* __restrict from = byDistance.data();
            double* __restrict to = out.data();
            const auto back = static_cast<std::size_t>(-firstDx - nearest_);
            for (std::size_t i = 0; i < before; ++i)
                to[i] = from[back - i];
            const auto ahead = static_cast<std::size_t>(firstDx - nearest_);
            for (std::size_t i = before; i < columns_; ++i)
                to[i] = from[ahead + i];
        };
        if (moveX_) {
            spread(byX_, fx_);
        } else {
            std::fill(fx_.begin(), fx_.end(), 0.0);
        }
        if (moveY_) {
            spread(type_ == 4 ? byY_ : byX_, fy_);
        } else {
            std::fill(fy_.begin(), fy_.end(), 0.0);
        }
    }

    [[nodiscard]] double f(double angle) const {
        return type_ == 6 ? std::sin(angle) : type_ == 7 ? std::cos(angle) : std::tan(angle);
    }

    int type_;
    int S_;
    bool moveX_, moveY_;
    double k_;
    int cx_;
    double cy_;
    int first_;
    std::size_t columns_;
    int nearest_ = 0;
    int filledFor_ = -1;
    double rowFx_ = 0;
    std::vector<double> fx_, fy_, kt_, byX_, byY_;
};

// What a row of the ripple's sources needs besides its values.
struct RippleRow {
    int left, y, S, lastX, lastY;
    std::uint32_t width;
};

// The level of the kept image's pixel: round((0.587 g + 0.299 r + 0.114 b)
// / 26), 0..10.
[[nodiscard]] inline int rippleLevel(Pixel k) {
    return roundInRange<int>((0.587 * greenOf(k) + 0.299 * redOf(k) + 0.114 * blueOf(k)) / 26.0);
}

// The same in integers: twice = 299 r + 587 g + 114 b + 13000 thousandths
// against 26000, exact but at a tie (twice a multiple of 26000: a quotient
// of k + 1/2), where the weights' rounding in the doubles decides; such a
// pixel is redone with rippleLevel.
[[nodiscard]] inline unsigned levelTwice(Pixel k) {
    return 299u * static_cast<unsigned>(redOf(k)) + 587u * static_cast<unsigned>(greenOf(k)) +
           114u * static_cast<unsigned>(blueOf(k)) + 13000u;
}

// x + a f, and the coordinate it gives: outside 0..last it goes back to
// where it came from (a select rather than a branch, so the rows
// vectorise), then it is rounded.
[[nodiscard]] inline double movedBy(int original, double a, double f) {
    return original + a * f;
}
[[nodiscard]] inline int placed(double moved, int original, int last) {
    const bool inside = (moved >= 0) & (moved <= last);
    return roundInRange<int>(inside ? moved : original);
}

// Whether a coordinate worked out with approximate values f lands where the
// exact ones would put it: clear of every rounding boundary (the halves,
// and 0 and last where going back changes the pixel) by far more than the
// approximations can move it. They agree with the library to a few units
// in the last place of f (of 1 near a zero), so x + a f moves by far
// less than Margin + Relative |a f|; beyond that (tan near its poles) the
// margin outgrows the coordinate and the pixel is redone.
constexpr double RippleMargin = 1e-7;
constexpr double RippleRelative = 1e-9;
[[nodiscard]] inline bool clearOfBoundaries(double moved, double af, int original, int last) {
    const double margin = RippleMargin + RippleRelative * std::abs(af);
    const double half = moved + 0.5;
    const bool clearOfHalf = std::abs(half - roundHalfEvenInRange(half)) > margin;
    const bool clearOfFirst = (std::abs(moved) > margin) | (original == 0);
    const bool clearOfLast = (std::abs(moved - last) > margin) | (original == last);
    return clearOfHalf & clearOfFirst & clearOfLast;
}

// The source index of a pixel of a row: x' = x + aX fx, y' = y + aY fy with
// a = Y (by level, types 6..8) or A / 10 and A / 16 of A = wrap16(Y S).
template <bool ByLevel>
[[nodiscard]] inline std::uint32_t rippleSource(const RippleRow& row, int x, int Y, double fx,
                                                double fy) {
    const double A = wrap16(Y * row.S);
    const double aX = ByLevel ? static_cast<double>(Y) : A / 10;
    const double aY = ByLevel ? static_cast<double>(Y) : A / 16;
    const int movedX = placed(movedBy(x, aX, fx), x, row.lastX);
    const int movedY = placed(movedBy(row.y, aY, fy), row.y, row.lastY);
    return static_cast<std::uint32_t>(movedY) * row.width + static_cast<std::uint32_t>(movedX);
}

// The same for types 6..8, whose fx is one value a row.
std::size_t levelSources(const RippleRow row, const Pixel* __restrict keptRow, const double fx,
                         const double* __restrict fy, std::span<std::uint32_t> sources,
                         std::uint8_t* __restrict unsure) {
    std::uint32_t* __restrict index = sources.data();
    std::size_t redo = 0;
    for (std::size_t i = 0; i < sources.size(); ++i) {
        const unsigned twice = levelTwice(keptRow[i]);
        const unsigned level = twice / 26000u;
        const int x = row.left + static_cast<int>(i);
        index[i] = rippleSource<true>(row, x, static_cast<int>(level), fx, fy[i]);
        const bool tie = twice == level * 26000u;
        unsure[i] = static_cast<std::uint8_t>(tie);
        redo += static_cast<std::size_t>(tie);
    }
    return redo;
}

// The source index of each pixel of a row. An axis that stays has values of
// 0, which leave every coordinate in place. Each pixel's flag in unsure says
// whether it has to be redone: at a tie of its level, and with Checked
// (approximate values) where the values could move its place; returns how
// many are. Apart from the class's members, so that nothing the stores
// reach can alias what the loop reads, and it vectorises.
template <bool ByLevel, bool Checked>
std::size_t rippleSources(const RippleRow row, const Pixel* __restrict keptRow,
                          const double* __restrict fx, const double* __restrict fy,
                          std::span<std::uint32_t> sources, std::uint8_t* __restrict unsure) {
    std::uint32_t* __restrict index = sources.data();
    std::size_t redo = 0;
    for (std::size_t i = 0; i < sources.size(); ++i) {
        const unsigned twice = levelTwice(keptRow[i]);
        const unsigned level = twice / 26000u;
        const int Y = static_cast<int>(level);
        const int x = row.left + static_cast<int>(i);
        index[i] = rippleSource<ByLevel>(row, x, Y, fx[i], fy[i]);
        bool clear = twice != level * 26000u;
        if constexpr (Checked) {
            const double A = wrap16(Y * row.S);
            const double afX = A / 10 * fx[i], afY = A / 16 * fy[i];
            clear = clear & clearOfBoundaries(movedBy(x, A / 10, fx[i]), afX, x, row.lastX) &
                    clearOfBoundaries(movedBy(row.y, A / 16, fy[i]), afY, row.y, row.lastY);
        }
        unsure[i] = static_cast<std::uint8_t>(!clear);
        redo += static_cast<std::size_t>(!clear);
    }
    return redo;
}

} // namespace

void Class_Composition::Composite_Diffuse(std::uint8_t /*unused*/, std::uint8_t direction,
                                          std::int16_t left, std::int16_t top, std::int16_t right,
                                          std::int16_t bottom) {
    guarded([&] {
        const Surface& kept = keptImage();
        const Surface& source = ImageBits;
        const SharedLimits limits = sharedLimits(source, kept);
        const bool across = direction == 0 || direction == 1;
        const bool down = direction == 0 || direction == 2;
        const ProcessRect area = sharedArea(left, top, right, bottom);
        // Lent its source, it makes the result itself on every core: the
        // rows outside the area at once, each row inside as its band takes
        // it (the blend reads the whole result, so it has it all first).
        const bool ownTrans = TransBits.empty() && !ImageBits.empty();
        const bool blend = calculationFlag() > 0;
        if (ownTrans) makeTransOutside(blend ? Span{} : spanOf(area));
        if (blend) {
            mapPixels<ResultTail::Clamp, Destination::Trans>(
                area,
                [&kept, &source, limits, across, down](int x, int y, int& r, int& g,
                                                       int& b) -> Rgb16 {
                    const Pixel k = kept.at(x, y);
                    const int d =
                        std::abs((r + g + b) / 3 - (redOf(k) + greenOf(k) + blueOf(k)) / 3);
                    const int sx = across && x + d <= limits.lastX ? x + d : x;
                    const int sy = down && y + d <= limits.lastY ? y + d : y;
                    const Pixel moved = source.at(sx, sy);
                    return {wrap16(redOf(moved)), wrap16(greenOf(moved)), wrap16(blueOf(moved))};
                });
            return;
        }
        // Without a blend the tail keeps the moved colour as it is (it is
        // in range) and the target's spare byte. Each row works out all its
        // sources first, then copies: the copies wait on memory and overlap.
        SetProgressRange(area.top, area.bottom);
        const auto width = static_cast<std::uint32_t>(source.width());
        std::vector<std::vector<std::uint32_t>> scratch(
            static_cast<std::size_t>(std::max(bandPlan(area).workers, 1)));
        rowsInBands(area, bandPlan(area), [&](int worker, int y, int first, int end) {
            if (ownTrans) copyRowToTrans(y);
            std::vector<std::uint32_t>& index = scratch[static_cast<std::size_t>(worker)];
            const auto n = static_cast<std::size_t>(end - first);
            if (index.size() < n) index.resize(n);
            const Pixel* in = source.row(y).data() + first;
            const Pixel* keptRow = kept.row(y).data() + first;
            const int reachX = limits.lastX - first, reachY = limits.lastY - y;
            for (std::size_t i = 0; i < n; ++i) {
                const Pixel p = in[i], k = keptRow[i];
                const int d = std::abs((redOf(p) + greenOf(p) + blueOf(p)) / 3 -
                                       (redOf(k) + greenOf(k) + blueOf(k)) / 3);
                const int column = static_cast<int>(i);
                const int dx = across && column + d <= reachX ? d : 0;
                const int dy = down && d <= reachY ? d : 0;
                index[i] = static_cast<std::uint32_t>(y + dy) * width +
                           static_cast<std::uint32_t>(first + column + dx);
            }
            const Pixel* from = source.pixels().data();
            Pixel* out = TransBits.row(y).data() + first;
            gatherRow(from, {index.data(), n}, [out](std::size_t i, Pixel moved) {
                out[i] = (out[i] & 0xFF000000u) | (moved & 0x00FFFFFFu);
            });
        });
    });
}

void Class_Composition::Composite_Coordinate(std::uint8_t type, std::uint8_t direction,
                                             std::int16_t S, std::int16_t left, std::int16_t top,
                                             std::int16_t right, std::int16_t bottom) {
    guarded([&] {
        const Surface& kept = keptImage();
        const SharedLimits limits = sharedLimits(ImageBits, kept);
        const ProcessRect area = sharedArea(left, top, right, bottom);
        if (type >= 6 && type <= 8 && S + 1 == 0) throw EffectError::divisionByZero();
        const int cx = roundInRange<int>(limits.lastX / 2.0);
        const double cy = roundInRange<int>(limits.lastY / 2.0);
        const bool moveX = direction != 1, moveY = direction != 2;
        const bool byLevel = type >= 6;
        const auto width = static_cast<std::uint32_t>(ImageBits.width());
        const auto columns = static_cast<std::size_t>(std::max(area.right - area.left, 0));
        // Each worker has its own field and row of sources.
        struct Scratch {
            RippleField field;
            std::vector<std::uint32_t> index;
            std::vector<std::uint8_t> unsure;
        };
        const BandPlan plan = bandPlan(area);
        const int workers = std::max(plan.workers, 1);
        std::vector<Scratch> scratch;
        scratch.reserve(static_cast<std::size_t>(workers));
        for (int w = 0; w < workers; ++w)
            scratch.push_back({RippleField(type, S, cx, cy, area.left, area.right, moveX, moveY),
                               std::vector<std::uint32_t>(columns),
                               std::vector<std::uint8_t>(columns)});
        const auto rowOf = [&](Scratch& own, int y) {
            Pixel* out = TransBits.row(y).data() + area.left;
            const Pixel* keptRow = kept.row(y).data() + area.left;
            std::uint32_t* index = own.index.data();
            RippleField& field = own.field;
            if (field.moves()) {
                field.fillRow(y);
                const double* fx = field.fx().data();
                const double* fy = field.fy().data();
                // First every pixel's source, then the copies, which wait on
                // memory and so overlap.
                const RippleRow row{area.left, y, S, limits.lastX, limits.lastY, width};
                std::uint8_t* unsure = own.unsure.data();
                if (byLevel) {
                    const double rowFx = field.rowFx();
                    if (levelSources(row, keptRow, rowFx, fy, {index, columns}, unsure) > 0) {
                        for (std::size_t i = 0; i < columns; ++i) {
                            if (unsure[i] == 0) continue;
                            index[i] = rippleSource<true>(row, area.left + static_cast<int>(i),
                                                          rippleLevel(keptRow[i]), rowFx, fy[i]);
                        }
                    }
                } else if (rippleSources<false, true>(row, keptRow, fx, fy, {index, columns},
                                                      unsure) > 0) {
                    for (std::size_t i = 0; i < columns; ++i) {
                        if (unsure[i] == 0) continue;
                        const auto [exactX, exactY] = field.exact(i);
                        index[i] = rippleSource<false>(row, area.left + static_cast<int>(i),
                                                       rippleLevel(keptRow[i]), exactX, exactY);
                    }
                }
            } else {
                for (std::size_t i = 0; i < columns; ++i)
                    index[i] = static_cast<std::uint32_t>(y) * width + area.left +
                               static_cast<std::uint32_t>(i);
            }
            gatherRow(ImageBits.pixels().data(), {index, columns},
                      [out](std::size_t i, Pixel moved) { out[i] = moved; });
        };
        // Its own progress: the share of the rows done, with the events let
        // in. Rows finish out of order (on several threads, and the radial
        // types from the centre row outwards), so the share counts finished
        // rows, which rises as a loop from the top would.
        int finished = 0;
        const auto endOfRow = [&] {
            const int y = area.top + finished++;
            if (context().progressFlag == 1 && context().progress != nullptr) {
                context().progress->showPercent(
                    roundInRange<int>(static_cast<double>(y) / (limits.lastY + 1) * 100));
            }
            return !context().cancelled();
        };
        // The radial types' rows run in order of their distance from the
        // centre row, so that the rows as far above it as below follow one
        // another and the second takes the first's values.
        std::vector<int> order(static_cast<std::size_t>(std::max(area.bottom - area.top, 0)));
        std::iota(order.begin(), order.end(), static_cast<int>(area.top));
        if (!byLevel) {
            const int centre = static_cast<int>(cy);
            std::ranges::stable_sort(order, {}, [centre](int y) { return std::abs(y - centre); });
        }
        const auto rowAt = [&](int position) {
            return order[static_cast<std::size_t>(position - area.top)];
        };
        if (workers == 1) {
            for (int position = area.top; position < area.bottom; ++position) {
                rowOf(scratch.front(), rowAt(position));
                if (!endOfRow()) return;
            }
            return;
        }
        RowBands bands(area.top, area.bottom, plan.bandRows);
        context().workers().run(workers, [&](int worker) {
            for (RowBands::Band band = bands.claim(); !band.empty(); band = bands.claim()) {
                for (int position = band.begin; position < band.end; ++position) {
                    if (!bands.mayStart(position)) return;
                    rowOf(scratch[static_cast<std::size_t>(worker)], rowAt(position));
                    const std::scoped_lock lock(bands.rowEnd());
                    if (!endOfRow()) {
                        bands.cancel();
                        return;
                    }
                }
            }
        });
        (void)bands.finish();
    });
}

void Class_Composition::Composite_Embossing(std::uint8_t direction, std::uint8_t type,
                                            std::int16_t left, std::int16_t top, std::int16_t right,
                                            std::int16_t bottom, double red, double green,
                                            double blue, double filterSize) {
    guarded([&] {
        const Surface& kept = keptImage();
        const SharedLimits limits = sharedLimits(ImageBits, kept);
        const Step light = LightTravel[direction < LightTravel.size() ? direction : 0];
        const int reach = std::max(1, static_cast<int>(roundTo<std::int16_t>(filterSize)));
        // Scaling by 1/128 is exact, so d * tint / 128 rounds as written.
        const std::array<double, 3> tint{red / 128, green / 128, blue / 128};
        const std::array<int, 3> base{roundTo<std::int16_t>(red), roundTo<std::int16_t>(green),
                                      roundTo<std::int16_t>(blue)};
        const ProcessRect area = sharedArea(left, top, right, bottom);
        auto rows = [&]<bool Blend, bool Pressed>() {
            const int dx = light.dx * reach, dy = light.dy * reach;
            const int lastX = limits.lastX, lastY = limits.lastY;
            forEachRow(area, [&, dx, dy, lastX, lastY, tint, base](int y, int first, int end) {
                // The neighbour toward the light, held inside the shared area.
                const int litRow = std::clamp(y - dy, 0, lastY);
                reliefRow<Blend, Pressed>(ImageBits.row(y).data(), kept.row(y).data(),
                                          kept.row(litRow).data(), first, end, dx, lastX, tint,
                                          base);
            });
        };
        SetProgressRange(area.top, area.bottom);
        const bool blend = calculationFlag() > 0;
        if (type == 0) {
            blend ? rows.template operator()<true, true>()
                  : rows.template operator()<false, true>();
        } else {
            blend ? rows.template operator()<true, false>()
                  : rows.template operator()<false, false>();
        }
    });
}

} // namespace lumiran

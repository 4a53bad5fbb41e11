// The merges that move or light the document by the kept image: the
// diffusion, the ripple whose height is the kept image, and its relief.
#include "effects/composition/class_composition.h"
#include "effects/composition/composition_support.h"

#include <array>
#include <cmath>
#include <cstdlib>
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

// The values of the ripple's nine types, x' = x + ax fx(x, y), y' = y + ay
// fy(x, y) with ax and ay of the kept image's level (see rippleSources).
// Types 0..5: f of k t, t = sqrt(0.6 dx^2 + dy^2), which depends on dx
// through its size only, so each distance's values serve both sides of the
// centre; 6..8: fx of the row, fy of the column. The library's
// functions are called once per distance or column instead of per pixel;
// each pixel's arithmetic is the formula's, so the result is the same.
class RippleField {
  public:
    RippleField(int type, int S, double cx, double cy, int firstColumn, int endColumn, bool moveX,
                bool moveY)
        : type_(type), S_(S), moveX_(moveX), moveY_(moveY), k_(1.0 - S / 100.0), cx_(cx), cy_(cy),
          first_(firstColumn),
          columns_(static_cast<std::size_t>(std::max(endColumn - firstColumn, 0))) {
        fx_.resize(columns_);
        fy_.resize(columns_);
        if (type >= 6) {
            for (std::size_t i = 0; i < columns_; ++i)
                fy_[i] = f(static_cast<double>(first_ + static_cast<int>(i)) / (S + 1));
        }
    }

    // Moves the pixels in place: whether this type moves them at all.
    [[nodiscard]] bool moves() const { return type_ <= 8; }

    // fx and fy of row y, one per column; 0 on an axis that stays.
    void fillRow(int y) {
        valuesOf(y);
        if (!moveX_) std::fill(fx_.begin(), fx_.end(), 0.0);
        if (!moveY_) std::fill(fy_.begin(), fy_.end(), 0.0);
    }

    [[nodiscard]] std::span<const double> fx() const { return fx_; }
    [[nodiscard]] std::span<const double> fy() const { return fy_; }

  private:
    void valuesOf(int y) {
        if (type_ >= 6) {
            const double v = f(static_cast<double>(y) / (S_ + 1));
            std::fill(fx_.begin(), fx_.end(), v);
            return;
        }
        const double dy = y - cy_;
        const double firstDx = first_ - cx_;
        const double lastDx = firstDx + static_cast<double>(columns_) - 1;
        // The distances the row reaches, nearest first.
        const double nearest =
            firstDx <= 0 && lastDx >= 0 ? 0 : std::min(std::abs(firstDx), std::abs(lastDx));
        const auto count =
            static_cast<std::size_t>(std::max(std::abs(firstDx), std::abs(lastDx)) - nearest) + 1;
        byDistanceX_.resize(count);
        byDistanceY_.resize(count);
        for (std::size_t j = 0; j < count; ++j) {
            const double dx = nearest + static_cast<double>(j);
            const double kt = k_ * std::sqrt(0.6 * dx * dx + dy * dy);
            switch (type_) {
            case 0:
                byDistanceX_[j] = byDistanceY_[j] = std::atan(kt);
                break;
            case 1:
                byDistanceX_[j] = byDistanceY_[j] = std::sin(kt);
                break;
            case 2:
                byDistanceX_[j] = byDistanceY_[j] = std::cos(kt);
                break;
            case 3:
                byDistanceX_[j] = byDistanceY_[j] = std::tan(kt);
                break;
            case 4:
                byDistanceX_[j] = std::sin(kt);
                byDistanceY_[j] = std::cos(kt);
                break;
            default:
                byDistanceX_[j] = byDistanceY_[j] = std::sin(kt) + std::cos(kt);
                break;
            }
        }
        for (std::size_t i = 0; i < columns_; ++i) {
            const auto j =
                static_cast<std::size_t>(std::abs(firstDx + static_cast<double>(i)) - nearest);
            fx_[i] = byDistanceX_[j];
            fy_[i] = byDistanceY_[j];
        }
    }

    [[nodiscard]] double f(double angle) const {
        return type_ == 6 ? std::sin(angle) : type_ == 7 ? std::cos(angle) : std::tan(angle);
    }

    int type_;
    int S_;
    bool moveX_, moveY_;
    double k_;
    double cx_, cy_;
    int first_;
    std::size_t columns_;
    std::vector<double> fx_, fy_, byDistanceX_, byDistanceY_;
};

// A coordinate outside 0..last goes back to where it came from; a select
// rather than a branch, so the ripple's rows vectorise.
[[nodiscard]] int placed(double moved, int original, int last) {
    const bool inside = (moved >= 0) & (moved <= last);
    return roundInRange<int>(inside ? moved : original);
}

// What a row of the ripple's sources needs besides its values.
struct RippleRow {
    int left, y, S, lastX, lastY;
    std::uint32_t width;
};

// The source index of each pixel of a row: x' = x + aX fx, y' = y + aY fy
// with a = Y (by level, types 6..8) or A / 10 and A / 16 of A = wrap16(Y S).
// An axis that stays has values of 0, which leave every coordinate in place.
// Apart from the class's members, so that nothing the stores reach can
// alias what the loop reads, and it vectorises.
template <bool ByLevel>
void rippleSources(const RippleRow row, const Pixel* __restrict keptRow,
                   const double* __restrict fx, const double* __restrict fy,
                   std::span<std::uint32_t> sources) {
    std::uint32_t* __restrict index = sources.data();
    for (std::size_t i = 0; i < sources.size(); ++i) {
        const Pixel k = keptRow[i];
        const int Y =
            roundInRange<int>((0.587 * greenOf(k) + 0.299 * redOf(k) + 0.114 * blueOf(k)) / 26.0);
        const int x = row.left + static_cast<int>(i);
        const double A = wrap16(Y * row.S);
        const double aX = ByLevel ? static_cast<double>(Y) : A / 10;
        const double aY = ByLevel ? static_cast<double>(Y) : A / 16;
        const int movedX = placed(x + aX * fx[i], x, row.lastX);
        const int movedY = placed(row.y + aY * fy[i], row.y, row.lastY);
        index[i] =
            static_cast<std::uint32_t>(movedY) * row.width + static_cast<std::uint32_t>(movedX);
    }
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
        if (calculationFlag() > 0) {
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
            for (std::size_t i = 0; i < n; ++i)
                out[i] = (out[i] & 0xFF000000u) | (from[index[i]] & 0x00FFFFFFu);
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
        const double cx = roundInRange<int>(limits.lastX / 2.0);
        const double cy = roundInRange<int>(limits.lastY / 2.0);
        const bool moveX = direction != 1, moveY = direction != 2;
        const bool byLevel = type >= 6;
        const auto width = static_cast<std::uint32_t>(ImageBits.width());
        const auto columns = static_cast<std::size_t>(std::max(area.right - area.left, 0));
        // Each worker has its own field and row of sources.
        struct Scratch {
            RippleField field;
            std::vector<std::uint32_t> index;
        };
        const BandPlan plan = bandPlan(area);
        const int workers = std::max(plan.workers, 1);
        std::vector<Scratch> scratch;
        scratch.reserve(static_cast<std::size_t>(workers));
        for (int w = 0; w < workers; ++w)
            scratch.push_back({RippleField(type, S, cx, cy, area.left, area.right, moveX, moveY),
                               std::vector<std::uint32_t>(columns)});
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
                if (byLevel) {
                    rippleSources<true>(row, keptRow, fx, fy, {index, columns});
                } else {
                    rippleSources<false>(row, keptRow, fx, fy, {index, columns});
                }
            } else {
                for (std::size_t i = 0; i < columns; ++i)
                    index[i] = static_cast<std::uint32_t>(y) * width + area.left +
                               static_cast<std::uint32_t>(i);
            }
            const Pixel* source = ImageBits.pixels().data();
            for (std::size_t i = 0; i < columns; ++i)
                out[i] = source[index[i]];
        };
        // Its own progress: the share of the rows done, with the events let
        // in. Rows finish out of order on several threads, so the share
        // counts finished rows; on one thread that is the row's own y.
        int finished = 0;
        const auto endOfRow = [&] {
            const int y = area.top + finished++;
            if (context().progressFlag == 1 && context().progress != nullptr) {
                context().progress->showPercent(
                    roundInRange<int>(static_cast<double>(y) / (limits.lastY + 1) * 100));
            }
            return !context().cancelled();
        };
        if (workers == 1) {
            for (int y = area.top; y < area.bottom; ++y) {
                rowOf(scratch.front(), y);
                if (!endOfRow()) return;
            }
            return;
        }
        RowBands bands(area.top, area.bottom, plan.bandRows);
        context().workers().run(workers, [&](int worker) {
            for (RowBands::Band band = bands.claim(); !band.empty(); band = bands.claim()) {
                for (int y = band.begin; y < band.end; ++y) {
                    if (!bands.mayStart(y)) return;
                    rowOf(scratch[static_cast<std::size_t>(worker)], y);
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

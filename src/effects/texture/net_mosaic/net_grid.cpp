#include "effects/texture/net_mosaic/net_grid.h"

#include "engine/drawing/pixel_calls.h"
#include "engine/numeric.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace lumiran::net {
namespace {

// The sum of the channels, for comparing changes of colour.
int brightness(const Surface& source, int x, int y) {
    const ColourRef c = GetPixel(source, x, y);
    return (c & 0xFF) + ((c >> 8) & 0xFF) + ((c >> 16) & 0xFF);
}

// The parts dx / length and dy / length of the unit vector along (dx, dy),
// for the short vectors of a net's sides worked out once: the square root
// and the divisions were most of the cost of bending them.
class Directions {
  public:
    struct Parts {
        double x = 0;
        double y = 0;
    };

    explicit Directions(int reach)
        : reach_(reach), parts_(static_cast<std::size_t>(2 * reach + 1) * (2 * reach + 1)) {
        for (int dy = -reach; dy <= reach; ++dy) {
            for (int dx = -reach; dx <= reach; ++dx)
                parts_[index(dx, dy)] = worked(dx, dy);
        }
    }

    [[nodiscard]] Parts of(int dx, int dy) const {
        if (std::abs(dx) > reach_ || std::abs(dy) > reach_) return worked(dx, dy);
        return parts_[index(dx, dy)];
    }

  private:
    static Parts worked(int dx, int dy) {
        const double length =
            std::sqrt(static_cast<double>(dx) * dx + static_cast<double>(dy) * dy);
        return {dx / length, dy / length};
    }
    [[nodiscard]] std::size_t index(int dx, int dy) const {
        return static_cast<std::size_t>((dy + reach_) * (2 * reach_ + 1) + dx + reach_);
    }

    int reach_;
    std::vector<Parts> parts_;
};

// The midpoints of a side moved across it by up to amplitude, then the
// halves with half the amplitude, down to pieces of a few pixels; the
// points after from go to out. Depth first, the first half before the
// second, each split drawing before its halves.
void displace(CanvasPoint from, CanvasPoint to, double amplitude, DrawnAhead& random,
              const Directions& directions, Sides& out) {
    // Amplitudes start below 2^13 and halve down to 0.5: at most 15
    // halves wait at once.
    struct Half {
        CanvasPoint to;
        double amplitude;
    };
    std::array<Half, 32> waiting;
    std::size_t count = 0;
    for (;;) {
        const int dx = to.x - from.x;
        const int dy = to.y - from.y;
        if (std::max(std::abs(dx), std::abs(dy)) < 4 || amplitude < 0.5 ||
            count == waiting.size()) {
            out.add(to);
            if (count == 0) return;
            from = to;
            --count;
            to = waiting[count].to;
            amplitude = waiting[count].amplitude;
            continue;
        }
        const Directions::Parts along = directions.of(dx, dy);
        const double shift = (random.next() * 2 - 1) * amplitude;
        // Within a few thousand pixels of the picture: no overflow to guard.
        const CanvasPoint middle{
            static_cast<int>(roundHalfEvenInRange((from.x + to.x) / 2.0 - along.y * shift)),
            static_cast<int>(roundHalfEvenInRange((from.y + to.y) / 2.0 + along.x * shift))};
        amplitude /= 2;
        waiting[count++] = {to, amplitude};
        to = middle;
    }
}

} // namespace

Net::Net(const Area& area, int size) : area_(area), size_(size) {
    const int cellsAcross = std::max(1, (area.right - area.left - 1 + size - 1) / size);
    const int cellsDown = std::max(1, (area.bottom - area.top - 1 + size - 1) / size);
    columns_ = cellsAcross + 1;
    rows_ = cellsDown + 1;
    vertices_.resize(static_cast<std::size_t>(columns_) * rows_);
    reaches_.resize(static_cast<std::size_t>(rows_));
    for (int b = 0; b < rows_; ++b) {
        for (int a = 0; a < columns_; ++a)
            vertex(a, b) = {std::min(area.left + a * size, area.right - 1),
                            std::min(area.top + b * size, area.bottom - 1)};
    }
}

int Net::reach(int noise) const {
    return std::clamp(std::min(noise / 2, (size_ - 1) / 2), 0, size_);
}

// The amplitudes a bent side is split at, largest first.
template <typename Each>
void eachSplitAmplitude(int noise, int size, Each&& each) {
    for (double amplitude = std::min(noise, size) / 4.0; amplitude >= 0.5; amplitude /= 2)
        each(amplitude);
}

int Net::mostPointsPerSide(int noise) const {
    int pieces = 1;
    eachSplitAmplitude(noise, size_, [&](double) { pieces *= 2; });
    return 1 + pieces;
}

int Net::sideSpread(bool bent, int noise) const {
    // A midpoint's row lies within its ends' rows, moved by up to the
    // amplitude and half a pixel of rounding; the 1 covers the arithmetic.
    double shifts = 0;
    if (bent)
        eachSplitAmplitude(noise, size_, [&](double amplitude) { shifts += amplitude + 0.5; });
    return reach(noise) + static_cast<int>(shifts) + 1;
}

bool Net::withinSpread(int spread) const {
    for (int b = 0; b < rows_; ++b) {
        if (std::min(levelReach(b).first, uprightReach(b).first) < gridRow(b) - spread)
            return false;
    }
    return true;
}

double Net::expectedPointsPerSide(int noise) const {
    double pieces = 1;
    eachSplitAmplitude(noise, size_, [&](double) {
        if (pieces < size_) pieces *= 2;
    });
    return 1 + std::min(pieces, std::max(1.0, size_ / 2.0));
}

void Net::reserveSides(int pointsPerSide) {
    const auto count = [&](std::size_t sides) {
        return std::pair{sides, sides * static_cast<std::size_t>(pointsPerSide)};
    };
    across_.clear();
    down_.clear();
    across_.reserve(count(static_cast<std::size_t>(columns_ - 1) * rows_));
    down_.reserve(count(static_cast<std::size_t>(columns_) * (rows_ - 1)));
}

void Net::noteReaches(int b, std::size_t acrossFrom, std::size_t downFrom) {
    const int y = vertex(0, b).y;
    const RowReach level = across_.rowsOf(acrossFrom, {y, y});
    reaches_[static_cast<std::size_t>(b)] = {level, down_.rowsOf(downFrom, {y, y})};
    if (finished_ != nullptr) finished_->store(b + 1, std::memory_order_release);
}

void Net::straightSides() {
    reserveSides(2);
    for (int b = 0; b < rows_; ++b) {
        const std::size_t acrossFrom = across_.pointCount();
        const std::size_t downFrom = down_.pointCount();
        for (int a = 0; a < columns_; ++a) {
            if (a + 1 < columns_) {
                across_.open(vertex(a, b));
                across_.add(vertex(a + 1, b));
            }
            if (b + 1 < rows_) {
                down_.open(vertex(a, b));
                down_.add(vertex(a, b + 1));
            }
        }
        noteReaches(b, acrossFrom, downFrom);
    }
}

void Net::scatter(int noise, RandomGenerator& generator) {
    DrawnAhead random(generator);
    const int limit = reach(noise);
    for (int b = 0; b < rows_; ++b) {
        for (int a = 0; a < columns_; ++a) {
            const int dx = std::clamp(roundTo<int>((random.next() - 0.5) * noise), -limit, limit);
            const int dy = std::clamp(roundTo<int>((random.next() - 0.5) * noise), -limit, limit);
            CanvasPoint& v = vertex(a, b);
            if (!onBorderColumn(a)) v.x += dx;
            if (!onBorderRow(b)) v.y += dy;
        }
    }
    // Sides on the area's border stay straight, so the cells cover it.
    const double amplitude = std::min(noise, size_) / 4.0;
    reserveSides(mostPointsPerSide(noise));
    // Sides span up to two blocks across and one down, and their halves less.
    const Directions directions(std::min(2 * size_ + 2, 40));
    for (int b = 0; b < rows_; ++b) {
        const std::size_t acrossFrom = across_.pointCount();
        const std::size_t downFrom = down_.pointCount();
        for (int a = 0; a < columns_; ++a) {
            if (a + 1 < columns_) {
                across_.open(vertex(a, b));
                displace(vertex(a, b), vertex(a + 1, b), onBorderRow(b) ? 0 : amplitude, random,
                         directions, across_);
            }
            if (b + 1 < rows_) {
                down_.open(vertex(a, b));
                displace(vertex(a, b), vertex(a, b + 1), onBorderColumn(a) ? 0 : amplitude, random,
                         directions, down_);
            }
        }
        noteReaches(b, acrossFrom, downFrom);
    }
}

void Net::snapToEdges(const Surface& source, int noise) {
    const int limit = reach(noise);
    auto strength = [&](int x, int y) {
        const int x0 = std::max(x - 1, area_.left), x1 = std::min(x + 1, area_.right - 1);
        const int y0 = std::max(y - 1, area_.top), y1 = std::min(y + 1, area_.bottom - 1);
        return std::abs(brightness(source, x1, y) - brightness(source, x0, y)) +
               std::abs(brightness(source, x, y1) - brightness(source, x, y0));
    };
    for (int b = 0; b < rows_; ++b) {
        for (int a = 0; a < columns_; ++a) {
            CanvasPoint& v = vertex(a, b);
            const int reachX = onBorderColumn(a) ? 0 : limit;
            const int reachY = onBorderRow(b) ? 0 : limit;
            CanvasPoint best = v;
            int strongest = strength(v.x, v.y);
            for (int dy = -reachY; dy <= reachY; ++dy) {
                for (int dx = -reachX; dx <= reachX; ++dx) {
                    const int s = strength(v.x + dx, v.y + dy);
                    if (s > strongest) {
                        strongest = s;
                        best = {v.x + dx, v.y + dy};
                    }
                }
            }
            v = best;
        }
    }
    straightSides();
}

void Net::cellOutline(int a, int b, Polyline& outline) const {
    const auto top = across(a, b);
    const auto bottom = across(a, b + 1);
    const auto leftSide = down(a, b);
    const auto rightSide = down(a + 1, b);
    outline.assign(top.begin(), top.end());
    outline.insert(outline.end(), rightSide.begin() + 1, rightSide.end());
    outline.insert(outline.end(), bottom.rbegin() + 1, bottom.rend());
    outline.insert(outline.end(), leftSide.rbegin() + 1, leftSide.rend() - 1);
}

} // namespace lumiran::net

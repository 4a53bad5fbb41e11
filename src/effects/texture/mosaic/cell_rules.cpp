#include "effects/texture/mosaic/cell_rules.h"

#include "engine/numeric.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>

namespace lumiran::mosaic {
namespace {

// Classes by a function of the cell; count one past the largest.
template <typename ClassOf>
CellClasses classify(int width, int height, ClassOf classOf) {
    CellClasses c{width, height, 0,
                  std::vector<std::uint16_t>(static_cast<std::size_t>(width) * height)};
    for (int i = 0; i < height; ++i) {
        for (int j = 0; j < width; ++j) {
            const std::uint16_t k = classOf(i, j);
            c.of[static_cast<std::size_t>(i) * width + j] = k;
            if (k != LeaveCell) c.count = std::max(c.count, k + 1);
        }
    }
    return c;
}

bool edge(int i, int j) {
    return i == 0 || j == 0;
}

// Edge cells class 0, the others 1 + j: the rules whose inside slopes
// across the block.
CellClasses edgeAndColumn(int width, int height) {
    return classify(width, height, [](int i, int j) {
        return static_cast<std::uint16_t>(edge(i, j) ? 0 : 1 + j);
    });
}

} // namespace

Rgb16 shifted(Rgb16 mean, int delta) {
    return {wrap16(mean.red + delta), wrap16(mean.green + delta), wrap16(mean.blue + delta)};
}

Rgb16 grey(int value) {
    return {wrap16(value), wrap16(value), wrap16(value)};
}

CellRule normalRule(std::uint8_t type, int width, int height) {
    if (type != 1 && type != 2) {
        return {classify(width, height, [](int, int) { return std::uint16_t{0}; }),
                [](Rgb16 m, std::span<Rgb16> c) { c[0] = m; }};
    }
    const int sign = type == 1 ? 1 : -1;
    return {edgeAndColumn(width, height), [sign, width](Rgb16 m, std::span<Rgb16> c) {
                c[0] = shifted(m, sign * 5 * width);
                for (int j = 0; j < width; ++j)
                    c[1 + j] = shifted(m, -sign * 3 * j);
            }};
}

CellRule tileRule(std::uint8_t type, int width, int height) {
    // 0 the edge, 1 the cells at 1, 2 those at 2, 3 the inside.
    CellClasses classes = classify(width, height, [](int i, int j) {
        if (edge(i, j)) return std::uint16_t{0};
        if (i == 1 || j == 1) return std::uint16_t{1};
        return static_cast<std::uint16_t>(i == 2 || j == 2 ? 2 : 3);
    });
    classes.count = 4;
    return {std::move(classes), [type](Rgb16 m, std::span<Rgb16> c) {
                switch (type) {
                case 0:
                    c[0] = shifted(m, -18);
                    c[1] = shifted(m, 18);
                    c[2] = m;
                    break;
                case 1:
                    c[0] = grey(0);
                    c[1] = grey(255);
                    c[2] = m;
                    break;
                case 2:
                    c[0] = grey(0);
                    c[1] = grey(128);
                    c[2] = grey(255);
                    break;
                default:
                    c[0] = c[1] = c[2] = m;
                    break;
                }
                c[3] = m;
            }};
}

CellRule gradation1Rule(std::uint8_t type, int width, int height) {
    if (type == 2 || type == 3) {
        // Inside the edge the slope follows i + j, held in a byte.
        const int sign = type == 2 ? -1 : 1;
        CellClasses classes = classify(width, height, [](int i, int j) {
            return static_cast<std::uint16_t>(edge(i, j) ? 0
                                                         : 1 + static_cast<std::uint8_t>(i + j));
        });
        return {std::move(classes), [sign](Rgb16 m, std::span<Rgb16> c) {
                    c[0] = m;
                    for (int d = 0; d + 1 < static_cast<int>(c.size()) && d < 256; ++d)
                        c[1 + d] = shifted(m, sign * roundTo<int>(d * 1.5));
                }};
    }
    const int sign = type == 0 ? -1 : type == 1 ? 1 : 0;
    return {edgeAndColumn(width, height), [sign, width](Rgb16 m, std::span<Rgb16> c) {
                c[0] = m;
                for (int j = 0; j < width; ++j)
                    c[1 + j] = shifted(m, sign * 3 * j);
            }};
}

CellRule gradation2Rule(std::uint8_t type, int width, int height) {
    enum class Measure { Vertical, Radial, Diagonal };
    enum class End { Black, Mean, White };
    struct Kind {
        Measure measure;
        End from;
        End to;
    };
    // Types 1 and 2 are the radial runs between white and M; the others run
    // between M and black or white so that each looks apart.
    static constexpr std::array<Kind, 6> kinds{{
        {Measure::Diagonal, End::White, End::Mean},
        {Measure::Radial, End::White, End::Mean},
        {Measure::Radial, End::Mean, End::White},
        {Measure::Radial, End::Mean, End::Black},
        {Measure::Radial, End::Black, End::Mean},
        {Measure::Vertical, End::Mean, End::Black},
    }};
    const Kind kind =
        type < kinds.size() ? kinds[type] : Kind{Measure::Vertical, End::Mean, End::Mean};
    double extent = 0;
    std::vector<double> distance(static_cast<std::size_t>(width) * height);
    const double cx = width / 2.0;
    const double cy = height / 2.0;
    for (int i = 0; i < height; ++i) {
        for (int j = 0; j < width; ++j) {
            double& d = distance[static_cast<std::size_t>(i) * width + j];
            switch (kind.measure) {
            case Measure::Vertical:
                d = i;
                extent = height - 1;
                break;
            case Measure::Radial:
                d = std::sqrt((j - cx) * (j - cx) + (i - cy) * (i - cy));
                extent = std::sqrt(cx * cx + cy * cy);
                break;
            case Measure::Diagonal:
                d = i + j;
                extent = width + height - 2;
                break;
            }
        }
    }
    CellClasses classes = classify(
        width, height, [width](int i, int j) { return static_cast<std::uint16_t>(i * width + j); });
    return {std::move(classes),
            [kind, extent, distance = std::move(distance)](Rgb16 m, std::span<Rgb16> c) {
                const auto end = [](End e, int v) {
                    return e == End::Black ? 0 : e == End::White ? 255 : v;
                };
                // a + (b - a) / extent * distance, the quotient once a block
                // and channel; at distance 0 the start colour, also where the
                // extent is 0. The run stays between its two ends, so the
                // rounding needs no range check and the loop vectorises.
                const int a[3] = {end(kind.from, m.red), end(kind.from, m.green),
                                  end(kind.from, m.blue)};
                double slope[3];
                for (int ch = 0; ch < 3; ++ch)
                    slope[ch] = static_cast<double>(end(kind.to, ch == 0   ? m.red
                                                                 : ch == 1 ? m.green
                                                                           : m.blue) -
                                                    a[ch]) /
                                extent;
                const double* __restrict d = distance.data();
                Rgb16* __restrict out = c.data();
                for (std::size_t k = 0; k < distance.size(); ++k) {
                    const auto run = [&](int ch) {
                        return d[k] == 0 ? wrap16(a[ch])
                                         : roundInRange<std::int16_t>(a[ch] + slope[ch] * d[k]);
                    };
                    out[k] = {run(0), run(1), run(2)};
                }
            }};
}

CellRule maskRule(const CellMask& mask, int width, int height) {
    return {
        classify(width, height,
                 [&](int i, int j) { return mask.paints(i, j) ? std::uint16_t{0} : LeaveCell; }),
        [](Rgb16 m, std::span<Rgb16> c) { c[0] = m; }};
}

CellRule randomRule(std::uint8_t type, int width, int height) {
    if (type == 1) {
        return {classify(width, height, [](int, int j) { return static_cast<std::uint16_t>(j); }),
                [width](Rgb16 m, std::span<Rgb16> c) {
                    for (int j = 0; j < width; ++j)
                        c[j] = shifted(m, 3 * width - 3 * j);
                }};
    }
    if (type == 2 || type == 3) {
        const int frame = type == 2 ? 255 : 0;
        return {classify(width, height,
                         [&](int i, int j) {
                             const bool onFrame =
                                 i == 0 || j == 0 || i == height - 1 || j == width - 1;
                             return static_cast<std::uint16_t>(onFrame ? 0 : 1);
                         }),
                [frame](Rgb16 m, std::span<Rgb16> c) {
                    c[0] = grey(frame);
                    c[1] = m;
                }};
    }
    return normalRule(0, width, height);
}

CellRule shadingRule(std::vector<CellLight> relief, int size, int reflection, int ambient) {
    CellClasses classes = classify(
        size, size, [size](int i, int j) { return static_cast<std::uint16_t>(i * size + j); });
    // Diffuse and specular lie within 0..1, so a channel stays within the sum
    // of the magnitudes; where that fits 16 bits the rounding needs no check
    // and the loop vectorises.
    const bool fits = 255 + std::abs(reflection) + std::abs(ambient) < 32767;
    return {std::move(classes),
            [relief = std::move(relief), reflection, ambient, fits](Rgb16 m, std::span<Rgb16> c) {
                if (!fits) {
                    for (std::size_t k = 0; k < relief.size(); ++k)
                        c[k] = {shadeChannel(m.red, relief[k], reflection, ambient),
                                shadeChannel(m.green, relief[k], reflection, ambient),
                                shadeChannel(m.blue, relief[k], reflection, ambient)};
                    return;
                }
                const CellLight* __restrict light = relief.data();
                Rgb16* __restrict out = c.data();
                const double red = m.red, green = m.green, blue = m.blue;
                for (std::size_t k = 0; k < relief.size(); ++k) {
                    // In shadeChannel's order: c d + A s, then the ambient.
                    const double highlight = reflection * light[k].specular;
                    const double d = light[k].diffuse;
                    out[k] = {roundInRange<std::int16_t>(red * d + highlight + ambient),
                              roundInRange<std::int16_t>(green * d + highlight + ambient),
                              roundInRange<std::int16_t>(blue * d + highlight + ambient)};
                }
            }};
}

} // namespace lumiran::mosaic

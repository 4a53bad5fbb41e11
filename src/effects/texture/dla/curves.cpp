// Recursive curves as rewriting rules walked by a turtle: each symbol of
// the rule a drawing step, a turn or a placeholder.
#include "effects/texture/dla/class_dla.h"
#include "engine/drawing/drawing.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <string>
#include <string_view>
#include <vector>

namespace lumiran {
namespace {

struct CurveRules {
    std::string_view axiom;
    std::string_view a;     // what 'A' becomes
    std::string_view b;     // what 'B' becomes
    std::string_view f;     // what 'F' becomes ("" keeps it)
    double turn;            // degrees
    std::string_view drawn; // symbols that step forward drawing
    int deepest;
};

// 'A', 'B' and 'F' rewrite; '+' and '-' turn.
constexpr std::array<CurveRules, 6> Families{{
    {"A", "+BF-AFA-FB+", "-AF+BFB+FA-", "", 90, "F", 9},
    {"A", "AFBFA+F+BFAFB-F-AFBFA", "BFAFB-F-AFBFA+F+BFAFB", "", 90, "F", 6},
    {"A", "B-A-B", "A+B+A", "", 60, "AB", 10},
    {"F--F--F", "", "", "F+F--F+F", 60, "F", 7},
    {"FA", "A+BF+", "-FA-B", "", 90, "F", 16},
    {"A", "A-B--B+A++AA+B-", "+A-BB--B-A++A+B", "", 60, "AB", 6},
}};

std::string expand(const CurveRules& rules, int depth) {
    std::string text(rules.axiom);
    for (int d = 0; d < depth; ++d) {
        std::string next;
        for (const char c : text) {
            if (c == 'A' && !rules.a.empty())
                next += rules.a;
            else if (c == 'B' && !rules.b.empty())
                next += rules.b;
            else if (c == 'F' && !rules.f.empty())
                next += rules.f;
            else
                next += c;
        }
        text = std::move(next);
    }
    return text;
}

struct Point {
    double x = 0;
    double y = 0;
};

} // namespace

void Class_DLA::Draw_CurveStart(Surface& picture, std::int16_t depth, std::uint8_t family,
                                std::int16_t left, std::int16_t top, std::int16_t right,
                                std::int16_t bottom, std::int16_t red, std::int16_t green,
                                std::int16_t blue, std::int16_t thickness) {
    guarded([&] {
        if (family >= Families.size()) return;
        const CurveRules& rules = Families[family];
        const std::string path = expand(rules, std::clamp<int>(depth, 0, rules.deepest));
        // The turtle's walk in unit steps.
        std::vector<Point> points{{0, 0}};
        double heading = 0;
        constexpr double Radian = 3.14159 / 180;
        for (const char c : path) {
            if (c == '+')
                heading += rules.turn;
            else if (c == '-')
                heading -= rules.turn;
            else if (rules.drawn.find(c) != std::string_view::npos) {
                const Point& p = points.back();
                points.push_back(
                    {p.x + std::cos(heading * Radian), p.y + std::sin(heading * Radian)});
            }
        }
        double minX = 0, maxX = 0, minY = 0, maxY = 0;
        for (const Point& p : points) {
            minX = std::min(minX, p.x);
            maxX = std::max(maxX, p.x);
            minY = std::min(minY, p.y);
            maxY = std::max(maxY, p.y);
        }
        // The unit: the larger side over the curve's extent in steps,
        // rounded, so a curve may overhang the rectangle by up to half a
        // unit a step; the clip cuts the overhang.
        const int larger = std::max(right - left, bottom - top);
        const double extent = std::max({maxX - minX, maxY - minY, 1.0});
        const double u = std::max(1, roundTo<std::int32_t>(larger / extent));
        const double offsetX = left + ((right - left) - (maxX - minX) * u) / 2 - minX * u;
        const double offsetY = top + ((bottom - top) - (maxY - minY) * u) / 2 - minY * u;

        Canvas canvas(picture);
        canvas.DrawWidth = thickness;
        canvas.setClip(left, top, right, bottom);
        const ColourRef colour = RGB(red, green, blue);
        SetProgressRange(0, 100);
        const std::size_t segments = points.size() - 1;
        int shown = 0;
        for (std::size_t i = 0; i < segments; ++i) {
            const auto x = [&](const Point& p) {
                return static_cast<int>(std::lround(offsetX + p.x * u));
            };
            const auto y = [&](const Point& p) {
                return static_cast<int>(std::lround(offsetY + p.y * u));
            };
            canvas.Line(x(points[i]), y(points[i]), x(points[i + 1]), y(points[i + 1]), colour);
            while (shown < 100 && (i + 1) * 100 >= (shown + 1) * segments) {
                ++shown;
                if (!finishRow()) return;
            }
        }
    });
}

} // namespace lumiran

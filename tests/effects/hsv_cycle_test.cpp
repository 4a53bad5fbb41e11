// HSV Cycle against its rule worked out pixel by pixel with the scalar
// model: the row loop spreads terms by distance from the centre to the
// columns on both sides and skips the arc tangent when it cannot matter.
#include "color_op_fixture.h"
#include "engine/colour_models.h"
#include "engine/numeric.h"

#include <cmath>

namespace lumiran::testing {
namespace {

struct CycleCase {
    int hue, saturation, intensity, xPercent, yPercent;
    ProcessRect rect; // left, top, right, bottom
};

// One pixel as the rule gives it, the angle's arc tangent always taken.
Colour cycleByRule(const CycleCase& c, int x, int y, Pixel source) {
    const auto centre = [](int low, int high, int percent) {
        return roundTo<std::int16_t>(wrap16(high - low) / 100.0 * percent + low);
    };
    const int cx = centre(c.rect.left, c.rect.right, c.xPercent);
    const int cy = centre(c.rect.top, c.rect.bottom, c.yPercent);
    const double maxAngle =
        std::sqrt(static_cast<double>(cx) * cx + static_cast<double>(cy) * cy) / 180 * 3.1415;
    const double dx = cx - x, dy = cy - y;
    const double angle = std::sqrt(dx * dx + dy * dy) / 180 * 3.1415;
    const double a = std::atan(angle);
    double h = c.hue * angle / maxAngle;
    if (h > 360) h -= 360;
    const int r = std::max<int>(redOf(source), 1), g = std::max<int>(greenOf(source), 1),
              b = std::max<int>(blueOf(source), 1);
    const int mx = std::max({r, g, b}), mn = std::min({r, g, b});
    const double s = static_cast<double>(mx - mn) / mx;
    const int value = std::min<int>(roundTo<std::int16_t>(std::abs(2 * c.intensity * a + mx)), 255);
    const double sat = std::min(std::abs(c.saturation / 255.0 * 3 * a + s), 1.0);
    const Rgb16 v = clampResult(HsvToRgb(h, sat, value / 255.0));
    return {v.red, v.green, v.blue};
}

using HsvCycle = ColorOpFixture;
using C = Class_ColorOp;

TEST_F(HsvCycle, EveryPixelFollowsTheRuleWhereverTheCentreLies) {
    const int width = 37, height = 23;
    const Surface source = makeVariedPicture(width, height);
    const ProcessRect whole{0, 0, width, height};
    const CycleCase cases[] = {
        {360, 0, 0, 50, 50, whole},           // the defaults: no arc tangent
        {360, 120, 0, 50, 50, whole},         // saturation rises alone
        {200, 0, 90, 30, 70, whole},          // intensity rises alone
        {90, 255, 255, 1, 1, whole},          // centre at the top left corner
        {360, 40, 10, 100, 100, whole},       // at the bottom right, past the last column
        {300, 60, 5, 20, 80, {5, 3, 29, 19}}, // a rectangle inside the picture
        {120, 0, 0, 90, 10, {30, 2, 37, 21}}, // a narrow one at the right edge
    };
    for (const CycleCase& c : cases) {
        const Surface out = run(source, [&](C& e, const ProcessRect&) {
            e.HSVCycle(c.rect.left, c.rect.top, c.rect.right, c.rect.bottom, 0, c.hue, c.saturation,
                       c.intensity, c.xPercent, c.yPercent);
        });
        ASSERT_TRUE(context.failures.empty()) << c.hue << " " << c.xPercent;
        for (int y = 0; y < height; ++y) {
            for (int x = 0; x < width; ++x) {
                const bool inside =
                    x >= c.rect.left && x < c.rect.right && y >= c.rect.top && y < c.rect.bottom;
                const Colour expected =
                    inside ? cycleByRule(c, x, y, source.at(x, y)) : colourOf(source.at(x, y));
                ASSERT_EQ(colourOf(out.at(x, y)), expected)
                    << "case hue " << c.hue << " centre " << c.xPercent << "%," << c.yPercent
                    << "% at " << x << "," << y;
            }
        }
    }
}

} // namespace
} // namespace lumiran::testing

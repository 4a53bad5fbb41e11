// Crank's blending kinds against a plain reference of their rule, on a
// rectangle inside the picture and on the whole, with TransBits fetched as
// a run with a copy does and left for the call to start from the source.
#include "geometry_fixture.h"

#include <cmath>

namespace lumiran::testing {
namespace {

int walk(int i, int step) {
    if (step <= 0) return 0;
    const int k = i % (2 * step);
    return k <= step ? k : 2 * step - k;
}

// Each channel (2 sample - own) / 2 rounded half to even and clipped; the
// sample beyond the rectangle (or the picture) is the pixel itself.
Surface reference(const Surface& picture, int kind, int step, const ProcessRect& rect) {
    Surface out = picture;
    const int endX = std::min<int>(rect.right, picture.width());
    const int endY = std::min<int>(rect.bottom, picture.height());
    for (int y = std::max<int>(rect.top, 0); y < endY; ++y) {
        for (int x = std::max<int>(rect.left, 0); x < endX; ++x) {
            const int sx = kind != 4 ? x + walk(y - rect.top, step) : x;
            const int sy = kind != 3 ? y + walk(x - rect.left, step) : y;
            const bool inside = sx < endX && sy < endY;
            const Pixel own = picture.at(x, y), s = inside ? picture.at(sx, sy) : own;
            const auto mix = [](int sample, int o) {
                return std::clamp(static_cast<int>(std::nearbyint((2.0 * sample - o) / 2)), 0, 255);
            };
            out.at(x, y) = withColour(own, mix(redOf(s), redOf(own)), mix(greenOf(s), greenOf(own)),
                                      mix(blueOf(s), blueOf(own)));
        }
    }
    return out;
}

struct CrankBlend : GeometryFixture {
    // TransBits left unfetched: the call starts it from the lent source.
    Surface onOwnTrans(Surface picture, const ProcessRect& rect, const Call& call) {
        Class_Geometry effect(context);
        Surface result;
        {
            const Class_Geometry::SourceLoan loan(effect, picture);
            call(effect, rect);
        }
        effect.ImageSetDiBitsTrans(result);
        return result;
    }
};

TEST_F(CrankBlend, MatchesTheRuleWithTransFetchedOrNot) {
    // Channels spread over the whole range, with odd and even neighbours
    // and a spare byte that must come through.
    const Surface picture = makePicture(301, 37, [](int x, int y) {
        return makePixel((x * 37 + y * 11) % 256, (x * 5 + y * 91) % 256, (x ^ y) * 7 % 256,
                         (x + y) % 256);
    });
    const ProcessRect whole = ProcessRect::wholePicture(301, 37);
    const ProcessRect inner{3, 2, 290, 31};
    const ProcessRect beyond{-5, -4, 400, 60};
    for (const int kind : {3, 4, 5}) {
        for (const int step : {0, 2, 5, 40}) {
            for (const ProcessRect& rect : {whole, inner, beyond}) {
                const Call call = [=](Class_Geometry& e, const ProcessRect& r) {
                    e.Transform_Crank(static_cast<std::uint8_t>(kind),
                                      static_cast<std::int16_t>(step), r.left, r.top, r.right,
                                      r.bottom, 0);
                };
                const int s = step == 1 ? 2 : step;
                // Rows and columns before the rectangle's are outside the walk.
                const Surface expected = reference(picture, kind, s, rect);
                EXPECT_EQ(warp(picture, rect, call), expected)
                    << kind << " " << step << " " << rect.left;
                EXPECT_EQ(onOwnTrans(picture, rect, call), expected)
                    << kind << " " << step << " " << rect.left;
            }
        }
    }
}

} // namespace
} // namespace lumiran::testing

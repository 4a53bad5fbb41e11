// The ripple coordinates against the formula worked with the library's
// functions pixel by pixel: the effect computes its trigonometry on vector
// units and redoes only the pixels whose rounded place could differ, so
// every pixel must still land where the library puts it.
#include "composition_fixture.h"
#include "engine/numeric.h"
#include "test_support.h"

#include <cmath>

namespace lumiran::testing {
namespace {

using C = Class_Composition;

// The picture the formula gives, in TransBits over the whole document.
Surface rippleByFormula(const Surface& document, const Surface& kept, int type, int direction,
                        int S) {
    const int lastX = std::min(document.width(), kept.width()) - 1;
    const int lastY = std::min(document.height(), kept.height()) - 1;
    const int cx = roundInRange<int>(lastX / 2.0), cy = roundInRange<int>(lastY / 2.0);
    const double k = 1.0 - S / 100.0;
    Surface result = document;
    for (int y = 0; y <= lastY; ++y) {
        for (int x = 0; x <= lastX; ++x) {
            const Pixel p = kept.at(x, y);
            const int Y = roundInRange<int>(
                (0.587 * greenOf(p) + 0.299 * redOf(p) + 0.114 * blueOf(p)) / 26.0);
            const double A = wrap16(Y * S);
            const double dx = x - cx, dy = y - cy;
            const double kt = k * std::sqrt(0.6 * dx * dx + dy * dy);
            double movedX = 0, movedY = 0;
            switch (type) {
            case 0:
                movedX = x + A / 10 * std::atan(kt), movedY = y + A / 16 * std::atan(kt);
                break;
            case 1:
                movedX = x + A / 10 * std::sin(kt), movedY = y + A / 16 * std::sin(kt);
                break;
            case 2:
                movedX = x + A / 10 * std::cos(kt), movedY = y + A / 16 * std::cos(kt);
                break;
            case 3:
                movedX = x + A / 10 * std::tan(kt), movedY = y + A / 16 * std::tan(kt);
                break;
            case 4:
                movedX = x + A / 10 * std::sin(kt), movedY = y + A / 16 * std::cos(kt);
                break;
            case 5:
                movedX = x + A / 10 * (std::sin(kt) + std::cos(kt));
                movedY = y + A / 16 * (std::sin(kt) + std::cos(kt));
                break;
            case 6:
                movedX = x + Y * std::sin(static_cast<double>(y) / (S + 1));
                movedY = y + Y * std::sin(static_cast<double>(x) / (S + 1));
                break;
            case 7:
                movedX = x + Y * std::cos(static_cast<double>(y) / (S + 1));
                movedY = y + Y * std::cos(static_cast<double>(x) / (S + 1));
                break;
            default:
                movedX = x + Y * std::tan(static_cast<double>(y) / (S + 1));
                movedY = y + Y * std::tan(static_cast<double>(x) / (S + 1));
                break;
            }
            if (movedX < 0 || movedX > lastX) movedX = x;
            if (movedY < 0 || movedY > lastY) movedY = y;
            const int sx = direction == 1 ? x : roundInRange<int>(movedX);
            const int sy = direction == 2 ? y : roundInRange<int>(movedY);
            result.at(x, y) = document.at(sx, sy);
        }
    }
    return result;
}

struct RippleCase {
    int documentWidth, documentHeight, keptWidth, keptHeight;
};

TEST(CompositionRipple, EveryPixelLandsWhereTheLibraryPutsIt) {
    // Shared areas wider, taller and square; the kept image reaches every
    // level 0..10 in a pattern the ripple cannot smooth over, or is grey,
    // where every 26th value (13, 39, ...) lies halfway between two levels.
    const RippleCase sizes[] = {
        {61, 47, 57, 50}, {300, 9, 310, 12}, {13, 160, 15, 150}, {257, 203, 257, 203}};
    const int strengths[] = {44, -60, 5, 15, 157, 1000, -250, 0};
    for (const RippleCase& size : sizes) {
        const Surface document = makeVariedPicture(size.documentWidth, size.documentHeight);
        const bool grey = size.documentWidth == size.keptWidth;
        const Surface kept = makePicture(size.keptWidth, size.keptHeight, [grey](int x, int y) {
            const int v = (x * 29 + y * 13 + x * y) % 256;
            return grey ? makePixel(v, v, v) : makePixel(v, (v * 7 + y) % 256, 255 - v);
        });
        for (const int S : strengths) {
            for (int type = 0; type <= 8; ++type) {
                for (int direction = 0; direction <= 2; ++direction) {
                    CancelFlag cancel{0};
                    RandomGenerator random;
                    RunContext context(cancel, random);
                    Surface keptCopy = kept;
                    context.composeImage = &keptCopy;
                    C effect(context);
                    effect.ImageGetDiBits(document);
                    effect.ImageGetDiBitsTrans(document);
                    effect.Composite_Coordinate(static_cast<std::uint8_t>(type),
                                                static_cast<std::uint8_t>(direction),
                                                static_cast<std::int16_t>(S), 0, 0,
                                                static_cast<std::int16_t>(size.documentWidth),
                                                static_cast<std::int16_t>(size.documentHeight));
                    Surface result;
                    effect.ImageSetDiBitsTrans(result);
                    ASSERT_EQ(result, rippleByFormula(document, kept, type, direction, S))
                        << size.documentWidth << "x" << size.documentHeight << " type " << type
                        << " direction " << direction << " S " << S;
                }
            }
        }
    }
}

} // namespace
} // namespace lumiran::testing

// The block-of-columns drawing of the shape transforms against the
// one-column StretchBlt calls it stands for.
#include "effects/geometry/transform/column_copies.h"
#include "engine/drawing/drawing.h"
#include "test_support.h"

#include <gtest/gtest.h>
#include <random>
#include <vector>

namespace lumiran::testing {
namespace {

Surface byStretchBlt(const Surface& source, Surface target, const std::vector<ColumnCopy>& copies) {
    for (const ColumnCopy& c : copies)
        StretchBlt(target, c.column, c.top, 1, c.height, source, c.column, c.sourceTop, 1,
                   c.sourceHeight, SRCCOPY);
    return target;
}

Surface byBlocks(const Surface& source, Surface target, const std::vector<ColumnCopy>& copies) {
    drawColumnCopies(target, source, copies);
    return target;
}

// Copies that shrink, stretch, shift and overlap within a column, reach
// beyond either picture on any side (the source picture is smaller than
// the target) and, in some lists, count backwards.
TEST(ColumnCopies, DrawAsTheOneColumnStretchesInTheirOrder) {
    const Surface source = makeVariedPicture(23, 17);
    const Surface target = makePicture(29, 31, [](int x, int y) { return makePixel(y, x, 200); });
    std::mt19937 random(15);
    const auto between = [&](int low, int high) {
        return std::uniform_int_distribution<int>(low, high)(random);
    };
    for (int list = 0; list < 300; ++list) {
        const bool backwards = list % 10 == 9;
        std::vector<ColumnCopy> copies;
        const int count = between(0, 40);
        for (int k = 0; k < count; ++k) {
            const int height = between(backwards ? -40 : 0, 45);
            copies.push_back({between(-2, 31), between(-40, 35), height, between(-20, 20),
                              between(backwards ? -30 : 0, 30)});
        }
        ASSERT_EQ(byBlocks(source, target, copies), byStretchBlt(source, target, copies))
            << "list " << list;
    }
}

} // namespace
} // namespace lumiran::testing

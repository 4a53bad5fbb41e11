// The tile walls' rows of levels: layers keep each pixel's paints in their
// order, and the whole-row paint gives the joint rule's colours.
#include "effects/texture/pattern/tile_joints.h"

#include <gtest/gtest.h>
#include <map>
#include <vector>

namespace lumiran::pattern {
namespace {

// Each pixel's levels in the order they are painted.
using Sequences = std::map<int, std::vector<int>>;

Sequences inOrder(const std::vector<LevelPaint>& paints) {
    Sequences out;
    for (const LevelPaint& p : paints)
        out[p.column].push_back(p.level);
    return out;
}

Sequences fromLayers(const LevelLayers& layers, int first, int end) {
    Sequences out;
    for (int t = 0; t < layers.layerCount(); ++t) {
        for (int x = first; x < end; ++x) {
            const std::uint8_t level = layers.layer(t)[x - first];
            if (level == NoLevel) continue;
            // A layer holds a pixel's next paint only after all its earlier ones.
            EXPECT_EQ(out[x].size(), static_cast<std::size_t>(t)) << "column " << x;
            out[x].push_back(level);
        }
    }
    for (const LevelPaint& p : layers.rest())
        out[p.column].push_back(p.level);
    return out;
}

TEST(LevelLayers, KeepEveryPixelsPaintsInTheirOrder) {
    const int first = 3, end = 43; // 40 columns
    std::vector<LevelPaint> full, joints, folded;
    for (int x = first; x < end; ++x)
        full.push_back({x, static_cast<std::uint8_t>(x % 3)});
    // Joints every fourth column painted by both tiles beside them.
    joints = full;
    for (int x = first; x < end; x += 4)
        joints.push_back({x, 1});
    // A fold: the last column painted again and again, first and last apart.
    folded = joints;
    for (int n = 0; n < 30; ++n)
        folded.push_back({end - 1, static_cast<std::uint8_t>(n % 2)});
    folded.push_back({first, 2});
    const std::vector<LevelPaint> cases[] = {
        {}, full, joints, folded, {{end - 1, 0}, {end - 1, 1}}};
    for (const auto& paints : cases) {
        const LevelLayers layers(paints, first, end);
        EXPECT_EQ(fromLayers(layers, first, end), inOrder(paints)) << paints.size() << " paints";
    }
    // A pass over the row is taken for a layer of many pixels, not for a few.
    EXPECT_EQ(LevelLayers(full, first, end).layerCount(), 1);
    EXPECT_EQ(LevelLayers(joints, first, end).layerCount(), 2);
    EXPECT_EQ(LevelLayers(folded, first, end).layerCount(), 2);
    EXPECT_EQ(LevelLayers(folded, first, end).rest().size(), 30u);
}

TEST(LevelLayers, TheRowPaintIsTheJointRuleClamped) {
    // Every channel value at every level, spare bytes their own.
    for (std::uint8_t type = 0; type < 6; ++type) {
        const JointRule rule(type);
        for (const int level : {0, 1, 2, 3, int{NoLevel}}) {
            std::vector<Pixel> row;
            for (int v = 0; v < 256; ++v)
                row.push_back(makePixel(v, 255 - v, (v * 7) & 0xFF, v ^ 0x5A));
            const std::vector<Pixel> before = row;
            const std::vector<std::uint8_t> levels(row.size(), static_cast<std::uint8_t>(level));
            paintLevelsClamped(type, row.data(), levels.data(), static_cast<int>(row.size()));
            for (std::size_t i = 0; i < row.size(); ++i) {
                Pixel expected = before[i];
                if (level <= rule.deepest()) {
                    const int r = redOf(expected), g = greenOf(expected), b = blueOf(expected);
                    const Rgb16 v = clampResult(rule.at(level, r, g, b));
                    expected = withColour(expected, v.red, v.green, v.blue);
                }
                ASSERT_EQ(row[i], expected)
                    << "type " << int(type) << " level " << level << " value " << i;
            }
        }
    }
}

} // namespace
} // namespace lumiran::pattern

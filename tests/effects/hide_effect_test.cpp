// Class_HideEffect: the shading rule's corner cases, the channels the
// selector lets change, blocks shaded only inside their sphere, and the ink
// discs' fixed lift.
#include "effects/texture/hide_effect/class_hide_effect.h"
#include "effects/texture/hide_effect/sphere_light.h"
#include "texture_fixture.h"

#include <set>

namespace lumiran::testing {
namespace {

using E = Class_HideEffect;

struct HideEffectTest : TextureFixture {
    // Ball 1 over a uniform grey with the light and ambient given.
    Surface ball(int light, double ambient, std::uint8_t background = 0, double percent = 50) {
        return run<E>(
            uniformPicture(20, 20, 100, 100, 100),
            [&](E& e, const ProcessRect& r) {
                e.Crystal_Ball(percent, r.left, r.top, r.right, r.bottom, 0, 0,
                               static_cast<std::int16_t>(light), 255, 255, 255, ambient, 0,
                               background);
            },
            true);
    }
};

TEST_F(HideEffectTest, WithoutALightOnlyTheAmbientTermShows) {
    // Radius 10: one sphere around (10, 10).
    const Surface lit = ball(0, 42, 2);
    EXPECT_EQ(colourAt(lit, 10, 10), (Colour{42, 42, 42}));
    EXPECT_EQ(colourAt(lit, 4, 12), (Colour{42, 42, 42}));
    EXPECT_EQ(colourAt(lit, 0, 0), (Colour{255, 255, 255})); // the white background
    EXPECT_TRUE(context.failures.empty());
}

TEST_F(HideEffectTest, LightFromTheViewerGivesSourcePlusHighlightAtTheTop) {
    const Surface lit = ball(10, 0);
    // d = 1 and s = 1 at the top: 100 + 255, clamped.
    EXPECT_EQ(colourAt(lit, 10, 10), (Colour{255, 255, 255}));
    // Near the rim the diffuse term fades the source.
    EXPECT_LT(colourAt(lit, 1, 10)[0], 60);
    EXPECT_EQ(colourAt(lit, 0, 0), (Colour{100, 100, 100})); // the picture stays
}

TEST_F(HideEffectTest, NegativeAmbientDarkensAndClampsAtZero) {
    const Surface lit = ball(0, -200, 0);
    EXPECT_EQ(colourAt(lit, 10, 10), (Colour{0, 0, 0}));
}

TEST_F(HideEffectTest, ARadiusBelowOnePixelIsRefusedWithAnError) {
    const Surface same = ball(10, 0, 0, 1); // 1 % of 20 rounds to 0
    EXPECT_EQ(context.failures.size(), 1u);
    EXPECT_EQ(colourAt(same, 10, 10), (Colour{100, 100, 100}));
}

TEST_F(HideEffectTest, TheSelectorNamesTheChannelsSpecularChanges) {
    struct Case {
        std::uint8_t selector;
        std::array<bool, 3> changes;
    };
    for (const Case& c :
         {Case{0, {true, true, true}}, Case{1, {true, false, false}}, Case{3, {false, false, true}},
          Case{5, {false, true, true}}, Case{6, {true, false, true}}}) {
        const Surface lit = run<E>(
            uniformPicture(21, 21, 60, 60, 60),
            [&](E& e, const ProcessRect& r) {
                e.Specular(50, r.left, r.top, r.right, r.bottom, 0, 0, 10, 255, 255, 255, 32, 1,
                           c.selector);
            },
            true);
        const Colour centre = colourAt(lit, 10, 10);
        for (int i = 0; i < 3; ++i) {
            EXPECT_EQ(centre[i] != 60, c.changes[i]) << int(c.selector) << " channel " << i;
        }
        EXPECT_EQ(colourAt(lit, 0, 0), (Colour{60, 60, 60})); // outside the sphere
    }
}

TEST_F(HideEffectTest, ChocoBallsShadeTheBlockMeanInsideTheirSphereOnly) {
    // Two colours in each 8 x 8 block: the mean lights the sphere.
    Surface picture(16, 16);
    for (int y = 0; y < 16; ++y) {
        for (int x = 0; x < 16; ++x)
            picture.at(x, y) = makePixel(x % 2 ? 40 : 80, 0, 0);
    }
    const Surface balls = run<E>(
        picture,
        [](E& e, const ProcessRect& r) {
            e.Mosaic_Shading(8, r.left, r.top, r.right, r.bottom, 0, 0, 0, 10, 1, 0);
        },
        true);
    // Near the middle of a block the diffuse term is about 1: the mean, 60.
    EXPECT_NEAR(colourAt(balls, 3, 3)[0], 60, 3);
    EXPECT_NEAR(colourAt(balls, 12, 11)[0], 60, 3);
    // A block's corner lies outside its sphere and keeps the picture.
    EXPECT_EQ(balls.at(0, 0), picture.at(0, 0));
    EXPECT_EQ(balls.at(15, 8), picture.at(15, 8));
}

TEST_F(HideEffectTest, FoldedCellsOfAnEdgeBlockArePaintedByTheirUnfoldedPlace) {
    // 11 x 11 in blocks of 8: the second block in each direction has three
    // real cells, 0 to 2, and cells 3 to 7 fold onto the last one. On a
    // uniform picture every block has the same mean, so the folded pixel
    // shows the last painting cell of the first block.
    struct Case {
        const char* name;
        void (*call)(E&, const ProcessRect&);
        int lastCell;     // the last cell of a block row or column that paints
        int cornerColumn; // where that row of cells last paints
    };
    const Case cases[] = {
        {"Choco Ball",
         [](E& e, const ProcessRect& r) {
             e.Mosaic_Shading(8, r.left, r.top, r.right, r.bottom, 0, 0, 0, 10, 1, 0);
         },
         7, 5},
        {"Glowing Pixel",
         [](E& e, const ProcessRect& r) {
             e.Mosaic_Glowing(8, 8, r.left, r.top, r.right, r.bottom, 0, 0);
         },
         6, 6},
    };
    for (const Case& c : cases) {
        const Surface painted = run<E>(uniformPicture(11, 11, 120, 120, 120), c.call, true);
        EXPECT_EQ(painted.at(10, 3), painted.at(c.lastCell, 3)) << c.name;
        EXPECT_EQ(painted.at(3, 10), painted.at(3, c.lastCell)) << c.name;
        EXPECT_EQ(painted.at(10, 10), painted.at(c.cornerColumn, c.lastCell)) << c.name;
        EXPECT_NE(painted.at(10, 3), painted.at(2, 3)) << c.name; // not its own cell 2
    }
}

// The random blocks are drawn and counted before they are painted, in
// bands of rows on several threads: a cancel after the first row of blocks
// must still leave that row's draws and blocks only, and the threads must
// not change the picture.
TEST_F(HideEffectTest, ChocoBallRandomKeepsTheRowsOfBlocksBeforeACancel) {
    struct Progress : ProgressSink {
        CancelFlag& flag;
        int steps = 0;
        explicit Progress(CancelFlag& f) : flag(f) {}
        void showPercent(int) override {
            ++steps;
            flag = 1;
        }
    };
    // 40 x 100 in blocks of 8: 13 rows of 5 blocks, over four bands of rows.
    const Surface source = makeVariedPicture(40, 100);
    auto choco = [](E& e, const ProcessRect& r) {
        e.Mosaic_ShadingRandom(8, r.left, r.top, r.right, r.bottom, 0, 0, 0, 10, 255, 32);
    };
    Surface whole[2];
    for (const int threads : {1, 3}) {
        context.threading = {.threads = threads, .bandPixels = 1};
        random = RandomGenerator();
        cancel = 0;
        whole[threads / 2] = run<E>(source, choco, true);
        EXPECT_EQ(random.state(), RandomGenerator().ahead(13 * 5 * 2).state());
        // Left unfetched, TransBits starts as the source all the same.
        random = RandomGenerator();
        {
            E effect(context);
            effect.ImageGetDiBits(source);
            choco(effect, ProcessRect::wholePicture(40, 100));
            Surface unfetched;
            effect.ImageSetDiBitsTrans(unfetched);
            EXPECT_EQ(unfetched, whole[threads / 2]) << threads;
        }

        random = RandomGenerator();
        Progress progress(cancel);
        context.progress = &progress;
        const Surface cut = run<E>(source, choco, true);
        context.progress = nullptr;
        EXPECT_EQ(progress.steps, 1);
        EXPECT_EQ(random.state(), RandomGenerator().ahead(5 * 2).state()) << threads;
        int changed = 0;
        for (int y = 0; y < source.height(); ++y) {
            for (int x = 0; x < source.width(); ++x)
                changed += cut.at(x, y) != source.at(x, y) ? 1 : 0;
        }
        EXPECT_GT(changed, 0) << threads;
        EXPECT_LE(changed, 5 * 8 * 8) << threads;
    }
    EXPECT_EQ(whole[1], whole[0]);
}

TEST_F(HideEffectTest, InkDiscsLiftThePictureByHalfTheBlock) {
    for (const auto& [type, lift] : {std::pair{0, 10}, std::pair{1, 15}}) {
        const Surface noisy = run<E>(uniformPicture(60, 40, 100, 100, 100),
                                     [type = type](E& e, const ProcessRect& r) {
                                         e.MonochromeNoise(20, 20, r.left, r.top, r.right, r.bottom,
                                                           static_cast<std::uint8_t>(type));
                                     });
        std::set<int> levels;
        for (const Pixel p : noisy.pixels())
            levels.insert(redOf(p));
        // Discs may overlap: every level is 100 plus a whole number of lifts,
        // or the clamp.
        EXPECT_GT(levels.size(), 1u);
        for (const int level : levels) {
            if (level != 255) {
                EXPECT_EQ((level - 100) % lift, 0) << level;
            }
        }
    }
}

TEST_F(HideEffectTest, SketchStampsOnlyDarken) {
    for (std::uint8_t type = 0; type < 10; ++type) {
        random = RandomGenerator();
        const Surface picture = makeVariedPicture(40, 30);
        const Surface sketched = run<E>(picture, [type](E& e, const ProcessRect& r) {
            e.Texture_Cloud(8, 8, r.left, r.top, r.right, r.bottom, type);
        });
        int darker = 0;
        for (int y = 0; y < 30; ++y) {
            for (int x = 0; x < 40; ++x) {
                const Colour before = colourAt(picture, x, y), after = colourAt(sketched, x, y);
                for (int i = 0; i < 3; ++i)
                    ASSERT_LE(after[i], before[i]) << int(type);
                darker += after != before;
            }
        }
        EXPECT_GT(darker, 0) << int(type);
    }
}

} // namespace
} // namespace lumiran::testing

// The merges with the kept image: the shared area, the rules where they
// can go wrong (bands, 16-bit squares, clamps), and the moves' limits.
#include "composition_fixture.h"
#include "test_support.h"

namespace lumiran::testing {
namespace {

using C = Class_Composition;

struct Composition : CompositionFixture {
    // One pixel of each picture through a per-pixel merge.
    Pixel one(Pixel document, Pixel keptPixel, const Call& call) {
        return merge(Surface(1, 1, document), Surface(1, 1, keptPixel), call).at(0, 0);
    }
};

using Merge = std::function<void(C&, const ProcessRect&)>;
struct NamedMerge {
    const char* name;
    Merge call;
};

const NamedMerge Merges[] = {
    {"Mean",
     [](C& e, const ProcessRect& r) { e.Composite_Mean(4, 0, r.left, r.top, r.right, r.bottom); }},
    {"Addition",
     [](C& e, const ProcessRect& r) {
         e.Composite_Addition(0, 0, r.left, r.top, r.right, r.bottom);
     }},
    {"Subtraction",
     [](C& e, const ProcessRect& r) {
         e.Composite_Subtraction(1, 0, r.left, r.top, r.right, r.bottom);
     }},
    {"Compare",
     [](C& e, const ProcessRect& r) {
         e.Composite_Morphological(2, 42, 200, r.left, r.top, r.right, r.bottom);
     }},
    {"Exchange",
     [](C& e, const ProcessRect& r) {
         e.Composite_Exchange(1, 256, -1, r.left, r.top, r.right, r.bottom);
     }},
    {"Embossing",
     [](C& e, const ProcessRect& r) {
         e.Composite_Embossing(0, 0, r.left, r.top, r.right, r.bottom, 128, 128, 128, 1);
     }},
    {"Hide",
     [](C& e, const ProcessRect& r) {
         e.Suteganography_Hide(2, r.left, r.top, r.right, r.bottom);
     }},
    {"Raster",
     [](C& e, const ProcessRect& r) {
         e.Composite_Raster(SRCINVERT, 0, r.left, r.top, r.right, r.bottom);
     }},
};

TEST_F(Composition, OnlyTheSharedTopLeftAreaChanges) {
    const Surface document = makeVariedPicture(9, 7);
    const Surface small =
        makePicture(4, 3, [](int x, int y) { return makePixel(250 - 40 * x, 200 - 60 * y, 255); });
    const Surface large = makePicture(
        12, 10, [](int x, int y) { return makePixel(x * 29 % 256, y * 71 % 256, 255); });
    for (const auto& [name, call] : Merges) {
        const Surface result = merge(document, small, call);
        int changedInside = 0;
        for (int y = 0; y < document.height(); ++y) {
            for (int x = 0; x < document.width(); ++x) {
                const bool inside = x < 4 && y < 3;
                if (!inside) {
                    EXPECT_EQ(result.at(x, y), document.at(x, y)) << name << " " << x << "," << y;
                }
                changedInside += inside && result.at(x, y) != document.at(x, y);
            }
        }
        EXPECT_GT(changedInside, 0) << name;
        // A larger kept image reaches every pixel; none at all changes nothing.
        EXPECT_NE(merge(document, large, call).at(8, 6), document.at(8, 6)) << name;
        const Surface none = merge(document, Surface(), call);
        EXPECT_TRUE(std::ranges::equal(none.pixels(), document.pixels())) << name;
    }
}

TEST_F(Composition, ProcessRectangleCutsTheSharedArea) {
    const Surface document(6, 6, makePixel(10, 10, 10));
    const Surface result =
        merge(document, Surface(4, 4, makePixel(110, 110, 110)),
              [](C& e, const ProcessRect&) { e.Composite_Addition(0, 0, 2, 1, 30, 30); });
    EXPECT_EQ(redOf(result.at(1, 1)), 10);
    EXPECT_EQ(redOf(result.at(2, 1)), 120);
    EXPECT_EQ(redOf(result.at(3, 3)), 120);
    EXPECT_EQ(redOf(result.at(4, 3)), 10);
}

struct ChannelCase {
    const char* what;
    Merge call;
    int document, kept, expected;
    bool redAlone = true; // the selector row 1 leaves green as it is
};

TEST_F(Composition, ChannelRules) {
    auto mean = [](int w) {
        return [w](C& e, const ProcessRect& r) {
            e.Composite_Mean(w, 1, r.left, r.top, r.right, r.bottom);
        };
    };
    auto add = [](int m) {
        return [m](C& e, const ProcessRect& r) {
            e.Composite_Addition(m, 1, r.left, r.top, r.right, r.bottom);
        };
    };
    auto sub = [](int m) {
        return [m](C& e, const ProcessRect& r) {
            e.Composite_Subtraction(m, 1, r.left, r.top, r.right, r.bottom);
        };
    };
    auto cmp = [](int m) {
        return [m](C& e, const ProcessRect& r) {
            e.Composite_Morphological(m, 42, 200, r.left, r.top, r.right, r.bottom);
        };
    };
    const ChannelCase cases[] = {
        {"40% of the kept image", mean(4), 100, 200, 140},
        {"mean rounds half to even", mean(5), 100, 101, 100},
        {"sum clamps", add(0), 200, 100, 255},
        {"square in 16 bits", add(1), 10, 20, 205},
        {"square wraps, then clamps", add(1), 0, 200, 255},
        {"absolute of a negative", add(1), 0, 100, 255},
        {"equal channels give white", add(2), 77, 77, 255},
        {"mean less a square", add(2), 100, 110, 100},
        {"plain difference clamps at 0", sub(0), 50, 80, 0},
        {"absolute difference", sub(1), 50, 80, 30},
        {"four times, clamped", sub(4), 0, 80, 255},
        {"product scaled", sub(5), 255, 128, 128},
        {"quotient", sub(6), 200, 60, 3},
        {"quotient by zero divides by 1", sub(6), 200, 0, 200},
        {"compare value stays", cmp(0), 42, 42, 42, false},
        {"and of coefficient minus value", cmp(0), 100, 150, 100 & 50, false},
        {"or", cmp(1), 100, 150, 100 | 50, false},
        {"xor", cmp(2), 100, 150, 100 ^ 50, false},
        {"eqv of positives is negative: 0", cmp(3), 100, 150, 0, false},
    };
    for (const ChannelCase& c : cases) {
        const Pixel result = one(makePixel(c.document, 9, 9), makePixel(c.kept, 33, 33), c.call);
        EXPECT_EQ(redOf(result), c.expected) << c.what;
        if (c.redAlone) {
            EXPECT_EQ(greenOf(result), 9) << c.what;
        }
    }
}

TEST_F(Composition, BrightnessRowMovesEveryChannelAlike) {
    const Pixel result =
        one(makePixel(100, 50, 20), makePixel(200, 200, 200), [](C& e, const ProcessRect& r) {
            e.Composite_Mean(5, 7, r.left, r.top, r.right, r.bottom);
        });
    // Brightness 62 of the document meets 200: the mean 131, so +69 on each.
    EXPECT_EQ(redOf(result) - 100, 69);
    EXPECT_EQ(greenOf(result) - 50, 69);
    EXPECT_EQ(blueOf(result) - 20, 69);
}

TEST_F(Composition, ExchangeBandExcludesBothLimits) {
    auto exchange = [](int type) {
        return [type](C& e, const ProcessRect& r) {
            e.Composite_Exchange(type, 192, 64, r.left, r.top, r.right, r.bottom);
        };
    };
    for (const auto& [grey, swapped] :
         {std::pair{64, false}, {65, true}, {191, true}, {192, false}}) {
        const Pixel swap = makePixel(1, 2, 3);
        EXPECT_EQ(one(makePixel(grey, grey, grey), swap, exchange(0)) == swap, swapped) << grey;
    }
    // Type 1 tests and swaps each channel by itself.
    EXPECT_EQ(one(makePixel(64, 100, 192), makePixel(1, 2, 3), exchange(1)), makePixel(64, 2, 192));
    // Same colour: the mean or the channel decides.
    auto same = [](int type) {
        return [type](C& e, const ProcessRect& r) {
            e.Composite_Exchange2(type, r.left, r.top, r.right, r.bottom, 7, 8, 9);
        };
    };
    EXPECT_EQ(one(makePixel(30, 60, 90), makePixel(90, 30, 60), same(0)), makePixel(7, 8, 9));
    EXPECT_EQ(one(makePixel(30, 60, 90), makePixel(30, 61, 90), same(1)), makePixel(7, 60, 9));
}

TEST_F(Composition, DiffuseMovesRightAndDownWithinTheSmallerPicture) {
    // Document column means 0, 30, 60...; the kept image black, so d is the mean.
    const Surface document = makePicture(8, 2, [](int x, int) { return makePixel(x, x, x); });
    const Surface black(5, 2, makePixel(0, 0, 0));
    kept = black;
    context.composeImage = &kept;
    C effect(context);
    effect.ImageGetDiBits(document);
    effect.ImageGetDiBitsTrans(document);
    effect.Composite_Diffuse(0, 1, 0, 0, 8, 2);
    Surface result;
    effect.ImageSetDiBitsTrans(result);
    EXPECT_EQ(redOf(result.at(1, 0)), 2); // 1 + 1
    EXPECT_EQ(redOf(result.at(2, 0)), 4); // 2 + 2
    EXPECT_EQ(redOf(result.at(3, 0)), 3); // 6 passes the last shared column 4: stays
    EXPECT_EQ(redOf(result.at(6, 0)), 6); // outside the shared area: untouched
}

// The merges that move pixels write their own row of the result only, so
// rows on several threads give the one-thread picture; the ripple's own
// progress still rises to the same end.
TEST(CompositionThreads, MovingMergesGiveTheOneThreadPictureOnSeveral) {
    struct Percents : ProgressSink {
        std::vector<int> seen;
        void showPercent(int percent) override { seen.push_back(percent); }
    };
    const Surface document = makeVariedPicture(40, 30);
    const Surface keptImage = makePicture(
        35, 33, [](int x, int y) { return makePixel(x * 37 % 256, y * 53 % 256, (x + y) * 11); });
    const std::pair<const char*, Merge> moves[] = {
        {"Diffuse 0",
         [](C& e, const ProcessRect& r) {
             e.Composite_Diffuse(0, 0, r.left, r.top, r.right, r.bottom);
         }},
        {"Diffuse 2",
         [](C& e, const ProcessRect& r) {
             e.Composite_Diffuse(0, 2, r.left, r.top, r.right, r.bottom);
         }},
        {"Ripple 0",
         [](C& e, const ProcessRect& r) {
             e.Composite_Coordinate(0, 0, 44, r.left, r.top, r.right, r.bottom);
         }},
        {"Ripple 4",
         [](C& e, const ProcessRect& r) {
             e.Composite_Coordinate(4, 1, -60, r.left, r.top, r.right, r.bottom);
         }},
        {"Ripple 8",
         [](C& e, const ProcessRect& r) {
             e.Composite_Coordinate(8, 2, 3, r.left, r.top, r.right, r.bottom);
         }},
    };
    const auto runOn = [&](const Merge& call, int threads, Percents& percents) {
        CancelFlag cancel{0};
        RandomGenerator random;
        RunContext context(cancel, random);
        context.threading = {.threads = threads, .bandPixels = 1};
        context.progress = &percents;
        Surface kept = keptImage;
        context.composeImage = &kept;
        C effect(context);
        effect.ImageGetDiBits(document);
        effect.ImageGetDiBitsTrans(document);
        call(effect, ProcessRect{3, 2, 38, 31});
        Surface result;
        effect.ImageSetDiBitsTrans(result);
        return result;
    };
    for (const auto& [name, call] : moves) {
        Percents one, several;
        const Surface expected = runOn(call, 1, one);
        EXPECT_NE(expected, document) << name;
        EXPECT_EQ(runOn(call, 3, several), expected) << name;
        EXPECT_TRUE(std::ranges::is_sorted(several.seen)) << name;
        EXPECT_EQ(several.seen.size(), one.seen.size()) << name;
        EXPECT_EQ(several.seen.back(), one.seen.back()) << name;
    }
}

TEST_F(Composition, RasterLaysTheKeptImageAsItIsStretchedOrTiled) {
    const Surface document(6, 4, makePixel(0, 0, 0));
    const Surface two =
        makePicture(2, 2, [](int x, int y) { return makePixel(10 * (x + 1), 10 * (y + 1), 0); });
    auto layout = [](int kind) {
        return [kind](C& e, const ProcessRect& r) {
            e.Composite_Raster(SRCPAINT, kind, r.left, r.top, r.right, r.bottom);
        };
    };
    const Surface asItIs = merge(document, two, layout(0));
    EXPECT_EQ(asItIs.at(1, 1), two.at(1, 1));
    EXPECT_EQ(asItIs.at(2, 0), document.at(2, 0));
    const Surface stretched = merge(document, two, layout(1));
    EXPECT_EQ(stretched.at(2, 1), two.at(0, 0));
    EXPECT_EQ(stretched.at(3, 2), two.at(1, 1));
    const Surface tiled = merge(document, two, layout(2));
    EXPECT_EQ(tiled.at(4, 3), two.at(0, 1));
    EXPECT_EQ(tiled.at(5, 2), two.at(1, 0));
}

} // namespace
} // namespace lumiran::testing

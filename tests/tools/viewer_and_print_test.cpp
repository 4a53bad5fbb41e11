#include "tools/colour_values.h"
#include "tools/print_layout.h"
#include "tools/viewer_zoom.h"

#include <gtest/gtest.h>

namespace lumiran {
namespace {

constexpr ViewSize Big{200, 100};
constexpr ViewSize Pane{1000, 1000};

TEST(ViewerZoom, StepsMultiplyWhileFixedZoomsWorkOnThePicture) {
    struct Case {
        std::vector<int> entries;
        double width;
        int ticked;
    };
    const Case cases[] = {
        {{viewer_zoom::Actual, viewer_zoom::In, viewer_zoom::In}, 288, viewer_zoom::Actual},
        {{7, 7}, 240, 7},
        {{viewer_zoom::Actual, viewer_zoom::Out}, 160, viewer_zoom::Actual},
        {{7, viewer_zoom::In, viewer_zoom::Quarter}, 50, viewer_zoom::Quarter},
        {{8, viewer_zoom::Auto}, 200, viewer_zoom::Auto},
    };
    for (const Case& c : cases) {
        ViewerZoom zoom;
        zoom.shown = Big;
        for (const int entry : c.entries) {
            EXPECT_EQ(applyZoom(zoom, entry, Big, Pane, true), ZoomOutcome::Applied);
        }
        EXPECT_NEAR(zoom.shown.width, c.width, 1e-9);
        EXPECT_NEAR(zoom.shown.height, c.width / 2, 1e-9);
        EXPECT_EQ(zoom.ticked, c.ticked);
    }
}

TEST(ViewerZoom, AutoShrinksToThePaneKeepingProportions) {
    ViewerZoom zoom;
    EXPECT_EQ(zoomNewPicture(zoom, {4000, 1000}, {800, 600}), ZoomOutcome::Applied);
    EXPECT_DOUBLE_EQ(zoom.shown.width, 800);
    EXPECT_DOUBLE_EQ(zoom.shown.height, 200);
}

TEST(ViewerZoom, WithoutPictureOnlyTheTickMovesAndTooSmallFails) {
    ViewerZoom zoom;
    zoom.shown = {2, 2};
    EXPECT_EQ(applyZoom(zoom, 4, Big, Pane, false), ZoomOutcome::TickOnly);
    EXPECT_EQ(zoom.ticked, 4);
    EXPECT_DOUBLE_EQ(zoom.shown.width, 2);
    EXPECT_EQ(applyZoom(zoom, viewer_zoom::Out, Big, Pane, true), ZoomOutcome::Applied);
    EXPECT_EQ(applyZoom(zoom, viewer_zoom::Out, Big, Pane, true), ZoomOutcome::Applied);
    EXPECT_EQ(applyZoom(zoom, viewer_zoom::Out, Big, Pane, true), ZoomOutcome::Applied);
    EXPECT_EQ(applyZoom(zoom, viewer_zoom::Out, Big, Pane, true), ZoomOutcome::Failed);
    EXPECT_NEAR(zoom.shown.width, 1.024, 1e-9);
    // The step entries never take the tick.
    EXPECT_EQ(zoom.ticked, 4);
}

TEST(ViewerPattern, TakesTheTextBetweenTheFirstParentheses) {
    EXPECT_EQ(patternOfRow("Windows Bitmap (*.bmp)"), "*.bmp");
    EXPECT_EQ(patternOfRow("(*.bmp;*.dib) (*.x)"), "*.bmp;*.dib");
    EXPECT_EQ(patternOfRow("odd ) (*.gif)"), "*.gif");
    EXPECT_EQ(patternOfRow("All File"), "*");
    EXPECT_EQ(patternOfRow("broken (*.a"), "*");
    EXPECT_EQ(joinViewerPath("/", "a.bmp"), "/a.bmp");
    EXPECT_EQ(joinViewerPath("/home/u", "a.bmp"), "/home/u/a.bmp");
}

TEST(PrintPlacement, PercentOfA600DotPrinterShrunkToTheMargins) {
    // 300 pixels at 400 % are two inches.
    const PaperRect r = printPlacement(300, 150, 400, {}, 210, 297);
    EXPECT_DOUBLE_EQ(r.x, 10);
    EXPECT_DOUBLE_EQ(r.y, 10);
    EXPECT_NEAR(r.width, 50.8, 1e-9);
    EXPECT_NEAR(r.height, 25.4, 1e-9);
    const PaperRect big = printPlacement(6000, 1500, 400, {20, 10, 20, 10}, 210, 297);
    EXPECT_NEAR(big.width, 170, 1e-9);
    EXPECT_NEAR(big.height, 42.5, 1e-9);
    EXPECT_DOUBLE_EQ(printPlacement(10, 10, 100, {150, 0, 100, 0}, 210, 297).width, 0);
}

TEST(ColourValues, KnownColours) {
    const ColourValues orange = colourValues({255, 128, 0});
    EXPECT_EQ(orange.hue, 30);
    EXPECT_EQ(orange.hsvSaturation, 100);
    EXPECT_EQ(orange.hsvValue, 100);
    EXPECT_EQ(orange.hlsLightness, 50);
    EXPECT_EQ(orange.hlsSaturation, 100);
    EXPECT_EQ(orange.black, 0);
    EXPECT_EQ(orange.magenta, 50);
    const ColourValues grey = colourValues({128, 128, 128});
    EXPECT_EQ(grey.hsvSaturation, 0);
    EXPECT_EQ(grey.cb, 128);
    EXPECT_EQ(grey.cr, 128);
    EXPECT_EQ(grey.y, 128);
    const ColourValues black = colourValues({0, 0, 0});
    EXPECT_EQ(black.black, 100);
    EXPECT_EQ(black.cyan, 0);
    const ColourValues blue = colourValues({0, 0, 255});
    EXPECT_EQ(blue.hue, 240);
    EXPECT_EQ(blue.cb, 255);
    EXPECT_EQ(hexText({255, 128, 0}), "#FF8000");
}

} // namespace
} // namespace lumiran

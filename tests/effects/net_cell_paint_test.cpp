// The net's cells painted as numbers and its sides drawn as joints: the
// same pixels as the canvas gives, painting each cell one after the other in
// their order and drawing each side as lines.
#include "effects/texture/net_mosaic/cell_paint.h"
#include "engine/drawing/drawing.h"
#include "texture_fixture.h"

namespace lumiran::testing {
namespace {

// What the canvas leaves: every cell a solid polygon in its number, the
// later cells over the earlier ones, within the clip.
Surface paintedByCanvas(const net::Net& net, int width, int height, const net::Area& clip,
                        Pixel spare) {
    Surface picture(width, height, spare);
    Canvas canvas(picture);
    canvas.setClip(clip.left, clip.top, clip.right, clip.bottom);
    canvas.FillStyle = BrushStyle::Solid;
    net::Polyline outline;
    for (int b = 0; b < net.cellRows(); ++b) {
        for (int a = 0; a < net.cellColumns(); ++a) {
            net.cellOutline(a, b, outline);
            const ColourRef colour = colourRefOf(net::cellLabel(net, a, b));
            canvas.FillColor = colour;
            canvas.Polygon(outline, colour);
        }
    }
    return picture;
}

// The canvas's wall joints: each side's pieces as lines, then its last point.
Surface drawnByCanvas(const net::Net& net, const Surface& picture, const net::Area& clip) {
    Surface drawn = picture;
    Canvas canvas(drawn);
    canvas.setClip(clip.left, clip.top, clip.right, clip.bottom);
    const ColourRef colour = RGB(10, 200, 30);
    const auto draw = [&](std::span<const CanvasPoint> side) {
        for (std::size_t i = 0; i + 1 < side.size(); ++i)
            canvas.Line(side[i].x, side[i].y, side[i + 1].x, side[i + 1].y, colour);
        canvas.Line(side.back().x, side.back().y, side.back().x, side.back().y, colour,
                    LineKind::BF);
    };
    for (int b = 0; b < net.vertexRows(); ++b) {
        for (int a = 0; a < net.cellColumns(); ++a)
            draw(net.across(a, b));
        for (int a = 0; b < net.cellRows() && a < net.vertexColumns(); ++a)
            draw(net.down(a, b));
    }
    return drawn;
}

struct NetCellPaint : TextureFixture {};

TEST_F(NetCellPaint, CellsAndJointsAreWhatTheCanvasPaints) {
    // Bent sides that cross their neighbours (noise far above the block),
    // blocks of one and two pixels, areas whose last column of vertices
    // lies one pixel from the one before, snapped nets, and clips that cut
    // cells across the middle.
    const Surface varied = makeVariedPicture(71, 53);
    struct Case {
        int size, noise;
        std::uint8_t type;
        net::Area area;
    };
    const Case cases[] = {
        {8, 8, 0, {0, 0, 71, 53}},   {8, 64, 0, {0, 0, 71, 53}},   {13, 40, 0, {3, 2, 70, 50}},
        {1, 8, 0, {0, 0, 20, 15}},   {2, 64, 0, {0, 0, 31, 23}},   {5, 2, 1, {0, 0, 71, 53}},
        {9, 30, 1, {4, 0, 71, 41}},  {16, 64, 0, {0, 0, 50, 34}},  {6, 12, 0, {0, 0, 8, 8}},
        {64, 64, 0, {0, 0, 71, 53}}, {7, 20, 0, {10, 10, 11, 40}}, {24, 64, 0, {0, 0, 71, 53}},
        {32, 64, 0, {0, 0, 71, 53}},
    };
    const Pixel spare = 0x5A000000u;
    for (const Case& c : cases) {
        random = RandomGenerator();
        net::Net net(c.area, c.size);
        if (c.type == 0) {
            net.scatter(c.noise, random);
        } else {
            net.snapToEdges(varied, c.noise);
        }
        const std::vector<net::RowReach> reaches = net::reachesOf(net).sides;
        const int middle = (c.area.top + c.area.bottom) / 2;
        const net::Area clips[] = {c.area,
                                   {c.area.left, c.area.top, c.area.right, middle},
                                   {c.area.left + 2, middle, c.area.right - 1, c.area.bottom}};
        for (const net::Area& clip : clips) {
            Surface lines = varied;
            net::drawSides(lines, clip, net, 0, net.vertexRows(), colourBitsOf(RGB(10, 200, 30)));
            ASSERT_EQ(lines, drawnByCanvas(net, varied, clip))
                << "joints " << c.size << " " << c.noise << " rows " << clip.top;
            const Surface expected = paintedByCanvas(net, 71, 53, clip, spare);
            // Rows of crossings beyond the slots at hand, as sides bent
            // across a row give, every row too.
            for (const int slots : {6, 1}) {
                Surface painted(71, 53, spare);
                net::CellPainter(painted, clip, slots).paint(net, reaches);
                ASSERT_EQ(painted, expected)
                    << c.size << " " << c.noise << " " << int(c.type) << " rows " << clip.top
                    << ".." << clip.bottom << " slots " << slots;
            }
        }
    }
}

} // namespace
} // namespace lumiran::testing

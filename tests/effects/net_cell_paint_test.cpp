// The net's cells painted as numbers: the same pixels as painting each cell
// with the canvas, one after the other in their order.
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

struct NetCellPaint : TextureFixture {};

TEST_F(NetCellPaint, TheHighestNumberIsWhatTheCanvasPaintsLast) {
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
        {64, 64, 0, {0, 0, 71, 53}}, {7, 20, 0, {10, 10, 11, 40}},
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
        const std::vector<net::RowReach> reaches = net::vertexRowReaches(net);
        const int middle = (c.area.top + c.area.bottom) / 2;
        const net::Area clips[] = {c.area,
                                   {c.area.left, c.area.top, c.area.right, middle},
                                   {c.area.left + 2, middle, c.area.right - 1, c.area.bottom}};
        for (const net::Area& clip : clips) {
            Surface painted(71, 53, spare);
            net::CellPainter painter(painted, clip);
            painter.paint(net, reaches);
            const Surface expected = paintedByCanvas(net, 71, 53, clip, spare);
            ASSERT_EQ(painted, expected) << c.size << " " << c.noise << " " << int(c.type)
                                         << " rows " << clip.top << ".." << clip.bottom;
        }
    }
}

} // namespace
} // namespace lumiran::testing

// The kept image laid over the document as a whole picture: stretched,
// tiled, or by a raster code, through the drawing calls. Each row is laid
// by itself so that progress and cancel work as in any row loop.
#include "effects/composition/class_composition.h"
#include "engine/drawing/blit.h"

namespace lumiran {
namespace {

enum class Layout : std::uint8_t { AsItIs = 0, Stretched = 1, Tiled = 2 };

// Row y of the target rectangle [left, right) x [top, bottom) covered by
// the kept image.
void layRow(Surface& target, const Surface& kept, const ProcessRect& rect, int y, Layout layout,
            RasterCode code) {
    const int width = rect.right - rect.left;
    const int row = y - rect.top;
    switch (layout) {
    case Layout::AsItIs:
        if (row < kept.height()) {
            BitBlt(target, rect.left, y, std::min(width, kept.width()), 1, kept, 0, row, code);
        }
        break;
    case Layout::Stretched:
        break; // stretched beforehand
    case Layout::Tiled:
        for (int x = rect.left; x < rect.right; x += kept.width()) {
            BitBlt(target, x, y, std::min(kept.width(), rect.right - x), 1, kept, 0,
                   row % kept.height(), code);
        }
        break;
    }
}

} // namespace

void Class_Composition::Composite_Raster(RasterCode code, std::uint8_t layout, std::int16_t left,
                                         std::int16_t top, std::int16_t right,
                                         std::int16_t bottom) {
    guarded([&] {
        const Surface& kept = keptImage();
        const ProcessRect rect{left, top, right, bottom};
        SetProgressRange(top, bottom);
        if (kept.empty() || right <= left || bottom <= top || layout > 2) return;
        if (static_cast<Layout>(layout) != Layout::Stretched) {
            forEachRow(rect, [&](int y, int, int) {
                layRow(ImageBits, kept, rect, y, static_cast<Layout>(layout), code);
            });
            return;
        }
        // Stretched once to the rectangle's size, then laid like a picture
        // of that size: the stretch's column map is worked out once, not
        // for every row.
        const int width = right - left, height = bottom - top;
        Surface stretched;
        if (kept.width() != width || kept.height() != height) {
            stretched = Surface::uninitialised(width, height);
            StretchBlt(stretched, 0, 0, width, height, kept, 0, 0, kept.width(), kept.height(),
                       SRCCOPY);
        }
        const Surface& laid = stretched.empty() ? kept : stretched;
        forEachRow(
            rect, [&](int y, int, int) { layRow(ImageBits, laid, rect, y, Layout::AsItIs, code); });
    });
}

void Class_Composition::Draw_TilePicture(std::int16_t left, std::int16_t top, std::int16_t right,
                                         std::int16_t bottom, RasterCode code) {
    Composite_Raster(code, static_cast<std::uint8_t>(Layout::Tiled), left, top, right, bottom);
}

void Class_Composition::Draw_TilePictureAll(RasterCode code) {
    const ProcessRect whole = ProcessRect::wholePicture(ImageBits.width(), ImageBits.height());
    Draw_TilePicture(whole.left, whole.top, whole.right, whole.bottom, code);
}

void Class_Composition::Composite_Tiling(std::uint8_t mode, std::int16_t /*unused1*/,
                                         std::int16_t /*unused2*/) {
    if (mode == 1) {
        Draw_TilePictureAll();
        return;
    }
    const ProcessRect whole = ProcessRect::wholePicture(ImageBits.width(), ImageBits.height());
    Composite_Raster(SRCCOPY, static_cast<std::uint8_t>(Layout::Stretched), whole.left, whole.top,
                     whole.right, whole.bottom);
}

} // namespace lumiran

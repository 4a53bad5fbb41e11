#include "engine/drawing/pixel_calls.h"

namespace lumiran {
namespace {

bool inside(const Surface& picture, int x, int y) {
    return x >= 0 && y >= 0 && x < picture.width() && y < picture.height();
}

} // namespace

ColourRef GetPixel(const Surface& picture, int x, int y) {
    return inside(picture, x, y) ? colourRefOf(picture.at(x, y)) : NoColour;
}

void SetPixelV(Surface& picture, int x, int y, ColourRef colour) {
    if (!inside(picture, x, y)) return;
    Pixel& p = picture.at(x, y);
    p = (p & 0xFF000000u) | colourBitsOf(colour);
}

void Cls(Surface& picture, ColourRef backColour) {
    const Pixel colour = colourBitsOf(backColour);
    for (Pixel& p : picture.pixels())
        p = (p & 0xFF000000u) | colour;
}

} // namespace lumiran

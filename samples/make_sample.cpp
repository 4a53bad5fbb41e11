// Generates the bundled sample picture: gradients, shapes and fine detail,
// so that every kind of effect has something to show on it.
//   make-sample OUTPUT.bmp
#include "engine/colour_models.h"
#include "engine/surface.h"
#include "imagefiles/bitmap_writer.h"

#include <cmath>
#include <cstdio>
#include <exception>

namespace {

using lumiran::Pixel;
using lumiran::Surface;

constexpr int Width = 320;
constexpr int Height = 240;

Pixel hueColour(double hue, double saturation, double value) {
    const lumiran::Rgb16 c = lumiran::HsvToRgb(hue, saturation, value);
    return lumiran::makePixel(c.red, c.green, c.blue);
}

void paint(Surface& s) {
    // A hue sweep left to right, darkening toward the bottom.
    for (int y = 0; y < Height; ++y) {
        for (int x = 0; x < Width; ++x) {
            s.at(x, y) = hueColour(359.0 * x / Width, 0.85, 1.0 - 0.6 * y / Height);
        }
    }
    // A grey ramp along the bottom.
    for (int y = Height - 24; y < Height; ++y) {
        for (int x = 0; x < Width; ++x) {
            const int v = x * 255 / (Width - 1);
            s.at(x, y) = lumiran::makePixel(v, v, v);
        }
    }
    // Three overlapping discs in the primaries.
    const struct {
        int cx, cy, radius;
        Pixel colour;
    } discs[] = {{90, 90, 50, lumiran::makePixel(230, 30, 40)},
                 {140, 90, 50, lumiran::makePixel(30, 200, 60)},
                 {115, 135, 50, lumiran::makePixel(40, 60, 230)}};
    for (const auto& d : discs) {
        for (int y = d.cy - d.radius; y <= d.cy + d.radius; ++y) {
            for (int x = d.cx - d.radius; x <= d.cx + d.radius; ++x) {
                const int dx = x - d.cx, dy = y - d.cy;
                if (dx * dx + dy * dy <= d.radius * d.radius) s.at(x, y) |= d.colour;
            }
        }
    }
    // Fine detail: a one-pixel checkerboard, thin lines and a zone plate.
    for (int y = 20; y < 80; ++y) {
        for (int x = 200; x < 260; ++x) {
            s.at(x, y) = ((x + y) % 2 == 0) ? lumiran::makePixel(255, 255, 255) : 0;
        }
    }
    for (int i = 0; i < 12; ++i) {
        for (int x = 200; x < 310; ++x)
            s.at(x, 90 + i * 3) = lumiran::makePixel(255, 255, 0);
    }
    for (int y = 130; y < 210; ++y) {
        for (int x = 200; x < 300; ++x) {
            const double r2 = (x - 250.0) * (x - 250.0) + (y - 170.0) * (y - 170.0);
            const int v = static_cast<int>(127.5 + 127.5 * std::cos(r2 / 60.0));
            s.at(x, y) = lumiran::makePixel(v, 255 - v, v / 2);
        }
    }
    // A dark frame with a bright corner mark, to see orientation at a glance.
    for (int x = 0; x < Width; ++x)
        s.at(x, 0) = s.at(x, Height - 1) = 0;
    for (int y = 0; y < Height; ++y)
        s.at(0, y) = s.at(Width - 1, y) = 0;
    for (int y = 4; y < 14; ++y) {
        for (int x = 4; x < 14; ++x)
            s.at(x, y) = lumiran::makePixel(255, 255, 255);
    }
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 2) {
        std::fputs("usage: make-sample OUTPUT.bmp\n", stderr);
        return 2;
    }
    try {
        Surface picture(Width, Height);
        paint(picture);
        lumiran::saveBmp24(picture, argv[1]);
    } catch (const std::exception& e) {
        std::fprintf(stderr, "make-sample: %s\n", e.what());
        return 1;
    }
    return 0;
}

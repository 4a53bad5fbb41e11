#include "effects/colour/gradation/class_gradation.h"
#include "effects/colour/gradation/gradation_tone.h"
#include "effects/colour/gradation/gradation_walk.h"
#include "engine/drawing/drawing.h"

namespace lumiran {
namespace {

// The drawing surface of the run; a run without kept pictures cannot draw.
Surface& keptPicture0(RunContext& context) {
    if (context.kept0 == nullptr) throw EffectError::subscriptOutOfRange();
    return *context.kept0;
}

} // namespace

void Class_Gradation::Gradation_Draw(std::uint8_t shape, std::int16_t step,
                                     std::int16_t /*reserved*/, std::int16_t left, std::int16_t top,
                                     std::int16_t right, std::int16_t bottom, std::int16_t red,
                                     std::int16_t green, std::int16_t blue, std::uint8_t tone,
                                     std::uint8_t /*check*/, std::int16_t spiralSize) {
    guarded([&] {
        Surface& picture = keptPicture0(context());
        Canvas canvas(picture);
        canvas.DrawWidth = 2;
        // Only the rectangle is cleared and drawn: around a selection the
        // kept picture keeps the document, which the blends then meet.
        canvas.setClip(left, top, right, bottom);
        const Rgb8 back = context().flags.backColor;
        canvas.Line(left, top, right - 1, bottom - 1, RGB(back.red, back.green, back.blue),
                    LineKind::BF);

        const gradation::WalkArea area = gradation::walkArea(left, top, right, bottom);
        const long long length = gradation::walkLength(shape, area, spiralSize);
        gradation::ToneStep colour(tone, step, red, green, blue, length);
        // Progress in hundredths of the walk, which may be far longer than a
        // 16-bit count.
        SetProgressRange(0, 100);
        long long position = 0;
        int stepsShown = 0;
        bool stopped = false;
        gradation::walkShape(
            shape, area, spiralSize, [&](std::span<const gradation::Segment> lines) {
                if (stopped) return;
                const Rgb16 c = colour.colour();
                const ColourRef pen = RGB(c.red, c.green, c.blue);
                for (const gradation::Segment& s : lines) {
                    if (s.circle) {
                        canvas.Circle(s.x1, s.y1, s.x2, pen);
                    } else {
                        canvas.Line(s.x1, s.y1, s.x2, s.y2, pen);
                    }
                }
                colour.step(position);
                ++position;
                while (stepsShown < 100 && position * 100 >= (stepsShown + 1) * length) {
                    ++stepsShown;
                    if (!finishRow()) {
                        stopped = true;
                        return;
                    }
                }
            });
    });
}

void Class_Gradation::Gradation_Blend(std::uint8_t mode, std::int16_t left, std::int16_t top,
                                      std::int16_t right, std::int16_t bottom) {
    guarded([&] {
        const Surface& drawing = keptPicture0(context());
        mapPixels<ResultTail::Clamp>(
            {left, top, right, bottom}, [&drawing, mode](int x, int y, int& r, int& g, int& b) {
                // GetPixel's bytes, read straight from the surface: the loop
                // stays inside the picture.
                const Pixel k = drawing.at(x, y);
                const int kr = redOf(k);
                const int kg = greenOf(k);
                const int kb = blueOf(k);
                auto blend = [mode](int kc, int c) -> std::int16_t {
                    switch (mode) {
                    case 0:
                        return roundInRange<std::int16_t>((kc + c) / 2.0);
                    case 1:
                        return static_cast<std::int16_t>(kc + c);
                    case 2:
                        return static_cast<std::int16_t>(kc > c ? kc - c : c - kc);
                    case 3:
                        return static_cast<std::int16_t>(c - kc + 255);
                    case 4:
                        return static_cast<std::int16_t>(kc ^ c);
                    default: // no blend of that number: the source stays
                        return static_cast<std::int16_t>(c);
                    }
                };
                return Rgb16{blend(kr, r), blend(kg, g), blend(kb, b)};
            });
    });
}

} // namespace lumiran

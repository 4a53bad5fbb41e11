// AutumnsColor and SakuraFilter: tints made by adding the spread (largest
// minus smallest channel) to chosen channels, in steps.
#include "effects/colour/class_color_op.h"
#include "effects/colour/color_op_support.h"

#include <algorithm>
#include <vector>

namespace lumiran {
namespace {

int spreadOf(int r, int g, int b) {
    const MaxMin m = MaxMinOfThree(r, g, b);
    return m.max - m.min;
}

int spreadOf(const Channels& c) {
    return spreadOf(c.red, c.green, c.blue);
}

template <int Type>
Rgb16 autumn(int r, int g, int b) {
    Channels c{r, g, b};
    const int d1 = spreadOf(r, g, b);
    if constexpr (Type == 0 || Type == 1 || Type == 3) c.green += d1;
    if constexpr (Type == 2) c.blue += d1;
    const int d2 = spreadOf(c);
    if constexpr (Type == 0 || Type == 2 || Type == 3) c.red += d2;
    if constexpr (Type == 1) c.blue += d2;
    if constexpr (Type == 3) c.red += spreadOf(c);
    return c.fields();
}

// The pink (hue 0) and violet (hue 1) tints of SakuraFilter.
template <int Hue, int Type>
Rgb16 sakura(int r, int g, int b) {
    constexpr bool oneOrThree = Type == 0 || Type == 2;
    Channels c{r, g, b};
    const int d = spreadOf(r, g, b);
    if constexpr (Hue == 0) {
        if constexpr (oneOrThree) c.green += d;
        if constexpr (Type == 1) c.red += d, c.green += d;
    } else {
        if constexpr (oneOrThree) c.blue += d;
        if constexpr (Type == 1) c.green += d, c.blue += d;
    }
    const MaxMin m = MaxMinOfThree(c.red, c.green, c.blue);
    const int d2 = m.max - m.min;
    // round(v - d2 / 5): the fifth of a spread of 0 or more is never a half,
    // so this is v minus the nearest integer to d2 / 5.
    const int fifth = (d2 + 2) / 5;
    // Written as selects, field by field and without short-circuits, so
    // that the pixel loop has no branch.
    Channels stepped = c;
    bool step = false;
    if constexpr (Hue == 0) {
        step = (m.max == c.green) & (oneOrThree ? c.green != c.blue : c.red != c.blue);
        stepped = {c.red + d2, c.green - fifth, c.blue + d2};
    } else {
        step = (m.max == c.blue) & (oneOrThree ? c.red != c.blue : c.green != c.blue);
        stepped = {c.red + d2, c.green + d2, c.blue - fifth};
    }
    c = {step ? stepped.red : c.red, step ? stepped.green : c.green, step ? stepped.blue : c.blue};
    if constexpr (Type == 2) {
        const bool back = Hue == 0 ? c.blue >= c.red : c.red >= c.green;
        c = {back ? r : c.red, back ? g : c.green, back ? b : c.blue};
    }
    return c.fields();
}

} // namespace

void Class_ColorOp::AutumnsColor(std::uint8_t type, std::int16_t left, std::int16_t top,
                                 std::int16_t right, std::int16_t bottom) {
    guarded([&] {
        const ProcessRect rect{left, top, right, bottom};
        auto run = [&](auto rule) { mapPixels<ResultTail::Clamp>(rect, rule); };
        switch (type) {
        case 0:
            run([](int r, int g, int b) { return autumn<0>(r, g, b); });
            break;
        case 1:
            run([](int r, int g, int b) { return autumn<1>(r, g, b); });
            break;
        case 2:
            run([](int r, int g, int b) { return autumn<2>(r, g, b); });
            break;
        case 3:
            run([](int r, int g, int b) { return autumn<3>(r, g, b); });
            break;
        default:
            run([](int r, int g, int b) { return autumn<-1>(r, g, b); });
            break; // no step applies: the source stands
        }
    });
}

template <ResultTail Tail, typename Rule>
void Class_ColorOp::mapTint(const ProcessRect& rect, Rule rule) {
    const Span span = spanOf(rect);
    if (!tintIntoOwnTrans_ || span.empty()) {
        if (tintIntoOwnTrans_) TransBits = ImageBits;
        mapPixels<Tail>(rect, rule);
        return;
    }
    TransBits = Surface::uninitialised(ImageBits.width(), ImageBits.height());
    // Rows the rectangle leaves out are copied here; the bands copy and
    // tint their own rows, still hot, as mapPixels tints in place.
    for (int y = 0; y < ImageBits.height(); ++y) {
        if (y < span.firstRow || y >= span.endRow)
            std::ranges::copy(ImageBits.row(y), TransBits.row(y).begin());
    }
    SetProgressRange(rect.top, rect.bottom);
    const bool blend = blends(Tail) && calculationFlag() > 0;
    const BandPlan plan = bandPlan(rect);
    std::vector<Rule> rules(static_cast<std::size_t>(std::max(plan.workers, 1)), rule);
    rowsInBands(rect, plan, [&](int worker, int y, int, int) {
        Rule& own = rules[static_cast<std::size_t>(worker)];
        const std::span<Pixel> out = TransBits.row(y);
        std::ranges::copy(ImageBits.row(y), out.begin());
        if (blend) {
            mapRowInPlace<Tail, true>(out.data(), y, span, own);
        } else {
            mapRowInPlace<Tail, false>(out.data(), y, span, own);
        }
    });
}

void Class_ColorOp::SakuraFilter(std::uint8_t hue, std::uint8_t type, std::int16_t left,
                                 std::int16_t top, std::int16_t right, std::int16_t bottom) {
    guarded([&] {
        const ProcessRect rect{left, top, right, bottom};
        auto run = [&](auto rule) { mapTint<ResultTail::Clamp>(rect, rule); };
        if (hue > 1 || type > 2) {
            // No step applies: the source stands.
            run([](int r, int g, int b) { return Channels{r, g, b}.fields(); });
        } else if (hue == 0) {
            if (type == 0) run([](int r, int g, int b) { return sakura<0, 0>(r, g, b); });
            if (type == 1) run([](int r, int g, int b) { return sakura<0, 1>(r, g, b); });
            if (type == 2) run([](int r, int g, int b) { return sakura<0, 2>(r, g, b); });
        } else {
            if (type == 0) run([](int r, int g, int b) { return sakura<1, 0>(r, g, b); });
            if (type == 1) run([](int r, int g, int b) { return sakura<1, 1>(r, g, b); });
            if (type == 2) run([](int r, int g, int b) { return sakura<1, 2>(r, g, b); });
        }
    });
}

} // namespace lumiran

#include "effects/texture/mosaic/cell_rules.h"

#include "engine/numeric.h"

#include <array>
#include <cmath>

namespace lumiran::mosaic {

Rgb16 shifted(Rgb16 mean, int delta) {
    return {wrap16(mean.red + delta), wrap16(mean.green + delta), wrap16(mean.blue + delta)};
}

Rgb16 grey(int value) {
    return {wrap16(value), wrap16(value), wrap16(value)};
}

Rgb16 normalCell(std::uint8_t type, const CellPlace& cell, Rgb16 mean) {
    switch (type) {
    case 1:
        return cell.edge() ? shifted(mean, 5 * cell.width) : shifted(mean, -3 * cell.j);
    case 2:
        return cell.edge() ? shifted(mean, -5 * cell.width) : shifted(mean, 3 * cell.j);
    default:
        return mean;
    }
}

Rgb16 tileCell(std::uint8_t type, const CellPlace& cell, Rgb16 mean) {
    switch (type) {
    case 0:
        if (cell.edge()) return shifted(mean, -18);
        return cell.at(1) ? shifted(mean, 18) : mean;
    case 1:
        if (cell.edge()) return grey(0);
        return cell.at(1) ? grey(255) : mean;
    case 2:
        if (cell.edge()) return grey(0);
        if (cell.at(1)) return grey(128);
        return cell.at(2) ? grey(255) : mean;
    default:
        return mean;
    }
}

Rgb16 gradation1Cell(std::uint8_t type, const CellPlace& cell, Rgb16 mean) {
    if (cell.edge()) return mean;
    // i + j is held in a byte before it is scaled.
    const auto diagonal = [&] {
        return roundTo<int>(static_cast<std::uint8_t>(cell.i + cell.j) * 1.5);
    };
    switch (type) {
    case 0:
        return shifted(mean, -3 * cell.j);
    case 1:
        return shifted(mean, 3 * cell.j);
    case 2:
        return shifted(mean, -diagonal());
    case 3:
        return shifted(mean, diagonal());
    default:
        return mean;
    }
}

Gradation2::Gradation2(std::uint8_t type) {
    // Types 1 and 2 are the radial runs the menu's rows 2 and 3 name; the
    // others run between the mean and black or white so each looks apart.
    static constexpr std::array<Kind, 6> kinds{{
        {Measure::Vertical, End::White, End::Mean},
        {Measure::Radial, End::White, End::Mean},
        {Measure::Radial, End::Mean, End::White},
        {Measure::Radial, End::Mean, End::Black},
        {Measure::Radial, End::Black, End::Mean},
        {Measure::Diagonal, End::Mean, End::Black},
    }};
    kind_ = type < kinds.size() ? kinds[type] : Kind{Measure::Vertical, End::Mean, End::Mean};
}

Rgb16 Gradation2::cell(const CellPlace& cell, Rgb16 mean) const {
    double distance = 0;
    double extent = 0;
    switch (kind_.measure) {
    case Measure::Vertical:
        distance = cell.i;
        extent = cell.height - 1;
        break;
    case Measure::Radial: {
        const double cx = cell.width / 2.0;
        const double cy = cell.height / 2.0;
        distance = std::sqrt((cell.j - cx) * (cell.j - cx) + (cell.i - cy) * (cell.i - cy));
        extent = std::sqrt(cx * cx + cy * cy);
        break;
    }
    case Measure::Diagonal:
        distance = cell.i + cell.j;
        extent = cell.width + cell.height - 2;
        break;
    }
    const auto end = [](End e, int m) { return e == End::Black ? 0 : e == End::White ? 255 : m; };
    const auto channel = [&](int m) -> std::int16_t {
        const int a = end(kind_.from, m);
        const int b = end(kind_.to, m);
        // At distance 0 the start colour, also where the extent is 0.
        if (distance == 0) return wrap16(a);
        return roundTo<std::int16_t>(a + static_cast<double>(b - a) / extent * distance);
    };
    return {channel(mean.red), channel(mean.green), channel(mean.blue)};
}

} // namespace lumiran::mosaic

#include "engine/calculation.h"

#include "engine/numeric.h"

#include <array>
#include <cmath>
#include <cstdlib>

namespace lumiran {
namespace {

int blendChannel(std::uint8_t flag, int source, int output) {
    switch (flag) {
    case 1:
        return (source + output) / 2;
    case 2:
        return source * 2 - output;
    case 3:
        return output * 2 - source;
    case 4:
        return std::abs(source - output) * 2;
    case 5:
        return output * 2 - (255 - source);
    case 6:
        return source * 2 - (255 - output);
    case 7:
        return std::abs(std::abs(source - output) * 3 - source);
    case 8:
        return std::abs(std::abs(source - output) * 3 - output);
    // The program's pi is 3.14 here.
    case 9:
        return roundTo<std::int16_t>(output *
                                     std::sin(source / static_cast<double>(output) * 3.14));
    case 10:
        return roundTo<std::int16_t>(output *
                                     std::atan(source / static_cast<double>(output) * 3.14));
    default:
        return output;
    }
}

} // namespace

Rgb16 applyCalculationType(std::uint8_t flag, int r, int g, int b, Rgb16 result) {
    Rgb16 v = clampResult(result);
    if (flag == 9 || flag == 10) {
        // Guard against a zero divisor before any channel is worked out.
        if (v.red == 0) v.red = 1;
        if (v.green == 0) v.green = 1;
        if (v.blue == 0) v.blue = 1;
    }
    v.red = wrap16(blendChannel(flag, r, v.red));
    v.green = wrap16(blendChannel(flag, g, v.green));
    v.blue = wrap16(blendChannel(flag, b, v.blue));
    return clampResult(v);
}

const char* calculationTypeLabel(std::uint8_t flag) {
    static constexpr std::array<const char*, 11> labels{
        "0  R=r1",
        "1  R=(r+r1)/2",
        "2  R=r*2-r1",
        "3  R=r1*2-r",
        "4  R=[r-r1]*2",
        "5  R=r1*2-(255-r)",
        "6  R=r*2-(255-r1)",
        "7  R=[[r-r1]*3-r]",
        "8  R=[[r-r1]*3-r1]",
        "9  R=r1*(sin(r/r1*3.14))",
        "10  R=r1*(atn(r/r1*3.14))",
    };
    return flag < labels.size() ? labels[flag] : "";
}

} // namespace lumiran

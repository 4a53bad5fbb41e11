#include "engine/drawing/raster_code.h"

#include <array>

namespace lumiran {

RasterCode rasterCodeForFlag(int flag) {
    static constexpr std::array<RasterCode, 11> codes{
        SRCCOPY,     SRCPAINT,  SRCAND,     0x007700E6, 0x00220326, MERGEPAINT,
        NOTSRCERASE, SRCINVERT, 0x00990066, SRCERASE,   0x00DD0228,
    };
    return flag >= 0 && flag < static_cast<int>(codes.size()) ? codes[flag] : 0;
}

} // namespace lumiran

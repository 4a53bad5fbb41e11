#include "tools/print_layout.h"

#include <algorithm>

namespace lumiran {

PaperRect printPlacement(int pictureWidth, int pictureHeight, int percent, PrintMargins margins,
                         double paperWidth, double paperHeight) {
    const double roomWidth =
        paperWidth - std::max(0.0, margins.left) - std::max(0.0, margins.right);
    const double roomHeight =
        paperHeight - std::max(0.0, margins.top) - std::max(0.0, margins.bottom);
    if (roomWidth <= 0 || roomHeight <= 0 || pictureWidth <= 0 || pictureHeight <= 0) return {};
    const double mmPerPixel =
        std::clamp(percent, PrintSizeMin, PrintSizeMax) / 100.0 * 25.4 / PrintDotsPerInchAtFull;
    double width = pictureWidth * mmPerPixel;
    double height = pictureHeight * mmPerPixel;
    const double shrink = std::min({1.0, roomWidth / width, roomHeight / height});
    width *= shrink;
    height *= shrink;
    return {std::max(0.0, margins.left), std::max(0.0, margins.top), width, height};
}

} // namespace lumiran

#pragma once

namespace lumiran {

// Margins of the printed page in millimetres ("PrinterScale.*").
struct PrintMargins {
    double left = 10;
    double top = 10;
    double right = 10;
    double bottom = 10;
};

// A rectangle on the paper in millimetres from its top left corner.
struct PaperRect {
    double x = 0;
    double y = 0;
    double width = 0;
    double height = 0;
};

// At 100 % a picture pixel is one dot of a 600 dpi printer, so the default
// 400 % prints at 150 pixels to the inch.
inline constexpr double PrintDotsPerInchAtFull = 600;
inline constexpr int PrintSizeMin = 1;
inline constexpr int PrintSizeMax = 2000;

// Where the picture goes: at the margins' top left corner, `percent` of its
// size; a picture larger than the room between the margins is shrunk to fit
// it with its proportions kept. Empty when the margins leave no room.
[[nodiscard]] PaperRect printPlacement(int pictureWidth, int pictureHeight, int percent,
                                       PrintMargins margins, double paperWidth, double paperHeight);

} // namespace lumiran

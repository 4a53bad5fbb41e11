#include "effects/halftone/dithering/class_dithering.h"

namespace lumiran {

bool Class_Dithering::arraysReady() const {
    return !ImageBits.empty() && ImageBits.sameSize(TransBits);
}

bool Class_Dithering::resultReady() const {
    return !ImageBits.empty() && (TransBits.empty() || ImageBits.sameSize(TransBits));
}

void Class_Dithering::BuildLevelTable(std::int16_t level, std::int16_t colourMode) {
    const LevelTable table = levelTable(level);
    if (colourMode == 0) {
        MonoLevelTable = table;
    } else {
        LevelTableR = table;
        LevelTableG = table;
        LevelTableB = table;
    }
}

void Class_Dithering::BuildDrawingColorLevelTable(std::int16_t level, std::int16_t paintType) {
    const Rgb8 colour = context().flags.drawingColor;
    LevelTableR = drawingColorLevelTable(level, paintType, colour.red);
    LevelTableG = drawingColorLevelTable(level, paintType, colour.green);
    LevelTableB = drawingColorLevelTable(level, paintType, colour.blue);
}

} // namespace lumiran

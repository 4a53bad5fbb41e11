#include "effects/halftone/binarization/class_binarization.h"
#include "engine/drawing/drawing.h"
#include "engine/shared_rows.h"

#include <algorithm>

namespace lumiran {

bool Class_Binarization::arraysReady() const {
    return !ImageBits.empty() && ImageBits.sameSize(TransBits);
}

bool Class_Binarization::resultReady() const {
    return !ImageBits.empty() && (TransBits.empty() || ImageBits.sameSize(TransBits));
}

bool Class_Binarization::reachStage(int percent) {
    RunContext& run = context();
    if (run.progressFlag == 1) {
        ProgressPercent = percent;
        if (run.progress != nullptr) run.progress->showPercent(percent);
    }
    return !run.cancelled();
}

ColourRef Class_Binarization::markColour(bool overPicture) {
    if (!overPicture) return RGB(0, 0, 0);
    const Rgb8 ink = context().flags.drawingColor;
    return RGB(ink.red, ink.green, ink.blue);
}

void Class_Binarization::clearMarks(const Span& span) {
    if (span.empty()) return;
    Canvas canvas(TransBits);
    canvas.Line(span.firstColumn, span.firstRow, span.endColumn - 1, span.endRow - 1,
                RGB(255, 255, 255), LineKind::BF);
}

void Class_Binarization::copyToTransIfUnfetched() {
    if (!TransBits.empty() || ImageBits.empty()) return;
    TransBits = Surface::uninitialised(ImageBits.width(), ImageBits.height());
    forEachRowShared(context(), 0, ImageBits.height(), ImageBits.width(),
                     [&](int y) { std::ranges::copy(ImageBits.row(y), TransBits.row(y).begin()); });
}

} // namespace lumiran

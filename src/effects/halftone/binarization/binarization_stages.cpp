#include "effects/halftone/binarization/class_binarization.h"

namespace lumiran {

bool Class_Binarization::arraysReady() const {
    return !ImageBits.empty() && ImageBits.sameSize(TransBits);
}

bool Class_Binarization::reachStage(int percent) {
    RunContext& run = context();
    if (run.progressFlag == 1) {
        ProgressPercent = percent;
        if (run.progress != nullptr) run.progress->showPercent(percent);
    }
    return !run.cancelled();
}

} // namespace lumiran

#pragma once

#include "catalogue/effect_dispatch.h"
#include "engine/effect_error.h"
#include "engine/surface.h"
#include "shell/program_state.h"

#include <vector>

namespace lumiran {

// Where the scaled copy of the document sits in the black preview box.
struct PreviewPlacement {
    int left = 0;
    int top = 0;
    int width = 0;
    int height = 0;
    friend bool operator==(const PreviewPlacement&, const PreviewPlacement&) = default;
};

// Fits a picture of w x h into the box of boxWidth x boxHeight: the longer
// side fills the box, the other is scaled with one rounding (half to even)
// into 16 bits and centred by integer halving. A square takes the height.
[[nodiscard]] PreviewPlacement SetPreviewPicture(int boxWidth, int boxHeight, int w, int h);

// The document scaled to the placement's size (nearest neighbour, the
// platform's default stretch).
[[nodiscard]] Surface scalePicture(const Surface& picture, int width, int height);

struct PreviewResult {
    Surface picture; // Picture1: what the preview shows; empty when the effect failed
    std::vector<EffectError> failures;
    bool cancelled = false;
};

// The preview button: the effect's calls on the small source with the whole
// copy as the rectangle and no progress, then the raster post-step with the
// source laid over the result (flags 1 to 10). The document, the undo stack
// and the kept pictures of a run are not touched; the random generator is
// the program's one, so previews draw from the same sequence as runs.
[[nodiscard]] PreviewResult runPreview(ProgramState& state, const EffectBody& body,
                                       const Surface& source);

} // namespace lumiran

#pragma once

#include "engine/process_rect.h"
#include "engine/surface.h"

#include <cstdint>

namespace lumiran {

// Lays the run's result over the document inside the process rectangle by
// the binary raster operation of the raster flag. Flags above 10 leave the
// document as it is. Pixels outside either picture are skipped.
void rasterStep(std::uint8_t rasterOpFlag, const Surface& result, Surface& document,
                const ProcessRect& rect);

// The bitwise rule of a raster flag on the 24 colour bits, D the document
// and S the result pixel; flag above 10 returns D.
[[nodiscard]] Pixel rasterCombine(std::uint8_t rasterOpFlag, Pixel document, Pixel result);

// The label of a raster flag as the status bar shows it.
[[nodiscard]] const char* rasterOpLabel(std::uint8_t flag);

} // namespace lumiran

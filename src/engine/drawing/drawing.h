#pragma once

// The drawing calls in one include: block transfers and stretching, single
// pixels and clearing, flood fills, and the canvas with its pen and shapes.
#include "engine/drawing/blit.h"
#include "engine/drawing/canvas.h"
#include "engine/drawing/colour_ref.h"
#include "engine/drawing/flood_fill.h"
#include "engine/drawing/pixel_calls.h"
#include "engine/drawing/raster_code.h"

#pragma once

// One-pixel-wide column copies of the shape transforms, drawn as their
// StretchBlt calls would draw them but a block of columns at a time.
#include "engine/surface.h"

#include <span>

namespace lumiran {

// StretchBlt(target, column, top, 1, height, source, column, sourceTop, 1,
// sourceHeight, SRCCOPY): one column of the source stretched onto the same
// column of the target.
struct ColumnCopy {
    int column = 0;
    int top = 0;
    int height = 0;
    int sourceTop = 0;
    int sourceHeight = 0;
};

// Draws the copies as the calls would, one after another, on different
// pictures. A column alone reaches a new cache line and page in every row,
// so the columns of the list are drawn together row by row; the copies of
// one column keep their order (the later wins where they overlap), and
// copies of different columns never meet. Copies with a negative extent or
// between one picture and itself go through StretchBlt.
void drawColumnCopies(Surface& target, const Surface& source, std::span<const ColumnCopy> copies);

} // namespace lumiran

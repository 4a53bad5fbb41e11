#pragma once

#include <cstdint>

namespace lumiran {

// The pixels an effect is to change; right and bottom are exclusive.
struct ProcessRect {
    std::int16_t left = 0;
    std::int16_t top = 0;
    std::int16_t right = 0;
    std::int16_t bottom = 0;

    [[nodiscard]] static ProcessRect wholePicture(int width, int height);
    friend bool operator==(const ProcessRect&, const ProcessRect&) = default;
};

// A selection as the document holds it: any corner order, 32-bit.
struct AreaRect {
    std::int32_t left = 0;
    std::int32_t top = 0;
    std::int32_t right = 0;
    std::int32_t bottom = 0;
    friend bool operator==(const AreaRect&, const AreaRect&) = default;
};

// What fixing the rectangle decided besides the rectangle itself; the
// document carries these out on its tool state.
struct ProcessRectDecision {
    ProcessRect rect;
    bool endRunningTool = false; // tool 2 or 4 is ended first (tools command 1)
    bool endTool = false;        // the area was empty: the tool ends (tools command 3)
    bool resetAreas = false;     // no area: the document's rectangles become the whole picture
};

// Process rectangle for a run on a picture of the given size: the area when
// a tool has drawn one (tools state 2 or more), normalised, an empty width or
// height meaning the whole picture, a negative corner raised to 0 and the
// far corner cut to the picture; otherwise the whole picture.
[[nodiscard]] ProcessRectDecision fixProcessRectangle(std::uint8_t toolsFlag, const AreaRect& area,
                                                      int width, int height);

} // namespace lumiran

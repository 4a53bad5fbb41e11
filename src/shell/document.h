#pragma once

#include "engine/process_rect.h"
#include "engine/surface.h"

#include <cstdint>
#include <string>

namespace lumiran {

// The model of one document window: its picture, its name in two parts and
// the state of its area tool. The window itself lives in the GUI.
struct Document {
    Surface picture;
    std::string folderLabel; // Label1(0): the folder part of the name
    std::string nameLabel;   // Label1(1): the name part

    std::uint8_t ToolsFlag = 0;
    AreaRect drag;              // DragStartX .. DragEndY, as the mouse gave them
    AreaRect area;              // AreaLeft .. AreaBottom, the finished area
    bool DragFlag = false;      // a drag is under way
    bool AreaMovedFlag = false; // the area was dropped once: no further snapshot
    // Where the pointer took hold of a lifted area, from its top left corner.
    std::int32_t grabX = 0;
    std::int32_t grabY = 0;

    [[nodiscard]] std::string caption() const { return folderLabel + nameLabel; }
};

} // namespace lumiran

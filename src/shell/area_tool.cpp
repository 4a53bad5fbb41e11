#include "shell/area_tool.h"

#include "engine/drawing/blit.h"
#include "engine/drawing/flood_fill.h"
#include "engine/drawing/pixel_calls.h"
#include "shell/string_table.h"
#include "shell/ui_string_ids.h"

#include <algorithm>
#include <new>
#include <utility>

namespace lumiran {
namespace {

std::string text(int id) {
    return std::string(LoadResString(id));
}

// "(left,top)  -  (right,bottom)", the form the status panel gives a rectangle.
std::string corners(const AreaRect& r) {
    return "(" + std::to_string(r.left) + "," + std::to_string(r.top) + ")  -  (" +
           std::to_string(r.right) + "," + std::to_string(r.bottom) + ")";
}

std::optional<EffectError> pushSnapshot(ProgramState& state, const Document& document) {
    try {
        state.undo.PushUndo(document);
    } catch (const EffectError& error) {
        return error;
    } catch (const std::bad_alloc&) {
        return EffectError::outOfMemory();
    }
    return std::nullopt;
}

void keepDragEndInPicture(Document& document) {
    document.drag.right = keepInPicture(document.drag.right, document.picture.width());
    document.drag.bottom = keepInPicture(document.drag.bottom, document.picture.height());
}

ToolStep statusStep(const Document& document) {
    ToolStep step;
    step.status = toolStatusText(document);
    step.overlayChanged = true;
    return step;
}

} // namespace

std::string toolStatusText(const Document& document) {
    switch (document.ToolsFlag) {
    case tools::None:
        return text(ids::StatusTool);
    case tools::Selecting:
        return text(ids::ToolSelecting);
    case tools::AreaFixed:
        return text(ids::ToolAreaFixed) + corners(document.area);
    case tools::ReadyToMove:
    case tools::Moving:
        return text(ids::ToolMoving);
    case tools::Fill:
        return text(ids::ToolFill);
    default:
        return {};
    }
}

AreaRect normalisedInPicture(const AreaRect& area, int width, int height) {
    AreaRect r{std::min(area.left, area.right), std::min(area.top, area.bottom),
               std::max(area.left, area.right), std::max(area.top, area.bottom)};
    r.left = std::clamp(r.left, 0, width);
    r.right = std::clamp(r.right, 0, width);
    r.top = std::clamp(r.top, 0, height);
    r.bottom = std::clamp(r.bottom, 0, height);
    return r;
}

ToolStep ToolsNo_Click(ProgramState& state, Document& document, int index) {
    switch (index) {
    case tools_menu::Select:
        document.ToolsFlag = tools::Selecting;
        document.AreaMovedFlag = false;
        document.DragFlag = false;
        return statusStep(document);
    case tools_menu::FixArea: {
        const std::uint8_t from = document.ToolsFlag;
        if (from != tools::AreaDrawn && from != tools::ReadyToMove && from != tools::AreaFixed)
            return {};
        document.DragFlag = false;
        document.ToolsFlag = tools::AreaFixed;
        return statusStep(document);
    }
    case tools_menu::MoveArea: {
        const std::uint8_t from = document.ToolsFlag;
        if (from != tools::AreaDrawn && from != tools::AreaFixed) return {};
        const Surface& picture = document.picture;
        // An area reaching past the picture (drawn before an undo to a smaller
        // one) lifts only what lies inside.
        const AreaRect r = normalisedInPicture(document.area, picture.width(), picture.height());
        const int width = r.right - r.left;
        const int height = r.bottom - r.top;
        if (width <= 0 || height <= 0) return {};
        ToolStep step;
        try {
            Surface lifted = Surface::uninitialised(width, height);
            BitBlt(lifted, 0, 0, width, height, picture, r.left, r.top, SRCCOPY);
            state.keep.SelectAreaImage = std::move(lifted);
        } catch (const EffectError& error) {
            step.failure = error;
            return step;
        } catch (const std::bad_alloc&) {
            step.failure = EffectError::outOfMemory();
            return step;
        }
        document.drag = r;
        document.area = r;
        document.ToolsFlag = tools::ReadyToMove;
        return statusStep(document);
    }
    case tools_menu::EndTool:
        document.ToolsFlag = tools::None;
        document.DragFlag = false;
        return statusStep(document);
    case tools_menu::FillArea:
        document.ToolsFlag = tools::Fill;
        document.AreaMovedFlag = false;
        document.DragFlag = false;
        return statusStep(document);
    default:
        return {};
    }
}

ToolStep toolMouseDown(ProgramState& state, Document& document, PointerButton button, int x,
                       int y) {
    switch (document.ToolsFlag) {
    case tools::AreaDrawn:
        if (button == PointerButton::Right) {
            // The area is given up; a new one may be drawn.
            document.ToolsFlag = tools::Selecting;
            document.DragFlag = false;
            return statusStep(document);
        }
        // During a run the drawn area stays as it is.
        if (button != PointerButton::Left || state.ProcessingFlag == 1) return {};
        document.ToolsFlag = tools::Selecting;
        [[fallthrough]];
    case tools::Selecting: {
        if (button != PointerButton::Left || state.ProcessingFlag == 1) return {};
        document.drag = {x, y, x, y};
        document.DragFlag = true;
        ToolStep step = statusStep(document);
        *step.status += corners(document.drag);
        return step;
    }
    case tools::ReadyToMove: {
        if (button != PointerButton::Left) return {};
        document.ToolsFlag = tools::Moving;
        document.DragFlag = true;
        document.grabX = x - document.drag.left;
        document.grabY = y - document.drag.top;
        return statusStep(document);
    }
    case tools::Fill: {
        if (button != PointerButton::Left) return {};
        Surface& picture = document.picture;
        if (x < 0 || y < 0 || x >= picture.width() || y >= picture.height()) return {};
        ToolStep step;
        // Without its snapshot the fill could not be undone: it is not made.
        step.failure = pushSnapshot(state, document);
        if (step.failure) return step;
        const ColourRef own = GetPixel(picture, x, y);
        const Rgb8 brush = state.flags.drawingColor;
        step.pictureChanged = ExtFloodFill(picture, x, y, own, FloodFillType::Surface,
                                           RGB(brush.red, brush.green, brush.blue));
        return step;
    }
    default:
        return {};
    }
}

ToolStep toolMouseMove(Document& document, int x, int y) {
    if (!document.DragFlag) return {};
    if (document.ToolsFlag == tools::Selecting) {
        document.drag.right = x;
        document.drag.bottom = y;
        keepDragEndInPicture(document);
        ToolStep step = statusStep(document);
        *step.status += corners(document.drag);
        return step;
    }
    if (document.ToolsFlag == tools::Moving) {
        AreaRect& r = document.drag;
        const std::int32_t width = r.right - r.left;
        const std::int32_t height = r.bottom - r.top;
        r.left = x - document.grabX;
        r.top = y - document.grabY;
        r.right = r.left + width;
        r.bottom = r.top + height;
        return statusStep(document);
    }
    return {};
}

ToolStep toolMouseUp(ProgramState& state, Document& document, int x, int y) {
    if (!document.DragFlag) return {};
    if (document.ToolsFlag == tools::Selecting) {
        document.drag.right = x;
        document.drag.bottom = y;
        keepDragEndInPicture(document);
        document.area = document.drag;
        document.DragFlag = false;
        document.ToolsFlag = tools::AreaDrawn;
        ToolStep step;
        step.overlayChanged = true; // the status keeps the rectangle of the drag
        return step;
    }
    if (document.ToolsFlag == tools::Moving) {
        toolMouseMove(document, x, y);
        ToolStep step;
        if (!document.AreaMovedFlag) {
            step.failure = pushSnapshot(state, document);
            // Without the snapshot nothing is laid and the drag goes on.
            if (step.failure) return step;
            document.AreaMovedFlag = true;
        }
        const Surface& lifted = state.keep.SelectAreaImage;
        AreaRect& r = document.drag;
        BitBlt(document.picture, r.left, r.top, lifted.width(), lifted.height(), lifted, 0, 0,
               SRCCOPY);
        // The rectangle itself is cut to the picture, so an area dropped
        // partly outside is smaller from then on, and the next move lays the
        // lifted picture at the cut rectangle's corner.
        const int width = document.picture.width();
        const int height = document.picture.height();
        r = {keepInPicture(r.left, width), keepInPicture(r.top, height),
             keepInPicture(r.right, width), keepInPicture(r.bottom, height)};
        document.area = r;
        document.DragFlag = false;
        document.ToolsFlag = tools::ReadyToMove;
        step.status = toolStatusText(document);
        step.pictureChanged = true;
        step.overlayChanged = true;
        return step;
    }
    return {};
}

} // namespace lumiran

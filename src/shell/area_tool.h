#pragma once

#include "engine/effect_error.h"
#include "engine/process_rect.h"
#include "shell/document.h"
#include "shell/program_state.h"

#include <cstdint>
#include <optional>
#include <string>

namespace lumiran {

// The states of a document's area tool (ToolsFlag).
namespace tools {
inline constexpr std::uint8_t None = 0;
inline constexpr std::uint8_t Selecting = 1;
inline constexpr std::uint8_t AreaDrawn = 2;
inline constexpr std::uint8_t AreaFixed = 3;
inline constexpr std::uint8_t ReadyToMove = 4;
inline constexpr std::uint8_t Moving = 5;
inline constexpr std::uint8_t Fill = 6;
} // namespace tools

// The rows of the tools menu (ToolsNo); row 4 has no command.
namespace tools_menu {
inline constexpr int Select = 0;
inline constexpr int FixArea = 1;
inline constexpr int MoveArea = 2;
inline constexpr int EndTool = 3;
inline constexpr int FillArea = 5;
} // namespace tools_menu

enum class PointerButton : std::uint8_t { Left, Right, Other };

// What a command or a mouse event of the tool did, for the window to show.
struct ToolStep {
    std::optional<std::string> status;  // the status panel's new text; none leaves it
    bool pictureChanged = false;        // the document's picture was drawn on
    bool overlayChanged = false;        // rubber band, outline or lifted area moved
    std::optional<EffectError> failure; // shown with the handler's message
};

// The status panel text of a tool state: "ﾂｰﾙ:" and the state's name; state
// 3 names the area's corners. State 2 has none of its own (empty).
[[nodiscard]] std::string toolStatusText(const Document& document);

// A coordinate of a drag's end kept inside a picture of this extent: at or
// beyond the extent it becomes the extent, below 1 it becomes 0.
[[nodiscard]] constexpr std::int32_t keepInPicture(std::int32_t value, std::int32_t extent) {
    if (value >= extent) return extent;
    if (value < 1) return 0;
    return value;
}

// The area in corner order, cut to the picture; empty (left == right or top
// == bottom) when nothing of it lies in the picture.
[[nodiscard]] AreaRect normalisedInPicture(const AreaRect& area, int width, int height);

// True in the states in which the area's running outline shows.
[[nodiscard]] constexpr bool outlineShows(std::uint8_t toolsFlag) {
    return toolsFlag >= tools::AreaDrawn && toolsFlag <= tools::Moving;
}

// ToolsNo_Click: a row of the tools menu on the document. Commands that do
// not apply to the state (fixing with no area, lifting an empty area) do
// nothing.
ToolStep ToolsNo_Click(ProgramState& state, Document& document, int index);

// The mouse on Picture2, in picture pixels. The caller refuses them while a
// run holds the document.
ToolStep toolMouseDown(ProgramState& state, Document& document, PointerButton button, int x, int y);
ToolStep toolMouseMove(Document& document, int x, int y);
ToolStep toolMouseUp(ProgramState& state, Document& document, int x, int y);

} // namespace lumiran

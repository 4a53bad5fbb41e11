#pragma once

#include <array>
#include <string>
#include <string_view>

namespace lumiran {

// Entries of the viewer's zoom menu (`ZoomNo1`).
namespace viewer_zoom {
inline constexpr int In = 0;
inline constexpr int Out = 1;
inline constexpr int Quarter = 3;
inline constexpr int Actual = 6;
inline constexpr int Auto = 9;
inline constexpr int Count = 10;
} // namespace viewer_zoom

// Captions of the zoom entries; "-" is the separator.
inline constexpr std::array<const char*, viewer_zoom::Count> ViewerZoomCaptions = {
    "Zoom In (x1.2)", "Zoom Out (x0.8)", "-", "25%", "50%", "75%", "100%", "120%", "150%", "Auto"};

struct ViewSize {
    double width = 0;
    double height = 0;
};

// What the viewer shows: the ticked entry (3 to 9) and the size of the
// shown picture, kept unrounded so that steps multiply exactly.
struct ViewerZoom {
    int ticked = viewer_zoom::Auto;
    ViewSize shown;
};

enum class ZoomOutcome { Applied, TickOnly, Failed };

// Entry `index` on the picture of size `big` in a pane of size `pane`.
// Without a picture only the tick moves; a size that would fall below one
// pixel or beyond the largest shown picture fails and leaves the size.
ZoomOutcome applyZoom(ViewerZoom& zoom, int index, ViewSize big, ViewSize pane, bool hasPicture);

// The size shown after a load: the ticked entry on the new picture.
ZoomOutcome zoomNewPicture(ViewerZoom& zoom, ViewSize big, ViewSize pane);

// The largest side the viewer draws.
inline constexpr double MaxShownSide = 32767;

// The pattern of a row of the pattern combo: the text between its first
// "(" and the first ")" after it; a row without them lists everything.
[[nodiscard]] std::string patternOfRow(std::string_view row);

// The rows of the pattern combo: the open dialog's labels.
[[nodiscard]] const std::array<const char*, 18>& viewerPatternRows();

// Folder and file name joined by one separator.
[[nodiscard]] std::string joinViewerPath(std::string_view folder, std::string_view name);

} // namespace lumiran

#include "tools/viewer_zoom.h"

#include <algorithm>

namespace lumiran {

namespace {

constexpr double FixedFactor(int index) {
    switch (index) {
    case 3:
        return 0.25;
    case 4:
        return 0.5;
    case 5:
        return 0.75;
    case 6:
        return 1.0;
    case 7:
        return 1.2;
    case 8:
        return 1.5;
    default:
        return 0;
    }
}

bool drawable(ViewSize s) {
    return s.width >= 1 && s.height >= 1 && s.width <= MaxShownSide && s.height <= MaxShownSide;
}

// "Auto": the whole picture in the pane, its proportions kept; a picture that
// fits already stays at its own size, so small icons are not blown up.
ViewSize fitted(ViewSize big, ViewSize pane) {
    if (big.width <= 0 || big.height <= 0) return big;
    const double scale = std::min(
        {1.0, std::max(pane.width, 1.0) / big.width, std::max(pane.height, 1.0) / big.height});
    return {std::max(1.0, big.width * scale), std::max(1.0, big.height * scale)};
}

} // namespace

ZoomOutcome applyZoom(ViewerZoom& zoom, int index, ViewSize big, ViewSize pane, bool hasPicture) {
    if (index < 0 || index >= viewer_zoom::Count || index == 2) return ZoomOutcome::TickOnly;
    const bool ticks = index >= viewer_zoom::Quarter;
    if (ticks) zoom.ticked = index;
    if (!hasPicture) return ZoomOutcome::TickOnly;
    ViewSize next;
    if (index == viewer_zoom::In || index == viewer_zoom::Out) {
        const double factor = index == viewer_zoom::In ? 1.2 : 0.8;
        next = {zoom.shown.width * factor, zoom.shown.height * factor};
    } else if (index == viewer_zoom::Auto) {
        next = fitted(big, pane);
    } else {
        const double factor = FixedFactor(index);
        next = {big.width * factor, big.height * factor};
    }
    if (!drawable(next)) return ZoomOutcome::Failed;
    zoom.shown = next;
    return ZoomOutcome::Applied;
}

ZoomOutcome zoomNewPicture(ViewerZoom& zoom, ViewSize big, ViewSize pane) {
    return applyZoom(zoom, zoom.ticked, big, pane, true);
}

std::string patternOfRow(std::string_view row) {
    const std::size_t open = row.find('(');
    if (open == std::string_view::npos) return "*";
    const std::size_t close = row.find(')', open + 1);
    if (close == std::string_view::npos) return "*";
    return std::string(row.substr(open + 1, close - open - 1));
}

const std::array<const char*, 18>& viewerPatternRows() {
    static constexpr std::array<const char*, 18> rows = {
        "(*.bmp;*.dib;*.ico;*.rle;*.wmf;*.emf;*.pcx;*.ppm;*.tga;*.jpg;*.gif;*.pcd)",
        "Windows Bitmap (*.bmp)",
        "Device Independent Bitmap (*.dib)",
        "Windows Icon (*.ico)",
        "Run-Length Encoded (*.rle)",
        "Windows Metafile (*.wmf)",
        "Enhanced Metafile (*.emf)",
        "Jpeg File (*.jpg)",
        "Zsoft Paintbrush (*.pcx)",
        "Portable PixelMap (*.ppm)",
        "Windows Cursors (*.cur)",
        "Truevision Targa (*.tga)",
        "Kodak Photo CD (*.pcd)",
        "All File",
        // Today's formats, after the rows the program has always offered.
        "Portable Network Graphics (*.png)",
        "Tagged Image File (*.tif;*.tiff)",
        "WebP (*.webp)",
        "Jpeg File (*.jpeg;*.jpe)"};
    return rows;
}

std::string joinViewerPath(std::string_view folder, std::string_view name) {
    std::string path(folder);
    if (path.empty() || path.back() != '/') path += '/';
    path += name;
    return path;
}

} // namespace lumiran

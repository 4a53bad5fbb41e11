#include "engine/pixel_frame.h"

#include "engine/shared_rows.h"

namespace lumiran {

void PixelFrame::ImageGetDiBits(const Surface& picture) {
    ImageBits = picture;
}

void PixelFrame::ImageGetDiBitsTrans(const Surface& picture) {
    TransBits = picture;
}

void PixelFrame::makeTransOutside(const Span& worked) {
    TransBits = Surface::uninitialised(ImageBits.width(), ImageBits.height());
    const bool rowsWorked = worked.firstColumn < worked.endColumn;
    const int workedBegin = rowsWorked ? worked.firstRow : 0;
    const int workedEnd = rowsWorked ? std::max(worked.firstRow, worked.endRow) : 0;
    const int width = ImageBits.width();
    const auto copyRow = [this](int y) { copyRowToTrans(y); };
    forEachRowShared(context(), 0, workedBegin, width, copyRow);
    forEachRowShared(context(), workedEnd, ImageBits.height(), width, copyRow);
}

void PixelFrame::ImageSetDiBits(Surface& picture) {
    picture = std::move(ImageBits);
    ImageBits = Surface();
    TransBits = Surface();
}

void PixelFrame::ImageSetDiBitsTrans(Surface& picture) {
    picture = std::move(TransBits);
    ImageBits = Surface();
    TransBits = Surface();
}

void PixelFrame::SetProgressRange(int top, int bottom) {
    ProgressTotal = wrap16(bottom - top);
}

void PixelFrame::StepProgress() {
    ++ProgressCount;
    // A total of 0 gives an infinity here, which the conversion refuses
    // with the overflow error, as the original did.
    ProgressPercent = roundTo<std::int32_t>(static_cast<double>(ProgressCount) /
                                            static_cast<double>(ProgressTotal) * 100.0);
    if (context_.progress != nullptr) context_.progress->showPercent(ProgressPercent);
}

PixelFrame::BandPlan PixelFrame::bandPlan(const ProcessRect& rect) const {
    const Span span = spanOf(rect);
    const long long rows = static_cast<long long>(loopEnd(rect.bottom)) - rect.top;
    const int threads = context_.threading.threads;
    if (threads <= 1 || rows <= 1 || span.firstColumn >= span.endColumn) return {};
    const long long width = span.endColumn - span.firstColumn;
    const long long bandRows =
        std::max<long long>(1, (std::max(context_.threading.bandPixels, 1) + width - 1) / width);
    const long long bands = (rows + bandRows - 1) / bandRows;
    return {static_cast<int>(std::min<long long>(threads, bands)), static_cast<int>(bandRows)};
}

void PixelFrame::fail(const EffectError& error) {
    context_.failures.push_back(error);
    context_.requestCancel();
}

} // namespace lumiran

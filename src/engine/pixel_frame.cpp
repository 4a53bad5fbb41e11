#include "engine/pixel_frame.h"

namespace lumiran {

void PixelFrame::ImageGetDiBits(const Surface& picture) {
    ImageBits = picture;
}

void PixelFrame::ImageGetDiBitsTrans(const Surface& picture) {
    TransBits = picture;
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

void PixelFrame::fail(const EffectError& error) {
    context_.failures.push_back(error);
    context_.requestCancel();
}

} // namespace lumiran

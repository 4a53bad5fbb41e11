#include "shell/undo_stack.h"

#include <algorithm>
#include <utility>

namespace lumiran {
namespace {

// A limit of 0 still leaves the one slot that always exists.
std::size_t slotsFor(std::uint8_t maxUndoCount) {
    return std::max<std::size_t>(maxUndoCount, 1);
}

// Moves a level one slot along and leaves the old slot empty.
void shiftLevel(std::optional<UndoStack::Level>& to, std::optional<UndoStack::Level>& from) {
    to = std::move(from);
    from.reset();
}

} // namespace

UndoStack::UndoStack(std::uint8_t maxUndoCount)
    : maxUndoCount_(maxUndoCount), slots_(slotsFor(maxUndoCount)) {}

void UndoStack::PushUndo(const Document& document) {
    // The copy comes first: a copy that fails leaves the stack as it was,
    // never a counted level without a picture.
    Level newest{document.picture, document.folderLabel, document.nameLabel};
    const int last = static_cast<int>(maxUndoCount_) - 1;
    if (undoCount_ == 0) {
        undoCount_ = 1;
    } else if (undoCount_ <= last) {
        // Shift down by one; at the limit the oldest level falls off the end
        // and the count stays.
        const int from = std::min<int>(undoCount_, last);
        for (int i = from; i >= 1; --i)
            shiftLevel(slots_[i], slots_[i - 1]);
        if (undoCount_ < last) ++undoCount_;
    }
    // Above the limit nothing moves: the newest level is overwritten.
    slots_[0] = std::move(newest);
    lastCaption_ = document.caption();
}

bool UndoStack::PopUndo(Document& document) {
    if (undoCount_ == 0 || !slots_[0]) return false;
    Level newest = std::move(*slots_[0]);
    document.picture = std::move(newest.picture);
    document.folderLabel = std::move(newest.folderLabel);
    document.nameLabel = std::move(newest.nameLabel);
    if (undoCount_ > 1) {
        for (std::size_t i = 0; i < undoCount_ && i + 1 < slots_.size(); ++i) {
            shiftLevel(slots_[i], slots_[i + 1]);
        }
    }
    slots_[undoCount_ - 1].reset();
    --undoCount_;
    return true;
}

void UndoStack::release() {
    undoCount_ = 0;
}

void UndoStack::setMaxUndoCount(std::uint8_t maxUndoCount) {
    maxUndoCount_ = maxUndoCount;
    slots_.resize(slotsFor(maxUndoCount));
    const int limit = std::max(static_cast<int>(maxUndoCount) - 1, 1);
    undoCount_ = static_cast<std::uint8_t>(std::min<int>(undoCount_, limit));
}

} // namespace lumiran

#pragma once

#include "engine/surface.h"
#include "shell/document.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace lumiran {

// One global stack of whole pictures, not one per document: a level holds
// the name of the document it came from, and undoing puts picture and name
// into whichever document is active.
class UndoStack {
  public:
    struct Level {
        Surface picture;
        std::string folderLabel;
        std::string nameLabel;
    };

    explicit UndoStack(std::uint8_t maxUndoCount = 5);

    // Takes a snapshot of the document. With MaxUndoCount M at most M - 1
    // levels are counted (1 for M of 1); beyond that the oldest is dropped.
    void PushUndo(const Document& document);
    // Restores the newest level into the document. Does nothing when no
    // level is counted. Returns whether a level was restored.
    bool PopUndo(Document& document);

    // "ｱﾝﾄﾞｩ領域の開放": forget all levels.
    void release();

    // A new limit keeps the newest levels that still fit.
    void setMaxUndoCount(std::uint8_t maxUndoCount);

    [[nodiscard]] std::uint8_t maxUndoCount() const { return maxUndoCount_; }
    [[nodiscard]] std::uint8_t UndoCount() const { return undoCount_; }
    // The caption of the document of the last snapshot (frm_Keep's caption).
    [[nodiscard]] const std::string& lastCaption() const { return lastCaption_; }
    // Slot i, 0 the newest, including slots beyond the count that still hold a picture.
    [[nodiscard]] const std::optional<Level>& slot(std::size_t i) const { return slots_.at(i); }
    [[nodiscard]] std::size_t slotCount() const { return slots_.size(); }

  private:
    std::uint8_t maxUndoCount_;
    std::uint8_t undoCount_ = 0;
    std::vector<std::optional<Level>> slots_;
    std::string lastCaption_;
};

} // namespace lumiran

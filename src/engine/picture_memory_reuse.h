#pragma once

#include "engine/picture_memory.h"

namespace lumiran {

// The number of released mappings kept for reuse now.
[[nodiscard]] int keptPictureMemoryLimit();

// Keeps at least count released mappings while it lives, then the limit
// before: steps of one run that free a picture and make the next of the
// same size reuse its pages rather than fault in fresh ones.
class KeepPictureMemoryWhile {
  public:
    explicit KeepPictureMemoryWhile(int count) : before_(keptPictureMemoryLimit()) {
        if (count > before_) keepReleasedPictureMemory(count);
    }
    KeepPictureMemoryWhile(const KeepPictureMemoryWhile&) = delete;
    KeepPictureMemoryWhile& operator=(const KeepPictureMemoryWhile&) = delete;
    ~KeepPictureMemoryWhile() { keepReleasedPictureMemory(before_); }

  private:
    int before_;
};

} // namespace lumiran

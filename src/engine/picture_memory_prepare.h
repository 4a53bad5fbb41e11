#pragma once

#include <cstddef>
#include <span>

namespace lumiran {

// Maps and faults in a kept mapping for each buffer of the given sizes
// (those kept already count), so that the next allocations of those sizes
// find their pages ready. The editor calls it off the GUI thread when a
// large picture opens: a run's first copies of it would otherwise wait on
// the kernel for every page. Does nothing where no mappings are kept
// (keepReleasedPictureMemory), and for small buffers.
void prepareKeptPictureMemory(std::span<const std::size_t> buffers);

// Faults in the pages of a buffer without writing them: another thread
// that is about to fill it then finds its pages ready. Safe beside that
// thread's writes; advice only.
void faultInPictureMemory(std::span<const std::byte> buffer) noexcept;

} // namespace lumiran

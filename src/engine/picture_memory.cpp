#include "engine/picture_memory.h"

#include <cstdint>
#include <sys/mman.h>

namespace lumiran {
namespace {

std::size_t roundedUp(std::size_t bytes) {
    return (bytes + HugePageBytes - 1) / HugePageBytes * HugePageBytes;
}

} // namespace

void* allocatePictureMemory(std::size_t bytes) {
    if (bytes < HugePageBytes) return ::operator new(bytes, std::nothrow);
    const std::size_t size = roundedUp(bytes);
    // Mapped with one huge page to spare, then trimmed to a 2 MiB boundary
    // at both ends, so that every page of the buffer can be a huge page.
    void* mapped = mmap(nullptr, size + HugePageBytes, PROT_READ | PROT_WRITE,
                        MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (mapped == MAP_FAILED) return nullptr;
    const auto start = reinterpret_cast<std::uintptr_t>(mapped);
    const std::uintptr_t aligned = (start + HugePageBytes - 1) & ~(HugePageBytes - 1);
    if (aligned > start) munmap(mapped, aligned - start);
    const std::uintptr_t end = start + size + HugePageBytes;
    if (end > aligned + size) munmap(reinterpret_cast<void*>(aligned + size), end - aligned - size);
    void* memory = reinterpret_cast<void*>(aligned);
    // Advice only: without huge pages the buffer works all the same.
    (void)madvise(memory, size, MADV_HUGEPAGE);
    return memory;
}

void releasePictureMemory(void* memory, std::size_t bytes) noexcept {
    if (memory == nullptr) return;
    if (bytes < HugePageBytes) {
        ::operator delete(memory);
        return;
    }
    munmap(memory, roundedUp(bytes));
}

} // namespace lumiran

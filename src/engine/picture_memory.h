#pragma once

#include <cstddef>
#include <new>
#include <utility>

namespace lumiran {

// Large picture buffers come straight from the kernel, 2 MiB aligned and
// marked for transparent huge pages: a fresh 4 KiB page costs a fault, and
// a 4096x4096 picture has sixteen thousand of them. Small buffers use the
// ordinary heap. Returns null when the memory cannot be had.
[[nodiscard]] void* allocatePictureMemory(std::size_t bytes);
void releasePictureMemory(void* memory, std::size_t bytes) noexcept;

// Keeps up to count released mappings for reuse by the next allocations of
// the same size, whose pages are then faulted in already (0, the default,
// keeps none). The editor, which runs effect after effect on pictures of
// one size, keeps a few; a one-shot command keeps none, so that a buffer it
// no longer needs goes back at once.
void keepReleasedPictureMemory(int count);

// From this size on, picture memory is mapped on its own.
inline constexpr std::size_t HugePageBytes = std::size_t{2} << 20;

// The allocator of picture buffers. Elements are default-initialised: a
// buffer that is about to be overwritten is not cleared first.
template <typename T>
struct PictureAllocator {
    using value_type = T;

    PictureAllocator() = default;
    template <typename U>
    explicit PictureAllocator(const PictureAllocator<U>&) noexcept {}

    [[nodiscard]] T* allocate(std::size_t count) {
        if (count > static_cast<std::size_t>(-1) / sizeof(T)) throw std::bad_alloc();
        void* memory = allocatePictureMemory(count * sizeof(T));
        if (memory == nullptr) throw std::bad_alloc();
        return static_cast<T*>(memory);
    }
    void deallocate(T* memory, std::size_t count) noexcept {
        releasePictureMemory(memory, count * sizeof(T));
    }

    template <typename U>
    void construct(U* at) noexcept {
        ::new (static_cast<void*>(at)) U;
    }
    template <typename U, typename... Args>
    void construct(U* at, Args&&... args) {
        ::new (static_cast<void*>(at)) U(std::forward<Args>(args)...);
    }

    template <typename U>
    friend bool operator==(const PictureAllocator&, const PictureAllocator<U>&) noexcept {
        return true;
    }
};

} // namespace lumiran

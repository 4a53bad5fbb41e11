#include "engine/picture_memory_prepare.h"
#include "engine/picture_memory_reuse.h"

#include <algorithm>
#include <cstdint>
#include <mutex>
#include <sys/mman.h>
#include <vector>

namespace lumiran {
namespace {

std::size_t roundedUp(std::size_t bytes) {
    return (bytes + HugePageBytes - 1) / HugePageBytes * HugePageBytes;
}

// A new mapping of size bytes (a multiple of HugePageBytes), 2 MiB aligned.
void* mapFresh(std::size_t size) {
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

// Released mappings kept for reuse, the latest last; process-wide like the
// heap it stands beside.
class ReleasedMappings {
  public:
    static ReleasedMappings& instance() {
        static ReleasedMappings mappings;
        return mappings;
    }

    void setLimit(int count) {
        const std::scoped_lock lock(mutex_);
        limit_ = static_cast<std::size_t>(std::max(count, 0));
        kept_.reserve(limit_); // keep then never allocates
        while (kept_.size() > limit_)
            dropOldest();
    }

    [[nodiscard]] int limit() {
        const std::scoped_lock lock(mutex_);
        return static_cast<int>(limit_);
    }

    // How many more mappings of exactly size bytes may be kept, up to count;
    // older ones of other sizes give way to them.
    [[nodiscard]] std::size_t roomFor(std::size_t size, std::size_t count) {
        const std::scoped_lock lock(mutex_);
        const auto same = static_cast<std::size_t>(
            std::ranges::count_if(kept_, [size](const Mapping& m) { return m.size == size; }));
        const std::size_t wanted = std::min(count, limit_);
        return wanted > same ? wanted - same : 0;
    }

    // A kept mapping of exactly size bytes, or null.
    void* take(std::size_t size) {
        const std::scoped_lock lock(mutex_);
        const auto found = std::find_if(kept_.rbegin(), kept_.rend(),
                                        [size](const Mapping& m) { return m.size == size; });
        if (found == kept_.rend()) return nullptr;
        void* memory = found->memory;
        kept_.erase(std::next(found).base());
        return memory;
    }

    // Keeps the mapping when kept ones are wanted; false when it is to go.
    bool keep(void* memory, std::size_t size) {
        const std::scoped_lock lock(mutex_);
        if (limit_ == 0) return false;
        if (kept_.size() == limit_) dropOldest();
        kept_.push_back({memory, size});
        return true;
    }

  private:
    struct Mapping {
        void* memory = nullptr;
        std::size_t size = 0;
    };
    void dropOldest() {
        munmap(kept_.front().memory, kept_.front().size);
        kept_.erase(kept_.begin());
    }

    std::mutex mutex_;
    std::size_t limit_ = 0;
    std::vector<Mapping> kept_;
};

} // namespace

void keepReleasedPictureMemory(int count) {
    ReleasedMappings::instance().setLimit(count);
}

int keptPictureMemoryLimit() {
    return ReleasedMappings::instance().limit();
}

void* allocatePictureMemory(std::size_t bytes) {
    if (bytes < HugePageBytes) return ::operator new(bytes, std::nothrow);
    const std::size_t size = roundedUp(bytes);
    if (void* kept = ReleasedMappings::instance().take(size)) return kept;
    return mapFresh(size);
}

void prepareKeptPictureMemory(std::span<const std::size_t> buffers) {
    std::vector<std::size_t> sizes;
    for (const std::size_t bytes : buffers) {
        if (bytes >= HugePageBytes) sizes.push_back(roundedUp(bytes));
    }
    std::ranges::sort(sizes);
    for (auto at = sizes.begin(); at != sizes.end();) {
        const std::size_t size = *at;
        const auto end =
            std::ranges::find_if(at, sizes.end(), [size](std::size_t s) { return s != size; });
        const std::size_t wanted =
            ReleasedMappings::instance().roomFor(size, static_cast<std::size_t>(end - at));
        for (std::size_t i = 0; i < wanted; ++i) {
            auto* memory = static_cast<unsigned char*>(mapFresh(size));
            if (memory == nullptr) return;
            // One write a page faults it in, whatever size the kernel gave it.
            constexpr std::size_t page = 4096;
            for (std::size_t offset = 0; offset < size; offset += page)
                *static_cast<volatile unsigned char*>(memory + offset) = 0;
            releasePictureMemory(memory, size);
        }
        at = end;
    }
}

void faultInPictureMemory(std::span<const std::byte> buffer) noexcept {
#ifdef MADV_POPULATE_WRITE
    constexpr std::uintptr_t page = 4096;
    const auto start = reinterpret_cast<std::uintptr_t>(buffer.data()) & ~(page - 1);
    const auto end = reinterpret_cast<std::uintptr_t>(buffer.data() + buffer.size());
    if (buffer.empty() || end <= start) return;
    (void)madvise(reinterpret_cast<void*>(start), end - start, MADV_POPULATE_WRITE);
#else
    (void)buffer;
#endif
}

void releasePictureMemory(void* memory, std::size_t bytes) noexcept {
    if (memory == nullptr) return;
    if (bytes < HugePageBytes) {
        ::operator delete(memory);
        return;
    }
    const std::size_t size = roundedUp(bytes);
    if (!ReleasedMappings::instance().keep(memory, size)) munmap(memory, size);
}

} // namespace lumiran

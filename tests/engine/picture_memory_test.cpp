// Released picture mappings kept for reuse: only for the same size, only as
// many as asked for, and none by default; buffers faulted in keep what
// they hold.
#include "engine/picture_memory_prepare.h"
#include "engine/picture_memory_reuse.h"

#include <gtest/gtest.h>

namespace lumiran {
namespace {

constexpr std::size_t Large = 3 * HugePageBytes;

TEST(PictureMemory, KeptMappingsComeBackForTheSameSizeOnly) {
    keepReleasedPictureMemory(1);
    void* first = allocatePictureMemory(Large);
    ASSERT_NE(first, nullptr);
    static_cast<char*>(first)[Large - 1] = 1;
    releasePictureMemory(first, Large);
    // A buffer of another size maps its own; the kept one stays kept.
    void* other = allocatePictureMemory(Large + HugePageBytes);
    EXPECT_NE(other, first);
    releasePictureMemory(other, Large + HugePageBytes); // replaces the kept one
    void* again = allocatePictureMemory(Large);
    releasePictureMemory(again, Large);
    void* reused = allocatePictureMemory(Large - 100); // rounds to the same size
    EXPECT_EQ(reused, again);
    releasePictureMemory(reused, Large - 100);

    keepReleasedPictureMemory(0); // and the kept one goes
    void* fresh = allocatePictureMemory(Large);
    ASSERT_NE(fresh, nullptr);
    static_cast<char*>(fresh)[0] = 1;
    releasePictureMemory(fresh, Large);
}

// A run of several steps keeps what its steps free for the next one, and
// leaves the limit it found: never lowers a larger one, restores none.
TEST(PictureMemory, KeepingWhileARunLastsRestoresTheLimitFound) {
    const struct { int before, asked, during; } cases[] = {{0, 2, 2}, {4, 2, 4}, {1, 1, 1}};
    for (const auto& c : cases) {
        keepReleasedPictureMemory(c.before);
        {
            const KeepPictureMemoryWhile run(c.asked);
            EXPECT_EQ(keptPictureMemoryLimit(), c.during) << c.before << " " << c.asked;
            void* step = allocatePictureMemory(Large);
            releasePictureMemory(step, Large);
            EXPECT_EQ(allocatePictureMemory(Large), step) << "the next step reuses it";
            releasePictureMemory(step, Large);
        }
        EXPECT_EQ(keptPictureMemoryLimit(), c.before);
    }
    keepReleasedPictureMemory(0);
}

TEST(PictureMemory, FaultingInKeepsWhatTheBufferHolds) {
    // Huge-page and heap buffers, written in part, faulted in whole and
    // from an odd offset: what was written stays, the rest reads as zero.
    for (const std::size_t bytes : {std::size_t{3000}, HugePageBytes + 4096 * 3 + 5}) {
        auto* memory = static_cast<std::byte*>(allocatePictureMemory(bytes));
        ASSERT_NE(memory, nullptr);
        const std::span<std::byte> buffer(memory, bytes);
        const std::size_t written = bytes / 3;
        for (std::size_t i = 0; i < written; ++i)
            buffer[i] = static_cast<std::byte>(i * 7 + 1);
        faultInPictureMemory(buffer.subspan(1));
        faultInPictureMemory(buffer);
        for (std::size_t i = 0; i < written; ++i)
            ASSERT_EQ(buffer[i], static_cast<std::byte>(i * 7 + 1)) << bytes << " at " << i;
        if (bytes >= HugePageBytes) {
            for (std::size_t i = written; i < bytes; i += 4093)
                ASSERT_EQ(buffer[i], std::byte{0}) << bytes << " at " << i;
        }
        releasePictureMemory(memory, bytes);
    }
}

} // namespace
} // namespace lumiran

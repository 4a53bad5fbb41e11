// Released picture mappings kept for reuse: only for the same size, only as
// many as asked for, and none by default.
#include "engine/picture_memory.h"

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

} // namespace
} // namespace lumiran

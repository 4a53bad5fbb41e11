// Files made to hang the load path or to make it allocate gigabytes from a
// few bytes. Each must end quickly in a clear refusal or a picture within
// the limits; the tests use small limits so that the pictures stay small.
#include "engine/pixel.h"
#include "imagefiles/image_load_error.h"
#include "imagefiles/load_dispatch.h"
#include "platform/qt_picture_decoder.h"

#include <filesystem>
#include <gtest/gtest.h>
#include <optional>
#include <string>
#include <vector>

namespace lumiran {
namespace {

namespace fs = std::filesystem;

// Keeps the notes a load makes.
class NoteSink : public ProgressSink {
  public:
    void showPercent(int) override {}
    void showNote(const std::string& note) override { notes += note; }
    std::string notes;
};

struct HostileCase {
    const char* file;
    std::int64_t maxPixels;
    // Either a refusal whose detail holds every one of these...
    std::vector<std::string> refusal;
    // ...or a picture of this size, with a note holding this when set.
    int width = 0;
    int height = 0;
    const char* note = nullptr;
};

const std::vector<HostileCase> hostileCases = {
    // Pattern brushes and blits whose bitmap is cut short: libwmf loops forever.
    {"hang-1.wmf", 1024 * 1024, {"record 4", "0x0142", "bitmap header is cut short"}},
    {"hang-2.wmf", 1024 * 1024, {"record 4", "0x0142", "bitmap header is cut short"}},
    {"hang-dibpatternbrush.wmf", 1024 * 1024, {"0x0142", "bitmap header is cut short"}},
    // Declared sizes far above the pixel limit, refused from the header.
    {"jpeg-30000x30000.jpg", LoadLimits::DefaultMaxPixels, {"30000x30000", "16384x16384 pixels"}},
    {"pcx-32767x32767.pcx", LoadLimits::DefaultMaxPixels, {"32767x32767", "16384x16384 pixels"}},
    {"tga-32767x32767.tga", LoadLimits::DefaultMaxPixels, {"32767x32767", "16384x16384 pixels"}},
    {"ppm-9999x9999.ppm", 4096 * 4096, {"9999x9999", "4096x4096 pixels"}},
    // Metafile frames above the limit are drawn scaled down to it.
    {"wmf-20000-frame.wmf", 256 * 256, {}, 256, 256, "20000x20000"},
    {"emf-32767-frame.emf", 256 * 256, {}, 256, 256, "32767x32767"},
    // A header claiming a largest record of 3 GiB: libwmf would allocate it.
    {"wmf-huge-max-record.wmf", 256 * 256, {}, 256, 256, "20000x20000"},
    // An end record longer than three words, with a cut-short pattern brush
    // after it that libwmf would still play and loop on.
    {"wmf-long-end-record.wmf", 1024 * 1024, {"record 0", "8 words instead of 3"}},
    // A header description whose offset points past the file: the converter
    // read it there; it gets a copy without one.
    {"emf-description-past-the-end.emf", 1024 * 1024, {"not valid"}},
};

TEST(HostileFiles, EndInARefusalOrAPictureWithinTheLimits) {
    QtPictureDecoder decoder;
    for (const HostileCase& c : hostileCases) {
        SCOPED_TRACE(c.file);
        const fs::path path = fs::path(LUMIRAN_HOSTILE_DIR) / c.file;
        LoadLimits limits;
        limits.maxPixels = c.maxPixels;
        NoteSink sink;
        try {
            const std::optional<Surface> picture = LoadImageFile(path, &decoder, &sink, limits);
            ASSERT_TRUE(picture);
            EXPECT_TRUE(c.refusal.empty()) << "loaded";
            EXPECT_EQ(picture->width(), c.width);
            EXPECT_EQ(picture->height(), c.height);
            ASSERT_NE(c.note, nullptr);
            EXPECT_NE(sink.notes.find(c.note), std::string::npos) << sink.notes;
            EXPECT_NE(sink.notes.find("drawn at 256x256"), std::string::npos) << sink.notes;
        } catch (const ImageLoadError& e) {
            EXPECT_FALSE(c.refusal.empty()) << e.detail();
            for (const std::string& part : c.refusal)
                EXPECT_NE(e.detail().find(part), std::string::npos) << e.detail();
        }
    }
}

// A picture within the pixel limit is still refused when it and the copies
// a run keeps would not fit the memory given; the message names both.
TEST(HostileFiles, TheMemoryARunNeedsIsCheckedBeforeReading) {
    QtPictureDecoder decoder;
    LoadLimits limits;
    limits.maxPixels = 16384LL * 16384;
    limits.maxBytes = 64ull << 20;
    limits.keptCopies = 2 + 4;
    try {
        (void)LoadImageFile(fs::path(LUMIRAN_HOSTILE_DIR) / "ppm-9999x9999.ppm", &decoder, nullptr,
                            limits);
        ADD_FAILURE() << "loaded";
    } catch (const ImageLoadError& e) {
        EXPECT_NE(e.detail().find("9999x9999"), std::string::npos) << e.detail();
        EXPECT_NE(e.detail().find("undo levels"), std::string::npos) << e.detail();
        EXPECT_NE(e.detail().find("64 MiB"), std::string::npos) << e.detail();
    }
}

} // namespace
} // namespace lumiran

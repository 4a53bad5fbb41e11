#include "imagefiles/image_load_error.h"
#include "imagefiles/load_dispatch.h"
#include "test_support.h"

#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>

namespace lumiran {
namespace {

namespace fs = std::filesystem;

TEST(FileExtension, LastDotWinsAndAFolderSeparatorMeansNone) {
    EXPECT_EQ(FileExtension("a/b/picture.PCX"), "PCX");
    EXPECT_EQ(FileExtension("archive.tar.tga"), "tga");
    EXPECT_EQ(FileExtension("folder.d/picture"), "");
    EXPECT_EQ(FileExtension("folder.d\\picture"), "");
    EXPECT_EQ(FileExtension("name."), "");
    EXPECT_EQ(FileExtension(""), "");
    EXPECT_EQ(FileExtension(".hidden"), "hidden");
}

TEST(LoadRoute, ReadersByLowerCaseExtension) {
    EXPECT_EQ(routeForExtension("pcx"), LoadRoute::Pcx);
    EXPECT_EQ(routeForExtension("pgm"), LoadRoute::Ppm);
    EXPECT_EQ(routeForExtension("pbm"), LoadRoute::Ppm);
    EXPECT_EQ(routeForExtension("cur"), LoadRoute::Platform);
    // "dib" stands in the open filter but not in the dispatch.
    EXPECT_EQ(routeForExtension("dib"), LoadRoute::Blank);
    for (const char* today : {"png", "tif", "tiff", "webp", "jpeg", "jpe"})
        EXPECT_EQ(routeForExtension(today), LoadRoute::Platform) << today;
    EXPECT_EQ(routeForExtension("svg"), LoadRoute::Blank);
    EXPECT_EQ(routeForExtension("jp"), LoadRoute::Blank);
}

class RecordingSink : public ProgressSink {
  public:
    void showPercent(int percent) override { percents.push_back(percent); }
    std::vector<int> percents;
};

struct LoadImageFileTest : ::testing::Test {
    // One folder per test: ctest runs the tests of a fixture side by side.
    fs::path dir = lumiran::testing::testFolder("lumiran-load-dispatch-");
    void SetUp() override { fs::create_directories(dir); }
    void TearDown() override { fs::remove_all(dir); }
    fs::path write(const char* name, const std::string& bytes) const {
        std::ofstream(dir / name, std::ios::binary) << bytes;
        return dir / name;
    }
};

TEST_F(LoadImageFileTest, UpperCaseExtensionsGoToTheSameReader) {
    const std::string p6 = "P6\n4 2\n255\n" + std::string(24, '\x20');
    RecordingSink progress;
    const auto lower = LoadImageFile(write("a.ppm", p6), nullptr, &progress);
    const auto upper = LoadImageFile(write("b.PPM", p6), nullptr, nullptr);
    ASSERT_TRUE(lower && upper);
    EXPECT_EQ(*lower, *upper);
    EXPECT_FALSE(progress.percents.empty());
}

TEST_F(LoadImageFileTest, UnknownExtensionsAndDotsInFoldersGiveABlankPictureAndSuccess) {
    EXPECT_FALSE(LoadImageFile(write("x.dib", "anything"), nullptr, nullptr).has_value());
    fs::create_directories(dir / "with.dot");
    std::ofstream(dir / "with.dot" / "plain") << "x";
    EXPECT_FALSE(LoadImageFile(dir / "with.dot" / "plain", nullptr, nullptr).has_value());
}

TEST_F(LoadImageFileTest, FailuresCarryTheRuntimesNumbers) {
    try {
        (void)LoadImageFile(dir / "missing.pcx", nullptr, nullptr);
        FAIL();
    } catch (const ImageLoadError& e) {
        EXPECT_EQ(e.number(), 53);
    }
    try {
        (void)LoadImageFile(write("bad.pcx", "not a pcx"), nullptr, nullptr);
        FAIL();
    } catch (const ImageLoadError& e) {
        EXPECT_EQ(e.number(), 0); // the reader's own refusal has no description
        EXPECT_TRUE(e.description().empty());
        EXPECT_NE(e.detail().find("PCX"), std::string::npos);
    }
    // Platform formats need the platform's decoder.
    EXPECT_THROW((void)LoadImageFile(write("x.bmp", "BM"), nullptr, nullptr), ImageLoadError);
}

TEST(LoadProgressCaption, WaitTextThenTwoBlanksAndThePercentage) {
    EXPECT_EQ(loadProgressCaption(42), "しばらくお待ちください。  42%");
}

} // namespace
} // namespace lumiran

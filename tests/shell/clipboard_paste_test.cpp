#include "shell/area_tool.h"
#include "shell/clipboard_paste.h"
#include "test_support.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace lumiran {
namespace {

using testing::makeVariedPicture;

TEST(ClipboardFormatTest, BitmapFormsComeBeforeVectorForms) {
    struct Case {
        std::vector<std::string> types;
        int format;
    };
    const Case cases[] = {
        {{"image/svg+xml", "image/png"}, clipboard_format::Bitmap},
        {{"image/x-wmf", "image/BMP"}, clipboard_format::Bitmap},
        {{"application/x-qt-image"}, clipboard_format::Bitmap},
        {{"image/x-emf", "image/x-wmf"}, clipboard_format::Metafile},
        {{"image/svg+xml"}, clipboard_format::EnhMetafile},
        {{"text/plain", "text/uri-list"}, clipboard_format::None},
        {{}, clipboard_format::None},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(ClipboardImageFormat(c.types), c.format)
            << (c.types.empty() ? "(empty)" : c.types.front());
    }
}

struct PasteTest : ::testing::Test {
    ProgramState state;
    Document document;
    void SetUp() override { document.picture = makeVariedPicture(20, 16); }
};

TEST_F(PasteTest, APasteIsCutToItsBlockAndGoesToTheArea) {
    const Surface before = document.picture;
    const Surface red(30, 30, makePixel(255, 0, 0));
    document.ToolsFlag = tools::AreaFixed;
    document.area = {12, 9, 4, 3}; // drawn from bottom right
    const AreaRect place = pastePlace(document, red.width(), red.height());
    EXPECT_EQ(place, (AreaRect{4, 3, 12, 9}));
    PasteWithRaster(state, document, red, 0, place);
    for (int y = 0; y < 16; ++y) {
        for (int x = 0; x < 20; ++x) {
            const bool inside = x >= 4 && x < 12 && y >= 3 && y < 9;
            ASSERT_EQ(document.picture.at(x, y) & 0xFFFFFF,
                      inside ? makePixel(255, 0, 0) : before.at(x, y) & 0xFFFFFF);
        }
    }
}

TEST_F(PasteTest, PlacesOutsideOrOfNoSizeNeverReachOutsideThePicture) {
    const Surface before = document.picture;
    const Surface red(5, 5, makePixel(255, 0, 0));
    for (const AreaRect place :
         {AreaRect{3, 3, 3, 8}, AreaRect{-100, -100, -95, -95}, AreaRect{19, 15, 40000, 40000}}) {
        EXPECT_FALSE(PasteWithRaster(state, document, red, 0, place).has_value());
    }
    EXPECT_EQ(document.picture.at(19, 15) & 0xFFFFFF, makePixel(255, 0, 0));
    document.picture.at(19, 15) = before.at(19, 15);
    EXPECT_EQ(document.picture, before);
}

} // namespace
} // namespace lumiran

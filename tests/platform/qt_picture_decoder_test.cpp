#include "engine/pixel.h"
#include "imagefiles/bitmap_writer.h"
#include "imagefiles/byte_io.h"
#include "imagefiles/file_io.h"
#include "imagefiles/image_load_error.h"
#include "imagefiles/png_writer.h"
#include "platform/qt_picture_decoder.h"
#include "platform/stderr_capture.h"
#include "test_support.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <gtest/gtest.h>
#include <initializer_list>
#include <optional>
#include <random>
#include <string>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>
#include <vector>

namespace lumiran {
namespace {

namespace fs = std::filesystem;
using Bytes = std::vector<std::uint8_t>;
using Values = std::initializer_list<std::int64_t>;

constexpr int invalidPicture = 481;
constexpr int fileNotFound = 53;

constexpr Rgb8 palette[] = {{0, 0, 0},      {255, 255, 255}, {220, 20, 60}, {0, 128, 0},
                            {30, 144, 255}, {255, 215, 0},   {128, 0, 128}, {64, 224, 208}};

// Odd width, so that bitmap rows are padded; eight colours, so that
// palette formats hold it exactly.
Surface knownPicture() {
    return testing::makePicture(7, 5,
                                [](int x, int y) { return toPixel(palette[(x * 3 + y * 5) % 8]); });
}

bool nearColour(Pixel actual, Rgb8 expected, int tolerance) {
    return std::abs(redOf(actual) - expected.red) <= tolerance &&
           std::abs(greenOf(actual) - expected.green) <= tolerance &&
           std::abs(blueOf(actual) - expected.blue) <= tolerance;
}

#define SKIP_WITHOUT_IMAGEMAGICK()                                                                 \
    if (std::system("convert -version > /dev/null 2>&1") != 0)                                     \
    GTEST_SKIP() << "ImageMagick's convert is not installed"

// Appends each value as a little-endian field of `size` bytes.
void put(Bytes& out, int size, Values values) {
    for (const std::int64_t v : values) {
        for (int i = 0; i < size; ++i)
            out.push_back(static_cast<std::uint8_t>(v >> (8 * i)));
    }
}

Bytes patched(Bytes bytes, std::initializer_list<std::pair<std::size_t, std::uint8_t>> changes) {
    for (const auto& [at, value] : changes)
        bytes[at] = value;
    return bytes;
}

// A bitmap with a 40-byte info header, its palette and its pixel data.
Bytes bitmap(int width, int height, int bits, int compression, const std::vector<Rgb8>& colours,
             const Bytes& data) {
    const auto used = static_cast<std::int64_t>(colours.size());
    const auto size = static_cast<std::int64_t>(data.size());
    Bytes out;
    put(out, 2, {0x4D42});
    put(out, 4, {54 + 4 * used + size, 0, 54 + 4 * used, 40, width, height});
    put(out, 2, {1, bits});
    put(out, 4, {compression, size, 0, 0, used, 0});
    for (const Rgb8 c : colours)
        put(out, 1, {c.blue, c.green, c.red, 0});
    out.insert(out.end(), data.begin(), data.end());
    return out;
}

struct QtPictureDecoderTest : ::testing::Test {
    fs::path dir;
    QtPictureDecoder decoder;

    void SetUp() override {
        dir = lumiran::testing::testFolder("lumiran-platform-");
        fs::remove_all(dir);
        fs::create_directories(dir);
    }
    void TearDown() override { fs::remove_all(dir); }

    fs::path write(const std::string& name, const Bytes& bytes) const {
        writeFileAtomically(dir / name, bytes);
        return dir / name;
    }
    Surface load(const std::string& name) {
        return decoder.LoadPicture(dir / name, FileExtension(name));
    }
    // The error a load ends in; nothing when it gives a picture.
    std::optional<ImageLoadError> loadError(const std::string& name) {
        try {
            EXPECT_FALSE(load(name).empty()) << name;
        } catch (const ImageLoadError& e) {
            return e;
        }
        return std::nullopt;
    }

    // Converts a picture with ImageMagick; the arguments stand between the
    // source and the target, which a format prefix such as "BMP3:" may lead.
    Bytes convert(const Surface& picture, const std::string& arguments, const std::string& target,
                  const std::string& format = "") {
        const fs::path source = write("source.bmp", encodeBmp24(picture));
        const std::string command = "convert '" + source.string() + "' " + arguments + " '" +
                                    format + (dir / target).string() + "'";
        EXPECT_EQ(std::system(command.c_str()), 0) << command;
        return readWholeFile(dir / target, 1 << 24);
    }

    // The decoder must refuse the file as the platform would, saying why.
    void expectRefused(const std::string& name, int number = invalidPicture,
                       const std::string& reason = "") {
        const auto error = loadError(name);
        ASSERT_TRUE(error) << name << " loaded";
        EXPECT_EQ(error->number(), number) << error->detail();
        EXPECT_EQ(error->description(),
                  number == invalidPicture ? "ピクチャが不正です。" : "ファイルが見つかりません。");
        EXPECT_NE(error->detail().find(name), std::string::npos) << error->detail();
        EXPECT_NE(error->detail().find(reason), std::string::npos) << error->detail();
    }
    void expectRefused(const std::string& name, const Bytes& bytes,
                       const std::string& reason = "") {
        write(name, bytes);
        expectRefused(name, invalidPicture, reason);
    }

    // The file loads or is refused as an invalid picture, never worse.
    void expectLoadsOrRefused(const std::string& name, bool mustRefuse = false) {
        const auto error = loadError(name);
        EXPECT_TRUE(error || !mustRefuse) << name << " loaded";
        EXPECT_EQ(error ? error->number() : invalidPicture, invalidPicture) << error->detail();
    }

    // Every strict prefix of a file either loads or is refused as an
    // invalid picture; mustRefuse demands the refusal.
    void expectPrefixesSafe(const Bytes& whole, const std::string& extension, bool mustRefuse) {
        for (std::size_t length = 0; length < whole.size(); ++length) {
            SCOPED_TRACE(length);
            write("prefix." + extension,
                  Bytes(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(length)));
            expectLoadsOrRefused("prefix." + extension, mustRefuse);
        }
    }
};

TEST_F(QtPictureDecoderTest, ReadsBitmapsByContentWhateverTheirName) {
    const Bytes bmp = encodeBmp24(knownPicture());
    write("picture.jpg", bmp);
    EXPECT_TRUE(load("picture.jpg").sameColours(knownPicture()));
    // Qt would show missing rows blank; the platform's decoder refuses them.
    expectPrefixesSafe(bmp, "bmp", true);
    // A kind Qt reads but the platform's decoder does not.
    expectRefused("png.bmp",
                  {0x89, 'P', 'N', 'G', '\r', '\n', 0x1A, '\n', 0, 0, 0, 13, 'I', 'H', 'D', 'R'});
}

TEST_F(QtPictureDecoderTest, ReadsRunLengthBitmaps) {
    SKIP_WITHOUT_IMAGEMAGICK();
    const Bytes runLength =
        convert(knownPicture(), "-colors 16 -compress RLE", "picture.rle", "BMP3:");
    ASSERT_EQ(ByteReader(runLength).u16(30), 1); // 8-bit run-length compression
    EXPECT_TRUE(load("picture.rle").sameColours(knownPicture()));
    expectPrefixesSafe(runLength, "rle", false);
}

TEST_F(QtPictureDecoderTest, RunLengthBitmapEndingEarlyLeavesColourZero) {
    // Two pixels of colour 1, then the end of the bitmap.
    write("early.rle", bitmap(4, 2, 8, 1, {{10, 20, 30}, {200, 100, 50}}, {2, 1, 0, 1}));
    Surface expected(4, 2, makePixel(10, 20, 30));
    expected.at(0, 1) = expected.at(1, 1) = makePixel(200, 100, 50); // rows run bottom-up
    EXPECT_TRUE(load("early.rle").sameColours(expected));
}

TEST_F(QtPictureDecoderTest, ReadsIconsAndCursors) {
    SKIP_WITHOUT_IMAGEMAGICK();
    const Bytes icon = convert(knownPicture(), "", "picture.ico");
    ASSERT_EQ(ByteReader(icon).u16(2), 1); // an icon directory
    EXPECT_TRUE(load("picture.ico").sameColours(knownPicture()));
    expectPrefixesSafe(icon, "ico", false);
    // ImageMagick writes cursors as icons; a cursor is the same directory with
    // type 2 and a hot spot where an icon keeps planes and bit count.
    write("picture.cur", patched(icon, {{2, 2}, {6 + 4, 3}, {6 + 6, 2}}));
    EXPECT_TRUE(load("picture.cur").sameColours(knownPicture()));
}

TEST_F(QtPictureDecoderTest, ReadsGifFirstFrameOverBlack) {
    SKIP_WITHOUT_IMAGEMAGICK();
    write("second.bmp", encodeBmp24(Surface(7, 5, toPixel(palette[5]))));
    const Bytes gif =
        convert(knownPicture(), "'" + (dir / "second.bmp").string() + "'", "animated.gif");
    EXPECT_TRUE(load("animated.gif").sameColours(knownPicture()));
    expectPrefixesSafe(gif, "gif", false);

    // Transparent pixels keep no colour of their own: they show black.
    convert(knownPicture(), "-transparent 'rgb(220,20,60)'", "transparent.gif");
    Surface expected = knownPicture();
    std::ranges::replace(expected.pixels(), toPixel(palette[2]), toPixel(palette[0]));
    EXPECT_TRUE(load("transparent.gif").sameColours(expected));
}

TEST_F(QtPictureDecoderTest, ReadsJpegApproximately) {
    SKIP_WITHOUT_IMAGEMAGICK();
    // Quadrants on the 8-pixel block grid keep the compression honest.
    const auto quadrant = [](int x, int y) { return palette[2 + (x / 8) + 2 * (y / 8)]; };
    const Surface source =
        testing::makePicture(16, 16, [&](int x, int y) { return toPixel(quadrant(x, y)); });
    const Bytes jpeg = convert(source, "-sampling-factor 1x1 -quality 95", "picture.jpg");
    const Surface loaded = load("picture.jpg");
    ASSERT_TRUE(loaded.sameSize(source));
    for (const auto& [x, y] : {std::pair{3, 4}, {12, 3}, {4, 12}, {11, 11}})
        EXPECT_TRUE(nearColour(loaded.at(x, y), quadrant(x, y), 8)) << x << "," << y;
    expectPrefixesSafe(jpeg, "jpg", false);
}

// Today's formats: lossless ones read back exactly, under every name they
// go by; their transparency is laid over white.
struct TodaysFormat {
    const char* name;
    const char* arguments;
};

TEST_F(QtPictureDecoderTest, ReadsTodaysLosslessFormatsExactly) {
    SKIP_WITHOUT_IMAGEMAGICK();
    for (const auto& [name, arguments] :
         {TodaysFormat{"picture.png", ""}, TodaysFormat{"picture.tif", "-compress lzw"},
          TodaysFormat{"picture.tiff", ""},
          TodaysFormat{"picture.webp", "-define webp:lossless=true"}}) {
        SCOPED_TRACE(name);
        const Bytes file = convert(knownPicture(), arguments, name);
        EXPECT_TRUE(load(name).sameColours(knownPicture()));
        if (std::string_view(name) == "picture.png") expectPrefixesSafe(file, "png", false);
    }
}

TEST_F(QtPictureDecoderTest, TodaysFormatsLayTransparencyOverWhite) {
    SKIP_WITHOUT_IMAGEMAGICK();
    // Crimson fully transparent, and the whole picture at half opacity.
    for (const char* name : {"alpha.png", "alpha.tiff", "alpha.webp"}) {
        SCOPED_TRACE(name);
        convert(knownPicture(),
                "-alpha set -transparent 'rgb(220,20,60)' -channel A -evaluate multiply 0.5 "
                "+channel -define webp:lossless=true",
                name);
        const Surface loaded = load(name);
        const Surface source = knownPicture();
        ASSERT_TRUE(loaded.sameSize(source));
        for (int y = 0; y < source.height(); ++y) {
            for (int x = 0; x < source.width(); ++x) {
                const Pixel p = source.at(x, y);
                const auto half = [](int c) { return (c + 255 + 1) / 2; };
                const Rgb8 expected = p == toPixel(palette[2])
                                          ? Rgb8{255, 255, 255}
                                          : Rgb8{static_cast<std::uint8_t>(half(redOf(p))),
                                                 static_cast<std::uint8_t>(half(greenOf(p))),
                                                 static_cast<std::uint8_t>(half(blueOf(p)))};
                EXPECT_TRUE(nearColour(loaded.at(x, y), expected, 1)) << x << "," << y;
            }
        }
    }
}

TEST_F(QtPictureDecoderTest, WrittenPngReadsBackAsTheBitmapOfTheSamePicture) {
    // Widths around the bitmap's four-byte row padding, which PNG rows do not have.
    for (const auto& [width, height] :
         {std::pair{1, 1}, {1, 4}, {2, 3}, {3, 2}, {4, 1}, {5, 5}, {7, 3}, {33, 2}}) {
        const Surface picture = testing::makePicture(width, height, [](int x, int y) {
            return makePixel(x * 40 + y, 255 - x * 7, y * 50, 0xAA); // spare byte set
        });
        savePng24(picture, dir / "picture.png");
        saveBmp24(picture, dir / "picture.bmp");
        const Surface png = load("picture.png");
        EXPECT_TRUE(png.sameColours(picture)) << width << "x" << height;
        EXPECT_TRUE(png.sameColours(load("picture.bmp"))) << width << "x" << height;
    }
}

TEST_F(QtPictureDecoderTest, TodaysFormatsOnlyUnderTheirOwnNames) {
    SKIP_WITHOUT_IMAGEMAGICK();
    const Bytes png = convert(knownPicture(), "", "picture.png");
    write("png.gif", png);
    expectRefused("png.gif", invalidPicture, "PNG");
    // Any of today's names will do for any of today's kinds.
    write("png.webp", png);
    EXPECT_TRUE(load("png.webp").sameColours(knownPicture()));
}

TEST_F(QtPictureDecoderTest, TodaysFormatsStayWithinThePixelLimit) {
    SKIP_WITHOUT_IMAGEMAGICK();
    convert(Surface(300, 200), "", "wide.png");
    decoder = QtPictureDecoder(LoadLimits{.maxPixels = 100 * 100});
    expectRefused("wide.png", invalidPicture, "too large");
}

// --- Metafiles ----------------------------------------------------------

struct MetafileFrame {
    std::int16_t left, top, right, bottom;
    std::uint16_t unitsPerInch;
    bool setsWindowOrigin;
};
using WmfRecords = std::vector<std::pair<int, std::vector<std::int64_t>>>;

// A placeable metafile: the window the frame describes, as writers of
// placeable files set it, then the records and the end-of-file record.
Bytes placeableFile(const MetafileFrame& f, WmfRecords records, int objects) {
    records.insert(records.begin(), {0x020C, {f.bottom - f.top, f.right - f.left}});
    if (f.setsWindowOrigin) records.insert(records.begin(), {0x020B, {f.top, f.left}});
    records.push_back({0x0000, {}});
    Bytes body;
    std::int64_t largest = 0;
    for (const auto& [function, params] : records) {
        const auto words = static_cast<std::int64_t>(3 + params.size());
        largest = std::max(largest, words);
        put(body, 4, {words});
        put(body, 2, {function});
        for (const std::int64_t p : params)
            put(body, 2, {p});
    }
    Bytes file;
    put(file, 2, {0xCDD7, 0x9AC6, 0, f.left, f.top, f.right, f.bottom, f.unitsPerInch, 0, 0});
    std::uint16_t checksum = 0;
    for (std::size_t i = 0; i < file.size(); i += 2)
        checksum ^= static_cast<std::uint16_t>(file[i] | file[i + 1] << 8);
    // A disk metafile's header of 9 words, version 0x300: its size in words,
    // its objects and its largest record.
    const auto words = static_cast<std::int64_t>(18 + body.size()) / 2;
    put(file, 2, {checksum, 1, 9, 0x0300, words & 0xFFFF, words >> 16, objects, largest, 0, 0});
    file.insert(file.end(), body.begin(), body.end());
    return file;
}

constexpr Rgb8 fill{30, 144, 255};
constexpr std::int64_t fillRef = 30 | (144 << 8) | (255 << 16); // as a colour reference
constexpr MetafileFrame plainFrame{0, 0, 600, 450, 1440, true};

// A placeable metafile that fills a rectangle, given in frame units, with
// a solid brush and a null pen.
Bytes placeableMetafile(const MetafileFrame& frame, std::array<std::int16_t, 4> rectangle) {
    const auto [left, top, right, bottom] = rectangle;
    return placeableFile(frame,
                         {{0x02FC, {0, fillRef & 0xFFFF, fillRef >> 16, 0}},
                          {0x012D, {0}},
                          {0x02FA, {5, 0, 0, 0, 0}},
                          {0x012D, {1}},
                          {0x041B, {bottom, right, top, left}}},
                         2);
}

// An enhanced metafile whose header bounds are (left,top)-(right,bottom)
// and which fills a rectangle, in device units, with a solid brush and the
// null pen.
Bytes enhancedMetafile(std::array<std::int32_t, 4> bounds, std::array<std::int32_t, 4> rectangle) {
    // A solid brush selected, the null pen selected, the rectangle, the end
    // of file; each record is its type, its size in bytes and its values.
    Bytes records;
    put(records, 4, {39, 24, 1, 0, fillRef, 0, 37, 12, 1, 37, 12, 0x80000008, 43, 24});
    put(records, 4, {rectangle[0], rectangle[1], rectangle[2], rectangle[3], 14, 20, 0, 16, 20});
    Bytes file;
    put(file, 4, {1, 88, bounds[0], bounds[1], bounds[2], bounds[3]});
    // The frame, in hundredths of a millimetre, deliberately not the bounds'
    // size: the pixel size comes from the bounds.
    put(file, 4, {0, 0, 5000, 5000, 0x464D4520, 0x10000});
    put(file, 4, {static_cast<std::int64_t>(88 + records.size()), 6}); // records
    put(file, 2, {2, 0});                                              // handles
    put(file, 4, {0, 0, 0, 1024, 768, 320, 240}); // description, palette, device sizes
    file.insert(file.end(), records.begin(), records.end());
    return file;
}

const Bytes goodWindowsMetafile = placeableMetafile(plainFrame, {150, 75, 450, 375});
const Bytes goodEnhancedMetafile = enhancedMetafile({0, 0, 39, 29}, {10, 5, 30, 25});

// The picture is 40x30 with the rectangle on pixels (10,5) to (29,24).
void expectRectanglePicture(const Surface& picture) {
    ASSERT_EQ(picture.width(), 40);
    ASSERT_EQ(picture.height(), 30);
    for (const auto& [x, y] : {std::pair{20, 15}, {11, 6}, {28, 23}})
        EXPECT_TRUE(nearColour(picture.at(x, y), fill, 0)) << "inside at " << x << "," << y;
    for (const auto& [x, y] : {std::pair{8, 15}, {31, 15}, {20, 3}, {20, 26}})
        EXPECT_TRUE(nearColour(picture.at(x, y), palette[1], 0)) << "outside at " << x << "," << y;
}

TEST_F(QtPictureDecoderTest, DrawsMetafilesOnTheirFrames) {
    const Bytes offsetEmf = enhancedMetafile({5, 3, 44, 32}, {15, 8, 35, 28});
    for (const auto& [name, bytes] :
         {// 1440 units an inch: 600x450 units are 40x30 pixels at 96 dots an inch.
          std::pair{"plain.wmf", goodWindowsMetafile},
          // 480 units an inch, frame away from the origin: the frame's corner is
          // the picture's corner, whether or not the records set the window origin.
          {"offset.wmf", placeableMetafile({100, 50, 300, 200, 480, true}, {150, 75, 250, 175})},
          {"no-origin.wmf",
           placeableMetafile({100, 50, 300, 200, 480, false}, {150, 75, 250, 175})},
          {"origin.emf", goodEnhancedMetafile},
          // Bounds away from the origin: device (5,3) is the picture's corner.
          {"offset.emf", offsetEmf},
          // The kind is in the content: metafiles read under other names.
          {"metafile.bmp", goodWindowsMetafile},
          {"metafile.jpg", offsetEmf}}) {
        SCOPED_TRACE(name);
        write(name, bytes);
        expectRectanglePicture(load(name));
    }
}

TEST_F(QtPictureDecoderTest, DrawsWindowsMetafileText) {
    // Text goes through libwmf's font lookup, which needs a usable font file.
    // A bold "Arial" 30 units high (the face name's bytes in little-endian
    // words), red text "Hello" at (60,60).
    write("text.wmf",
          placeableFile({0, 0, 1200, 450, 1440, true},
                        {{0x02FB, {-300, 0, 0, 0, 700, 0, 0, 0, 0, 0x7241, 0x6169, 0x006C}},
                         {0x012D, {0}},
                         {0x0209, {0x00FF, 0}},
                         {0x0521, {5, 0x6548, 0x6C6C, 0x006F, 60, 60}}},
                        1));
    const Surface picture = load("text.wmf");
    ASSERT_EQ(picture.width(), 80);
    ASSERT_EQ(picture.height(), 30);
    const auto reddish = [](Pixel p) {
        return redOf(p) > 2 * greenOf(p) + 20 && redOf(p) > 2 * blueOf(p) + 20;
    };
    EXPECT_GT(std::ranges::count_if(picture.pixels(), reddish), 10);
}

TEST_F(QtPictureDecoderTest, RefusesBrokenMetafiles) {
    const Bytes& wmf = goodWindowsMetafile;
    const Bytes& emf = goodEnhancedMetafile;
    expectPrefixesSafe(wmf, "wmf", true);
    expectPrefixesSafe(emf, "emf", true);
    expectRefused("no-units.wmf", patched(wmf, {{14, 0}, {15, 0}}));
    expectRefused("empty-frame.wmf", placeableMetafile({0, 0, 0, 450, 1440, true}, {0, 0, 1, 1}));
    expectRefused("long-record.wmf", patched(wmf, {{22 + 18, 0xFF}})); // a record of 255 words
    expectRefused("garbage.wmf", Bytes(200, 0xA5));
    expectRefused("inverted.emf", enhancedMetafile({39, 0, 0, 29}, {10, 5, 30, 25}));
    expectRefused("odd-record.emf", patched(emf, {{88 + 4, 18}})); // a size not a multiple of 4
    // The end-of-file record becomes an unknown one.
    expectRefused("no-end.emf", patched(emf, {{emf.size() - 20, 0x46}}));
    expectRefused("garbage.emf", Bytes(200, 0x5A));
    // Without the placeable header the file is left to libwmf's own sizing,
    // which must not crash either.
    write("bare.wmf", Bytes(wmf.begin() + 22, wmf.end()));
    expectLoadsOrRefused("bare.wmf");
}

// A frame above the limits is drawn whole on a page scaled down to them.
TEST_F(QtPictureDecoderTest, ScalesMetafilesDownToTheLimits) {
    write("plain.wmf", goodWindowsMetafile);
    write("origin.emf", goodEnhancedMetafile);
    write("wide.emf", enhancedMetafile({0, 0, 39999, 29}, {10, 5, 30, 25}));
    LoadLimits limits;
    limits.maxPixels = 20 * 15;
    for (const char* name : {"plain.wmf", "origin.emf"}) {
        SCOPED_TRACE(name);
        const Surface picture =
            decoder.LoadPicture(dir / name, FileExtension(name), nullptr, limits);
        ASSERT_EQ(picture.width(), 20);
        ASSERT_EQ(picture.height(), 15);
        // The 40x30 page's rectangle (10,5)-(29,24) at half the size.
        EXPECT_TRUE(nearColour(picture.at(10, 7), fill, 0));
        EXPECT_TRUE(nearColour(picture.at(3, 7), palette[1], 0));
        EXPECT_TRUE(nearColour(picture.at(17, 7), palette[1], 0));
    }
    // Wider than a picture may be: scaled to the widest one.
    const Surface wide = decoder.LoadPicture(dir / "wide.emf", "emf", nullptr, LoadLimits{});
    EXPECT_EQ(wide.width(), LoadLimits::MaxDimension);
    EXPECT_EQ(wide.height(), 24);
}

// Bitmaps inside metafile records are checked before the library reads
// them; a whole one still draws.
TEST_F(QtPictureDecoderTest, ChecksTheBitmapsInsideMetafileRecords) {
    // An 8x8 one-bit pattern of black and our fill colour, as 16-bit words.
    auto dibWords = [](std::int64_t infoSize, std::int64_t width, std::int64_t height,
                       std::int64_t bits, std::int64_t compression, std::size_t pixelWords) {
        Bytes dib;
        put(dib, 4, {infoSize, width, height});
        put(dib, 2, {1, bits});
        put(dib, 4, {compression, static_cast<std::int64_t>(pixelWords * 2), 0, 0, 2, 0});
        put(dib, 4, {0, fillRef});
        for (std::size_t i = 0; i < pixelWords; ++i)
            put(dib, 2, {i % 2 == 0 ? 0x5555 : 0});
        std::vector<std::int64_t> words{5, 0}; // BS_DIBPATTERN, RGB colours
        for (std::size_t i = 0; i + 1 < dib.size(); i += 2)
            words.push_back(dib[i] | dib[i + 1] << 8);
        return words;
    };
    auto brushFile = [&](std::vector<std::int64_t> brush) {
        return placeableFile(plainFrame,
                             {{0x0142, std::move(brush)},
                              {0x012D, {0}},
                              {0x02FA, {5, 0, 0, 0, 0}},
                              {0x012D, {1}},
                              {0x041B, {375, 450, 75, 150}}},
                             2);
    };
    write("pattern.wmf", brushFile(dibWords(40, 8, 8, 1, 0, 16)));
    const Surface picture = load("pattern.wmf");
    ASSERT_EQ(picture.width(), 40);
    EXPECT_FALSE(nearColour(picture.at(20, 15), palette[1], 0)) << "the pattern was not drawn";

    struct Case {
        const char* name;
        std::vector<std::int64_t> brush;
        const char* reason;
    };
    const std::vector<Case> cases = {
        {"no-header.wmf", {5, 0, 0, 0, 0}, "bitmap header is cut short"},
        {"odd-header.wmf", dibWords(20, 8, 8, 1, 0, 16), "unknown size 20"},
        {"short-pixels.wmf", dibWords(40, 8, 8, 1, 0, 8), "run past the end"},
        {"wide.wmf", dibWords(40, 40000, 8, 1, 0, 16), "impossible size 40000x8"},
        {"no-width.wmf", dibWords(40, 0, 8, 1, 0, 16), "impossible size 0x8"},
        {"bits-3.wmf", dibWords(40, 8, 8, 3, 0, 16), "3 bits a pixel"},
        {"rle-on-1-bit.wmf", dibWords(40, 8, 8, 1, 1, 16), "unknown compression 1"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        expectRefused(c.name, brushFile(c.brush), c.reason);
    }
}

TEST_F(QtPictureDecoderTest, SurvivesDamagedMetafiles) {
    // The libraries see whatever passes the record walk: damage within the
    // records must end in a picture or a refusal, never in a crash.
    std::mt19937 random(20240601);
    for (const auto& [good, name] :
         {std::pair{goodWindowsMetafile, "damaged.wmf"}, {goodEnhancedMetafile, "damaged.emf"}}) {
        for (int round = 0; round < 300; ++round) {
            Bytes damaged = good;
            for (int hits = 1 + static_cast<int>(random() % 3); hits > 0; --hits)
                damaged[random() % damaged.size()] = static_cast<std::uint8_t>(random());
            write(name, damaged);
            expectLoadsOrRefused(name);
        }
    }
}

// --- Refusals -----------------------------------------------------------

TEST_F(QtPictureDecoderTest, RefusesWhatIsNotAPicture) {
    expectRefused("empty.bmp", Bytes{});
    expectRefused("truncated.jpg", {0xFF, 0xD8, 0xFF, 0xE0, 0x00, 0x10, 'J', 'F', 'I', 'F', 0x00});
    expectRefused("garbage.gif", Bytes(300, 0x37));
    fs::create_directory(dir / "folder.bmp");
    expectRefused("folder.bmp");
    expectRefused("missing.bmp", fileNotFound);
}

TEST_F(QtPictureDecoderTest, RefusesHugeDeclaredSizesBeforeDecoding) {
    // Headers only: a decoder that allocated first would need gigabytes.
    expectRefused("huge.bmp", bitmap(100000, 100000, 24, 0, {}, {}), "too large");
    // A one-pixel frame on a 65535x65535 logical screen.
    expectRefused("huge.gif",
                  Bytes{'G',  'I',  'F',  '8',  '9',  'a',  0xFF, 0xFF, 0xFF, 0xFF, 0x80, 0x00,
                        0x00, 0x00, 0x00, 0x00, 0xFF, 0xFF, 0xFF, 0x2C, 0x00, 0x00, 0x00, 0x00,
                        0x01, 0x00, 0x01, 0x00, 0x00, 0x02, 0x02, 0x44, 0x01, 0x00, 0x3B},
                  "too large");
    // Within the dimensions but beyond the memory the decoder may take: the
    // file fits in 200 bytes, 7x5 pixels at 8 bytes do not.
    LoadLimits tight;
    tight.maxBytes = 200;
    decoder = QtPictureDecoder(tight);
    expectRefused("small.bmp", encodeBmp24(knownPicture()), "too large");
}

// What the decoder libraries print straight to stderr (libpng's default
// error handler does) ends up in the capture, which the editor shows under
// a failed load's details; after it stderr is the process's own again.
TEST(StderrCaptureTest, TakesWhatIsPrintedAndPutsStderrBack) {
    const int before = ::dup(2);
    {
        StderrCapture capture;
        std::fprintf(stderr, "libpng error: IDAT: incorrect data check\n");
        ASSERT_EQ(::write(2, "second\n", 7), 7);
        EXPECT_EQ(capture.finish(), "libpng error: IDAT: incorrect data check\nsecond\n");
        EXPECT_EQ(capture.finish(), "");
    }
    // The same file as before stands behind descriptor 2.
    struct stat was {};
    struct stat now {};
    ASSERT_EQ(::fstat(before, &was), 0);
    ASSERT_EQ(::fstat(2, &now), 0);
    EXPECT_EQ(was.st_ino, now.st_ino);
    EXPECT_EQ(was.st_dev, now.st_dev);
    ::close(before);
}

} // namespace
} // namespace lumiran

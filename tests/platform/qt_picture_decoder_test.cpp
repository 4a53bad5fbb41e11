#include "engine/pixel.h"
#include "imagefiles/bitmap_writer.h"
#include "imagefiles/byte_io.h"
#include "imagefiles/image_load_error.h"
#include "platform/qt_picture_decoder.h"
#include "test_support.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <initializer_list>
#include <iterator>
#include <random>
#include <string>
#include <vector>

namespace lumiran {
namespace {

namespace fs = std::filesystem;
using Bytes = std::vector<std::uint8_t>;

constexpr int invalidPicture = 481;
constexpr int fileNotFound = 53;

constexpr std::array<Rgb8, 8> palette{{{0, 0, 0},
                                       {255, 255, 255},
                                       {220, 20, 60},
                                       {0, 128, 0},
                                       {30, 144, 255},
                                       {255, 215, 0},
                                       {128, 0, 128},
                                       {64, 224, 208}}};

// Odd width, so that bitmap rows are padded; eight colours, so that
// palette formats hold it exactly.
Surface knownPicture() {
    return testing::makePicture(7, 5,
                                [](int x, int y) { return toPixel(palette[(x * 3 + y * 5) % 8]); });
}

::testing::AssertionResult samePicture(const Surface& actual, const Surface& expected) {
    if (!actual.sameSize(expected)) {
        return ::testing::AssertionFailure()
               << "size " << actual.width() << "x" << actual.height() << ", expected "
               << expected.width() << "x" << expected.height();
    }
    for (int y = 0; y < expected.height(); ++y) {
        for (int x = 0; x < expected.width(); ++x) {
            if ((actual.at(x, y) & 0xFFFFFFu) != (expected.at(x, y) & 0xFFFFFFu)) {
                return ::testing::AssertionFailure()
                       << "pixel (" << x << "," << y << ") is " << std::hex << actual.at(x, y)
                       << ", expected " << expected.at(x, y);
            }
        }
    }
    return ::testing::AssertionSuccess();
}

::testing::AssertionResult nearColour(Pixel actual, Rgb8 expected, int tolerance) {
    const bool near = std::abs(redOf(actual) - expected.red) <= tolerance &&
                      std::abs(greenOf(actual) - expected.green) <= tolerance &&
                      std::abs(blueOf(actual) - expected.blue) <= tolerance;
    if (near) return ::testing::AssertionSuccess();
    return ::testing::AssertionFailure()
           << "colour " << redOf(actual) << "," << greenOf(actual) << "," << blueOf(actual)
           << " is not near " << int{expected.red} << "," << int{expected.green} << ","
           << int{expected.blue};
}

bool haveImageMagick() {
    static const bool have = std::system("convert -version > /dev/null 2>&1") == 0;
    return have;
}

std::uint16_t u16At(const Bytes& bytes, std::size_t offset) {
    ByteReader reader(bytes);
    return reader.u16(offset);
}

struct QtPictureDecoderTest : ::testing::Test {
    fs::path dir;
    QtPictureDecoder decoder;

    void SetUp() override {
        dir = fs::temp_directory_path() /
              (std::string("lumiran-platform-") +
               ::testing::UnitTest::GetInstance()->current_test_info()->name());
        fs::remove_all(dir);
        fs::create_directories(dir);
    }
    void TearDown() override { fs::remove_all(dir); }

    fs::path write(const std::string& name, const Bytes& bytes) const {
        const fs::path path = dir / name;
        std::ofstream(path, std::ios::binary)
            .write(reinterpret_cast<const char*>(bytes.data()),
                   static_cast<std::streamsize>(bytes.size()));
        return path;
    }
    Bytes read(const std::string& name) const {
        std::ifstream in(dir / name, std::ios::binary);
        return {std::istreambuf_iterator<char>(in), {}};
    }
    Surface load(const std::string& name) { return load(name, decoder); }
    Surface load(const std::string& name, QtPictureDecoder& with) {
        return with.LoadPicture(dir / name, FileExtension(name));
    }

    // Converts a picture with ImageMagick; the arguments stand between the
    // source and the target, which a format prefix such as "BMP3:" may lead.
    Bytes convert(const Surface& picture, const std::string& arguments, const std::string& target,
                  const std::string& format = "") {
        ByteWriter ppm;
        for (const char c : "P6\n" + std::to_string(picture.width()) + " " +
                                std::to_string(picture.height()) + "\n255\n") {
            ppm.u8(static_cast<std::uint8_t>(c));
        }
        for (const Pixel p : picture.pixels()) {
            ppm.u8(static_cast<std::uint8_t>(redOf(p)));
            ppm.u8(static_cast<std::uint8_t>(greenOf(p)));
            ppm.u8(static_cast<std::uint8_t>(blueOf(p)));
        }
        const fs::path source = write("source.ppm", ppm.bytes());
        const std::string command = "convert '" + source.string() + "' " + arguments + " '" +
                                    format + (dir / target).string() + "'";
        EXPECT_EQ(std::system(command.c_str()), 0) << command;
        return read(target);
    }

    // The decoder must refuse the file as the platform would.
    void expectRefused(const std::string& name, int number = invalidPicture) {
        SCOPED_TRACE(name);
        try {
            (void)load(name);
            ADD_FAILURE() << "loaded";
        } catch (const ImageLoadError& e) {
            EXPECT_EQ(e.number(), number) << e.detail();
            EXPECT_EQ(e.description(), number == invalidPicture ? "ピクチャが不正です。"
                                                                : "ファイルが見つかりません。");
            EXPECT_NE(e.detail().find(name), std::string::npos) << e.detail();
        }
    }

    // Every strict prefix of a file either loads or is refused as an
    // invalid picture; mustRefuse demands the refusal.
    void expectPrefixesSafe(const Bytes& whole, const std::string& extension, bool mustRefuse) {
        for (std::size_t length = 0; length < whole.size(); ++length) {
            const std::string name = "prefix." + extension;
            write(name, Bytes(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(length)));
            try {
                (void)load(name);
                EXPECT_FALSE(mustRefuse) << "a prefix of " << length << " bytes loaded";
            } catch (const ImageLoadError& e) {
                EXPECT_EQ(e.number(), invalidPicture) << length << ": " << e.detail();
                EXPECT_FALSE(e.detail().empty());
            }
        }
    }
};

TEST_F(QtPictureDecoderTest, ReadsBitmapsByContentWhateverTheirName) {
    const Bytes bitmap = encodeBmp24(knownPicture());
    for (const char* name : {"picture.bmp", "picture.rle", "picture.jpg", "picture.gif"}) {
        write(name, bitmap);
        EXPECT_TRUE(samePicture(load(name), knownPicture())) << name;
    }
    // Qt would show missing rows blank; the platform's decoder refuses them.
    expectPrefixesSafe(bitmap, "bmp", true);
    // A kind Qt reads but the platform's decoder does not.
    write("png.bmp",
          {0x89, 'P', 'N', 'G', '\r', '\n', 0x1A, '\n', 0, 0, 0, 13, 'I', 'H', 'D', 'R'});
    expectRefused("png.bmp");
}

TEST_F(QtPictureDecoderTest, ReadsTrueColourAndRunLengthBitmaps) {
    if (!haveImageMagick()) GTEST_SKIP() << "ImageMagick's convert is not installed";
    const Bytes trueColour = convert(knownPicture(), "-type TrueColor", "true.bmp", "BMP3:");
    ASSERT_EQ(u16At(trueColour, 28), 24); // biBitCount
    EXPECT_TRUE(samePicture(load("true.bmp"), knownPicture()));

    const Bytes runLength =
        convert(knownPicture(), "-colors 16 -compress RLE", "picture.rle", "BMP3:");
    ASSERT_EQ(u16At(runLength, 30), 1); // biCompression BI_RLE8
    EXPECT_TRUE(samePicture(load("picture.rle"), knownPicture()));
    expectPrefixesSafe(runLength, "rle", false);
}

TEST_F(QtPictureDecoderTest, RunLengthBitmapEndingEarlyLeavesColourZero) {
    const Bytes data{2, 1, 0, 1}; // two pixels of colour 1, then the end of the bitmap
    ByteWriter bmp;
    bmp.u16(0x4D42);
    bmp.u32(static_cast<std::uint32_t>(62 + data.size()));
    bmp.u32(0);
    bmp.u32(62);
    bmp.u32(40);
    bmp.i32(4);
    bmp.i32(2);
    bmp.u16(1);
    bmp.u16(8);
    bmp.u32(1); // BI_RLE8
    bmp.u32(static_cast<std::uint32_t>(data.size()));
    bmp.zeros(8);
    bmp.u32(2); // colours used
    bmp.u32(0);
    for (const Rgb8 c : {Rgb8{10, 20, 30}, Rgb8{200, 100, 50}}) {
        bmp.u8(c.blue);
        bmp.u8(c.green);
        bmp.u8(c.red);
        bmp.u8(0);
    }
    bmp.bytes().insert(bmp.bytes().end(), data.begin(), data.end());
    write("early.rle", bmp.bytes());
    const Pixel zero = makePixel(10, 20, 30);
    const Pixel one = makePixel(200, 100, 50);
    Surface expected(4, 2, zero);
    expected.at(0, 1) = one; // rows run bottom-up
    expected.at(1, 1) = one;
    EXPECT_TRUE(samePicture(load("early.rle"), expected));
}

TEST_F(QtPictureDecoderTest, ReadsIconsAndCursors) {
    if (!haveImageMagick()) GTEST_SKIP() << "ImageMagick's convert is not installed";
    Bytes icon = convert(knownPicture(), "", "picture.ico");
    ASSERT_EQ(u16At(icon, 2), 1); // an icon directory
    EXPECT_TRUE(samePicture(load("picture.ico"), knownPicture()));
    expectPrefixesSafe(icon, "ico", false);

    // ImageMagick writes cursors as icons; a cursor is the same directory with
    // type 2 and a hot spot where an icon keeps planes and bit count.
    Bytes cursor = icon;
    cursor[2] = 2;
    cursor[6 + 4] = 3;
    cursor[6 + 6] = 2;
    write("picture.cur", cursor);
    EXPECT_TRUE(samePicture(load("picture.cur"), knownPicture()));
}

TEST_F(QtPictureDecoderTest, ReadsGifFirstFrameOverBlack) {
    if (!haveImageMagick()) GTEST_SKIP() << "ImageMagick's convert is not installed";
    const Bytes gif = convert(knownPicture(), "", "picture.gif");
    EXPECT_TRUE(samePicture(load("picture.gif"), knownPicture()));
    expectPrefixesSafe(gif, "gif", false);

    const Surface second = testing::makePicture(7, 5, [](int, int) { return toPixel(palette[5]); });
    const Bytes secondFrame = encodeBmp24(second);
    write("second.bmp", secondFrame);
    convert(knownPicture(), "'" + (dir / "second.bmp").string() + "'", "animated.gif");
    EXPECT_TRUE(samePicture(load("animated.gif"), knownPicture()));

    // Transparent pixels keep no colour of their own: they show black.
    convert(knownPicture(), "-transparent 'rgb(220,20,60)'", "transparent.gif");
    const Surface expected = testing::makePicture(7, 5, [](int x, int y) {
        const int index = (x * 3 + y * 5) % 8;
        return toPixel(index == 2 ? Rgb8{0, 0, 0} : palette[index]);
    });
    EXPECT_TRUE(samePicture(load("transparent.gif"), expected));
}

TEST_F(QtPictureDecoderTest, ReadsJpegApproximately) {
    if (!haveImageMagick()) GTEST_SKIP() << "ImageMagick's convert is not installed";
    // Quadrants on the 8-pixel block grid keep the compression honest.
    const auto quadrant = [](int x, int y) { return palette[2 + (x / 8) + 2 * (y / 8)]; };
    const Surface source =
        testing::makePicture(16, 16, [&](int x, int y) { return toPixel(quadrant(x, y)); });
    const Bytes jpeg = convert(source, "-sampling-factor 1x1 -quality 95", "picture.jpg");
    const Surface loaded = load("picture.jpg");
    ASSERT_EQ(loaded.width(), 16);
    ASSERT_EQ(loaded.height(), 16);
    for (const auto& [x, y] :
         std::array<std::pair<int, int>, 4>{{{3, 4}, {12, 3}, {4, 12}, {11, 11}}}) {
        EXPECT_TRUE(nearColour(loaded.at(x, y), quadrant(x, y), 8)) << x << "," << y;
    }
    expectPrefixesSafe(jpeg, "jpg", false);
}

// --- Windows metafiles --------------------------------------------------

struct MetafileFrame {
    std::int16_t left, top, right, bottom;
    std::uint16_t unitsPerInch;
    bool setsWindowOrigin;
};

constexpr std::uint16_t META_SETWINDOWORG = 0x020B;
constexpr std::uint16_t META_SETWINDOWEXT = 0x020C;
constexpr std::uint16_t META_CREATEBRUSHINDIRECT = 0x02FC;
constexpr std::uint16_t META_CREATEPENINDIRECT = 0x02FA;
constexpr std::uint16_t META_SELECTOBJECT = 0x012D;
constexpr std::uint16_t META_RECTANGLE = 0x041B;
constexpr std::uint16_t META_CREATEFONTINDIRECT = 0x02FB;
constexpr std::uint16_t META_SETTEXTCOLOR = 0x0209;
constexpr std::uint16_t META_TEXTOUT = 0x0521;
constexpr std::uint16_t META_EOF = 0x0000;
constexpr std::uint16_t PS_NULL = 5;

std::uint32_t colorRef(Rgb8 c) {
    return c.red | (std::uint32_t{c.green} << 8) | (std::uint32_t{c.blue} << 16);
}

std::uint16_t word(int v) {
    return static_cast<std::uint16_t>(v);
}

// The records of a metafile, ending with META_EOF when the file is made.
struct WmfRecords {
    ByteWriter bytes;
    std::uint32_t largest = 0;

    void add(std::uint16_t function, std::initializer_list<std::uint16_t> params) {
        const auto words = static_cast<std::uint32_t>(3 + params.size());
        largest = std::max(largest, words);
        bytes.u32(words);
        bytes.u16(function);
        for (const std::uint16_t p : params)
            bytes.u16(p);
    }
    // The window the frame describes, as writers of placeable files set it.
    void window(const MetafileFrame& frame) {
        if (frame.setsWindowOrigin) add(META_SETWINDOWORG, {word(frame.top), word(frame.left)});
        add(META_SETWINDOWEXT, {word(frame.bottom - frame.top), word(frame.right - frame.left)});
    }
};

Bytes placeableFile(const MetafileFrame& frame, WmfRecords& records, std::uint16_t objects) {
    records.add(META_EOF, {});
    ByteWriter file;
    const std::array<std::uint16_t, 10> placeable{0xCDD7,
                                                  0x9AC6,
                                                  0,
                                                  word(frame.left),
                                                  word(frame.top),
                                                  word(frame.right),
                                                  word(frame.bottom),
                                                  frame.unitsPerInch,
                                                  0,
                                                  0};
    std::uint16_t checksum = 0;
    for (const std::uint16_t w : placeable) {
        file.u16(w);
        checksum ^= w;
    }
    file.u16(checksum);
    file.u16(1);      // a disk metafile
    file.u16(9);      // header words
    file.u16(0x0300); // version
    file.u32(static_cast<std::uint32_t>((18 + records.bytes.bytes().size()) / 2));
    file.u16(objects);
    file.u32(records.largest);
    file.u16(0);
    const auto& body = records.bytes.bytes();
    file.bytes().insert(file.bytes().end(), body.begin(), body.end());
    return std::move(file.bytes());
}

// A placeable metafile that fills a rectangle, given in frame units, with
// one colour and no outline.
Bytes placeableMetafile(const MetafileFrame& frame, std::array<std::int16_t, 4> rectangle,
                        Rgb8 colour) {
    WmfRecords records;
    records.window(frame);
    const std::uint32_t ref = colorRef(colour);
    records.add(META_CREATEBRUSHINDIRECT, {0, word(ref & 0xFFFF), word(ref >> 16), 0});
    records.add(META_SELECTOBJECT, {0});
    records.add(META_CREATEPENINDIRECT, {PS_NULL, 0, 0, 0, 0});
    records.add(META_SELECTOBJECT, {1});
    const auto [left, top, right, bottom] = rectangle;
    records.add(META_RECTANGLE, {word(bottom), word(right), word(top), word(left)});
    return placeableFile(frame, records, 2);
}

constexpr Rgb8 fill{30, 144, 255};
constexpr Rgb8 white{255, 255, 255};

// The picture is 40x30 with the rectangle on pixels (10,5) to (29,24).
void expectRectanglePicture(const Surface& picture) {
    ASSERT_EQ(picture.width(), 40);
    ASSERT_EQ(picture.height(), 30);
    for (const auto& [x, y] : std::array<std::pair<int, int>, 3>{{{20, 15}, {11, 6}, {28, 23}}}) {
        EXPECT_TRUE(nearColour(picture.at(x, y), fill, 0)) << "inside at " << x << "," << y;
    }
    for (const auto& [x, y] :
         std::array<std::pair<int, int>, 4>{{{8, 15}, {31, 15}, {20, 3}, {20, 26}}}) {
        EXPECT_TRUE(nearColour(picture.at(x, y), white, 0)) << "outside at " << x << "," << y;
    }
}

TEST_F(QtPictureDecoderTest, DrawsWindowsMetafileOnItsFrame) {
    // 1440 units an inch: 600x450 units are 40x30 pixels at 96 dots an inch.
    write("plain.wmf", placeableMetafile({0, 0, 600, 450, 1440, true}, {150, 75, 450, 375}, fill));
    expectRectanglePicture(load("plain.wmf"));

    // 480 units an inch, frame away from the origin: the frame's corner is the
    // picture's corner, whether or not the records set the window origin.
    for (const bool setsOrigin : {true, false}) {
        SCOPED_TRACE(setsOrigin);
        write("offset.wmf",
              placeableMetafile({100, 50, 300, 200, 480, setsOrigin}, {150, 75, 250, 175}, fill));
        expectRectanglePicture(load("offset.wmf"));
    }

    // The kind is in the content: a metafile read under another name.
    write("metafile.bmp", read("plain.wmf"));
    expectRectanglePicture(load("metafile.bmp"));
}

TEST_F(QtPictureDecoderTest, DrawsWindowsMetafileText) {
    // Text goes through libwmf's font lookup, which needs a usable font file.
    const MetafileFrame frame{0, 0, 1200, 450, 1440, true};
    WmfRecords records;
    records.window(frame);
    // 30 units high, bold "Arial"; the face name's bytes in little-endian words.
    records.add(META_CREATEFONTINDIRECT,
                {word(-300), 0, 0, 0, 700, 0, 0, 0, 0, 0x7241, 0x6169, 0x006C});
    records.add(META_SELECTOBJECT, {0});
    records.add(META_SETTEXTCOLOR, {0x00FF, 0});
    records.add(META_TEXTOUT, {5, 0x6548, 0x6C6C, 0x006F, 60, 60}); // "Hello" at (60,60)
    write("text.wmf", placeableFile(frame, records, 1));
    const Surface picture = load("text.wmf");
    ASSERT_EQ(picture.width(), 80);
    ASSERT_EQ(picture.height(), 30);
    const auto reddish = std::ranges::count_if(picture.pixels(), [](Pixel p) {
        return redOf(p) > 2 * greenOf(p) + 20 && redOf(p) > 2 * blueOf(p) + 20;
    });
    EXPECT_GT(reddish, 10);
}

TEST_F(QtPictureDecoderTest, RefusesBrokenWindowsMetafiles) {
    const Bytes good = placeableMetafile({0, 0, 600, 450, 1440, true}, {150, 75, 450, 375}, fill);
    expectPrefixesSafe(good, "wmf", true);

    Bytes noUnits = good;
    noUnits[14] = noUnits[15] = 0;
    write("no-units.wmf", noUnits);
    expectRefused("no-units.wmf");

    write("empty-frame.wmf", placeableMetafile({0, 0, 0, 450, 1440, true}, {0, 0, 1, 1}, fill));
    expectRefused("empty-frame.wmf");

    Bytes longRecord = good;
    longRecord[22 + 18] = 0xFF; // the first record claims 255 words
    write("long-record.wmf", longRecord);
    expectRefused("long-record.wmf");

    // Without the placeable header the file is left to libwmf's own sizing,
    // which must not crash either.
    write("bare.wmf", Bytes(good.begin() + 22, good.end()));
    try {
        const Surface bare = load("bare.wmf");
        EXPECT_FALSE(bare.empty());
    } catch (const ImageLoadError& e) {
        EXPECT_EQ(e.number(), invalidPicture) << e.detail();
    }

    write("garbage.wmf", Bytes(200, 0xA5));
    expectRefused("garbage.wmf");
}

// --- Enhanced metafiles -------------------------------------------------

constexpr std::uint32_t EMR_HEADER = 1;
constexpr std::uint32_t EMR_EOF = 14;
constexpr std::uint32_t EMR_SELECTOBJECT = 37;
constexpr std::uint32_t EMR_CREATEBRUSHINDIRECT = 39;
constexpr std::uint32_t EMR_RECTANGLE = 43;
constexpr std::uint32_t NULL_PEN = 0x80000008;

// An enhanced metafile whose header bounds are (left,top)-(right,bottom)
// and which fills a rectangle, in device units, with one colour.
Bytes enhancedMetafile(std::array<std::int32_t, 4> bounds, std::array<std::int32_t, 4> rectangle,
                       Rgb8 colour) {
    ByteWriter records;
    std::uint32_t count = 1;
    const auto record = [&](std::uint32_t type, std::initializer_list<std::uint32_t> params) {
        records.u32(type);
        records.u32(static_cast<std::uint32_t>(8 + 4 * params.size()));
        for (const std::uint32_t p : params)
            records.u32(p);
        ++count;
    };
    const auto u = [](std::int32_t v) { return static_cast<std::uint32_t>(v); };
    record(EMR_CREATEBRUSHINDIRECT, {1, 0, colorRef(colour), 0});
    record(EMR_SELECTOBJECT, {1});
    record(EMR_SELECTOBJECT, {NULL_PEN});
    record(EMR_RECTANGLE, {u(rectangle[0]), u(rectangle[1]), u(rectangle[2]), u(rectangle[3])});
    record(EMR_EOF, {0, 16, 20});

    constexpr std::uint32_t headerSize = 88;
    ByteWriter file;
    file.u32(EMR_HEADER);
    file.u32(headerSize);
    for (const std::int32_t b : bounds)
        file.i32(b);
    // The frame, in hundredths of a millimetre, deliberately not the bounds'
    // size: the pixel size comes from the bounds.
    for (const std::int32_t f : {0, 0, 5000, 5000})
        file.i32(f);
    file.u32(0x464D4520);
    file.u32(0x10000);
    file.u32(static_cast<std::uint32_t>(headerSize + records.bytes().size()));
    file.u32(count);
    file.u16(2); // handles
    file.u16(0);
    file.u32(0); // description
    file.u32(0);
    file.u32(0); // palette entries
    for (const std::int32_t d : {1024, 768, 320, 240})
        file.i32(d);
    file.bytes().insert(file.bytes().end(), records.bytes().begin(), records.bytes().end());
    return std::move(file.bytes());
}

TEST_F(QtPictureDecoderTest, DrawsEnhancedMetafileAtItsBounds) {
    write("origin.emf", enhancedMetafile({0, 0, 39, 29}, {10, 5, 30, 25}, fill));
    expectRectanglePicture(load("origin.emf"));
    // Bounds away from the origin: device (5,3) is the picture's corner.
    write("offset.emf", enhancedMetafile({5, 3, 44, 32}, {15, 8, 35, 28}, fill));
    expectRectanglePicture(load("offset.emf"));
    write("metafile.jpg", read("offset.emf"));
    expectRectanglePicture(load("metafile.jpg"));
}

TEST_F(QtPictureDecoderTest, RefusesBrokenEnhancedMetafiles) {
    const Bytes good = enhancedMetafile({0, 0, 39, 29}, {10, 5, 30, 25}, fill);
    expectPrefixesSafe(good, "emf", true);

    write("inverted.emf", enhancedMetafile({39, 0, 0, 29}, {10, 5, 30, 25}, fill));
    expectRefused("inverted.emf");
    write("huge.emf", enhancedMetafile({0, 0, 39999, 29}, {10, 5, 30, 25}, fill));
    expectRefused("huge.emf");

    Bytes oddRecord = good;
    oddRecord[88 + 4] = 18; // not a multiple of four
    write("odd-record.emf", oddRecord);
    expectRefused("odd-record.emf");

    Bytes noEnd = good;
    noEnd[good.size() - 20] = 0x46; // the EMR_EOF becomes an unknown record
    write("no-end.emf", noEnd);
    expectRefused("no-end.emf");

    write("garbage.emf", Bytes(200, 0x5A));
    expectRefused("garbage.emf");
}

TEST_F(QtPictureDecoderTest, SurvivesDamagedMetafiles) {
    // The libraries see whatever passes the record walk: damage within the
    // records must end in a picture or a refusal, never in a crash.
    std::mt19937 random(20240601);
    const std::array<std::pair<Bytes, std::string>, 2> files{{
        {placeableMetafile({0, 0, 600, 450, 1440, true}, {150, 75, 450, 375}, fill), "wmf"},
        {enhancedMetafile({0, 0, 39, 29}, {10, 5, 30, 25}, fill), "emf"},
    }};
    for (const auto& [good, extension] : files) {
        for (int round = 0; round < 300; ++round) {
            Bytes damaged = good;
            for (int hits = 1 + static_cast<int>(random() % 3); hits > 0; --hits) {
                damaged[random() % damaged.size()] = static_cast<std::uint8_t>(random());
            }
            write("damaged." + extension, damaged);
            try {
                EXPECT_FALSE(load("damaged." + extension).empty());
            } catch (const ImageLoadError& e) {
                EXPECT_EQ(e.number(), invalidPicture) << e.detail();
            }
        }
    }
}

// --- Refusals -----------------------------------------------------------

TEST_F(QtPictureDecoderTest, RefusesWhatIsNotAPicture) {
    write("empty.bmp", {});
    expectRefused("empty.bmp");
    write("truncated.jpg", {0xFF, 0xD8, 0xFF, 0xE0, 0x00, 0x10, 'J', 'F', 'I', 'F', 0x00});
    expectRefused("truncated.jpg");
    Bytes garbage(300);
    for (std::size_t i = 0; i < garbage.size(); ++i)
        garbage[i] = static_cast<std::uint8_t>(i * 7 + 3);
    write("garbage.gif", garbage);
    expectRefused("garbage.gif");
    fs::create_directory(dir / "folder.bmp");
    expectRefused("folder.bmp");
    expectRefused("missing.bmp", fileNotFound);
}

TEST_F(QtPictureDecoderTest, RefusesHugeDeclaredSizesBeforeDecoding) {
    const auto expectTooLarge = [&](const std::string& name, QtPictureDecoder& with) {
        SCOPED_TRACE(name);
        try {
            (void)load(name, with);
            ADD_FAILURE() << "loaded";
        } catch (const ImageLoadError& e) {
            EXPECT_EQ(e.number(), invalidPicture);
            EXPECT_NE(e.detail().find("too large"), std::string::npos) << e.detail();
        }
    };
    // Headers only: a decoder that allocated first would need gigabytes.
    ByteWriter bmp;
    bmp.u16(0x4D42);
    bmp.u32(54);
    bmp.u32(0);
    bmp.u32(54);
    bmp.u32(40);
    bmp.i32(100000);
    bmp.i32(100000);
    bmp.u16(1);
    bmp.u16(24);
    bmp.zeros(24);
    write("huge.bmp", bmp.bytes());
    expectTooLarge("huge.bmp", decoder);

    // A one-pixel frame on a 65535x65535 logical screen.
    const Bytes gif{'G',  'I',  'F',  '8',  '9',  'a',  0xFF, 0xFF, 0xFF, 0xFF, 0x80, 0x00,
                    0x00, 0x00, 0x00, 0x00, 0xFF, 0xFF, 0xFF, 0x2C, 0x00, 0x00, 0x00, 0x00,
                    0x01, 0x00, 0x01, 0x00, 0x00, 0x02, 0x02, 0x44, 0x01, 0x00, 0x3B};
    write("huge.gif", gif);
    expectTooLarge("huge.gif", decoder);

    // Within the dimensions but beyond the memory the decoder may take.
    write("small.bmp", encodeBmp24(knownPicture()));
    LoadLimits tight;
    tight.maxBytes = 200; // the file fits, 7x5 pixels at 8 bytes do not
    QtPictureDecoder limited(tight);
    expectTooLarge("small.bmp", limited);
}

} // namespace
} // namespace lumiran

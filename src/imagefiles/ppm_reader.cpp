#include "engine/effect_error.h"
#include "engine/numeric.h"
#include "imagefiles/image_load_error.h"
#include "imagefiles/image_readers.h"
#include "imagefiles/reader_guard.h"
#include "imagefiles/three_byte_picture.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

namespace lumiran {

namespace {

using Element = ThreeBytePicture::Element;

// The working picture and the shown picture.
constexpr std::uint64_t WorkingBytesPerPixel = 3 + 4;
constexpr std::uint8_t LineEnd = 10;
constexpr std::uint8_t Blank = 32;
// A header number is counted with its terminator, and the count gives up
// after this many bytes.
constexpr int LongestCountedField = 255;

// The runtime's error for a character that is not a digit.
EffectError typeMismatch() {
    return {13, "型が一致しません。"};
}

// The one-character text of a byte, "." for the unprintable ones.
char ByteToText(std::uint8_t value) {
    return value >= 33 && value <= 127 ? static_cast<char>(value) : '.';
}

int digitOf(std::uint8_t character) {
    if (character < '0' || character > '9') throw typeMismatch();
    return character - '0';
}

// The file with a zeroed tail: a read beyond its end gives 0.
class FileBytes {
  public:
    explicit FileBytes(std::span<const std::uint8_t> file) : file_(file) {}
    [[nodiscard]] std::uint8_t operator[](std::size_t index) const {
        return pastEnd(index) ? 0 : file_[index];
    }
    [[nodiscard]] bool pastEnd(std::size_t index) const {
        const bool past = index >= file_.size();
        readPastEnd_ = readPastEnd_ || past;
        return past;
    }
    // Whether anything was looked for past the end: for the first part of a
    // file, whether the rest could have changed what was read.
    [[nodiscard]] bool readPastEnd() const { return readPastEnd_; }

  private:
    std::span<const std::uint8_t> file_;
    mutable bool readPastEnd_ = false;
};

struct PpmHeader {
    char kind = '.';
    int width = 0;
    int height = 0;
    int maximum = 0;
    // Index of the terminator of the last header number.
    std::size_t lastTerminator = 0;
};

// Only a comment line right behind the two-character first line counts:
// its length with the "#" and the line end, 0 without one.
std::size_t commentLength(const FileBytes& bytes) {
    if (bytes[3] != '#') return 0;
    std::size_t length = 1;
    for (std::size_t i = 4;; ++i) {
        if (bytes.pastEnd(i)) throw ImageLoadError::refused("PPM: the comment line has no end");
        ++length;
        if (bytes[i] == LineEnd) return length;
    }
}

struct HeaderNumber {
    int value;
    // The bytes it took, the terminator included.
    std::size_t length;
};

// The number behind the terminator at index `before`: one to four digits
// ended by a line end or a blank.
HeaderNumber readNumber(const FileBytes& bytes, std::size_t before, const char* name) {
    std::size_t length = 0;
    std::uint8_t byte = 0;
    do {
        byte = bytes[before + 1 + length];
        ++length;
    } while (byte != LineEnd && byte != Blank && length < LongestCountedField);
    if (length < 2 || length > 5) {
        throw ImageLoadError::refused(std::string("PPM: the ") + name +
                                      " must have one to four digits");
    }
    int value = 0;
    for (std::size_t i = 1; i < length; ++i) {
        value = value * 10 + digitOf(bytes[before + i]);
    }
    return {value, length};
}

bool hasMaximum(char kind) {
    return kind == '2' || kind == '3' || kind == '5' || kind == '6';
}

PpmHeader readHeader(const FileBytes& bytes) {
    if (ByteToText(bytes[0]) != 'P') {
        throw ImageLoadError::refused("PPM: the file does not start with P");
    }
    PpmHeader header;
    header.kind = ByteToText(bytes[1]);
    // The first line is taken to be exactly two characters and a line end.
    const std::size_t firstTerminator = commentLength(bytes) + 2;
    const HeaderNumber width = readNumber(bytes, firstTerminator, "width");
    const HeaderNumber height = readNumber(bytes, firstTerminator + width.length, "height");
    header.width = width.value;
    header.height = height.value;
    header.lastTerminator = firstTerminator + width.length + height.length;
    if (hasMaximum(header.kind)) {
        const HeaderNumber maximum = readNumber(bytes, header.lastTerminator, "maximum value");
        header.maximum = maximum.value;
        header.lastTerminator += maximum.length;
    }
    return header;
}

// Characters of the text kinds in a fixed column layout.
class TextCursor {
  public:
    TextCursor(const FileBytes& bytes, std::size_t start) : bytes_(bytes), next_(start) {}

    // One line end before a digit is skipped, and a blank reads as 0.
    int digit() {
        std::uint8_t character = take();
        if (character == LineEnd) character = take();
        if (character == Blank) character = '0';
        return digitOf(character);
    }
    // The separator behind a value, whatever it is.
    void skip() { ++next_; }

  private:
    std::uint8_t take() { return bytes_[next_++]; }

    const FileBytes& bytes_;
    std::size_t next_;
};

class PpmDecoding {
  public:
    PpmDecoding(const PpmHeader& header, const FileBytes& bytes, ThreeBytePicture& picture,
                ProgressSink* progress)
        : header_(header), bytes_(bytes), picture_(picture), progress_(progress) {}

    // Digit 1 is black, any other white; digits stand one character apart.
    void textBitmap() {
        TextCursor cursor(bytes_, header_.lastTerminator);
        std::size_t index = 0;
        for (int y = 0; y < header_.height; ++y) {
            for (int x = 0; x < header_.width; ++x) {
                const std::uint8_t level = cursor.digit() == 1 ? 0 : 255;
                picture_[index++] = {level, level, level};
                cursor.skip();
            }
            rowDone(y);
        }
    }

    // Every value is three columns wide with one separator behind it.
    void textPixmap() {
        TextCursor cursor(bytes_, header_.lastTerminator);
        std::size_t index = 0;
        for (int y = 0; y < header_.height; ++y) {
            for (int x = 0; x < header_.width; ++x) {
                Element& e = picture_[index++];
                e.third = textChannel(cursor);
                e.second = textChannel(cursor);
                e.first = textChannel(cursor);
            }
            rowDone(y);
        }
    }

    // The elements are read from the last header terminator on, one byte
    // early, so an element holds the previous pixel's blue, then red and
    // green. Swapping the last two bytes leaves red and green right and the
    // blue of each pixel that of its left neighbour.
    void binaryPixmap() {
        const double scale = 255.0 / header_.maximum;
        std::size_t offset = header_.lastTerminator;
        std::size_t index = 0;
        for (int y = 0; y < header_.height; ++y) {
            for (int x = 0; x < header_.width; ++x) {
                Element& e = picture_[index++];
                e.first = roundTo<std::uint8_t>(scale * bytes_[offset]);
                e.third = roundTo<std::uint8_t>(scale * bytes_[offset + 1]);
                e.second = roundTo<std::uint8_t>(scale * bytes_[offset + 2]);
                offset += 3;
            }
            rowDone(y);
        }
    }

  private:
    std::uint8_t textChannel(TextCursor& cursor) {
        // Digits add up in a byte, so "300" wraps to 44.
        std::uint8_t sum = 0;
        sum = static_cast<std::uint8_t>(sum + cursor.digit() * 100);
        sum = static_cast<std::uint8_t>(sum + cursor.digit() * 10);
        sum = static_cast<std::uint8_t>(sum + cursor.digit());
        cursor.skip();
        return roundTo<std::uint8_t>(255.0 / header_.maximum * sum);
    }

    void rowDone(int y) {
        const int percent = loadPercent(y + 1, header_.height);
        if (progress_ != nullptr) progress_->showPercent(percent);
    }

    const PpmHeader& header_;
    const FileBytes& bytes_;
    ThreeBytePicture& picture_;
    ProgressSink* progress_;
};

const char* kindName(char kind) {
    switch (kind) {
    case '2':
        return "P2 (text graymap)";
    case '4':
        return "P4 (binary bitmap)";
    default:
        return "P5 (binary graymap)";
    }
}

void checkHeader(const PpmHeader& header, const LoadLimits& limits) {
    limits.check(header.width, header.height, WorkingBytesPerPixel);
    if (header.kind == '2' || header.kind == '4' || header.kind == '5') {
        throw ImageLoadError::refused(std::string("PPM: kind ") + kindName(header.kind) +
                                      " is not supported");
    }
}

} // namespace

void Class_PPMImageOp::refuseFromHead(std::span<const std::uint8_t> head,
                                      std::uint64_t /*fileSize*/, const LoadLimits& limits) {
    // The header is text of any length: it decides here only when it was
    // read without looking past the head, so the whole file would give the
    // same header, or the same error.
    (void)guardedRead("PPM", [&] {
        const FileBytes bytes(head);
        std::optional<PpmHeader> header;
        try {
            header = readHeader(bytes);
        } catch (...) {
            if (bytes.readPastEnd()) return Surface();
            throw;
        }
        if (!bytes.readPastEnd()) checkHeader(*header, limits);
        return Surface();
    });
}

Surface Class_PPMImageOp::PPMImageGet(std::span<const std::uint8_t> file, ProgressSink* progress,
                                      const LoadLimits& limits) {
    return guardedRead("PPM", [&] {
        const FileBytes bytes(file);
        const PpmHeader header = readHeader(bytes);
        checkHeader(header, limits);
        ThreeBytePicture picture(header.width, header.height);
        PpmDecoding decoding(header, bytes, picture, progress);
        // Any other kind decodes nothing and shows the blank picture.
        if (header.kind == '1') decoding.textBitmap();
        if (header.kind == '3') decoding.textPixmap();
        if (header.kind == '6') decoding.binaryPixmap();

        // The pixel-by-pixel path reads the bytes in the other order, so at
        // these widths red and blue change places on the screen.
        if (picture.width() % 4 == 0) return picture.shownAsBitmap();
        return picture.shownPixelByPixel();
    });
}

} // namespace lumiran

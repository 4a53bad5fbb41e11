// Writes a few small, valid files of each format the readers take into
// DIR/<format>/, the starting points of the fuzz runs.
//
// usage: make_seed_corpus DIR

#include "engine/surface.h"
#include "imagefiles/bitmap_writer.h"
#include "imagefiles/byte_io.h"

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

namespace fs = std::filesystem;
using lumiran::ByteWriter;
using lumiran::makePixel;
using lumiran::Pixel;
using lumiran::Surface;
using Bytes = std::vector<std::uint8_t>;

Surface gradient(int width, int height) {
    Surface s(width, height);
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            s.at(x, y) = makePixel(x * 255 / width, y * 255 / height, (x + y) * 40);
        }
    }
    return s;
}

void append(Bytes& to, const std::string& text) {
    to.insert(to.end(), text.begin(), text.end());
}

// --- BMP -------------------------------------------------------------------

Bytes bmp32TopDown(const Surface& s) {
    ByteWriter w;
    w.u16(0x4D42);
    w.u32(54 + 4 * static_cast<std::uint32_t>(s.pixelCount()));
    w.u32(0);
    w.u32(54);
    w.u32(40);
    w.i32(s.width());
    w.i32(-s.height());
    w.u16(1);
    w.u16(32);
    w.u32(0);
    w.u32(0);
    w.zeros(16);
    for (const Pixel p : s.pixels())
        w.u32(p | 0xFF000000u);
    return std::move(w.bytes());
}

// --- PCX -------------------------------------------------------------------

// Run-length codes one plane line; values of 192 and more always go as a run.
void pcxRuns(ByteWriter& w, const Bytes& line) {
    for (std::size_t i = 0; i < line.size();) {
        std::size_t run = 1;
        while (i + run < line.size() && line[i + run] == line[i] && run < 63)
            ++run;
        if (run > 1 || line[i] >= 0xC0) w.u8(static_cast<std::uint8_t>(0xC0 | run));
        w.u8(line[i]);
        i += run;
    }
}

ByteWriter pcxHeader(int width, int height, int bits, int planes, int bytesPerLine,
                     const Bytes& headerPalette = {}) {
    ByteWriter w;
    w.u8(10);
    w.u8(5);
    w.u8(1);
    w.u8(static_cast<std::uint8_t>(bits));
    w.u16(0);
    w.u16(0);
    w.u16(static_cast<std::uint16_t>(width - 1));
    w.u16(static_cast<std::uint16_t>(height - 1));
    w.u16(72);
    w.u16(72);
    for (int i = 0; i < 48; ++i) {
        w.u8(i < static_cast<int>(headerPalette.size()) ? headerPalette[i] : 0);
    }
    w.u8(0);
    w.u8(static_cast<std::uint8_t>(planes));
    w.u16(static_cast<std::uint16_t>(bytesPerLine));
    w.u16(1);
    w.zeros(58);
    return w;
}

Bytes pcx8(int width, int height, int bytesPerLine) {
    ByteWriter w = pcxHeader(width, height, 8, 1, bytesPerLine);
    for (int y = 0; y < height; ++y) {
        Bytes line(bytesPerLine, 0);
        for (int x = 0; x < width; ++x)
            line[x] = static_cast<std::uint8_t>(x < 3 ? 200 : x * 7 + y);
        pcxRuns(w, line);
    }
    w.u8(12);
    for (int i = 0; i < 256; ++i) {
        w.u8(static_cast<std::uint8_t>(i));
        w.u8(static_cast<std::uint8_t>(255 - i));
        w.u8(static_cast<std::uint8_t>(i * 3));
    }
    return std::move(w.bytes());
}

Bytes pcx24(const Surface& s) {
    const int bytesPerLine = (s.width() + 1) / 2 * 2;
    ByteWriter w = pcxHeader(s.width(), s.height(), 8, 3, bytesPerLine);
    for (int y = 0; y < s.height(); ++y) {
        for (int plane = 0; plane < 3; ++plane) {
            Bytes line(bytesPerLine, 0);
            for (int x = 0; x < s.width(); ++x) {
                const Pixel p = s.at(x, y);
                line[x] = static_cast<std::uint8_t>(plane == 0   ? lumiran::redOf(p)
                                                    : plane == 1 ? lumiran::greenOf(p)
                                                                 : lumiran::blueOf(p));
            }
            pcxRuns(w, line);
        }
    }
    return std::move(w.bytes());
}

// One bit a pixel in each plane; planes 4 gives 16 colours.
Bytes pcxBitPlanes(int width, int height, int planes) {
    Bytes palette;
    for (int i = 0; i < 16; ++i) {
        palette.push_back(static_cast<std::uint8_t>(i * 16));
        palette.push_back(static_cast<std::uint8_t>(255 - i * 16));
        palette.push_back(static_cast<std::uint8_t>(i * 5));
    }
    const int bytesPerLine = ((width + 7) / 8 + 1) / 2 * 2;
    ByteWriter w = pcxHeader(width, height, 1, planes, bytesPerLine, palette);
    for (int y = 0; y < height; ++y) {
        for (int plane = 0; plane < planes; ++plane) {
            Bytes line(bytesPerLine, 0);
            for (int x = 0; x < width; ++x) {
                const int colour = (x + y) % (1 << planes);
                if ((colour >> plane) & 1)
                    line[x / 8] |= static_cast<std::uint8_t>(0x80 >> (x % 8));
            }
            pcxRuns(w, line);
        }
    }
    return std::move(w.bytes());
}

// --- PPM -------------------------------------------------------------------

// Three-digit columns with one separator, the layout the text reader takes.
std::string column(int value) {
    std::string digits = std::to_string(value);
    return std::string(3 - digits.size(), '0') + digits;
}

Bytes ppmText(const Surface& s) {
    Bytes out;
    append(out, "P3\n" + std::to_string(s.width()) + " " + std::to_string(s.height()) + "\n255\n");
    for (int y = 0; y < s.height(); ++y) {
        for (int x = 0; x < s.width(); ++x) {
            const Pixel p = s.at(x, y);
            append(out, column(lumiran::redOf(p)) + " " + column(lumiran::greenOf(p)) + " " +
                            column(lumiran::blueOf(p)) + (x + 1 == s.width() ? "\n" : " "));
        }
    }
    return out;
}

Bytes pbmText(int width, int height) {
    Bytes out;
    append(out, "P1\n" + std::to_string(width) + " " + std::to_string(height) + "\n");
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            append(out, std::string((x * y) % 3 == 0 ? "1" : "0") + (x + 1 == width ? "\n" : " "));
        }
    }
    return out;
}

Bytes ppmBinary(const Surface& s, const std::string& comment, int maxValue) {
    Bytes out;
    append(out, "P6\n" + comment + std::to_string(s.width()) + " " + std::to_string(s.height()) +
                    "\n" + std::to_string(maxValue) + "\n");
    for (const Pixel p : s.pixels()) {
        out.push_back(static_cast<std::uint8_t>(lumiran::redOf(p) * maxValue / 255));
        out.push_back(static_cast<std::uint8_t>(lumiran::greenOf(p) * maxValue / 255));
        out.push_back(static_cast<std::uint8_t>(lumiran::blueOf(p) * maxValue / 255));
    }
    return out;
}

// --- TGA -------------------------------------------------------------------

ByteWriter tgaHeader(int idLength, int mapType, int imageType, int mapLength, int width, int height,
                     int bits, int descriptor) {
    ByteWriter w;
    w.u8(static_cast<std::uint8_t>(idLength));
    w.u8(static_cast<std::uint8_t>(mapType));
    w.u8(static_cast<std::uint8_t>(imageType));
    w.u16(0);
    w.u16(static_cast<std::uint16_t>(mapLength));
    w.u8(mapType ? 24 : 0);
    w.u16(0);
    w.u16(0);
    w.u16(static_cast<std::uint16_t>(width));
    w.u16(static_cast<std::uint16_t>(height));
    w.u8(static_cast<std::uint8_t>(bits));
    w.u8(static_cast<std::uint8_t>(descriptor));
    for (int i = 0; i < idLength; ++i)
        w.u8(static_cast<std::uint8_t>('a' + i));
    return w;
}

Bytes tgaTrueColour(const Surface& s, int idLength, int descriptor) {
    ByteWriter w = tgaHeader(idLength, 0, 2, 0, s.width(), s.height(), 24, descriptor);
    for (int y = s.height() - 1; y >= 0; --y) {
        for (const Pixel p : s.row(y)) {
            w.u8(static_cast<std::uint8_t>(lumiran::blueOf(p)));
            w.u8(static_cast<std::uint8_t>(lumiran::greenOf(p)));
            w.u8(static_cast<std::uint8_t>(lumiran::redOf(p)));
        }
    }
    return std::move(w.bytes());
}

Bytes tgaColourMapped(int width, int height) {
    ByteWriter w = tgaHeader(0, 1, 1, 256, width, height, 8, 0);
    for (int i = 0; i < 256; ++i) {
        w.u8(static_cast<std::uint8_t>(i));
        w.u8(static_cast<std::uint8_t>(i / 2));
        w.u8(static_cast<std::uint8_t>(255 - i));
    }
    for (int i = 0; i < width * height; ++i)
        w.u8(static_cast<std::uint8_t>(i * 13));
    return std::move(w.bytes());
}

// --- PCD -------------------------------------------------------------------

// The smallest resolution, 192 by 128: a header area up to the image data at
// offset 8192, then for each row pair two luma rows and one row holding the
// two chroma halves.
Bytes pcdBase(int rowPairs) {
    constexpr int width = 192;
    Bytes out(8192, 0);
    const std::string signature = "PCD_IPI";
    std::copy(signature.begin(), signature.end(), out.begin() + 2048);
    for (int pair = 0; pair < rowPairs; ++pair) {
        for (int row = 0; row < 2; ++row) {
            for (int x = 0; x < width; ++x)
                out.push_back(static_cast<std::uint8_t>(x + pair * 2 + row));
        }
        for (int x = 0; x < width; ++x) {
            out.push_back(
                static_cast<std::uint8_t>(x < width / 2 ? 156 + x % 40 - 20 : 137 + x % 30 - 15));
        }
    }
    out.push_back(0); // the reader takes the stream one byte late
    return out;
}

void write(const fs::path& file, const Bytes& bytes) {
    std::ofstream out(file, std::ios::binary | std::ios::trunc);
    out.write(reinterpret_cast<const char*>(bytes.data()),
              static_cast<std::streamsize>(bytes.size()));
    if (!out) throw std::runtime_error("cannot write " + file.string());
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 2) {
        std::cerr << "usage: make_seed_corpus DIR\n";
        return 2;
    }
    try {
        const fs::path root = argv[1];
        const auto folder = [&](const char* format) {
            const fs::path dir = root / format;
            fs::remove_all(dir); // no stale seeds from an older generator
            fs::create_directories(dir);
            return dir;
        };

        const fs::path bmp = folder("bmp");
        write(bmp / "rgb24-5x3.bmp", lumiran::encodeBmp24(gradient(5, 3)));
        write(bmp / "rgb24-8x8.bmp", lumiran::encodeBmp24(gradient(8, 8)));
        write(bmp / "rgb32-topdown-4x3.bmp", bmp32TopDown(gradient(4, 3)));
        write(bmp / "pal8-6x4.bmp", lumiran::encodeBmp8(gradient(6, 4), true).bytes);
        write(bmp / "mono-9x3.bmp", lumiran::encodeBmp1(gradient(9, 3)));

        const fs::path pcx = folder("pcx");
        write(pcx / "pal8-6x4.pcx", pcx8(6, 4, 6));
        write(pcx / "pal8-5x3-skewed.pcx", pcx8(5, 3, 6));
        write(pcx / "rgb24-5x3.pcx", pcx24(gradient(5, 3)));
        write(pcx / "mono-10x3.pcx", pcxBitPlanes(10, 3, 1));
        write(pcx / "planes2-9x2.pcx", pcxBitPlanes(9, 2, 2));
        write(pcx / "ega16-12x4.pcx", pcxBitPlanes(12, 4, 4));

        const fs::path ppm = folder("ppm");
        write(ppm / "p6-4x3.ppm", ppmBinary(gradient(4, 3), "", 255));
        write(ppm / "p6-comment-3x2-max15.ppm", ppmBinary(gradient(3, 2), "#c\n", 15));
        write(ppm / "p3-3x2.ppm", ppmText(gradient(3, 2)));
        write(ppm / "p1-5x3.pbm", pbmText(5, 3));

        const fs::path tga = folder("tga");
        write(tga / "rgb24-4x3.tga", tgaTrueColour(gradient(4, 3), 0, 0));
        write(tga / "rgb24-id5-top-3x2.tga", tgaTrueColour(gradient(3, 2), 5, 32));
        write(tga / "rgb24-right-5x2.tga", tgaTrueColour(gradient(5, 2), 0, 16));
        write(tga / "mapped-6x4.tga", tgaColourMapped(6, 4));

        const fs::path pcd = folder("pcd");
        write(pcd / "base-192x128.pcd", pcdBase(64));
        write(pcd / "base-short.pcd", pcdBase(2));
    } catch (const std::exception& e) {
        std::cerr << "make_seed_corpus: " << e.what() << '\n';
        return 1;
    }
    return 0;
}

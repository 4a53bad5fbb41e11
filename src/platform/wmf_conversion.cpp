#include "platform/wmf_conversion.h"

// libwmf's headers define short macros that clash with Qt's; this unit
// keeps them away from every Qt header.
#include "imagefiles/byte_io.h"
#include "platform/embedded_dib.h"
#include "platform/metafile_budget.h"
#include "platform/picture_refusal.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <libwmf/api.h>
#include <libwmf/svg.h>
#include <memory>
#include <string>
#include <vector>

namespace lumiran {
namespace {

constexpr std::uint32_t placeableKey = 0x9AC6CDD7;
constexpr std::size_t placeableHeaderSize = 22;
constexpr std::size_t metaHeaderSize = 18;
constexpr std::uint16_t META_EOF = 0x0000;
constexpr std::uint16_t META_SETWINDOWORG = 0x020B;
constexpr std::uint32_t minimumRecordWords = 3;
// libwmf plays in points.
constexpr double pointsPerInch = 72.0;
constexpr double pixelsPerInch = 96.0;

// What the records walk found.
struct RecordSummary {
    bool setsWindowOrigin = false;
    std::uint32_t largestRecordWords = 0;
    std::size_t endOffset = 0; // just past META_EOF
};

std::string hex4(std::uint16_t value) {
    std::array<char, 8> text{};
    std::snprintf(text.data(), text.size(), "%04X", value);
    return text.data();
}

// Where a record carries a device-independent bitmap, and how its colours
// are given.
struct DibRecord {
    std::uint16_t function;
    // The smallest record, in words, that has a bitmap: the blits come in
    // a shorter form without one.
    std::uint32_t minimumWords;
    std::size_t dibOffset; // from the first parameter
    int colourUsageOffset; // -1: always RGB colours
};

constexpr std::array dibRecords{
    DibRecord{0x0142, 3 + 2, 4, 2},    // META_DIBCREATEPATTERNBRUSH
    DibRecord{0x0940, 3 + 10, 16, -1}, // META_DIBBITBLT
    DibRecord{0x0B41, 3 + 12, 20, -1}, // META_DIBSTRETCHBLT
    DibRecord{0x0F43, 3 + 11, 22, 4},  // META_STRETCHDIB
    DibRecord{0x0D33, 3 + 9, 18, 0},   // META_SETDIBTODEV
};

constexpr std::uint16_t META_POLYGON = 0x0324;
constexpr std::uint16_t META_POLYLINE = 0x0325;
constexpr std::uint16_t META_POLYPOLYGON = 0x0538;

// Why the record's contents do not fit the record, or empty.
std::string recordProblem(std::uint16_t function, std::span<const std::uint8_t> parameters,
                          DibBudget& budget) {
    ByteReader in(parameters);
    const auto dib = std::ranges::find(dibRecords, function, &DibRecord::function);
    if (dib != dibRecords.end()) {
        if (parameters.size() + 6 < std::size_t{dib->minimumWords} * 2) return {};
        const DibColours colours =
            dib->colourUsageOffset >= 0 &&
                    in.u16(static_cast<std::size_t>(dib->colourUsageOffset)) == 1
                ? DibColours::PaletteIndices
                : DibColours::Rgb;
        if (parameters.size() < dib->dibOffset) return "its bitmap is missing";
        return embeddedDibProblem(parameters.subspan(dib->dibOffset), colours, budget);
    }
    if (function == META_POLYGON || function == META_POLYLINE) {
        const std::uint64_t points = in.u16(0);
        if (in.wasShort() || 2 + points * 4 > parameters.size())
            return "its points run past its end";
    }
    if (function == META_POLYPOLYGON) {
        const std::uint64_t polygons = in.u16(0);
        std::uint64_t points = 0;
        for (std::uint64_t i = 0; i < polygons && !in.wasShort(); ++i)
            points += in.u16(2 + i * 2);
        if (in.wasShort() || 2 + polygons * 2 + points * 4 > parameters.size())
            return "its polygons run past its end";
    }
    return {};
}

// The frame of an Aldus placeable header, in metafile units.
struct PlaceableFrame {
    std::int16_t left = 0;
    std::int16_t top = 0;
    std::int16_t right = 0;
    std::int16_t bottom = 0;
    std::uint16_t unitsPerInch = 0;
};

PlaceableFrame readPlaceableFrame(ByteReader& reader) {
    const PlaceableFrame frame{static_cast<std::int16_t>(reader.u16(6)),
                               static_cast<std::int16_t>(reader.u16(8)),
                               static_cast<std::int16_t>(reader.u16(10)),
                               static_cast<std::int16_t>(reader.u16(12)), reader.u16(14)};
    if (reader.wasShort()) throw PictureRefusal("WMF: the placeable header is cut short");
    if (frame.unitsPerInch == 0) {
        throw PictureRefusal("WMF: the placeable header gives 0 units per inch");
    }
    if (frame.right <= frame.left || frame.bottom <= frame.top) {
        throw PictureRefusal("WMF: the placeable header's frame (" + std::to_string(frame.left) +
                             "," + std::to_string(frame.top) + ")-(" + std::to_string(frame.right) +
                             "," + std::to_string(frame.bottom) + ") is empty");
    }
    return frame;
}

// Walks the records so that the library is only handed a metafile whose
// records stay inside the file, end with META_EOF, are not too many, and
// whose points and bitmaps fit inside their records.
RecordSummary checkRecords(ByteReader& reader, std::span<const std::uint8_t> bytes,
                           std::size_t headerOffset, const LoadLimits& limits) {
    const std::uint16_t type = reader.u16(headerOffset);
    const std::uint16_t headerWords = reader.u16(headerOffset + 2);
    if (reader.wasShort() || (type != 1 && type != 2) || headerWords != metaHeaderSize / 2) {
        throw PictureRefusal("WMF: no metafile header");
    }
    RecordSummary summary;
    DibBudget budget(metafileBitmapPixels(limits, bytes.size()));
    const std::size_t size = reader.size();
    std::size_t offset = headerOffset + metaHeaderSize;
    for (std::size_t index = 0; offset + 2 * minimumRecordWords <= size; ++index) {
        const std::uint32_t words = reader.u32(offset);
        const std::uint16_t function = reader.u16(offset + 4);
        if (words < minimumRecordWords || words > (size - offset) / 2) {
            throw PictureRefusal("WMF: record " + std::to_string(index) + " at offset " +
                                 std::to_string(offset) + " has an impossible size of " +
                                 std::to_string(words) + " words");
        }
        summary.largestRecordWords = std::max(summary.largestRecordWords, words);
        if (function == META_EOF) {
            // The walk ends at the first end record, but libwmf only at one of
            // three words: a longer one would hand it records never checked.
            if (words != minimumRecordWords) {
                throw PictureRefusal("WMF: record " + std::to_string(index) + " at offset " +
                                     std::to_string(offset) + " ends the metafile with " +
                                     std::to_string(words) + " words instead of 3");
            }
            summary.endOffset = offset + std::size_t{words} * 2;
            return summary;
        }
        if (index >= metafileMaxRecords) {
            throw PictureRefusal("WMF: more than " + std::to_string(metafileMaxRecords) +
                                 " records, more than this program draws");
        }
        if (function == META_SETWINDOWORG) summary.setsWindowOrigin = true;
        const std::string problem =
            recordProblem(function, bytes.subspan(offset + 6, std::size_t{words} * 2 - 6), budget);
        if (!problem.empty()) {
            throw PictureRefusal("WMF: record " + std::to_string(index) + " at offset " +
                                 std::to_string(offset) + " (function 0x" + hex4(function) +
                                 "): " + problem);
        }
        offset += std::size_t{words} * 2;
    }
    throw PictureRefusal("WMF: the records end without a META_EOF record");
}

// libwmf sizes its record buffer by the header's largest record and trusts
// its length: a header claiming a record of gigabytes costs gigabytes of
// memory before anything is read. The copy it gets says what the walk found.
void restateHeader(std::vector<unsigned char>& contents, std::size_t headerOffset,
                   const RecordSummary& records) {
    auto put32 = [&](std::size_t at, std::uint32_t value) {
        for (int i = 0; i < 4; ++i)
            contents[at + static_cast<std::size_t>(i)] = static_cast<unsigned char>(value >> (8 * i));
    };
    put32(headerOffset + 6, static_cast<std::uint32_t>((records.endOffset - headerOffset) / 2));
    put32(headerOffset + 12, records.largestRecordWords);
}

// libwmf would stretch what was drawn to the whole picture; the page is the
// placeable frame instead. Playing a placeable file puts the frame's corner
// at the window origin unless the records set an origin of their own, and
// libwmf counts points from the window origin.
wmfD_Rect pageOf(const PlaceableFrame& frame, const RecordSummary& records) {
    const double scale = pointsPerInch / frame.unitsPerInch;
    const double left = records.setsWindowOrigin ? 0.0 : frame.left * scale;
    const double top = records.setsWindowOrigin ? 0.0 : frame.top * scale;
    wmfD_Rect page{};
    page.TL = {static_cast<float>(left), static_cast<float>(top)};
    page.BR = {static_cast<float>(left + (frame.right - frame.left) * scale),
               static_cast<float>(top + (frame.bottom - frame.top) * scale)};
    return page;
}

std::string describe(wmf_error_t error) {
    switch (error) {
    case wmf_E_InsMem:
        return "out of memory";
    case wmf_E_BadFile:
        return "the file could not be read or no font could be loaded";
    case wmf_E_BadFormat:
        return "the metafile is corrupt";
    case wmf_E_EOF:
        return "the metafile ends too early";
    case wmf_E_DeviceError:
        return "the drawing could not be made";
    default:
        return "error " + std::to_string(static_cast<int>(error)) + " in libwmf";
    }
}

void check(wmf_error_t error, const char* step) {
    if (error != wmf_E_None) {
        throw PictureRefusal(std::string("WMF: ") + step + " failed: " + describe(error));
    }
}

// libwmf needs a font for every metafile, text or not. Its own choice is
// the URW base 35 set; where that is missing the standard PostScript names
// go to DejaVu, which every fontconfig installation carries.
constexpr const char* libwmfFontDirectory = "/usr/share/fonts/type1/urw-base35";
constexpr const char* fallbackFontDirectory = "/usr/share/fonts/truetype/dejavu";

struct FontSubstitute {
    const char* postScriptName;
    const char* file;
};

constexpr std::array fontSubstitutes{
    FontSubstitute{"Times-Roman", "DejaVuSerif.ttf"},
    FontSubstitute{"Times-Italic", "DejaVuSerif-Italic.ttf"},
    FontSubstitute{"Times-Bold", "DejaVuSerif-Bold.ttf"},
    FontSubstitute{"Times-BoldItalic", "DejaVuSerif-BoldItalic.ttf"},
    FontSubstitute{"Helvetica", "DejaVuSans.ttf"},
    FontSubstitute{"Helvetica-Oblique", "DejaVuSans-Oblique.ttf"},
    FontSubstitute{"Helvetica-Bold", "DejaVuSans-Bold.ttf"},
    FontSubstitute{"Helvetica-BoldOblique", "DejaVuSans-BoldOblique.ttf"},
    FontSubstitute{"Courier", "DejaVuSansMono.ttf"},
    FontSubstitute{"Courier-Oblique", "DejaVuSansMono-Oblique.ttf"},
    FontSubstitute{"Courier-Bold", "DejaVuSansMono-Bold.ttf"},
    FontSubstitute{"Courier-BoldOblique", "DejaVuSansMono-BoldOblique.ttf"},
    FontSubstitute{"Symbol", "DejaVuSans.ttf"},
};

// The options libwmf is created with; they must outlive the API, which may
// keep pointers into them.
class LibwmfOptions {
  public:
    LibwmfOptions() {
        options_.function = wmf_svg_function;
        std::error_code ec;
        if (std::filesystem::is_directory(libwmfFontDirectory, ec) ||
            !std::filesystem::is_directory(fallbackFontDirectory, ec)) {
            return;
        }
        directory_ = fallbackFontDirectory;
        directories_ = {directory_.data(), nullptr};
        for (const FontSubstitute& substitute : fontSubstitutes) {
            names_.emplace_back(substitute.postScriptName);
            files_.emplace_back(substitute.file);
        }
        for (std::size_t i = 0; i < names_.size(); ++i) {
            mappings_.push_back({names_[i].data(), files_[i].data(), FT_ENCODING_NONE});
        }
        mappings_.push_back({nullptr, nullptr, FT_ENCODING_NONE});
        options_.fontdirs = directories_.data();
        options_.font.ps = mappings_.data();
        flags_ |= WMF_OPT_FONTDIRS | WMF_OPT_FONTMAP;
    }
    LibwmfOptions(const LibwmfOptions&) = delete;
    LibwmfOptions& operator=(const LibwmfOptions&) = delete;

    [[nodiscard]] unsigned long flags() const { return flags_; }
    [[nodiscard]] wmfAPI_Options* get() { return &options_; }

  private:
    // Errors are reported through the load failure, not on the console.
    unsigned long flags_ =
        WMF_OPT_FUNCTION | WMF_OPT_IGNORE_NONFATAL | WMF_OPT_NO_ERROR | WMF_OPT_NO_DEBUG;
    wmfAPI_Options options_{};
    std::string directory_;
    std::array<char*, 2> directories_{};
    std::vector<std::string> names_;
    std::vector<std::string> files_;
    std::vector<wmfMapping> mappings_;
};

// Destroying the API frees everything the library allocated, the output
// buffer included.
struct ApiDestroyer {
    void operator()(wmfAPI* api) const { wmf_api_destroy(api); }
};
using LibwmfApi = std::unique_ptr<wmfAPI, ApiDestroyer>;

// The library's call after every record: the load's percentage, and the
// way a cancelled load stops it. Nothing may be thrown through the library.
class PlayProgress {
  public:
    explicit PlayProgress(ProgressSink* progress) : progress_(progress) {}

    static int report(void* context, float fraction) {
        return static_cast<PlayProgress*>(context)->step(fraction);
    }

    void rethrow() const {
        if (failure_) std::rethrow_exception(failure_);
    }

  private:
    int step(float fraction) {
        if (progress_ == nullptr || failure_) return failure_ ? 1 : 0;
        try {
            const int percent = static_cast<int>(std::clamp(fraction, 0.0F, 1.0F) * 100.0F);
            if (percent != shown_) {
                shown_ = percent;
                progress_->showPercent(percent);
            }
        } catch (...) {
            failure_ = std::current_exception();
            return 1;
        }
        return 0;
    }

    ProgressSink* progress_;
    int shown_ = -1;
    std::exception_ptr failure_;
};

LibwmfApi createApi(LibwmfOptions& options) {
    wmfAPI* raw = nullptr;
    const wmf_error_t error = wmf_api_create(&raw, options.flags(), options.get());
    LibwmfApi api(raw);
    check(error, "starting libwmf");
    if (!api) throw PictureRefusal("WMF: starting libwmf failed");
    return api;
}

} // namespace

bool looksLikePlaceableMetafile(std::span<const std::uint8_t> bytes) {
    ByteReader reader(bytes);
    return reader.u32(0) == placeableKey && !reader.wasShort();
}

WmfDrawing convertWindowsMetafile(std::span<const std::uint8_t> bytes, const LoadLimits& limits,
                                  ProgressSink* progress) {
    ByteReader reader(bytes);
    const bool placeable = looksLikePlaceableMetafile(bytes);
    const PlaceableFrame frame = placeable ? readPlaceableFrame(reader) : PlaceableFrame{};
    const RecordSummary records =
        checkRecords(reader, bytes, placeable ? placeableHeaderSize : 0, limits);

    // The library reads through a pointer it does not write to, but takes
    // it unqualified.
    std::vector<unsigned char> contents(bytes.begin(), bytes.end());
    restateHeader(contents, placeable ? placeableHeaderSize : 0, records);
    LibwmfOptions options;
    const LibwmfApi api = createApi(options);
    check(wmf_mem_open(api.get(), contents.data(), static_cast<long>(contents.size())), "opening");
    wmfD_Rect drawn{};
    check(wmf_scan(api.get(), 0, &drawn), "scanning");
    unsigned int width = 0;
    unsigned int height = 0;
    check(wmf_display_size(api.get(), &width, &height, pixelsPerInch, pixelsPerInch), "sizing");
    const FittedSize pageSize = metafilePage(limits, width, height);

    wmfD_Rect page = placeable ? pageOf(frame, records) : drawn;
    wmf_svg_t* device = WMF_SVG_GetData(api.get());
    device->out = wmf_stream_create(api.get(), nullptr);
    if (device->out == nullptr) throw PictureRefusal("WMF: no memory for the drawing");
    device->bbox = page;
    device->width = static_cast<unsigned int>(pageSize.width);
    device->height = static_cast<unsigned int>(pageSize.height);
    device->flags |= WMF_SVG_INLINE_IMAGES;
    PlayProgress status(progress);
    wmf_status_function(api.get(), &status, &PlayProgress::report);
    const wmf_error_t played = wmf_play(api.get(), 0, &page);
    char* output = nullptr;
    unsigned long outputLength = 0;
    wmf_stream_destroy(api.get(), device->out, &output, &outputLength);
    device->out = nullptr;
    status.rethrow();
    check(played, "playing");
    if (output == nullptr || outputLength == 0) throw PictureRefusal("WMF: nothing was drawn");
    // Copied out before the API, which owns the buffer, is destroyed.
    WmfDrawing drawing{std::string(output, outputLength),
                       static_cast<int>(pageSize.width),
                       static_cast<int>(pageSize.height),
                       {}};
    if (pageSize.scaledDown)
        drawing.note = "WMF: " + scaledDownNote(width, height, pageSize, limits);
    return drawing;
}

} // namespace lumiran

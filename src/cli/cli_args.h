#pragma once

#include "catalogue/control_values.h"
#include "engine/process_rect.h"
#include "imagefiles/load_limits.h"

#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

namespace lumiran::cli {

// A command line that cannot be carried out as given: exit code 2.
class UsageError : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

// Control values as given on the command line; unset ones keep the
// effect's defaults.
struct ControlOverrides {
    std::array<std::optional<double>, 8> sliders;
    std::optional<int> eType;
    std::optional<int> color;
    std::optional<int> distance;
    std::optional<int> check;
    std::optional<Rgb8> processColor;
};

// The kinds of file the tool writes; a bitmap unless asked otherwise.
enum class OutputFormat { Bmp, Png };

// The kind a file name's extension (any case) names; nothing for any other.
[[nodiscard]] std::optional<OutputFormat> outputFormatOf(const std::string& path);

// ".bmp" or ".png".
[[nodiscard]] const char* extensionOf(OutputFormat format);

// What `list` prints and how.
struct ListOptions {
    bool json = false;          // a JSON array instead of text
    bool compact = false;       // one line per effect
    bool availableOnly = false; // only effects this version can run
    bool keys = false;          // the keys and the catalogue's own texts, not English
    std::string family;         // only this family (caption or menu); empty: all
};

struct CommandLine {
    std::string command; // "apply", "convert" or "list"
    std::string effect;
    ControlOverrides controls;
    int calculationFlag = 0;
    int rasterOpFlag = 0;
    std::optional<AreaRect> rect;
    std::string keptFile;
    int bits = 24;
    // From -o's extension, or --format for the files of --out-dir.
    OutputFormat format = OutputFormat::Bmp;
    std::vector<std::string> inputs;
    std::string output;
    std::string outDir;
    // The most pixels a picture read may have (--max-pixels).
    std::int64_t maxPixels = LoadLimits::DefaultMaxPixels;
    ListOptions list;
};

// Throws UsageError with a one-line message.
[[nodiscard]] CommandLine parseCommandLine(const std::vector<std::string>& args);

[[nodiscard]] std::string usageText();

} // namespace lumiran::cli

#include "cli/cli_args.h"

#include "engine/ascii_case.h"

#include <algorithm>
#include <charconv>
#include <filesystem>
#include <sstream>

namespace lumiran::cli {
namespace {

long long parseInteger(const std::string& option, const std::string& text, long long min,
                       long long max) {
    long long value = 0;
    const char* end = text.data() + text.size();
    const auto [ptr, ec] = std::from_chars(text.data(), end, value);
    if (ec != std::errc() || ptr != end) {
        throw UsageError(option + ": '" + text + "' is not a whole number");
    }
    if (value < min || value > max) {
        throw UsageError(option + ": " + text + " is outside " + std::to_string(min) + ".." +
                         std::to_string(max));
    }
    return value;
}

std::vector<std::string> splitCommas(const std::string& option, const std::string& text,
                                     std::size_t count) {
    std::vector<std::string> parts;
    std::stringstream stream(text);
    for (std::string part; std::getline(stream, part, ',');)
        parts.push_back(part);
    if (parts.size() != count || (!text.empty() && text.back() == ',')) {
        throw UsageError(option + ": expected " + std::to_string(count) +
                         " comma-separated numbers, got '" + text + "'");
    }
    return parts;
}

// Any other extension would name the file falsely, and a missing one is not
// guessed at.
OutputFormat requireWritableName(const std::string& option, const std::string& path) {
    if (const auto format = outputFormatOf(path)) return *format;
    throw UsageError(option + " " + path +
                     ": lumiran-cli writes Windows bitmaps and PNG; give a name ending in .bmp "
                     "or .png");
}

ListOptions parseListOptions(const std::vector<std::string>& args) {
    ListOptions options;
    for (std::size_t i = 1; i < args.size(); ++i) {
        const std::string& arg = args[i];
        if (arg == "--json") {
            options.json = true;
        } else if (arg == "--compact") {
            options.compact = true;
        } else if (arg == "--available") {
            options.availableOnly = true;
        } else if (arg == "--keys") {
            options.keys = true;
        } else if (arg == "--family") {
            if (i + 1 >= args.size() || args[i + 1].empty()) {
                throw UsageError("list --family: a family name is missing");
            }
            options.family = args[++i];
        } else {
            throw UsageError(
                "list takes --available, --family NAME, --keys, --compact and --json, not '" + arg +
                "'");
        }
    }
    if (options.json && options.compact) {
        throw UsageError("list: --compact is a text form; give --compact or --json, not both");
    }
    return options;
}

} // namespace

std::optional<OutputFormat> outputFormatOf(const std::string& path) {
    const std::string extension = asciiLower(std::filesystem::path(path).extension().string());
    if (extension == ".bmp") return OutputFormat::Bmp;
    if (extension == ".png") return OutputFormat::Png;
    return std::nullopt;
}

const char* extensionOf(OutputFormat format) {
    return format == OutputFormat::Png ? ".png" : ".bmp";
}

std::string usageText() {
    return "usage:\n"
           "  lumiran-cli list [--available] [--family NAME] [--keys] [--compact | --json]\n"
           "  lumiran-cli apply --effect NAME [controls] [run options] INPUT -o OUTPUT.bmp|.png\n"
           "  lumiran-cli apply --effect NAME [controls] [run options] INPUT... --out-dir DIR\n"
           "              [--format bmp|png]\n"
           "  lumiran-cli convert INPUT -o OUTPUT.bmp|.png [--bits 24|8|1] [--max-pixels WxH]\n"
           "NAME:        an effect's caption or key as list shows it (any width, any case)\n"
           "list:        English captions and texts; --keys: the effects' keys and the\n"
           "             program's own (Japanese) texts; --json always carries both\n"
           "controls:    --s1 V .. --s8 V  --e ROW  --c ROW  --g ROW  --k 0|1  --rgb R,G,B\n"
           "run options: --calc N  --raster N  --rect L,T,R,B  --kept FILE  --bits 24|8|1\n"
           "             (--bits is a bitmap's depth; PNG is always written at 24 bits)\n"
           "             --max-pixels WxH|N  (largest picture read; default 16384x16384)\n";
}

CommandLine parseCommandLine(const std::vector<std::string>& args) {
    if (args.empty()) throw UsageError("no command given (list, apply, convert)");
    CommandLine cl;
    cl.command = args[0];
    std::optional<OutputFormat> formatGiven;
    bool bitsGiven = false;
    if (cl.command == "list") {
        cl.list = parseListOptions(args);
        return cl;
    }
    if (cl.command != "apply" && cl.command != "convert") {
        throw UsageError("unknown command '" + cl.command + "' (list, apply, convert)");
    }
    for (std::size_t i = 1; i < args.size(); ++i) {
        const std::string& arg = args[i];
        auto value = [&]() -> const std::string& {
            if (i + 1 >= args.size()) throw UsageError(arg + ": a value is missing");
            return args[++i];
        };
        if (arg == "--effect") {
            cl.effect = value();
        } else if (arg.size() == 4 && arg.starts_with("--s") && arg[3] >= '1' && arg[3] <= '8') {
            cl.controls.sliders[arg[3] - '1'] =
                static_cast<double>(parseInteger(arg, value(), -2147483648LL, 2147483647LL));
        } else if (arg == "--e") {
            cl.controls.eType = static_cast<int>(parseInteger(arg, value(), 0, 32767));
        } else if (arg == "--c") {
            cl.controls.color = static_cast<int>(parseInteger(arg, value(), 0, 32767));
        } else if (arg == "--g") {
            cl.controls.distance = static_cast<int>(parseInteger(arg, value(), 0, 32767));
        } else if (arg == "--k") {
            cl.controls.check = static_cast<int>(parseInteger(arg, value(), 0, 1));
        } else if (arg == "--rgb") {
            const auto parts = splitCommas(arg, value(), 3);
            cl.controls.processColor =
                Rgb8{static_cast<std::uint8_t>(parseInteger(arg, parts[0], 0, 255)),
                     static_cast<std::uint8_t>(parseInteger(arg, parts[1], 0, 255)),
                     static_cast<std::uint8_t>(parseInteger(arg, parts[2], 0, 255))};
        } else if (arg == "--calc") {
            cl.calculationFlag = static_cast<int>(parseInteger(arg, value(), 0, 10));
        } else if (arg == "--raster") {
            cl.rasterOpFlag = static_cast<int>(parseInteger(arg, value(), 0, 10));
        } else if (arg == "--rect") {
            const auto parts = splitCommas(arg, value(), 4);
            constexpr long long lo = -2147483648LL, hi = 2147483647LL;
            cl.rect = AreaRect{static_cast<std::int32_t>(parseInteger(arg, parts[0], lo, hi)),
                               static_cast<std::int32_t>(parseInteger(arg, parts[1], lo, hi)),
                               static_cast<std::int32_t>(parseInteger(arg, parts[2], lo, hi)),
                               static_cast<std::int32_t>(parseInteger(arg, parts[3], lo, hi))};
        } else if (arg == "--kept") {
            cl.keptFile = value();
        } else if (arg == "--bits") {
            cl.bits = static_cast<int>(parseInteger(arg, value(), 1, 24));
            bitsGiven = true;
            if (cl.bits != 24 && cl.bits != 8 && cl.bits != 1) {
                throw UsageError("--bits: must be 24, 8 or 1");
            }
        } else if (arg == "--max-pixels") {
            const std::string& limit = value();
            cl.maxPixels = parsePixelLimit(limit);
            if (cl.maxPixels == 0) {
                throw UsageError("--max-pixels: '" + limit +
                                 "' is neither WIDTHxHEIGHT nor a number of pixels");
            }
        } else if (arg == "-o" || arg == "--output") {
            cl.output = value();
        } else if (arg == "--out-dir") {
            cl.outDir = value();
        } else if (arg == "--format") {
            const std::string& name = value();
            formatGiven = outputFormatOf("x." + name);
            if (!formatGiven) throw UsageError("--format: must be bmp or png");
        } else if (arg.starts_with("-") && arg.size() > 1) {
            throw UsageError("unknown option '" + arg + "'");
        } else {
            cl.inputs.push_back(arg);
        }
    }

    if (cl.inputs.empty()) throw UsageError("no input picture given");
    if (!cl.output.empty()) {
        cl.format = requireWritableName("-o", cl.output);
        if (formatGiven && *formatGiven != cl.format) {
            throw UsageError("--format " + std::string(extensionOf(*formatGiven) + 1) +
                             " does not match -o " + cl.output);
        }
    } else if (formatGiven) {
        cl.format = *formatGiven;
    }
    if (cl.format == OutputFormat::Png && bitsGiven && cl.bits != 24) {
        throw UsageError("--bits " + std::to_string(cl.bits) +
                         ": PNG is written at 24 bits; 8 and 1 are bitmap depths");
    }
    if (cl.command == "convert") {
        if (!cl.effect.empty()) throw UsageError("convert takes no --effect");
        if (cl.inputs.size() != 1 || cl.output.empty()) {
            throw UsageError("convert needs one INPUT and -o OUTPUT.bmp or OUTPUT.png");
        }
        return cl;
    }
    if (cl.effect.empty()) throw UsageError("apply needs --effect NAME");
    if (!cl.output.empty() && !cl.outDir.empty()) {
        throw UsageError("give either -o OUTPUT or --out-dir DIR, not both");
    }
    if (cl.output.empty() && cl.outDir.empty())
        throw UsageError("apply needs -o OUTPUT or --out-dir DIR");
    if (!cl.output.empty() && cl.inputs.size() != 1) {
        throw UsageError("-o takes one INPUT; use --out-dir DIR for several");
    }
    return cl;
}

} // namespace lumiran::cli

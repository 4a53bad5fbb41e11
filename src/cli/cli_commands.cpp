#include "cli/cli_commands.h"

#include "catalogue/effect_dispatch.h"
#include "catalogue/effect_table.h"
#include "cli/cli_args.h"
#include "cli/cli_list.h"
#include "imagefiles/bitmap_writer.h"
#include "imagefiles/image_file_error.h"
#include "imagefiles/image_load_error.h"
#include "imagefiles/load_dispatch.h"
#include "imagefiles/png_writer.h"
#include "shell/effect_run.h"
#include "shell/string_table.h"
#include "shell/ui_string_ids.h"

#include <algorithm>
#include <filesystem>
#include <map>
#include <ostream>
#include <set>

namespace lumiran::cli {
namespace {

namespace fs = std::filesystem;

// A failed effect or refused save, reported with exit code 1.
class RunFailure : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

// The message the editor would show, with the reason behind it.
std::string describeLoadError(const ImageLoadError& error, const std::string& path) {
    // The program's own refusals carry no error number: the detail, named
    // by its file, says it all.
    if (error.number() == 0) {
        return error.detail().starts_with(path) ? error.detail() : path + ": " + error.detail();
    }
    // A run-time error inside a reader knows no file name: the line names it.
    std::string text = error.detail().starts_with(path) ? "" : path + ": ";
    text += errorTitle(error.number());
    if (!error.description().empty()) text += " " + error.description();
    return text + ": " + error.detail();
}

// Ctrl+C: the run stops without writing anything more.
class Interrupted : public std::runtime_error {
  public:
    Interrupted() : std::runtime_error("interrupted") {}
};

// What a load needs besides the file: the limits, the Ctrl+C flag and
// where its notes go.
struct LoadSetting {
    LoadLimits limits;
    const std::atomic<int>* interrupted = nullptr;
    std::ostream* err = nullptr;

    [[nodiscard]] bool stopRequested() const {
        return interrupted != nullptr && interrupted->load() != 0;
    }
};

// The tool shows no percentage; it stops a load on Ctrl+C and passes notes on.
class CliLoadProgress : public ProgressSink {
  public:
    CliLoadProgress(const LoadSetting& setting, std::string path)
        : setting_(setting), path_(std::move(path)) {}
    void showPercent(int /*percent*/) override {
        if (setting_.stopRequested()) throw LoadCancelled();
    }
    void showNote(const std::string& note) override {
        if (setting_.err != nullptr)
            *setting_.err << "lumiran-cli: note: " << path_ << ": " << note << '\n';
    }

  private:
    const LoadSetting& setting_;
    std::string path_;
};

Surface loadPicture(const std::string& path, PlatformDecoder& decoder, const LoadSetting& setting) {
    std::optional<Surface> picture;
    CliLoadProgress progress(setting, path);
    try {
        picture = LoadImageFile(path, &decoder, &progress, setting.limits);
    } catch (const LoadCancelled&) {
        throw Interrupted();
    } catch (const ImageLoadError& error) {
        throw UsageError(describeLoadError(error, path));
    }
    // Steps that report nothing (drawing a metafile) end before the stop.
    if (setting.stopRequested()) throw Interrupted();
    if (!picture) {
        // The editor opens such a file as a blank picture; there is nothing to process.
        throw UsageError(path + ": not a picture format the program reads (by its extension)");
    }
    return std::move(*picture);
}

void savePicture(const Surface& picture, const std::string& path, OutputFormat format, int bits) {
    try {
        if (format == OutputFormat::Png) {
            savePng24(picture, path);
        } else if (bits == 8) {
            const int result = Save256(picture, path, true);
            if (result == Save256TooManyColours) {
                throw RunFailure(std::string(LoadResString(ids::SaveFailed)) + " " + path +
                                 ": more than 236 colours do not fit an 8-bit bitmap");
            }
            if (result != Save256Success) {
                throw RunFailure(std::string(LoadResString(ids::SaveFailed)) + " " + path +
                                 ": code " + std::to_string(result));
            }
        } else if (bits == 1) {
            (void)SaveMonoImage(path, picture);
        } else {
            saveBmp24(picture, path);
        }
    } catch (const ImageFileError& error) {
        throw UsageError(error.what());
    }
}

void checkOutputFolder(const fs::path& output) {
    const fs::path folder = output.has_parent_path() ? output.parent_path() : fs::path(".");
    std::error_code ec;
    if (!fs::is_directory(folder, ec)) {
        throw UsageError(output.string() + ": the folder does not exist");
    }
    if (fs::is_directory(output, ec)) throw UsageError(output.string() + ": is a directory");
}

std::string describeRange(int min, int max) {
    return std::to_string(min) + ".." + std::to_string(max);
}

// The values OK would hand on: the effect's defaults, with the given
// controls checked against its table entry.
ControlValues resolveControls(const EffectEntry& effect, const ControlOverrides& given) {
    ControlValues values = defaultControlValues(effect);
    for (int n = 1; n <= 8; ++n) {
        const auto& v = given.sliders[n - 1];
        if (!v) continue;
        const SliderSpec* spec = effect.slider(n);
        if (spec == nullptr) {
            throw UsageError("--s" + std::to_string(n) + ": " + std::string(effect.caption) +
                             " has no slider " + std::to_string(n));
        }
        if (*v < spec->min || *v > spec->max) {
            throw UsageError("--s" + std::to_string(n) + ": " + std::to_string(int(*v)) +
                             " is outside " + describeRange(spec->min, spec->max));
        }
        values.sliders[n - 1] = *v;
    }
    auto listRow = [&](const std::optional<int>& row, ListKind kind, const char* option) {
        if (!row) return 0;
        const ListSpec* list = effect.list(kind);
        if (list == nullptr) {
            throw UsageError(std::string(option) + ": " + std::string(effect.caption) +
                             " has no such list");
        }
        const int rows = static_cast<int>(list->rows.size());
        if (*row >= rows) {
            throw UsageError(std::string(option) + ": row " + std::to_string(*row) +
                             " is outside " + describeRange(0, rows - 1));
        }
        return *row;
    };
    values.eType = listRow(given.eType, ListKind::E, "--e");
    values.color = listRow(given.color, ListKind::C, "--c");
    values.distance = listRow(given.distance, ListKind::G, "--g");
    if (given.check) values.check = *given.check;
    if (given.processColor) values.processColor = *given.processColor;
    return values;
}

// An unknown name, with the nearest names of the catalogue if any are near.
std::string unknownEffectMessage(const std::string& name) {
    std::string message = "unknown effect '" + name + "'";
    const std::vector<std::string> closest = closestEffectNames(name);
    for (std::size_t i = 0; i < closest.size(); ++i) {
        message += i == 0 ? "; did you mean \"" : i + 1 == closest.size() ? "\" or \"" : "\", \"";
        message += closest[i];
    }
    if (!closest.empty()) message += "\"?";
    return message + " ('lumiran-cli list' shows every effect)";
}

void printFailures(const std::vector<EffectError>& failures, std::ostream& err,
                   const std::string& prefix) {
    for (const EffectError& f : failures) {
        err << prefix << errorTitle(f.number()) << ": " << f.description() << '\n';
    }
}

std::string namedFor(const fs::path& input, const std::string& message) {
    const std::string name = input.string();
    if (message.starts_with(name) || message.find(' ' + name + ':') != std::string::npos) {
        return message;
    }
    return name + ": " + message;
}

int runApply(const CommandLine& cl, std::ostream& out, std::ostream& err, PlatformDecoder& decoder,
             const LoadSetting& setting, bool showProgress) {
    const EffectEntry* effect = findEffect(cl.effect);
    if (effect == nullptr) throw UsageError(unknownEffectMessage(cl.effect));
    const ControlValues values = resolveControls(*effect, cl.controls);
    EffectPlan plan = planEffect(effect->dialog, effect->code, values);
    if (plan.status != EffectPlan::Status::Ready) {
        throw UsageError("\"" + effectName(*effect) +
                         "\" is not available in this version ('lumiran-cli list --available' "
                         "shows the effects that are)");
    }
    if (needsKeptImage(*effect) && cl.keptFile.empty()) {
        throw UsageError("\"" + effectName(*effect) +
                         "\" merges the picture with a kept image: give it with --kept FILE");
    }

    // Outputs are fixed before any work so that a bad argument costs nothing.
    std::vector<fs::path> outputs;
    if (!cl.output.empty()) {
        outputs.emplace_back(cl.output);
    } else {
        std::error_code ec;
        if (!fs::is_directory(cl.outDir, ec)) throw UsageError(cl.outDir + ": no such folder");
        std::set<fs::path> seen;
        for (const std::string& input : cl.inputs) {
            fs::path target = fs::path(cl.outDir) / fs::path(input).stem();
            target += extensionOf(cl.format);
            if (!seen.insert(target).second) {
                throw UsageError("two inputs would both be written to " + target.string());
            }
            outputs.push_back(target);
        }
    }
    for (const fs::path& output : outputs)
        checkOutputFolder(output);

    ProgramState state;
    state.flags.calculationFlag = static_cast<std::uint8_t>(cl.calculationFlag);
    state.flags.rasterOpFlag = static_cast<std::uint8_t>(cl.rasterOpFlag);
    if (!cl.keptFile.empty()) state.keep.ComposeImage = loadPicture(cl.keptFile, decoder, setting);

    const bool batch = cl.inputs.size() > 1;
    int exitCode = ExitOk;
    for (std::size_t i = 0; i < cl.inputs.size(); ++i) {
        if (setting.stopRequested()) throw Interrupted();
        const fs::path input(cl.inputs[i]);
        if (batch && showProgress) {
            err << '[' << i + 1 << '/' << cl.inputs.size() << "] " << input.filename().string()
                << '\n';
        }
        // In a batch every input gets its outcome, each message naming its
        // file, and the exit code is the worst seen.
        auto report = [&](const std::string& message, int code) {
            if (!batch) throw; // a single input is reported as before, by the outer handler
            err << "lumiran-cli: " << namedFor(input, message) << '\n';
            exitCode = std::max(exitCode, code);
        };
        try {
            Document document;
            document.picture = loadPicture(cl.inputs[i], decoder, setting);
            document.folderLabel =
                input.has_parent_path() ? input.parent_path().string() + "/" : "";
            document.nameLabel = input.filename().string();
            if (cl.rect) {
                document.ToolsFlag = 3; // an area fixed, as a finished selection leaves it
                document.area = *cl.rect;
            }
            // The tool keeps no undo level and looks at nothing during the run.
            const RunReport run =
                runEffect(state, document, plan.body, nullptr,
                          RunOptions{.noUndo = true, .oneShot = true, .spareBytesUnread = true});
            printFailures(run.failures, err, batch ? input.string() + ": " : std::string());
            if (run.outcome == RunOutcome::Cancelled) {
                exitCode = std::max(exitCode, ExitFailed);
                continue;
            }
            savePicture(document.picture, outputs[i].string(), cl.format, cl.bits);
            out << outputs[i].string() << '\n';
        } catch (const UsageError& error) {
            report(error.what(), ExitUsage);
        } catch (const RunFailure& error) {
            report(error.what(), ExitFailed);
        } catch (const EffectError& error) {
            report(errorTitle(error.number()) + ": " + error.description(), ExitFailed);
        }
    }
    return exitCode;
}

int runConvert(const CommandLine& cl, std::ostream& out, PlatformDecoder& decoder,
               const LoadSetting& setting) {
    checkOutputFolder(cl.output);
    const Surface picture = loadPicture(cl.inputs.front(), decoder, setting);
    savePicture(picture, cl.output, cl.format, cl.bits);
    out << cl.output << '\n';
    return ExitOk;
}

} // namespace

int runCli(const std::vector<std::string>& args, std::ostream& out, std::ostream& err,
           PlatformDecoder& decoder, const std::atomic<int>* interrupted, bool showProgress) {
    try {
        // Asking for help after a command ("apply --help") is asking for help.
        const auto asksForHelp = [](const std::string& arg) {
            return arg == "--help" || arg == "-h";
        };
        if (!args.empty() && (args[0] == "help" || std::ranges::any_of(args, asksForHelp))) {
            out << usageText();
            return ExitOk;
        }
        const CommandLine cl = parseCommandLine(args);
        if (cl.command == "list") {
            printEffectList(out, cl.list);
            return ExitOk;
        }
        LoadSetting setting{.limits = {}, .interrupted = interrupted, .err = &err};
        setting.limits.maxPixels = cl.maxPixels;
        if (cl.command == "convert") return runConvert(cl, out, decoder, setting);
        return runApply(cl, out, err, decoder, setting, showProgress);
    } catch (const Interrupted& error) {
        err << "lumiran-cli: " << error.what() << '\n';
        return ExitInterrupted;
    } catch (const UsageError& error) {
        err << "lumiran-cli: " << error.what() << '\n';
        return ExitUsage;
    } catch (const RunFailure& error) {
        err << "lumiran-cli: " << error.what() << '\n';
        return ExitFailed;
    } catch (const EffectError& error) {
        err << errorTitle(error.number()) << ": " << error.description() << '\n';
        return ExitFailed;
    }
}

} // namespace lumiran::cli

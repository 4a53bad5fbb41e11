#include "shell/settings.h"

#include "engine/effect_error.h"
#include "engine/numeric.h"

#include <charconv>
#include <cmath>
#include <optional>
#include <sstream>

namespace lumiran {
namespace {

const std::string SettingsSection = "Settings";
const std::string HistorySection = "History";
// Keys of this program's own, kept apart from the ones it has always had.
const std::string LimitsSection = "Limits";

// A value that does not convert; turned into a SettingsProblem by the reader.
struct ConversionFailure {};

double parseNumber(const std::string& text) {
    // Allow surrounding blanks, as the store's own conversion does.
    const auto first = text.find_first_not_of(' ');
    const auto last = text.find_last_not_of(' ');
    if (first == std::string::npos) throw ConversionFailure{};
    const std::string trimmed = text.substr(first, last - first + 1);
    double value = 0;
    const auto [ptr, ec] = std::from_chars(trimmed.data(), trimmed.data() + trimmed.size(), value);
    if (ec != std::errc() || ptr != trimmed.data() + trimmed.size() || !std::isfinite(value)) {
        throw ConversionFailure{};
    }
    return value;
}

class Reader {
  public:
    Reader(const KeyValueStore& store, std::vector<SettingsProblem>& problems)
        : store_(store), problems_(problems) {}

    template <typename T, typename Convert>
    T read(const std::string& section, const std::string& key, T fallback, Convert convert) {
        const auto text = store_.get(section, key);
        if (!text) return fallback;
        try {
            return convert(*text);
        } catch (const ConversionFailure&) {
        } catch (const EffectError&) {
        }
        problems_.push_back({section, key, *text});
        return fallback;
    }

    std::uint8_t byte(const std::string& key, std::uint8_t fallback) {
        return read(SettingsSection, key, fallback,
                    [](const std::string& t) { return roundTo<std::uint8_t>(parseNumber(t)); });
    }
    float single(const std::string& key, float fallback) {
        return read(SettingsSection, key, fallback, [](const std::string& t) {
            const double v = parseNumber(t);
            if (std::fabs(v) > 3.4e38) throw ConversionFailure{};
            return static_cast<float>(v);
        });
    }
    bool boolean(const std::string& key, bool fallback) {
        return read(SettingsSection, key, fallback, [](const std::string& t) {
            if (t == "True" || t == "true" || t == "TRUE") return true;
            if (t == "False" || t == "false" || t == "FALSE") return false;
            return parseNumber(t) != 0;
        });
    }
    std::int64_t pixelLimit(const std::string& key, std::int64_t fallback) {
        return read(LimitsSection, key, fallback, [](const std::string& t) {
            const std::int64_t pixels = parsePixelLimit(t);
            if (pixels == 0) throw ConversionFailure{};
            return pixels;
        });
    }
    std::string text(const std::string& section, const std::string& key) {
        return read(section, key, std::string(LoadHistory::Empty),
                    [](const std::string& t) { return t; });
    }

  private:
    const KeyValueStore& store_;
    std::vector<SettingsProblem>& problems_;
};

std::string decimal(double value) {
    std::ostringstream out;
    out << value;
    return out.str();
}

std::string historyKey(std::size_t i) {
    return "LoadImage" + std::to_string(i + 1);
}

} // namespace

Settings defaultSettings(ScreenSize screen) {
    Settings s;
    s.MainWidth = static_cast<float>(screen.width) * 4 / 5;
    s.MainHeight = static_cast<float>(screen.height) * 4 / 5;
    return s;
}

SettingsReadResult readSettings(const KeyValueStore& store, ScreenSize screen) {
    SettingsReadResult result;
    result.settings = defaultSettings(screen);
    Settings& s = result.settings;
    Reader in(store, result.problems);

    s.Vasion = in.single("Vasion", 0);
    if (s.Vasion != Settings::CurrentVersion) s.Vasion = 0;
    if (!s.firstStart()) {
        s.MainLeft = in.single("MainLeft", s.MainLeft);
        s.MainTop = in.single("MainTop", s.MainTop);
        s.MainWidth = in.single("MainWidth", s.MainWidth);
        s.MainHeight = in.single("MainHeight", s.MainHeight);
    }
    for (std::size_t i = 0; i < LoadHistory::Size; ++i) {
        s.history.setEntry(i, in.text(HistorySection, historyKey(i)));
    }
    s.OpenFolder = in.text(HistorySection, "OpenFolder");
    s.AutoPreview = in.byte("AutoPreview", s.AutoPreview);
    s.MaxUndoCount = in.byte("MaxUndoCount", s.MaxUndoCount);
    s.backColor = {in.byte("BackColorR", 0), in.byte("BackColorG", 0), in.byte("BackColorB", 0)};
    s.drawingColor = {in.byte("DrawingColorR", 128), in.byte("DrawingColorG", 128),
                      in.byte("DrawingColorB", 255)};
    s.FontSize = in.byte("Font Size", s.FontSize);
    s.ProcessBarType = in.boolean("ProcessBarType", s.ProcessBarType);
    s.AutoRegulation = in.byte("AutoRegulation", 0);
    s.CalculationFlag = in.byte("CalculationFlag", 0);
    s.RasterOpFlag = in.byte("RasterOpFlag", 0);
    s.LoadingAmountLimitation = in.byte("LoadingAmountLimitation", 0);
    s.MaxLoadPixels = in.pixelLimit("MaxLoadPixels", s.MaxLoadPixels);
    if (const auto language = store.get(SettingsSection, "InterfaceLanguage")) {
        s.interfaceLanguage =
            parseInterfaceLanguage(*language).value_or(InterfaceLanguage::Japanese);
    }

    if (!result.problems.empty()) {
        const auto problems = std::move(result.problems);
        result = SettingsReadResult{defaultSettings(screen), problems};
    }
    return result;
}

void writeSettings(KeyValueStore& store, const Settings& s) {
    auto put = [&](const std::string& key, const std::string& value) {
        store.set(SettingsSection, key, value);
    };
    put("MainLeft", decimal(s.MainLeft));
    put("MainTop", decimal(s.MainTop));
    put("MainWidth", decimal(s.MainWidth));
    put("MainHeight", decimal(s.MainHeight));
    for (std::size_t i = 0; i < LoadHistory::Size; ++i) {
        store.set(HistorySection, historyKey(i), s.history.entry(i));
    }
    store.set(HistorySection, "OpenFolder", s.OpenFolder);
    put("BackColorR", decimal(s.backColor.red));
    put("BackColorG", decimal(s.backColor.green));
    put("BackColorB", decimal(s.backColor.blue));
    put("DrawingColorR", decimal(s.drawingColor.red));
    put("DrawingColorG", decimal(s.drawingColor.green));
    put("DrawingColorB", decimal(s.drawingColor.blue));
    put("ProcessBarType", s.ProcessBarType ? "True" : "False");
    // Written under other names than they are read: the choice lasts one session.
    put("AutoFlag", decimal(s.AutoRegulation));
    put("CaculateFlag", decimal(s.CalculationFlag));
    put("ComposeFlag", decimal(s.RasterOpFlag));
    put("LoadCountControlFlag", decimal(s.LoadingAmountLimitation));
    put("Language", "1");
    put("AutoPreview", decimal(s.AutoPreview));
    put("MaxUndoCount", decimal(s.MaxUndoCount));
    put("Font Size", decimal(s.FontSize));
    put("Vasion", "0.49");
    store.set(LimitsSection, "MaxLoadPixels", std::to_string(s.MaxLoadPixels));
    // The program's own, after the keys it has always written.
    put("InterfaceLanguage", std::string(interfaceLanguageCode(s.interfaceLanguage)));
}

} // namespace lumiran

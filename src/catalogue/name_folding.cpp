#include "catalogue/name_folding.h"

#include "engine/ascii_case.h"

#include <algorithm>
#include <array>
#include <vector>

namespace lumiran {
namespace {

constexpr char32_t Replacement = 0xFFFD;
constexpr char32_t VoicedMark = 0x3099;     // combining dakuten
constexpr char32_t SemiVoicedMark = 0x309A; // combining handakuten

// U+FF61..U+FF9F, the half-width katakana block, as full-width characters.
constexpr std::array<char32_t, 0xFF9F - 0xFF61 + 1> HalfWidthKatakana{
    0x3002, 0x300C, 0x300D,     0x3001,         0x30FB, 0x30F2, // ｡｢｣､･ｦ
    0x30A1, 0x30A3, 0x30A5,     0x30A7,         0x30A9,         // ｧｨｩｪｫ
    0x30E3, 0x30E5, 0x30E7,     0x30C3,         0x30FC,         // ｬｭｮｯｰ
    0x30A2, 0x30A4, 0x30A6,     0x30A8,         0x30AA,         // ｱｲｳｴｵ
    0x30AB, 0x30AD, 0x30AF,     0x30B1,         0x30B3,         // ｶｷｸｹｺ
    0x30B5, 0x30B7, 0x30B9,     0x30BB,         0x30BD,         // ｻｼｽｾｿ
    0x30BF, 0x30C1, 0x30C4,     0x30C6,         0x30C8,         // ﾀﾁﾂﾃﾄ
    0x30CA, 0x30CB, 0x30CC,     0x30CD,         0x30CE,         // ﾅﾆﾇﾈﾉ
    0x30CF, 0x30D2, 0x30D5,     0x30D8,         0x30DB,         // ﾊﾋﾌﾍﾎ
    0x30DE, 0x30DF, 0x30E0,     0x30E1,         0x30E2,         // ﾏﾐﾑﾒﾓ
    0x30E4, 0x30E6, 0x30E8,                                     // ﾔﾕﾖ
    0x30E9, 0x30EA, 0x30EB,     0x30EC,         0x30ED,         // ﾗﾘﾙﾚﾛ
    0x30EF, 0x30F3, VoicedMark, SemiVoicedMark,                 // ﾜﾝﾞﾟ
};
static_assert(HalfWidthKatakana.back() == SemiVoicedMark, "one entry per code point");

// Full-width signs U+FFE0..U+FFE6 other than the macron, which NFKC turns
// into a space and a combining mark like the spacing sound marks below.
constexpr std::array<char32_t, 7> FullWidthSigns{0x00A2, 0x00A3, 0x00AC, 0, 0x00A6, 0x00A5, 0x20A9};

// Appends the compatibility form of one code point.
void appendCompatible(std::u32string& out, char32_t c) {
    if (c >= 0xFF01 && c <= 0xFF5E) {
        out += static_cast<char32_t>(c - 0xFEE0); // full-width ASCII
    } else if (c == 0x3000) {
        out += U' '; // ideographic space
    } else if (c >= 0xFF61 && c <= 0xFF9F) {
        out += HalfWidthKatakana[c - 0xFF61];
    } else if (c == 0x309B || c == 0x309C) {
        out += U' '; // spacing sound marks
        out += c == 0x309B ? VoicedMark : SemiVoicedMark;
    } else if (c == 0xFFE3) {
        out += U' ';
        out += char32_t{0x0304};
    } else if (c >= 0xFFE0 && c <= 0xFFE6) {
        out += FullWidthSigns[c - 0xFFE0];
    } else {
        out += c;
    }
}

// The kana that take a sound mark, and what they become with it; each
// full-width katakana is its hiragana plus 0x60.
struct Composition {
    char32_t base;
    char32_t voiced;     // 0: none
    char32_t semiVoiced; // 0: none
};

constexpr std::array<Composition, 22> HiraganaCompositions{{
    {0x304B, 0x304C, 0},      {0x304D, 0x304E, 0},      {0x304F, 0x3050, 0},
    {0x3051, 0x3052, 0},      {0x3053, 0x3054, 0},      {0x3055, 0x3056, 0},
    {0x3057, 0x3058, 0},      {0x3059, 0x305A, 0},      {0x305B, 0x305C, 0},
    {0x305D, 0x305E, 0},      {0x305F, 0x3060, 0},      {0x3061, 0x3062, 0},
    {0x3064, 0x3065, 0},      {0x3066, 0x3067, 0},      {0x3068, 0x3069, 0},
    {0x306F, 0x3070, 0x3071}, {0x3072, 0x3073, 0x3074}, {0x3075, 0x3076, 0x3077},
    {0x3078, 0x3079, 0x307A}, {0x307B, 0x307C, 0x307D}, {0x3046, 0x3094, 0}, // う, ゔ
    {0x309D, 0x309E, 0},                                                     // the iteration mark
}};

// Katakana only: ワ, ヰ, ヱ, ヲ.
constexpr std::array<Composition, 4> KatakanaOnly{{
    {0x30EF, 0x30F7, 0},
    {0x30F0, 0x30F8, 0},
    {0x30F1, 0x30F9, 0},
    {0x30F2, 0x30FA, 0},
}};

// The composed kana, or 0 where base and mark do not compose.
char32_t composed(char32_t base, char32_t mark) {
    auto pick = [mark](const Composition& c, char32_t offset) -> char32_t {
        const char32_t result = mark == VoicedMark ? c.voiced : c.semiVoiced;
        return result == 0 ? 0 : result + offset;
    };
    for (const Composition& c : HiraganaCompositions) {
        if (base == c.base) return pick(c, 0);
        if (base == c.base + 0x60) return pick(c, 0x60);
    }
    for (const Composition& c : KatakanaOnly) {
        if (base == c.base) return pick(c, 0);
    }
    return 0;
}

void appendUtf8(std::string& out, char32_t c) {
    if (c < 0x80) {
        out += static_cast<char>(c);
    } else if (c < 0x800) {
        out += static_cast<char>(0xC0 | (c >> 6));
        out += static_cast<char>(0x80 | (c & 0x3F));
    } else if (c < 0x10000) {
        out += static_cast<char>(0xE0 | (c >> 12));
        out += static_cast<char>(0x80 | ((c >> 6) & 0x3F));
        out += static_cast<char>(0x80 | (c & 0x3F));
    } else {
        out += static_cast<char>(0xF0 | (c >> 18));
        out += static_cast<char>(0x80 | ((c >> 12) & 0x3F));
        out += static_cast<char>(0x80 | ((c >> 6) & 0x3F));
        out += static_cast<char>(0x80 | (c & 0x3F));
    }
}

} // namespace

std::u32string decodeUtf8(std::string_view utf8) {
    std::u32string out;
    std::size_t i = 0;
    while (i < utf8.size()) {
        const auto lead = static_cast<unsigned char>(utf8[i]);
        const std::size_t length = lead < 0x80           ? 1
                                   : (lead >> 5) == 0x6  ? 2
                                   : (lead >> 4) == 0xE  ? 3
                                   : (lead >> 3) == 0x1E ? 4
                                                         : 0;
        if (length == 0 || i + length > utf8.size()) {
            out += Replacement;
            ++i;
            continue;
        }
        char32_t c = length == 1 ? lead : lead & (0x7F >> length);
        bool valid = true;
        for (std::size_t k = 1; k < length; ++k) {
            const auto next = static_cast<unsigned char>(utf8[i + k]);
            valid = valid && (next & 0xC0) == 0x80;
            c = (c << 6) | (next & 0x3F);
        }
        // Overlong forms, surrogates and values past U+10FFFF are malformed.
        constexpr std::array<char32_t, 5> smallest{0, 0, 0x80, 0x800, 0x10000};
        valid = valid && c >= smallest[length] && c <= 0x10FFFF && (c < 0xD800 || c > 0xDFFF);
        out += valid ? c : Replacement;
        i += valid ? length : 1;
    }
    return out;
}

std::string nfkc(std::string_view utf8) {
    std::u32string compatible;
    for (const char32_t c : decodeUtf8(utf8))
        appendCompatible(compatible, c);
    std::u32string composedText;
    for (const char32_t c : compatible) {
        if ((c == VoicedMark || c == SemiVoicedMark) && !composedText.empty()) {
            if (const char32_t kana = composed(composedText.back(), c); kana != 0) {
                composedText.back() = kana;
                continue;
            }
        }
        composedText += c;
    }
    std::string out;
    for (const char32_t c : composedText)
        appendUtf8(out, c);
    return out;
}

std::string foldedName(std::string_view utf8) {
    return asciiLower(nfkc(utf8));
}

namespace {

// The last row of the edit table of a against b; a stretch of b may start
// anywhere for free where `anywhere` is set.
std::vector<std::size_t> lastEditRow(std::u32string_view a, std::u32string_view b, bool anywhere) {
    std::vector<std::size_t> row(b.size() + 1);
    for (std::size_t j = 0; j <= b.size(); ++j)
        row[j] = anywhere ? 0 : j;
    for (std::size_t i = 1; i <= a.size(); ++i) {
        std::size_t diagonal = row[0];
        row[0] = i;
        for (std::size_t j = 1; j <= b.size(); ++j) {
            const std::size_t above = row[j];
            row[j] =
                std::min({row[j] + 1, row[j - 1] + 1, diagonal + (a[i - 1] == b[j - 1] ? 0 : 1)});
            diagonal = above;
        }
    }
    return row;
}

} // namespace

std::size_t editDistance(std::u32string_view a, std::u32string_view b) {
    return lastEditRow(a, b, false).back();
}

std::size_t partDistance(std::u32string_view part, std::u32string_view text) {
    return std::ranges::min(lastEditRow(part, text, true));
}

} // namespace lumiran

// Every colour rule that picks channels by their rank, over all thirteen
// orders of three channels: six strict, six with one tie, all equal. Each
// table is written from the rule as stated, so that a tie cannot drift.
#include "color_op_fixture.h"
#include "effects/colour/class_color_table.h"

#include <cmath>
#include <string_view>

namespace lumiran::testing {
namespace {

constexpr int High = 180, Mid = 110, Low = 50;

struct Order {
    const char* name;
    Colour pixel;
};

// Row i is the order ChannelOrder(i); the expected tables below follow it.
constexpr std::array<Order, 13> Orders{{
    {"r > g > b", {High, Mid, Low}},
    {"r > b > g", {High, Low, Mid}},
    {"b > r > g", {Mid, Low, High}},
    {"b > g > r", {Low, Mid, High}},
    {"g > b > r", {Low, High, Mid}},
    {"g > r > b", {Mid, High, Low}},
    {"r = b > g", {High, Low, High}},
    {"r > g = b", {High, Low, Low}},
    {"g > r = b", {Low, High, Low}},
    {"g = b > r", {Low, High, High}},
    {"r = g > b", {High, High, Low}},
    {"b > r = g", {Low, Low, High}},
    {"r = g = b", {Mid, Mid, Mid}},
}};

template <typename T>
using PerOrder = std::array<T, Orders.size()>;

constexpr int clamp255(int v) {
    return std::clamp(v, 0, 255);
}

// Channel letters: "RB" is red and blue, "" none.
bool names(std::string_view channels, std::size_t channel) {
    return channels.find("RGB"[channel]) != std::string_view::npos;
}

// The thirteen pixels side by side, and the colours a call leaves there.
template <typename Class>
struct OrdersFixture : EffectFixture<Class> {
    PerOrder<Colour> runOnOrders(const typename EffectFixture<Class>::Call& call) {
        Surface picture(static_cast<int>(Orders.size()), 1);
        for (std::size_t i = 0; i < Orders.size(); ++i) {
            const Colour& c = Orders[i].pixel;
            picture.at(static_cast<int>(i), 0) = makePixel(c[0], c[1], c[2]);
        }
        const Surface out = this->run(picture, call);
        PerOrder<Colour> result{};
        for (std::size_t i = 0; i < Orders.size(); ++i)
            result[i] = colourOf(out.at(static_cast<int>(i), 0));
        return result;
    }

    Colour runOn(int r, int g, int b, const typename EffectFixture<Class>::Call& call) {
        return colourOf(this->run(Surface(1, 1, makePixel(r, g, b)), call).at(0, 0));
    }

    // Checks every order; expected(i, pixel) gives the colour for order i.
    template <typename Expected>
    void expectOrders(const typename EffectFixture<Class>::Call& call, Expected expected,
                      const std::string& what) {
        const PerOrder<Colour> got = runOnOrders(call);
        for (std::size_t i = 0; i < Orders.size(); ++i) {
            EXPECT_EQ(got[i], expected(i, Orders[i].pixel)) << what << " on " << Orders[i].name;
        }
    }
};

using ColourOpOrders = OrdersFixture<Class_ColorOp>;
using ColourTableOrders = OrdersFixture<Class_ColorTable>;
using C = Class_ColorOp;
using T = Class_ColorTable;

// The program's median of three: b > r > g gives b, the largest.
constexpr PerOrder<int> ProgramMedian{Mid, Mid, High, Mid,  Mid, Mid, High,
                                      Low, Low, High, High, Low, Mid};

// The channels of each rank as the three sort, ties sharing their rank.
struct Ranks {
    const char* largest;
    const char* middle;
    const char* smallest;
};
constexpr PerOrder<Ranks> PlainRanks{{
    {"R", "G", "B"},
    {"R", "B", "G"},
    {"B", "R", "G"},
    {"B", "G", "R"},
    {"G", "B", "R"},
    {"G", "R", "B"},
    {"RB", "RB", "G"},
    {"R", "GB", "GB"},
    {"G", "RB", "RB"},
    {"GB", "GB", "R"},
    {"RG", "RG", "B"},
    {"B", "RG", "RG"},
    {"RGB", "RGB", "RGB"},
}};

// Difference and Emphasize: the middle of r = g above b is blue alone.
constexpr PerOrder<Ranks> RanksBlueMiddleOnRedGreenAbove = [] {
    auto ranks = PlainRanks;
    ranks[10].middle = "B";
    return ranks;
}();

TEST_F(ColourOpOrders, MonotoneMaximumMedianMinimumAndLightness) {
    const std::array<std::pair<int, PerOrder<int>>, 4> kinds{{
        {7, {High, High, High, High, High, High, High, High, High, High, High, High, Mid}},
        {8, ProgramMedian},
        {9, {Low, Low, Low, Low, Low, Low, Low, Low, Low, Low, Low, Low, Mid}},
        {10, {115, 115, 115, 115, 115, 115, 115, 115, 115, 115, 115, 115, Mid}},
    }};
    for (const auto& [kind, grey] : kinds) {
        expectOrders(
            op<&C::Gray_Effect>(kind, rect),
            [&](std::size_t i, const Colour&) {
                return Colour{grey[i], grey[i], grey[i]};
            },
            "kind " + std::to_string(kind));
    }
}

TEST_F(ColourOpOrders, ExchangeSwapsRolesAndOnTiesTheExtremes) {
    // Kinds 5 (largest, smallest), 6 (largest, middle), 7 (middle, smallest).
    const PerOrder<std::array<Colour, 3>> expected{{
        {{{Low, Mid, High}, {Mid, High, Low}, {High, Low, Mid}}},
        {{{Low, High, Mid}, {Mid, Low, High}, {High, Mid, Low}}},
        {{{Mid, High, Low}, {High, Low, Mid}, {Low, Mid, High}}},
        {{{High, Mid, Low}, {Low, High, Mid}, {Mid, Low, High}}},
        {{{High, Low, Mid}, {Low, Mid, High}, {Mid, High, Low}}},
        {{{Mid, Low, High}, {High, Mid, Low}, {Low, High, Mid}}},
        {{{Low, High, Low}, {Low, High, Low}, {Low, High, Low}}},
        {{{Low, High, High}, {Low, High, High}, {Low, High, High}}},
        {{{High, Low, High}, {High, Low, High}, {High, Low, High}}},
        {{{High, Low, Low}, {High, Low, Low}, {High, Low, Low}}},
        {{{Low, Low, High}, {Low, Low, High}, {Low, Low, High}}},
        {{{High, High, Low}, {High, High, Low}, {High, High, Low}}},
        {{{Mid, Mid, Mid}, {Mid, Mid, Mid}, {Mid, Mid, Mid}}},
    }};
    for (int kind = 5; kind <= 7; ++kind) {
        expectOrders(
            op<&C::RGBExchange>(kind, rect),
            [&](std::size_t i, const Colour&) { return expected[i][kind - 5]; },
            "kind " + std::to_string(kind));
    }
}

// The named channels take the lightness; the others |round(c / L * X)|,
// X the old value of channel x.
Colour byLightness(const Colour& p, std::string_view replaced, std::size_t x) {
    const auto [mn, mx] = std::minmax({p[0], p[1], p[2]});
    const int l = static_cast<int>(std::nearbyint((mx + mn) / 2.0));
    const double divisor = l == 0 ? 1 : l;
    Colour result{};
    for (std::size_t c = 0; c < 3; ++c) {
        const double scaled = std::abs(std::nearbyint(p[c] / divisor * p[x]));
        result[c] = names(replaced, c) ? l : clamp255(static_cast<int>(scaled));
    }
    return result;
}

TEST_F(ColourOpOrders, ExchangeByLightnessReplacesTheProgramsChoiceAndKeepsGreys) {
    struct Choice {
        const char* replaced;
        std::size_t x; // 0 red, 1 green, 2 blue
    };
    constexpr std::size_t r = 0, g = 1, b = 2;
    // Kinds 11, 12, 13, the program's choice with its blemishes.
    const PerOrder<std::array<Choice, 3>> choices{{
        {{{"R", r}, {"G", g}, {"B", b}}},
        {{{"R", r}, {"B", b}, {"G", g}}},
        {{{"B", b}, {"R", r}, {"G", g}}},
        {{{"B", b}, {"B", b}, {"G", g}}},
        {{{"G", g}, {"B", b}, {"R", r}}},
        {{{"G", g}, {"R", r}, {"B", b}}},
        {{{"RB", b}, {"G", g}, {"GB", g}}},
        {{{"R", r}, {"GB", b}, {"GB", g}}},
        {{{"G", g}, {"RB", r}, {"RB", r}}},
        {{{"GB", b}, {"R", r}, {"GB", g}}},
        {{{"RG", r}, {"B", b}, {"B", b}}},
        {{{"B", b}, {"RG", r}, {"RG", r}}},
        {}, // all three equal: the pixel stays
    }};
    for (int kind = 11; kind <= 13; ++kind) {
        expectOrders(
            op<&C::RGBExchange>(kind, rect),
            [&](std::size_t i, const Colour& p) {
                const Choice& c = choices[i][static_cast<std::size_t>(kind - 11)];
                return c.replaced == nullptr ? p : byLightness(p, c.replaced, c.x);
            },
            "kind " + std::to_string(kind));
    }
    // Greys stay under every replacing kind, black and white included.
    for (int kind = 8; kind <= 13; ++kind) {
        for (const int v : {0, 1, 128, 255}) {
            EXPECT_EQ(runOn(v, v, v, op<&C::RGBExchange>(kind, rect)), (Colour{v, v, v}))
                << "kind " << kind << " on grey " << v;
        }
    }
}

TEST_F(ColourOpOrders, DifferenceGoesToEveryChannelOfTheRank) {
    // Pair 0 reversed: D = max - min, 130 (0 on a grey).
    for (int use = 6; use <= 8; ++use) {
        expectOrders(
            op<&C::DifferenceOperation>(0, use, rect, true),
            [&](std::size_t i, const Colour& p) {
                const Ranks& ranks = RanksBlueMiddleOnRedGreenAbove[i];
                const char* chosen = use == 6   ? ranks.largest
                                     : use == 7 ? ranks.middle
                                                : ranks.smallest;
                const int d = i == 12 ? 0 : High - Low;
                Colour c{};
                for (std::size_t k = 0; k < 3; ++k)
                    c[k] = clamp255(p[k] + (names(chosen, k) ? d : 0));
                return c;
            },
            "use " + std::to_string(use));
    }
}

TEST_F(ColourOpOrders, GrayAtSaturationStepsTheRolesWithTheProgramsMiddle) {
    // The middle step goes to blue on g > r > b and r = g above b, to nobody
    // on g > b > r; otherwise to the channels of the middle rank.
    PerOrder<Ranks> ranks = PlainRanks;
    ranks[4].middle = "";
    ranks[5].middle = "B";
    ranks[10].middle = "B";
    for (const int degree : {51, -51}) {
        const double ratio = degree / 255.0;
        expectOrders(
            op<&C::GrayatSaturation>(0, degree, rect, 0),
            [&](std::size_t i, const Colour& p) {
                const auto [mn, mx] = std::minmax({p[0], p[1], p[2]});
                const int d1 = static_cast<int>(std::nearbyint((mx - mn) * ratio));
                const int d2 =
                    std::abs(static_cast<int>(std::nearbyint((mx - ProgramMedian[i]) * ratio)));
                Colour c = p;
                for (std::size_t k = 0; k < 3; ++k) {
                    if (degree >= 0) {
                        if (names(ranks[i].largest, k)) c[k] += d1;
                        if (names(ranks[i].smallest, k)) c[k] -= d1;
                        if (names(ranks[i].middle, k)) c[k] -= d2;
                    } else {
                        if (names(ranks[i].middle, k)) c[k] += d2;
                        if (names(ranks[i].smallest, k)) c[k] += std::abs(d1);
                    }
                    c[k] = clamp255(c[k]);
                }
                return c;
            },
            "degree " + std::to_string(degree));
    }
}

// What a pattern leaves: per channel '.' keeps it, 'S' takes the source
// value, 'X' the maximum, 'N' the minimum, 'r', 'g', 'b' that channel's
// old value.
Colour written(const Colour& p, std::string_view pattern, int s) {
    const auto [mn, mx] = std::minmax({p[0], p[1], p[2]});
    Colour c{};
    for (std::size_t k = 0; k < 3; ++k) {
        switch (pattern[k]) {
        case 'S':
            c[k] = s;
            break;
        case 'X':
            c[k] = mx;
            break;
        case 'N':
            c[k] = mn;
            break;
        case 'r':
            c[k] = p[0];
            break;
        case 'g':
            c[k] = p[1];
            break;
        case 'b':
            c[k] = p[2];
            break;
        default:
            c[k] = p[k];
        }
    }
    return c;
}

TEST_F(ColourOpOrders, InvasionWritesEachRoleAsTheProgramDoes) {
    struct Case {
        int source;
        int target;
        PerOrder<const char*> patterns; // a grey is never changed
    };
    const Case cases[] = {
        // From red: largest (nothing on g = b > r), middle, smallest.
        {0,
         2,
         {"S..", "S..", "..S", "..S", ".S.", ".S.", "S.S", "S..", ".S.", "...", "SS.", "..S",
          "..."}},
        {0,
         3,
         {".S.", "..S", ".S.", ".S.", "..S", "...", ".S.", ".SS", "...", "...", "..S", "...",
          "..."}},
        {0,
         4,
         {"..S", ".S.", ".S.", "S..", "S..", "..S", ".S.", ".SS", "S.S", "S..", "..S", "SS.",
          "..."}},
        // From green.
        {1,
         2,
         {"S..", "S..", "..S", "..S", ".S.", ".S.", "S.S", "S..", ".S.", ".SS", "SS.", "..S",
          "..."}},
        {1,
         3,
         {"...", "..S", "S..", "...", "..S", "S..", "...", "S.S", "S.S", "S..", "..S", "...",
          "..."}},
        {1,
         4,
         {"..S", ".S.", ".S.", "S..", "S..", "..S", ".S.", ".SS", "S.S", "S..", "..S", "SS.",
          "..."}},
        // From blue: smallest of b > r = g writes red alone.
        {2,
         2,
         {"S..", "S..", "..S", "..S", ".S.", ".S.", "S.S", "S..", ".S.", ".SS", "SS.", "..S",
          "..."}},
        {2,
         3,
         {".S.", "...", "SS.", ".S.", "...", "S..", ".S.", "...", "...", "...", "...", "SS.",
          "..."}},
        {2,
         4,
         {"..S", ".S.", ".S.", "S..", "S..", "..S", ".S.", ".SS", "S.S", "S..", "..S", "S..",
          "..."}},
        // From the maximum: the named role; on ties all three end at the maximum.
        {3,
         3,
         {".S.", "..S", "S..", ".S.", "..S", "S..", "XXX", "XXX", "XXX", "XXX", "XXX", "XXX",
          "..."}},
        {3,
         4,
         {"..S", ".S.", ".S.", "S..", "S..", "..S", "XXX", "XXX", "XXX", "XXX", "XXX", "XXX",
          "..."}},
        // From the program's median.
        {4,
         3,
         {"S..", "S..", "..S", "..S", ".S.", ".S.", "NNN", "NNN", "NNN", "NNN", "NNN", "NNN",
          "..."}},
        {4,
         4,
         {"..S", ".S.", ".S.", "S..", "S..", "..S", "ggg", "...", "g..", "...", "rrr", "bbb",
          "..."}},
        // From the minimum: the roles by order; on ties all at the minimum,
        // but at the larger value for target 3 with r = g.
        {5,
         3,
         {"S..", "..S", "S..", ".S.", "..S", ".S.", "NNN", "NNN", "NNN", "NNN", "XXX", "XXX",
          "..."}},
        {5,
         4,
         {".S.", "S..", "..S", "..S", ".S.", ".S.", "NNN", "NNN", "NNN", "NNN", "NNN", "NNN",
          "..."}},
        // From the lightness: largest, middle, smallest, with two moved channels.
        {6,
         3,
         {"S..", "S..", ".bS", "b.S", ".S.", ".S.", "SrS", "S..", ".S.", ".SS", "SS.", "..S",
          "..."}},
        {6,
         4,
         {".S.", "..S", "S..", "..S", "..S", "S..", ".S.", ".SS", "S.S", "S..", "..S", "SS.",
          "..."}},
        {6,
         5,
         {"..S", ".S.", ".S.", "S..", "S..", "..S", ".S.", ".SS", "S.S", "S..", "..S", "SS.",
          "..."}},
    };
    for (const Case& c : cases) {
        expectOrders(
            op<&C::Invasion_Effect>(c.source, c.target, rect),
            [&](std::size_t i, const Colour& p) {
                const auto [mn, mx] = std::minmax({p[0], p[1], p[2]});
                const std::array<int, 7> s{p[0],
                                           p[1],
                                           p[2],
                                           mx,
                                           ProgramMedian[i],
                                           mn,
                                           static_cast<int>(std::nearbyint((mx + mn) / 2.0))};
                return written(p, c.patterns[i], s[static_cast<std::size_t>(c.source)]);
            },
            "source " + std::to_string(c.source) + " target " + std::to_string(c.target));
    }
}

TEST_F(ColourTableOrders, EmphasizeRaisesTheRankAndLowersTheRest) {
    constexpr int k = 20;
    for (int kind = 6; kind <= 8; ++kind) {
        expectOrders(
            op<&T::ColorEmphasize>(k, kind, rect),
            [&](std::size_t i, const Colour& p) {
                const Ranks& ranks = RanksBlueMiddleOnRedGreenAbove[i];
                const char* up = kind == 6   ? ranks.largest
                                 : kind == 7 ? ranks.middle
                                             : ranks.smallest;
                Colour c{};
                for (std::size_t ch = 0; ch < 3; ++ch)
                    c[ch] = p[ch] + (names(up, ch) ? k : -k);
                return c;
            },
            "kind " + std::to_string(kind));
    }
}

TEST_F(ColourTableOrders, AnotherColorChangeKeepsEveryChannelOfTheRank) {
    constexpr int value = 128;
    for (int kind = 6; kind <= 8; ++kind) {
        expectOrders(
            op<&T::ColorViewChange>(kind, value, rect),
            [&](std::size_t i, const Colour& p) {
                const Ranks& ranks = PlainRanks[i];
                const char* kept = kind == 6   ? ranks.largest
                                   : kind == 7 ? ranks.middle
                                               : ranks.smallest;
                Colour c{};
                for (std::size_t ch = 0; ch < 3; ++ch)
                    c[ch] = names(kept, ch) ? p[ch] : value;
                return c;
            },
            "kind " + std::to_string(kind));
    }
}

TEST_F(ColourTableOrders, BrightnessSelectorScalesByTheLightnessOfMaximumAndMinimum) {
    // Negative at 255 on row 7: T = 255 - L. With L = 115, T = 140, so
    // c / 115 * 140; a grey of 110 has T = 145 and becomes 145.
    expectOrders(
        op<&T::Negative>(7, 255, rect),
        [](std::size_t i, const Colour& p) {
            if (i == 12) return Colour{145, 145, 145};
            Colour c{};
            for (std::size_t ch = 0; ch < 3; ++ch)
                c[ch] = p[ch] == High ? 219 : p[ch] == Mid ? 134 : 61;
            return c;
        },
        "row 7");
}

} // namespace
} // namespace lumiran::testing

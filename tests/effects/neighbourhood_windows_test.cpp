// The window filters that slide sums along their rows, against the window
// added up pixel by pixel, and the calls that make TransBits themselves
// when the source is lent to them.
#include "effects/neighbourhood/class_edge.h"
#include "effects/neighbourhood/class_neighborhood_op.h"
#include "neighbourhood_fixture.h"

#include <cmath>
#include <cstdlib>
#include <gtest/gtest.h>

namespace lumiran::testing {
namespace {

using Op = Class_NeighborhoodOp;

// The mean grey of DarkLighten's window and the fold about it.
Pixel foldedByWindow(const Surface& picture, int x, int y, int reach) {
    int sum = 0;
    for (int dy = -reach; dy <= reach; ++dy)
        for (int dx = -reach; dx <= reach; ++dx) {
            const Pixel p = picture.at(x + dx, y + dy);
            sum += redOf(p) + greenOf(p) + blueOf(p);
        }
    const int a = sum / (3 * (2 * reach + 1) * (2 * reach + 1));
    const int v = a >= 128 ? 255 - a : 0;
    const int level = std::min(std::abs(a - (v - a)), 255);
    auto channel = [level](int c) { return 255 - std::abs(c - level); };
    const Pixel p = picture.at(x, y);
    return withColour(p, channel(redOf(p)), channel(greenOf(p)), channel(blueOf(p)));
}

// Glass_Painting's contrast at the ring corners about the window's mean.
Pixel contrastByWindow(const Surface& picture, int x, int y, int reach, int kind) {
    int sums[3] = {};
    for (int dy = -reach; dy <= reach; ++dy)
        for (int dx = -reach; dx <= reach; ++dx) {
            const Pixel p = picture.at(x + dx, y + dy);
            sums[0] += redOf(p);
            sums[1] += greenOf(p);
            sums[2] += blueOf(p);
        }
    const int count = (2 * reach + 1) * (2 * reach + 1);
    int result[3] = {};
    for (int c = 0; c < 3; ++c) {
        const int mean = sums[c] / count;
        int squares = 0;
        for (int ring = 1; ring <= reach; ++ring)
            for (const int dy : {-ring, ring})
                for (const int dx : {-ring, ring}) {
                    const Pixel p = picture.at(x + dx, y + dy);
                    const int v = c == 0 ? redOf(p) : c == 1 ? greenOf(p) : blueOf(p);
                    squares += (mean - v) * (mean - v);
                }
        const double root = std::nearbyint(std::sqrt(squares) / (kind == 0 ? 1.0 : 2.0));
        result[c] = std::min(static_cast<int>(root), 255);
    }
    return withColour(picture.at(x, y), result[0], result[1], result[2]);
}

struct WindowCase {
    const char* name;
    int reach;
    std::function<void(Op&, const ProcessRect&)> call;
    std::function<Pixel(const Surface&, int, int)> reference;
};

void PrintTo(const WindowCase& c, std::ostream* os) {
    *os << c.name;
}

struct SlidingWindows : NeighbourhoodFixture<Op>, ::testing::WithParamInterface<WindowCase> {};

TEST_P(SlidingWindows, MatchTheWindowAddedUp) {
    const WindowCase& c = GetParam();
    // A rectangle off the picture's edges, so that the columns and rows
    // beside it must stay and the windows start inside it.
    const Surface picture = randomPicture(23, 17, 7, 11);
    const ProcessRect rect{2, 1, 21, 16};
    const Surface result = runTrans(picture, c.call, rect);
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x) {
            const bool inner = x >= rect.left + c.reach && x < rect.right - c.reach &&
                               y >= rect.top + c.reach && y < rect.bottom - c.reach;
            const Pixel expected = inner ? c.reference(picture, x, y) : picture.at(x, y);
            ASSERT_EQ(result.at(x, y), expected) << x << "," << y;
        }
    }
}

std::vector<WindowCase> windowCases() {
    std::vector<WindowCase> cases;
    static const char* const folds[] = {"Fold3x3", "Fold5x5", "Fold7x7"};
    for (int reach = 1; reach <= 3; ++reach) {
        cases.push_back(
            {folds[reach - 1], reach,
             [reach](Op& e, const ProcessRect& r) {
                 e.DarkLighten(static_cast<std::uint8_t>(reach), 0, r.left, r.top, r.right,
                               r.bottom, 255, 0);
             },
             [reach](const Surface& p, int x, int y) { return foldedByWindow(p, x, y, reach); }});
    }
    static const char* const paints[] = {"Paint3x3", "Paint5x5Half", "Paint7x7"};
    for (int window = 0; window <= 2; ++window) {
        const int kind = window % 2;
        cases.push_back({paints[window], window + 1,
                         [window, kind](Op& e, const ProcessRect& r) {
                             e.Glass_Painting(static_cast<std::uint8_t>(window),
                                              static_cast<std::uint8_t>(kind), r.left, r.top,
                                              r.right, r.bottom);
                         },
                         [window, kind](const Surface& p, int x, int y) {
                             return contrastByWindow(p, x, y, window + 1, kind);
                         }});
    }
    return cases;
}

INSTANTIATE_TEST_SUITE_P(Neighbourhood, SlidingWindows, ::testing::ValuesIn(windowCases()),
                         [](const auto& p) { return std::string(p.param.name); });

// Lent its source, a call finds TransBits unfetched and must give what it
// gives with both arrays fetched, the pixels outside its loop included.
template <typename Class>
struct LentSource : NeighbourhoodFixture<Class> {
    using Call = typename NeighbourhoodFixture<Class>::Call;
    Surface runLent(const Surface& picture, const Call& call, const ProcessRect& rect) {
        Class effect(this->context);
        effect.ImageGetDiBits(picture);
        call(effect, rect);
        Surface result;
        effect.ImageSetDiBitsTrans(result);
        return result;
    }
};

using LentOp = LentSource<Op>;
using LentEdge = LentSource<Class_Edge>;

TEST_F(LentOp, TransBitsMadeByTheCallMatchTheFetchedOnes) {
    const Surface picture = randomPicture(19, 15, 5, 3);
    const ProcessRect rect{1, 2, 17, 14};
    const std::vector<std::pair<const char*, Call>> calls{
        {"Fugu",
         [](Op& e, const ProcessRect& r) {
             e.DarkLighten(3, 1, r.left, r.top, r.right, r.bottom, 255, 0);
         }},
        {"Bleeding",
         [](Op& e, const ProcessRect& r) {
             e.BleedingFilter(42, r.left, r.top, r.right, r.bottom);
         }},
        {"Impression",
         [](Op& e, const ProcessRect& r) {
             e.Glass_Impression(1, 2, 0, r.left, r.top, r.right, r.bottom);
         }},
        {"Painting",
         [](Op& e, const ProcessRect& r) {
             e.Glass_Painting(1, 0, r.left, r.top, r.right, r.bottom);
         }},
        {"SineEmboss",
         [](Op& e, const ProcessRect& r) {
             e.Embossing(3, 0, 2, r.left, r.top, r.right, r.bottom, 2, 128, 128, 128, 1);
         }},
        // An unknown kind returns at once: TransBits is still the source.
        {"UnknownKind",
         [](Op& e, const ProcessRect& r) {
             e.Embossing(3, 0, 9, r.left, r.top, r.right, r.bottom, 2, 128, 128, 128, 1);
         }},
    };
    for (const auto& [name, call] : calls)
        EXPECT_TRUE(runLent(picture, call, rect) == runTrans(picture, call, rect)) << name;
}

TEST_F(LentEdge, TransBitsMadeByTheCallMatchTheFetchedOnes) {
    const Surface picture = randomPicture(19, 15, 5, 4);
    const ProcessRect rect{1, 2, 17, 14};
    const std::vector<std::pair<const char*, Call>> calls{
        {"Roberts",
         [](Class_Edge& e, const ProcessRect& r) {
             e.Edge_Robarts(0, 3, r.left, r.top, r.right, r.bottom);
         }},
        {"Matrix4",
         [](Class_Edge& e, const ProcessRect& r) {
             e.Edge_Matrix4(2, 2, -2, -2, r.left, r.top, r.right, r.bottom);
         }},
    };
    for (const auto& [name, call] : calls)
        EXPECT_TRUE(runLent(picture, call, rect) == runTrans(picture, call, rect)) << name;
}

} // namespace
} // namespace lumiran::testing

#pragma once

#include "effects/colour/class_color_op.h"
#include "effects/effect_fixture.h"
#include "test_support.h"

#include <array>
#include <functional>
#include <gtest/gtest.h>
#include <tuple>
#include <vector>

namespace lumiran::testing {

// Stands for the four sides of the rectangle among an operation's arguments.
struct Sides {};
inline constexpr Sides rect{};

template <typename T>
std::tuple<T> argumentsOf(T value, const ProcessRect&) {
    return {value};
}
inline auto argumentsOf(Sides, const ProcessRect& r) {
    return std::tuple{r.left, r.top, r.right, r.bottom};
}

// A call of an effect operation with these arguments, rect standing for the
// rectangle the run is given.
template <auto Operation, typename... Args>
auto op(Args... args) {
    return [=](auto& effect, const ProcessRect& r) {
        std::apply([&](auto... all) { (effect.*Operation)(all...); },
                   std::tuple_cat(argumentsOf(args, r)...));
    };
}

// Progress that records the percentages shown and, while asked to, cancels
// the run at the first of them.
struct CancellingProgress : ProgressSink {
    CancelFlag& cancel;
    bool cancelFirst = true;
    std::vector<int> shown;
    explicit CancellingProgress(CancelFlag& flag) : cancel(flag) {}
    void showPercent(int percent) override {
        shown.push_back(percent);
        if (cancelFirst) cancel = 1;
    }
};

struct ColorOpFixture : EffectFixture<Class_ColorOp> {

    // The stored colour of a one-pixel picture after the call.
    Colour runOn(int r, int g, int b, const Call& call) {
        return colourOf(run(Surface(1, 1, makePixel(r, g, b)), call).at(0, 0));
    }

    [[nodiscard]] int failureNumber() const {
        return context.failures.empty() ? 0 : context.failures.front().number();
    }
};

} // namespace lumiran::testing

#pragma once

#include "catalogue/effect_dispatch.h"
#include "catalogue/effect_table.h"
#include "imagefiles/bmp_reader.h"
#include "imagefiles/file_io.h"

#include <cctype>
#include <cstdint>
#include <cstdio>
#include <gtest/gtest.h>
#include <optional>
#include <ostream>
#include <string>

namespace lumiran::testing {

// FNV-1a over the colour bytes of a picture, as 16 hex digits.
inline std::string pictureHash(const Surface& picture) {
    std::uint64_t h = 1469598103934665603ull;
    auto mix = [&h](std::uint8_t byte) {
        h ^= byte;
        h *= 1099511628211ull;
    };
    mix(static_cast<std::uint8_t>(picture.width()));
    mix(static_cast<std::uint8_t>(picture.height()));
    for (const Pixel p : picture.pixels()) {
        mix(static_cast<std::uint8_t>(blueOf(p)));
        mix(static_cast<std::uint8_t>(greenOf(p)));
        mix(static_cast<std::uint8_t>(redOf(p)));
    }
    char text[17];
    std::snprintf(text, sizeof text, "%016llx", static_cast<unsigned long long>(h));
    return text;
}

inline const Surface& bundledSample() {
    static const Surface sample = readBmp(readWholeFile(LUMIRAN_SAMPLE_PATH, 1 << 24));
    return sample;
}

// The kept image of the merges' golden runs: narrower and taller than the
// sample, so only part of the sample is shared; rings of colour over a
// diagonal ramp.
inline const Surface& goldenKeptImage() {
    static const Surface kept = [] {
        Surface s(200, 280);
        for (int y = 0; y < s.height(); ++y) {
            for (int x = 0; x < s.width(); ++x) {
                const int dx = x - 90, dy = y - 120;
                const int ring = (dx * dx + dy * dy) / 64 % 256;
                s.at(x, y) = makePixel(ring, (x + y) % 256, (x * 3 + 255 - ring) % 256);
            }
        }
        return s;
    }();
    return kept;
}

// The picture an effect leaves on the bundled sample when OK is pressed on
// its freshly configured dialog, in a fresh program state; empty when the
// effect is unknown or cannot run.
inline Surface runWithDefaults(const std::string& name, const ControlValues* values = nullptr) {
    const EffectEntry* entry = findEffect(name);
    if (entry == nullptr) return {};
    const ControlValues chosen = values != nullptr ? *values : defaultControlValues(*entry);
    const EffectPlan plan = planEffect(entry->dialog, entry->code, chosen);
    if (plan.status != EffectPlan::Status::Ready) return {};
    ProgramState state;
    if (needsKeptImage(*entry)) state.keep.ComposeImage = goldenKeptImage();
    Document document;
    document.picture = bundledSample();
    runEffect(state, document, plan.body);
    return document.picture;
}

// One effect's picture on the bundled sample at its defaults: a guard
// against accidental change, not a test of the rules. Each family lists its
// effects with INSTANTIATE_TEST_SUITE_P(Family, GoldenDefaults, ...).
struct Golden {
    const char* effect; // key or caption; keys where captions repeat across families
    const char* hash;
    std::optional<int> colourRow{}; // a ColorList row other than the default
    std::optional<int> typeRow{};   // an ETypeList row other than the default
};

inline void PrintTo(const Golden& golden, std::ostream* out) {
    *out << golden.effect;
    if (golden.typeRow) *out << " type " << *golden.typeRow;
    if (golden.colourRow) *out << " row " << *golden.colourRow;
}

class GoldenDefaults : public ::testing::TestWithParam<Golden> {};

// The letters and digits of the effect's name, its row, and its place in
// the list, which keeps names apart where keys are Japanese or repeat.
inline std::string goldenTestName(const ::testing::TestParamInfo<Golden>& info) {
    std::string name;
    for (const char c : std::string(info.param.effect)) {
        if (std::isalnum(static_cast<unsigned char>(c))) name += c;
    }
    if (info.param.typeRow) name += "Type" + std::to_string(*info.param.typeRow);
    if (info.param.colourRow) name += "Row" + std::to_string(*info.param.colourRow);
    return name + "_" + std::to_string(info.index);
}

} // namespace lumiran::testing

#pragma once

#include "catalogue/effect_dispatch.h"
#include "catalogue/effect_table.h"
#include "imagefiles/bmp_reader.h"
#include "imagefiles/file_io.h"

#include <cstdint>
#include <cstdio>
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
    Document document;
    document.picture = bundledSample();
    runEffect(state, document, plan.body);
    return document.picture;
}

} // namespace lumiran::testing

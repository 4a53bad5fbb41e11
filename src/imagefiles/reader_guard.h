#pragma once

#include "engine/effect_error.h"
#include "engine/surface.h"
#include "imagefiles/image_load_error.h"

#include <new>
#include <string>

namespace lumiran {

// Runs a reader's body under its handler: a run-time error becomes a load
// failure carrying the runtime's number and description.
template <typename Body>
[[nodiscard]] Surface guardedRead(const char* format, Body&& body) {
    try {
        return body();
    } catch (const EffectError& e) {
        throw ImageLoadError(e.number(), e.description(),
                             std::string(format) + " reader: run-time error " +
                                 std::to_string(e.number()) + " (" + e.description() + ")");
    } catch (const std::bad_alloc&) {
        const EffectError e = EffectError::outOfMemory();
        throw ImageLoadError(e.number(), e.description(),
                             std::string(format) + " reader: out of memory");
    }
}

} // namespace lumiran

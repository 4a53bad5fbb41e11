#pragma once

#include <iosfwd>

namespace lumiran::cli {

// Every effect of the catalogue with its dialog, controls and whether it
// can run yet: readable blocks, or a JSON array for other tools.
void printEffectList(std::ostream& out, bool json);

} // namespace lumiran::cli

#pragma once

#include "cli/cli_args.h"

#include <iosfwd>

namespace lumiran::cli {

// The effects of the catalogue that pass the options' filters, with their
// dialog, controls and whether they can run: readable blocks, one line
// each, or a JSON array for other tools. An unknown family is a UsageError.
void printEffectList(std::ostream& out, const ListOptions& options);

} // namespace lumiran::cli

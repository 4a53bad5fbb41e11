#include "catalogue/english_texts.h"

#include <algorithm>
#include <array>
#include <utility>

namespace lumiran {
namespace {

#include "catalogue/english_texts.inc"

// Sorted by the Japanese bytes: the lookup is a binary search and a text has
// one translation.
static_assert(std::ranges::adjacent_find(englishTexts, std::ranges::greater_equal{},
                                         &TextPair::japanese) == englishTexts.end());

} // namespace

std::string_view englishFor(std::string_view japanese) {
    const auto it = std::ranges::lower_bound(englishTexts, japanese, {}, &TextPair::japanese);
    return it != englishTexts.end() && it->japanese == japanese ? it->english : std::string_view{};
}

std::span<const TextPair> allEnglishTexts() {
    return englishTexts;
}

} // namespace lumiran

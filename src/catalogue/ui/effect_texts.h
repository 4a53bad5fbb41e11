#pragma once

#include "catalogue/effect_table.h"
#include "shell/interface_language.h"

#include <QString>

namespace lumiran {

// An effect's row in the effect menus: in Japanese the key's text of the
// string table (the English literal where the key is one), in English the
// catalogue's English caption with its accelerator.
[[nodiscard]] QString effectMenuText(const EffectEntry& entry, InterfaceLanguage language);

// The title of an effect's dialog: the key or the entry's own title in
// Japanese, the catalogue's English caption without its accelerator in
// English.
[[nodiscard]] QString effectTitleText(const EffectEntry& entry, InterfaceLanguage language);

} // namespace lumiran

#pragma once

#include "engine/effect_flags.h"
#include "engine/random_generator.h"
#include "engine/run_context.h"
#include "engine/surface.h"
#include "shell/interface_language.h"
#include "shell/undo_stack.h"

#include <cstdint>

namespace lumiran {

// The pictures that outlive one operation; one set for the whole program.
struct KeepStore {
    Surface keptPicture0;    // Picture1(0): the source of a run
    Surface keptPicture1;    // Picture1(1): the result of a run
    Surface ComposeImage;    // the kept image of composition
    Surface FinalLoadImage;  // the picture as last loaded
    Surface SelectAreaImage; // a lifted area during a move
};

// The one program-state object: everything long-lived that the original
// kept global. Front ends own exactly one and pass it down.
struct ProgramState {
    EffectFlags flags;
    std::uint8_t ProgressFlag = 1;
    CancelFlag cancelFlag{0};
    std::uint8_t ProcessingFlag = 0;
    // 1 while a configured dialog may run live previews.
    std::uint8_t PreviewReady = 0;
    // 0 none; above 0 a form waits for a colour picked from a picture: 2
    // takes the colour under the pointer ("実行中"), 3 holds it ("停止中").
    std::uint8_t ColorPickMode = 0;
    RandomGenerator random;
    UndoStack undo{5};
    KeepStore keep;
    // The language of this session's texts, from the options or LUMIRAN_LANG;
    // the editor's text lookup follows the translator made from it.
    InterfaceLanguage language = InterfaceLanguage::Japanese;
};

} // namespace lumiran

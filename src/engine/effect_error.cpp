#include "engine/effect_error.h"

namespace lumiran {

// The descriptions are those of the Japanese runtime the program was
// written against; they are not part of the numbered string table.
EffectError EffectError::overflow() {
    return {OverflowNumber, "オーバーフローしました。"};
}
EffectError EffectError::outOfMemory() {
    return {OutOfMemoryNumber, "メモリが不足しています。"};
}
EffectError EffectError::subscriptOutOfRange() {
    return {SubscriptNumber, "インデックスが有効範囲にありません。"};
}
EffectError EffectError::divisionByZero() {
    return {DivisionByZeroNumber, "0 で除算しました。"};
}

} // namespace lumiran

#include "catalogue/family_registration.h"
namespace lumiran {
void registerPatternEffects(EffectDispatch&) {}
} // namespace lumiran

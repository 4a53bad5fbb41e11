// The cases of the dialogs' ...Processing routines served by Class_ColorTable.
#include "catalogue/effect_dispatch.h"
#include "catalogue/family_registration.h"

namespace lumiran {

void registerColorTableEffects(EffectDispatch&) {}

} // namespace lumiran

#include "catalogue/effect_dispatch.h"

#include "catalogue/effect_table.h"
#include "catalogue/family_registration.h"

#include <algorithm>

namespace lumiran {

void EffectDispatch::add(DialogKind dialog, int code, EffectPlanner planner) {
    planners_[{dialog, code}] = std::move(planner);
}

bool EffectDispatch::contains(DialogKind dialog, int code) const {
    return planners_.contains({dialog, code});
}

EffectPlan EffectDispatch::plan(DialogKind dialog, int code, const ControlValues& values) const {
    const auto it = planners_.find({dialog, code});
    if (it != planners_.end()) return it->second(values);
    const auto catalogue = effectCatalogue();
    const auto entry = std::ranges::find_if(
        catalogue, [&](const EffectEntry& e) { return e.dialog == dialog && e.code == code; });
    if (entry == catalogue.end()) return {};
    return EffectPlan::notAvailable(std::string(entry->call));
}

const EffectDispatch& effectDispatch() {
    static const EffectDispatch dispatch = [] {
        EffectDispatch d;
        registerColorOpEffects(d);
        registerColorTableEffects(d);
        registerDitheringEffects(d);
        registerBinarizationEffects(d);
        registerSoftenEffects(d);
        registerNeighborhoodEffects(d);
        registerEdgeEffects(d);
        registerFalseColorEffects(d);
        registerGradationEffects(d);
        registerHideEffectEffects(d);
        registerDLAEffects(d);
        registerNoiseFilterEffects(d);
        registerMosaicEffects(d);
        registerNetMosaicEffects(d);
        registerPatternEffects(d);
        registerGeometryEffects(d);
        registerTransformEffects(d);
        register3DMappingEffects(d);
        registerCompositionEffects(d);
        return d;
    }();
    return dispatch;
}

EffectPlan planEffect(DialogKind dialog, int code, const ControlValues& values) {
    return effectDispatch().plan(dialog, code, values);
}

} // namespace lumiran

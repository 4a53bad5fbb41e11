#pragma once

namespace lumiran {

class EffectDispatch;

// One call per effect family adds its cases to the dispatch. Explicit calls
// rather than static self-registration, which a linker drops from static
// libraries without a word.
void registerColorOpEffects(EffectDispatch& dispatch);
void registerColorTableEffects(EffectDispatch& dispatch);
void registerDitheringEffects(EffectDispatch& dispatch);
void registerBinarizationEffects(EffectDispatch& dispatch);
void registerSoftenEffects(EffectDispatch& dispatch);
void registerNeighborhoodEffects(EffectDispatch& dispatch);
void registerEdgeEffects(EffectDispatch& dispatch);
void registerFalseColorEffects(EffectDispatch& dispatch);
void registerGradationEffects(EffectDispatch& dispatch);
void registerHideEffectEffects(EffectDispatch& dispatch);
void registerDLAEffects(EffectDispatch& dispatch);
void registerMosaicEffects(EffectDispatch& dispatch);
void registerNetMosaicEffects(EffectDispatch& dispatch);
void registerPatternEffects(EffectDispatch& dispatch);
void registerGeometryEffects(EffectDispatch& dispatch);
void registerTransformEffects(EffectDispatch& dispatch);
void register3DMappingEffects(EffectDispatch& dispatch);
void registerCompositionEffects(EffectDispatch& dispatch);

} // namespace lumiran

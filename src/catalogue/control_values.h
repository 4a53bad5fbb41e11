#pragma once

#include "engine/pixel.h"

#include <array>

namespace lumiran {

// The raw values of a dialog's controls, as OK hands them on.
struct ControlValues {
    std::array<double, 8> sliders{}; // S1..S8; frm_Mani keeps them as doubles
    int eType = 0;                   // ETypeList row
    int color = 0;                   // ColorList (MonoList) row
    int distance = 0;                // DistanceCombo row
    int check = 0;                   // Check1: 0 or 1
    Rgb8 processColor{};             // ProcessColor swatch
};

} // namespace lumiran

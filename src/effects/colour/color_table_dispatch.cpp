// The cases of the dialogs' ...Processing routines served by Class_ColorTable.
#include "catalogue/effect_dispatch.h"
#include "catalogue/family_registration.h"
#include "effects/colour/class_color_table.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace lumiran {
namespace {

using Table = Class_ColorTable;

// A slider or list value as the 16-bit field of the form holds it. The
// sliders are whole numbers within their range; the limit only keeps a stray
// value from becoming undefined.
std::int16_t whole(double value) {
    if (std::isnan(value)) return 0;
    return roundInRange<std::int16_t>(std::clamp(value, -32768.0, 32767.0));
}
std::int16_t whole(int value) {
    return static_cast<std::int16_t>(std::clamp(value, -32768, 32767));
}

// Slider n as frm_Negative, frm_Level and frm_ColorScale hand it on.
std::int16_t slider16(const ControlValues& v, int number) {
    return whole(v.sliders[static_cast<std::size_t>(number - 1)]);
}
// Slider n as frm_Mani hands it on.
double sliderDouble(const ControlValues& v, int number) {
    return v.sliders[static_cast<std::size_t>(number - 1)];
}

// "Shade Range Adjust": the type row picks the value a range takes.
std::int16_t shadeRangeValue(int typeRow) {
    constexpr std::array<std::int16_t, 3> values{255, 0, 128}; // 明るくする, 暗くする, 中間値
    return typeRow >= 0 && typeRow < static_cast<int>(values.size())
               ? values[static_cast<std::size_t>(typeRow)]
               : std::int16_t{0};
}

template <typename Call>
EffectPlan inPlace(Call call) {
    return EffectPlan::ready(runInPlace<Table>(call));
}

} // namespace

void registerColorTableEffects(EffectDispatch& d) {
    // frm_Negative
    d.add(DialogKind::Negative, 0, [](const ControlValues& v) {
        return inPlace([c = whole(v.color), s1 = slider16(v, 1)](Table& e, ProcessRect r) {
            e.Negative(c, s1, r.left, r.top, r.right, r.bottom);
        });
    });
    d.add(DialogKind::Negative, 1, [](const ControlValues& v) {
        return inPlace([c = whole(v.color), s1 = slider16(v, 1)](Table& e, ProcessRect r) {
            e.ColorTableOperation(c, r.left, r.top, r.right, r.bottom, s1);
        });
    });
    d.add(DialogKind::Negative, 16, [](const ControlValues& v) {
        return inPlace([c = whole(v.color), s1 = slider16(v, 1)](Table& e, ProcessRect r) {
            e.RandomTable(c, r.left, r.top, r.right, r.bottom, s1);
        });
    });
    d.add(DialogKind::Negative, 11, [](const ControlValues& v) {
        return inPlace([c = whole(v.color), s1 = slider16(v, 1)](Table& e, ProcessRect r) {
            e.Sorarization(s1, c, r.left, r.top, r.right, r.bottom);
        });
    });
    d.add(DialogKind::Negative, 19, [](const ControlValues& v) {
        return inPlace([c = whole(v.color), s1 = slider16(v, 1)](Table& e, ProcessRect r) {
            e.MedianLevelEmphasize(c, s1, r.left, r.top, r.right, r.bottom);
        });
    });
    d.add(DialogKind::Negative, 15, [](const ControlValues& v) {
        return inPlace([c = whole(v.color), s1 = slider16(v, 1)](Table& e, ProcessRect r) {
            e.ColorViewChange(c, s1, r.left, r.top, r.right, r.bottom);
        });
    });
    d.add(DialogKind::Negative, 10, [](const ControlValues& v) {
        const auto width = whole(250 - slider16(v, 1));
        return inPlace([c = whole(v.color), width](Table& e, ProcessRect r) {
            e.Histgram_Expansion(width, c, r.left, r.top, r.right, r.bottom);
        });
    });
    d.add(DialogKind::Negative, 12, [](const ControlValues& v) {
        return inPlace([c = whole(v.color), s1 = slider16(v, 1)](Table& e, ProcessRect r) {
            e.ColorEmphasize(s1, c, r.left, r.top, r.right, r.bottom);
        });
    });

    // frm_Level: S2 comes before S1, high before low.
    d.add(DialogKind::Level, 0, [](const ControlValues& v) {
        return inPlace([c = whole(v.color), s2 = slider16(v, 2), s1 = slider16(v, 1),
                        value = shadeRangeValue(v.eType)](Table& e, ProcessRect r) {
            e.ShadeRangeAdjust(c, s2, s1, r.left, r.top, r.right, r.bottom, value);
        });
    });
    d.add(DialogKind::Level, 1, [](const ControlValues& v) {
        return inPlace([s2 = slider16(v, 2), s1 = slider16(v, 1),
                        type = whole(v.eType)](Table& e, ProcessRect r) {
            e.ColorLength(s2, s1, type, r.left, r.top, r.right, r.bottom);
        });
    });
    d.add(DialogKind::Level, 3, [](const ControlValues& v) {
        return inPlace([type = whole(v.eType), s1 = slider16(v, 1),
                        s2 = slider16(v, 2)](Table& e, ProcessRect r) {
            e.TransformationSlarize(type, s1, s2, r.left, r.top, r.right, r.bottom);
        });
    });
    d.add(DialogKind::Level, 2, [](const ControlValues& v) {
        return inPlace([s2 = slider16(v, 2), s1 = slider16(v, 1)](Table& e, ProcessRect r) {
            e.LevelSlice(s2, s1, r.left, r.top, r.right, r.bottom);
        });
    });

    // frm_Sepia
    d.add(DialogKind::Sepia, 10, [](const ControlValues& v) {
        return inPlace([s1 = slider16(v, 1)](Table& e, ProcessRect r) {
            e.GanmaRevision(255, s1, r.left, r.top, r.right, r.bottom);
        });
    });

    // frm_Mani: the sliders reach the effect as doubles.
    d.add(DialogKind::Mani, 19, [](const ControlValues& v) {
        return inPlace([v](Table& e, ProcessRect r) {
            e.Uni(r.left, r.top, r.right, r.bottom, sliderDouble(v, 1), sliderDouble(v, 2),
                  sliderDouble(v, 3), sliderDouble(v, 4), sliderDouble(v, 5));
        });
    });
    d.add(DialogKind::Mani, 47, [](const ControlValues& v) {
        // The type list is shown, but the call always passes selector 0.
        return inPlace([v](Table& e, ProcessRect r) {
            e.Phantom(r.left, r.top, r.right, r.bottom, 0, sliderDouble(v, 1), sliderDouble(v, 2),
                      sliderDouble(v, 3), sliderDouble(v, 4), sliderDouble(v, 5));
        });
    });
    d.add(DialogKind::Mani, 16, [](const ControlValues& v) {
        // Likewise the type: always 0.
        return inPlace([v](Table& e, ProcessRect r) {
            e.Kani(sliderDouble(v, 1), sliderDouble(v, 2), sliderDouble(v, 3), sliderDouble(v, 4),
                   sliderDouble(v, 5), r.left, r.top, r.right, r.bottom, 0);
        });
    });

    // frm_Monotone: the row of the colour list plus 1 is the mode.
    d.add(DialogKind::Monotone, 18, [](const ControlValues& v) {
        return inPlace([mode = whole(v.color + 1)](Table& e, ProcessRect r) {
            e.Histgram_Equation(mode, r.left, r.top, r.right, r.bottom);
        });
    });

    // frm_ColorScale
    d.add(DialogKind::ColorScale, 14, [](const ControlValues& v) {
        return inPlace([s2 = slider16(v, 2), s1 = slider16(v, 1),
                        colour = v.processColor](Table& e, ProcessRect r) {
            e.ShadeRangeExChange(s2, s1, r.left, r.top, r.right, r.bottom, colour.red, colour.green,
                                 colour.blue);
        });
    });
}

} // namespace lumiran

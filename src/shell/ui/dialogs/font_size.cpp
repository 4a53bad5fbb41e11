#include "shell/ui/dialogs/dialogs.h"

#include <QFont>
#include <QWidget>
#include <algorithm>

namespace lumiran {

namespace {
// The range the options dialog offers; a damaged stored value must not make
// the forms unreadable (Qt refuses sizes below 1 outright).
constexpr int SmallestFontSize = 6;
constexpr int LargestFontSize = 72;
} // namespace

int UsableFontSize(int pointSize) {
    return std::clamp(pointSize, SmallestFontSize, LargestFontSize);
}

void ApplyFontSize(QWidget& form, int pointSize) {
    const int size = UsableFontSize(pointSize);
    auto apply = [size](QWidget& widget) {
        QFont font = widget.font();
        font.setPointSize(size);
        widget.setFont(font);
    };
    apply(form);
    for (QWidget* child : form.findChildren<QWidget*>())
        apply(*child);
}

} // namespace lumiran

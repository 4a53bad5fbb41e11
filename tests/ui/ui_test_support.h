#pragma once

// What the editor's window tests share: answering the message boxes a step
// raises, a run to start, and finding the effect dialog that is up.
#include "catalogue/effect_dispatch.h"
#include "catalogue/effect_table.h"
#include "catalogue/english_texts.h"
#include "catalogue/ui/effect_dialog.h"
#include "effects/colour/class_color_op.h"

#include <QAbstractButton>
#include <QApplication>
#include <QComboBox>
#include <QGroupBox>
#include <QLabel>
#include <QListWidget>
#include <QMainWindow>
#include <QMenu>
#include <QMenuBar>
#include <QMessageBox>
#include <QSpinBox>
#include <QStringList>
#include <QTabWidget>
#include <QTimer>
#include <QTreeWidget>
#include <QWidget>
#include <algorithm>
#include <set>
#include <string>

namespace lumiran::ui_testing {

// Answers every message box with the given button (its first one when the
// box has no such button) and keeps title, text and details.
class MessageBoxAnswerer : public QObject {
  public:
    explicit MessageBoxAnswerer(QMessageBox::StandardButton answer = QMessageBox::NoButton) {
        timer_.setInterval(20);
        connect(&timer_, &QTimer::timeout, this, [this, answer] {
            if (auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget())) {
                titles.append(box->windowTitle());
                texts.append(box->text());
                details.append(box->detailedText());
                QAbstractButton* button = box->button(answer);
                if (button == nullptr) button = box->buttons().value(0);
                if (button != nullptr) button->click();
            }
        });
        timer_.start();
    }
    QStringList titles;
    QStringList texts;
    QStringList details;

  private:
    QTimer timer_;
};

// Grey of the given kind on the worker thread, as OK runs Monotone.
inline EffectBody grayBody(std::uint8_t kind = 0) {
    return [kind](EffectInvocation& run) {
        Class_ColorOp effect(run.context);
        effect.ImageGetDiBits(run.keptPicture0);
        effect.Gray_Effect(kind, run.rect.left, run.rect.top, run.rect.right, run.rect.bottom);
        effect.ImageSetDiBits(run.keptPicture1);
    };
}

// The effect dialog on screen, or null.
inline EffectDialog* currentDialog() {
    for (QWidget* w : QApplication::topLevelWidgets()) {
        if (auto* d = qobject_cast<EffectDialog*>(w); d != nullptr && d->isVisible()) return d;
    }
    return nullptr;
}

// LUMIRAN_LANG for as long as this lives: a frame made meanwhile speaks it.
class InterfaceLanguageEnvironment {
  public:
    explicit InterfaceLanguageEnvironment(const char* code)
        : had_(qEnvironmentVariableIsSet("LUMIRAN_LANG")), old_(qgetenv("LUMIRAN_LANG")) {
        qputenv("LUMIRAN_LANG", code);
    }
    ~InterfaceLanguageEnvironment() {
        if (had_) {
            qputenv("LUMIRAN_LANG", old_);
        } else {
            qunsetenv("LUMIRAN_LANG");
        }
    }
    InterfaceLanguageEnvironment(const InterfaceLanguageEnvironment&) = delete;
    InterfaceLanguageEnvironment& operator=(const InterfaceLanguageEnvironment&) = delete;

  private:
    bool had_;
    QByteArray old_;
};

// Kana, CJK symbols and ideographs, full-width forms and half-width katakana.
inline bool hasJapanese(const QString& text) {
    return std::ranges::any_of(text, [](QChar c) {
        const char16_t u = c.unicode();
        return (u >= 0x3000 && u <= 0x30FF) || (u >= 0x3400 && u <= 0x9FFF) ||
               (u >= 0xFF00 && u <= 0xFFEF);
    });
}

// Every text a window shows a user: its title, its menus (with submenus)
// and tool tips, labels, buttons, frames, list and tree rows, tabs.
inline QStringList shownTexts(QWidget& window) {
    QStringList texts{window.windowTitle()};
    const auto addActions = [&texts](const QList<QAction*>& actions, auto& self) -> void {
        for (QAction* action : actions) {
            texts << action->text() << action->toolTip();
            if (QMenu* menu = action->menu()) {
                texts << menu->title();
                self(menu->actions(), self);
            }
        }
    };
    QList<QWidget*> widgets = window.findChildren<QWidget*>();
    widgets.prepend(&window);
    for (QWidget* w : widgets) {
        addActions(w->actions(), addActions);
        if (auto* bar = qobject_cast<QMenuBar*>(w)) addActions(bar->actions(), addActions);
        if (auto* label = qobject_cast<QLabel*>(w)) texts << label->text();
        if (auto* button = qobject_cast<QAbstractButton*>(w)) texts << button->text();
        if (auto* frame = qobject_cast<QGroupBox*>(w)) texts << frame->title();
        if (auto* spin = qobject_cast<QSpinBox*>(w)) {
            texts << spin->specialValueText() << spin->prefix() << spin->suffix();
        }
        if (auto* combo = qobject_cast<QComboBox*>(w)) {
            for (int i = 0; i < combo->count(); ++i)
                texts << combo->itemText(i);
        }
        if (auto* list = qobject_cast<QListWidget*>(w)) {
            for (int i = 0; i < list->count(); ++i)
                texts << list->item(i)->text();
        }
        if (auto* tabs = qobject_cast<QTabWidget*>(w)) {
            for (int i = 0; i < tabs->count(); ++i)
                texts << tabs->tabText(i);
        }
        if (auto* tree = qobject_cast<QTreeWidget*>(w)) {
            for (QTreeWidgetItemIterator it(tree); *it; ++it)
                texts << (*it)->text(0);
        }
    }
    texts.removeAll(QString());
    return texts;
}

// The catalogue's own texts: slider labels, frame captions, list rows, titles.
inline std::set<std::string> catalogueTexts() {
    std::set<std::string> texts;
    for (const EffectEntry& e : effectCatalogue()) {
        texts.emplace(e.title);
        for (const SliderSpec& s : e.sliders)
            texts.emplace(s.label);
        for (const ListSpec& l : e.lists) {
            texts.emplace(l.caption);
            texts.insert(l.rows.begin(), l.rows.end());
        }
    }
    return texts;
}

// A catalogue text without English yet: it shows in Japanese until the
// catalogue's English table has its row.
inline bool isCatalogueTextWithoutEnglish(const QString& text,
                                          const std::set<std::string>& catalogue) {
    const std::string utf8 = text.toStdString();
    return catalogue.contains(utf8) && englishFor(utf8).empty();
}

} // namespace lumiran::ui_testing

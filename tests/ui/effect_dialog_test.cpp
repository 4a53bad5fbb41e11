// The parameter forms, configured from the table, with preview and OK.
#include "catalogue/effect_dispatch.h"
#include "catalogue/effect_table.h"
#include "catalogue/ui/effect_dialog.h"
#include "effects/colour/class_color_op.h"
#include "platform/qt_picture_decoder.h"
#include "shell/ui/frm_document.h"
#include "shell/ui/frm_main.h"
#include "shell/ui/run_controller.h"
#include "shell/ui/ui_text.h"
#include "ui_test_support.h"

#include <QAction>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMenu>
#include <QPushButton>
#include <QScrollBar>
#include <QSpinBox>
#include <QtTest>

using namespace lumiran;
using ui_testing::currentDialog;

class EffectDialogTest : public QObject {
    Q_OBJECT

    QtPictureDecoder decoder_;

  private slots:
    void monotoneIsConfiguredFromTheTable() {
        MemoryStore store;
        FrmMain frame(store, decoder_);
        FrmDocument* doc = frame.openFile(LUMIRAN_SAMPLE_PATH);
        QVERIFY(doc != nullptr);
        // From its menu entry, as the user picks it; an entry whose class is
        // still to come is there but cannot start.
        QAction* entry = doc->menu("mnuEffect")->findChild<QAction*>("ColorNo0");
        QVERIFY(entry != nullptr && entry->isEnabled());
        for (const EffectEntry& waiting : effectCatalogue()) {
            if (effectDispatch().contains(waiting.dialog, waiting.code)) continue;
            const QString name = QString::fromUtf8(waiting.menu.data(),
                                                   static_cast<qsizetype>(waiting.menu.size())) +
                                 QString::number(waiting.index);
            QAction* later = doc->findChild<QAction*>(name);
            QVERIFY2(later != nullptr && !later->isEnabled(), qPrintable(name));
            break;
        }
        entry->trigger();
        EffectDialog* dialog = currentDialog();
        QVERIFY(dialog != nullptr);
        QCOMPARE(dialog->objectName(), QString("frm_Monotone"));
        QCOMPARE(dialog->code(), 0);
        QCOMPARE(frame.state().PreviewReady, 1);
        // The scaled copy keeps the sample's 4:3 ratio inside the 140-pixel box.
        QCOMPARE(dialog->previewSource().width(), 140);
        QCOMPARE(dialog->previewSource().height(), 105);
        dialog->close();
        QCOMPARE(frame.state().PreviewReady, 0);
    }

    // One effect of each form: its sliders and lists as the entry sets them
    // up, and what the entry leaves out hidden.
    void eachFormIsConfiguredForItsEffect() {
        MemoryStore store;
        FrmMain frame(store, decoder_);
        frame.setAutoPreview(false);
        FrmDocument* doc = frame.openFile(LUMIRAN_SAMPLE_PATH);
        frame.show();
        for (const char* name : {"Monotone", "Hue And Gray", "Difference Addition", "HSV Invert",
                                 "Shade Range Adjust", "One Color Scale", "Blackend"}) {
            const EffectEntry& entry = *findEffect(name);
            frame.openEffectDialog(*doc, entry);
            EffectDialog* dialog = currentDialog();
            QVERIFY2(dialog != nullptr, name);
            QCOMPARE(dialog->objectName(), dialogObjectName(entry.dialog));
            QStringList labels;
            for (QLabel* label : dialog->findChildren<QLabel*>())
                labels << label->text();
            for (int n = 1; n <= 8; ++n) {
                const QScrollBar* slider = dialog->slider(n);
                const SliderSpec* expected = entry.slider(n);
                if (expected == nullptr) {
                    QVERIFY2(slider == nullptr || !slider->isVisible(), name);
                    continue;
                }
                QVERIFY2(slider->isVisible(), name);
                QCOMPARE(slider->minimum(), expected->min);
                QCOMPARE(slider->maximum(), expected->max);
                QCOMPARE(slider->value(), expected->defaultValue);
                QCOMPARE(dialog->values().sliders[n - 1], double(expected->defaultValue));
                QVERIFY2(labels.contains(qs(expected->label)), name);
            }
            for (const auto& [kind, list] : {std::pair{ListKind::E, dialog->typeList()},
                                             std::pair{ListKind::C, dialog->colorList()}}) {
                const ListSpec* expected = entry.list(kind);
                if (expected == nullptr) {
                    QVERIFY2(list == nullptr || !list->parentWidget()->isVisible(), name);
                    continue;
                }
                QCOMPARE(list->count(), int(expected->rows.size()));
                QCOMPARE(list->currentRow(), 0);
            }
            dialog->close();
        }
    }

    // frm_ColorScale's Slider2: for the codes with the row-4 rule a colour row
    // other than 4 hides it and hands on 0; an effect of those codes without
    // colour rows, and every other code, keeps it as configured. Default puts
    // the configured value back whatever was shown meanwhile.
    void colorScaleSlider2FollowsRowFourOfTheColourList() {
        MemoryStore store;
        FrmMain frame(store, decoder_);
        frame.setAutoPreview(false);
        FrmDocument* doc = frame.openFile(LUMIRAN_SAMPLE_PATH);
        frame.show();
        struct Case {
            const char* effect;
            int colourRow; // -1: the effect has no colour rows
            bool shown;
            double handedOn;
        };
        const Case cases[] = {
            {"Gradation", 0, false, 0},    {"Gradation", 4, true, 1},
            {"Rinbu", -1, true, 12},       {"Color Tile 1", -1, true, 64},
            {"Cycle 4", -1, true, 32},     {"Shade Range Exchange", -1, true, 192},
            {"Color Spread", -1, true, 0},
        };
        for (const Case& c : cases) {
            const QString name = QString::fromLatin1(c.effect);
            frame.openEffectDialog(*doc, *findEffect(c.effect));
            EffectDialog* dialog = currentDialog();
            QVERIFY2(dialog != nullptr, qPrintable(name));
            if (c.colourRow >= 0) dialog->colorList()->setCurrentRow(c.colourRow);
            QVERIFY2(dialog->slider(2)->isVisible() == c.shown, qPrintable(name));
            QVERIFY2(dialog->values().sliders[1] == c.handedOn, qPrintable(name));
            if (c.shown) {
                dialog->slider(2)->setValue(dialog->slider(2)->maximum());
                dialog->DefaultButton_Click();
                if (c.colourRow >= 0) dialog->colorList()->setCurrentRow(c.colourRow);
                QVERIFY2(dialog->values().sliders[1] == c.handedOn, qPrintable(name));
            }
            dialog->close();
        }

        // With Auto Preview the click's preview already takes the shown Slider2.
        frame.setAutoPreview(true);
        frame.openEffectDialog(*doc, *findEffect("Gradation"));
        EffectDialog* dialog = currentDialog();
        dialog->slider(2)->setValue(40);
        const int previews = dialog->previewCount();
        dialog->colorList()->setCurrentRow(4);
        QCOMPARE(dialog->previewCount(), previews + 1);
        const Surface automatic = dialog->previewResult();
        dialog->PreviewButton_Click();
        QVERIFY(dialog->previewResult() == automatic);
        dialog->close();
    }

    void autoPreviewFollowsAListButNotTheDefaultButton() {
        MemoryStore store;
        FrmMain frame(store, decoder_);
        frame.setAutoPreview(true);
        FrmDocument* doc = frame.openFile(LUMIRAN_SAMPLE_PATH);
        frame.openEffectDialog(*doc, *findEffect("Monotone"));
        EffectDialog* dialog = currentDialog();
        QVERIFY(dialog != nullptr);
        QCOMPARE(dialog->previewCount(), 0);
        dialog->colorList()->setCurrentRow(3);
        QCOMPARE(dialog->previewCount(), 1);
        const Surface blue = dialog->previewResult();
        dialog->colorList()->setCurrentRow(1);
        QCOMPARE(dialog->previewCount(), 2);
        dialog->DefaultButton_Click();
        QCOMPARE(dialog->previewCount(), 2);
        QCOMPARE(dialog->colorList()->currentRow(), 0);
        QVERIFY(dialog->previewResult() == dialog->previewSource());
        // Back on row 3, the preview starts again from the source.
        dialog->colorList()->setCurrentRow(3);
        QVERIFY(dialog->previewResult() == blue);
        dialog->close();
    }

    void withoutAutoPreviewOnlyTheButtonPreviews() {
        MemoryStore store;
        FrmMain frame(store, decoder_);
        frame.setAutoPreview(false);
        FrmDocument* doc = frame.openFile(LUMIRAN_SAMPLE_PATH);
        frame.openEffectDialog(*doc, *findEffect("Monotone"));
        EffectDialog* dialog = currentDialog();
        dialog->colorList()->setCurrentRow(2);
        QCOMPARE(dialog->previewCount(), 0);
        dialog->PreviewButton_Click();
        QCOMPARE(dialog->previewCount(), 1);
        dialog->close();
    }

    void okRunsTheEffectOnTheDocumentWithUndo() {
        MemoryStore store;
        FrmMain frame(store, decoder_);
        FrmDocument* doc = frame.openFile(LUMIRAN_SAMPLE_PATH);
        const Surface before = doc->document().picture;
        frame.openEffectDialog(*doc, *findEffect("Monotone"));
        EffectDialog* dialog = currentDialog();
        dialog->colorList()->setCurrentRow(1);
        dialog->OKButton_Click();
        frame.runs().waitForEnd();
        const Pixel p = before.at(100, 100);
        QCOMPARE(doc->document().picture.at(100, 100) & 0xFFFFFFu,
                 makePixel(redOf(p), redOf(p), redOf(p)));
        QCOMPARE(int(frame.state().undo.UndoCount()), 1);
        QVERIFY(frame.state().ProcessingFlag == 0);
    }

    // A slider takes the keyboard, and its box takes a typed value; both end
    // in the slider's one change event, as a drag does.
    void slidersTakeKeysAndTypedValues() {
        MemoryStore store;
        FrmMain frame(store, decoder_);
        frame.setAutoPreview(true);
        FrmDocument* doc = frame.openFile(LUMIRAN_SAMPLE_PATH);
        frame.openEffectDialog(*doc, *findEffect("Blackend")); // frm_Negative, 24 in -255..255
        EffectDialog* dialog = currentDialog();
        QScrollBar* slider = dialog->slider(1);
        QSpinBox* box = dialog->sliderBox(1);
        QCOMPARE(slider->focusPolicy(), Qt::StrongFocus);
        QCOMPARE(box->value(), 24);
        QCOMPARE(box->minimum(), slider->minimum());
        QCOMPARE(box->maximum(), slider->maximum());

        // Typed and taken with Enter, which leaves the form open.
        box->findChild<QLineEdit*>()->selectAll();
        QTest::keyClicks(box, "40");
        QCOMPARE(slider->value(), 24); // not at each digit
        QTest::keyClick(box, Qt::Key_Return);
        QCOMPARE(slider->value(), 40);
        QCOMPARE(dialog->previewCount(), 1);
        QVERIFY(dialog->isVisible());
        QCOMPARE(frame.state().undo.UndoCount(), 0);

        struct Key {
            Qt::Key key;
            int expected;
        };
        const Key keys[] = {{Qt::Key_Right, 40 + slider->singleStep()},
                            {Qt::Key_Left, 40},
                            {Qt::Key_PageUp, 40 + slider->pageStep()},
                            {Qt::Key_PageDown, 40}};
        int previews = dialog->previewCount();
        for (const Key& k : keys) {
            QTest::keyClick(slider, k.key);
            QCOMPARE(slider->value(), k.expected);
            QCOMPARE(box->value(), k.expected);
            QCOMPARE(dialog->previewCount(), ++previews);
        }
        dialog->DefaultButton_Click();
        QCOMPARE(box->value(), 24);
        dialog->close();
    }
};

QTEST_MAIN(EffectDialogTest)
#include "effect_dialog_test.moc"

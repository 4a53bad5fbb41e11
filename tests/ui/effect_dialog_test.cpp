// The parameter forms, configured from the table, with preview and OK.
#include "catalogue/effect_dispatch.h"
#include "catalogue/effect_table.h"
#include "catalogue/ui/effect_dialog.h"
#include "effects/colour/class_color_op.h"
#include "platform/qt_picture_decoder.h"
#include "shell/ui/frm_document.h"
#include "shell/ui/frm_main.h"
#include "shell/ui/run_controller.h"
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
        QCOMPARE(dialog->windowTitle(), QString("ﾓﾉﾄｰﾝ"));
        QCOMPARE(dialog->code(), 0);
        QCOMPARE(dialog->colorList()->count(), 16);
        QCOMPARE(dialog->colorList()->currentRow(), 0);
        QCOMPARE(dialog->colorList()->objectName(), QString("MonoList"));
        QCOMPARE(frame.state().PreviewReady, 1);
        // The scaled copy keeps the sample's 4:3 ratio inside the 140-pixel box.
        QCOMPARE(dialog->previewSource().width(), 140);
        QCOMPARE(dialog->previewSource().height(), 105);
        dialog->close();
        QCOMPARE(frame.state().PreviewReady, 0);
    }

    // One effect of each form: ranges, defaults, rows and what stays hidden.
    void eachFormIsConfiguredForItsEffect() {
        MemoryStore store;
        FrmMain frame(store, decoder_);
        frame.setAutoPreview(false);
        FrmDocument* doc = frame.openFile(LUMIRAN_SAMPLE_PATH);
        frame.show();

        frame.openEffectDialog(*doc, *findEffect("Hue And Gray")); // frm_Sepia
        EffectDialog* sepia = currentDialog();
        QCOMPARE(sepia->objectName(), QString("frm_Sepia"));
        QCOMPARE(sepia->slider(1)->minimum(), 0);
        QCOMPARE(sepia->slider(1)->maximum(), 255);
        QCOMPARE(sepia->slider(1)->value(), 128);
        QCOMPARE(sepia->colorList(), nullptr);
        sepia->close();

        frame.openEffectDialog(*doc, *findEffect("Difference Addition")); // frm_Emboss
        EffectDialog* emboss = currentDialog();
        QCOMPARE(emboss->objectName(), QString("frm_Emboss"));
        QCOMPARE(emboss->typeList()->count(), 10);
        QCOMPARE(emboss->colorList()->count(), 4);
        QCOMPARE(emboss->typeList()->currentRow(), 0);
        emboss->close();

        frame.openEffectDialog(*doc, *findEffect("HSV Invert")); // frm_Mani
        EffectDialog* mani = currentDialog();
        QCOMPARE(mani->objectName(), QString("frm_Mani"));
        QCOMPARE(mani->slider(2)->minimum(), -255);
        QCOMPARE(mani->slider(3)->value(), -20);
        QVERIFY(mani->slider(6)->isVisible());
        QVERIFY(!mani->slider(7)->isVisible());                  // unconfigured sliders stay hidden
        QVERIFY(!mani->typeList()->parentWidget()->isVisible()); // a list with no rows hides
        QCOMPARE(mani->values().sliders[5], 60.0);
        mani->close();

        // frm_Level names Slider1 "最小値" (64) and Slider2 "最大値" (192).
        frame.openEffectDialog(*doc, *findEffect("Shade Range Adjust"));
        EffectDialog* level = currentDialog();
        QCOMPARE(level->objectName(), QString("frm_Level"));
        QCOMPARE(level->slider(1)->value(), 64);
        QCOMPARE(level->slider(2)->value(), 192);
        QVERIFY(level->findChild<QLabel*>() != nullptr);
        QStringList names;
        for (QLabel* label : level->findChildren<QLabel*>())
            names << label->text();
        QVERIFY(names.contains("最小値") && names.contains("最大値"));
        QCOMPARE(level->typeList()->count(), 3);
        level->close();

        frame.openEffectDialog(*doc, *findEffect("One Color Scale")); // frm_ColorScale
        EffectDialog* scale = currentDialog();
        QCOMPARE(scale->objectName(), QString("frm_ColorScale"));
        QCOMPARE(scale->colorList()->count(), 3);
        QCOMPARE(scale->slider(1)->maximum(), 128);
        scale->close();

        frame.openEffectDialog(*doc, *findEffect("Blackend")); // frm_Negative
        EffectDialog* negative = currentDialog();
        QCOMPARE(negative->objectName(), QString("frm_Negative"));
        QCOMPARE(negative->slider(1)->value(), 24);
        QCOMPARE(negative->slider(1)->minimum(), -255);
        negative->close();
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

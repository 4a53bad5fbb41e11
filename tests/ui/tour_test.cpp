// Builds every window of the editor once, as a user meets them, and checks
// each comes up with its texts. With LUMIRAN_SCREENSHOT_DIR set it also
// saves a picture of each, for looking at the editor without a display.
#include "catalogue/effect_table.h"
#include "catalogue/ui/effect_dialog.h"
#include "imagefiles/bitmap_writer.h"
#include "platform/qt_picture_decoder.h"
#include "shell/ui/dialogs/frm_colorset.h"
#include "shell/ui/dialogs/frm_create.h"
#include "shell/ui/dialogs/frm_option.h"
#include "shell/ui/dialogs/frm_pictureinfo.h"
#include "shell/ui/dialogs/frm_vasion.h"
#include "shell/ui/frm_capture.h"
#include "shell/ui/frm_document.h"
#include "shell/ui/frm_exploer.h"
#include "shell/ui/frm_main.h"
#include "shell/ui/frm_picture_save.h"
#include "shell/ui/frm_print.h"
#include "shell/ui/frm_progress.h"
#include "shell/ui/frm_viewer.h"
#include "shell/ui/picture_view.h"
#include "ui_test_support.h"

#include <QDir>
#include <QMenu>
#include <QTabWidget>
#include <QTemporaryDir>
#include <QtTest>

using namespace lumiran;

class TourTest : public QObject {
    Q_OBJECT

    QtPictureDecoder decoder_;
    // Set for the English tour: every kept window is checked for Japanese.
    bool english_ = false;
    std::set<std::string> catalogue_ = ui_testing::catalogueTexts();
    // The catalogue texts that still show in Japanese, for the report.
    QStringList gaps_;

    void keep(QWidget& window, const QString& name) {
        window.show();
        QApplication::processEvents();
        QVERIFY(!window.windowTitle().isEmpty() || name == "frame" || name.startsWith("menu"));
        const QString dir = qEnvironmentVariable("LUMIRAN_SCREENSHOT_DIR");
        const QString file = (english_ ? "en_" : "") + name + ".png";
        if (!dir.isEmpty()) window.grab().save(QDir(dir).filePath(file));
        if (!english_) return;
        for (const QString& text : ui_testing::shownTexts(window)) {
            if (!ui_testing::hasJapanese(text)) continue;
            if (ui_testing::isCatalogueTextWithoutEnglish(text, catalogue_)) {
                if (!gaps_.contains(text)) gaps_ << text;
                continue;
            }
            QFAIL(qPrintable(name + ": Japanese text \"" + text + "\""));
        }
    }

    void tour();

  private slots:
    void everyWindowComesUp() { tour(); }

    // Started in English, no window shows Japanese but for catalogue texts
    // the catalogue's English table does not have yet (listed, not failed).
    void everyWindowComesUpInEnglish() {
        ui_testing::InterfaceLanguageEnvironment language("en");
        english_ = true;
        tour();
        english_ = false;
        if (!gaps_.isEmpty()) qInfo() << "catalogue texts without English:" << gaps_;
    }
};

void TourTest::tour() {
    {
        MemoryStore store;
        FrmMain frame(store, decoder_);
        frame.resize(900, 650);
        keep(frame, "frame_empty");
        FrmDocument* doc = frame.openFile(LUMIRAN_SAMPLE_PATH);
        QVERIFY(doc != nullptr);
        keep(frame, "frame");
        QMenu* effects = doc->menu("mnuEffect");
        QVERIFY(effects != nullptr);
        QCOMPARE(effects->actions().size(), 25); // 22 families, separator, Browse..., DLA
        keep(*effects, "menu_effect");
        QMenu* colour = effects->actions().first()->menu();
        QVERIFY(colour != nullptr);
        keep(*colour, "menu_color");
        keep(*doc->menu("mnuCompose"), "menu_compose");

        for (const char* effect : {"Monotone", "HSV Invert", "Shade Range Adjust",
                                   "One Color Scale", "Gradation", "Ball 1", "DLA"}) {
            frame.openEffectDialog(*doc, *findEffect(effect));
            EffectDialog* dialog = frame.findChild<EffectDialog*>();
            for (QWidget* w : QApplication::topLevelWidgets()) {
                if (auto* d = qobject_cast<EffectDialog*>(w); d != nullptr && d->isVisible())
                    dialog = d;
            }
            QVERIFY(dialog != nullptr);
            dialog->PreviewButton_Click();
            keep(*dialog, QString("effect_%1")
                              .arg(dialog->objectName() + "_" + QString::number(dialog->code())));
            dialog->close();
        }

        frm_Option options(frame.settings());
        for (int tab = 0; tab < 7; ++tab) {
            options.findChild<QTabWidget*>()->setCurrentIndex(tab);
            keep(options, QString("frm_Option_%1").arg(tab));
        }
        frm_Create create(frame.settings());
        keep(create, "frm_Create");
        frm_ColorSet colours(frame.settings());
        keep(colours, "frm_ColorSet");
        PictureInfo info{LUMIRAN_SAMPLE_PATH, doc->document().picture.width(),
                         doc->document().picture.height(), 230454};
        frm_PictureInfo pictureInfo(info, doc->document().picture, frame.settings());
        keep(pictureInfo, "frm_PictureInfo");
        frm_Vasion version(frame.settings());
        keep(version, "frm_Vasion");
        frm_PictureSave save(doc->document().picture, "/tmp/x.bmp", frame.settings().FontSize);
        keep(save, "frm_PictureSave");
        CancelFlag cancel{0};
        frm_Progress progress(cancel, false, frame.settings().FontSize);
        progress.setPercent(40);
        keep(progress, "frm_Progress");
        frm_Progress smooth(cancel, true, frame.settings().FontSize);
        smooth.setPercent(40);
        keep(smooth, "frm_Progress_smooth");

        frm_Capture capture(&frame);
        keep(capture, "frm_Capture");
        frm_Print print(doc->pictureView().image(), "sample.bmp", store, nullptr);
        keep(print, "frm_Print");
        frm_Exploer explorer({255, 128, 0}, nullptr);
        keep(explorer, "frm_Exploer");
        frm_Pixel pixel(nullptr);
        pixel.showPixel(doc->pictureView().image(), {10, 10});
        keep(pixel, "frm_Pixel");
        frame.LoadImageViewer();
        frm_Viewer* viewer = frame.viewerWindow();
        QVERIFY(viewer != nullptr);
        viewer->showFolder(QFileInfo(LUMIRAN_SAMPLE_PATH).absolutePath());
        viewer->selectFile("sample.bmp");
        QTest::qWait(50);
        keep(*viewer, "frm_Viewer");
        viewer->showView(1);
        keep(*viewer, "frm_Viewer_list");
    }
}

QTEST_MAIN(TourTest)
#include "tour_test.moc"

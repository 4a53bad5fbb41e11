// Capture, wallpaper, the viewer, printing and the colour windows in the
// editor, on the offscreen platform (the capture also under a real X server).
#include "imagefiles/bitmap_writer.h"
#include "platform/qt_picture_decoder.h"
#include "shell/ui/desktop_tools.h"
#include "shell/ui/frm_capture.h"
#include "shell/ui/frm_document.h"
#include "shell/ui/frm_exploer.h"
#include "shell/ui/frm_main.h"
#include "shell/ui/frm_print.h"
#include "shell/ui/frm_viewer.h"
#include "shell/ui/picture_view.h"
#include "shell/ui/ui_text.h"
#include "shell/ui_string_ids.h"
#include "ui_test_support.h"

#include <QAbstractButton>
#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QGuiApplication>
#include <QLabel>
#include <QListWidget>
#include <QMdiArea>
#include <QMessageBox>
#include <QProcess>
#include <QPushButton>
#include <QScreen>
#include <QSpinBox>
#include <QTemporaryDir>
#include <QTimer>
#include <QtTest>

using namespace lumiran;

namespace {

using ui_testing::MessageBoxAnswerer;

Surface solid(int width, int height, Pixel colour) {
    return Surface(width, height, colour);
}

// Stand-ins for the desktop's tools that append their arguments to a log.
void writeStandIn(const QString& folder, const QString& tool, const QString& log) {
    QFile script(folder + "/" + tool);
    QVERIFY(script.open(QIODevice::WriteOnly));
    script.write(QString("#!/bin/sh\necho \"%1 $*\" >> '%2'\n").arg(tool, log).toUtf8());
    script.close();
    script.setPermissions(script.permissions() | QFileDevice::ExeOwner);
}

QStringList readLines(const QString& path) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) return {};
    return QString::fromUtf8(file.readAll()).split('\n', Qt::SkipEmptyParts);
}

} // namespace

class ToolsTest : public QObject {
    Q_OBJECT

    QTemporaryDir dir_;
    QtPictureDecoder decoder_;

  private slots:
    // A row reaches the desktop's tool through PATH, and a document without a
    // bitmap file says so. (What each row writes and runs is the wall
    // setting's own test.)
    void wallpaperRowsReachTheDesktopTool() {
        const QString bin = dir_.filePath("bin");
        QDir().mkpath(bin);
        const QString log = dir_.filePath("tool.log");
        writeStandIn(bin, "gsettings", log);
        const QByteArray oldPath = qgetenv("PATH");
        qputenv("PATH", bin.toUtf8() + ":" + oldPath);
        qputenv("XDG_CURRENT_DESKTOP", "ubuntu:GNOME");
        const QString picture = dir_.filePath("wall.bmp");
        saveBmp24(solid(8, 8, makePixel(1, 2, 3)), picture.toStdString());

        MemoryStore store;
        FrmMain frame(store, decoder_);
        MessageBoxAnswerer answers;
        FrmDocument* doc = frame.openFile(picture);
        QVERIFY(doc);
        frame.WallPaperNo_Click(*doc, 1);
        QCOMPARE(store.get("Desktop", "TileWallpaper"), std::optional<std::string>("1"));
        const QString uri = QUrl::fromLocalFile(picture).toString(QUrl::FullyEncoded);
        const QStringList expected = {
            "gsettings set org.gnome.desktop.background picture-uri " + uri,
            "gsettings set org.gnome.desktop.background picture-uri-dark " + uri,
            "gsettings set org.gnome.desktop.background picture-options wallpaper"};
        QCOMPARE(readLines(log), expected);
        QVERIFY(answers.texts.isEmpty());

        // A document with a name but no folder, as "New" or a capture makes.
        FrmDocument* made = frame.openPictureAsDocument(QImage(4, 4, QImage::Format_RGB32), "x");
        frame.WallPaperNo_Click(*made, 0);
        QCOMPARE(answers.texts, QStringList{res(ids::WallNoPicture)});
        qputenv("PATH", oldPath);
    }

    void viewerZoomsAndAFailedLoadClearsTheSelection() {
        const QString folder = dir_.filePath("viewer");
        QDir().mkpath(folder);
        saveBmp24(solid(100, 50, makePixel(0, 0, 255)), (folder + "/a.bmp").toStdString());
        QFile broken(folder + "/b.bmp");
        QVERIFY(broken.open(QIODevice::WriteOnly));
        broken.write("BMnot a bitmap");
        broken.close();

        MemoryStore store;
        FrmMain frame(store, decoder_);
        MessageBoxAnswerer answers;
        frame.LoadImageViewer();
        frm_Viewer* viewer = frame.viewerWindow();
        QVERIFY(viewer);
        viewer->showFolder(folder);
        QCOMPARE(viewer->filList->count(), 2);
        viewer->ZoomNo1_Click(viewer_zoom::Actual);
        viewer->selectFile("a.bmp");
        QCOMPARE(viewer->path(), folder + "/a.bmp");
        QCOMPARE(viewer->windowTitle(), "Image Viewer [" + folder + "/a.bmp]   ");
        QCOMPARE(viewer->shownSize(), QSize(100, 50));
        viewer->ZoomNo1_Click(viewer_zoom::In);
        QCOMPARE(viewer->shownSize(), QSize(120, 60));
        QVERIFY(viewer->ZoomNo1[viewer_zoom::Actual]->isChecked());
        QVERIFY(viewer->PicturePanel->text().endsWith("100 x 50"));

        viewer->selectFile("b.bmp");
        QCOMPARE(viewer->path(), QString());
        QCOMPARE(viewer->windowTitle(), QString("Image Viewer "));
        QCOMPARE(answers.texts.size(), 1);
        viewer->LoadImageMenu_Click();
        QCOMPARE(answers.texts.value(1), res(ids::ViewerSelectPicture));
        QCOMPARE(frame.DocumentCount(), 0);

        // The pattern row narrows the list; "Open" hands the path to the frame.
        viewer->PatternCombo_Click(viewer->PatternCombo->findText("Jpeg File (*.jpg)"));
        QCOMPARE(viewer->filList->count(), 0);
        viewer->PatternCombo_Click(0);
        viewer->selectFile("a.bmp");
        viewer->LoadImageMenu_Click();
        QCOMPARE(frame.DocumentCount(), 1);
        viewer->close();
        QCOMPARE(store.get("Settings", "ViewerWidth").has_value(), true);
    }

    // Until a pattern row is clicked the file list has its own pattern, which
    // leaves out Photo CD files; the first row lists them. "Open" with nothing
    // selected asks under the program's name.
    void viewerListsByItsOwnPatternUntilARowIsClicked() {
        const QString folder = dir_.filePath("patterns");
        QDir().mkpath(folder);
        for (const char* name : {"b.PCX", "a.bmp", "c.pcd", "d.txt", "e.gif"}) {
            QFile file(folder + "/" + name);
            QVERIFY(file.open(QIODevice::WriteOnly));
        }
        MemoryStore store;
        FrmMain frame(store, decoder_);
        MessageBoxAnswerer answers;
        frame.LoadImageViewer();
        frm_Viewer* viewer = frame.viewerWindow();
        QVERIFY(viewer);
        viewer->showFolder(folder);
        const auto listed = [viewer] {
            QStringList names;
            for (int i = 0; i < viewer->filList->count(); ++i)
                names << viewer->filList->item(i)->text();
            return names;
        };
        QCOMPARE(listed(), (QStringList{"a.bmp", "b.PCX", "e.gif"}));
        QCOMPARE(viewer->PatternCombo->currentIndex(), -1);
        viewer->PatternCombo_Click(0);
        QCOMPARE(listed(), (QStringList{"a.bmp", "b.PCX", "c.pcd", "e.gif"}));
        viewer->PatternCombo_Click(viewer->PatternCombo->findText("All File"));
        QCOMPARE(listed().size(), 5);

        viewer->LoadImageMenu_Click();
        QCOMPARE(answers.texts, QStringList{res(ids::ViewerSelectPicture)});
        QCOMPARE(answers.titles, QStringList{QGuiApplication::applicationDisplayName()});
        viewer->close();
    }

    // The page of a PDF holds the picture at PrintSize percent of a 600 dpi
    // dot from the margins' corner.
    void printToPdfPlacesThePictureAtItsSize() {
        const QString pdftoppm = QStandardPaths::findExecutable("pdftoppm");
        if (pdftoppm.isEmpty()) QSKIP("pdftoppm is not installed");
        MemoryStore store;
        store.set("Settings", "PrintSize", "400");
        store.set("Settings", "PrinterScale.Left", "20");
        store.set("Settings", "PrinterScale.Top", "10");
        QImage picture(300, 150, QImage::Format_RGB32);
        picture.fill(Qt::red);
        frm_Print dialog(picture, "red", store, nullptr);
        QCOMPARE(dialog.PrintSize->value(), 400);
        const QString pdf = dir_.filePath("page.pdf");
        dialog.setPdfFile(pdf);
        QVERIFY(dialog.printNow());
        const QString png = dir_.filePath("page");
        QCOMPARE(QProcess::execute(pdftoppm, {"-r", "100", "-png", "-singlefile", pdf, png}), 0);
        const QImage page(png + ".png");
        QVERIFY(!page.isNull());
        QRect red;
        for (int y = 0; y < page.height(); ++y) {
            for (int x = 0; x < page.width(); ++x) {
                const QColor c = page.pixelColor(x, y);
                if (c.red() > 200 && c.green() < 60 && c.blue() < 60) red |= QRect(x, y, 1, 1);
            }
        }
        // 20 mm and 10 mm in, 2 inches by 1 inch, at 100 dots to the inch.
        QVERIFY2(std::abs(red.left() - 79) <= 2, qPrintable(QString::number(red.left())));
        QVERIFY2(std::abs(red.top() - 39) <= 2, qPrintable(QString::number(red.top())));
        QVERIFY2(std::abs(red.width() - 200) <= 2, qPrintable(QString::number(red.width())));
        QVERIFY2(std::abs(red.height() - 100) <= 2, qPrintable(QString::number(red.height())));
        QCOMPARE(store.get("Settings", "PrinterScale.Left"), std::optional<std::string>("20"));
    }

    // Picking goes to the explorer while it waits, a click holds it, and the
    // colour can become the drawing colour.
    void explorerPicksThroughTheColourPickMode() {
        MemoryStore store;
        FrmMain frame(store, decoder_);
        frame.showExplorer();
        frm_Exploer* explorer = frame.explorerWindow();
        QVERIFY(explorer);
        explorer->PickButton->click();
        QCOMPARE(frame.state().ColorPickMode, std::uint8_t{2});
        frame.colourPicked({10, 20, 30});
        QCOMPARE(explorer->colour(), (Rgb8{10, 20, 30}));
        QVERIFY(explorer->valuesText().contains("#0A141E"));
        frame.toggleColourPick();
        QCOMPARE(frame.state().ColorPickMode, std::uint8_t{3});
        explorer->DrawingButton->click();
        QCOMPARE(frame.state().flags.drawingColor, (Rgb8{10, 20, 30}));
        explorer->close();
        QCOMPARE(frame.state().ColorPickMode, std::uint8_t{0});
    }

    // Under a real X server the whole screen comes back at the screen's size;
    // the offscreen platform may refuse, which the dialog reports.
    void captureGivesThePictureOfTheScreen() {
        MemoryStore store;
        FrmMain frame(store, decoder_);
        frame.show();
        auto* dialog = new frm_Capture(&frame);
        QSignalSpy captured(dialog, &frm_Capture::captured);
        QSignalSpy refused(dialog, &frm_Capture::refused);
        dialog->Check1->setChecked(true);
        dialog->show();
        dialog->Command1->click();
        QTRY_VERIFY_WITH_TIMEOUT(captured.count() + refused.count() == 1, 10000);
        if (QGuiApplication::platformName() != "xcb") {
            delete dialog;
            QSKIP("the screen is captured only on X11");
        }
        QCOMPARE(captured.count(), 1);
        const QImage picture = captured.at(0).at(0).value<QImage>();
        QCOMPARE(picture.size(), QGuiApplication::primaryScreen()->size() *
                                     QGuiApplication::primaryScreen()->devicePixelRatio());
        QVERIFY(frame.isVisible());
        delete dialog;
    }
};

QTEST_MAIN(ToolsTest)
#include "tools_test.moc"

// The editor's frame and documents on the offscreen platform.
#include "catalogue/effect_dispatch.h"
#include "catalogue/effect_table.h"
#include "effects/colour/class_color_op.h"
#include "imagefiles/bitmap_writer.h"
#include "platform/qt_picture_decoder.h"
#include "shell/ui/frm_document.h"
#include "shell/ui/frm_main.h"
#include "shell/ui/frm_picture_save.h"
#include "shell/ui/frm_progress.h"
#include "shell/ui/picture_view.h"
#include "shell/ui/qt_settings_store.h"
#include "shell/ui/run_controller.h"
#include "shell/ui/surface_image.h"
#include "shell/ui/ui_text.h"
#include "shell/ui_string_ids.h"
#include "ui_test_support.h"

#include <QAbstractButton>
#include <QAction>
#include <QActionEvent>
#include <QApplication>
#include <QDir>
#include <QFileInfo>
#include <QLabel>
#include <QLineEdit>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QMenu>
#include <QMenuBar>
#include <QMessageBox>
#include <QProcess>
#include <QProgressBar>
#include <QProgressDialog>
#include <QPushButton>
#include <QRadioButton>
#include <QScrollArea>
#include <QScrollBar>
#include <QStatusBar>
#include <QTemporaryDir>
#include <QTextBrowser>
#include <QTimer>
#include <QToolBar>
#include <QtTest>
#include <atomic>
#include <chrono>
#include <functional>
#include <thread>
#include <tuple>

using namespace lumiran;

namespace {

using ui_testing::grayBody;
using ui_testing::MessageBoxAnswerer;

// A body that cancels itself after its first row.
EffectBody cancellingGray() {
    return [](EffectInvocation& run) {
        Class_ColorOp effect(run.context);
        effect.ImageGetDiBits(run.keptPicture0);
        run.context.requestCancel();
        effect.Gray_Effect(0, run.rect.left, run.rect.top, run.rect.right, run.rect.bottom);
        effect.ImageSetDiBits(run.keptPicture1);
    };
}

// A body that runs until the run is cancelled, as a long effect does.
EffectBody untilCancelled() {
    return [](EffectInvocation& run) {
        while (!run.context.cancelled())
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
    };
}

// A body whose effect fails; its handler records the error and cancels.
EffectBody failing() {
    return [](EffectInvocation& run) {
        run.context.failures.push_back(EffectError::overflow());
        run.context.requestCancel();
    };
}

QList<frm_Progress*> progressWindows(const QWidget& frame) {
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QList<frm_Progress*> found = frame.findChildren<frm_Progress*>();
    for (QWidget* w : QApplication::topLevelWidgets()) {
        if (auto* p = qobject_cast<frm_Progress*>(w); p != nullptr && !found.contains(p))
            found.append(p);
    }
    return found;
}

// Windows without an owner that are still up: any of them keeps the program alive.
QStringList windowsKeepingTheProgram() {
    QStringList names;
    for (QWidget* w : QApplication::topLevelWidgets()) {
        if (w->isVisible() && w->parentWidget() == nullptr)
            names << w->metaObject()->className() + QString(":") + w->windowTitle();
    }
    return names;
}

// The frame shows the frame's own menus (no document's) in its menu bar.
bool showsFrameMenus(FrmMain& frame) {
    const QList<QAction*> bar = frame.menuBar()->actions();
    return !bar.isEmpty() && bar.front()->menu() != nullptr &&
           bar.front()->menu()->parent() == &frame;
}

// Records what the menu bar's entries say while a load runs.
class MenuBarTexts : public QObject {
  public:
    explicit MenuBarTexts(QMenuBar& bar) { bar.installEventFilter(this); }
    QStringList texts;

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override {
        if (event->type() == QEvent::ActionChanged || event->type() == QEvent::ActionAdded) {
            const QString text = static_cast<QActionEvent*>(event)->action()->text();
            if (!text.isEmpty() && !texts.contains(text)) texts << text;
        }
        return QObject::eventFilter(watched, event);
    }
};

Surface gradient(int width, int height) {
    Surface s(width, height);
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x)
            s.at(x, y) = makePixel(x % 256, y % 256, (x + y) % 256);
    }
    return s;
}

} // namespace

class FrameTest : public QObject {
    Q_OBJECT

  private:
    QTemporaryDir dir_;
    QtPictureDecoder decoder_;

    QString writePicture(const QString& name, const Surface& picture) {
        const QString path = dir_.filePath(name);
        saveBmp24(picture, path.toStdString());
        return path;
    }

  private slots:
    void windowCountLimitOfOneAllowsTwoDocuments() {
        MemoryStore store;
        FrmMain frame(store, decoder_);
        frame.settings().LoadingAmountLimitation = 1;
        const QString path = writePicture("a.bmp", gradient(20, 10));
        MessageBoxAnswerer answerer(QMessageBox::Ok);
        QVERIFY(frame.openFile(path) != nullptr);
        QVERIFY(frame.openFile(path) != nullptr);
        QCOMPARE(frame.openFile(path), nullptr);
        QCOMPARE(frame.DocumentCount(), 2);
        QCOMPARE(answerer.titles, QStringList{res(ids::WindowLimitTitle)});
    }

    // The frame's font takes a damaged stored size within the forms' range.
    void aStoredFontSizeOutsideTheRangeIsBroughtIntoIt() {
        const QFont before = QApplication::font();
        for (const auto& [stored, shown] : {std::pair{"0", 6}, std::pair{"255", 72}}) {
            MemoryStore store;
            store.set("Settings", "Font Size", stored);
            FrmMain frame(store, decoder_);
            QCOMPARE(QApplication::font().pointSize(), shown);
        }
        QApplication::setFont(before);
    }

    void oneCharacterCommandLineIsIgnored() {
        MemoryStore store;
        FrmMain frame(store, decoder_);
        frame.openCommandLine("x");
        QCOMPARE(frame.DocumentCount(), 0);
        const QString path = writePicture("b.bmp", gradient(8, 8));
        frame.openCommandLine(path + " " + path);
        QCOMPARE(frame.DocumentCount(), 2);
    }

    void aFailedLoadLeavesTheOtherDocumentsAsTheyWere() {
        MemoryStore store;
        FrmMain frame(store, decoder_);
        const QString good = writePicture("good.bmp", gradient(9, 9));
        QFile bad(dir_.filePath("bad.pcx"));
        QVERIFY(bad.open(QIODevice::WriteOnly));
        bad.write("not a pcx");
        bad.close();
        MessageBoxAnswerer answerer(QMessageBox::Ok);
        FrmDocument* doc = frame.openFile(good);
        QVERIFY(doc != nullptr);
        QCOMPARE(frame.openFile(bad.fileName()), nullptr);
        QCOMPARE(frame.DocumentCount(), 1);
        QCOMPARE(answerer.titles.size(), 1);
        QVERIFY(answerer.titles[0].startsWith(res(ids::ErrorTitle)));
        // The refusal has no description of its own; its reason is in the details.
        QCOMPARE(answerer.texts[0], QString());
        QVERIFY(answerer.details[0].contains("PCX"));
        QCOMPARE(doc->document().picture.width(), 9);
    }

    // A name relative to the working folder, as a shell passes it: the
    // caption and the history hold the whole path, and a picture of a few
    // pixels still gets a window whose caption and buttons fit.
    void aRelativePathOpensUnderItsWholePath() {
        MemoryStore store;
        FrmMain frame(store, decoder_);
        frame.show();
        const QString whole = writePicture("tiny.bmp", gradient(5, 3));
        const QString previous = QDir::currentPath();
        QVERIFY(QDir::setCurrent(dir_.path()));
        FrmDocument* doc = frame.openFile("tiny.bmp");
        QVERIFY(QDir::setCurrent(previous));
        QVERIFY(doc != nullptr);
        const QString expected = QFileInfo(whole).absoluteFilePath();
        QCOMPARE(doc->windowTitle(), expected);
        QCOMPARE(qs(frame.settings().history.entry(0)), expected);
        QMdiSubWindow* sub = doc->subWindow();
        QVERIFY(sub != nullptr);
        QVERIFY(sub->width() >= sub->minimumSizeHint().width());
    }

    // A long load offers a cancel; cancelling closes only the document it
    // was opening, with no error. The 27-byte PPM declares 100 M pixels,
    // which take some tenths of a second to fill: the window is offered at
    // once rather than after the usual second, which a fast load beats.
    void aCancelledLoadLeavesTheOtherDocumentsAsTheyWere() {
        MemoryStore store;
        FrmMain frame(store, decoder_);
        MessageBoxAnswerer answerer(QMessageBox::Ok);
        FrmDocument* doc = frame.openFile(writePicture("kept.bmp", gradient(9, 9)));
        QVERIFY(doc != nullptr);
        QFile slow(dir_.filePath("slow.ppm"));
        QVERIFY(slow.open(QIODevice::WriteOnly));
        slow.write("P6\n9999 9999\n255\n");
        slow.close();
        bool offered = false;
        QTimer canceller;
        canceller.setInterval(20);
        connect(&canceller, &QTimer::timeout, &frame, [&] {
            auto* window = qobject_cast<QProgressDialog*>(QApplication::activeModalWidget());
            if (window != nullptr && window->objectName() == "LoadProgress") {
                offered = true;
                if (auto* button = window->findChild<QPushButton*>()) button->click();
            }
        });
        canceller.start();
        frame.setLongLoadMilliseconds(0);
        QCOMPARE(frame.openFile(slow.fileName()), nullptr);
        QVERIFY(offered);
        QCOMPARE(frame.DocumentCount(), 1);
        QVERIFY(answerer.titles.isEmpty());
        QCOMPARE(doc->document().picture.width(), 9);
    }

    void settingsRoundTripForgetsTheFourRenamedKeys() {
        const QString file = dir_.filePath("settings.ini");
        {
            QtSettingsStore store(file);
            FrmMain frame(store, decoder_);
            QVERIFY(frame.settings().firstStart());
            QCOMPARE(frame.geometry().topLeft(), QPoint(48, 48));
            frame.state().flags.calculationFlag = 3;
            frame.state().flags.rasterOpFlag = 7;
            frame.settings().AutoRegulation = 2;
            frame.settings().LoadingAmountLimitation = 4;
            frame.settings().FontSize = 11;
            frame.show();
            MessageBoxAnswerer yes(QMessageBox::Yes);
            QVERIFY(frame.close());
            store.sync();
        }
        QtSettingsStore store(file);
        FrmMain frame(store, decoder_);
        QVERIFY(!frame.settings().firstStart());
        QCOMPARE(frame.state().flags.calculationFlag, 0);
        QCOMPARE(frame.state().flags.rasterOpFlag, 0);
        QCOMPARE(frame.settings().AutoRegulation, 0);
        QCOMPARE(frame.settings().LoadingAmountLimitation, 0);
        QCOMPARE(frame.settings().FontSize, 11);
        QCOMPARE(store.get("Settings", "CaculateFlag").value_or(""), std::string("3"));
    }

    void historyRowsFollowTheNothingRule() {
        MemoryStore store;
        FrmMain frame(store, decoder_);
        const QString a = writePicture("h1.bmp", gradient(4, 4));
        const QString b = writePicture("h2.bmp", gradient(4, 4));
        FrmDocument* doc = frame.openFile(a);
        frame.openFile(b);
        frame.openFile(a);
        QCOMPARE(QString::fromStdString(frame.settings().history.entry(0)), b);
        QCOMPARE(QString::fromStdString(frame.settings().history.entry(1)), a);
        QMenu* file = doc->menu("mnuFile");
        QStringList shown;
        for (QAction* action : file->actions()) {
            if (action->isVisible() && (action->text() == a || action->text() == b)) {
                shown << action->text();
            }
        }
        QCOMPARE(shown, (QStringList{b, a}));
    }

    void exitAsksOnceWithDocumentsOpen() {
        MemoryStore store;
        FrmMain frame(store, decoder_);
        const QString path = writePicture("c.bmp", gradient(5, 5));
        frame.openFile(path);
        frame.openFile(path);
        frame.show();
        {
            MessageBoxAnswerer no(QMessageBox::No);
            QVERIFY(!frame.close());
            QCOMPARE(no.titles, QStringList{res(ids::ExitTitle)});
            QCOMPARE(frame.DocumentCount(), 2);
        }
        MessageBoxAnswerer yes(QMessageBox::Yes);
        QVERIFY(frame.close());
        QCOMPARE(yes.titles.size(), 1);
        QCOMPARE(yes.texts, QStringList{res(ids::ExitQuestion)});
    }

    void aCancelledRunLeavesPictureAndUndoCount() {
        MemoryStore store;
        FrmMain frame(store, decoder_);
        FrmDocument* doc = frame.openFile(writePicture("d.bmp", gradient(30, 20)));
        const Surface before = doc->document().picture;
        const int count = frame.state().undo.UndoCount();
        QVERIFY(frame.runEffect(*doc, cancellingGray()));
        QVERIFY(frame.runs().running());
        frame.runs().waitForEnd();
        QCOMPARE(frame.state().undo.UndoCount(), count);
        QVERIFY(doc->document().picture == before);
        QVERIFY(doc->menu("mnuFile")->isEnabled());
    }

    // A user's first session: three formats, the arrangements, a run, saves at
    // 8 and 1 bits, reopening them, undo, closing.
    void aFirstSessionFromOpenToClose() {
        MemoryStore store;
        FrmMain frame(store, decoder_);
        frame.resize(900, 700);
        frame.show();
        Surface few(64, 48, makePixel(200, 30, 30));
        for (int x = 0; x < 64; ++x)
            few.at(x, 20) = makePixel(0, 0, 0);
        const QString bmp = writePicture("session.bmp", few);
        QStringList paths{bmp};
        if (QFile::exists("/usr/bin/convert")) {
            const QString jpg = dir_.filePath("session.jpg");
            QCOMPARE(QProcess::execute("/usr/bin/convert", {bmp, jpg}), 0);
            paths << jpg;
        }
        if (QFile::exists("/usr/bin/bmptopnm") && QFile::exists("/usr/bin/ppmtopcx")) {
            const QString pcx = dir_.filePath("session.pcx");
            QCOMPARE(QProcess::execute("sh", {"-c", QString("bmptopnm '%1' 2>/dev/null | ppmtopcx "
                                                            "2>/dev/null > '%2'")
                                                        .arg(bmp, pcx)}),
                     0);
            paths << pcx;
        }
        QList<FrmDocument*> docs;
        for (const QString& path : paths) {
            FrmDocument* doc = frame.openFile(path);
            QVERIFY2(doc != nullptr, qPrintable(path));
            QCOMPARE(doc->document().picture.width(), 64);
            docs << doc;
        }
        for (int mode : {1, 2, 3})
            frame.arrange(mode);
        QApplication::processEvents();

        FrmDocument* doc = docs.front();
        QVERIFY(frame.runEffect(*doc, grayBody()));
        QVERIFY(!doc->menu("mnuEdit")->isEnabled()); // menus are off during a run
        frame.runs().waitForEnd();
        QVERIFY(doc->menu("mnuEdit")->isEnabled());
        QCOMPARE(int(frame.state().undo.UndoCount()), 1);
        const Surface grey = doc->document().picture;
        QVERIFY(!(grey == few));

        const QString eight = dir_.filePath("session8.bmp");
        const QString one = dir_.filePath("session1.bmp");
        QVERIFY(savePictureFile(grey, eight, SaveDepth::Bits8).saved);
        QVERIFY(savePictureFile(grey, one, SaveDepth::Bits1).saved);
        FrmDocument* reopened8 = frame.openFile(eight);
        FrmDocument* reopened1 = frame.openFile(one);
        QVERIFY(reopened8 != nullptr && reopened1 != nullptr);
        QVERIFY(reopened8->document().picture.sameColours(grey));
        QCOMPARE(reopened1->document().picture.at(0, 20) & 0xFFFFFFu, 0u);
        QCOMPARE(reopened1->document().picture.at(0, 0) & 0xFFFFFFu, 0xFFFFFFu);

        frame.undo(*doc);
        QVERIFY(doc->document().picture == few);
        MessageBoxAnswerer yes(QMessageBox::Yes);
        QVERIFY(frame.close());
    }

    void undoToAPictureOfAnotherSizeRefitsTheScrollBars() {
        MemoryStore store;
        FrmMain frame(store, decoder_);
        frame.resize(800, 600);
        frame.show();
        FrmDocument* doc = frame.openFile(writePicture("f.bmp", gradient(40, 30)));
        doc->parentWidget()->resize(200, 200);
        frame.state().undo.PushUndo(doc->document());
        doc->document().picture = gradient(2000, 1500);
        doc->refreshPicture();
        QApplication::processEvents();
        auto* area = doc->findChild<QScrollArea*>("BasicArea");
        QVERIFY(area->horizontalScrollBar()->maximum() > 0);
        frame.undo(*doc);
        QApplication::processEvents();
        QCOMPARE(doc->document().picture.width(), 40);
        QCOMPARE(area->horizontalScrollBar()->maximum(), 0);
        QCOMPARE(area->verticalScrollBar()->maximum(), 0);
    }

    // ProcessBarType is the bar's look, standard blocks or smooth; both show
    // how far the run has come.
    void theProgressBarShowsTheShareDoneInEitherStyle() {
        for (const bool smooth : {false, true}) {
            CancelFlag cancel{0};
            frm_Progress progress(cancel, smooth, 9);
            progress.setPercent(40);
            QCOMPARE(progress.percent(), 40);
            const auto* bar = progress.findChild<QProgressBar*>("ProgressBar1");
            QVERIFY(bar != nullptr);
            QCOMPARE(bar->maximum(), 100);
            QCOMPARE(bar->styleSheet().contains("::chunk"), !smooth);
        }
    }

    // Finished, cancelled by the button, failed: one window during the run,
    // none after it.
    void theProgressWindowClosesAtTheEndOfEveryRun() {
        MemoryStore store;
        FrmMain frame(store, decoder_);
        frame.show();
        FrmDocument* doc = frame.openFile(writePicture("p.bmp", gradient(60, 40)));
        MessageBoxAnswerer ok(QMessageBox::Ok);
        struct Case {
            const char* name;
            EffectBody body;
            bool pressCancel;
        };
        const Case cases[] = {{"finished", grayBody(), false},
                              {"cancelled", untilCancelled(), true},
                              {"failed", failing(), false},
                              {"finished again", grayBody(), false}};
        for (const Case& c : cases) {
            QVERIFY2(frame.runEffect(*doc, c.body), c.name);
            QCOMPARE(progressWindows(frame).size(), 1);
            QVERIFY(progressWindows(frame).front()->isVisible());
            if (c.pressCancel) {
                progressWindows(frame).front()->findChild<QAbstractButton*>("Command1")->click();
            }
            frame.runs().waitForEnd();
            QVERIFY2(progressWindows(frame).isEmpty(), c.name);
        }
        QCOMPARE(ok.titles.size(), 1); // the failed effect's message
        QCOMPARE(int(frame.state().undo.UndoCount()), 2);
    }

    // After runs, and with a run under way: yes ends the program at once.
    void quitEndsTheProgramAlsoDuringARun() {
        MemoryStore store;
        FrmMain frame(store, decoder_);
        frame.show();
        QSignalSpy exited(&frame, &FrmMain::exited);
        FrmDocument* doc = frame.openFile(writePicture("q.bmp", gradient(30, 30)));
        QVERIFY(frame.runEffect(*doc, grayBody()));
        frame.runs().waitForEnd();
        QVERIFY(frame.runEffect(*doc, untilCancelled()));
        MessageBoxAnswerer yes(QMessageBox::Yes);
        QVERIFY(frame.close());
        QCOMPARE(yes.texts, QStringList{res(ids::ExitQuestion)});
        QVERIFY(!frame.runs().running());
        QCOMPARE(int(frame.state().undo.UndoCount()), 1); // the cancelled run's level went back
        QCOMPARE(frame.DocumentCount(), 0);
        QCOMPARE(exited.count(), 1);
        QVERIFY(store.get("Settings", "Vasion").has_value());
        QApplication::processEvents();
        QCOMPARE(windowsKeepingTheProgram(), QStringList{});
    }

    // The menu's close, the window's button and the two keys all take the
    // child window away and bring back the frame's own menu.
    void everyCloseTakesTheChildWindowAway() {
        MemoryStore store;
        FrmMain frame(store, decoder_);
        frame.show();
        QApplication::setActiveWindow(&frame);
        QVERIFY(QTest::qWaitForWindowActive(&frame));
        const QString path = writePicture("w.bmp", gradient(20, 20));
        const std::function<void(FrmDocument&)> ways[] = {
            [](FrmDocument& doc) { doc.closeAction()->trigger(); },
            [](FrmDocument& doc) { doc.subWindow()->close(); },
            [](FrmDocument& doc) { QTest::keyClick(&doc, Qt::Key_W, Qt::ControlModifier); },
            [](FrmDocument& doc) { QTest::keyClick(&doc, Qt::Key_F4, Qt::ControlModifier); },
        };
        int way = 0;
        for (const auto& close : ways) {
            FrmDocument* doc = frame.openFile(path);
            QVERIFY(doc != nullptr);
            doc->setFocus();
            QVERIFY(!showsFrameMenus(frame));
            close(*doc);
            QTRY_VERIFY2(frame.workspace().subWindowList().isEmpty(),
                         qPrintable(QString("way %1").arg(way)));
            QTRY_VERIFY(showsFrameMenus(frame));
            QCOMPARE(frame.DocumentCount(), 0);
            ++way;
        }
    }

    void theSaveDialogProposesABitmapName() {
        const std::pair<QString, QString> names[] = {
            {"test.jpg", "/d/test.bmp"}, {"name", "/d/name.bmp"}, {"a.b.PCX", "/d/a.b.bmp"},
            {"x.bmp", "/d/x.bmp"},       {"dot.", "/d/dot.bmp"},
        };
        for (const auto& [name, proposed] : names)
            QCOMPARE(proposedSaveName("/d/", name), proposed);

        MemoryStore store;
        FrmMain frame(store, decoder_);
        const QString jpg = dir_.filePath("test.jpg");
        QVERIFY(toQImage(gradient(16, 12)).save(jpg));
        const QByteArray jpgBytes = [&] {
            QFile f(jpg);
            f.open(QIODevice::ReadOnly);
            return f.readAll();
        }();
        FrmDocument* doc = frame.openFile(jpg);
        QVERIFY(doc != nullptr);
        QString proposed;
        QTimer::singleShot(0, [&proposed] {
            auto* dialog = qobject_cast<frm_PictureSave*>(QApplication::activeModalWidget());
            if (dialog == nullptr) return;
            proposed = dialog->findChild<QLineEdit*>("Text1")->text();
            dialog->Command1_Click();
        });
        MessageBoxAnswerer ok(QMessageBox::Ok);
        frame.saveDocument(*doc);
        QCOMPARE(proposed, dir_.filePath("test.bmp"));
        QFile bmp(dir_.filePath("test.bmp"));
        QVERIFY(bmp.open(QIODevice::ReadOnly));
        QCOMPARE(bmp.read(2), QByteArray("BM"));
        QFile unchanged(jpg);
        QVERIFY(unchanged.open(QIODevice::ReadOnly));
        QCOMPARE(unchanged.readAll(), jpgBytes);
        QCOMPARE(doc->windowTitle(), dir_.filePath("test.bmp"));
    }

    void aFailedEightBitSaveTellsWhy() {
        Surface many(237, 1);
        for (int x = 0; x < 237; ++x)
            many.at(x, 0) = makePixel(x, 0, 0);
        frm_PictureSave dialog(many, dir_.filePath("many.bmp"), 9);
        dialog.findChild<QRadioButton*>("Option1_1")->setChecked(true);
        MessageBoxAnswerer ok(QMessageBox::Ok);
        dialog.Command1_Click();
        QCOMPARE(ok.texts, QStringList{res(ids::SaveFailed)});
        QVERIFY(ok.details.front().contains("236"));
        QVERIFY(ok.details.front().contains("237"));
        QVERIFY(!QFile::exists(dir_.filePath("many.bmp")));
    }

    void thePngRowWritesAPngUnderAPngName() {
        // The extension follows the row: swapped between the two kinds, added
        // when missing, any other kept as typed.
        const std::tuple<QString, SaveDepth, QString> names[] = {
            {"/d/a.bmp", SaveDepth::Png, "/d/a.png"},
            {"/d/a.BMP", SaveDepth::Png, "/d/a.png"},
            {"/d/a.png", SaveDepth::Bits8, "/d/a.bmp"},
            {"/d/a.png", SaveDepth::Png, "/d/a.png"},
            {"/d/a", SaveDepth::Png, "/d/a.png"},
            {"/d/a", SaveDepth::Bits1, "/d/a.bmp"},
            {"/d/a.dib", SaveDepth::Png, "/d/a.dib"},
            {"/d.png/a", SaveDepth::Bits24, "/d.png/a.bmp"},
        };
        for (const auto& [path, depth, expected] : names)
            QCOMPARE(pathForDepth(path, depth), expected);

        const Surface picture = gradient(13, 5); // odd width: bitmap rows are padded
        frm_PictureSave dialog(picture, dir_.filePath("g.bmp"), 9);
        auto* name = dialog.findChild<QLineEdit*>("Text1");
        dialog.findChild<QRadioButton*>("Option1_3")->setChecked(true);
        QCOMPARE(name->text(), dir_.filePath("g.png"));
        MessageBoxAnswerer ok(QMessageBox::Ok);
        dialog.Command1_Click();
        QCOMPARE(ok.texts, QStringList{res(ids::SaveDone)});
        QCOMPARE(dialog.savedPath(), dir_.filePath("g.png"));
        QVERIFY(!QFile::exists(dir_.filePath("g.bmp")));
        QFile png(dialog.savedPath());
        QVERIFY(png.open(QIODevice::ReadOnly));
        QCOMPARE(png.read(4), QByteArray("\x89PNG"));
        QVERIFY(decoder_.LoadPicture(dialog.savedPath().toStdString(), "png").sameColours(picture));
        dialog.findChild<QRadioButton*>("Option1_0")->setChecked(true);
        QCOMPARE(name->text(), dir_.filePath("g.bmp"));
    }

    void newWindowsStayInsideAndCascadeShowsThePictures() {
        MemoryStore store;
        FrmMain frame(store, decoder_);
        frame.resize(900, 700);
        frame.show();
        const QString path = writePicture("many.bmp", gradient(320, 240));
        const QRect workspace = frame.workspace().viewport()->rect();
        for (int i = 0; i < 12; ++i) {
            FrmDocument* doc = frame.openFile(path);
            QVERIFY(workspace.contains(doc->subWindow()->geometry()));
        }
        frame.arrange(1);
        for (FrmDocument* doc : frame.documents()) {
            QVERIFY(workspace.contains(doc->subWindow()->geometry()));
            const QSize shown = doc->basicArea().viewport()->size();
            QVERIFY2(shown.width() >= 320 && shown.height() >= 240,
                     qPrintable(QString("%1x%2").arg(shown.width()).arg(shown.height())));
        }
    }

    void controlsWithoutAnActionAreOff() {
        MemoryStore store;
        FrmMain frame(store, decoder_);
        auto* toolbar = frame.findChild<QToolBar*>("tbToolBar");
        QAction* browser = toolbar->findChild<QAction*>("Tool3506");
        QVERIFY(browser != nullptr && !browser->isEnabled());
        QVERIFY(browser->toolTip().contains(res(ids::NotAvailableYet)));
        QVERIFY(toolbar->findChild<QAction*>("Tool3486")->isEnabled()); // print
        auto* finalLoad = frame.findChild<QAction*>("mnueditfinalloadnewopen");
        QVERIFY(!finalLoad->isEnabled());
        FrmDocument* doc = frame.openFile(writePicture("u.bmp", gradient(10, 10)));
        QVERIFY(finalLoad->isEnabled() && doc->finalLoadAction()->isEnabled());
        QVERIFY(!doc->undoAction()->isEnabled());
        QVERIFY(frame.runEffect(*doc, grayBody()));
        frame.runs().waitForEnd();
        QVERIFY(doc->undoAction()->isEnabled());

        frame.showHelp();
        QTextBrowser* help = frame.helpWindow();
        QVERIFY(help != nullptr && help->isVisible());
        QVERIFY(help->toPlainText().contains(QStringLiteral("元に戻す")));

        // The English page is built in beside it, section for section.
        const auto sections = [](const QString& resource) {
            QFile page(resource);
            if (!page.open(QIODevice::ReadOnly)) return -1;
            return int(QString::fromUtf8(page.readAll()).count("<h2>"));
        };
        QVERIFY(sections(":/help/index.html") > 0);
        QCOMPARE(sections(":/help/index_en.html"), sections(":/help/index.html"));
    }

    // The frame takes its language from the store and LUMIRAN_LANG (the rule
    // between them is the settings' own test); menus and help follow it.
    void languageComesFromTheEnvironmentThenTheStore() {
        struct Case {
            const char* stored; // null: no key
            const char* environment;
            InterfaceLanguage language;
        };
        const Case cases[] = {
            {"en", nullptr, InterfaceLanguage::English},
            {"en", "ja", InterfaceLanguage::Japanese},
            {nullptr, "en", InterfaceLanguage::English},
        };
        for (const Case& c : cases) {
            const QByteArray old = qgetenv("LUMIRAN_LANG");
            if (c.environment) {
                qputenv("LUMIRAN_LANG", c.environment);
            } else {
                qunsetenv("LUMIRAN_LANG");
            }
            MemoryStore store;
            if (c.stored) store.set("Settings", "InterfaceLanguage", c.stored);
            {
                FrmMain frame(store, decoder_);
                QVERIFY(frame.state().language == c.language);
                const QMenu* file = frame.findChild<QMenu*>("mnuFile");
                QVERIFY(file != nullptr);
                QCOMPARE(file->title(), qs(LoadResString(ids::MenuImage, c.language)));
                frame.showHelp();
                QTextBrowser* help = frame.helpWindow();
                QVERIFY(help != nullptr);
                const bool englishPage = c.language == InterfaceLanguage::English &&
                                         QFile::exists(":/help/index_en.html");
                QCOMPARE(help->source().path(), englishPage ? QString("/help/index_en.html")
                                                            : QString("/help/index.html"));
            }
            qputenv("LUMIRAN_LANG", old);
            if (old.isEmpty()) qunsetenv("LUMIRAN_LANG");
        }
        // Japanese again: the English translator went with its frame.
        QCOMPARE(res(ids::MenuImage), qs(LoadResString(ids::MenuImage)));
    }

    // The progress window is up before the snapshot and the copies; a large
    // load shows its percentage in the menu bar.
    void largePicturesShowProgressFromTheStart() {
        MemoryStore store;
        FrmMain frame(store, decoder_);
        frame.show();
        const QString path = writePicture("large.bmp", gradient(1500, 1000));
        MenuBarTexts bar(*frame.menuBar());
        FrmDocument* doc = frame.openFile(path);
        QVERIFY(doc != nullptr);
        QStringList percentages = bar.texts.filter(res(ids::PleaseWait));
        QVERIFY2(percentages.size() >= 5, qPrintable(bar.texts.join(" | ")));

        int levelsWhenShown = -1;
        bool windowShown = false;
        connect(&frame.runs(), &RunController::runningChanged, this, [&](bool running) {
            if (!running) return;
            levelsWhenShown = frame.state().undo.UndoCount();
            windowShown = frame.runs().progressWindow() != nullptr &&
                          frame.runs().progressWindow()->isVisible();
        });
        QVERIFY(frame.runEffect(*doc, grayBody()));
        frame.runs().waitForEnd();
        QVERIFY(windowShown);
        QCOMPARE(levelsWhenShown, 0);
        QCOMPARE(int(frame.state().undo.UndoCount()), 1);
    }

    // The global stack may restore another document's picture: the entry
    // says whose, and the status bar says which came back.
    void undoNamesTheDocumentItRestores() {
        MemoryStore store;
        FrmMain frame(store, decoder_);
        FrmDocument* a = frame.openFile(writePicture("a.bmp", gradient(12, 8)));
        FrmDocument* b = frame.openFile(writePicture("b.bmp", gradient(30, 20)));
        QVERIFY(frame.runEffect(*a, grayBody()));
        frame.runs().waitForEnd();
        QCOMPARE(b->undoAction()->text(), res(ids::EditUndo) + " (a.bmp)");
        frame.undo(*b);
        QCOMPARE(b->document().picture.width(), 12);
        QCOMPARE(b->windowTitle(), dir_.filePath("a.bmp"));
        QVERIFY(frame.statusMessage().contains("a.bmp"));
        QVERIFY(!b->undoAction()->isEnabled());
        QCOMPARE(b->undoAction()->text(), res(ids::EditUndo));
    }

    // The kept image: held by the program, not by the document it came from;
    // the merge rows follow it, and a merge is undone like any run.
    void theKeptImageOutlivesItsDocumentAndMergesUndo() {
        MemoryStore store;
        FrmMain frame(store, decoder_);
        FrmDocument* a = frame.openFile(writePicture("a.bmp", gradient(30, 20)));
        FrmDocument* b =
            frame.openFile(writePicture("b.bmp", Surface(12, 8, makePixel(50, 60, 70))));
        auto* addition = a->findChild<QAction*>("mnueditanding4");
        auto* hide = a->findChild<QAction*>("suteganono0");
        auto* exportRow = a->findChild<QAction*>("mnueditanding17");
        QVERIFY(addition && hide && exportRow);
        // The menu's own rows, captioned in English like the merges around them.
        for (const auto& [name, caption] : {std::pair{"mnueditanding0", "Maintenance(&M)"},
                                            {"mnueditanding16", "Annulment(&B)"},
                                            {"mnueditanding17", "Image Export"}}) {
            auto* row = a->findChild<QAction*>(name);
            QVERIFY(row);
            QCOMPARE(row->text(), QString(caption));
        }
        QVERIFY(!addition->isEnabled() && !hide->isEnabled() && !exportRow->isEnabled());
        {
            MessageBoxAnswerer answerer(QMessageBox::Ok);
            b->findChild<QAction*>("mnueditanding0")->trigger();
            QTRY_COMPARE(answerer.texts, QStringList{"画像を保持しました。"});
            QCOMPARE(answerer.titles, QStringList{"画像の保持"});
        }
        QVERIFY(addition->isEnabled() && hide->isEnabled() && exportRow->isEnabled());
        b->closeWindow();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QCOMPARE(frame.state().keep.ComposeImage.width(), 12);

        const Surface before = a->document().picture;
        const EffectEntry& entry = *findEffect("合成　加算");
        const EffectPlan plan = planEffect(entry.dialog, entry.code, defaultControlValues(entry));
        QVERIFY(frame.runEffect(*a, plan.body));
        frame.runs().waitForEnd();
        const Surface& merged = a->document().picture;
        QCOMPARE(merged.at(3, 2), makePixel(3 + 50, 2 + 60, 5 + 70));
        QVERIFY(merged.at(12, 2) == before.at(12, 2) && merged.at(3, 8) == before.at(3, 8));
        frame.undo(*a);
        QVERIFY(a->document().picture == before);

        exportRow->trigger();
        QCOMPARE(frame.documents().size(), 2);
        const FrmDocument* exported = frame.documents().value(0) == a ? frame.documents().value(1)
                                                                      : frame.documents().value(0);
        QVERIFY(exported->document().picture == frame.state().keep.ComposeImage);
        QCOMPARE(qs(exported->document().nameLabel), res(ids::ComposeExportName));
        {
            MessageBoxAnswerer answerer(QMessageBox::Ok);
            frame.discardKeptImage();
            QCOMPARE(answerer.titles, QStringList{"画像の破棄"});
        }
        QVERIFY(frame.state().keep.ComposeImage.empty());
        QVERIFY(!addition->isEnabled() && !exportRow->isEnabled());
    }

    // The view's zoom leaves the picture and its coordinates alone.
    void zoomChangesOnlyTheView() {
        MemoryStore store;
        FrmMain frame(store, decoder_);
        frame.resize(800, 600);
        frame.show();
        FrmDocument* doc = frame.openFile(writePicture("z.bmp", gradient(100, 80)));
        const Surface before = doc->document().picture;
        PictureView& view = doc->pictureView();
        QCOMPARE(view.zoom(), 1.0);
        auto* zoomPanel = frame.findChild<QLabel*>("ZoomPanel");
        QVERIFY(zoomPanel->text().contains("100%"));
        doc->zoomBy(1);
        doc->zoomBy(1);
        QCOMPARE(view.zoom(), 2.0);
        QCOMPARE(view.size(), QSize(200, 160));
        QCOMPARE(view.pictureAt(QPointF(31, 9)), QPoint(15, 4));
        QVERIFY(zoomPanel->text().contains("200%"));
        QMouseEvent move(QEvent::MouseMove, QPointF(31, 9), view.mapToGlobal(QPointF(31, 9)),
                         Qt::NoButton, Qt::NoButton, Qt::NoModifier);
        QApplication::sendEvent(&view, &move);
        const Pixel p = before.at(15, 4);
        QCOMPARE(
            frame.findChild<QLabel*>("PointerPanel")->text(),
            res(ids::StatusPointer).arg(15).arg(4).arg(redOf(p)).arg(greenOf(p)).arg(blueOf(p)));
        doc->zoomToFit();
        QVERIFY(view.width() <= doc->basicArea().maximumViewportSize().width());
        doc->zoomBy(-1);
        doc->setZoom(1.0);
        QCOMPARE(view.size(), QSize(100, 80));
        QVERIFY(doc->document().picture == before);
        QCOMPARE(frame.findChild<QLabel*>("SizePanel")->text(),
                 res(ids::StatusSize).arg(100).arg(80));
    }

    void menusShowTheStandardShortcuts() {
        MemoryStore store;
        FrmMain frame(store, decoder_);
        FrmDocument* doc = frame.openFile(writePicture("k.bmp", gradient(4, 4)));
        const std::pair<int, QString> expected[] = {
            {ids::FileOpen, "Ctrl+O"},  {ids::FileSave, "Ctrl+S"},       {ids::FileNew, "Ctrl+N"},
            {ids::EditUndo, "Ctrl+Z"},  {ids::HelpContents, "F1"},       {ids::FileExit, "Ctrl+Q"},
            {ids::FileClose, "Ctrl+W"}, {ids::ViewZoomActual, "Ctrl+0"},
        };
        for (const auto& [caption, keys] : expected) {
            QAction* found = nullptr;
            for (QMenu* menu : doc->topMenus()) {
                for (QAction* action : menu->actions()) {
                    if (action->text() == res(caption)) found = action;
                }
            }
            QVERIFY2(found != nullptr, qPrintable(res(caption)));
            QCOMPARE(found->shortcut().toString(), keys);
        }
    }
};

QTEST_MAIN(FrameTest)
#include "frame_test.moc"

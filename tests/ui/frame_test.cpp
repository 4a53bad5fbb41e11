// The editor's frame and documents on the offscreen platform.
#include "effects/colour/class_color_op.h"
#include "imagefiles/bitmap_writer.h"
#include "platform/qt_picture_decoder.h"
#include "shell/ui/frm_document.h"
#include "shell/ui/frm_main.h"
#include "shell/ui/frm_picture_save.h"
#include "shell/ui/qt_settings_store.h"
#include "shell/ui/run_controller.h"
#include "shell/ui/ui_text.h"
#include "shell/ui_string_ids.h"

#include <QAbstractButton>
#include <QAction>
#include <QApplication>
#include <QMdiArea>
#include <QMenu>
#include <QMessageBox>
#include <QProcess>
#include <QScrollArea>
#include <QScrollBar>
#include <QTemporaryDir>
#include <QTimer>
#include <QtTest>
#include <atomic>
#include <functional>

using namespace lumiran;

namespace {

// Answers every message box that comes up with the given button and counts them.
class MessageBoxAnswerer : public QObject {
  public:
    explicit MessageBoxAnswerer(QMessageBox::StandardButton answer) : answer_(answer) {
        timer_.setInterval(20);
        connect(&timer_, &QTimer::timeout, this, [this] {
            if (auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget())) {
                titles.append(box->windowTitle());
                texts.append(box->text());
                QAbstractButton* button = box->button(answer_);
                if (button == nullptr) button = box->buttons().value(0);
                if (button != nullptr) button->click();
            }
        });
        timer_.start();
    }
    QStringList titles;
    QStringList texts;

  private:
    QMessageBox::StandardButton answer_;
    QTimer timer_;
};

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
        QVERIFY(frame.state().ProcessingFlag == 1);
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
        QVERIFY(frame.runEffect(*doc, [](EffectInvocation& run) {
            Class_ColorOp effect(run.context);
            effect.ImageGetDiBits(run.keptPicture0);
            effect.Gray_Effect(0, run.rect.left, run.rect.top, run.rect.right, run.rect.bottom);
            effect.ImageSetDiBits(run.keptPicture1);
        }));
        QVERIFY(!doc->menu("mnuEdit")->isEnabled()); // menus are off during a run
        frame.runs().waitForEnd();
        QVERIFY(doc->menu("mnuEdit")->isEnabled());
        QCOMPARE(int(frame.state().undo.UndoCount()), 1);
        const Surface grey = doc->document().picture;
        QVERIFY(!(grey == few));

        const QString eight = dir_.filePath("session8.bmp");
        const QString one = dir_.filePath("session1.bmp");
        QVERIFY(savePictureFile(grey, eight, SaveDepth::Bits8));
        QVERIFY(savePictureFile(grey, one, SaveDepth::Bits1));
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
};

QTEST_MAIN(FrameTest)
#include "frame_test.moc"

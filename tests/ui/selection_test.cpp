// The area tools and the clipboard in the editor, on the offscreen platform.
#include "catalogue/effect_table.h"
#include "effects/colour/class_color_op.h"
#include "imagefiles/bitmap_writer.h"
#include "platform/qt_picture_decoder.h"
#include "shell/area_tool.h"
#include "shell/ui/dialogs/colour_chooser.h"
#include "shell/ui/dialogs/frm_colorset.h"
#include "shell/ui/frm_document.h"
#include "shell/ui/frm_main.h"
#include "shell/ui/picture_view.h"
#include "shell/ui/run_controller.h"
#include "shell/ui/surface_image.h"
#include "shell/ui/ui_text.h"
#include "shell/ui_string_ids.h"
#include "ui_test_support.h"

#include <QAbstractButton>
#include <QAction>
#include <QApplication>
#include <QBuffer>
#include <QClipboard>
#include <QLabel>
#include <QMenu>
#include <QMessageBox>
#include <QMimeData>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTimer>
#include <QtTest>

using namespace lumiran;

namespace {

using ui_testing::MessageBoxAnswerer;

Surface gradient(int width, int height) {
    Surface s(width, height);
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x)
            s.at(x, y) = makePixel(x * 4 % 256, y * 4 % 256, 128);
    }
    return s;
}

void mouse(QWidget* widget, QEvent::Type type, QPoint at, Qt::MouseButton button) {
    const Qt::MouseButtons held = type == QEvent::MouseButtonRelease ? Qt::NoButton : button;
    QMouseEvent event(type, QPointF(at), QPointF(widget->mapToGlobal(at)),
                      type == QEvent::MouseMove ? Qt::NoButton : button, held, Qt::NoModifier);
    QApplication::sendEvent(widget, &event);
}

void dragOn(QWidget* view, QPoint from, QPoint to, Qt::MouseButton button = Qt::LeftButton) {
    mouse(view, QEvent::MouseButtonPress, from, button);
    mouse(view, QEvent::MouseMove, (from + to) / 2, button);
    mouse(view, QEvent::MouseMove, to, button);
    mouse(view, QEvent::MouseButtonRelease, to, button);
}

QByteArray pngOf(const QImage& image) {
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, "PNG");
    return bytes;
}

} // namespace

class SelectionTest : public QObject {
    Q_OBJECT

    QTemporaryDir dir_;
    QtPictureDecoder decoder_;

    FrmDocument* openGradient(FrmMain& frame, int width, int height) {
        const QString path = dir_.filePath(QString("g%1x%2.bmp").arg(width).arg(height));
        saveBmp24(gradient(width, height), path.toStdString());
        return frame.openFile(path);
    }
    static QString toolPanel(FrmMain& frame) {
        return frame.findChild<QLabel*>("ToolPanel")->text();
    }

  private slots:
    void aDragOutsideThePictureEndsAtItsBorderAndTheRightButtonGivesItUp() {
        MemoryStore store;
        FrmMain frame(store, decoder_);
        frame.resize(600, 500);
        frame.show();
        FrmDocument* doc = openGradient(frame, 60, 40);
        PictureView* view = &doc->pictureView();
        doc->ToolsNo_Click(tools_menu::Select);
        QCOMPARE(toolPanel(frame), QString("ﾂｰﾙ:領域選択中"));
        dragOn(view, {10, 8}, {300, 200});
        QCOMPARE(doc->document().area, (AreaRect{10, 8, 60, 40}));
        QCOMPARE(doc->document().ToolsFlag, tools::AreaDrawn);
        QVERIFY(doc->outlineTimer().isActive());
        QVERIFY(view->overlay().outline.has_value());
        QCOMPARE(*view->overlay().outline, QRect(10, 8, 50, 32));

        mouse(view, QEvent::MouseButtonPress, {20, 20}, Qt::RightButton);
        QCOMPARE(doc->document().ToolsFlag, tools::Selecting);
        QVERIFY(!doc->outlineTimer().isActive());

        doc->ToolsNo_Click(tools_menu::EndTool);
        QCOMPARE(toolPanel(frame), res(ids::StatusTool));
    }

    // An effect started with an area drawn right to left fixes it, runs inside
    // it, and the outline runs again afterwards; the outline never drew on
    // the picture.
    void anEffectRunsInsideTheAreaItFixes() {
        MemoryStore store;
        FrmMain frame(store, decoder_);
        frame.show();
        FrmDocument* doc = openGradient(frame, 50, 30);
        const Surface before = doc->document().picture;
        doc->ToolsNo_Click(tools_menu::Select);
        dragOn(&doc->pictureView(), {40, 20}, {10, 5});
        QTest::qWait(400); // a few ticks of the outline
        QVERIFY(doc->document().picture == before);
        // Opening an effect's form fixes the area, as the status shows.
        frame.openEffectDialog(*doc, effectCatalogue().front());
        QCOMPARE(doc->document().ToolsFlag, tools::AreaFixed);
        QCOMPARE(toolPanel(frame), QString("ﾂｰﾙ:領域確定(40,20)  -  (10,5)"));
        doc->ToolsNo_Click(tools_menu::Select);
        dragOn(&doc->pictureView(), {40, 20}, {10, 5});
        QVERIFY(frame.runEffect(*doc, ui_testing::grayBody(1)));
        QVERIFY(!doc->outlineTimer().isActive());
        frame.runs().waitForEnd();
        QCOMPARE(doc->document().ToolsFlag, tools::AreaFixed);
        QCOMPARE(toolPanel(frame), QString("ﾂｰﾙ:領域確定(40,20)  -  (10,5)"));
        QVERIFY(doc->outlineTimer().isActive());
        const Surface& after = doc->document().picture;
        QCOMPARE(after.at(9, 5), before.at(9, 5));
        QVERIFY(after.at(10, 5) != before.at(10, 5));
    }

    void aMoveShowsTheLiftedAreaAndLaysItAtTheDrop() {
        MemoryStore store;
        FrmMain frame(store, decoder_);
        frame.show();
        FrmDocument* doc = openGradient(frame, 50, 30);
        const Surface before = doc->document().picture;
        PictureView* view = &doc->pictureView();
        doc->ToolsNo_Click(tools_menu::Select);
        dragOn(view, {0, 0}, {5, 5});
        doc->ToolsNo_Click(tools_menu::MoveArea);
        QCOMPARE(toolPanel(frame), QString("ﾂｰﾙ:領域移動中"));
        mouse(view, QEvent::MouseButtonPress, {2, 2}, Qt::LeftButton);
        mouse(view, QEvent::MouseMove, {22, 12}, Qt::LeftButton);
        QCOMPARE(view->overlay().lifted.size(), QSize(5, 5));
        QCOMPARE(view->overlay().liftedAt, QPoint(20, 10));
        QVERIFY(doc->document().picture == before);
        mouse(view, QEvent::MouseButtonRelease, {22, 12}, Qt::LeftButton);
        QCOMPARE(int(frame.state().undo.UndoCount()), 1);
        QCOMPARE(view->image().pixel(20, 10) & 0xFFFFFF, before.at(0, 0) & 0xFFFFFF);
        frame.undo(*doc);
        QVERIFY(doc->document().picture == before);
    }

    void anEmptyClipboardGivesTwoDifferentMessages() {
        MemoryStore store;
        FrmMain frame(store, decoder_);
        FrmDocument* doc = openGradient(frame, 10, 10);
        QGuiApplication::clipboard()->setText("no picture here");
        MessageBoxAnswerer answerer;
        frame.PasteAsNewDocument();
        frame.pasteIntoDocument(*doc);
        QCOMPARE(answerer.titles, (QStringList{res(ids::ClipboardEmptyOpenTitle),
                                               res(ids::ClipboardEmptyPasteTitle)}));
        QCOMPARE(answerer.texts,
                 (QStringList{res(ids::ClipboardEmptyOpen), res(ids::ClipboardEmptyPaste)}));
        QVERIFY(answerer.texts[0].endsWith(QString("諸行無常")));
        QCOMPARE(frame.DocumentCount(), 1);
        QCOMPARE(int(frame.state().undo.UndoCount()), 0);
    }

    void aClipboardWithBitmapAndVectorFormsPastesTheBitmap() {
        MemoryStore store;
        FrmMain frame(store, decoder_);
        QImage red(7, 5, QImage::Format_RGB32);
        red.fill(qRgb(255, 0, 0));
        auto* data = new QMimeData;
        data->setData("image/svg+xml", "<svg xmlns='http://www.w3.org/2000/svg' width='9' "
                                       "height='9'><rect width='9' height='9' fill='blue'/></svg>");
        data->setData("image/png", pngOf(red));
        QGuiApplication::clipboard()->setMimeData(data);
        frame.PasteAsNewDocument();
        QCOMPARE(frame.DocumentCount(), 1);
        const Surface& pasted = frame.documents().front()->document().picture;
        QCOMPARE(pasted.width(), 7);
        QCOMPARE(pasted.at(3, 3) & 0xFFFFFF, makePixel(255, 0, 0));

        // The vector form alone is drawn.
        auto* vector = new QMimeData;
        vector->setData("image/svg+xml", data->data("image/svg+xml"));
        QGuiApplication::clipboard()->setMimeData(vector);
        frame.PasteAsNewDocument();
        QCOMPARE(frame.DocumentCount(), 2);
        QCOMPARE(frame.documents().back()->document().picture.at(4, 4) & 0xFFFFFF,
                 makePixel(0, 0, 255));
    }

    void aClipboardPictureBeyondTheLimitsIsRefusedWithAMessage() {
        MemoryStore store;
        FrmMain frame(store, decoder_);
        QImage wide(40000, 1, QImage::Format_Mono);
        wide.fill(0);
        auto* data = new QMimeData;
        data->setData("image/png", pngOf(wide));
        QGuiApplication::clipboard()->setMimeData(data);
        MessageBoxAnswerer answerer;
        frame.PasteAsNewDocument();
        QCOMPARE(frame.DocumentCount(), 0);
        QCOMPARE(answerer.texts, QStringList{res(ids::ClipboardTooLarge)});
    }

    // Copy and paste back with raster flag 7 (xor): black, undone in one step.
    void copyThenPasteByXorGivesBlack() {
        MemoryStore store;
        FrmMain frame(store, decoder_);
        FrmDocument* doc = openGradient(frame, 16, 12);
        const Surface before = doc->document().picture;
        doc->menu("mnuEdit")->findChild<QAction*>("EditCopy")->trigger();
        frame.state().flags.rasterOpFlag = 7;
        doc->menu("mnuEdit")->findChild<QAction*>("EditPaste")->trigger();
        for (const Pixel p : doc->document().picture.pixels())
            QCOMPARE(p & 0xFFFFFF, 0u);
        QCOMPARE(int(frame.state().undo.UndoCount()), 1);
        frame.undo(*doc);
        QVERIFY(doc->document().picture == before);
    }

    // With an area the copy takes the area, and the paste goes to the area.
    void copyAndPasteFollowTheArea() {
        MemoryStore store;
        FrmMain frame(store, decoder_);
        FrmDocument* doc = openGradient(frame, 30, 20);
        const Surface before = doc->document().picture;
        doc->ToolsNo_Click(tools_menu::Select);
        dragOn(&doc->pictureView(), {2, 3}, {6, 8});
        frame.copyToClipboard(*doc);
        const QImage copied = QGuiApplication::clipboard()->image();
        QCOMPARE(copied.size(), QSize(4, 5));
        QCOMPARE(copied.pixel(0, 0) & 0xFFFFFF, before.at(2, 3) & 0xFFFFFF);
        dragOn(&doc->pictureView(), {20, 10}, {30, 20});
        frame.pasteIntoDocument(*doc);
        QCOMPARE(doc->document().picture.at(20, 10), before.at(2, 3));
        // The rest of the larger area takes the background colour; outside it
        // nothing changes.
        QCOMPARE(doc->document().picture.at(24, 10) & 0xFFFFFF, 0u);
        QCOMPARE(doc->document().picture.at(19, 10), before.at(19, 10));
    }

    void theColourPickFollowsThePointerUntilAClickHoldsIt() {
        MemoryStore store;
        FrmMain frame(store, decoder_);
        frame.show();
        FrmDocument* doc = openGradient(frame, 40, 40);
        frame.showColorSet();
        frm_ColorSet* form = frame.colorSetWindow();
        QVERIFY(form != nullptr);
        form->findChild<QPushButton*>("PickDrawing")->click();
        QCOMPARE(int(frame.state().ColorPickMode), 2);
        QCOMPARE(form->findChild<QLabel*>("PickState")->text(), QString("実行中"));
        auto* drawing = form->findChild<ColourChooser*>("DrawingColor");
        PictureView* view = &doc->pictureView();
        mouse(view, QEvent::MouseMove, {10, 20}, Qt::NoButton);
        QCOMPARE(drawing->colour(), (Rgb8{40, 80, 128}));
        mouse(view, QEvent::MouseButtonPress, {10, 20}, Qt::LeftButton);
        QCOMPARE(form->findChild<QLabel*>("PickState")->text(), QString("停止中"));
        QCOMPARE(doc->document().ToolsFlag, tools::None); // no tool took the click
        mouse(view, QEvent::MouseMove, {30, 30}, Qt::NoButton);
        QCOMPARE(drawing->colour(), (Rgb8{40, 80, 128}));
        form->accept();
        QCOMPARE(frame.state().flags.drawingColor, (Rgb8{40, 80, 128}));
        QCOMPARE(int(frame.state().ColorPickMode), 0);
    }
};

QTEST_MAIN(SelectionTest)
#include "selection_test.moc"

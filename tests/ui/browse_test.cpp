// The effect browser: its tree from the document's menus, the page of
// thumbnails, the click into an effect's dialog and its settings.
#include "catalogue/browse_thumbnails.h"
#include "catalogue/ui/effect_dialog.h"
#include "catalogue/ui/effect_texts.h"
#include "catalogue/ui/frm_browse.h"
#include "platform/qt_picture_decoder.h"
#include "shell/ui/frm_document.h"
#include "shell/ui/frm_main.h"
#include "shell/ui/run_controller.h"
#include "shell/ui/surface_image.h"
#include "shell/ui/ui_text.h"
#include "shell/ui_string_ids.h"
#include "ui_test_support.h"

#include <QAction>
#include <QDir>
#include <QLabel>
#include <QMenu>
#include <QSignalSpy>
#include <QTreeWidget>
#include <QtTest>
#include <chrono>
#include <thread>

using namespace lumiran;
using ui_testing::currentDialog;

class BrowseTest : public QObject {
    Q_OBJECT

    QtPictureDecoder decoder_;

    // Opens the browser from a family's own "Browse..." row and waits for its page.
    static FrmBrowse* browse(FrmMain& frame, FrmDocument& doc, const char* menu) {
        QAction* row = doc.findChild<QAction*>(QString(menu) + "Browse");
        if (row == nullptr || !row->isEnabled()) return nullptr;
        row->trigger();
        FrmBrowse* browser = frame.effectBrowser();
        if (browser != nullptr) waitForPage(*browser);
        return browser;
    }

    static bool waitForPage(FrmBrowse& browser) {
        if (!browser.pageBusy()) return true;
        QSignalSpy done(&browser, &FrmBrowse::pageFinished);
        return done.wait(60000);
    }

    static void keep(FrmBrowse& browser, const QString& name) {
        const QString dir = qEnvironmentVariable("LUMIRAN_SCREENSHOT_DIR");
        if (!dir.isEmpty()) browser.grab().save(QDir(dir).filePath(name + ".png"));
    }

  private slots:
    void treeIsTheFamilyMenusWithoutTheirLastTwoRows() {
        MemoryStore store;
        FrmMain frame(store, decoder_);
        FrmDocument* doc = frame.openFile(LUMIRAN_SAMPLE_PATH);
        QVERIFY(doc != nullptr);
        FrmBrowse* browser = browse(frame, *doc, "ColorNo");
        QVERIFY(browser != nullptr);
        QTreeWidget& tree = browser->tree();
        QMenu* effect = doc->menu("mnuEffect");
        int families = 0;
        int separators = 0;
        for (QAction* action : effect->actions()) {
            QMenu* sub = action->menu();
            if (sub == nullptr) continue;
            const EffectFamily* family = findFamily(sub->objectName().toStdString());
            QVERIFY(family != nullptr);
            if (family->browseCategoryId == 0) {
                // The aggregates have no page.
                QVERIFY(tree.findItems(sub->title(), Qt::MatchExactly).isEmpty());
                continue;
            }
            QTreeWidgetItem* root = tree.topLevelItem(families++);
            QVERIFY(root != nullptr);
            QCOMPARE(root->text(0), sub->title());
            const QList<QAction*> rows = sub->actions();
            QCOMPARE(root->childCount(), rows.size() - 2);
            for (int i = 0; i < root->childCount(); ++i) {
                const QString text = root->child(i)->text(0);
                QVERIFY(text != res(ids::EffectBrowse));
                if (rows[i]->isSeparator()) {
                    QCOMPARE(text, QString("-"));
                    ++separators;
                } else {
                    // The menu doubles an ampersand to show one.
                    QCOMPARE(text, rows[i]->text().replace("&&", "&"));
                }
            }
        }
        QCOMPARE(tree.topLevelItemCount(), families);
        QCOMPARE(families, 22);
        QVERIFY(separators > 0);
        // The composition menu's families never appear.
        QVERIFY(tree.findItems(res(ids::EffectBrowse), Qt::MatchExactly | Qt::MatchRecursive)
                    .isEmpty());
        QCOMPARE(browser->pageRoot(), tree.topLevelItem(0));
        QVERIFY(browser->pageRoot()->isExpanded());
    }

    void pageHoldsEachEffectOnTheScaledCopy() {
        MemoryStore store;
        FrmMain frame(store, decoder_);
        FrmDocument* doc = frame.openFile(LUMIRAN_SAMPLE_PATH);
        QVERIFY(doc != nullptr);
        // The thumbnails take the program's calculation type, as a run would.
        frame.state().flags.calculationFlag = 2;
        FrmBrowse* browser = browse(frame, *doc, "ColorNo");
        QVERIFY(browser != nullptr);
        QVERIFY(browser->findChild<QAction*>("mnuCaculationNo2")->isChecked());
        const BrowseSettings& settings = browser->browseSettings();
        const Surface& picture = doc->document().picture;
        const PreviewPlacement place = thumbnailPlacement(settings.imageWidth, settings.imageHeight,
                                                          picture.width(), picture.height());
        QCOMPARE(browser->workCopy().width(), place.width);
        QCOMPARE(browser->workCopy().height(), place.height);
        QCOMPARE(browser->workCopy(), scalePicture(picture, place.width, place.height));

        QTreeWidgetItem* root = browser->pageRoot();
        for (int i = 0; i < std::min(root->childCount(), BrowsePageSize); ++i) {
            const EffectEntry* effect =
                effectOfMenuRow(root->child(i)->data(0, Qt::UserRole).toString().toStdString());
            QVERIFY(effect != nullptr);
            QCOMPARE(browser->caption(i).text(), root->child(i)->text(0));
            ProgramState state;
            state.flags = frame.state().flags;
            const std::optional<Surface> expected =
                browseThumbnail(state, *effect, browser->workCopy());
            QCOMPARE(browser->thumbnail(i).isNull(), !expected.has_value());
            if (expected) QCOMPARE(browser->thumbnail(i), toQImage(*expected));
        }
        keep(*browser, "browse_color");

        // The browser's menus set the program's flags and make the page anew.
        const QImage plain = browser->thumbnail(0);
        browser->setCalculationFlag(1);
        QCOMPARE(int(frame.state().flags.calculationFlag), 1);
        QVERIFY(waitForPage(*browser));
        QVERIFY(!browser->thumbnail(0).isNull());
        QVERIFY(browser->thumbnail(0) != plain);
        browser->setCalculationFlag(0);
        browser->setRasterOpFlag(7);
        QCOMPARE(int(frame.state().flags.rasterOpFlag), 7);
        QVERIFY(browser->findChild<QAction*>("mnuRasterOperationNo7")->isChecked());
        // Every row of the raster menu has a text, the plain copy too.
        for (int flag = 0; flag <= 10; ++flag) {
            QVERIFY(!browser->findChild<QAction*>(QString("mnuRasterOperationNo%1").arg(flag))
                         ->text()
                         .isEmpty());
        }
        QVERIFY(waitForPage(*browser));
        QVERIFY(browser->thumbnail(0) != plain);

        // Another family stops this page and shows its own.
        browser->stepParent(1);
        QCOMPARE(browser->pageRoot(), browser->tree().topLevelItem(1));
        QVERIFY(waitForPage(*browser));
        keep(*browser, "browse_color_table");
    }

    void clickOpensTheDialogOnlyOnAFinishedThumbnail() {
        MemoryStore store;
        FrmMain frame(store, decoder_);
        FrmDocument* doc = frame.openFile(LUMIRAN_SAMPLE_PATH);
        QVERIFY(doc != nullptr);
        FrmBrowse* browser = browse(frame, *doc, "GradationNo");
        QVERIFY(browser != nullptr);
        QTreeWidgetItem* root = browser->pageRoot();
        QCOMPARE(root->text(0), res(findFamily("GradationNo")->browseCategoryId));
        int separator = -1;
        int effect = -1;
        for (int i = 0; i < std::min(root->childCount(), BrowsePageSize); ++i) {
            if (browser->caption(i).text() == "-" && separator < 0) separator = i;
            if (!browser->thumbnail(i).isNull() && effect < 0) effect = i;
        }
        QVERIFY(separator >= 0);
        QVERIFY(effect >= 0);
        // A "-" row and a box past the family's end do nothing.
        browser->thumbnailClicked(separator);
        browser->thumbnailClicked(BrowsePageSize - 1);
        QVERIFY(browser->isVisible());
        QVERIFY(currentDialog() == nullptr);
        keep(*browser, "browse_gradation");

        // Nor does a finished thumbnail while a run holds the editor.
        QVERIFY(frame.runEffect(*doc, [](EffectInvocation& run) {
            while (!run.context.cancelled())
                std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }));
        browser->thumbnailClicked(effect);
        QVERIFY(browser->isVisible());
        QVERIFY(currentDialog() == nullptr);
        frame.runs().cancel();
        frame.runs().waitForEnd();

        const EffectEntry* entry =
            effectOfMenuRow(root->child(effect)->data(0, Qt::UserRole).toString().toStdString());
        QVERIFY(entry != nullptr);
        QTest::mouseClick(&browser->image(effect), Qt::LeftButton);
        EffectDialog* dialog = currentDialog();
        QVERIFY(dialog != nullptr);
        QCOMPARE(dialog->code(), entry->code);
        QCOMPARE(dialog->windowTitle(), qs(entry->windowTitle()));
        QTRY_VERIFY(frame.effectBrowser() == nullptr);
    }

    // Thumbnails draw from the program's one generator, as runs and previews
    // do: a page leaves it advanced, and the next page goes on from there.
    void thumbnailsDrawFromTheProgramsGenerator() {
        MemoryStore store;
        FrmMain frame(store, decoder_);
        FrmDocument* doc = frame.openFile(LUMIRAN_SAMPLE_PATH);
        QVERIFY(doc != nullptr);
        const std::uint32_t start = frame.state().random.state();
        FrmBrowse* browser = browse(frame, *doc, "NoiseEffectNo"); // row 0: Monotone Noise
        QVERIFY(browser != nullptr);
        QVERIFY(frame.state().random.state() != start);
        const QImage first = browser->thumbnail(0);
        QVERIFY(!first.isNull());
        browser->refreshPage();
        QVERIFY(waitForPage(*browser));
        QVERIFY(browser->thumbnail(0) != first);
        browser->close();
    }

    // A box whose effect failed on the small copy has no picture but still
    // opens its effect: only an empty caption or a busy editor stops a click.
    void clickOnAFailedThumbnailOpensItsDialog() {
        MemoryStore store;
        FrmMain frame(store, decoder_);
        FrmDocument* doc = frame.openFile(LUMIRAN_SAMPLE_PATH);
        QVERIFY(doc != nullptr);
        FrmBrowse* browser = browse(frame, *doc, "PatternNo");
        QVERIFY(browser != nullptr);
        // Cycle 4 divides by zero on a copy of 3 x 2 pixels.
        browser->setImageSize(3, 3);
        QVERIFY(waitForPage(*browser));
        const EffectEntry* cycle = findEffect("Cycle 4");
        QTreeWidgetItem* root = browser->pageRoot();
        int failed = -1;
        for (int i = 0; i < std::min(root->childCount(), BrowsePageSize); ++i) {
            if (effectOfMenuRow(root->child(i)->data(0, Qt::UserRole).toString().toStdString()) ==
                cycle)
                failed = i;
        }
        QVERIFY(failed >= 0);
        QVERIFY(browser->thumbnail(failed).isNull());
        QTest::mouseClick(&browser->image(failed), Qt::LeftButton);
        EffectDialog* dialog = currentDialog();
        QVERIFY(dialog != nullptr);
        QCOMPARE(dialog->code(), cycle->code);
        dialog->close();
        QTRY_VERIFY(frame.effectBrowser() == nullptr);
    }

    // Started in English the browser shows no Japanese, opens on the family
    // whose "Browse..." was chosen, and a click runs the row it shows, found
    // by its identity rather than by its English caption.
    void englishBrowserOpensTheFamilyAndTheDialogOfTheClickedRow() {
        ui_testing::InterfaceLanguageEnvironment language("en");
        MemoryStore store;
        FrmMain frame(store, decoder_);
        FrmDocument* doc = frame.openFile(LUMIRAN_SAMPLE_PATH);
        QVERIFY(doc != nullptr);
        for (const char* family : {"ColorNo", "EdgeDetectionNo", "TransformNo"}) {
            FrmBrowse* browser = browse(frame, *doc, family);
            QVERIFY(browser != nullptr);
            QTreeWidgetItem* root = browser->pageRoot();
            QCOMPARE(root->text(0), qs(findFamily(family)->caption));
            for (const QString& text : ui_testing::shownTexts(*browser))
                QVERIFY2(!ui_testing::hasJapanese(text), qPrintable(text));
            keep(*browser, QString("en_browse_%1").arg(family));

            // The last finished thumbnail of the page, away from row 0.
            int clicked = -1;
            for (int i = 0; i < std::min(root->childCount(), BrowsePageSize); ++i) {
                if (!browser->thumbnail(i).isNull()) clicked = i;
            }
            QVERIFY(clicked > 0);
            const EffectEntry* entry = effectOfMenuRow(
                root->child(clicked)->data(0, Qt::UserRole).toString().toStdString());
            QVERIFY(entry != nullptr);
            QCOMPARE(browser->caption(clicked).text(),
                     effectMenuText(*entry, InterfaceLanguage::English).replace("&&", "&"));
            QTest::mouseClick(&browser->image(clicked), Qt::LeftButton);
            EffectDialog* dialog = currentDialog();
            QVERIFY(dialog != nullptr);
            QCOMPARE(dialog->objectName(), dialogObjectName(entry->dialog));
            QCOMPARE(dialog->code(), entry->code);
            QCOMPARE(dialog->windowTitle(), qs(englishEffectName(*entry)));
            dialog->close();
            QTRY_VERIFY(frame.effectBrowser() == nullptr);
            QTRY_VERIFY(currentDialog() == nullptr);
        }
    }

    void effectMenuBrowseOpensTheFirstFamilyAndSettingsRoundTrip() {
        MemoryStore store;
        FrmMain frame(store, decoder_);
        FrmDocument* doc = frame.openFile(LUMIRAN_SAMPLE_PATH);
        QVERIFY(doc != nullptr);
        QAction* row = doc->findChild<QAction*>("Effect1No23");
        QVERIFY(row != nullptr);
        row->trigger();
        FrmBrowse* browser = frame.effectBrowser();
        QVERIFY(browser != nullptr);
        QCOMPARE(browser->pageRoot(), browser->tree().topLevelItem(0));
        browser->setImageSize(60, 40);
        browser->setColours({10, 20, 30}, {200, 210, 220});
        // Stored at the change, not only when the browser closes.
        QCOMPARE(store.get("Effect Browser", "BrowseImageHeight"),
                 std::optional<std::string>("40"));
        QCOMPARE(store.get("Effect Browser", "BrowseCaptionColor"),
                 std::optional<std::string>("14471880"));
        QVERIFY(waitForPage(*browser));
        // The sample's 320 x 240 takes 60 x 45, 2 pixels too high each side
        // of a box 40 high: the height loses 4.
        QCOMPARE(browser->workCopy().width(), 60);
        QCOMPARE(browser->workCopy().height(), 41);
        browser->close();
        QTRY_VERIFY(frame.effectBrowser() == nullptr);
        QCOMPARE(store.get("Effect Browser", "BrowseImageWidth"), std::optional<std::string>("60"));

        row->trigger();
        browser = frame.effectBrowser();
        QVERIFY(browser != nullptr);
        QCOMPARE(browser->browseSettings().imageHeight, 40);
        QCOMPARE(browser->browseSettings().background, (Rgb8{10, 20, 30}));
        QCOMPARE(browser->browseSettings().caption, (Rgb8{200, 210, 220}));
        // Closing the document closes its browser mid-page.
        doc->closeWindow();
        QTRY_VERIFY(frame.effectBrowser() == nullptr);
    }
};

QTEST_MAIN(BrowseTest)
#include "browse_test.moc"

// The main window with the demonstration fullflash open: command states, tabs, popups, the list
// events that show a picture, the lists following the Workspace's selection and marks, copying
// cells, a batch and its progress.
#include <QAbstractItemModelTester>
#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QComboBox>
#include <QContextMenuEvent>
#include <QLabel>
#include <QMenu>
#include <QProgressBar>
#include <QScrollBar>
#include <QSignalSpy>
#include <QTabBar>
#include <QTest>
#include <QTreeView>

#include "canvas_image.h"
#include "glyph_list_model.h"
#include "picture_list_model.h"
#include "preview_widget.h"
#include "test_classes.h"
#include "test_support.h"

namespace korvatek::gui::test {

namespace {

// Right button pressed and released over a row (or the empty area), then the context menu.
void rightClick(QTreeView* list, QPoint at) {
    QTest::mouseClick(list->viewport(), Qt::RightButton, {}, at);
    QContextMenuEvent event(QContextMenuEvent::Mouse, at, list->viewport()->mapToGlobal(at));
    QApplication::sendEvent(list->viewport(), &event);
}

QPoint rowCentre(QTreeView* list, int row) {
    return list->visualRect(list->model()->index(row, 1)).center();
}

// The view's current row (-1 for none), then the rows it shows selected.
QList<int> shownRows(QTreeView* list) {
    QList<int> rows{list->currentIndex().isValid() ? list->currentIndex().row() : -1};
    for (const QModelIndex& selected : list->selectionModel()->selectedRows()) rows << selected.row();
    return rows;
}

}  // namespace

class WindowTest : public QObject {
    Q_OBJECT
private slots:
    void init() {
        m_window = makeWindow();
        m_window->setPopupPresenter([this](QMenu& menu, const QPoint&) { m_popups << menu.objectName(); });
        m_window->show();
        QVERIFY(QTest::qWaitForWindowExposed(m_window.get()));
        m_window->startUp({demoFlashPath()});
        m_popups.clear();
        m_list = m_window->findChild<QTreeView*>("ListView1");
        // Every command's notifications are checked while the tests drive the window.
        new QAbstractItemModelTester(&m_window->pictureModel(), QAbstractItemModelTester::FailureReportingMode::QtTest,
                                     m_window.get());
        new QAbstractItemModelTester(&m_window->glyphModel(), QAbstractItemModelTester::FailureReportingMode::QtTest,
                                     m_window.get());
    }
    void cleanup() { m_window.reset(); }

    void everyItemIsEnabledButThePatchItemsWhileNoPatchIsCollected() {
        const QStringList waiting =
            QString("mnuPopup_SavePatch mnuPopup_DiscardPatch mnuPopup2_SavePatch mnuPopup2_DiscardPatch").split(' ');
        for (const QString& name : waiting) QVERIFY2(!m_window->findChild<QAction*>(name)->isEnabled(), qPrintable(name));
        for (QAction* action : m_window->findChildren<QAction*>())
            if (!waiting.contains(action->objectName())) QVERIFY2(action->isEnabled(), qPrintable(action->objectName()));
    }

    void replacementMarksTheRowAndEnablesThePatch() {
        const QString sameSize = demoPictureGpf2(3);
        QTest::mouseClick(m_list->viewport(), Qt::LeftButton, {}, rowCentre(m_list, 3));
        QSignalSpy changed(&m_window->pictureModel(), &QAbstractItemModel::dataChanged);
        QSignalSpy reset(&m_window->pictureModel(), &QAbstractItemModel::modelReset);
        ModalAnswerer answers;
        answers.filesToChoose = {sameSize};
        m_window->findChild<QAction*>("mnuPopup_LoadGPF")->trigger();
        QCOMPARE(m_window->pictureModel().cellText(3, 8), QStringLiteral("*"));
        // The views hear of the one mark cell, and keep their rows.
        QCOMPARE(changedRanges(changed), QStringList{"3-3,7-7"});
        auto* save = m_window->findChild<QAction*>("mnuPopup_SavePatch");
        QVERIFY(save->isEnabled() && m_window->findChild<QAction*>("mnuPopup_DiscardPatch")->isEnabled());

        const QString patch = freshFolder("patch") + "/pictures.vkp";
        answers.filesToChoose = {patch};
        save->trigger();
        QVERIFY(QFile::exists(patch));
        QCOMPARE(m_window->pictureModel().cellText(3, 8), QString());
        QCOMPARE(changedRanges(changed), (QStringList{"3-3,7-7", "3-3,7-7"}));
        QCOMPARE(reset.count(), 0);
        QVERIFY(!save->isEnabled());
    }

    void fontsTabListsTheGlyphsAndShowsTheChosenOne() {
        auto* fonts = m_window->findChild<QComboBox*>("Ftype");
        auto* glyphs = m_window->findChild<QTreeView*>("ListView2");
        TabStrip1(2);
        QVERIFY(m_list->isHidden() && !glyphs->isHidden() && !fonts->isHidden());
        QCOMPARE(fonts->count(), 3);
        QCOMPARE(fonts->currentIndex(), -1);  // "Font" until one is chosen
        QCOMPARE(glyphs->model()->rowCount(), 0);
        rightClick(glyphs, {40, 40});
        QCOMPARE(m_popups, QStringList());  // an empty list has no popup
        fonts->setFocus();
        QTest::keyClick(fonts, Qt::Key_Down);  // a key chooses the next font, as a click would
        QCOMPARE(fonts->currentIndex(), 0);
        QVERIFY(glyphs->model()->rowCount() > 100);

        QTest::mouseClick(glyphs->viewport(), Qt::LeftButton, {}, rowCentre(glyphs, 40));
        const app::Workspace& ws = m_window->workspace();
        QCOMPARE(ws.preview.source, app::Preview::Source::Glyph);
        QCOMPARE(m_window->findChild<PreviewWidget*>("Picture1")->image().size(),
                 QSize(ws.preview.width, ws.preview.height));
        QCOMPARE(m_window->findChild<QLabel*>("PICinfo")->text(), QString::fromStdString(ws.PICinfo).replace('\r', '\n'));

        rightClick(glyphs, rowCentre(glyphs, 41));
        QCOMPARE(m_popups, QStringList{"mnuPopup2"});
        m_window->findChild<QAction*>("mnuPopup2_CopyColumnHeader7")->trigger();
        QCOMPARE(QGuiApplication::clipboard()->text(), m_window->glyphModel().cellText(41, 7));

        TabStrip1(1);
        QVERIFY(!m_list->isHidden() && glyphs->isHidden() && fonts->isHidden());
    }

    void columnsFitTheirCellsWithoutSidewaysScrolling() {
        QCoreApplication::processEvents();
        QCOMPARE(m_list->horizontalScrollBar()->maximum(), 0);
        const QFontMetrics metrics(m_list->font());
        for (int column = 0; column < 7; ++column)
            for (int row : {0, 10, 1700})
                QVERIFY(m_list->columnWidth(column) >
                        metrics.horizontalAdvance(m_window->pictureModel().cellText(row, column + 1)));
    }

    void aRightClickShowsThePopupForTheRowUnderIt() {
        QTest::mouseClick(m_list->viewport(), Qt::LeftButton, {}, rowCentre(m_list, 0));
        QCOMPARE(m_popups, QStringList());  // never on a left click
        QGuiApplication::clipboard()->setText("something else");
        m_window->findChild<QAction*>("mnuPopup_CopyColumnHeader6")->trigger();
        QCOMPARE(QGuiApplication::clipboard()->text(), QStringLiteral("1B01958"));
        rightClick(m_list, rowCentre(m_list, 4));
        QCOMPARE(m_popups, QStringList{"mnuPopup"});
        // The right button selects the row it is over, so the popup acts on that row.
        QCOMPARE(m_window->workspace().ListView1Selected, 4);
        m_window->findChild<QAction*>("mnuPopup_CopyColumnHeader7")->trigger();
        QCOMPARE(QGuiApplication::clipboard()->text(), m_window->pictureModel().cellText(4, 7));
        // The copy items take their captions from the list columns they copy.
        QCOMPARE(m_window->findChild<QAction*>("mnuPopup2_CopyColumnHeader8")->text(), QStringLiteral("bM0ffset"));
    }

    void theListShowsTheWorkspacesRowWhateverMovesIt() {
        QTest::mouseClick(m_list->viewport(), Qt::LeftButton, {}, rowCentre(m_list, 3));
        const app::Workspace& ws = m_window->workspace();
        QCOMPARE(ws.ShownPicture, std::optional<int>(3));
        QCOMPARE(shownRows(m_list), (QList<int>{3, 3}));
        const RecordTableModel& cells = m_window->pictureModel();
        auto* preview = m_window->findChild<PreviewWidget*>("Picture1");
        QCOMPARE(preview->image(), canvasImage(ws.canvas, cells.cellText(3, 3).toInt(), cells.cellText(3, 4).toInt()));

        m_list->setFocus();
        QTest::keyClick(m_list, Qt::Key_Up);
        QCOMPARE(ws.ShownPicture, std::optional<int>(2));
        QCOMPARE(preview->image().width(), cells.cellText(2, 3).toInt());
        QTest::keyClick(m_list, Qt::Key_End);
        QCOMPARE(ws.ShownPicture, std::optional<int>(1700));
        // A gesture that would leave the list without the Workspace's row changes nothing.
        QTest::keyClick(m_list, Qt::Key_Space, Qt::ControlModifier);
        QCOMPARE(shownRows(m_list), (QList<int>{1700, 1700}));

        // Opening a fullflash clears the Workspace's selection, and the list's with it.
        ModalAnswerer answers;
        answers.filesToChoose = {demoFlashPath()};
        m_window->findChild<QAction*>("mnu_FileOpen")->trigger();
        QCOMPARE(ws.ListView1Selected, -1);
        QCOMPARE(shownRows(m_list), QList<int>{-1});
    }

    void batchMovesTheProgressBarAndKeepsTheWindowPainted() {
        QTest::mouseClick(m_list->viewport(), Qt::LeftButton, {}, rowCentre(m_list, 0));
        auto* bar = m_window->findChild<QProgressBar*>("ProgressBar1");
        bar->setValue(0);
        QList<int> valuesPainted;
        PaintCounter counter(bar, valuesPainted);
        const QString folder = freshFolder("all");
        ModalAnswerer answers;
        answers.filesToChoose = {folder};
        m_window->findChild<QAction*>("mnuPopup_SaveAllGPF")->trigger();
        QVERIFY(QFile::exists(folder + "/0000.gpf2") && QFile::exists(folder + "/1700.gpf2"));
        QVERIFY(!QFile::exists(folder + "/0211.gpf2"));  // the all-zero record has no data to save
        QCOMPARE(bar->value(), 100);
        QVERIFY2(valuesPainted.size() >= 3, "the progress bar was not painted during the walk");
        QVERIFY(valuesPainted.first() < 100);
        // The batch leaves its last row selected, and the list shows it.
        QCOMPARE(m_window->workspace().ListView1Selected, 1700);
        QCOMPARE(shownRows(m_list), (QList<int>{1700, 1700}));
        QCOMPARE(answers.texts.last(), QStringLiteral("Successfully completed"));
    }

private:
    void TabStrip1(int tab) {
        auto* tabs = m_window->findChild<QTabBar*>("TabStrip1");
        QTest::mouseClick(tabs, Qt::LeftButton, {}, tabs->tabRect(tab - 1).center());
    }

    // Counts the progress bar's paints while a command runs, with the value each one showed.
    class PaintCounter : public QObject {
    public:
        PaintCounter(QProgressBar* bar, QList<int>& values) : m_bar(bar), m_values(values) {
            bar->installEventFilter(this);
        }
        bool eventFilter(QObject*, QEvent* event) override {
            if (event->type() == QEvent::Paint) m_values << m_bar->value();
            return false;
        }

    private:
        QProgressBar* m_bar;
        QList<int>& m_values;
    };

    std::unique_ptr<Form1> m_window;
    QTreeView* m_list = nullptr;
    QStringList m_popups;
};

KORVATEK_TEST_CLASS(WindowTest);

}  // namespace korvatek::gui::test

#include "window_test.moc"

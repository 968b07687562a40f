// The pending-changes panel: what waits is listed with its placement, a change removed there
// leaves the patch a fresh session would write, Ctrl+Z and Ctrl+Shift+Z walk through the same
// patches, the preview shows the replacement on request, and a session killed with changes
// pending offers them back at the next start.
#include <QAbstractItemModelTester>
#include <QCheckBox>
#include <QDir>
#include <QDockWidget>
#include <QFile>
#include <QProgressBar>
#include <QTableView>
#include <QTest>
#include <QToolButton>

#include "edit/pixel_edit.h"
#include "edit/picture_files.h"
#include "pending_panel.h"
#include "preview_widget.h"
#include "support/scripted_interface.h"
#include "test_classes.h"
#include "test_support.h"

namespace korvatek::gui::test {

namespace {

struct Change {
    int picture;
    int side;   // 48 moves to free space, 1 stays in place
};

Bytes speckled(int side) {
    edit::PixelGrid grid(side, side);
    for (int y = 0; y < side; ++y)
        for (int x = 0; x < side; ++x) grid.set(x, y, 0xFF000000u | static_cast<edit::Colour>((x * 37 + y * 91) * 2654435761u >> 8));
    return *edit::gridBmp(grid);
}

void replace(app::Workspace& ws, const Change& change) {
    ws.selectPicture(change.picture);
    ws.ListView1_Click();
    ws.applyEditedPicture(speckled(change.side), 0x8A);
}

std::string freshPatch(const std::vector<Change>& changes) {
    app::ScriptedInterface answers;
    app::Workspace session(answers);
    answers.openFiles.push_back(demoFlashPath().toStdString());
    session.mnu_FileOpen();
    for (const Change& c : changes) replace(session, c);
    return session.PicturePatchText;
}

}  // namespace

class PendingTest : public QObject {
    Q_OBJECT
private slots:
    void initTestCase() {
        m_journal = freshFolder(QStringLiteral("pending")) + QStringLiteral("/pending-changes.journal");
        m_window = makeWindow();
        m_window->setJournalPath(m_journal.toStdString());
        m_window->resize(1280, 760);
        m_window->show();
        m_window->startUp({demoFlashPath()});
        m_panel = &m_window->pendingPanel();
        auto* toggle = m_window->findChild<QToolButton*>(QStringLiteral("PendingToggle"));
        QVERIFY(m_window->pendingDock()->isHidden());
        toggle->click();   // the status bar's button opens the panel
        QVERIFY(m_window->pendingDock()->isVisible());
        m_tester = std::make_unique<QAbstractItemModelTester>(&m_panel->model(),
                                                              QAbstractItemModelTester::FailureReportingMode::QtTest);
    }
    void cleanupTestCase() {
        m_tester.reset();
        m_window.reset();
    }

    void removedChangesLeaveAFreshSessionsPatchAndUndoWalksBack() {
        app::Workspace& ws = m_window->workspace();
        const std::vector<Change> all{{1, 48}, {2, 48}, {144, 1}, {145, 48}};
        for (const Change& c : all) m_window->runCommand([&] { replace(ws, c); });
        QCOMPARE(m_panel->model().rowCount(), 4);
        const auto& first = m_panel->model().rows()[0];
        QVERIFY(!first.before.isNull() && !first.after.isNull());
        QVERIFY(first.where.contains(QStringLiteral("0x")));
        QVERIFY(m_panel->gauge()->value() > 0);
        QVERIFY2(m_panel->gauge()->format().contains(QLocale().toString(qulonglong(ws.freeSpaceGauge().used))),
                 qPrintable(m_panel->gauge()->format()));
        const std::string whole = ws.PicturePatchText;
        QCOMPARE(whole, freshPatch(all));

        QTableView* table = m_panel->table();
        table->setFocus();
        table->selectRow(0);
        QTest::keyClick(table, Qt::Key_Delete);
        QCOMPARE(m_panel->model().rowCount(), 3);
        QCOMPARE(ws.PicturePatchText, freshPatch({{2, 48}, {144, 1}, {145, 48}}));
        QVERIFY(!ws.ListView1[1].replaced);

        QTest::keyClick(m_window.get(), Qt::Key_Z, Qt::ControlModifier);
        QCOMPARE(m_panel->model().rowCount(), 4);
        QCOMPARE(ws.PicturePatchText, whole);
        QTest::keyClick(m_window.get(), Qt::Key_Z, Qt::ControlModifier | Qt::ShiftModifier);
        QCOMPARE(m_panel->model().rowCount(), 3);
        QTest::keyClick(m_window.get(), Qt::Key_Z, Qt::ControlModifier);
        QCOMPARE(ws.PicturePatchText, whole);
    }

    void thePreviewShowsTheReplacementOnRequest() {
        m_window->runCommand([&] {
            m_window->workspace().selectPicture(2);
            m_window->workspace().ListView1_Click();
        });
        QCheckBox* toggle = m_window->showReplacementBox();
        QVERIFY(toggle->isVisible());
        auto* preview = m_window->findChild<PreviewWidget*>();
        QCOMPARE(preview->image().size(), QSize(16, 16));
        toggle->setChecked(true);
        QCOMPARE(preview->image().size(), QSize(48, 48));
        QVERIFY(m_window->grab().save(QStringLiteral(KORVATEK_SCREENSHOT_DIR "/pending_panel.png")));
        toggle->setChecked(false);
        QCOMPARE(preview->image().size(), QSize(16, 16));
    }

    void aKilledSessionsChangesComeBackAtTheNextStart() {
        QVERIFY(QFile::exists(m_journal));
        // The first window is never closed properly: its journal is what a kill leaves.
        auto next = makeWindow();
        next->setJournalPath(m_journal.toStdString());
        ModalAnswerer answerer;
        next->startUp({});
        QCOMPARE(answerer.texts.size(), 1);
        QVERIFY2(answerer.texts[0].contains(QStringLiteral("4")), qPrintable(answerer.texts[0]));
        QCOMPARE(next->workspace().PicturePatchText, m_window->workspace().PicturePatchText);
        QCOMPARE(next->pendingPanel().model().rowCount(), 4);

        // Declined: the journal goes, and the start after asks nothing.
        auto declined = makeWindow();
        declined->setJournalPath(m_journal.toStdString());
        answerer.okAnswer = false;
        declined->startUp({});
        QCOMPARE(answerer.texts.size(), 2);
        QVERIFY(!declined->workspace().PatchInProgress);
    }

private:
    QString m_journal;
    std::unique_ptr<Form1> m_window;
    PendingPanel* m_panel = nullptr;
    std::unique_ptr<QAbstractItemModelTester> m_tester;
};

KORVATEK_TEST_CLASS(PendingTest);

}  // namespace korvatek::gui::test

#include "pending_test.moc"

// A long batch on the demonstration fullflash, cancelled midway as a person does it: a click
// on the Cancel beside the progress bar, Esc, or closing the window. The files written before
// stay, whole; the pictures added to the patch stay; no other command starts meanwhile. (The
// window benchmark measures how long the window ever goes without handling its events.)
#include <QDir>
#include <QFile>
#include <QProgressBar>
#include <QPushButton>
#include <QRegularExpression>
#include <QTabBar>
#include <QTest>

#include <algorithm>
#include <functional>
#include <memory>

#include "app/workspace.h"
#include "picture_list_model.h"
#include "support/scripted_interface.h"
#include "test_classes.h"
#include "test_support.h"

namespace korvatek::gui::test {

class BatchCancelTest : public QObject {
    Q_OBJECT
private slots:
    void initTestCase() {
        // Every picture saved by the core alone, uncancelled: what the files of a cancelled run must match.
        m_full = freshFolder(QStringLiteral("full"));
        app::ScriptedInterface answers;
        app::Workspace ws(answers);
        answers.openFiles.push_back(demoFlashPath().toStdString());
        ws.mnu_FileOpen();
        answers.folders.push_back(m_full.toStdString());
        ws.mnuPopup_SaveAllGPF();
        QVERIFY(QFile::exists(m_full + QStringLiteral("/1700.gpf2")));
    }
    void init() {
        m_window = makeWindow();
        m_window->resize(1080, 740);
        m_window->show();
        m_window->startUp({demoFlashPath()});
        QVERIFY(QTest::qWaitForWindowExposed(m_window.get()));
        m_bar = m_window->findChild<QProgressBar*>(QStringLiteral("ProgressBar1"));
        m_cancel = m_window->findChild<QPushButton*>(QStringLiteral("cmdCancelBatch"));
        QVERIFY(m_bar && m_cancel && !m_cancel->isVisible());
    }
    void cleanup() { m_window.reset(); }

    void aSaveAllCancelledMidwayKeepsExactlyTheFilesBefore() {
        const QString stopped = freshFolder(QStringLiteral("stopped"));
        ModalAnswerer answers;
        answers.filesToChoose = {stopped};
        whenBarReaches(30, [&] {
            QVERIFY(m_cancel->isVisible());
            QCOMPARE(m_window->focusWidget(), m_cancel);   // Space or Enter presses it
            QVERIFY(QDir().mkpath(KORVATEK_SCREENSHOT_DIR));
            QVERIFY(m_window->grab().save(QStringLiteral(KORVATEK_SCREENSHOT_DIR "/form1_batch_cancel.png")));
            // Another command meanwhile is held back: the tab strip stays where it is.
            auto* tabs = m_window->findChild<QTabBar*>(QStringLiteral("TabStrip1"));
            QTest::mouseClick(tabs, Qt::LeftButton, {}, tabs->tabRect(1).center());
            QTest::mouseClick(m_cancel, Qt::LeftButton);
        });
        m_window->findChild<QAction*>(QStringLiteral("mnuPopup_SaveAllGPF"))->trigger();

        const int done = cancelledAfter(answers.texts);
        QVERIFY2(done > 300 && done < 1701, qPrintable(answers.texts.join(QLatin1Char('|'))));
        QVERIFY(!answers.texts.contains(QStringLiteral("Successfully completed")));
        const QString last = QStringLiteral("%1.gpf2").arg(done, 4, 10, QLatin1Char('0'));
        QStringList before = QDir(m_full).entryList(QDir::Files, QDir::Name);
        before.erase(std::remove_if(before.begin(), before.end(), [&](const QString& f) { return f >= last; }), before.end());
        QCOMPARE(QDir(stopped).entryList(QDir::Files, QDir::Name), before);
        for (const QString& name : before) QCOMPARE(bytes(stopped + u'/' + name), bytes(m_full + u'/' + name));
        QCOMPARE(m_window->workspace().TabStrip1, 1);
        QVERIFY(!m_cancel->isVisible());
    }

    void aFolderReplacementCancelledByEscKeepsThePicturesAdded() {
        ModalAnswerer answers;
        answers.filesToChoose = {m_full};
        whenBarReaches(5, [this] { QTest::keyClick(m_window.get(), Qt::Key_Escape); });
        m_window->findChild<QAction*>(QStringLiteral("mnuPopup_LoadGPFfolder"))->trigger();
        const int done = cancelledAfter(answers.texts);
        QVERIFY2(done > 0 && done < 1701, qPrintable(answers.texts.join(QLatin1Char('|'))));
        const app::Workspace& ws = m_window->workspace();
        PictureListModel& rows = m_window->pictureModel();
        for (int n = 0; n < 1701; ++n) {
            const bool added = n < done && QFile::exists(m_full + QStringLiteral("/%1.gpf2").arg(n, 4, 10, QLatin1Char('0')));
            QCOMPARE(ws.ListView1[static_cast<std::size_t>(n)].replaced, added);
            QCOMPARE(rows.cellText(n, 8), added ? QStringLiteral("*") : QString());
        }
        QVERIFY(m_window->findChild<QAction*>(QStringLiteral("mnuPopup_SavePatch"))->isEnabled());
    }

    // Closing the window asks the batch to stop; the window stays, and the focus is back where
    // it was.
    void closingTheWindowDuringABatchCancelsIt() {
        auto* list = m_window->findChild<QWidget*>(QStringLiteral("ListView1"));
        list->setFocus();
        ModalAnswerer answers;
        answers.filesToChoose = {freshFolder(QStringLiteral("closed"))};
        bool closed = true;
        whenBarReaches(5, [&] { closed = m_window->close(); });
        m_window->findChild<QAction*>(QStringLiteral("mnuPopup_SaveAllBMP"))->trigger();
        QVERIFY(!closed && m_window->isVisible());
        QVERIFY(cancelledAfter(answers.texts) > 0);
        QCOMPARE(m_window->focusWidget(), list);
        QVERIFY(m_window->close());   // with no batch, closing closes
    }

private:
    // Runs `act` once, inside the batch, when the bar first shows `percent` or more.
    void whenBarReaches(int percent, std::function<void()> act) {
        auto done = std::make_shared<bool>(false);
        connect(m_bar, &QProgressBar::valueChanged, this, [=](int value) {
            if (*done || value < percent) return;
            *done = true;
            act();
        });
    }
    static int cancelledAfter(const QStringList& texts) {
        static const QRegularExpression said(QStringLiteral("^Cancelled after (\\d+) of 1701 pictures\\.$"));
        for (const QString& text : texts)
            if (const auto match = said.match(text); match.hasMatch()) return match.captured(1).toInt();
        return -1;
    }
    static QByteArray bytes(const QString& path) {
        QFile f(path);
        return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
    }

    QString m_full;
    std::unique_ptr<Form1> m_window;
    QProgressBar* m_bar = nullptr;
    QPushButton* m_cancel = nullptr;
};

KORVATEK_TEST_CLASS(BatchCancelTest);

}  // namespace korvatek::gui::test

#include "batch_cancel_test.moc"

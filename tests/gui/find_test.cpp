// The search boxes above the lists: rows that do not meet what is typed are hidden, the
// Workspace's rows and selection stay as they are, and a word that reads as nothing says so.
#include <QComboBox>
#include <QElapsedTimer>
#include <QLabel>
#include <QLineEdit>
#include <QTest>
#include <QTreeView>

#include "test_classes.h"
#include "test_support.h"

namespace korvatek::gui::test {

class FindTest : public QObject {
    Q_OBJECT
private slots:
    void initTestCase() {
        m_window = makeWindow();
        m_window->resize(1080, 740);
        m_window->show();
        m_window->startUp({demoFlashPath()});
        m_list = m_window->findChild<QTreeView*>("ListView1");
        m_find = m_window->findChild<QLineEdit*>("FindPictures");
        QVERIFY(m_find && m_find->isVisible());
    }
    void cleanupTestCase() { m_window.reset(); }

    void picturesBySizeNumberAndDecodability() {
        const app::Workspace& ws = m_window->workspace();
        int small = 0;
        for (const auto& row : ws.ListView1) small += row.width == 16 && row.height == 16;
        QElapsedTimer clock;
        clock.start();
        m_find->setText(QStringLiteral("16x16"));
        qInfo("a search over 1701 rows: %lld ms", clock.elapsed());
        QCOMPARE(shown(), small);
        QVERIFY(m_list->isRowHidden(0, {}));   // 240 x 320

        m_find->setText(QStringLiteral("0009"));
        QCOMPARE(shown(), 1);
        QVERIFY(!m_list->isRowHidden(9, {}));
        QTest::mouseClick(m_list->viewport(), Qt::LeftButton, {}, m_list->visualRect(m_list->model()->index(9, 0)).center());
        QCOMPARE(ws.ListView1Selected, 9);   // the row is the Workspace's row 9

        m_find->setText(QStringLiteral("not-decodable"));
        const int broken = shown();
        m_find->setText(QStringLiteral("decodable"));
        QCOMPARE(shown() + broken, 1701);

        m_find->setText(QStringLiteral("5 battery"));
        QCOMPARE(shown(), 0);
        QVERIFY2(m_find->toolTip().contains(QStringLiteral("battery")), qPrintable(m_find->toolTip()));
        m_find->clear();
        QCOMPARE(shown(), 1701);
    }

    void glyphsByCharacterTyped() {
        m_window->TabStrip1_Click(2);
        auto* fonts = m_window->findChild<QComboBox*>("Ftype");
        fonts->setFocus();
        QTest::keyClick(fonts, Qt::Key_Down);
        auto* find = m_window->findChild<QLineEdit*>("FindGlyphs");
        QVERIFY(find->isVisible() && !m_find->isVisible());
        find->setText(QStringLiteral("A"));
        auto* glyphs = m_window->findChild<QTreeView*>("ListView2");
        int visible = 0;
        for (int row = 0; row < glyphs->model()->rowCount(); ++row) visible += !glyphs->isRowHidden(row, {});
        QCOMPARE(visible, 1);
        QVERIFY(!glyphs->isRowHidden(64, {}));   // code 65
    }

private:
    int shown() const {
        int n = 0;
        for (int row = 0; row < m_list->model()->rowCount(); ++row) n += !m_list->isRowHidden(row, {});
        return n;
    }
    std::unique_ptr<Form1> m_window;
    QTreeView* m_list = nullptr;
    QLineEdit* m_find = nullptr;
};

KORVATEK_TEST_CLASS(FindTest);

}  // namespace korvatek::gui::test

#include "find_test.moc"

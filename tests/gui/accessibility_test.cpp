// What a screen reader and a keyboard user get from the main window on the demonstration
// fullflash: rows and the preview read as sentences in the interface language, every widget
// named, Tab in the order the eye reads, and the list popups opened from the keyboard.
#include <QComboBox>
#include <QContextMenuEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QProgressBar>
#include <QPushButton>
#include <QTabBar>
#include <QTest>
#include <QTreeView>

#include "glyph_list_model.h"
#include "picture_list_model.h"
#include "preview_widget.h"
#include "test_classes.h"
#include "test_support.h"

namespace korvatek::gui::test {

class AccessibilityTest : public QObject {
    Q_OBJECT
private slots:
    void init() {
        m_window = makeWindow();
        m_window->resize(1080, 740);
        m_window->show();
        m_window->startUp({demoFlashPath()});
        m_window->setPopupPresenter([this](QMenu& menu, const QPoint&) { m_popups << menu.objectName(); });
        m_pictures = m_window->findChild<QTreeView*>(QStringLiteral("ListView1"));
        m_glyphs = m_window->findChild<QTreeView*>(QStringLiteral("ListView2"));
        m_preview = m_window->findChild<PreviewWidget*>(QStringLiteral("Picture1"));
    }
    void cleanup() { m_window.reset(); }

    void rowsAndThePreviewReadAsSentences() {
        QCOMPARE(spoken(m_window->pictureModel(), 0, 0), QStringLiteral("Picture 0, 240 by 320, 16-bit compressed"));
        QCOMPARE(spoken(m_window->pictureModel(), 3, 0), QStringLiteral("Picture 3, 16 by 16, 8-bit"));
        QCOMPARE(spoken(m_window->pictureModel(), 5, 0), QStringLiteral("Picture 5, 13 by 11, type A00 unknown"));
        QCOMPARE(spoken(m_window->pictureModel(), 5, 2), QStringLiteral("13"));   // other cells say themselves
        QCOMPARE(m_preview->accessibleDescription(), QStringLiteral("Nothing shown"));
        m_pictures->setCurrentIndex(m_window->pictureModel().index(1, 0));
        QCOMPARE(m_preview->accessibleDescription(), spoken(m_window->pictureModel(), 1, 0));

        // A replaced picture's mark reads as words.
        ModalAnswerer answers;
        answers.filesToChoose = {demoPictureGpf2(1)};
        m_window->findChild<QAction*>(QStringLiteral("mnuPopup_LoadGPF"))->trigger();
        QCOMPARE(spoken(m_window->pictureModel(), 1, 7), QStringLiteral("replaced, waiting in the patch"));

        m_window->TabStrip1_Click(2);
        auto* fonts = m_window->findChild<QComboBox*>(QStringLiteral("Ftype"));
        fonts->setFocus();
        QTest::keyClick(fonts, Qt::Key_Down);
        m_glyphs->setCurrentIndex(m_window->glyphModel().index(64, 0));
        // The row gives the bitmap's size, the preview the cell it shows.
        QCOMPARE(spoken(m_window->glyphModel(), 64, 0), QStringLiteral("Glyph 65, 10 by 14"));
        QCOMPARE(m_preview->accessibleDescription(), QStringLiteral("Glyph 65, 12 by 18"));

        // Another language: the same rows in its words.
        m_window->workspace().applyLanguage(1);
        m_window->retranslate();
        QCOMPARE(spoken(m_window->pictureModel(), 0, 0), QStringLiteral("Картинка 0, 240 на 320, 16 бит, сжатая"));
        QCOMPARE(m_preview->accessibleDescription(), QStringLiteral("Символ 65, 12 на 18"));
        QCOMPARE(m_pictures->accessibleName(), QStringLiteral("Список картинок"));
    }

    void everyWidgetIsNamedTabFollowsTheEyeAndThePopupsOpenFromTheKeyboard() {
        for (const char* name : {"ListView1", "ListView2", "Picture1", "PICinfo", "Ftype", "ProgressBar1", "cmdCancelBatch"})
            QVERIFY2(!m_window->findChild<QWidget*>(QLatin1String(name))->accessibleName().isEmpty(), name);
        const QStringList wanted{"TabStrip1", "Ftype", "FindPictures", "FindGlyphs", "ListView1", "ListView2", "PICinfo"};
        QStringList order;
        QWidget* at = m_window->findChild<QWidget*>(QStringLiteral("TabStrip1"));
        for (int step = 0; step < 200 && order.size() < wanted.size(); ++step, at = at->nextInFocusChain())
            if (wanted.contains(at->objectName()) && !order.contains(at->objectName())) order << at->objectName();
        QCOMPARE(order, wanted);
        QVERIFY(m_window->findChild<QLabel*>(QStringLiteral("PICinfo"))->focusPolicy() & Qt::TabFocus);

        m_pictures->setCurrentIndex(m_window->pictureModel().index(2, 0));
        QTest::keyClick(m_pictures, Qt::Key_F10, Qt::ShiftModifier);
        QTest::keyClick(m_pictures, Qt::Key_F10);   // F10 alone is not the popup's key
        // The context menu key arrives from the platform as a keyboard context menu event.
        QContextMenuEvent menuKey(QContextMenuEvent::Keyboard, QPoint(1, 1), m_glyphs->mapToGlobal(QPoint(1, 1)));
        QCoreApplication::sendEvent(m_glyphs, &menuKey);   // an empty list has no popup
        m_window->TabStrip1_Click(2);
        auto* fonts = m_window->findChild<QComboBox*>(QStringLiteral("Ftype"));
        fonts->setFocus();
        QTest::keyClick(fonts, Qt::Key_Down);
        m_glyphs->setCurrentIndex(m_window->glyphModel().index(0, 0));
        QCoreApplication::sendEvent(m_glyphs, &menuKey);
        QCOMPARE(m_popups, (QStringList{"mnuPopup", "mnuPopup2"}));
    }

private:
    static QString spoken(const RecordTableModel& model, int row, int column) {
        return model.data(model.index(row, column), Qt::AccessibleTextRole).toString();
    }

    std::unique_ptr<Form1> m_window;
    QTreeView* m_pictures = nullptr;
    QTreeView* m_glyphs = nullptr;
    PreviewWidget* m_preview = nullptr;
    QStringList m_popups;
};

KORVATEK_TEST_CLASS(AccessibilityTest);

}  // namespace korvatek::gui::test

#include "accessibility_test.moc"

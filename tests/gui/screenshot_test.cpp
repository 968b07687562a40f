// Renders the window as a person sees it, for a look: the demonstration fullflash open with the
// large picture selected, a small one enlarged, the Fonts tab with a glyph, the picture popup
// and the options dialog, as PNG files in <build>/screenshots.
#include <QComboBox>
#include <QDir>
#include <QMenu>
#include <QTabBar>
#include <QTest>
#include <QTreeView>

#include "options_dialog.h"
#include "picture_list_model.h"
#include "test_classes.h"
#include "test_support.h"

namespace korvatek::gui::test {

class ScreenshotTest : public QObject {
    Q_OBJECT
private slots:
    void initTestCase() {
        QVERIFY(QDir().mkpath(KORVATEK_SCREENSHOT_DIR));
        m_window = makeWindow();
        m_window->resize(1080, 740);
        m_window->show();
        QVERIFY(QTest::qWaitForWindowExposed(m_window.get()));
        m_window->startUp({demoFlashPath()});
    }
    void cleanupTestCase() { m_window.reset(); }

    void picturesTab() {
        auto* list = m_window->findChild<QTreeView*>("ListView1");
        list->setCurrentIndex(m_window->pictureModel().index(0, 0));
        save(m_window.get(), "form1_pictures.png");
    }

    void smallPictureEnlarged() {
        // A 32 x 32 icon: whole-number zoom, every pixel a sharp square.
        auto* list = m_window->findChild<QTreeView*>("ListView1");
        list->setCurrentIndex(m_window->pictureModel().index(219, 0));
        save(m_window.get(), "form1_icon.png");
    }

    void fontsTab() {
        auto* tabs = m_window->findChild<QTabBar*>("TabStrip1");
        QTest::mouseClick(tabs, Qt::LeftButton, {}, tabs->tabRect(1).center());
        auto* fonts = m_window->findChild<QComboBox*>("Ftype");
        fonts->setFocus();
        QTest::keyClick(fonts, Qt::Key_Down);
        auto* glyphs = m_window->findChild<QTreeView*>("ListView2");
        glyphs->setCurrentIndex(glyphs->model()->index(64, 0));  // "A"
        save(m_window.get(), "form1_fonts.png");
        QTest::mouseClick(tabs, Qt::LeftButton, {}, tabs->tabRect(0).center());
    }

    void picturePopup() {
        auto* popup = m_window->findChild<QMenu*>("mnuPopup");
        popup->popup(m_window->mapToGlobal(QPoint(200, 200)));
        QVERIFY(QTest::qWaitForWindowExposed(popup));
        save(popup, "popup_pictures.png");
        popup->hide();
    }

    void optionsDialog() {
        auto dialog = m_window->makeOptionsDialog();
        dialog->show();
        QVERIFY(QTest::qWaitForWindowExposed(dialog.get()));
        save(dialog.get(), "options.png");
    }

private:
    // Grabs once the window has laid itself out, as a person would see it.
    void save(QWidget* widget, const char* name) {
        QCoreApplication::processEvents();
        save(widget->grab(), name);
    }
    static void save(const QPixmap& shot, const char* name) {
        const QString path = QStringLiteral(KORVATEK_SCREENSHOT_DIR "/") + QLatin1String(name);
        QVERIFY2(shot.save(path), qPrintable(path));
        qInfo("%s", qPrintable(path));
    }

    std::unique_ptr<Form1> m_window;
};

KORVATEK_TEST_CLASS(ScreenshotTest);

}  // namespace korvatek::gui::test

#include "screenshot_test.moc"

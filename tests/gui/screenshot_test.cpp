// The window as a person sees it with the demonstration fullflash open: the picture list filled
// soon after start-up and the large picture shown, then the Fonts tab with a glyph. Each view is
// saved as a PNG in <build>/screenshots for a look, once it shows what it should.
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QDir>
#include <QElapsedTimer>
#include <QTabBar>
#include <QTest>
#include <QTreeView>

#include "picture_list_model.h"
#include "preview_widget.h"
#include "text_preview.h"
#include "test_classes.h"
#include "test_support.h"

namespace korvatek::gui::test {

class ScreenshotTest : public QObject {
    Q_OBJECT
private slots:
    void initTestCase() {
        QVERIFY(QDir().mkpath(KORVATEK_SCREENSHOT_DIR));
        demoFlashPath();
        QElapsedTimer clock;
        clock.start();
        m_window = makeWindow();
        m_window->resize(1080, 740);
        m_window->show();
        m_window->startUp({demoFlashPath()});
        QCoreApplication::processEvents();
        QCOMPARE(m_window->pictureModel().rowCount(), 1701);
        qInfo("start-up to a filled picture list: %lld ms", clock.elapsed());
        QVERIFY2(clock.elapsed() < 5000, "start-up took longer than five seconds");
        QVERIFY(QTest::qWaitForWindowExposed(m_window.get()));
    }
    void cleanupTestCase() { m_window.reset(); }

    void picturesTabShowsTheListAndTheSelectedPicture() {
        auto* list = m_window->findChild<QTreeView*>("ListView1");
        QVERIFY(list->isVisible());
        list->setCurrentIndex(m_window->pictureModel().index(0, 0));
        QCoreApplication::processEvents();
        QCOMPARE(m_window->findChild<PreviewWidget*>("Picture1")->image().size(), QSize(240, 320));
        save("form1_pictures.png");
    }

    void fontsTabShowsTheGlyphsOfTheChosenFont() {
        auto* tabs = m_window->findChild<QTabBar*>("TabStrip1");
        QTest::mouseClick(tabs, Qt::LeftButton, {}, tabs->tabRect(1).center());
        auto* fonts = m_window->findChild<QComboBox*>("Ftype");
        fonts->setFocus();
        QTest::keyClick(fonts, Qt::Key_Down);
        auto* glyphs = m_window->findChild<QTreeView*>("ListView2");
        QVERIFY(glyphs->isVisible());
        QVERIFY(glyphs->model()->rowCount() > 64);
        glyphs->setCurrentIndex(glyphs->model()->index(64, 0));  // "A"
        QCoreApplication::processEvents();
        const QImage& glyph = m_window->findChild<PreviewWidget*>("Picture1")->image();
        QCOMPARE(glyph.size(), QSize(12, 18));  // the A of font 0, not the picture shown before
        save("form1_fonts.png");
    }

    // The text preview under the glyph list draws the typed line with the chosen font, and
    // names what the font lacks.
    void theTextPreviewDrawsTheTypedLine() {
        auto* preview = m_window->findChild<TextPreview*>("TextPreview");
        QVERIFY(preview && preview->isVisible());
        QTest::keyClicks(preview->textBox(), QStringLiteral("Hello "));
        preview->textBox()->insert(QStringLiteral("Ё"));   // typed through the input method
        const QImage& line = preview->image();
        QVERIFY(line.height() >= 18);   // at least the A's cell, which the glyph preview showed
        int ink = 0;
        for (int y = 0; y < line.height(); ++y)
            for (int x = 0; x < line.width(); ++x) ink += line.pixel(x, y) == 0xFF000000u;
        QVERIFY2(ink > 5 * 20 && line.width() > 6 * 10, "five letters and a space");
        const auto* missing = m_window->findChild<QLabel*>("TextPreviewMissing");
        QVERIFY2(missing->text().endsWith(QStringLiteral(": Ё")), qPrintable(missing->text()));
        save("form1_text_preview.png");
    }

private:
    void save(const char* name) {
        QCoreApplication::processEvents();
        const QString path = QStringLiteral(KORVATEK_SCREENSHOT_DIR "/") + QLatin1String(name);
        QVERIFY2(m_window->grab().save(path), qPrintable(path));
    }

    std::unique_ptr<Form1> m_window;
};

KORVATEK_TEST_CLASS(ScreenshotTest);

}  // namespace korvatek::gui::test

#include "screenshot_test.moc"

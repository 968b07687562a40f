// Files dropped on the window, built as the desktop builds them (QMimeData with file URLs): a
// fullflash opens; a picture file on a row replaces that picture, a BMP on a glyph row that
// glyph; files named by number replace their pictures, with one summary and the type asked once.
#include <QApplication>
#include <QComboBox>
#include <QDropEvent>
#include <QFile>
#include <QMenu>
#include <QMimeData>
#include <QTest>
#include <QTimer>
#include <QTreeView>
#include <QUrl>

#include "base/file_io.h"
#include "edit/font_edits.h"
#include "edit/picture_files.h"
#include "test_classes.h"
#include "test_support.h"

namespace korvatek::gui::test {

class DropTest : public QObject {
    Q_OBJECT
private slots:
    void init() {
        m_window = makeWindow();
        m_window->resize(1080, 740);
        m_window->show();
    }
    void cleanup() { m_window.reset(); }

    void aFullflashDroppedOnTheWindowOpens() {
        drop(m_window.get(), {demoFlashPath()}, {20, 200});
        QCOMPARE(m_window->workspace().ListView1.size(), std::size_t{1701});
    }

    void aContainerOnARowReplacesThatPicture() {
        drop(m_window.get(), {demoFlashPath()}, {20, 200});
        auto* list = m_window->findChild<QTreeView*>("ListView1");
        list->scrollToTop();
        const QPoint rowThree = list->visualRect(list->model()->index(3, 0)).center();
        drop(list->viewport(), {copyNamed(demoPictureGpf2(3), "any name.gpf2")}, rowThree);
        QVERIFY(m_window->workspace().ListView1[3].replaced);
        QCOMPARE(m_window->workspace().ListView1Selected, 3);
    }

    void filesNamedByNumberAreReplacedWithOneSummary() {
        drop(m_window.get(), {demoFlashPath()}, {20, 200});
        const QString bmp = freshFolder(QStringLiteral("dropped")) + QStringLiteral("/0010.bmp");
        QVERIFY(app::writeFile(bmp.toStdString(), *edit::gridBmp(edit::PixelGrid(16, 16, 0xFF3366CC))).ok());
        const QString gpf = copyNamed(demoPictureGpf2(1), "9.gpf2");
        const QString unnamed = copyNamed(demoPictureGpf2(1), "notes.gpf2");
        ModalAnswerer answers;
        chooseTarget(QStringLiteral("16"));
        drop(m_window.get(), {gpf, bmp, unnamed}, {600, 600});
        const app::Workspace& ws = m_window->workspace();
        QVERIFY(ws.ListView1[9].replaced && ws.ListView1[10].replaced);
        QCOMPARE(answers.texts, QStringList{QStringLiteral("Pictures replaced: 2 of 3\nnotes.gpf2: its name is not a picture number")});
        QCOMPARE(ws.picture.typeCode, 0x88);   // the BMP was stored as the type chosen
    }

    void aBitmapOnAGlyphReplacesIt() {
        drop(m_window.get(), {demoFlashPath()}, {20, 200});
        app::Workspace& ws = m_window->workspace();
        m_window->TabStrip1_Click(2);
        auto* fonts = m_window->findChild<QComboBox*>("Ftype");
        fonts->setFocus();
        QTest::keyClick(fonts, Qt::Key_Down);   // font 0, as a person chooses it
        QCoreApplication::processEvents();
        const QString bmp = freshFolder(QStringLiteral("glyph")) + QStringLiteral("/a.bmp");
        QVERIFY(app::writeFile(bmp.toStdString(), *edit::gridBmp(edit::glyphCellGrid(ws.firmware->bytes(), ws.ListView2[64]))).ok());
        auto* glyphs = m_window->findChild<QTreeView*>("ListView2");
        glyphs->scrollTo(glyphs->model()->index(64, 0));
        ModalAnswerer answers;
        drop(glyphs->viewport(), {bmp}, glyphs->visualRect(glyphs->model()->index(64, 0)).center());
        QCOMPARE(answers.texts, QStringList());
        QVERIFY(ws.ListView2[64].replaced);
    }

    void theRowUnderADragIsOutlined() {
        m_window->startUp({demoFlashPath()});
        auto* list = m_window->findChild<QTreeView*>("ListView1");
        const QPoint at = list->visualRect(list->model()->index(5, 0)).center();
        QMimeData mime;
        mime.setUrls({QUrl::fromLocalFile(demoPictureGpf2(5))});
        QDragEnterEvent enter(at, Qt::CopyAction, &mime, Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(list->viewport(), &enter);
        QDragMoveEvent move(at, Qt::CopyAction, &mime, Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(list->viewport(), &move);
        auto* mark = list->viewport()->findChild<QWidget*>("dropMark");
        QVERIFY(mark && mark->isVisible());
        QVERIFY(mark->geometry().contains(at));
        QVERIFY(m_window->grab().save(QStringLiteral(KORVATEK_SCREENSHOT_DIR "/drop.png")));
        QDragLeaveEvent leave;
        QCoreApplication::sendEvent(list->viewport(), &leave);
        QVERIFY(!mark->isVisible());
    }

private:
    static void drop(QWidget* target, const QStringList& files, QPoint at) { QVERIFY(dropFiles(target, files, at)); }
    static QString copyNamed(const QString& from, const char* name) {
        const QString to = freshFolder(QStringLiteral("named")) + QLatin1Char('/') + QLatin1String(name);
        QFile::copy(from, to);
        return to;
    }
    // Answers the question of the type with the item `name`, from the keyboard.
    void chooseTarget(const QString& name) {
        QTimer::singleShot(50, this, [name] {
            auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
            QVERIFY(menu);
            for (QAction* action : menu->actions())
                if (action->text() == name) menu->setActiveAction(action);
            QTest::keyClick(menu, Qt::Key_Return);
        });
    }

    std::unique_ptr<Form1> m_window;
};

KORVATEK_TEST_CLASS(DropTest);

}  // namespace korvatek::gui::test

#include "drop_test.moc"

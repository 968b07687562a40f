// The glyph editor from the keyboard: drawing at the cursor, shapes from one Space to the
// next, moving the ink, undo and redo, the cell's size, and Apply through the glyph popup.
#include <QApplication>
#include <QComboBox>
#include <QDir>
#include <QSpinBox>
#include <QTest>
#include <QTimer>

#include "edit/font_edits.h"
#include "pixel_editor.h"
#include "test_classes.h"
#include "test_support.h"

namespace korvatek::gui::test {

class EditorTest : public QObject {
    Q_OBJECT
private slots:
    void initTestCase() {
        m_window = makeWindow();
        m_window->startUp({demoFlashPath()});
        m_window->workspace().Ftype_Click(0);
        m_window->workspace().selectGlyph(64);   // the A
    }
    void cleanupTestCase() { m_window.reset(); }

    void theKeyboardDrawsShiftsAndUndoes() {
        GlyphEditorDialog dialog(m_window->workspace());
        dialog.show();
        dialog.activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(&dialog));   // the shortcuts belong to the active window
        PixelGridWidget* grid = dialog.editor();
        const edit::PixelGrid start = grid->grid();
        QCOMPARE(start, edit::glyphCellGrid(m_window->workspace().firmware->bytes(), m_window->workspace().ListView2[64]));
        grid->setFocus();
        QTest::keyClick(grid, Qt::Key_Space);   // the pencil at (0, 0): paper there, so ink
        QCOMPARE(grid->grid().at(0, 0), edit::kInk);
        QTest::keyClick(grid, Qt::Key_Space);   // and back
        QCOMPARE(grid->grid().at(0, 0), edit::kPaper);

        grid->setTool(DrawTool::Line);
        QTest::keyClick(grid, Qt::Key_Space);   // from (0, 0) ...
        for (int i = 0; i < 3; ++i) QTest::keyClick(grid, Qt::Key_Down);
        QTest::keyClick(grid, Qt::Key_Space);   // ... to (0, 3)
        for (int y = 0; y <= 3; ++y) QCOMPARE(grid->grid().at(0, y), edit::kInk);

        edit::PixelGrid drawn = grid->grid();
        QTest::keyClick(grid, Qt::Key_Right, Qt::ShiftModifier);
        edit::shift(drawn, 1, 0, edit::kPaper);
        QCOMPARE(grid->grid(), drawn);
        for (int i = 0; i < 4; ++i) QTest::keyClick(grid, Qt::Key_Z, Qt::ControlModifier);
        QCOMPARE(grid->grid(), start);
        QTest::keyClick(grid, Qt::Key_Z, Qt::ControlModifier | Qt::ShiftModifier);
        QCOMPARE(grid->grid().at(0, 0), edit::kInk);

        // The size boxes resize the cell, keeping its top left, as one step to undo.
        const auto boxes = dialog.findChildren<QSpinBox*>();
        QCOMPARE(boxes.size(), 2);
        boxes[0]->setValue(start.width + 3);
        emit boxes[0]->editingFinished();
        QCOMPARE(grid->grid().width, start.width + 3);
        grid->undo();
        QCOMPARE(grid->grid().width, start.width);
        QCOMPARE(boxes[0]->value(), start.width);

        QDir().mkpath(KORVATEK_SCREENSHOT_DIR);
        QVERIFY(dialog.grab().save(QStringLiteral(KORVATEK_SCREENSHOT_DIR "/glyph_editor.png")));
    }

    // Apply from the popup queues the edited glyph: the row is marked and the glyph collected
    // with the bitmap of the edited cell.
    void applyQueuesTheEditedGlyph() {
        app::Workspace& ws = m_window->workspace();
        QTimer::singleShot(0, this, [] {
            auto* dialog = qobject_cast<GlyphEditorDialog*>(QApplication::activeModalWidget());
            QVERIFY(dialog);
            dialog->editor()->change([](edit::PixelGrid& g) { edit::mirror(g, true); });
            dialog->accept();
        });
        m_window->editGlyph();
        QVERIFY(ws.ListView2[64].replaced);
        QCOMPARE(ws.collectedGlyphs.size(), std::size_t{1});
        QCOMPARE(ws.collectedGlyphs[0].number, 65);
    }

    // The picture editor draws in colour, picks colours, and shows the pixels as the chosen
    // type will store them; Apply from the popup queues the picture.
    void thePictureEditorShowsWhatWillBeStored() {
        app::Workspace& ws = m_window->workspace();
        ws.selectPicture(1);
        ws.ListView1_Click();
        PictureEditorDialog dialog(ws);
        dialog.show();
        dialog.activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(&dialog));
        PixelGridWidget* grid = dialog.editor();
        QCOMPARE(QSize(grid->grid().width, grid->grid().height), QSize(16, 16));
        const edit::Colour corner = grid->grid().at(15, 15);
        grid->setFocus();
        QTest::keyClick(grid, Qt::Key_K);   // the picker
        for (int i = 0; i < 15; ++i) QTest::keyClick(grid, Qt::Key_Right), QTest::keyClick(grid, Qt::Key_Down);
        QTest::keyClick(grid, Qt::Key_Space);
        QCOMPARE(grid->ink(), corner);
        grid->setInk(0xFF3366CC);
        QTest::keyClick(grid, Qt::Key_P);
        QTest::keyClick(grid, Qt::Key_Space);
        QCOMPARE(grid->grid().at(15, 15), edit::Colour{0xFF3366CC});

        dialog.targetBox()->setCurrentIndex(0);   // one bit: black and white only
        QCOMPARE(dialog.targetType(), 0x01);
        const QImage& oneBit = dialog.storedImage();
        QCOMPARE(oneBit.size(), QSize(16, 16));
        for (int y = 0; y < 16; ++y)
            for (int x = 0; x < 16; ++x) QVERIFY(oneBit.pixel(x, y) == 0xFF000000u || oneBit.pixel(x, y) == 0xFFFFFFFFu);
        dialog.targetBox()->setCurrentIndex(3);
        QCOMPARE(dialog.storedImage().pixel(0, 0), QRgb(grid->grid().at(0, 0)));   // 24 bits keep it
        QVERIFY(dialog.grab().save(QStringLiteral(KORVATEK_SCREENSHOT_DIR "/picture_editor.png")));

        QTimer::singleShot(0, this, [] {
            auto* editor = qobject_cast<PictureEditorDialog*>(QApplication::activeModalWidget());
            QVERIFY(editor);
            editor->editor()->change([](edit::PixelGrid& g) { edit::mirror(g, true); });
            editor->accept();
        });
        m_window->editPicture();
        QVERIFY(ws.ListView1[1].replaced);
    }

private:
    std::unique_ptr<Form1> m_window;
};

KORVATEK_TEST_CLASS(EditorTest);

}  // namespace korvatek::gui::test

#include "editor_test.moc"

// The glyph editor from the keyboard: drawing at the cursor, shapes from one Space to the
// next, moving the ink, undo and redo, the cell's size, and Apply through the glyph popup.
#include <QApplication>
#include <QDir>
#include <QSpinBox>
#include <QTest>
#include <QTimer>

#include "edit/font_edits.h"
#include "glyph_editor.h"
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

private:
    std::unique_ptr<Form1> m_window;
};

KORVATEK_TEST_CLASS(EditorTest);

}  // namespace korvatek::gui::test

#include "editor_test.moc"

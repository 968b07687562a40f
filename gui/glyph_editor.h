#pragma once
// The glyph editor: the glyph's cell enlarged, drawn on with the mouse or the keyboard, and
// "Apply", which hands the Workspace the BMP of the edited cell, exactly as if that cell had
// been saved as a BMP and loaded from the menu.

#include <QDialog>
#include <QWidget>

#include <optional>

#include "app/workspace.h"
#include "edit/pixel_edit.h"

class QSpinBox;

namespace korvatek::gui {

enum class DrawTool { Pencil, Eraser, Line, Rectangle, Fill };

// The grid enlarged, one square a pixel, a keyboard cursor, strokes with undo.
class PixelGridWidget : public QWidget {
    Q_OBJECT
public:
    explicit PixelGridWidget(QWidget* parent = nullptr);

    void setGrid(const edit::PixelGrid& grid);
    const edit::PixelGrid& grid() const { return m_grid; }
    void setTool(DrawTool tool) { m_tool = tool; m_anchor.reset(); }
    QPoint cursorCell() const { return m_cursor; }
    // A change of the whole grid (shift, mirror, resize) as one undoable step.
    void change(const std::function<void(edit::PixelGrid&)>& edit);
    void undo();
    void redo();
    QSize sizeHint() const override;

signals:
    void gridChanged();

protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    int cellSize() const;
    QPoint cellAt(const QPoint& position) const;
    // The tool from `from` to `to` on `grid` (pencil and eraser: the one pixel `to`).
    void draw(edit::PixelGrid& grid, QPoint from, QPoint to, bool paper) const;
    void setCursorCell(QPoint cell);

    edit::PixelGrid m_grid;
    edit::PixelGrid m_beforeStroke;
    edit::EditHistory m_history;
    DrawTool m_tool = DrawTool::Pencil;
    QPoint m_cursor{0, 0};
    std::optional<QPoint> m_anchor;     // where a line or rectangle started
    bool m_stroking = false;
    bool m_strokePaper = false;         // a right-button stroke draws paper
};

class GlyphEditorDialog : public QDialog {
    Q_OBJECT
public:
    // Edits the glyph selected in the Workspace's list.
    GlyphEditorDialog(const app::Workspace& workspace, QWidget* parent = nullptr);
    PixelGridWidget* editor() const { return m_editor; }
    // The BMP of the edited cell (for the Workspace's applyEditedGlyph).
    Bytes bmp() const;

private:
    void syncSize();
    PixelGridWidget* m_editor = nullptr;
    QSpinBox* m_width = nullptr;
    QSpinBox* m_height = nullptr;
};

}  // namespace korvatek::gui

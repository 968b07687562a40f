#pragma once
// The glyph and picture editors: the pixels enlarged, drawn on with the mouse or the
// keyboard, and "Apply", which hands the Workspace the BMP of the edited pixels, exactly as if
// they had been saved as a BMP and loaded from the menu.

#include <QDialog>
#include <QWidget>

#include <functional>
#include <optional>

#include "app/workspace.h"
#include "edit/pixel_edit.h"

class QComboBox;
class QHBoxLayout;
class QLabel;
class QSpinBox;
class QToolButton;
class QVBoxLayout;

namespace korvatek::gui {

enum class DrawTool { Pencil, Eraser, Line, Rectangle, Fill, Pick };

// The grid enlarged, one square a pixel (the transparent key on a checkerboard), a keyboard
// cursor, strokes with undo.
class PixelGridWidget : public QWidget {
    Q_OBJECT
public:
    explicit PixelGridWidget(QWidget* parent = nullptr);

    void setGrid(const edit::PixelGrid& grid);
    const edit::PixelGrid& grid() const { return m_grid; }
    void setTool(DrawTool tool) { m_tool = tool; m_anchor.reset(); }
    // What the pencil and shapes draw with, and what the eraser leaves.
    void setInk(edit::Colour ink) { m_ink = ink; }
    void setPaper(edit::Colour paper) { m_paper = paper; }
    edit::Colour ink() const { return m_ink; }
    QPoint cursorCell() const { return m_cursor; }
    // A change of the whole grid (shift, mirror, resize) as one undoable step.
    void change(const std::function<void(edit::PixelGrid&)>& edit);
    void undo();
    void redo();
    QSize sizeHint() const override;

signals:
    void gridChanged();
    void colourPicked(edit::Colour colour);

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
    edit::Colour m_ink = edit::kInk;
    edit::Colour m_paper = edit::kPaper;
    QPoint m_cursor{0, 0};
    std::optional<QPoint> m_anchor;     // where a line or rectangle started
    bool m_stroking = false;
    bool m_strokePaper = false;         // a right-button stroke draws paper
};

// What both editors share: the tools, the whole-grid changes, undo and redo, the size boxes,
// Apply and Cancel. The editors add their own row above the buttons.
class PixelEditorDialog : public QDialog {
    Q_OBJECT
public:
    PixelEditorDialog(const app::Workspace& workspace, settings::MessageKey title, const QString& subject,
                      QSize largest, bool pickTool, QWidget* parent);
    PixelGridWidget* editor() const { return m_editor; }
    // The BMP of the edited pixels.
    Bytes bmp() const;

protected:
    QString text(settings::MessageKey key) const;
    void addRow(QLayout* row);
    void setGridToEdit(const edit::PixelGrid& grid);
    const app::Workspace& m_ws;
    edit::Colour m_paperColour = edit::kPaper;   // what shifts and a larger size bring in

private:
    void syncSize();
    PixelGridWidget* m_editor = nullptr;
    QSpinBox* m_width = nullptr;
    QSpinBox* m_height = nullptr;
    QVBoxLayout* m_layout = nullptr;
    int m_rowsAdded = 0;
};

// The glyph selected in the Workspace's list, black and white.
class GlyphEditorDialog : public PixelEditorDialog {
    Q_OBJECT
public:
    explicit GlyphEditorDialog(const app::Workspace& workspace, QWidget* parent = nullptr);
};

// The picture selected (and shown) in the Workspace's list, in colour, with the target type
// and a view of the pixels as they will be stored for it.
class PictureEditorDialog : public PixelEditorDialog {
    Q_OBJECT
public:
    explicit PictureEditorDialog(const app::Workspace& workspace, QWidget* parent = nullptr);
    int targetType() const;              // 0x01, 0x85, 0x88 or 0x8A
    QComboBox* targetBox() const { return m_target; }
    const QImage& storedImage() const { return m_stored; }

private:
    void setInk(edit::Colour colour);
    void showStored();
    QToolButton* m_colour = nullptr;
    QComboBox* m_target = nullptr;
    QLabel* m_storedView = nullptr;
    QImage m_stored;
};

}  // namespace korvatek::gui

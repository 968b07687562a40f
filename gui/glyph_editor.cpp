#include "glyph_editor.h"

#include <QAction>
#include <QActionGroup>
#include <QDialogButtonBox>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QMouseEvent>
#include <QPainter>
#include <QPushButton>
#include <QScrollArea>
#include <QSpinBox>
#include <QToolButton>
#include <QVBoxLayout>

#include "edit/font_edits.h"
#include "edit/picture_files.h"
#include "qt_text.h"

namespace korvatek::gui {

using settings::MessageKey;

PixelGridWidget::PixelGridWidget(QWidget* parent) : QWidget(parent) {
    setFocusPolicy(Qt::StrongFocus);
    setMouseTracking(false);
}

void PixelGridWidget::setGrid(const edit::PixelGrid& grid) {
    m_grid = grid;
    m_cursor = {0, 0};
    updateGeometry();
    update();
}

int PixelGridWidget::cellSize() const {
    if (m_grid.width <= 0 || m_grid.height <= 0) return 16;
    // As large as the widget allows, at least 6 pixels a cell so that one can be hit.
    return std::max(6, std::min(width() / m_grid.width, height() / m_grid.height));
}

QSize PixelGridWidget::sizeHint() const {
    const int cell = std::clamp(420 / std::max({m_grid.width, m_grid.height, 1}), 8, 28);
    return {m_grid.width * cell + 1, m_grid.height * cell + 1};
}

QPoint PixelGridWidget::cellAt(const QPoint& position) const {
    const int cell = cellSize();
    return {position.x() / cell, position.y() / cell};
}

void PixelGridWidget::draw(edit::PixelGrid& grid, QPoint from, QPoint to, bool paper) const {
    const edit::Colour colour = paper || m_tool == DrawTool::Eraser ? edit::kPaper : edit::kInk;
    switch (m_tool) {
        case DrawTool::Pencil:
        case DrawTool::Eraser: grid.set(to.x(), to.y(), colour); break;
        case DrawTool::Line: edit::drawLine(grid, from.x(), from.y(), to.x(), to.y(), colour); break;
        case DrawTool::Rectangle: edit::drawRectangle(grid, from.x(), from.y(), to.x(), to.y(), colour, false); break;
        case DrawTool::Fill: edit::floodFill(grid, to.x(), to.y(), colour); break;
    }
}

void PixelGridWidget::change(const std::function<void(edit::PixelGrid&)>& edit) {
    m_history.record(m_grid);
    edit(m_grid);
    m_cursor = {std::min(m_cursor.x(), std::max(m_grid.width - 1, 0)), std::min(m_cursor.y(), std::max(m_grid.height - 1, 0))};
    updateGeometry();
    update();
    emit gridChanged();
}

void PixelGridWidget::undo() {
    if (!m_history.canUndo()) return;
    m_grid = m_history.undo(m_grid);
    updateGeometry();
    update();
    emit gridChanged();
}

void PixelGridWidget::redo() {
    if (!m_history.canRedo()) return;
    m_grid = m_history.redo(m_grid);
    updateGeometry();
    update();
    emit gridChanged();
}

void PixelGridWidget::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    const int cell = cellSize();
    for (int y = 0; y < m_grid.height; ++y)
        for (int x = 0; x < m_grid.width; ++x)
            painter.fillRect(x * cell, y * cell, cell, cell, QColor::fromRgba(m_grid.at(x, y)));
    // Thin lines between the cells, in a grey that reads on ink and on paper.
    painter.setPen(QColor(128, 128, 128, 110));
    for (int x = 0; x <= m_grid.width; ++x) painter.drawLine(x * cell, 0, x * cell, m_grid.height * cell);
    for (int y = 0; y <= m_grid.height; ++y) painter.drawLine(0, y * cell, m_grid.width * cell, y * cell);
    if (hasFocus() && m_grid.contains(m_cursor.x(), m_cursor.y())) {
        painter.setPen(QPen(palette().highlight().color(), 2));
        painter.drawRect(m_cursor.x() * cell + 1, m_cursor.y() * cell + 1, cell - 2, cell - 2);
        if (m_anchor) {
            painter.setPen(QPen(palette().highlight().color(), 1, Qt::DashLine));
            painter.drawRect(m_anchor->x() * cell + 2, m_anchor->y() * cell + 2, cell - 4, cell - 4);
        }
    }
}

void PixelGridWidget::mousePressEvent(QMouseEvent* event) {
    const QPoint at = cellAt(event->position().toPoint());
    if (!m_grid.contains(at.x(), at.y())) return;
    setCursorCell(at);
    m_stroking = true;
    m_strokePaper = event->button() == Qt::RightButton;
    m_beforeStroke = m_grid;
    m_history.record(m_grid);
    m_anchor = at;
    draw(m_grid, at, at, m_strokePaper);
    update();
}

void PixelGridWidget::mouseMoveEvent(QMouseEvent* event) {
    if (!m_stroking) return;
    const QPoint at = cellAt(event->position().toPoint());
    if (m_tool == DrawTool::Line || m_tool == DrawTool::Rectangle) {
        m_grid = m_beforeStroke;   // the shape follows the mouse until it is let go
        draw(m_grid, *m_anchor, at, m_strokePaper);
    } else if (m_tool != DrawTool::Fill) {
        edit::drawLine(m_grid, m_cursor.x(), m_cursor.y(), at.x(), at.y(),
                       m_strokePaper || m_tool == DrawTool::Eraser ? edit::kPaper : edit::kInk);
    }
    if (m_grid.contains(at.x(), at.y())) m_cursor = at;
    update();
}

void PixelGridWidget::mouseReleaseEvent(QMouseEvent*) {
    if (!m_stroking) return;
    m_stroking = false;
    m_anchor.reset();
    if (m_grid == m_beforeStroke) m_history.undo(m_grid);   // a click that changed nothing
    emit gridChanged();
    update();
}

void PixelGridWidget::setCursorCell(QPoint cell) {
    m_cursor = {std::clamp(cell.x(), 0, std::max(m_grid.width - 1, 0)), std::clamp(cell.y(), 0, std::max(m_grid.height - 1, 0))};
    update();
}

void PixelGridWidget::keyPressEvent(QKeyEvent* event) {
    const QPoint steps[] = {{-1, 0}, {1, 0}, {0, -1}, {0, 1}};
    const int keys[] = {Qt::Key_Left, Qt::Key_Right, Qt::Key_Up, Qt::Key_Down};
    for (int i = 0; i < 4; ++i) {
        if (event->key() != keys[i]) continue;
        if (event->modifiers() & Qt::ShiftModifier)   // Shift+arrow moves the ink
            change([&](edit::PixelGrid& g) { edit::shift(g, steps[i].x(), steps[i].y(), edit::kPaper); });
        else
            setCursorCell(m_cursor + steps[i]);
        return;
    }
    if (event->key() == Qt::Key_Space) {
        const bool shaped = m_tool == DrawTool::Line || m_tool == DrawTool::Rectangle;
        if (shaped && !m_anchor) {   // the first Space marks where the shape starts
            m_anchor = m_cursor;
            update();
            return;
        }
        const QPoint from = m_anchor.value_or(m_cursor);
        m_anchor.reset();
        change([&](edit::PixelGrid& g) {
            // The pencil toggles from the keyboard: there is no second button to erase with.
            const bool paper = m_tool == DrawTool::Pencil && g.at(m_cursor.x(), m_cursor.y()) == edit::kInk;
            draw(g, from, m_cursor, paper);
        });
        return;
    }
    QWidget::keyPressEvent(event);
}

GlyphEditorDialog::GlyphEditorDialog(const app::Workspace& ws, QWidget* parent) : QDialog(parent) {
    setObjectName(QStringLiteral("GlyphEditor"));
    const auto& t = ws.messages;
    const auto text = [&](MessageKey key) { return toQString(t.text(key)); };
    const fonts::GlyphRecord* row = ws.ListView2Selected >= 0 && ws.ListView2Selected < static_cast<int>(ws.ListView2.size())
                                        ? &ws.ListView2[static_cast<std::size_t>(ws.ListView2Selected)]
                                        : nullptr;
    setWindowTitle(text(MessageKey::MsgGlyphEditorTitle) + (row ? QStringLiteral(" – ") + toQString(row->codeText()) : QString()));

    m_editor = new PixelGridWidget(this);
    m_editor->setObjectName(QStringLiteral("GlyphGrid"));
    m_editor->setAccessibleName(text(MessageKey::MsgGlyphEditorTitle));
    m_editor->setAccessibleDescription(text(MessageKey::MsgGridDescription));
    if (row && ws.firmware) m_editor->setGrid(edit::glyphCellGrid(ws.firmware->bytes(), *row));

    // Every command is an action of the dialog (its keys work wherever the focus is in it)
    // shown as a button.
    const auto addCommand = [&](QHBoxLayout* row, MessageKey key, const QKeySequence& keys) {
        auto* action = new QAction(text(key), this);
        action->setShortcut(keys);
        action->setToolTip(keys.isEmpty() ? text(key) : text(key) + QStringLiteral(" (") + keys.toString(QKeySequence::NativeText) + QStringLiteral(")"));
        addAction(action);
        auto* button = new QToolButton(this);
        button->setDefaultAction(action);
        button->setAccessibleName(text(key));
        row->addWidget(button);
        return action;
    };

    // Tools: one at a time, each with a letter to choose it from the keyboard.
    auto* tools = new QActionGroup(this);
    auto* toolRow = new QHBoxLayout;
    const std::pair<DrawTool, std::pair<MessageKey, const char*>> toolList[] = {
        {DrawTool::Pencil, {MessageKey::MsgToolPencil, "P"}}, {DrawTool::Eraser, {MessageKey::MsgToolEraser, "E"}},
        {DrawTool::Line, {MessageKey::MsgToolLine, "L"}},     {DrawTool::Rectangle, {MessageKey::MsgToolRectangle, "R"}},
        {DrawTool::Fill, {MessageKey::MsgToolFill, "F"}}};
    for (const auto& [tool, label] : toolList) {
        QAction* action = addCommand(toolRow, label.first, QKeySequence(QLatin1String(label.second)));
        action->setCheckable(true);
        action->setChecked(tool == DrawTool::Pencil);
        tools->addAction(action);
        connect(action, &QAction::toggled, this, [this, tool = tool](bool on) {
            if (on) m_editor->setTool(tool);
        });
    }
    toolRow->addStretch(1);

    // Whole-grid changes and history.
    auto* changeRow = new QHBoxLayout;
    const auto addButton = [&](MessageKey key, const QKeySequence& keys, const std::function<void()>& run) {
        connect(addCommand(changeRow, key, keys), &QAction::triggered, this, run);
    };
    const auto shiftBy = [this](int dx, int dy) {
        return [this, dx, dy] { m_editor->change([dx, dy](edit::PixelGrid& g) { edit::shift(g, dx, dy, edit::kPaper); }); };
    };
    addButton(MessageKey::MsgShiftLeft, {}, shiftBy(-1, 0));
    addButton(MessageKey::MsgShiftRight, {}, shiftBy(1, 0));
    addButton(MessageKey::MsgShiftUp, {}, shiftBy(0, -1));
    addButton(MessageKey::MsgShiftDown, {}, shiftBy(0, 1));
    addButton(MessageKey::MsgMirrorHorizontal, QKeySequence(QStringLiteral("H")),
              [this] { m_editor->change([](edit::PixelGrid& g) { edit::mirror(g, true); }); });
    addButton(MessageKey::MsgMirrorVertical, QKeySequence(QStringLiteral("V")),
              [this] { m_editor->change([](edit::PixelGrid& g) { edit::mirror(g, false); }); });
    addButton(MessageKey::MsgUndo, QKeySequence::Undo, [this] { m_editor->undo(); });
    addButton(MessageKey::MsgRedo, QKeySequence(QStringLiteral("Ctrl+Shift+Z")), [this] { m_editor->redo(); });
    changeRow->addStretch(1);

    // The cell's size: what the glyph may grow to is checked on Apply, as for a BMP.
    auto* sizeRow = new QHBoxLayout;
    m_width = new QSpinBox(this);
    m_height = new QSpinBox(this);
    for (auto [box, key] : {std::pair{m_width, MessageKey::MsgCellWidth}, std::pair{m_height, MessageKey::MsgCellHeight}}) {
        box->setRange(1, codec::PixelCanvas::kGlyphColumns - 1);
        auto* label = new QLabel(text(key), this);
        label->setBuddy(box);
        box->setAccessibleName(plainCaption(text(key)).remove(QLatin1Char(':')));
        sizeRow->addWidget(label);
        sizeRow->addWidget(box);
        connect(box, &QSpinBox::editingFinished, this, [this] {
            if (m_width->value() == m_editor->grid().width && m_height->value() == m_editor->grid().height) return;
            const int w = m_width->value(), h = m_height->value();
            m_editor->change([w, h](edit::PixelGrid& g) { g = edit::resized(g, w, h, edit::kPaper); });
        });
    }
    sizeRow->addStretch(1);
    syncSize();
    connect(m_editor, &PixelGridWidget::gridChanged, this, &GlyphEditorDialog::syncSize);

    auto* scroll = new QScrollArea(this);
    scroll->setWidget(m_editor);
    scroll->setWidgetResizable(true);
    scroll->setFocusProxy(m_editor);
    auto* buttons = new QDialogButtonBox(this);
    buttons->addButton(captionText(t.caption(settings::CaptionKey::cmdApply)), QDialogButtonBox::AcceptRole)->setDefault(true);
    buttons->addButton(captionText(t.caption(settings::CaptionKey::cmdCancel)), QDialogButtonBox::RejectRole);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);

    auto* layout = new QVBoxLayout(this);
    layout->addLayout(toolRow);
    layout->addLayout(changeRow);
    layout->addWidget(scroll, 1);
    layout->addLayout(sizeRow);
    layout->addWidget(buttons);
    m_editor->setFocus();
    resize(std::max(560, m_editor->sizeHint().width() + 60), m_editor->sizeHint().height() + 200);
}

void GlyphEditorDialog::syncSize() {
    const QSignalBlocker quietWidth(m_width), quietHeight(m_height);
    m_width->setValue(m_editor->grid().width);
    m_height->setValue(m_editor->grid().height);
}

Bytes GlyphEditorDialog::bmp() const {
    const auto file = edit::gridBmp(m_editor->grid());
    return file ? *file : Bytes{};
}

}  // namespace korvatek::gui

#include "pixel_editor.h"

#include <QAction>
#include <QActionGroup>
#include <QDialogButtonBox>
#include <QPixmap>
#include <QIcon>
#include <QComboBox>
#include <QColorDialog>
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

#include "base/hex_text.h"
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
    const edit::Colour colour = paper || m_tool == DrawTool::Eraser ? m_paper : m_ink;
    switch (m_tool) {
        case DrawTool::Pick: break;
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
    // Two calls whatever the size, so that a 240 x 320 picture follows the pen: a checkerboard
    // of cell-sized tiles under everything, then the pixels, enlarged without smoothing, with
    // the transparent key see-through.
    QPixmap tile(cell, cell);
    tile.fill(Qt::white);
    {
        QPainter tilePainter(&tile);
        const int half = std::max(cell / 2, 1);
        tilePainter.fillRect(0, 0, half, half, QColor(204, 204, 204));
        tilePainter.fillRect(half, half, cell - half, cell - half, QColor(204, 204, 204));
    }
    const QRect area(0, 0, m_grid.width * cell, m_grid.height * cell);
    painter.fillRect(area, QBrush(tile));
    QImage pixels(m_grid.width, m_grid.height, QImage::Format_ARGB32);
    for (int y = 0; y < m_grid.height; ++y) {
        auto* line = reinterpret_cast<QRgb*>(pixels.scanLine(y));
        for (int x = 0; x < m_grid.width; ++x) {
            const edit::Colour c = m_grid.at(x, y);
            line[x] = c == edit::kTransparentKey ? 0u : c;
        }
    }
    painter.setRenderHint(QPainter::SmoothPixmapTransform, false);
    painter.drawImage(area, pixels);
    // Thin lines between the cells, in a grey that reads on ink and on paper: one tile with
    // its top and left edge drawn, laid over everything (single lines would cost a hundred
    // times more on a large picture).
    const QColor lineColour(128, 128, 128, 110);
    QPixmap lines(cell, cell);
    lines.fill(Qt::transparent);
    {
        QPainter linePainter(&lines);
        linePainter.fillRect(0, 0, cell, 1, lineColour);
        linePainter.fillRect(0, 1, 1, cell - 1, lineColour);
    }
    painter.fillRect(area, QBrush(lines));
    painter.fillRect(area.right() + 1, 0, 1, area.height() + 1, lineColour);
    painter.fillRect(0, area.bottom() + 1, area.width(), 1, lineColour);
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
    if (m_tool == DrawTool::Pick) {
        emit colourPicked(m_grid.at(at.x(), at.y()));
        return;
    }
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
    } else if (m_tool != DrawTool::Fill && m_tool != DrawTool::Pick) {
        edit::drawLine(m_grid, m_cursor.x(), m_cursor.y(), at.x(), at.y(),
                       m_strokePaper || m_tool == DrawTool::Eraser ? m_paper : m_ink);
        // Only the cells the pen passed over (and the cursor's frame) are painted again.
        const int cell = cellSize();
        const QRect cells = QRect(m_cursor, at).normalized();
        if (m_grid.contains(at.x(), at.y())) m_cursor = at;
        update(QRect(cells.topLeft() * cell, (cells.bottomRight() + QPoint(1, 1)) * cell).adjusted(-2, -2, 2, 2));
        return;
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
    if (event->key() == Qt::Key_Space && m_tool == DrawTool::Pick) {
        if (m_grid.contains(m_cursor.x(), m_cursor.y())) emit colourPicked(m_grid.at(m_cursor.x(), m_cursor.y()));
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
            const bool paper = m_tool == DrawTool::Pencil && g.at(m_cursor.x(), m_cursor.y()) == m_ink;
            draw(g, from, m_cursor, paper);
        });
        return;
    }
    QWidget::keyPressEvent(event);
}

QString PixelEditorDialog::text(MessageKey key) const { return toQString(m_ws.messages.text(key)); }

PixelEditorDialog::PixelEditorDialog(const app::Workspace& ws, MessageKey title, const QString& subject, QSize largest,
                                     bool pickTool, QWidget* parent)
    : QDialog(parent), m_ws(ws) {
    const auto& t = ws.messages;
    setWindowTitle(text(title) + (subject.isEmpty() ? QString() : QStringLiteral(" – ") + subject));
    m_editor = new PixelGridWidget(this);
    m_editor->setObjectName(QStringLiteral("PixelGrid"));
    m_editor->setAccessibleName(text(title));
    m_editor->setAccessibleDescription(text(MessageKey::MsgGridDescription));

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
    std::vector<std::pair<DrawTool, std::pair<MessageKey, const char*>>> toolList = {
        {DrawTool::Pencil, {MessageKey::MsgToolPencil, "P"}}, {DrawTool::Eraser, {MessageKey::MsgToolEraser, "E"}},
        {DrawTool::Line, {MessageKey::MsgToolLine, "L"}},     {DrawTool::Rectangle, {MessageKey::MsgToolRectangle, "R"}},
        {DrawTool::Fill, {MessageKey::MsgToolFill, "F"}}};
    if (pickTool) toolList.push_back({DrawTool::Pick, {MessageKey::MsgToolPick, "K"}});
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
        return [this, dx, dy] {
            const edit::Colour paper = m_paperColour;
            m_editor->change([dx, dy, paper](edit::PixelGrid& g) { edit::shift(g, dx, dy, paper); });
        };
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

    // The size: what a glyph may grow to, or a picture's place in the fullflash, is checked on
    // Apply, as for a BMP.
    auto* sizeRow = new QHBoxLayout;
    m_width = new QSpinBox(this);
    m_height = new QSpinBox(this);
    m_width->setRange(1, largest.width());
    m_height->setRange(1, largest.height());
    for (auto [box, key] : {std::pair{m_width, MessageKey::MsgCellWidth}, std::pair{m_height, MessageKey::MsgCellHeight}}) {
        auto* label = new QLabel(text(key), this);
        label->setBuddy(box);
        box->setAccessibleName(plainCaption(text(key)).remove(QLatin1Char(':')));
        sizeRow->addWidget(label);
        sizeRow->addWidget(box);
        connect(box, &QSpinBox::editingFinished, this, [this] {
            if (m_width->value() == m_editor->grid().width && m_height->value() == m_editor->grid().height) return;
            const int w = m_width->value(), h = m_height->value();
            const edit::Colour paper = m_paperColour;
            m_editor->change([w, h, paper](edit::PixelGrid& g) { g = edit::resized(g, w, h, paper); });
        });
    }
    sizeRow->addStretch(1);
    connect(m_editor, &PixelGridWidget::gridChanged, this, &PixelEditorDialog::syncSize);

    auto* scroll = new QScrollArea(this);
    scroll->setWidget(m_editor);
    scroll->setWidgetResizable(true);
    scroll->setFocusProxy(m_editor);
    auto* buttons = new QDialogButtonBox(this);
    buttons->addButton(captionText(t.caption(settings::CaptionKey::cmdApply)), QDialogButtonBox::AcceptRole)->setDefault(true);
    buttons->addButton(captionText(t.caption(settings::CaptionKey::cmdCancel)), QDialogButtonBox::RejectRole);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);

    m_layout = new QVBoxLayout(this);
    m_layout->addLayout(toolRow);
    m_layout->addLayout(changeRow);
    m_layout->addWidget(scroll, 1);
    m_layout->addLayout(sizeRow);
    m_layout->addWidget(buttons);
    m_editor->setFocus();
}

void PixelEditorDialog::addRow(QLayout* row) {
    // Above the size boxes and the buttons.
    m_layout->insertLayout(m_layout->count() - 2, row);
}

void PixelEditorDialog::setGridToEdit(const edit::PixelGrid& grid) {
    m_editor->setGrid(grid);
    syncSize();
    resize(std::max(600, m_editor->sizeHint().width() + 60), std::min(m_editor->sizeHint().height() + 240, 900));
}

void PixelEditorDialog::syncSize() {
    const QSignalBlocker quietWidth(m_width), quietHeight(m_height);
    m_width->setValue(m_editor->grid().width);
    m_height->setValue(m_editor->grid().height);
}

Bytes PixelEditorDialog::bmp() const {
    const auto file = edit::gridBmp(m_editor->grid());
    return file ? *file : Bytes{};
}

namespace {

const fonts::GlyphRecord* selectedGlyphOf(const app::Workspace& ws) {
    return ws.ListView2Selected >= 0 && ws.ListView2Selected < static_cast<int>(ws.ListView2.size())
               ? &ws.ListView2[static_cast<std::size_t>(ws.ListView2Selected)]
               : nullptr;
}

}  // namespace

GlyphEditorDialog::GlyphEditorDialog(const app::Workspace& ws, QWidget* parent)
    : PixelEditorDialog(ws, MessageKey::MsgGlyphEditorTitle,
                        selectedGlyphOf(ws) ? toQString(selectedGlyphOf(ws)->codeText()) : QString(),
                        {codec::PixelCanvas::kGlyphColumns - 1, codec::PixelCanvas::kGlyphRows - 1}, false, parent) {
    setObjectName(QStringLiteral("GlyphEditor"));
    if (const fonts::GlyphRecord* row = selectedGlyphOf(ws); row && ws.firmware)
        setGridToEdit(edit::glyphCellGrid(ws.firmware->bytes(), *row));
}

namespace {

// The targets of "Load BMP", in its order.
constexpr std::pair<const char*, int> kTargets[] = {{"1", 0x01}, {"8", 0x85}, {"16", 0x88}, {"24", 0x8A}};

QIcon swatch(edit::Colour colour) {
    QPixmap square(16, 16);
    if (colour == edit::kTransparentKey) {
        square.fill(Qt::white);
        QPainter painter(&square);
        painter.fillRect(0, 0, 8, 8, QColor(204, 204, 204));
        painter.fillRect(8, 8, 8, 8, QColor(204, 204, 204));
    } else {
        square.fill(QColor::fromRgba(colour));
    }
    return QIcon(square);
}

}  // namespace

PictureEditorDialog::PictureEditorDialog(const app::Workspace& ws, QWidget* parent)
    : PixelEditorDialog(ws, MessageKey::MsgPictureEditorTitle,
                        ws.ShownPicture ? toQString(app::zeroPadded(*ws.ShownPicture, 4)) : QString(),
                        {codec::PixelCanvas::kPictureColumns - 1, codec::PixelCanvas::kPictureRows - 1}, true, parent) {
    setObjectName(QStringLiteral("PictureEditor"));
    // The eraser and whatever a shift brings in leave the picture transparent.
    m_paperColour = edit::kTransparentKey;
    editor()->setPaper(edit::kTransparentKey);

    auto* colourRow = new QHBoxLayout;
    m_colour = new QToolButton(this);
    m_colour->setObjectName(QStringLiteral("PictureEditorColour"));
    m_colour->setText(text(MessageKey::MsgColour));
    m_colour->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    m_colour->setAccessibleName(text(MessageKey::MsgColour));
    connect(m_colour, &QToolButton::clicked, this, [this] {
        const QColor chosen = QColorDialog::getColor(QColor::fromRgba(editor()->ink()), this, text(MessageKey::MsgColour));
        if (chosen.isValid()) setInk(0xFF000000u | chosen.rgb());
    });
    colourRow->addWidget(m_colour);
    // A few colours a click away; the last is the transparent key.
    const edit::Colour palette[] = {0xFF000000, 0xFFFFFFFF, 0xFF808080, 0xFFFF0000, 0xFF00A000, 0xFF0000FF,
                                    0xFFFFFF00, 0xFFFF8000, 0xFF00FFFF, 0xFFFF00FF, edit::kTransparentKey};
    for (const edit::Colour c : palette) {
        auto* button = new QToolButton(this);
        button->setIcon(swatch(c));
        const QString name = c == edit::kTransparentKey ? text(MessageKey::MsgTransparent) : QColor::fromRgba(c).name();
        button->setToolTip(name);
        button->setAccessibleName(name);
        connect(button, &QToolButton::clicked, this, [this, c] { setInk(c); });
        colourRow->addWidget(button);
    }
    colourRow->addStretch(1);
    addRow(colourRow);
    connect(editor(), &PixelGridWidget::colourPicked, this, &PictureEditorDialog::setInk);

    // The target, and the pixels as they will be stored for it.
    auto* storedRow = new QHBoxLayout;
    auto* targetLabel = new QLabel(text(MessageKey::MsgStoredAs), this);
    m_target = new QComboBox(this);
    m_target->setObjectName(QStringLiteral("PictureEditorTarget"));
    for (const auto& [name, code] : kTargets) m_target->addItem(QString::fromLatin1(name) + QStringLiteral(" bit"), code);
    m_target->setCurrentIndex(2);   // 16 bits, the firmware's usual
    targetLabel->setBuddy(m_target);
    m_target->setAccessibleName(plainCaption(text(MessageKey::MsgStoredAs)).remove(QLatin1Char(':')));
    auto* storedLabel = new QLabel(text(MessageKey::MsgStoredView), this);
    m_storedView = new QLabel(this);
    m_storedView->setObjectName(QStringLiteral("PictureEditorStored"));
    m_storedView->setAccessibleName(text(MessageKey::MsgStoredView));
    m_storedView->setAccessibleDescription(text(MessageKey::MsgStoredDescription));
    m_storedView->setMinimumSize(64, 64);
    storedRow->addWidget(targetLabel);
    storedRow->addWidget(m_target);
    storedRow->addSpacing(12);
    storedRow->addWidget(storedLabel);
    storedRow->addWidget(m_storedView, 1);
    addRow(storedRow);
    connect(m_target, &QComboBox::currentIndexChanged, this, &PictureEditorDialog::showStored);
    connect(editor(), &PixelGridWidget::gridChanged, this, &PictureEditorDialog::showStored);

    setInk(0xFF000000);
    if (ws.ShownPicture && ws.preview.source == app::Preview::Source::Picture)
        setGridToEdit(edit::canvasGrid(ws.canvas, ws.preview.width, ws.preview.height));
    showStored();
}

int PictureEditorDialog::targetType() const { return m_target->currentData().toInt(); }

void PictureEditorDialog::setInk(edit::Colour colour) {
    editor()->setInk(colour);
    m_colour->setIcon(swatch(colour));
}

void PictureEditorDialog::showStored() {
    // Encoded and decoded as the replacement will be: a 240 x 320 picture takes a few
    // milliseconds, well inside a frame.
    const auto stored = edit::storedPicture(editor()->grid(), targetType());
    if (!stored) {
        m_stored = QImage();
        m_storedView->clear();
        return;
    }
    m_stored = QImage(stored->width, stored->height, QImage::Format_ARGB32);
    for (int y = 0; y < stored->height; ++y)
        for (int x = 0; x < stored->width; ++x) m_stored.setPixel(x, y, stored->at(x, y));
    // Enlarged with sharp pixels, the transparent ones on a checkerboard as in the editor.
    const int zoom = std::clamp(96 / std::max({stored->width, stored->height, 1}), 2, 4);
    QPixmap shown(m_stored.size() * zoom);
    QPainter painter(&shown);
    for (int y = 0; y < stored->height; ++y)
        for (int x = 0; x < stored->width; ++x) {
            const edit::Colour c = stored->at(x, y);
            if (c != edit::kTransparentKey) {
                painter.fillRect(x * zoom, y * zoom, zoom, zoom, QColor::fromRgba(c));
                continue;
            }
            const int half = zoom / 2;
            for (int q = 0; q < 4; ++q)
                painter.fillRect(x * zoom + (q % 2) * half, y * zoom + (q / 2) * half, half, half,
                                 (q == 0 || q == 3) ? QColor(204, 204, 204) : QColor(255, 255, 255));
        }
    painter.end();
    m_storedView->setPixmap(shown);
}

}  // namespace korvatek::gui

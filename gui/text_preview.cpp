#include "text_preview.h"

#include <QCheckBox>
#include <QHBoxLayout>
#include <QImage>
#include <QLabel>
#include <QLineEdit>
#include <QPixmap>
#include <QScrollArea>
#include <QSpinBox>
#include <QVBoxLayout>

#include <map>

#include "edit/text_render.h"
#include "qt_text.h"

namespace korvatek::gui {

using settings::MessageKey;

TextPreview::TextPreview(app::Workspace& workspace, QWidget* parent) : QWidget(parent), m_ws(workspace) {
    setObjectName(QStringLiteral("TextPreview"));
    m_title = new QLabel(this);
    m_text = new QLineEdit(this);
    m_text->setObjectName(QStringLiteral("TextPreviewText"));
    m_text->setClearButtonEnabled(true);
    m_zoomLabel = new QLabel(this);
    m_zoom = new QSpinBox(this);
    m_zoom->setObjectName(QStringLiteral("TextPreviewZoom"));
    m_zoom->setRange(1, 8);
    m_zoom->setValue(2);
    m_zoom->setSuffix(QStringLiteral("×"));
    m_zoomLabel->setBuddy(m_zoom);
    m_pending = new QCheckBox(this);
    m_pending->setObjectName(QStringLiteral("TextPreviewPending"));
    m_pending->setChecked(true);
    m_picture = new QLabel(this);
    m_picture->setObjectName(QStringLiteral("TextPreviewPicture"));
    m_picture->setAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    m_picture->setBackgroundRole(QPalette::Base);
    m_picture->setAutoFillBackground(true);
    auto* scroll = new QScrollArea(this);
    scroll->setWidget(m_picture);
    scroll->setWidgetResizable(true);
    scroll->setMinimumHeight(64);
    scroll->setMaximumHeight(160);   // the glyph list above keeps the room
    scroll->setFocusPolicy(Qt::NoFocus);
    m_missing = new QLabel(this);
    m_missing->setObjectName(QStringLiteral("TextPreviewMissing"));
    m_missing->setWordWrap(true);

    auto* options = new QHBoxLayout;
    options->addWidget(m_zoomLabel);
    options->addWidget(m_zoom);
    options->addSpacing(12);
    options->addWidget(m_pending);
    options->addStretch(1);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 4, 0, 0);
    layout->setSpacing(4);
    layout->addWidget(m_title);
    layout->addWidget(m_text);
    layout->addLayout(options);
    layout->addWidget(scroll);
    layout->addWidget(m_missing);

    connect(m_text, &QLineEdit::textChanged, this, &TextPreview::refresh);
    connect(m_zoom, &QSpinBox::valueChanged, this, &TextPreview::refresh);
    connect(m_pending, &QCheckBox::toggled, this, &TextPreview::refresh);
    retranslate();
}

void TextPreview::retranslate() {
    const auto& t = m_ws.messages;
    m_title->setText(toQString(t.text(MessageKey::MsgPreviewTitle)));
    m_text->setPlaceholderText(toQString(t.text(MessageKey::MsgPreviewPlaceholder)));
    m_text->setAccessibleName(toQString(t.text(MessageKey::MsgPreviewTitle)));
    m_zoomLabel->setText(toQString(t.text(MessageKey::MsgPreviewZoom)));
    m_pending->setText(toQString(t.text(MessageKey::MsgPreviewPending)));
    m_picture->setAccessibleName(toQString(t.text(MessageKey::MsgPreviewTitle)));
    m_picture->setAccessibleDescription(toQString(t.text(MessageKey::MsgPreviewDescription)));
    refresh();
}

void TextPreview::refresh() {
    const QString typed = m_text->text();
    if (!m_ws.firmware || m_ws.ListView2.empty() || typed.isEmpty()) {
        m_image = QImage();
        m_picture->clear();
        m_missing->clear();
        return;
    }
    std::map<int, fonts::CollectedGlyph> pending;
    if (m_pending->isChecked() && m_ws.GlyphPatchFont == m_ws.FtypeIndex)
        for (const auto& glyph : m_ws.collectedGlyphs) pending[glyph.number] = glyph;
    const std::u32string text = typed.toStdU32String();
    const edit::RenderedText line = edit::renderText(m_ws.firmware->bytes(), m_ws.ListView2, text, pending);
    m_image = QImage(line.pixels.width, line.pixels.height, QImage::Format_ARGB32);
    for (int y = 0; y < line.pixels.height; ++y)
        for (int x = 0; x < line.pixels.width; ++x) m_image.setPixel(x, y, line.pixels.at(x, y));
    const int zoom = m_zoom->value();
    // Scaled without smoothing: every phone pixel stays a sharp square.
    QPixmap shown = QPixmap::fromImage(m_image.scaled(m_image.size() * zoom, Qt::IgnoreAspectRatio, Qt::FastTransformation));
    shown.setDevicePixelRatio(1.0);
    m_picture->setPixmap(shown);
    QString missing;
    for (const std::size_t at : line.missing) {
        const QString c = QString::fromUcs4(&text[at], 1);
        if (!missing.contains(c)) missing += (missing.isEmpty() ? QString() : QStringLiteral(" ")) + c;
    }
    m_missing->setText(missing.isEmpty() ? QString() : toQString(m_ws.messages.text(MessageKey::MsgPreviewMissing)) + missing);
}

}  // namespace korvatek::gui

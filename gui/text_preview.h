#pragma once
// The Fonts tab's text preview: a typed line drawn with the chosen font's glyphs from the
// fullflash, as the phone lays it out, with or without the glyphs waiting in the glyph patch,
// zoomed with sharp pixels; the characters the font lacks are boxed and named.

#include <QWidget>

#include "app/workspace.h"

class QCheckBox;
class QLabel;
class QLineEdit;
class QSpinBox;

namespace korvatek::gui {

class TextPreview : public QWidget {
    Q_OBJECT
public:
    TextPreview(app::Workspace& workspace, QWidget* parent = nullptr);

    // Draws the line again from the Workspace's font and glyph patch.
    void refresh();
    void retranslate();
    QLineEdit* textBox() const { return m_text; }
    QCheckBox* pendingBox() const { return m_pending; }
    QSpinBox* zoomBox() const { return m_zoom; }
    const QImage& image() const { return m_image; }   // at 1x

private:
    app::Workspace& m_ws;
    QLabel* m_title = nullptr;
    QLineEdit* m_text = nullptr;
    QLabel* m_zoomLabel = nullptr;
    QSpinBox* m_zoom = nullptr;
    QCheckBox* m_pending = nullptr;
    QLabel* m_picture = nullptr;
    QLabel* m_missing = nullptr;
    QImage m_image;
};

}  // namespace korvatek::gui

#pragma once
// What a screen reader says for the main window's lists and preview, in the interface language:
// a picture row as "Picture 5, 16 by 16, 16-bit compressed", a glyph row as "Glyph 65, 8 by 12",
// a mark as the words it stands for, and the preview as what it shows. The rows are read from
// the cells the views were last told, so a batch under way never shows a half-changed row.

#include <QString>

#include "app/message_table.h"

namespace korvatek::app {
class Workspace;
}

namespace korvatek::gui {

class RecordTableModel;

// The cell's accessible text (columns counted from 1): the first cell speaks for the whole row,
// the mark column says "replaced, waiting in the patch"; a null string for the other cells.
QString pictureAccessibleText(const settings::MessageTable& table, const RecordTableModel& rows, int row, int column);
QString glyphAccessibleText(const settings::MessageTable& table, const RecordTableModel& rows, int row, int column);

// "16-bit compressed", "8-bit", or "type A00 unknown" (typeText as the list shows the type).
QString depthWords(const settings::MessageTable& table, int bits, bool compressed, const QString& typeText);

// The preview's description: the picture or glyph it shows, its size and depth, or nothing.
QString previewDescription(const app::Workspace& ws);

}  // namespace korvatek::gui

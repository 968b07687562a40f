#include "glyph_list_model.h"

namespace korvatek::gui {

namespace {

QStringList glyphCaptions() {
    QStringList captions;
    for (const char* caption : fonts::kGlyphColumnCaptions) captions << QString::fromLatin1(caption);
    return captions;
}

}  // namespace

GlyphListModel::GlyphListModel(const std::vector<fonts::GlyphRecord>& records, QObject* parent)
    : RecordTableModel(
          glyphCaptions(), [&records] { return static_cast<int>(records.size()); },
          [&records](int row, int column) {
              return fonts::glyphCellText(records[static_cast<std::size_t>(row)], column);
          },
          parent) {
    setRightAligned({2, 3, 4, 5, 6});  // W, w, h, sL, sB
}

}  // namespace korvatek::gui

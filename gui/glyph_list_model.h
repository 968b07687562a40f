#pragma once
// ListView2's model: one row per GlyphRecord of the font chosen in Ftype, its ten cells as
// columns.

#include <vector>

#include "fonts/glyph_record.h"
#include "record_table_model.h"

namespace korvatek::gui {

class GlyphListModel : public RecordTableModel {
    Q_OBJECT
public:
    explicit GlyphListModel(const std::vector<fonts::GlyphRecord>& records, QObject* parent = nullptr);
};

}  // namespace korvatek::gui

#pragma once
// ListView1's model: one row per PictureRecord of the Workspace, its eight cells as columns.

#include <vector>

#include "firmware/picture_record.h"
#include "record_table_model.h"

namespace korvatek::gui {

class PictureListModel : public RecordTableModel {
    Q_OBJECT
public:
    explicit PictureListModel(const std::vector<firmware::PictureRecord>& records, QObject* parent = nullptr);
};

}  // namespace korvatek::gui

#include "picture_list_model.h"

namespace korvatek::gui {

namespace {

QStringList pictureCaptions() {
    QStringList captions;
    for (const char* caption : firmware::kPictureColumnCaptions) captions << QString::fromLatin1(caption);
    return captions;
}

}  // namespace

PictureListModel::PictureListModel(const std::vector<firmware::PictureRecord>& records, QObject* parent)
    : RecordTableModel(
          pictureCaptions(), [&records] { return static_cast<int>(records.size()); },
          [&records](int row, int column) {
              return firmware::pictureCellText(records[static_cast<std::size_t>(row)], column);
          },
          parent) {
    setRightAligned({3, 4});  // width, height
}

}  // namespace korvatek::gui

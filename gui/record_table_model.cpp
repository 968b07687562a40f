#include "record_table_model.h"

#include "qt_text.h"

namespace korvatek::gui {

RecordTableModel::RecordTableModel(QStringList captions, RowCount rowCount, CellText cellText, QObject* parent)
    : QAbstractTableModel(parent),
      m_captions(std::move(captions)),
      m_rowCount(std::move(rowCount)),
      m_cellText(std::move(cellText)) {
    m_shownRows = m_rowCount();
}

int RecordTableModel::rowCount(const QModelIndex& parent) const { return parent.isValid() ? 0 : m_shownRows; }

int RecordTableModel::columnCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(m_captions.size());
}

QString RecordTableModel::cellText(int row, int column) const {
    // A command may have emptied the records before the views were told: ask the source too.
    if (row < 0 || row >= m_shownRows || row >= m_rowCount() || column < 1 || column > m_captions.size()) return {};
    const std::string& cell = m_cellText(row, column);
    // An untouched mark cell holds the single character 0: nothing to show.
    if (cell.size() == 1 && cell[0] == '\0') return {};
    return toQString(cell);
}

QString RecordTableModel::caption(int column) const {
    return column >= 1 && column <= m_captions.size() ? m_captions[column - 1] : QString();
}

QVariant RecordTableModel::data(const QModelIndex& index, int role) const {
    if (!checkIndex(index, CheckIndexOption::IndexIsValid | CheckIndexOption::ParentIsInvalid)) return {};
    switch (role) {
        case Qt::DisplayRole:
        case Qt::ToolTipRole:
            return cellText(index.row(), index.column() + 1);
        case Qt::TextAlignmentRole:
            return m_rightAligned.contains(index.column() + 1)
                       ? QVariant::fromValue(Qt::Alignment(Qt::AlignRight | Qt::AlignVCenter))
                       : QVariant::fromValue(Qt::Alignment(Qt::AlignLeft | Qt::AlignVCenter));
        default:
            return {};
    }
}

QVariant RecordTableModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole || section < 0 || section >= m_captions.size())
        return QAbstractTableModel::headerData(section, orientation, role);
    return m_captions[section];
}

void RecordTableModel::reload() {
    beginResetModel();
    m_shownRows = m_rowCount();
    endResetModel();
}

void RecordTableModel::refreshCells() {
    if (m_rowCount() != m_shownRows) return reload();
    if (m_shownRows > 0) emit dataChanged(index(0, 0), index(m_shownRows - 1, columnCount() - 1));
}

}  // namespace korvatek::gui

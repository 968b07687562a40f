#include "record_table_model.h"

#include <algorithm>

#include "qt_text.h"

namespace korvatek::gui {

RecordTableModel::RecordTableModel(QStringList captions, RowCount rowCount, CellText cellText, QObject* parent)
    : QAbstractTableModel(parent),
      m_captions(std::move(captions)),
      m_rowCount(std::move(rowCount)),
      m_cellText(std::move(cellText)),
      m_rows(readRows()) {}

int RecordTableModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(m_rows.size());
}

int RecordTableModel::columnCount(const QModelIndex& parent) const { return parent.isValid() ? 0 : markColumn(); }

std::vector<RecordTableModel::Row> RecordTableModel::readRows() const {
    const int count = std::max(m_rowCount(), 0);
    std::vector<Row> rows(static_cast<std::size_t>(count));
    for (int row = 0; row < count; ++row) {
        Row& read = rows[static_cast<std::size_t>(row)];
        for (int column = 1; column < markColumn(); ++column) {
            read.cells += m_cellText(row, column);
            read.cells += kCellEnd;
        }
        read.mark = m_cellText(row, markColumn());
    }
    return rows;
}

QString RecordTableModel::cellText(int row, int column) const {
    if (row < 0 || row >= rowCount() || column < 1 || column > markColumn()) return {};
    const Row& shown = m_rows[static_cast<std::size_t>(row)];
    if (column == markColumn()) return toQString(shown.mark);
    std::size_t start = 0;
    for (int skipped = 1; skipped < column; ++skipped) start = shown.cells.find(kCellEnd, start) + 1;
    return toQString(shown.cells.substr(start, shown.cells.find(kCellEnd, start) - start));
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
        case Qt::AccessibleTextRole: {
            QString spoken = m_accessibleText ? m_accessibleText(*this, index.row(), index.column() + 1) : QString();
            return spoken.isNull() ? cellText(index.row(), index.column() + 1) : spoken;
        }
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

bool RecordTableModel::update() {
    std::vector<Row> rows = readRows();
    const bool readAnew = !std::equal(rows.begin(), rows.end(), m_rows.begin(), m_rows.end(),
                                      [](const Row& now, const Row& shown) { return now.cells == shown.cells; });
    if (readAnew) {
        beginResetModel();
        m_rows = std::move(rows);
        endResetModel();
        return true;
    }
    // One notification for each run of neighbouring rows whose marks changed (a batch marks many).
    const int mark = markColumn() - 1;
    for (std::size_t row = 0; row < rows.size();) {
        if (rows[row].mark == m_rows[row].mark) {
            ++row;
            continue;
        }
        const std::size_t first = row;
        for (; row < rows.size() && rows[row].mark != m_rows[row].mark; ++row) m_rows[row].mark = std::move(rows[row].mark);
        emit dataChanged(index(static_cast<int>(first), mark), index(static_cast<int>(row) - 1, mark),
                         {Qt::DisplayRole, Qt::ToolTipRole, Qt::AccessibleTextRole});
    }
    return false;
}

}  // namespace korvatek::gui

#pragma once
// A list of the core's records as a table: every cell is the record's text, exactly as the
// commands read it back. The records stay in the Workspace; the model keeps the texts it last
// told the views about, so a view that paints while a command is still changing the records
// sees nothing half-done, and after the command update() tells the views what differs.

#include <QAbstractTableModel>
#include <QStringList>

#include <functional>
#include <string>
#include <vector>

namespace korvatek::gui {

class RecordTableModel : public QAbstractTableModel {
    Q_OBJECT
public:
    using RowCount = std::function<int()>;
    // Column 1 is the first ("#"), as the commands count them. The last column is the mark
    // ("*") of a record whose replacement waits in a patch.
    using CellText = std::function<std::string(int row, int column)>;

    RecordTableModel(QStringList captions, RowCount rowCount, CellText cellText, QObject* parent = nullptr);

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override;

    // The cell as the views were last told (column counted from 1), empty outside the table.
    QString cellText(int row, int column) const;
    QString caption(int column) const;

    // After a command: reads the records again and tells the views. A record changes in place
    // only by gaining or losing its mark, so those rows get dataChanged for their mark cell;
    // another length or any other cell that differs means the list was read anew (a fullflash
    // opened, another font chosen) and the views are reset. Returns whether they were.
    bool update();

    // What a screen reader says for a cell (column counted from 1); a null string leaves the
    // cell's own text.
    using AccessibleText = std::function<QString(const RecordTableModel& rows, int row, int column)>;
    void setAccessibleText(AccessibleText text) { m_accessibleText = std::move(text); }

    // Columns whose numbers read better right-aligned.
    void setRightAligned(QList<int> columns) { m_rightAligned = std::move(columns); }

private:
    struct Row {
        std::string cells;  // every column's text but the mark's, each ended by kCellEnd
        std::string mark;
    };
    static constexpr char kCellEnd = '\n';  // no cell holds a line break

    std::vector<Row> readRows() const;
    int markColumn() const { return static_cast<int>(m_captions.size()); }

    QStringList m_captions;
    RowCount m_rowCount;
    CellText m_cellText;
    QList<int> m_rightAligned;
    AccessibleText m_accessibleText;
    std::vector<Row> m_rows;  // what the views were last told
};

}  // namespace korvatek::gui

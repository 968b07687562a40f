#pragma once
// A list of the core's records as a table: every cell is the record's text, exactly as the
// commands read it back. The records stay in the Workspace; the model only reads them, and is
// told after each command whether the rows were replaced or only their cells changed.

#include <QAbstractTableModel>
#include <QStringList>

#include <functional>
#include <string>

namespace korvatek::gui {

class RecordTableModel : public QAbstractTableModel {
    Q_OBJECT
public:
    using RowCount = std::function<int()>;
    // Column 1 is the first ("#"), as the commands count them.
    using CellText = std::function<std::string(int row, int column)>;

    RecordTableModel(QStringList captions, RowCount rowCount, CellText cellText, QObject* parent = nullptr);

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override;

    // The cell as the record holds it (column counted from 1), empty outside the table.
    QString cellText(int row, int column) const;
    QString caption(int column) const;

    // After a command: the rows were replaced (a file was opened) ...
    void reload();
    // ... or only cell texts may have changed (a replacement mark).
    void refreshCells();

    // Columns whose numbers read better right-aligned.
    void setRightAligned(QList<int> columns) { m_rightAligned = std::move(columns); }

private:
    QStringList m_captions;
    RowCount m_rowCount;
    CellText m_cellText;
    QList<int> m_rightAligned;
    int m_shownRows = 0;  // the row count the views were last told
};

}  // namespace korvatek::gui

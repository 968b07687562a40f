#pragma once
// "Check patch..": where one or more patches stand on the open fullflash before a patched copy
// is written. A summary line per patch and per clash between patches, then every line of every
// patch in a table; the person writes the patched copy from here or closes it.

#include <QAbstractTableModel>
#include <QDialog>
#include <QPalette>
#include <QString>

#include <array>
#include <vector>

#include "app/message_table.h"
#include "edit/patch_files.h"

class QPlainTextEdit;
class QPushButton;
class QTableView;

namespace korvatek::gui {

// Every line of every patch, one row each, in the order the patches were chosen. The lines are
// copied: a patch of 100 000 lines costs a few megabytes and no text until a row is painted.
class PatchStatusModel : public QAbstractTableModel {
    Q_OBJECT
public:
    enum Column { PatchColumn, LineColumn, AddressColumn, BytesColumn, StateColumn, ColumnCount };
    // Numbers to sort by: the patch's place, the line, the address, the length, the state.
    static constexpr int SortRole = Qt::UserRole;

    // The colours are mixed into the palette's base, so they read in a light and a dark one.
    PatchStatusModel(const edit::StatusReport& report, const settings::MessageTable& messages,
                     const QPalette& palette, QObject* parent = nullptr);

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override;

    // The row's line and the patch it belongs to.
    const patch::LineStatus& lineAt(int row) const;
    std::size_t patchOf(int row) const;

    // Applied green, conflicting red, outside grey, each a light touch of the base colour; not
    // applied keeps the base (an invalid colour).
    static QColor stateBackground(patch::LineState state, const QPalette& palette);

    // The widest text each column can hold, for sizing the view without reading every row.
    QStringList widestTexts(int column) const;

private:
    QString cellText(int row, int column) const;

    std::vector<QString> m_names;           // file name of each patch
    std::vector<std::size_t> m_firstRows;   // first row of each patch, then the row count
    std::vector<patch::LineStatus> m_lines;
    std::array<QString, patch::kLineStateCount> m_stateWords;
    std::array<QColor, patch::kLineStateCount> m_backgrounds;
    QStringList m_captions;
};

class PatchStatusDialog : public QDialog {
    Q_OBJECT
public:
    // The write button is there only with canWrite; then it is the default button and accepts.
    PatchStatusDialog(const edit::StatusReport& report, const settings::MessageTable& messages, bool canWrite,
                      QWidget* parent = nullptr);

    PatchStatusModel& model() { return *m_model; }
    // One line per patch, then one per clash.
    QString summaryText() const;

private:
    void sizeColumns();

    PatchStatusModel* m_model = nullptr;
    QPlainTextEdit* m_summary = nullptr;
    QTableView* m_table = nullptr;
    QPushButton* m_write = nullptr;
    QPushButton* m_close = nullptr;
};

}  // namespace korvatek::gui

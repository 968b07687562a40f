#pragma once
// The pending-changes panel: every picture and glyph waiting in the two patches, before and
// after, where its bytes go and how many, a remove button, undo and redo, and a gauge of the
// free space the picture patch uses. It reads the Workspace; what it asks for, the window runs.

#include <QAbstractTableModel>
#include <QImage>
#include <QWidget>

#include <vector>

#include "app/workspace.h"

class QLabel;
class QProgressBar;
class QPushButton;
class QTableView;
class QToolButton;

namespace korvatek::gui {

class PendingChangesModel : public QAbstractTableModel {
    Q_OBJECT
public:
    enum Column { Change, Before, After, Size, Where, ColumnCount };
    static constexpr int kThumbnail = 40;   // the largest side of a thumbnail

    explicit PendingChangesModel(const app::Workspace& ws, QObject* parent = nullptr);

    // Reads the Workspace's lists again when they changed (or `force`); true when it did.
    bool update(bool force = false);

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

    struct Row {
        bool picture = true;
        int number = 0;     // picture number or glyph code
        QImage before;
        QImage after;
        QString where;
        qint64 bytes = 0;
    };
    const std::vector<Row>& rows() const { return m_rows; }

private:
    void read();
    const app::Workspace& m_ws;
    std::vector<Row> m_rows;
    std::uint64_t m_generation = ~std::uint64_t{0};
};

class PendingPanel : public QWidget {
    Q_OBJECT
public:
    explicit PendingPanel(app::Workspace& ws, QWidget* parent = nullptr);

    // After every command: the list, the buttons and the gauge.
    void refresh();
    void retranslate();

    PendingChangesModel& model() { return *m_model; }
    QTableView* table() const { return m_table; }
    QProgressBar* gauge() const { return m_gauge; }
    // Removes the selected change (the Remove button and the Delete key).
    void removeSelected();

signals:
    void removeRequested(bool picture, int number);
    void undoRequested();
    void redoRequested();
    void showRequested(bool picture, int number);   // a row double-clicked or Enter

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    app::Workspace& m_ws;
    PendingChangesModel* m_model = nullptr;
    QTableView* m_table = nullptr;
    QLabel* m_empty = nullptr;
    QPushButton* m_remove = nullptr;
    QToolButton* m_undo = nullptr;
    QToolButton* m_redo = nullptr;
    QProgressBar* m_gauge = nullptr;
};

}  // namespace korvatek::gui

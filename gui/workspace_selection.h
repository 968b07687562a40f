#pragma once
// A list's selection as the Workspace holds it: the Workspace's selected row is the one truth
// and the view only shows it. A move of the view's own (a click, a key, a drag) selects nothing
// by itself; it is passed on as a request, the window runs the list event in the Workspace, and
// then shows the Workspace's row with show(). So the view and the Workspace cannot disagree,
// also when a command moves the selection (a batch walks the rows, a fullflash is opened).

#include <QItemSelectionModel>

#include <functional>

namespace korvatek::gui {

class WorkspaceSelection : public QItemSelectionModel {
    Q_OBJECT
public:
    using Request = std::function<void(int row)>;

    WorkspaceSelection(QAbstractItemModel* model, Request request, QObject* parent = nullptr);

    // Makes `row` the current and selected row; outside the rows (-1) nothing is selected.
    void show(int row);

    // The view's moves: a new current row is a request, a selection of its own is ignored.
    void setCurrentIndex(const QModelIndex& index, QItemSelectionModel::SelectionFlags command) override;
    void select(const QModelIndex& index, QItemSelectionModel::SelectionFlags command) override;
    void select(const QItemSelection& selection, QItemSelectionModel::SelectionFlags command) override;
    // Clearing after the model was reset goes through: the rows it named are gone.
    void clear() override;

private:
    Request m_request;
    bool m_showing = false;  // the selection is being set from the Workspace
};

}  // namespace korvatek::gui

#include "workspace_selection.h"

#include <QScopedValueRollback>

namespace korvatek::gui {

WorkspaceSelection::WorkspaceSelection(QAbstractItemModel* model, Request request, QObject* parent)
    : QItemSelectionModel(model, parent), m_request(std::move(request)) {}

void WorkspaceSelection::show(int row) {
    const QModelIndex shown = currentIndex();
    if ((shown.isValid() ? shown.row() : -1) == row && (row < 0 || isRowSelected(row))) return;
    const QScopedValueRollback showing(m_showing, true);
    if (row >= 0 && row < model()->rowCount())
        QItemSelectionModel::setCurrentIndex(model()->index(row, 0), ClearAndSelect | Rows);
    else
        QItemSelectionModel::clear();
}

void WorkspaceSelection::setCurrentIndex(const QModelIndex& index, QItemSelectionModel::SelectionFlags command) {
    if (m_showing) return QItemSelectionModel::setCurrentIndex(index, command);
    if (index.isValid() && index.model() == model()) m_request(index.row());
}

void WorkspaceSelection::select(const QModelIndex& index, QItemSelectionModel::SelectionFlags command) {
    if (m_showing) QItemSelectionModel::select(index, command);
}

void WorkspaceSelection::select(const QItemSelection& selection, QItemSelectionModel::SelectionFlags command) {
    if (m_showing) QItemSelectionModel::select(selection, command);
}

void WorkspaceSelection::clear() {
    const QScopedValueRollback showing(m_showing, true);
    QItemSelectionModel::clear();
}

}  // namespace korvatek::gui

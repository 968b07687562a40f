#pragma once
// The search box above a list: what is typed is read into conditions (edit::readQuery) and the
// rows that do not meet them are hidden. Hiding rows leaves the model and its row numbers as
// they are, so the Workspace's selection, the menus and the preview work as before.

#include <QObject>

#include <functional>
#include <optional>
#include <vector>

#include "edit/record_query.h"

class QLabel;
class QLineEdit;
class QListView;
class QTreeView;
class QWidget;

namespace korvatek::gui {

class ListFilter : public QObject {
    Q_OBJECT
public:
    // `matches(row, query)` tells whether a row meets the query.
    ListFilter(QTreeView* list, edit::QueryFor what, std::function<bool(int, const edit::RecordQuery&)> matches,
               QWidget* parent);
    QLineEdit* box() const { return m_box; }
    QLabel* count() const { return m_count; }
    // Hides and shows rows again (a new list, or marks that changed).
    void apply();
    void setTexts(const QString& placeholder, const QString& accessibleName, const QString& countText,
                  const QString& unreadText);
    int shownRows() const { return m_shown; }
    // Another view of the same rows (the gallery) hides what the list hides.
    void alsoFilter(QListView* view) { m_tiles = view; }

private:
    QTreeView* m_list;
    QListView* m_tiles = nullptr;
    edit::QueryFor m_what;
    std::function<bool(int, const edit::RecordQuery&)> m_matches;
    QLineEdit* m_box;
    QLabel* m_count;
    QString m_countText = QStringLiteral("%1 / %2");
    QString m_unreadText;
    int m_shown = 0;
    bool m_filtering = false;   // some rows are hidden
};

}  // namespace korvatek::gui

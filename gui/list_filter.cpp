#include "list_filter.h"

#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QTreeView>

#include "qt_text.h"

namespace korvatek::gui {

ListFilter::ListFilter(QTreeView* list, edit::QueryFor what, std::function<bool(int, const edit::RecordQuery&)> matches,
                       QWidget* parent)
    : QObject(parent), m_list(list), m_what(what), m_matches(std::move(matches)) {
    m_box = new QLineEdit(parent);
    m_box->setClearButtonEnabled(true);
    m_count = new QLabel(parent);
    connect(m_box, &QLineEdit::textChanged, this, &ListFilter::apply);
}

void ListFilter::setTexts(const QString& placeholder, const QString& accessibleName, const QString& countText,
                          const QString& unreadText) {
    m_box->setPlaceholderText(placeholder);
    m_box->setAccessibleName(accessibleName);
    m_box->setAccessibleDescription(placeholder);
    m_countText = countText;
    m_unreadText = unreadText;
    apply();
}

void ListFilter::apply() {
    const int rows = m_list->model() ? m_list->model()->rowCount() : 0;
    const edit::RecordQuery query = edit::readQuery(toStdString(m_box->text()), m_what);
    QStringList unread;
    for (const auto& word : query.unreadWords) unread << toQString(word);
    m_box->setToolTip(unread.isEmpty() ? m_box->placeholderText() : m_unreadText + unread.join(QStringLiteral(", ")));
    // A word that reads as nothing is shown, not silently dropped: the box says so.
    m_box->setStyleSheet(unread.isEmpty() ? QString() : QStringLiteral("QLineEdit { border: 2px solid #d73a49; }"));
    const bool everything = query.conditions.empty() && query.unreadWords.empty();
    if (everything && !m_filtering) {
        m_shown = rows;
    } else {
        m_list->setUpdatesEnabled(false);
        if (m_tiles) m_tiles->setUpdatesEnabled(false);
        m_shown = 0;
        for (int row = 0; row < rows; ++row) {
            const bool shown = everything || m_matches(row, query);
            if (m_list->isRowHidden(row, {}) == shown) m_list->setRowHidden(row, {}, !shown);
            if (m_tiles && m_tiles->isRowHidden(row) == shown) m_tiles->setRowHidden(row, !shown);
            m_shown += shown ? 1 : 0;
        }
        m_list->setUpdatesEnabled(true);
        if (m_tiles) m_tiles->setUpdatesEnabled(true);
        m_filtering = !everything;
    }
    m_count->setText(everything ? QString() : QString(m_countText).arg(m_shown).arg(rows));
}

}  // namespace korvatek::gui

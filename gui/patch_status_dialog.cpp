#include "patch_status_dialog.h"

#include <QDialogButtonBox>
#include <QGuiApplication>
#include <QHeaderView>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QScreen>
#include <QStyle>
#include <QSortFilterProxyModel>
#include <QTableView>
#include <QVBoxLayout>

#include <algorithm>
#include <climits>

#include "app/patch_status_text.h"
#include "base/hex_text.h"
#include "qt_text.h"

namespace korvatek::gui {

using settings::MessageKey;

namespace {

constexpr std::size_t stateIndex(patch::LineState state) { return static_cast<std::size_t>(state); }

QColor mixed(const QColor& base, const QColor& touch, double share) {
    const auto mix = [share](int a, int b) { return static_cast<int>(a * (1.0 - share) + b * share + 0.5); };
    return QColor(mix(base.red(), touch.red()), mix(base.green(), touch.green()), mix(base.blue(), touch.blue()));
}

QString addressText(std::uint64_t offset) { return QStringLiteral("0x") + toQString(app::hexText(offset)); }

}  // namespace

PatchStatusModel::PatchStatusModel(const edit::StatusReport& report, const settings::MessageTable& messages,
                                   const QPalette& palette, QObject* parent)
    : QAbstractTableModel(parent) {
    std::size_t total = 0;
    for (const edit::PatchReport& p : report.patches) total += p.status.lines.size();
    m_lines.reserve(total);
    for (const edit::PatchReport& p : report.patches) {
        m_names.push_back(toQString(app::patchName(p.path)));
        m_firstRows.push_back(m_lines.size());
        m_lines.insert(m_lines.end(), p.status.lines.begin(), p.status.lines.end());
    }
    m_firstRows.push_back(m_lines.size());
    using enum patch::LineState;
    for (patch::LineState state : {Applied, NotApplied, Conflicting, Outside, ChangesNothing}) {
        m_stateWords[stateIndex(state)] = toQString(app::lineStateText(messages, state));
        m_backgrounds[stateIndex(state)] = stateBackground(state, palette);
    }
    for (MessageKey key : {MessageKey::MsgColumnPatch, MessageKey::MsgColumnLine, MessageKey::MsgColumnAddress,
                           MessageKey::MsgColumnBytes, MessageKey::MsgColumnState})
        m_captions << toQString(messages.text(key));
}

QColor PatchStatusModel::stateBackground(patch::LineState state, const QPalette& palette) {
    const QColor base = palette.color(QPalette::Base);
    switch (state) {
        case patch::LineState::Applied: return mixed(base, QColor(46, 160, 67), 0.28);
        case patch::LineState::Conflicting: return mixed(base, QColor(215, 58, 73), 0.32);
        case patch::LineState::Outside: return mixed(base, palette.color(QPalette::Text), 0.16);
        case patch::LineState::NotApplied:
        case patch::LineState::ChangesNothing: break;   // plain: neither done nor to do
    }
    return {};
}

int PatchStatusModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(std::min<std::size_t>(m_lines.size(), INT_MAX));
}

int PatchStatusModel::columnCount(const QModelIndex& parent) const { return parent.isValid() ? 0 : ColumnCount; }

const patch::LineStatus& PatchStatusModel::lineAt(int row) const { return m_lines[static_cast<std::size_t>(row)]; }

std::size_t PatchStatusModel::patchOf(int row) const {
    // The last first row not after this one: a patch without lines takes no row.
    const auto after = std::upper_bound(m_firstRows.begin(), m_firstRows.end(), static_cast<std::size_t>(row));
    return static_cast<std::size_t>(after - m_firstRows.begin()) - 1;
}

QString PatchStatusModel::cellText(int row, int column) const {
    const patch::LineStatus& line = lineAt(row);
    switch (column) {
        case PatchColumn: return m_names[patchOf(row)];
        case LineColumn: return QString::number(line.line);
        case AddressColumn: return addressText(line.offset);
        case BytesColumn: return QString::number(line.length);
        case StateColumn: return m_stateWords[stateIndex(line.state)];
        default: return {};
    }
}

QVariant PatchStatusModel::data(const QModelIndex& index, int role) const {
    if (!checkIndex(index, CheckIndexOption::IndexIsValid | CheckIndexOption::ParentIsInvalid)) return {};
    const patch::LineStatus& line = lineAt(index.row());
    switch (role) {
        case Qt::DisplayRole:
            return cellText(index.row(), index.column());
        case Qt::BackgroundRole: {
            // The whole row, so a conflicting line stands out wherever the eye is.
            const QColor& colour = m_backgrounds[stateIndex(line.state)];
            return colour.isValid() ? QVariant(colour) : QVariant();
        }
        case Qt::TextAlignmentRole:
            return index.column() == PatchColumn || index.column() == StateColumn
                       ? QVariant::fromValue(Qt::Alignment(Qt::AlignLeft | Qt::AlignVCenter))
                       : QVariant::fromValue(Qt::Alignment(Qt::AlignRight | Qt::AlignVCenter));
        case SortRole:
            switch (index.column()) {
                case PatchColumn: return QVariant::fromValue(static_cast<qulonglong>(patchOf(index.row())));
                case LineColumn: return line.line;
                case AddressColumn: return QVariant::fromValue(static_cast<qulonglong>(line.offset));
                case BytesColumn: return QVariant::fromValue(static_cast<qulonglong>(line.length));
                default: return static_cast<int>(line.state);
            }
        default:
            return {};
    }
}

QVariant PatchStatusModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole || section < 0 || section >= m_captions.size())
        return QAbstractTableModel::headerData(section, orientation, role);
    return m_captions[section];
}

QStringList PatchStatusModel::widestTexts(int column) const {
    switch (column) {
        case PatchColumn: return QStringList(m_names.begin(), m_names.end());
        case StateColumn: return QStringList(m_stateWords.begin(), m_stateWords.end());
        default: break;
    }
    int line = 0;
    std::uint64_t offset = 0;
    std::size_t length = 0;
    for (const patch::LineStatus& l : m_lines) {
        line = std::max(line, l.line);
        offset = std::max(offset, l.offset);
        length = std::max(length, l.length);
    }
    if (column == LineColumn) return {QString::number(line)};
    if (column == AddressColumn) return {addressText(offset)};
    if (column == BytesColumn) return {QString::number(length)};
    return {};
}

PatchStatusDialog::PatchStatusDialog(const edit::StatusReport& report, const settings::MessageTable& messages,
                                     bool canWrite, QWidget* parent)
    : QDialog(parent) {
    setObjectName(QStringLiteral("PatchStatusDialog"));
    setWindowTitle(toQString(messages.text(MessageKey::MsgStatusTitle)));
    const auto text = [&messages](MessageKey key) { return toQString(messages.text(key)); };

    QStringList summary;
    for (const edit::PatchReport& p : report.patches)
        summary << toQString(app::patchSummaryText(messages, app::patchName(p.path), p.status));
    for (const patch::PatchClash& clash : report.clashes)
        summary << toQString(app::clashText(messages, clash, app::patchName(report.patches[clash.firstPatch].path),
                                            app::patchName(report.patches[clash.secondPatch].path)));
    m_summary = new QPlainTextEdit(this);
    m_summary->setObjectName(QStringLiteral("summary"));
    m_summary->setReadOnly(true);
    m_summary->setTabChangesFocus(true);
    m_summary->setFrameShape(QFrame::NoFrame);
    m_summary->setPlainText(summary.join(QLatin1Char('\n')));
    m_summary->setAccessibleName(text(MessageKey::MsgStatusSummary));
    m_summary->setAccessibleDescription(text(MessageKey::MsgStatusSummaryDescription));
    QPalette plain = m_summary->palette();  // text to read, not a box to type in
    plain.setColor(QPalette::Base, plain.color(QPalette::Window));
    m_summary->setPalette(plain);
    m_model = new PatchStatusModel(report, messages, palette(), this);
    auto* sorted = new QSortFilterProxyModel(this);
    sorted->setSourceModel(m_model);
    sorted->setSortRole(PatchStatusModel::SortRole);
    m_table = new QTableView(this);
    m_table->setObjectName(QStringLiteral("lines"));
    m_table->setModel(sorted);
    m_table->setAccessibleName(text(MessageKey::MsgStatusLines));
    m_table->setAccessibleDescription(text(MessageKey::MsgStatusTableDescription));
    m_table->setSelectionBehavior(QAbstractItemView::SelectRows);
    m_table->setSelectionMode(QAbstractItemView::SingleSelection);
    m_table->setEditTriggers(QAbstractItemView::NoEditTriggers);
    m_table->setTabKeyNavigation(false);  // Tab moves on to the buttons; the arrows move in the table
    m_table->setWordWrap(false);
    m_table->verticalHeader()->hide();
    m_table->verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    m_table->verticalHeader()->setDefaultSectionSize(m_table->fontMetrics().height() + 6);
    // Unsorted at first: the lines in the order they are applied. A header click sorts.
    m_table->horizontalHeader()->setSortIndicator(-1, Qt::AscendingOrder);
    m_table->setSortingEnabled(true);
    m_table->horizontalHeader()->setStretchLastSection(true);
    sizeColumns();
    // The first line has the focus but is not selected: its colour stays visible.
    if (m_model->rowCount() > 0)
        m_table->selectionModel()->setCurrentIndex(sorted->index(0, 0), QItemSelectionModel::NoUpdate);

    auto* buttons = new QDialogButtonBox(this);
    if (canWrite) {
        m_write = buttons->addButton(captionText(messages.text(MessageKey::MsgWritePatchedCopy)),
                                     QDialogButtonBox::AcceptRole);
        m_write->setObjectName(QStringLiteral("write"));
        m_write->setAccessibleName(text(MessageKey::MsgWritePatchedCopy));
        m_write->setAccessibleDescription(text(MessageKey::MsgWritePatchedCopyDescription));
    }
    m_close = buttons->addButton(captionText(messages.text(MessageKey::MsgClose)), QDialogButtonBox::RejectRole);
    m_close->setObjectName(QStringLiteral("close"));
    m_close->setAccessibleName(text(MessageKey::MsgClose));
    (m_write != nullptr ? m_write : m_close)->setDefault(true);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(m_summary);
    layout->addWidget(m_table, 1);
    layout->addWidget(buttons);
    setTabOrder(m_summary, m_table);
    m_table->setFocus();

    // Wide enough for every column and the summary's longest line, within the screen; the
    // summary tall enough for its lines as wrapped, up to eight; then a screenful of lines.
    const QMargins margins = layout->contentsMargins();
    int width = m_table->frameWidth() * 2 + m_table->style()->pixelMetric(QStyle::PM_ScrollBarExtent);
    for (int column = 0; column < PatchStatusModel::ColumnCount; ++column) width += m_table->columnWidth(column);
    const QFontMetrics summaryMetrics(m_summary->font());
    const int summaryPadding = 2 * static_cast<int>(m_summary->document()->documentMargin()) + 4 +
                               m_summary->style()->pixelMetric(QStyle::PM_ScrollBarExtent);
    int summaryWidth = 0;
    for (const QString& line : summary) summaryWidth = std::max(summaryWidth, summaryMetrics.horizontalAdvance(line));
    width = std::max({width, summaryWidth + summaryPadding + 8, 560}) + margins.left() + margins.right();
    QSize room(1600, 1000);
    if (const QScreen* screen = parent != nullptr ? parent->screen() : QGuiApplication::primaryScreen())
        room = screen->availableSize() * 9 / 10;
    width = std::min(width, room.width());
    const int textWidth = width - margins.left() - margins.right() - summaryPadding;
    const int wrapped = summaryMetrics.boundingRect(QRect(0, 0, textWidth, INT_MAX), Qt::TextWordWrap,
                                                    summary.join(QLatin1Char('\n'))).height();
    m_summary->setFixedHeight(std::min(wrapped, 8 * summaryMetrics.lineSpacing()) +
                              2 * static_cast<int>(m_summary->document()->documentMargin()) + 4);
    const int height = margins.top() + margins.bottom() + 2 * layout->spacing() + m_summary->height() +
                       m_table->horizontalHeader()->sizeHint().height() + 2 * m_table->frameWidth() +
                       18 * m_table->verticalHeader()->defaultSectionSize() + buttons->sizeHint().height();
    resize(width, std::min(height, room.height()));
}

QString PatchStatusDialog::summaryText() const { return m_summary->toPlainText(); }

void PatchStatusDialog::sizeColumns() {
    // From the widest text a column can hold: asking the view would read every row.
    QHeaderView* header = m_table->horizontalHeader();
    const QFontMetrics metrics(m_table->font());
    const int padding = 2 * m_table->style()->pixelMetric(QStyle::PM_FocusFrameHMargin) + 16;
    for (int column = 0; column < PatchStatusModel::ColumnCount; ++column) {
        int width = header->sectionSizeHint(column);
        for (const QString& cell : m_model->widestTexts(column))
            width = std::max(width, metrics.horizontalAdvance(cell) + padding);
        m_table->setColumnWidth(column, width);
    }
}

}  // namespace korvatek::gui

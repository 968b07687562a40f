// Files dropped on the window: a fullflash (or a container to view) opens as File > Open
// would open it; a picture file on a picture row or the preview replaces that picture, a BMP
// on a glyph row that glyph, with the menu commands' checks; several picture files, or one
// dropped elsewhere, replace the pictures their names number ("0005.png", "12.bmp"), with one
// summary at the end. The same filter on the lists opens their popups from the keyboard.
#include <QApplication>
#include <QContextMenuEvent>
#include <QDropEvent>
#include <QKeyEvent>
#include <QFileInfo>
#include <QFrame>
#include <QMenu>
#include <QListView>
#include <QMimeData>
#include <QTreeView>

#include "app/batch_cancel.h"
#include "form1.h"
#include "gallery_pane.h"
#include "preview_widget.h"
#include "qt_text.h"

namespace korvatek::gui {

using settings::MessageKey;

namespace {

std::vector<QString> localFiles(const QMimeData* mime) {
    std::vector<QString> files;
    if (mime == nullptr) return files;
    for (const QUrl& url : mime->urls())
        if (url.isLocalFile()) files.push_back(url.toLocalFile());
    return files;
}

QString kindOf(const QString& path) { return QFileInfo(path).suffix().toLower(); }

bool isPictureFile(const QString& path) {
    const QString kind = kindOf(path);
    return kind == QLatin1String("gpf") || kind == QLatin1String("gpf2") || kind == QLatin1String("bmp") ||
           kind == QLatin1String("png");
}

bool needsTarget(const QString& path) {
    return kindOf(path) == QLatin1String("bmp") || kindOf(path) == QLatin1String("png");
}

// "0005.png" and "12.bmp" name pictures 5 and 12; anything else names none.
std::optional<int> pictureNumberOf(const QString& path) {
    const QString stem = QFileInfo(path).completeBaseName();
    if (stem.isEmpty() || stem.size() > 5) return std::nullopt;
    for (const QChar c : stem)
        if (!c.isDigit() || c.unicode() > '9') return std::nullopt;
    return stem.toInt();
}

}  // namespace

void Form1::installDropTargets() {
    setAcceptDrops(true);
    for (QWidget* target : {static_cast<QWidget*>(m_pictureList->viewport()), static_cast<QWidget*>(m_glyphList->viewport()),
                            static_cast<QWidget*>(m_preview), m_gallery->view()->viewport()}) {
        target->setAcceptDrops(true);
        target->installEventFilter(this);
    }
}

void Form1::markDropTarget(QWidget* over, const QRect& area) {
    if (over == nullptr || area.isEmpty()) {
        if (m_dropMark != nullptr) m_dropMark->hide();
        return;
    }
    if (m_dropMark == nullptr || m_dropMark->parentWidget() != over) {
        delete m_dropMark;
        auto* mark = new QFrame(over);
        mark->setObjectName(QStringLiteral("dropMark"));
        mark->setAttribute(Qt::WA_TransparentForMouseEvents);
        mark->setStyleSheet(QStringLiteral("#dropMark { border: 2px solid palette(highlight); background: transparent; }"));
        m_dropMark = mark;
    }
    m_dropMark->setGeometry(area);
    m_dropMark->show();
    m_dropMark->raise();
}

bool Form1::eventFilter(QObject* watched, QEvent* event) {
    const QEvent::Type type = event->type();
    if (type == QEvent::DragLeave) markDropTarget(nullptr, {});
    if (watched == m_pictureList || watched == m_glyphList) {
        auto* list = static_cast<QTreeView*>(watched);
        // The context menu key (its event comes from the platform) and Shift+F10 (a key press
        // where the platform makes nothing of it) open the popup at the current row.
        const bool fromKeyboard =
            (type == QEvent::ContextMenu && static_cast<QContextMenuEvent*>(event)->reason() == QContextMenuEvent::Keyboard) ||
            (type == QEvent::KeyPress && static_cast<QKeyEvent*>(event)->key() == Qt::Key_F10 &&
             static_cast<QKeyEvent*>(event)->modifiers() == Qt::ShiftModifier);
        if (!fromKeyboard) return QMainWindow::eventFilter(watched, event);
        const QRect current = list->visualRect(list->currentIndex());
        showPopup(list, list == m_pictureList ? m_picturePopup : m_glyphPopup,
                  current.isValid() ? current.bottomLeft() : QPoint(0, 0));
        return true;
    }
    if (type != QEvent::DragEnter && type != QEvent::DragMove && type != QEvent::Drop) return QMainWindow::eventFilter(watched, event);
    auto* drop = static_cast<QDropEvent*>(event);
    const std::vector<QString> files = localFiles(drop->mimeData());
    if (files.empty()) return QMainWindow::eventFilter(watched, event);
    drop->acceptProposedAction();
    const QPoint at = drop->position().toPoint();
    if (type != QEvent::Drop) {
        QRect area;
        for (QTreeView* list : {m_pictureList, m_glyphList}) {
            if (watched != list->viewport()) continue;
            const QModelIndex row = list->indexAt(at);
            if (row.isValid()) area = QRect(0, list->visualRect(row).top(), list->viewport()->width(), list->visualRect(row).height());
        }
        if (watched == m_preview) area = m_preview->rect();
        markDropTarget(static_cast<QWidget*>(watched), area);
        return true;
    }
    markDropTarget(nullptr, {});
    if (watched == m_pictureList->viewport()) {
        dropFiles(files, DropOn::Picture, m_pictureList->indexAt(at).row(), m_pictureList->viewport()->mapToGlobal(at));
    } else if (QListView* tiles = m_gallery->view(); watched == tiles->viewport()) {
        dropFiles(files, DropOn::Picture, tiles->indexAt(at).row(), tiles->viewport()->mapToGlobal(at));
    } else if (watched == m_glyphList->viewport()) {
        dropFiles(files, DropOn::Glyph, m_glyphList->indexAt(at).row(), m_glyphList->viewport()->mapToGlobal(at));
    } else {
        // The preview stands for whatever it shows.
        const bool fonts = m_ws.TabStrip1 == 2;
        dropFiles(files, fonts ? DropOn::Glyph : DropOn::Picture, fonts ? m_ws.ListView2Selected : m_ws.ListView1Selected,
                  m_preview->mapToGlobal(at));
    }
    return true;
}

void Form1::dragEnterEvent(QDragEnterEvent* event) {
    if (!localFiles(event->mimeData()).empty()) event->acceptProposedAction();
}

void Form1::dropEvent(QDropEvent* event) {
    const std::vector<QString> files = localFiles(event->mimeData());
    if (files.empty()) return;
    event->acceptProposedAction();
    dropFiles(files, DropOn::Window, -1, mapToGlobal(event->position().toPoint()));
}

std::optional<int> Form1::askDropTarget(const QPoint& where) {
    // The choice "Load BMP" offers, at the place of the drop; Escape drops nothing.
    QMenu menu(this);
    menu.setObjectName(QStringLiteral("dropTarget"));
    menu.setTitle(toQString(m_ws.msg(MessageKey::MsgDropTarget)));
    menu.addSection(toQString(m_ws.msg(MessageKey::MsgDropTarget)));
    for (const auto& [name, code] : {std::pair{"1", 0x01}, std::pair{"8", 0x85}, std::pair{"16", 0x88}, std::pair{"24", 0x8A}})
        menu.addAction(QString::fromLatin1(name))->setData(code);
    const QAction* chosen = menu.exec(where);
    if (chosen == nullptr) return std::nullopt;
    return chosen->data().toInt();
}

void Form1::dropFiles(const std::vector<QString>& files, DropOn on, int row, const QPoint& where) {
    const QString& first = files.front();
    if (files.size() == 1 && on == DropOn::Window && !isPictureFile(first)) {
        return runCommand([this, path = toStdString(first)] { m_ws.openChosenFile(path); });
    }
    if (files.size() == 1 && kindOf(first) == QLatin1String("bin"))
        return runCommand([this, path = toStdString(first)] { m_ws.openChosenFile(path); });
    if (!m_ws.firmware) return;

    if (files.size() == 1 && on == DropOn::Glyph && row >= 0 && kindOf(first) == QLatin1String("bmp")) {
        return runCommand([this, row, path = toStdString(first)] {
            m_ws.selectGlyph(row);
            m_ws.replaceSelectedGlyphWith(path);
        });
    }
    if (files.size() == 1 && on == DropOn::Picture && row >= 0 && isPictureFile(first)) {
        int target = 0;
        if (needsTarget(first)) {
            const auto chosen = askDropTarget(where);
            if (!chosen) return;
            target = *chosen;
        }
        return runCommand([this, row, target, path = toStdString(first)] {
            m_ws.selectPicture(row);
            m_ws.ListView1_Click();
            if (m_ws.ShownPicture == row) m_ws.replaceSelectedPictureWith(path, target);
        });
    }

    // By number, one summary at the end; a glyph list without a row under the drop takes none.
    if (on == DropOn::Glyph) return;
    std::vector<QString> pictures;
    for (const QString& f : files)
        if (isPictureFile(f)) pictures.push_back(f);
    if (pictures.empty()) return;
    int target = 0;
    if (std::any_of(pictures.begin(), pictures.end(), needsTarget)) {
        const auto chosen = askDropTarget(where);
        if (!chosen) return;
        target = *chosen;
    }
    std::vector<std::string> report;
    int replaced = 0;
    bool cancelled = false;
    runCommand([&] {
        for (std::size_t i = 0; i < pictures.size(); ++i) {
            // Cancel stops between two files: those replaced stay in the patch.
            cancelled = app::batchCancelled(m_ws, static_cast<int>(i), static_cast<int>(pictures.size()),
                                            MessageKey::MsgCancelledPictures);
            if (cancelled) break;
            const QString& file = pictures[i];
            const std::string name = toStdString(QFileInfo(file).fileName());
            const auto number = pictureNumberOf(file);
            std::vector<std::string> told;
            bool done = false;
            if (!number || *number >= static_cast<int>(m_ws.ListView1.size())) {
                told.push_back(m_ws.msg(number ? MessageKey::MsgNoSuchPicture : MessageKey::MsgDropNoNumber) +
                               (number ? std::to_string(*number) : std::string()));
            } else {
                m_ui.collectMessagesInto(&told);
                m_ws.selectPicture(*number);
                m_ws.ListView1_Click();
                done = m_ws.ShownPicture == *number && m_ws.replaceSelectedPictureWith(toStdString(file), target);
                m_ui.collectMessagesInto(nullptr);
            }
            replaced += done ? 1 : 0;
            if (!done)
                for (const std::string& line : told) report.push_back(name + ": " + line);
            m_ws.setProgress(static_cast<double>(i + 1) / static_cast<double>(pictures.size()) * 100.0);
        }
    });
    if (cancelled && report.empty()) return;   // the cancel's message said how far it got
    std::string summary = settings::fillIn(settings::fillIn(m_ws.msg(MessageKey::MsgDropSummary), "%1", std::to_string(replaced)),
                                           "%2", std::to_string(pictures.size()));
    for (const std::string& line : report) summary += "\r" + line;
    m_ws.showMessage(summary);
}

}  // namespace korvatek::gui

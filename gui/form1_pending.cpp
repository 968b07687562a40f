// The window's side of the pending changes: the panel in a dock, undo and redo for the whole
// window, the preview's toggle between the fullflash's picture and its waiting replacement, and
// the offer at start-up to bring back what a session that did not end left in its journal.
#include <QAction>
#include <QCheckBox>
#include <QDockWidget>
#include <QLabel>
#include <QStatusBar>
#include <QToolButton>
#include <QTreeView>
#include <QVBoxLayout>

#include "canvas_image.h"
#include "form1.h"
#include "pending_panel.h"
#include "qt_text.h"

namespace korvatek::gui {

using settings::MessageKey;

void Form1::buildPendingPanel() {
    m_pendingPanel = new PendingPanel(m_ws, this);
    m_pendingDock = new QDockWidget(this);
    m_pendingDock->setObjectName(QStringLiteral("PendingDock"));
    m_pendingDock->setWidget(m_pendingPanel);
    m_pendingDock->setFeatures(QDockWidget::DockWidgetClosable | QDockWidget::DockWidgetMovable |
                               QDockWidget::DockWidgetFloatable);
    addDockWidget(Qt::RightDockWidgetArea, m_pendingDock);
    resizeDocks({m_pendingDock}, {400}, Qt::Horizontal);
    // Opened from the status bar's button, so the window looks as it always has until asked.
    m_pendingDock->hide();

    // The status bar's button shows how many changes wait and brings the panel back.
    m_pendingToggle = new QToolButton(this);
    m_pendingToggle->setObjectName(QStringLiteral("PendingToggle"));
    m_pendingToggle->setCheckable(true);
    m_pendingToggle->setChecked(false);
    m_pendingToggle->setAutoRaise(true);
    // No taller than the progress bar beside it: the status bar keeps its height.
    m_pendingToggle->setMaximumHeight(m_progress->sizeHint().height());
    statusBar()->addPermanentWidget(m_pendingToggle);
    connect(m_pendingToggle, &QToolButton::toggled, m_pendingDock, &QDockWidget::setVisible);
    connect(m_pendingDock, &QDockWidget::visibilityChanged, this, [this](bool) {
        const QSignalBlocker quiet(m_pendingToggle);
        m_pendingToggle->setChecked(!m_pendingDock->isHidden());
    });

    m_undoPending = new QAction(this);
    m_undoPending->setObjectName(QStringLiteral("UndoPending"));
    m_undoPending->setShortcuts({QKeySequence(Qt::CTRL | Qt::Key_Z)});
    m_redoPending = new QAction(this);
    m_redoPending->setObjectName(QStringLiteral("RedoPending"));
    m_redoPending->setShortcuts({QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_Z), QKeySequence(Qt::CTRL | Qt::Key_Y)});
    for (QAction* action : {m_undoPending, m_redoPending}) {
        action->setShortcutContext(Qt::WindowShortcut);
        addAction(action);
    }
    connect(m_undoPending, &QAction::triggered, this, &Form1::undoPending);
    connect(m_redoPending, &QAction::triggered, this, &Form1::redoPending);

    connect(m_pendingPanel, &PendingPanel::undoRequested, this, &Form1::undoPending);
    connect(m_pendingPanel, &PendingPanel::redoRequested, this, &Form1::redoPending);
    connect(m_pendingPanel, &PendingPanel::removeRequested, this, [this](bool picture, int number) {
        runCommand([this, picture, number] {
            if (picture)
                m_ws.removePendingPicture(number);
            else
                m_ws.removePendingGlyph(number);
        });
    });
    connect(m_pendingPanel, &PendingPanel::showRequested, this, [this](bool picture, int number) {
        TabStrip1_Click(picture ? 1 : 2);
        if (picture)
            pictureRowRequested(number);
        else if (m_ws.FtypeIndex == m_ws.GlyphPatchFont)
            glyphRowRequested(number - 1);
    });

    m_showReplacement = new QCheckBox(this);
    m_showReplacement->setObjectName(QStringLiteral("ShowReplacement"));
    if (auto* previewLayout = qobject_cast<QVBoxLayout*>(m_info->parentWidget()->layout()))
        previewLayout->insertWidget(previewLayout->indexOf(m_info) + 1, m_showReplacement);
    connect(m_showReplacement, &QCheckBox::toggled, this, [this] { showPreview(); });
}

void Form1::undoPending() {
    runCommand([this] { m_ws.undoPending(); });
}

void Form1::redoPending() {
    runCommand([this] { m_ws.redoPending(); });
}

void Form1::refreshPending() {
    m_pendingPanel->refresh();
    const std::size_t count = m_ws.pendingPictures().size() + m_ws.collectedGlyphs.size();
    m_pendingToggle->setText(toQString(m_ws.msg(MessageKey::MsgPendingTitle)) + QStringLiteral(": %1").arg(count));
    m_pendingDock->setWindowTitle(m_pendingToggle->text());

    // Only there when the selected picture has a replacement waiting.
    m_showReplacement->setVisible(selectedPending() != nullptr && m_ws.TabStrip1 == 1);
}

void Form1::retranslatePending() {
    const auto text = [&](MessageKey key) { return toQString(m_ws.msg(key)); };
    m_pendingPanel->retranslate();
    m_pendingToggle->setToolTip(text(MessageKey::MsgPendingDescription));
    m_pendingToggle->setAccessibleName(text(MessageKey::MsgPendingTitle));
    m_undoPending->setText(text(MessageKey::MsgUndo));
    m_redoPending->setText(text(MessageKey::MsgRedo));
    m_showReplacement->setText(text(MessageKey::MsgShowReplacement));
    m_showReplacement->setToolTip(text(MessageKey::MsgShowReplacementTip));
    m_showReplacement->setAccessibleDescription(text(MessageKey::MsgShowReplacementTip));
    refreshPending();
}

const app::PendingPicture* Form1::selectedPending() const {
    for (const auto& picture : m_ws.pendingPictures())
        if (picture.record.number == m_ws.ListView1Selected && picture.flash == m_ws.firmware) return &picture;
    return nullptr;
}

QImage Form1::shownReplacement() const {
    if (m_showReplacement == nullptr || !m_showReplacement->isChecked() || m_ws.TabStrip1 != 1) return {};
    const app::PendingPicture* pending = selectedPending();
    return pending != nullptr ? containerImage(*pending->container) : QImage();
}

void Form1::offerJournalRestore() {
    const auto journal = m_ws.readPendingJournal();
    if (!journal) return;
    const std::string question = m_ws.msg(MessageKey::MsgJournalRestore) + "\r\r" + journal->flashPath + "\r" +
                                 m_ws.msg(MessageKey::MsgJournalCount) + std::to_string(journal->changeCount());
    if (!m_ui.askOkCancel(question)) {
        m_ws.forgetPendingJournal();
        return;
    }
    runCommand([&] { m_ws.restorePendingJournal(*journal); });
}

}  // namespace korvatek::gui

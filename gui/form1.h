#pragma once
// Form1, the main window: the tab strip with the picture and glyph lists, the font selector,
// the preview and its information text, the progress bar, the menu bar and the two list
// popups. Every command runs in the Workspace; the window passes the person's gestures in and
// shows the Workspace's state again after each command.

#include <QMainWindow>

#include <functional>
#include <memory>
#include <optional>
#include <vector>
#include <utility>
#include <vector>

#include "app/workspace.h"
#include "qt_user_interface.h"
#include "desktop/file_association.h"
#include "app/settings_store.h"

class QAbstractItemView;
class QAction;
class QCheckBox;
class QDockWidget;
class QToolButton;
class QDragEnterEvent;
class QDropEvent;
class QComboBox;
class QLabel;
class QMenu;
class QProgressBar;
class QPushButton;
class QSplitter;
class QTabBar;
class QTreeView;

namespace korvatek::gui {

class BatchCancel;
class GalleryPane;
class GlyphListModel;
class OptionsDialog;
class PictureListModel;
class PendingPanel;
class PreviewWidget;
class TextPreview;
class ListFilter;
class WorkspaceSelection;

class Form1 : public QMainWindow {
    Q_OBJECT
public:
    Form1(std::unique_ptr<settings::SettingsStore> settingsStore,
          std::unique_ptr<settings::AssociationStore> associations, QWidget* parent = nullptr);
    ~Form1() override;

    // The load handler: the file named by the arguments (if any), then settings and language.
    void startUp(const QStringList& arguments);

    // Commands of the window itself; every other menu item runs its Workspace command.
    void mnu_FileExit_Click();
    void mnu_Options_Click();
    void mnu_About_Click();
    void TabStrip1_Click(int tab);

    // The About box's text: the credit lines of the chosen language, one per line.
    QString aboutText() const;
    // The options dialog, wired to this window; mnu_Options shows it modally.
    std::unique_ptr<OptionsDialog> makeOptionsDialog();
    // Every caption the language routines set, read again from the message table.
    void retranslate();
    // The glyph editor on the selected glyph; Apply queues the edited cell as a BMP would be.
    void editGlyph();
    // The picture editor on the selected picture; Apply queues its pixels as Load BMP would.
    void editPicture();

    // Runs a command as a menu item does (one at a time; running out of memory is told), then
    // shows the Workspace again.
    void runCommand(const std::function<void()>& command);

    // ---- the changes waiting in the patches (form1_pending.cpp)
    // Where the journal of pending changes is kept; none (the default) keeps no journal.
    void setJournalPath(const std::string& path) { m_ws.journalPath = path; }
    // At start-up: a journal left by a session that did not end offers its changes back.
    void offerJournalRestore();
    void undoPending();
    void redoPending();
    PendingPanel& pendingPanel() { return *m_pendingPanel; }
    QDockWidget* pendingDock() const { return m_pendingDock; }
    // The preview's toggle: the replacement waiting in the patch instead of the fullflash's picture.
    QCheckBox* showReplacementBox() const { return m_showReplacement; }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dropEvent(QDropEvent* event) override;

private:
    enum class DropOn { Window, Picture, Glyph };
    void installDropTargets();
    void dropFiles(const std::vector<QString>& files, DropOn on, int row, const QPoint& where);
    std::optional<int> askDropTarget(const QPoint& where);
    // While files are dragged over a list, the row they would land on is outlined.
    void markDropTarget(QWidget* over, const QRect& area);
    QWidget* m_dropMark = nullptr;
public:

    // Popups appear through this; by default the menu opens at the pointer.
    using PopupPresenter = std::function<void(QMenu& menu, const QPoint& globalPos)>;
    void setPopupPresenter(PopupPresenter presenter) { m_popupPresenter = std::move(presenter); }

    app::Workspace& workspace() { return m_ws; }
    PictureListModel& pictureModel() { return *m_pictureModel; }
    GlyphListModel& glyphModel() { return *m_glyphModel; }
    GalleryPane& gallery() { return *m_gallery; }

private:
    void buildWidgets();
    void buildMenus();
    void buildPictureMenu();
    void buildGlyphMenu();
    QMenu* addCaptionedMenu(QWidget* parent, const char* name, settings::CaptionKey caption);
    QAction* addCaptionedAction(QWidget* menu, const char* name, settings::CaptionKey caption);
    QMenu* addFixedMenu(QMenu* parent, const char* name, const QString& caption);
    QAction* addFixedAction(QMenu* menu, const char* name, const QString& caption);
    void addTargetTypeItems(QMenu* menu, const char* prefix, void (app::Workspace::*command)(int));
    void wire(QAction* action, std::function<void()> command);
    void updateCommandStates();
    void copyToClipboard(const std::optional<std::string>& text);

    void refreshFromWorkspace();
    void fillFontSelector();
    void showPreview();
    void showTab();
    void resizeListColumns();
    void pictureRowRequested(int row);
    void glyphRowRequested(int row);
    void showPopup(QAbstractItemView* list, QMenu* popup, const QPoint& position);

    void buildPendingPanel();
    void refreshPending();
    void retranslatePending();
    // The selected picture's pending replacement, when the toggle asks for it; null otherwise.
    QImage shownReplacement() const;
    // The waiting replacement of the selected picture, if it has one.
    const app::PendingPicture* selectedPending() const;
    PendingPanel* m_pendingPanel = nullptr;
    QDockWidget* m_pendingDock = nullptr;
    QToolButton* m_pendingToggle = nullptr;
    QCheckBox* m_showReplacement = nullptr;
    QAction* m_undoPending = nullptr;
    QAction* m_redoPending = nullptr;

    QtUserInterface m_ui;
    app::Workspace m_ws;
    std::unique_ptr<settings::SettingsStore> m_settingsStore;
    std::unique_ptr<settings::AssociationStore> m_associations;

    PictureListModel* m_pictureModel = nullptr;
    TextPreview* m_textPreview = nullptr;
    ListFilter* m_pictureFilter = nullptr;
    ListFilter* m_glyphFilter = nullptr;
    GalleryPane* m_gallery = nullptr;   // the pictures as tiles, instead of the list when on
    std::vector<char> m_decodable;   // per picture: 1 when it can be decoded (asked by the search)
    bool pictureDecodable(int row);
    GlyphListModel* m_glyphModel = nullptr;
    WorkspaceSelection* m_pictureSelection = nullptr;
    WorkspaceSelection* m_glyphSelection = nullptr;
    QTabBar* m_tabStrip = nullptr;
    QComboBox* m_fontSelector = nullptr;
    QTreeView* m_pictureList = nullptr;
    QTreeView* m_glyphList = nullptr;
    PreviewWidget* m_preview = nullptr;
    QLabel* m_info = nullptr;
    QLabel* m_fileStatus = nullptr;
    QProgressBar* m_progress = nullptr;
    QPushButton* m_cancelButton = nullptr;
    BatchCancel* m_batchCancel = nullptr;
    QSplitter* m_splitter = nullptr;
    QMenu* m_picturePopup = nullptr;
    QMenu* m_glyphPopup = nullptr;
    QAction* m_editGlyph = nullptr;
    QAction* m_editPicture = nullptr;
    QAction* m_checkPatch = nullptr;
    QAction* m_savePicturePatch = nullptr;
    QAction* m_discardPicturePatch = nullptr;
    QAction* m_saveGlyphPatch = nullptr;
    QAction* m_discardGlyphPatch = nullptr;

    std::vector<std::pair<QAction*, settings::CaptionKey>> m_captioned;
    PopupPresenter m_popupPresenter;
    bool m_running = false;  // a command is under way
    bool m_listPaneFitted = false;
};

}  // namespace korvatek::gui

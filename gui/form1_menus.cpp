// The menu bar and the two list popups. Items keep their control names as object names; each
// runs its Workspace command.
#include <QAction>
#include <QComboBox>
#include <QKeySequence>
#include <QMenu>
#include <QMenuBar>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QTabBar>
#include <QTreeView>

#include <array>

#include "accessible_text.h"
#include "form1.h"
#include "gallery_pane.h"
#include "list_filter.h"
#include "pixel_editor.h"
#include "preview_widget.h"
#include "text_preview.h"
#include "glyph_list_model.h"
#include "picture_list_model.h"
#include "qt_text.h"

namespace korvatek::gui {

using settings::CaptionKey;

namespace {

// "1 bit" to "24 bit" give the target type fields 0x01, 0x85, 0x88 and 0x8A.
struct TargetType {
    const char* bits;
    int type;
};
constexpr std::array<TargetType, 4> kTargetTypes{{{"1", 0x01}, {"8", 0x85}, {"16", 0x88}, {"24", 0x8A}}};

QAction* separator(QMenu* menu, const char* name) {
    QAction* bar = menu->addSeparator();
    bar->setObjectName(QLatin1String(name));
    return bar;
}

}  // namespace

QMenu* Form1::addCaptionedMenu(QWidget* parent, const char* name, CaptionKey caption) {
    auto* menu = new QMenu(parent);
    menu->setObjectName(QLatin1String(name));
    parent->addAction(menu->menuAction());
    m_captioned.emplace_back(menu->menuAction(), caption);
    return menu;
}

QAction* Form1::addCaptionedAction(QWidget* menu, const char* name, CaptionKey caption) {
    auto* action = new QAction(menu);
    action->setObjectName(QLatin1String(name));
    menu->addAction(action);
    m_captioned.emplace_back(action, caption);
    return action;
}

QMenu* Form1::addFixedMenu(QMenu* parent, const char* name, const QString& caption) {
    QMenu* menu = parent->addMenu(caption);
    menu->setObjectName(QLatin1String(name));
    return menu;
}

QAction* Form1::addFixedAction(QMenu* menu, const char* name, const QString& caption) {
    QAction* action = menu->addAction(caption);
    action->setObjectName(QLatin1String(name));
    return action;
}

void Form1::wire(QAction* action, std::function<void()> command) {
    connect(action, &QAction::triggered, this, [this, command = std::move(command)] { runCommand(command); });
}

// The "1 bit" to "24 bit" items of a target-type submenu, named prefix + "_1bit" ...
void Form1::addTargetTypeItems(QMenu* menu, const char* prefix, void (app::Workspace::*command)(int)) {
    for (const TargetType& target : kTargetTypes) {
        QAction* item = addFixedAction(menu, "", QStringLiteral("%1 bit").arg(QLatin1String(target.bits)));
        item->setObjectName(QLatin1String(prefix) + QStringLiteral("_%1bit").arg(QLatin1String(target.bits)));
        wire(item, [this, command, type = target.type] { (m_ws.*command)(type); });
    }
}

void Form1::buildMenus() {
    QMenuBar* bar = menuBar();

    QMenu* file = addCaptionedMenu(bar, "mnu_File", CaptionKey::mnu_File);
    QAction* open = addCaptionedAction(file, "mnu_FileOpen", CaptionKey::mnu_FileOpen);
    open->setShortcut(QKeySequence::Open);
    wire(open, [this] { m_ws.mnu_FileOpen(); });
    file->addSeparator();
    QAction* exit = addCaptionedAction(file, "mnu_FileExit", CaptionKey::mnu_FileExit);
    exit->setShortcut(QKeySequence::Quit);
    connect(exit, &QAction::triggered, this, &Form1::mnu_FileExit_Click);

    QMenu* tools = addCaptionedMenu(bar, "mnu_Tools", CaptionKey::mnu_Tools);
    wire(addCaptionedAction(tools, "mnu_ToolsMake", CaptionKey::mnu_ToolsMake), [this] { m_ws.mnu_ToolsMake(); });
    wire(addCaptionedAction(tools, "mnu_ToolsConvertLumbrapatch", CaptionKey::mnu_ToolsConvertLumbrapatch),
         [this] { m_ws.mnu_ToolsConvertLumbrapatch(); });
    wire(addFixedAction(tools, "mnu_ToolsGPFakaGPF2", QStringLiteral("GPF<>GPF2")),
         [this] { m_ws.mnu_ToolsGPFakaGPF2(); });
    wire(addFixedAction(tools, "mnu_ToolsGPFtoBMP", QStringLiteral("GPF>BMP")), [this] { m_ws.mnu_ToolsGPFtoBMP(); });
    addTargetTypeItems(addFixedMenu(tools, "mnu_ToolsBMPtoGPF", QStringLiteral("BMP>GPF")), "mnu_ToolsBMPtoGPF",
                       &app::Workspace::mnu_ToolsBMPtoGPF);
    addTargetTypeItems(addFixedMenu(tools, "mnu_ToolsPNGtoGPF", QStringLiteral("PNG>GPF")), "mnu_ToolsPNGtoGPF",
                       &app::Workspace::mnu_ToolsPNGtoGPF);
    wire(addFixedAction(tools, "mnu_ToolsGPFakaDAT", QStringLiteral("GPF<>DAT")), [this] { m_ws.mnu_ToolsGPFakaDAT(); });
    tools->addSeparator();
    m_checkPatch = addCaptionedAction(tools, "mnu_ToolsCheckPatch", CaptionKey::mnu_ToolsCheckPatch);
    wire(m_checkPatch, [this] { m_ws.mnu_ToolsCheckPatch(); });

    // Options and About are commands of the menu bar itself.
    connect(addCaptionedAction(bar, "mnu_Options", CaptionKey::mnu_Options), &QAction::triggered, this,
            &Form1::mnu_Options_Click);
    connect(addCaptionedAction(bar, "mnu_About", CaptionKey::mnu_About), &QAction::triggered, this,
            &Form1::mnu_About_Click);

    buildPictureMenu();
    buildGlyphMenu();
}

void Form1::buildPictureMenu() {
    m_picturePopup = new QMenu(this);
    m_picturePopup->setObjectName(QStringLiteral("mnuPopup"));
    QMenu* popup = m_picturePopup;
    wire(addCaptionedAction(popup, "mnuPopup_LoadGPF", CaptionKey::mnuPopup_LoadGPF),
         [this] { m_ws.mnuPopup_LoadGPF(); });
    wire(addCaptionedAction(popup, "mnuPopup_LoadGPFfolder", CaptionKey::mnuPopup_LoadGPFfolder),
         [this] { m_ws.mnuPopup_LoadGPFfolder(); });
    addTargetTypeItems(addCaptionedMenu(popup, "mnuPopup_LoadBMP", CaptionKey::mnuPopup_LoadBMP), "mnuPopup_LoadBMP",
                       &app::Workspace::mnuPopup_LoadBMP);
    m_editPicture = popup->addAction(QString());
    m_editPicture->setObjectName(QStringLiteral("mnuPopup_EditPicture"));
    connect(m_editPicture, &QAction::triggered, this, &Form1::editPicture);
    QMenu* loadBmps = addCaptionedMenu(popup, "mnuPopup_LoadBMPs", CaptionKey::mnuPopup_LoadBMPs);
    addTargetTypeItems(loadBmps, "mnuPopup_LoadBMPs", &app::Workspace::mnuPopup_LoadBMPs);
    wire(addFixedAction(loadBmps, "mnuPopup_LoadBMPs_Origbit", QStringLiteral("original")),
         [this] { m_ws.mnuPopup_LoadBMPs_Origbit(); });
    separator(popup, "mnuPopup_Bar0");
    wire(addCaptionedAction(popup, "mnuPopup_SaveGPF", CaptionKey::mnuPopup_SaveGPF),
         [this] { m_ws.mnuPopup_SaveGPF(); });
    wire(addCaptionedAction(popup, "mnuPopup_SaveAllGPF", CaptionKey::mnuPopup_SaveAllGPF),
         [this] { m_ws.mnuPopup_SaveAllGPF(); });
    separator(popup, "mnuPopup_Bar1");
    wire(addCaptionedAction(popup, "mnuPopup_SaveBMP", CaptionKey::mnuPopup_SaveBMP),
         [this] { m_ws.mnuPopup_SaveBMP(); });
    wire(addCaptionedAction(popup, "mnuPopup_SaveAllBMP", CaptionKey::mnuPopup_SaveAllBMP),
         [this] { m_ws.mnuPopup_SaveAllBMP(); });
    separator(popup, "mnuPopup_Bar2");
    // The patch items have something to act on once a picture was replaced.
    m_savePicturePatch = addCaptionedAction(popup, "mnuPopup_SavePatch", CaptionKey::mnuPopup_SavePatch);
    wire(m_savePicturePatch, [this] { m_ws.mnuPopup_SavePatch(); });
    m_discardPicturePatch = addCaptionedAction(popup, "mnuPopup_DiscardPatch", CaptionKey::mnuPopup_DiscardPatch);
    wire(m_discardPicturePatch, [this] { m_ws.mnuPopup_DiscardPatch(); });

    // The copy items take their captions from the list columns they copy.
    QMenu* copy = addCaptionedMenu(popup, "mnuPopup_CopyColumnHeader", CaptionKey::mnuPopup_CopyColumnHeader);
    for (int column : {6, 7}) {
        QAction* item = copy->addAction(m_pictureModel->caption(column));
        item->setObjectName(QStringLiteral("mnuPopup_CopyColumnHeader%1").arg(column));
        connect(item, &QAction::triggered, this, [this, column] { copyToClipboard(m_ws.copyPictureCell(column)); });
    }
}

void Form1::buildGlyphMenu() {
    m_glyphPopup = new QMenu(this);
    m_glyphPopup->setObjectName(QStringLiteral("mnuPopup2"));
    QMenu* popup = m_glyphPopup;
    wire(addCaptionedAction(popup, "mnuPopup2_LoadBMP", CaptionKey::mnuPopup2_LoadBMP),
         [this] { m_ws.mnuPopup2_LoadBMP(); });
    wire(addCaptionedAction(popup, "mnuPopup2_LoadBMPfolder", CaptionKey::mnuPopup2_LoadBMPfolder),
         [this] { m_ws.mnuPopup2_LoadBMPfolder(); });
    m_editGlyph = popup->addAction(QString());
    m_editGlyph->setObjectName(QStringLiteral("mnuPopup2_EditGlyph"));
    connect(m_editGlyph, &QAction::triggered, this, &Form1::editGlyph);
    separator(popup, "mnuPopup2_Bar0");
    wire(addCaptionedAction(popup, "mnuPopup2_SaveBMP", CaptionKey::mnuPopup2_SaveBMP),
         [this] { m_ws.mnuPopup2_SaveBMP(); });
    wire(addCaptionedAction(popup, "mnuPopup2_SaveAllBMP", CaptionKey::mnuPopup2_SaveAllBMP),
         [this] { m_ws.mnuPopup2_SaveAllBMP(); });
    separator(popup, "mnuPopup2_Bar1");
    wire(addCaptionedAction(popup, "mnuPopup2_MakeF", CaptionKey::mnuPopup2_MakeF), [this] { m_ws.mnuPopup2_MakeF(); });
    wire(addCaptionedAction(popup, "mnuPopup2_ChangeFSize", CaptionKey::mnuPopup2_ChangeFSize),
         [this] { m_ws.mnuPopup2_ChangeFSize(); });
    m_saveGlyphPatch = addCaptionedAction(popup, "mnuPopup2_SavePatch", CaptionKey::mnuPopup2_SavePatch);
    wire(m_saveGlyphPatch, [this] { m_ws.mnuPopup2_SavePatch(); });
    // The glyph list's "Discard patch" reads as the picture list's does.
    m_discardGlyphPatch = addCaptionedAction(popup, "mnuPopup2_DiscardPatch", CaptionKey::mnuPopup2_DiscardPatch);
    wire(m_discardGlyphPatch, [this] { m_ws.mnuPopup2_DiscardPatch(); });

    QMenu* copy = addCaptionedMenu(popup, "mnuPopup2_CopyColumnHeader", CaptionKey::mnuPopup2_CopyColumnHeader);
    for (int column : {7, 8}) {
        QAction* item = copy->addAction(m_glyphModel->caption(column));
        item->setObjectName(QStringLiteral("mnuPopup2_CopyColumnHeader%1").arg(column));
        connect(item, &QAction::triggered, this, [this, column] { copyToClipboard(m_ws.copyGlyphCell(column)); });
    }
}

void Form1::updateCommandStates() {
    m_checkPatch->setEnabled(m_ws.firmware != nullptr);
    m_savePicturePatch->setEnabled(m_ws.mnuPopup_SavePatchEnabled());
    m_discardPicturePatch->setEnabled(m_ws.mnuPopup_SavePatchEnabled());
    m_saveGlyphPatch->setEnabled(m_ws.mnuPopup2_SavePatchEnabled());
    m_discardGlyphPatch->setEnabled(m_ws.mnuPopup2_SavePatchEnabled());
}

void Form1::retranslate() {
    const settings::MessageTable& table = m_ws.messages;
    for (const auto& [action, key] : m_captioned) action->setText(captionText(table.caption(key)));
    m_tabStrip->setTabText(0, captionText(table.caption(CaptionKey::TabPictures)));
    m_tabStrip->setTabText(1, captionText(table.caption(CaptionKey::TabFonts)));
    m_fontSelector->setPlaceholderText(toQString(table.caption(CaptionKey::FtypeText)));
    m_textPreview->retranslate();
    retranslatePending();
    // The Cancel of a batch and what a screen reader says for the window's parts.
    const auto said = [&table](settings::MessageKey key) { return toQString(table.text(key)); };
    m_cancelButton->setText(captionText(table.caption(CaptionKey::cmdCancel)));
    m_cancelButton->setAccessibleName(toQString(table.caption(CaptionKey::cmdCancel)));
    m_cancelButton->setAccessibleDescription(said(settings::MessageKey::MsgCancelDescription));
    m_cancelButton->setToolTip(m_cancelButton->accessibleDescription());
    m_progress->setAccessibleName(said(settings::MessageKey::MsgProgressName));
    m_progress->setAccessibleDescription(said(settings::MessageKey::MsgProgressDescription));
    m_pictureList->setAccessibleName(said(settings::MessageKey::MsgPictureListName));
    m_pictureList->setAccessibleDescription(said(settings::MessageKey::MsgPictureListDescription));
    m_glyphList->setAccessibleName(said(settings::MessageKey::MsgGlyphListName));
    m_glyphList->setAccessibleDescription(said(settings::MessageKey::MsgGlyphListDescription));
    m_preview->setAccessibleName(said(settings::MessageKey::MsgPicturePreviewName));
    m_preview->setAccessibleDescription(previewDescription(m_ws));
    m_info->setAccessibleName(said(settings::MessageKey::MsgInfoName));
    m_fontSelector->setAccessibleName(toQString(table.caption(CaptionKey::FtypeText)));
    m_fontSelector->setAccessibleDescription(said(settings::MessageKey::MsgFontSelectorDescription));
    m_editGlyph->setText(captionText(table.text(settings::MessageKey::MsgEditGlyph)));
    m_editPicture->setText(captionText(table.text(settings::MessageKey::MsgEditPicture)));
    using settings::MessageKey;
    const auto text = [&](MessageKey key) { return toQString(table.text(key)); };
    m_pictureFilter->setTexts(text(MessageKey::MsgFindPictures), text(MessageKey::MsgFindName), text(MessageKey::MsgFindCount),
                              text(MessageKey::MsgFindUnread));
    m_glyphFilter->setTexts(text(MessageKey::MsgFindGlyphs), text(MessageKey::MsgFindName), text(MessageKey::MsgFindCount),
                            text(MessageKey::MsgFindUnread));
    m_gallery->retranslate();
}

void Form1::editPicture() {
    if (!m_ws.firmware || m_ws.ListView1Selected < 0) return;
    // The selected picture is decoded first, as a replacement from the menu would have it.
    runCommand([this] {
        if (m_ws.ShownPicture != m_ws.ListView1Selected) m_ws.ListView1_Click();
    });
    if (m_ws.ShownPicture != m_ws.ListView1Selected) return;   // it cannot be shown: nothing to edit
    PictureEditorDialog editor(m_ws, this);
    if (editor.exec() != QDialog::Accepted) return;
    const Bytes bmp = editor.bmp();
    const int target = editor.targetType();
    runCommand([this, &bmp, target] { m_ws.applyEditedPicture(bmp, target); });
}

void Form1::editGlyph() {
    if (!m_ws.firmware || m_ws.ListView2Selected < 0) return;
    GlyphEditorDialog editor(m_ws, this);
    if (editor.exec() != QDialog::Accepted) return;
    const Bytes bmp = editor.bmp();
    runCommand([this, &bmp] { m_ws.applyEditedGlyph(bmp); });
}

}  // namespace korvatek::gui

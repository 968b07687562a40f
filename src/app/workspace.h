#pragma once
// The Workspace: the whole editing state the commands work on, and the commands themselves
// (menu, list and tab events). It never opens a dialog: it talks to the person through the
// UserInterface it is given. The window shows what it holds; the command line drives it with
// answers given in advance.

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "base/file_io.h"
#include "base/result.h"
#include "app/user_interface.h"
#include "codec/pixel_canvas.h"
#include "edit/picture_decode.h"
#include "edit/picture_files.h"
#include "firmware/identification.h"
#include "firmware/picture_record.h"
#include "fonts/font_patch.h"
#include "fonts/glyph_record.h"
#include "app/message_table.h"
#include "app/pending_changes.h"
#include "app/settings_store.h"

namespace korvatek::app {

// What the preview shows: the picture canvas or the glyph grid, and how much of it.
struct Preview {
    enum class Source { None, Picture, Glyph };
    Source source = Source::None;
    int width = 0;
    int height = 0;
};

// The picture last decoded or loaded (width, height, type, bits, compression, data length).
struct CurrentPictureState {
    int width = 0;
    int height = 0;
    std::string typeText;       // the container's type field as read
    int typeCode = 0;
    int bits = 0;               // 0 until something was decoded; an unknown code keeps it
    std::string compression = "No";
    std::string dataLength;     // upper-case hex
};

class Workspace {
public:
    explicit Workspace(UserInterface& ui);
    Workspace(const Workspace&) = delete;
    Workspace& operator=(const Workspace&) = delete;

    // ---- start-up (the load handler): command-line file first, then temporary files,
    // settings and language, in this order.
    void startUp(const std::string& commandLine, settings::SettingsStore& store);
    static const std::vector<std::string>& temporaryFileSuffixes();

    // ---- File menu
    void mnu_FileOpen();
    // What File > Open does with the file chosen in its dialog (also a file dropped on the window).
    void openChosenFile(const std::string& fileName);

    // ---- tab strip: 1 "Pictures", 2 "Fonts"
    void TabStrip1_Click(int tab);

    // ---- picture list
    void selectPicture(int row);   // moves the selection without decoding
    void ListView1_Click();        // list browsing: decode and show the selected picture
    void LoadPIC();
    void mnuPopup_SaveGPF();
    void mnuPopup_SaveAllGPF();
    void mnuPopup_SaveBMP();
    void mnuPopup_SaveAllBMP();
    // The text "Copy to Clipboard" puts there: a cell of the selected row (6 or 7).
    std::optional<std::string> copyPictureCell(int column) const;

    // ---- containers
    void LoadGPF(const std::string& path);
    void LoadDAT(const std::string& path);
    void SaveGPF();
    void SaveBMP();
    void mnu_ToolsGPFtoBMP();

    // ---- encoding tools (Tools menu); the target is 0x01, 0x85, 0x88 or 0x8A
    void mnu_ToolsBMPtoGPF(int targetType);
    void mnu_ToolsPNGtoGPF(int targetType);
    void BMPtoGPFtool();   // with the target type field already set
    void PNGtoGPFtool();
    void mnu_ToolsGPFakaDAT();
    void mnu_ToolsGPFakaGPF2();
    // The placeholders in the temporary folder; each returns the path it wrote.
    std::string MakeEmptyGPF2();
    std::string MakeEmptyBMP();

    // ---- picture replacement and the picture patch (popup menu of the picture list)
    void mnuPopup_LoadGPF();
    void mnuPopup_LoadGPFfolder();
    void mnuPopup_LoadBMP(int targetType);      // 0x01, 0x85, 0x88, 0x8A
    void mnuPopup_LoadBMPs(int targetType);
    void mnuPopup_LoadBMPs_Origbit();           // each picture keeps its own type
    void ReplacePictureFromBMP();
    // The picture editor's Apply: the selected picture replaced by the BMP of the edited
    // pixels as `targetType`, exactly as "Load BMP" with that file and target would.
    void applyEditedPicture(ByteView bmp, int targetType);
    // A file dropped on the selected picture, replacing it as the menu command for its kind
    // would: Load GPF for .gpf/.gpf2, Load BMP with `targetType` for .bmp, the PNG conversion
    // with `targetType` for .png. False when it was refused (told) or is no picture file.
    bool replaceSelectedPictureWith(const std::string& path, int targetType);
    // A BMP dropped on the selected glyph: Load BMP with that file.
    bool replaceSelectedGlyphWith(const std::string& path);
    void ReplacePictureFromPNG(const std::string& path);  // converted as the PNG tool does
    void ReplacePicturesFromBMPFolder();
    void AddPictureToPatch();
    void mnuPopup_SavePatch();
    void mnuPopup_DiscardPatch();               // drops the collected patch and its marks
    bool mnuPopup_SavePatchEnabled() const { return PatchInProgress; }
    std::string collectingPatchPath() const;

    // ---- the changes waiting in the two patches (the pending-changes panel). Taking one back
    // plans the picture patch again from the start, so that what is saved then is what a fresh
    // session doing the remaining changes in order would save. Each is a step undo can take back.
    bool removePendingPicture(int number);
    bool removePendingGlyph(int number);
    bool undoPending();
    bool redoPending();
    bool canUndoPending() const { return !m_undo.empty(); }
    bool canRedoPending() const { return !m_redo.empty(); }
    FreeSpaceGauge freeSpaceGauge() const;
    // Counts every change to the pending lists, so a view knows when to read them again.
    std::uint64_t pendingGeneration() const { return m_pendingGeneration; }
    const std::vector<PendingPicture>& pendingPictures() const { return m_pendingPictures; }

    // ---- the journal of pending changes: kept at `journalPath` (none when empty) as changes
    // are made, removed when nothing is pending.
    std::string journalPath;
    std::optional<PendingJournal> readPendingJournal() const;
    // Opens the journal's fullflash unless it is open, and brings its changes back; false (and
    // told) when that fullflash is gone or is not the same any more.
    bool restorePendingJournal(const PendingJournal& journal);
    void forgetPendingJournal();

    // ---- Tools: Make, the other tool's patches, checking and applying a patch
    void mnu_ToolsMake();
    void mnu_ToolsConvertLumbrapatch();
    void mnu_ToolsCheckPatch();

    // ---- fonts: the font selector, the glyph list and its popup menu
    void Ftype_Click(int index);                // reads the font's glyph table (FOTload)
    void selectGlyph(int row);
    void ListView2_Click();                     // shows the selected glyph
    void LoadFont();
    void mnuPopup2_SaveBMP();
    void mnuPopup2_SaveAllBMP();
    void mnuPopup2_ChangeFSize();
    void mnuPopup2_LoadBMP();
    void mnuPopup2_LoadBMPfolder();
    void ReplaceGlyphFromBMP();                 // PresetPath, CurrentGlyphNumber
    // The glyph editor's Apply: the selected glyph replaced by the BMP of the edited cell,
    // exactly as that BMP loaded from the menu would replace it.
    void applyEditedGlyph(ByteView bmp);
    void mnuPopup2_SavePatch();
    void mnuPopup2_DiscardPatch();
    bool mnuPopup2_SavePatchEnabled() const { return GlyphPatchInProgress; }
    void mnuPopup2_MakeF();                     // "Compare Font..": rebuild the font from BMPs
    std::optional<std::string> copyGlyphCell(int column) const;

    // ---- helpers shared by the commands
    void replaceGlyph(ByteView bmp);
    void loadBmpAndEncode(ByteView file, const std::string& source);   // the rest of BMPtoGPFtool            // the rest of ReplaceGlyphFromBMP, CurrentGlyphNumber set
    // The common file dialog; errorFlag is set on cancel and fileName is left as it was.
    void OSdialog(bool& errorFlag, const std::string& filter, const std::string& kind, std::string& fileName,
                  bool saveMode);
    std::string fBrowseForFolder(const std::string& title);
    const std::string& msg(settings::MessageKey key) const { return messages.text(key); }
    void showMessage(const std::string& text, const std::string& title = {});
    void showSuccess();  // "Successfully completed", when that option is on
    // The error's message in the interface language, with its limit and detail filled in.
    std::string errorText(const Error& error) const;
    // Shows the error's message (with its detail) and sets ActionFailed.
    void fail(const Error& error);
    // Checks an output before it is made: a folder, or the same file as the open fullflash or
    // one of `inputs`, is refused (shown, ActionFailed). An existing file gets the notice "File
    // <path> already exists and will be replaced"; it stays as it is until the new one is whole.
    bool prepareOutput(const std::string& path, const std::vector<std::string>& inputs = {});
    // The same check, then the OK/Cancel question about an existing file; false when refused or
    // cancelled.
    bool confirmReplace(const std::string& path, const std::vector<std::string>& inputs = {});
    // Writes a file the command produced, never over the open fullflash or one of `inputs`; a
    // failure is shown and sets ActionFailed.
    bool writeOutput(const std::string& path, ByteView bytes, const std::vector<std::string>& inputs = {});
    void setProgress(double percent);
    void applyLanguage(int languageIndex);

    // ---- state, named as the window has always named it
    UserInterface& ui;
    settings::MessageTable messages;
    std::string ProgramDir;
    std::string PITaddress = "1B01958";
    std::string FOTaddress = "1B07068";
    std::string FreeSpaceStart = "1320000";
    int PictureMaxIndex = 1700;
    int LanguageIndex = 2;
    bool ShowSuccessMessage = true;   // "MSGsucces"
    bool ShowReplaceMessage = true;   // "MSGreplace"

    bool PathGiven = false;
    std::string CommandLinePath;      // the command line's text while PathGiven is set
    bool ReverseByteOrder = false;
    double CurrentPicture = 0;
    bool ActionFailed = false;
    bool IsGPF2 = false;
    bool SingleSave = false;
    bool NoDialog = false;
    std::string PresetPath;
    int OutputDepth = 24;             // also the bit depth of the next BMP export (BmpExportBits)
    bool SuppressAlphaPrompt = false; // also BatchDecode
    bool BatchKeepAlpha = false;      // also AlphaForAll
    bool ShowOnScreen = false;
    bool GPFtoBMPtool = false;        // while the GPF>BMP tool runs, LoadGPF asks about alpha
    std::optional<int> ShownPicture;  // number of the picture last decoded; none at first
    std::string OutputFolder;
    std::string BmpOutputFolder;
    bool GlyphShown = false;
    double BatchCounter = 0;
    std::string DialogFileName;       // the common dialog's file name field
    std::string TargetTypeField = std::string{'\x85', '\0'};  // target type code and 0x00
    bool KeepOwnType = false;         // "original" in Load BMPs: each picture keeps its type
    bool BmpFolderMode = false;       // the BMP path is given (PresetBmpPath), no BMP dialog
    std::string PresetBmpPath;
    // A BMP or PNG encoded for a replacement: its container, held until the picture patch
    // takes it (never written to a file in between). Present (empty) while a replacement
    // encodes; absent otherwise.
    std::optional<Bytes> encodedReplacement;
    int ReplacePictureNumber = 0;
    bool UsedFreeSpace = false;
    bool PatchInProgress = false;
    std::string PicturePatchText;     // what the collecting file holds
    std::string PatchedCopyPath;      // the copy the patch check wrote last
    std::string PngColourTypeName;    // what the last PNG header said
    std::string PngResolutionText;

    // The open fullflash
    std::string FirmwarePath;
    std::string PhoneModel;
    std::string LanguagePack;
    std::string FontAreaOffset;
    Bytes FontArrayAddress;
    std::string FirmwareId;
    std::shared_ptr<const ReadOnlyFile> firmware;
    std::uint64_t firmwarePosition = 0;   // where the next read of the firmware handle starts

    // Lists and selections
    std::vector<firmware::FontSelectorEntry> Ftype;
    int FtypeIndex = -1;
    std::vector<firmware::PictureRecord> ListView1;
    int ListView1Selected = -1;
    int TabStrip1 = 1;

    // The glyph list of the font chosen in Ftype
    std::vector<fonts::GlyphRecord> ListView2;
    int ListView2Selected = -1;
    int LastGlyphIndex = -1;          // the table's last entry index (rows 0 to it)
    double CurrentGlyphNumber = 0;
    bool GlyphPatchInProgress = false;
    int GlyphPatchFont = 0;           // the font the collected glyphs belong to
    std::vector<fonts::CollectedGlyph> collectedGlyphs;
    codec::PixelCanvas glyphGrid{codec::PixelCanvas::kGlyphColumns, codec::PixelCanvas::kGlyphRows};

    // What is shown
    CurrentPictureState picture;
    codec::PixelCanvas canvas;
    std::string PICinfo;
    Preview preview;
    double progress = 0;
    bool lastDecodeRefused = false;   // the last LoadPIC/LoadGPF could not decode its format
    // The command line writes no file for a picture whose format was refused (the window
    // writes what its canvas holds).
    bool StopOnRefusedFormat = false;
    int outputFailures = 0;           // files that could not be written, counted for batches

private:
    // The pending lists changed: plan the picture patch again, mark the rows, write the journal.
    void replanPictures();
    // No picture patch any more: its text, its collecting file and the rows' marks go.
    void endPicturePatch();
    void markPendingGlyphs();
    void mirrorGlyphFiles();
    void pendingChanged(bool rewriteJournal);
    void journalAppend(const std::string& line);
    void rememberStep(PendingStep::Kind kind, std::size_t index, std::vector<PendingPicture> pictures,
                      std::vector<fonts::CollectedGlyph> glyphs);
    void rewriteJournal();
    void forgetSteps(bool pictures);
    void applyStep(const PendingStep& step, bool undo);
    std::vector<PendingPicture> m_pendingPictures;
    std::uint32_t m_freeSpaceBase = 0;                    // FreeSpaceStart when the picture patch began
    std::vector<PendingStep> m_undo;
    std::vector<PendingStep> m_redo;
    std::uint64_t m_pendingGeneration = 0;
    std::uint64_t checksumOf(const std::shared_ptr<const ReadOnlyFile>& flash);
    std::weak_ptr<const ReadOnlyFile> m_checksummed;      // the file m_checksum belongs to
    std::uint64_t m_checksum = 0;
    bool m_journalHasHead = false;

    void openFirmware(const std::string& path);
    void decodeContainer(ByteReader& in, int width, int height, const std::string& typeText);
    // LoadGPF's work once the file is read.
    void loadContainer(const Bytes& file);
    // Writes the canvas as a container of the target type: GPF2 when the name ends in "2".
    void writeCanvasContainer(const std::string& target, const std::string& source);
    // The end of the BMP>GPF and PNG>GPF tools: the target, then the container.
    void saveCanvasAsContainer(const std::string& source);
    // The save dialog of the encoding tools, with the OK/Cancel replacement question.
    std::optional<std::string> askContainerTarget(const std::string& source);
    std::vector<std::string> protectedInputs(const std::vector<std::string>& inputs) const;
    // What a decode leaves for the commands that follow: size, type, depth and length.
    void takeDecoded(const edit::DecodedPicture& decoded);
    // The size and type of the picture last loaded, as a container head.
    edit::ContainerHead shownHead() const { return {picture.width, picture.height, picture.typeText, IsGPF2}; }
    const firmware::PictureRecord* selectedPicture() const;
    const fonts::GlyphRecord* selectedGlyph() const;
    std::int64_t fontAreaOffsetValue() const;
};

}  // namespace korvatek::app

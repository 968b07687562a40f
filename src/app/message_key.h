#pragma once
// Keys of the message table and of every translatable caption. The message order is the
// order the table has always had; rows from kFirstExtraMessage on were added later and
// are translated like the others.

#include <cstddef>

namespace korvatek::settings {

enum class MessageKey : int {
    MsgSuccess = 0,
    MsgAlreadyReplaced,
    MsgFile,
    MsgPictureTooBig,
    MsgModelNotSupported,
    MsgFileExists,
    MsgFileNotExist,
    MsgReplacedByEmpty,
    MsgChooseSaveFolder,
    MsgChooseOpenFolder,
    MsgMaxSize,
    MsgSaveAlpha,
    MsgTooMuchSpace,
    MsgFirmwareNotSupported,
    MsgGpfNotSupported,
    MsgChooseFile,
    MsgUnknownFile,
    MsgInputSize,
    MsgFontsOnly,
    MsgCredits,
    MsgPleaseWait,
    MsgNotInProgramDir,
    MsgTranslator,
    MsgNoFreeSpace,
    // Rows added for failures the tool reports instead of stopping with a run-time error.
    MsgCannotOpenFile,    // "Cannot open file " + path + ": " + system text
    MsgCannotWriteFile,   // "Cannot write file " + path + ": " + system text
    MsgFlashTooShort,     // "This fullflash is too short: " + size
    MsgOutsideCanvas,     // picture runs outside the 240x320 canvas
    MsgDataOffsetZero,    // picture data offset 0
    MsgGpfV1MaxSize,      // "Maximal size of picture is 255x255 for GPF!"
    MsgNoSuchPicture,     // "No such picture in the list: " + number
    MsgBmpNot24or32,      // "This is not 24 or 32bit bmp!"
    MsgBmpCompressed,     // "Compressed BMPs not supported!"
    MsgPatchMalformed,    // "This is not a V_Klay patch line: " + line number and reason
    MsgPatchMismatch,     // "Old bytes do not match the fullflash at 0x" + address
    MsgPatchBeyond,       // "Patch address beyond the end of the fullflash: 0x" + address
    MsgPatchSameFile,     // the patched copy would replace the fullflash itself
    MsgOpenPatchedCopy,   // "The patch matches. Open the patched copy now?"
    MsgGlyphOutsideGrid,  // a glyph or bitmap that does not fit the 101 x 101 glyph grid
    MsgFontTableDamaged,  // "This font's glyph table cannot be read: " + start and end
    MsgGlyphsOutside,     // "Glyph records of this font lie outside the fullflash: " + count
    MsgFontNoRoom,        // "... needs %1 bytes ... room for %2 bytes ..."
    MsgGlyphsChanged,     // "Glyphs changed: " + count
    MsgFontReference,     // a rebuilt glyph's reference the table cannot express
    MsgNoSuchFont,        // "No such font: " + number
    MsgNoSuchGlyph,       // "No such glyph in the list: " + code
    MsgOutputIsInput,     // an output that is one of the inputs (the same file, by identity)
    MsgOutputIsFolder,    // an output path that names a folder
    MsgNotRegularFile,    // an input that is a pipe, a device or a socket
    MsgFileTooLarge,      // "... larger than the limit of %1: " + path
    MsgOutOfMemory,       // memory ran out; the action stopped
    MsgPatchNothing,      // a patch without data lines: "nothing to apply"
    MsgPatchConflict,     // two lines, %1 and %2, write different bytes at 0x + address
    MsgPatchMoreLines,    // "... and %1 more lines that are not patch text"
    MsgLineFaultBase,     // a malformed line's reasons, after its line number
    MsgLineFaultNoColon,
    MsgLineFaultLayout,
    MsgLineFaultNotHex,
    MsgLineFaultOddDigits,
    MsgLineFaultLengths,
    MsgLineFaultBeforeStart,
    MsgLineFaultNul,      // a NUL byte: UTF-16 text
    MsgAtLine,            // " (line %1)" after an address that a patch line names
    MsgStateApplied,      // the fullflash holds a line's new bytes
    MsgStateNotApplied,   // it holds the old bytes
    MsgStateConflicting,  // it holds neither
    MsgStateOutside,      // the line lies beyond the fullflash
    MsgStateNoChange,     // its old and new bytes are the same
    MsgStatePartly,       // a patch some of whose lines are applied and some not
    MsgStatusCounts,      // "%1 applied, %2 not applied, %3 conflicting, %4 outside the fullflash, %5 changing nothing"
    MsgPatchClash,        // "%1 line %2 and %3 line %4 write different bytes at 0x" + address
    MsgPatchReverts,      // the first comment of a reverting patch: "... takes off %1"
    MsgPatchMerged,       // the first comment of a merged patch: "... made of %1"
    MsgStatusTitle,       // the patch status dialog
    MsgColumnPatch,
    MsgColumnLine,
    MsgColumnAddress,
    MsgColumnBytes,
    MsgColumnState,
    MsgWritePatchedCopy,
    MsgClose,
    MsgStatusTableDescription,
    MsgPreviewTitle,      // the text preview on the Fonts tab
    MsgPreviewPlaceholder,
    MsgPreviewZoom,
    MsgPreviewPending,    // a check box: draw the glyphs waiting in the glyph patch
    MsgPreviewMissing,    // + the characters the font has no glyph for
    MsgPreviewDescription,
    MsgEditGlyph,         // the glyph list's popup: open the glyph editor
    MsgGlyphEditorTitle,
    MsgToolPencil,
    MsgToolEraser,
    MsgToolLine,
    MsgToolRectangle,
    MsgToolFill,
    MsgShiftLeft,
    MsgShiftRight,
    MsgShiftUp,
    MsgShiftDown,
    MsgMirrorHorizontal,
    MsgMirrorVertical,
    MsgUndo,
    MsgRedo,
    MsgCellWidth,
    MsgCellHeight,
    MsgGridDescription,
    MsgStatusLines,       // the status table's accessible name
    MsgStatusSummary,     // the summary above it: its accessible name and description
    MsgStatusSummaryDescription,
    MsgWritePatchedCopyDescription,
    MsgEditPicture,       // the picture list's popup: open the picture editor
    MsgPictureEditorTitle,
    MsgToolPick,
    MsgColour,
    MsgTransparent,
    MsgStoredAs,
    MsgStoredView,
    MsgStoredDescription,
    MsgDropSummary,       // after files dropped by picture number: "Pictures replaced: %1 of %2"
    MsgDropNoNumber,      // a dropped file whose name is no picture number
    MsgDropTarget,        // the question for dropped BMP and PNG files: the type to store them as
    MsgFindPictures,      // the search box's placeholder on the Pictures tab
    MsgFindGlyphs,        // and on the Fonts tab
    MsgFindCount,         // "%1 of %2" rows shown
    MsgFindUnread,        // + the words the search box could not read
    MsgFindName,          // the search box's accessible name
    MsgJournalRestore,   // asked at start when the journal holds changes
    MsgJournalCount,     // + how many changes
    MsgJournalFlashChanged, // + the fullflash's path
    MsgPendingTitle,     // the pending-changes panel
    MsgPendingPicture,   // "Picture " + number
    MsgPendingGlyph,     // "Glyph " + code
    MsgPendingInPlace,   // where: in place at + address
    MsgPendingMoved,     // where: moved to free space at + address
    MsgPendingGlyphWhere, // where, for a glyph: its record at + address
    MsgPendingColumns,   // the panel's column titles, separated by |
    MsgPendingRemove,    // the remove button
    MsgFreeSpaceGauge,   // "%1 bytes of free space used, %2 left"
    MsgPendingDescription, // the panel list's accessible description
    MsgShowReplacement,  // the preview's before/after toggle
    MsgShowReplacementTip, // its tooltip
    MsgPendingEmpty,     // the panel when nothing waits
    MsgCancelledPictures, // a picture batch stopped by Cancel: "Cancelled after %1 of %2 pictures."
    MsgCancelledGlyphs,   // the same for a glyph batch
    MsgCancelledNothingWritten,  // Make or the font rebuild stopped before writing
    MsgCancelDescription, // the Cancel button beside the progress bar
    MsgProgressName,      // the progress bar's accessible name and description
    MsgProgressDescription,
    MsgPictureListName,   // the picture list's accessible name and description
    MsgPictureListDescription,
    MsgGlyphListName,     // the glyph list's
    MsgGlyphListDescription,
    MsgPicturePreviewName,  // the preview's accessible name; its description says what it shows:
    MsgPreviewNothing,    // nothing,
    MsgPreviewFilePicture,  // a picture read from a container file: "%1 by %2, %3"
    MsgInfoName,          // the information text under the preview
    MsgFontSelectorDescription,
    MsgRowPicture,        // a picture row read as a sentence: "Picture %1, %2 by %3, %4"
    MsgRowGlyph,          // a glyph row: "Glyph %1, %2 by %3"
    MsgRowBits,           // the %4 of a picture: "%1-bit",
    MsgRowBitsCompressed, // "%1-bit compressed",
    MsgRowUnknownType,    // or "type %1 unknown" (hex)
    MsgRowReplaced,       // added after a row whose replacement waits in the patch
    MsgGalleryName,       // the picture gallery's accessible name
    MsgGalleryDescription, // and its description: how to use it
    MsgGalleryToggle,     // the toggle beside the search box: tooltip and accessible name
    MsgGallerySize,       // the tile-size slider: tooltip and accessible name
    MsgGalleryUndecodable, // + "cannot be shown: %1" (the reason)
    MsgGalleryNoPixels,   // the reason for a picture of width or height 0
    Count
};

inline constexpr std::size_t kMessageCount = static_cast<std::size_t>(MessageKey::Count);
inline constexpr int kFirstExtraMessage = static_cast<int>(MessageKey::MsgCannotOpenFile);

// Captions that the language routines set. Names follow the controls they belong to.
enum class CaptionKey : int {
    // main menu
    mnu_File = 0,
    mnu_FileOpen,
    mnu_FileExit,
    mnu_Tools,
    mnu_ToolsMake,
    mnu_ToolsConvertLumbrapatch,
    mnu_Options,
    mnu_About,
    mnu_ToolsCheckPatch,
    // picture list popup
    mnuPopup_LoadGPF,
    mnuPopup_LoadGPFfolder,
    mnuPopup_LoadBMP,
    mnuPopup_LoadBMPs,
    mnuPopup_SaveGPF,
    mnuPopup_SaveAllGPF,
    mnuPopup_SaveBMP,
    mnuPopup_SaveAllBMP,
    mnuPopup_SavePatch,
    mnuPopup_CopyColumnHeader,
    mnuPopup_DiscardPatch,
    // glyph list popup
    mnuPopup2_LoadBMP,
    mnuPopup2_LoadBMPfolder,
    mnuPopup2_SaveBMP,
    mnuPopup2_SaveAllBMP,
    mnuPopup2_SavePatch,
    mnuPopup2_MakeF,
    mnuPopup2_ChangeFSize,
    mnuPopup2_CopyColumnHeader,
    mnuPopup2_DiscardPatch,
    // About box
    AboutAuthor,
    AboutWeb,
    AboutThanks,      // "Special thanks to:"
    AboutNames,
    AboutTesters,     // "all testers & researchers"
    // main window tabs and font selector
    TabPictures,
    TabFonts,
    FtypeText,        // "Font"
    // options dialog
    frmOptions,       // the dialog's title
    tbsOptionsView,   // "view"
    tbsOptionsOther,  // "other"
    Option1,          // language names
    Option2,
    Option3,
    Option4,
    Option5,
    Check1,
    Check2,
    Check3,
    Check4,
    cmdOK,
    cmdCancel,
    cmdApply,
    cmdDefaults,
    Count
};

inline constexpr std::size_t kCaptionCount = static_cast<std::size_t>(CaptionKey::Count);

}  // namespace korvatek::settings

// English: the language the window is designed in.
#include "settings/message_table.h"

namespace korvatek::settings {

const LanguageTexts& LanguageEN() {
    static const LanguageTexts texts{
        2,
        "LanguageEN",
        {
            "Successfully completed",
            "This picture is already replaced. Reboot program or complete commenced patch",
            "File ",
            "New picture has a size more current!",
            "This phone model not supported: ",
            " already exists and will be replaced",
            "File not exist!",
            " not found and will is replaced by empty picture",
            "Choose folder for save files",
            "Choose folder for open files",
            "Maximal size of picture is 240x320!",
            "Save alphachannel for image?",
            "Too much total space occupyed by pictures!",
            "This FirmWare version not supported:",
            "This GPF not supported!contact author please",
            "Choose file ",
            "Unknown file!",
            "Input size from 6 to 64",
            "You can work with fonts only",
            "Made for the phone modding community",
            "Please wait about 3 seconds..",
            "not found in program directory!",
            "",
            "Free space in Fullflash not found!",
            // rows added later
            "Cannot open file ",
            "Cannot write file ",
            "This file is too short for a fullflash: ",
            "Picture data run outside the 240x320 picture area!",
            "Picture data offset is 0, nothing to show!",
            "Maximal size of picture is 255x255 for GPF!",
            "No such picture in the list: ",
            "This is not 24 or 32bit bmp!",
            "Compressed BMPs not supported!",
            "This is not a V_Klay patch line: ",
            "Old bytes do not match the fullflash at 0x",
            "Patch address beyond the end of the fullflash: 0x",
            "The patched copy must be a new file, not the fullflash itself!",
            "The patch matches the fullflash. Open the patched copy now?",
            "This glyph does not fit the 101x101 glyph grid!",
            "This font's glyph table cannot be read: ",
            "Glyph records of this font lie outside the fullflash: ",
            "The rebuilt font needs %1 bytes, but its records have room for %2 bytes only!",
            "Glyphs changed: ",
            "A rebuilt glyph cannot be reached from the font's table: glyph ",
            "No such font: ",
            "No such glyph in the list: ",
        },
        {
            "File", "Open", "Exit", "Tools", "Compare GPFs", "Lumbra (Korvatek) g.patch>GPF2s", "Options", "About", "Check patch..",
            "Load GPF", "Load GPFs", "Load BMP", "Load BMPs", "Save as GPF", "Save all (GPF)", "Save as BMP", "Save all (BMP)", "Save patch VKP", "Copy to Clipboard", "Discard patch",
            "Load BMP", "Load BMPs", "Save as BMP", "Save all (BMP)", "Save patch VKP", "Compare Font..", "Change font size..", "Copy to Clipboard", "Discard patch",
            "Korvatek, a picture and font editor for E71 and EL71 fullflashes", "Source and updates: see the project's home page", "Special thanks to:", "everyone who mapped the E71 and EL71 picture and font tables", "all testers & researchers",
            "Pictures", "Fonts", "Font",
            "Options", "view", "other",
            "Russian", "English", "Slovak", "Portuguese", "Polish",
            "Associate with *.gpf", "Associate with *.gpf2", "Show Succes message", "Show replacing to 1x1",
            "OK", "Cancel", "Apply", "Defaults",
        },
    };
    return texts;
}

}  // namespace korvatek::settings

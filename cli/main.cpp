// korvatek-cli: the window's scriptable twin. Same core, same Workspace, same bytes; every
// dialog answer is given as an argument.
#include <csignal>
#include <cstdio>
#include <cstring>
#include <new>
#include <string>
#include <vector>

#include "base/file_io.h"
#include "commands.h"
#include "korvatek_version.h"
#include "app/message_table.h"

namespace korvatek::cli {

namespace {

void printHelp(std::FILE* out) {
    std::fprintf(out, "usage: korvatek-cli COMMAND [ARGS...]\n\ncommands:\n");
    for (const Command& c : commands()) std::fprintf(out, "  %-12s %s\n", c.name, c.summary);
    std::fprintf(out, "\n'korvatek-cli COMMAND --help' shows the arguments of a command;\n"
                      "'korvatek-cli --version' the version.\n");
}

}  // namespace

const std::vector<Command>& commands() {
    using Kind = DeclaredOption::Kind;
    const DeclaredOption output{"-o", Kind::Value, "the file to write (- for standard output where allowed)", "OUT"};
    const DeclaredOption json{"--json", Kind::Flag, "print the result as one JSON document (fields in the README)"};
    const DeclaredOption alpha{"--alpha", Kind::Flag, "keep the alpha channel of 24-bit pictures (a 32-bit BMP)"};
    static const std::vector<Command> list{
        {"info", "info FLASH [--json]", "open and identify a fullflash", runInfo, {json}},
        {"pictures", "pictures FLASH [--json]", "list the picture table", runPictures, {json}},
        {"picture", "picture FLASH N", "decode picture N and print its information", runPicture, {}},
        {"export", "export FLASH N -o OUT.gpf2|OUT.bmp [--alpha]\n       korvatek-cli export FLASH all --dir DIR --format gpf2|bmp [--alpha]",
         "save one or all pictures as GPF2 or BMP", runExport,
         {output, alpha, {"--dir", Kind::Value, "the folder for all pictures", "DIR"},
          {"--format", Kind::Value, "gpf2 or bmp, for all pictures", "FORMAT"}}},
        {"patch", "patch FLASH -o OUT.vkp [--json] REPL...\n       REPL: N=FILE.gpf2 | N=FILE.gpf | N=FILE.bmp:TYPE | N=FILE.png:TYPE |"
                  " --gpf-folder DIR | --bmp-folder DIR:TYPE (TYPE 1, 8, 16, 24 or orig)",
         "replace pictures and write the picture patch", runPatch,
         {output, json, {"--gpf-folder", Kind::Repeated, "replace every picture with a NNNN.gpf2 in DIR", "DIR"},
          {"--bmp-folder", Kind::Repeated, "replace every picture with a NNNN.bmp in DIR, as TYPE", "DIR:TYPE"}}},
        {"apply", "apply FLASH PATCH.vkp -o OUT.bin", "check a V_Klay patch and write a patched copy", runApply, {output}},
        {"status", "status FLASH PATCH.vkp... [--json]\n"
                   "       exit status: 0 every patch applied, 3 none applied, 4 partly applied, conflicting or\n"
                   "       clashing, 1 a patch that cannot be read whole or reaches past the fullflash",
         "tell line by line whether patches are already on a fullflash", runStatus,
         {json}},
        {"revert", "revert PATCH.vkp -o UNDO.vkp", "write the patch that takes a patch off again", runRevert, {output}},
        {"merge", "merge A.vkp B.vkp... -o MERGED.vkp", "join patches into one, refusing lines that clash", runMerge,
         {output}},
        {"decode", "decode IN.gpf|IN.gpf2|IN.dat -o OUT.bmp [--alpha]", "decode a container to BMP", runDecode,
         {output, alpha}},
        {"encode", "encode IN.bmp|IN.png -o OUT.gpf2|OUT.gpf --type 1|8|16|24",
         "encode a BMP or PNG into a container", runEncode,
         {output, {"--type", Kind::Value, "the target type: 1, 8, 16 or 24 bits", "TYPE"}}},
        {"convert", "convert IN -o OUT", "convert GPF/GPF2 to DAT, DAT to GPF2, or GPF to GPF2 and back", runConvert,
         {output}},
        {"make", "make SRC_DIR OUT_DIR", "build the picture area blocks from a folder of containers", runMake, {}},
        {"lumbra", "lumbra IN.vkp OUT_DIR", "turn another tool's picture patch into GPF2 files", runLumbra, {}},
        {"fonts", "fonts FLASH [--json]", "list the fonts", runFonts, {json}},
        {"glyphs", "glyphs FLASH FONT [--json]", "list the glyphs of a font", runGlyphs, {json}},
        {"glyph", "glyph FLASH FONT CODE -o OUT.bmp\n       korvatek-cli glyph FLASH FONT all --dir DIR",
         "save one or all glyphs as BMP", runGlyph, {output, {"--dir", Kind::Value, "the folder for all glyphs", "DIR"}}},
        {"font-size", "font-size FLASH FONT SIZE -o OUT.vkp", "write a font size patch", runFontSize, {output}},
        {"font-patch", "font-patch FLASH FONT -o OUT.vkp REPL...\n       REPL: CODE=FILE.bmp | --bmp-folder DIR",
         "replace glyphs and write the glyph patch", runFontPatch,
         {output, {"--bmp-folder", Kind::Repeated, "replace every glyph with a NNNN.bmp in DIR", "DIR"}}},
        {"make-font", "make-font FLASH FONT SRC_DIR -o OUT.vkp", "rebuild a font from a folder of BMPs", runMakeFont,
         {output}},
        {"render", "render FLASH FONT TEXT -o OUT.png [--zoom N]",
         "draw a line of text in a phone font; prints 'missing<TAB>N' for each character the font lacks", runRender,
         {output, {"--zoom", Kind::Value, "each phone pixel as N x N pixels (1 to 16)", "N"}}},
        {"demo-flash", "demo-flash OUT.bin", "write the synthetic demonstration fullflash", runDemoFlash, {}},
    };
    return list;
}

const Command& commandNamed(const char* name) {
    for (const Command& c : commands())
        if (std::strcmp(c.name, name) == 0) return c;
    return commands().front();
}

int usageError(const Command& command, const std::string& why) {
    if (!why.empty()) std::fprintf(stderr, "korvatek-cli %s: %s\n", command.name, why.c_str());
    std::fprintf(stderr, "usage: korvatek-cli %s\n", command.usage);
    return 2;
}

}  // namespace korvatek::cli

namespace korvatek::cli {

namespace {

// Interrupted: the half-written output goes (the temporary folder is cleared by the next run),
// then the signal does what it would have done.
extern "C" void onInterrupt(int signalNumber) {
    app::removePartialOutput();
    std::signal(signalNumber, SIG_DFL);
    std::raise(signalNumber);
}

}  // namespace

int runCommandLine(const std::vector<std::string>& arguments) {
#ifdef SIGXFSZ
    // A file-size limit then fails the write (and the output is cleaned up) instead of killing us.
    std::signal(SIGXFSZ, SIG_IGN);
#endif
    for (const int signalNumber : {SIGINT, SIGTERM}) std::signal(signalNumber, onInterrupt);
#ifdef SIGHUP
    std::signal(SIGHUP, onInterrupt);
#endif
    // Whatever a killed run left in the temporary folder goes, whether or not this one needs it.
    app::removeEndedPrivateFolders(app::temporaryFolder());
    if (arguments.empty()) {
        printHelp(stderr);
        return 2;
    }
    const std::string& name = arguments[0];
    if (name == "--help" || name == "-h" || name == "help") {
        printHelp(stdout);
        return 0;
    }
    if (name == "--version") {
        std::printf("korvatek-cli %s%s%s%s\n", KORVATEK_VERSION, *KORVATEK_GIT_DESCRIPTION ? " (" : "",
                    KORVATEK_GIT_DESCRIPTION, *KORVATEK_GIT_DESCRIPTION ? ")" : "");
        return 0;
    }
    const std::vector<std::string> words(arguments.begin() + 1, arguments.end());
    for (const Command& c : commands()) {
        if (name != c.name) continue;
        const Arguments args = parseArguments(std::string("korvatek-cli ") + c.name + ": " + c.summary, c.usage, c.options, words);
        if (!args.help.empty()) {
            std::fputs(args.help.c_str(), stdout);
            return 0;
        }
        if (!args.error.empty()) return usageError(c, args.error);
        try {
            return c.run(args);
        } catch (const std::bad_alloc&) {
            // Memory ran out somewhere inside the command: say so and stop cleanly. Outputs are
            // only ever renamed into place when complete, so nothing half-written remains.
            std::fflush(stdout);
            std::fprintf(stderr, "%s\n",
                         std::string(settings::LanguageEN().messages[static_cast<std::size_t>(
                                         settings::MessageKey::MsgOutOfMemory)]).c_str());
            return 1;
        }
    }
    std::fprintf(stderr, "korvatek-cli: unknown command '%s'\n", name.c_str());
    printHelp(stderr);
    return 2;
}

}  // namespace korvatek::cli

#ifdef _WIN32
#include <fcntl.h>
#include <io.h>

#include <filesystem>

#include "base/file_io.h"

// Windows hands the arguments over as UTF-16 (the narrow argv would be in the local code page,
// with '?' for any letter outside it): each becomes UTF-8 text like everywhere else. Output is
// written in binary mode, so that lines end in LF as on every other system and the files whose
// format asks for CR LF get exactly the bytes they hold.
int wmain(int argc, wchar_t** argv) {
    _setmode(_fileno(stdout), _O_BINARY);
    _setmode(_fileno(stderr), _O_BINARY);
    std::vector<std::string> arguments;
    for (int i = 1; i < argc; ++i) arguments.push_back(korvatek::app::pathText(std::filesystem::path(argv[i])));
    return korvatek::cli::runCommandLine(arguments);
}
#else
int main(int argc, char** argv) {
    return korvatek::cli::runCommandLine(std::vector<std::string>(argv + 1, argv + argc));
}
#endif

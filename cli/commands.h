#pragma once
// The subcommands of korvatek-cli. Each returns the exit status: 0 done, 1 failed or refused,
// 2 bad usage; `status` also 3 and 4 (below).

#include <string>
#include <vector>

#include "arguments.h"

namespace korvatek::cli {

// "-o -" writes to standard output only where the output is one stream a pipe can take.
inline constexpr const char* kNotToStandardOutput = "-o - (standard output) is for a patch or one BMP only";

// `status`: no patch applied at all; some applied and some not, or lines holding neither their
// old nor their new bytes, or patches that clash.
inline constexpr int kStatusNotApplied = 3;
inline constexpr int kStatusPartly = 4;

struct Command {
    const char* name;
    const char* usage;    // after "korvatek-cli "
    const char* summary;
    int (*run)(const Arguments& args);
    std::vector<DeclaredOption> options;
};

const std::vector<Command>& commands();

// The whole program after the program name: the arguments as UTF-8 text. Returns the exit status.
int runCommandLine(const std::vector<std::string>& arguments);

// Prints "usage: korvatek-cli <usage>" on stderr and returns 2.
int usageError(const Command& command, const std::string& why = {});
const Command& commandNamed(const char* name);

int runInfo(const Arguments& args);
int runPictures(const Arguments& args);
int runPicture(const Arguments& args);
int runExport(const Arguments& args);
int runDecode(const Arguments& args);
int runDemoFlash(const Arguments& args);
int runEncode(const Arguments& args);
int runConvert(const Arguments& args);
int runPatch(const Arguments& args);
int runApply(const Arguments& args);
int runStatus(const Arguments& args);
int runRevert(const Arguments& args);
int runMerge(const Arguments& args);
int runMake(const Arguments& args);
int runLumbra(const Arguments& args);
int runFonts(const Arguments& args);
int runGlyphs(const Arguments& args);
int runGlyph(const Arguments& args);
int runFontSize(const Arguments& args);
int runFontPatch(const Arguments& args);
int runMakeFont(const Arguments& args);
int runRender(const Arguments& args);

}  // namespace korvatek::cli

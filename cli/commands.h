#pragma once
// The subcommands of korvatek-cli. Each returns the exit status: 0 done, 1 failed or refused,
// 2 bad usage.

#include <string>
#include <vector>

namespace korvatek::cli {

using Words = std::vector<std::string>;

// "-o -" writes to standard output only where the output is one stream a pipe can take.
inline constexpr const char* kNotToStandardOutput = "-o - (standard output) is for a patch or one BMP only";

struct Command {
    const char* name;
    const char* usage;    // after "korvatek-cli "
    const char* summary;
    int (*run)(const Words& words);
};

const std::vector<Command>& commands();

// The whole program after the program name: the arguments as UTF-8 text. Returns the exit status.
int runCommandLine(const std::vector<std::string>& arguments);

// Prints "usage: korvatek-cli <usage>" on stderr and returns 2.
int usageError(const Command& command, const std::string& why = {});
const Command& commandNamed(const char* name);

int runInfo(const Words& words);
int runPictures(const Words& words);
int runPicture(const Words& words);
int runExport(const Words& words);
int runDecode(const Words& words);
int runDemoFlash(const Words& words);
int runEncode(const Words& words);
int runConvert(const Words& words);
int runPatch(const Words& words);
int runApply(const Words& words);
int runMake(const Words& words);
int runLumbra(const Words& words);
int runFonts(const Words& words);
int runGlyphs(const Words& words);
int runGlyph(const Words& words);
int runFontSize(const Words& words);
int runFontPatch(const Words& words);
int runMakeFont(const Words& words);

}  // namespace korvatek::cli

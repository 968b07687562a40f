// Commands on fonts: fonts, glyphs, glyph, font-size, font-patch, make-font.
#include <cstdio>
#include <filesystem>
#include <optional>
#include <set>

#include "app/message_table.h"
#include "arguments.h"
#include "base/file_io.h"
#include "base/hex_text.h"
#include "codec/bmp_file.h"
#include "codec/png_file.h"
#include "commands.h"
#include "console.h"
#include "edit/font_edits.h"
#include "edit/text_render.h"
#include "json_output.h"
#include "opening.h"

namespace korvatek::cli {

using settings::MessageKey;

namespace {

void printInformation(const std::string& text, bool onStandardError) {
    if (text.empty()) return;
    std::string lines = text;
    for (char& c : lines)
        if (c == '\r') c = '\n';
    std::fprintf(onStandardError ? stderr : stdout, "%s\n", lines.c_str());
}

std::string folderOf(std::string path) {
    while (path.size() > 1 && (path.back() == '/' || path.back() == '\\')) path.pop_back();
    return path;
}

// A glyph drawn and saved as a BMP; false when it could not be drawn or written.
bool saveGlyph(Console& console, const edit::OpenedFlash& flash, const fonts::GlyphRecord& row,
               codec::PixelCanvas& grid, const std::string& target, std::string* information = nullptr) {
    const edit::ShownGlyph shown = edit::drawFlashGlyph(flash.bytes(), row, grid);
    if (information) *information = shown.information;
    if (!shown.drawn) {
        console.fail(shown.drawn.error());
        return false;
    }
    const auto bmp = codec::encodeBmp(grid, grid.metaDepth);
    if (!bmp) {
        console.fail(bmp.error());
        return false;
    }
    return console.prepare(target, {flash.path}) && console.write(target, *bmp, {flash.path});
}

}  // namespace

int runFonts(const Arguments& args) {
    const Command& command = commandNamed("fonts");
    if (!args.error.empty() || args.positional.size() != 1) return usageError(command, args.error);
    Console console;
    const auto flash = openFlashFile(console, args.positional[0]);
    if (!flash) return 1;
    if (args.has("--json")) {
        Json fonts = Json::array();
        for (std::size_t n = 0; n < flash->fonts.size(); ++n)
            fonts.push_back({{"index", n},
                             {"caption", flash->fonts[n].caption},
                             {"descriptorOffset", flash->fonts[n].descriptorOffset},
                             {"size", flash->fontSize(n)}});
        return printJson({{"fonts", fonts}}) ? 0 : 1;
    }
    for (std::size_t n = 0; n < flash->fonts.size(); ++n) {
        const auto& font = flash->fonts[n];
        std::printf("%s\t%s\t%d\n", font.caption.c_str(), app::hexText(font.descriptorOffset).c_str(), flash->fontSize(n));
    }
    return 0;
}

int runGlyphs(const Arguments& args) {
    const Command& command = commandNamed("glyphs");
    if (!args.error.empty() || args.positional.size() != 2) return usageError(command, args.error);
    const auto fontNumber = parseNumber(args.positional[1]);
    if (!fontNumber) return usageError(command, "FONT must be a font number");
    Console console;
    const auto flash = openFlashFile(console, args.positional[0]);
    if (!flash) return 1;
    const auto font = openFont(console, *flash, *fontNumber);
    if (!font) return 1;
    if (args.has("--json")) {
        Json glyphs = Json::array();
        for (const auto& row : font->rows) {
            // The reference as the list shows it (bM0ffset), as a number.
            const std::string reference = fonts::referenceText(row.rawReference);
            glyphs.push_back({{"code", row.code},
                              {"advance", row.advance},
                              {"width", row.width},
                              {"height", row.height},
                              {"shiftLeft", row.shiftLeft},
                              {"spaceBelow", row.spaceBelow},
                              {"headerOffset", row.headerOffset},
                              {"reference", reference.empty() ? 0 : std::stoull(reference, nullptr, 16)},
                              {"length", row.listedLength()}});
        }
        return printJson({{"font", *fontNumber}, {"glyphs", glyphs}}) ? 0 : 1;
    }
    std::string out;
    for (const auto& row : font->rows) {
        for (int column = 1; column <= 9; ++column) {
            out += fonts::glyphCellText(row, column);
            out += column < 9 ? '\t' : '\n';
        }
    }
    std::fwrite(out.data(), 1, out.size(), stdout);
    return 0;
}

int runGlyph(const Arguments& args) {
    const Command& command = commandNamed("glyph");
    if (!args.error.empty() || args.positional.size() != 3) return usageError(command, args.error);
    const auto fontNumber = parseNumber(args.positional[1]);
    if (!fontNumber) return usageError(command, "FONT must be a font number");
    const bool all = args.positional[2] == "all";
    const auto code = parseNumber(args.positional[2]);
    const auto out = args.value("-o");
    const auto dir = args.value("--dir");
    if (all ? (!dir || out) : (!code || !out || dir)) return usageError(command);
    Console console;
    const auto flash = openFlashFile(console, args.positional[0]);
    if (!flash) return 1;
    const auto font = openFont(console, *flash, *fontNumber);
    if (!font) return 1;
    codec::PixelCanvas grid{codec::PixelCanvas::kGlyphColumns, codec::PixelCanvas::kGlyphRows};
    if (all) {
        std::error_code ec;
        std::filesystem::create_directories(app::toPath(*dir), ec);
        const std::string folder = folderOf(*dir);
        for (const auto& row : font->rows) saveGlyph(console, *flash, row, grid, app::joinPath(folder, row.codeText() + ".bmp"));
        return console.failures() > 0 ? 1 : 0;
    }
    const fonts::GlyphRecord* row = glyphCoded(console, *font, *code);
    if (row == nullptr) return 1;
    std::string information;
    const bool saved = saveGlyph(console, *flash, *row, grid, *out, &information);
    printInformation(information, app::isStandardOutput(*out));
    return saved ? 0 : 1;
}

int runFontSize(const Arguments& args) {
    const Command& command = commandNamed("font-size");
    const auto out = args.value("-o");
    if (!args.error.empty() || args.positional.size() != 3 || !out) return usageError(command, args.error);
    const auto fontNumber = parseNumber(args.positional[1]);
    if (!fontNumber) return usageError(command, "FONT must be a font number");
    // Read as the input box reads it: no number or 0 ends it, and the box would ask again for
    // anything from 5 down or from 65 up.
    const double size = app::valDecimal(args.positional[2]);
    if (size == 0) return usageError(command, "SIZE must be a number");
    if (size <= 5 || size >= 65) return usageError(command, "SIZE must lie from 6 to 64");
    Console console;
    const auto flash = openFlashFile(console, args.positional[0]);
    if (!flash) return 1;
    if (!openFont(console, *flash, *fontNumber)) return 1;
    const auto n = static_cast<std::size_t>(*fontNumber);
    if (!console.prepare(*out, {flash->path})) return 1;
    const std::string text =
        fonts::fontSizePatch(*fontNumber, flash->firmwareId, flash->fonts[n].descriptorOffset, flash->fontSize(n), size);
    return console.write(*out, bytesOf(text), {flash->path}) ? 0 : 1;
}

namespace {

// The glyph replacements of one `font-patch` run, collected in order.
class GlyphRun {
public:
    GlyphRun(Console& console, const fonts::FontTable& font) : m_console(console), m_font(font) {}

    bool single(int code, const std::string& path);
    bool folder(const std::string& path);
    const std::vector<fonts::CollectedGlyph>& glyphs() const { return m_glyphs; }

private:
    void say(const std::string& text) {
        ++m_told;
        m_console.say(text);
    }
    bool replace(std::size_t index, const std::string& path);

    Console& m_console;
    const fonts::FontTable& m_font;
    codec::PixelCanvas m_grid{codec::PixelCanvas::kGlyphColumns, codec::PixelCanvas::kGlyphRows};
    std::vector<fonts::CollectedGlyph> m_glyphs;
    std::set<std::size_t> m_replaced;
    int m_told = 0;
};

bool GlyphRun::replace(std::size_t index, const std::string& path) {
    const auto file = app::readFile(path, app::kMaxPictureFileSize);
    if (!file) {
        say(m_console.errorText(file.error()));
        return false;
    }
    const edit::GlyphReplacement replaced = edit::glyphFromBmp(*file, m_font.rows, index, m_grid);
    if (replaced.tooBig) say(edit::glyphTooBigText(static_cast<int>(index) + 1));
    else if (replaced.error) say(m_console.errorText(*replaced.error));
    if (!replaced.glyph) return false;
    m_glyphs.push_back(*replaced.glyph);
    m_replaced.insert(index);
    return true;
}

bool GlyphRun::single(int code, const std::string& path) {
    const fonts::GlyphRecord* row = glyphCoded(m_console, m_font, code);
    if (row == nullptr) return false;
    const auto index = static_cast<std::size_t>(code) - 1;
    if (m_replaced.count(index)) {
        say(m_console.msg(MessageKey::MsgAlreadyReplaced));
        return false;
    }
    if (app::CheckFexist(path)) {
        say(m_console.msg(MessageKey::MsgFileNotExist));
        return false;
    }
    return replace(index, path);
}

bool GlyphRun::folder(const std::string& path) {
    if (!std::filesystem::is_directory(app::toPath(path))) {
        say(m_console.msg(MessageKey::MsgFileNotExist) + " " + path);
        return false;
    }
    const int toldBefore = m_told;
    const std::string folder = folderOf(path);
    for (std::size_t index = 0; index < m_font.rows.size(); ++index) {
        const std::string file = app::joinPath(folder, app::zeroPadded(static_cast<int>(index) + 1, 4) + ".bmp");
        if (app::CheckFexist(file)) continue;
        if (m_replaced.count(index))
            say(m_console.msg(MessageKey::MsgAlreadyReplaced));
        else
            replace(index, file);
    }
    return m_told == toldBefore;
}

}  // namespace

int runFontPatch(const Arguments& args) {
    const Command& command = commandNamed("font-patch");
    const auto out = args.value("-o");
    if (!args.error.empty() || args.positional.size() < 2 || !out) return usageError(command, args.error);
    const auto fontNumber = parseNumber(args.positional[1]);
    if (!fontNumber) return usageError(command, "FONT must be a font number");
    // The replacements in the order given.
    struct Replacement {
        std::optional<int> code;  // none for a folder
        std::string path;
    };
    std::vector<Replacement> replacements;
    std::size_t positional = 0;
    for (const auto& [option, word] : args.ordered) {
        if (!option.empty()) {
            replacements.push_back({std::nullopt, word});
        } else if (positional++ >= 2) {
            const auto equals = word.find('=');
            const auto code = equals == std::string::npos ? std::nullopt : parseNumber(word.substr(0, equals));
            if (!code) return usageError(command, "cannot read replacement " + word);
            replacements.push_back({*code, word.substr(equals + 1)});
        }
    }
    if (replacements.empty()) return usageError(command, "no replacement given");
    Console console;
    std::vector<std::string> inputs{args.positional[0]};
    for (const auto& r : replacements) {
        if (r.code)
            inputs.push_back(r.path);
        else
            Console::addFolderFiles(r.path, inputs);
    }
    if (!console.outputAllowed(*out, inputs)) return 1;
    const auto flash = openFlashFile(console, args.positional[0]);
    if (!flash) return 1;
    const auto font = openFont(console, *flash, *fontNumber);
    if (!font) return 1;
    GlyphRun run(console, *font);
    bool allAccepted = true;
    for (const auto& r : replacements) allAccepted = (r.code ? run.single(*r.code, r.path) : run.folder(r.path)) && allAccepted;
    if (run.glyphs().empty()) return 1;  // nothing accepted: nothing written
    if (!console.prepare(*out, {flash->path})) return 1;
    const std::string text = fonts::glyphPatchText(*fontNumber, flash->firmwareId, run.glyphs(), flash->bytes());
    if (!console.write(*out, bytesOf(text), {flash->path})) return 1;
    return allAccepted ? 0 : 1;
}

int runMakeFont(const Arguments& args) {
    const Command& command = commandNamed("make-font");
    const auto out = args.value("-o");
    if (!args.error.empty() || args.positional.size() != 3 || !out) return usageError(command, args.error);
    const auto fontNumber = parseNumber(args.positional[1]);
    if (!fontNumber) return usageError(command, "FONT must be a font number");
    Console console;
    if (!std::filesystem::is_directory(app::toPath(args.positional[2]))) {
        console.say(console.msg(MessageKey::MsgFileNotExist) + " " + args.positional[2]);
        return 1;
    }
    std::vector<std::string> inputs{args.positional[0]};
    Console::addFolderFiles(args.positional[2], inputs);
    if (!console.outputAllowed(*out, inputs)) return 1;
    const auto flash = openFlashFile(console, args.positional[0]);
    if (!flash) return 1;
    const auto font = openFont(console, *flash, *fontNumber);
    if (!font || font->rows.empty()) return 1;  // a font without glyph rows cannot be rebuilt

    codec::PixelCanvas grid{codec::PixelCanvas::kGlyphColumns, codec::PixelCanvas::kGlyphRows};
    edit::FontRebuildInput input;
    input.image = flash->bytes();
    input.fonts = &flash->fonts;
    input.fontIndex = static_cast<std::size_t>(*fontNumber);
    input.rows = &font->rows;
    input.fontAreaOffset = flash->fontAreaOffset;
    const auto rebuilt = edit::rebuildFontFromFolder(input, folderOf(args.positional[2]), grid);
    if (!rebuilt) {
        console.fail(rebuilt.error());
        return 1;
    }
    using Outcome = fonts::RebuildResult::Outcome;
    if (rebuilt->outcome == Outcome::NoRoom) {
        const std::string text = settings::fillIn(console.msg(MessageKey::MsgFontNoRoom), "%1", std::to_string(rebuilt->needed));
        console.say(settings::fillIn(text, "%2", std::to_string(rebuilt->available)));
        return 1;
    }
    if (rebuilt->outcome == Outcome::OutsideImage) {
        console.say(console.msg(MessageKey::MsgGlyphsOutside) + std::to_string(flash->fontAreaOffset));
        return 1;
    }
    if (rebuilt->outcome == Outcome::Unreachable) {
        console.say(console.msg(MessageKey::MsgFontReference) + app::zeroPadded(rebuilt->unreachableGlyph, 4));
        return 1;
    }
    console.say(console.msg(MessageKey::MsgGlyphsChanged) + std::to_string(rebuilt->changed));
    if (!console.prepare(*out, {flash->path})) return 1;
    const std::string text = edit::rebuiltFontPatch(*fontNumber, flash->firmwareId, *rebuilt);
    return console.write(*out, bytesOf(text), {flash->path}) ? 0 : 1;
}

int runRender(const Arguments& args) {
    const Command& command = commandNamed("render");
    const auto out = args.value("-o");
    if (!args.error.empty() || args.positional.size() != 3 || !out) return usageError(command, args.error);
    const auto fontNumber = parseNumber(args.positional[1]);
    if (!fontNumber) return usageError(command, "FONT must be a font number");
    int zoom = 1;
    if (const auto z = args.value("--zoom")) {
        const auto value = parseNumber(*z);
        if (!value || *value < 1 || *value > 16) return usageError(command, "--zoom must be 1 to 16");
        zoom = *value;
    }
    Console console;
    if (!console.outputAllowed(*out, {args.positional[0]})) return 1;
    const auto flash = openFlashFile(console, args.positional[0]);
    if (!flash) return 1;
    const auto font = openFont(console, *flash, *fontNumber);
    if (!font) return 1;
    const edit::RenderedText text = edit::renderText(flash->bytes(), font->rows, edit::codePoints(args.positional[2]));
    // Each pixel becomes a zoom x zoom square: the phone's pixels stay sharp.
    const edit::PixelGrid& line = text.pixels;
    std::vector<std::uint32_t> pixels;
    pixels.reserve(static_cast<std::size_t>(line.width * zoom * line.height * zoom));
    for (int y = 0; y < line.height * zoom; ++y)
        for (int x = 0; x < line.width * zoom; ++x) pixels.push_back(line.at(x / zoom, y / zoom));
    const auto png = codec::encodePng(line.width * zoom, line.height * zoom, pixels);
    if (!png) {
        console.fail(png.error());
        return 1;
    }
    // The characters the font lacks, by position (1-based), so that a script can tell.
    for (const std::size_t at : text.missing) std::printf("missing\t%zu\n", at + 1);
    if (!console.prepare(*out, {flash->path})) return 1;
    return console.write(*out, *png, {flash->path}) ? 0 : 1;
}

}  // namespace korvatek::cli

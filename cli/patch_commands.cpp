// Commands that write or read patches: patch, apply, make, lumbra.
#include <cstdio>
#include <filesystem>

#include "arguments.h"
#include "base/file_io.h"
#include "base/hex_text.h"
#include "commands.h"
#include "console.h"
#include "app/error_message.h"
#include "codec/picture_encoder.h"
#include "codec/picture_type.h"
#include "edit/patch_files.h"
#include "edit/picture_files.h"
#include "edit/picture_patch.h"
#include "firmware/layout.h"
#include "json_output.h"
#include "opening.h"
#include "patch/vkp_apply.h"

namespace korvatek::cli {

using settings::MessageKey;

namespace {

std::optional<int> targetOf(const std::string& text) {
    if (text == "1") return 0x01;
    if (text == "8") return 0x85;
    if (text == "16") return 0x88;
    if (text == "24") return 0x8A;
    return std::nullopt;
}

bool endsWith(const std::string& text, const std::string& tail) {
    return text.size() >= tail.size() && text.compare(text.size() - tail.size(), tail.size(), tail) == 0;
}

// One replacement of the command line.
struct Replacement {
    enum class Kind { Gpf, Bmp, Png, GpfFolder, BmpFolder } kind;
    int number = 0;
    std::string path;
    int target = 0;        // 0 for "orig"
};

std::optional<Replacement> parseReplacement(const std::string& option, const std::string& word) {
    Replacement r;
    if (option == "--gpf-folder") return Replacement{Replacement::Kind::GpfFolder, 0, word, 0};
    if (option == "--bmp-folder") {
        const auto colon = word.rfind(':');
        if (colon == std::string::npos) return std::nullopt;
        const std::string type = word.substr(colon + 1);
        const auto target = type == "orig" ? std::optional<int>(0) : targetOf(type);
        if (!target) return std::nullopt;
        return Replacement{Replacement::Kind::BmpFolder, 0, word.substr(0, colon), *target};
    }
    const auto equals = word.find('=');
    if (equals == std::string::npos) return std::nullopt;
    const auto number = parseNumber(word.substr(0, equals));
    if (!number) return std::nullopt;
    r.number = *number;
    std::string file = word.substr(equals + 1);
    if (endsWith(file, ".gpf2") || endsWith(file, ".gpf")) {
        r.kind = Replacement::Kind::Gpf;
        r.path = file;
        return r;
    }
    const auto colon = file.rfind(':');
    if (colon == std::string::npos) return std::nullopt;
    const auto target = targetOf(file.substr(colon + 1));
    file.resize(colon);
    if (!target) return std::nullopt;
    r.target = *target;
    r.path = file;
    if (endsWith(file, ".bmp") || endsWith(file, ".BMP"))
        r.kind = Replacement::Kind::Bmp;
    else if (endsWith(file, ".png") || endsWith(file, ".PNG"))
        r.kind = Replacement::Kind::Png;
    else
        return std::nullopt;
    return r;
}

// The replacements of one `patch` run, in order, as the same sequence of single replacements
// in the window would make them: each picture's own data are decoded first (their length
// decides between in place and free space), free space is handed out in order, and the depth
// and target type carry from one replacement to the next as they do there.
// What happened to one picture of the run, for --json: where its data went and how many bytes,
// or the messages that refused it.
struct PlannedPicture {
    int picture = 0;
    std::string source;
    std::optional<edit::PicturePlacement::Kind> placed;   // none: refused
    std::uint32_t address = 0;
    std::uint64_t bytes = 0;
    std::vector<std::string> messages;                     // what was told while it was handled
};

class PatchRun {
public:
    PatchRun(Console& console, const edit::OpenedFlash& flash) : m_console(console), m_flash(flash), m_patch(flash) {}

    // False when the replacement (or any picture of a folder) was refused; its messages are told.
    bool run(const Replacement& r);
    const edit::PicturePatch& patch() const { return m_patch; }
    const std::vector<PlannedPicture>& plan() const { return m_plan; }

private:
    void say(const std::string& text) {
        ++m_told;
        m_console.say(text);
        if (!m_plan.empty() && m_planOpen) m_plan.back().messages.push_back(text);
    }
    // Each picture handled opens an entry of the plan; the messages told until the next one
    // belong to it.
    void begin(int picture, const std::string& source) {
        m_plan.push_back({picture, source, std::nullopt, 0, 0, {}});
        m_planOpen = true;
    }
    void fail(const Error& error) { say(m_console.errorText(error)); }
    // Decodes picture n's own data; its length becomes the one a replacement is compared with.
    void decodeOwn(const firmware::PictureRecord& row);
    bool refusedAsReplaced(const firmware::PictureRecord& row);
    // The container read, decoded and placed over picture `row`; false when refused.
    bool place(const firmware::PictureRecord& row, const Bytes& container);
    // A BMP or PNG encoded into a GPF2 container of the current target type.
    std::optional<Bytes> encode(const std::string& path, bool png);
    bool single(const Replacement& r);
    bool gpfFolder(const std::string& folder);
    bool bmpFolder(const std::string& folder, int target);

    Console& m_console;
    const edit::OpenedFlash& m_flash;
    edit::PicturePatch m_patch;
    edit::PictureDecoder m_decoder;
    std::int64_t m_length = 0;                          // the length the next placement compares with
    std::string m_target = std::string{'\x85', '\0'};   // the target type field
    int m_told = 0;                                     // messages told so far
    std::vector<PlannedPicture> m_plan;
    bool m_planOpen = false;
};

void PatchRun::decodeOwn(const firmware::PictureRecord& row) {
    const edit::DecodedPicture own = m_decoder.flashPicture(m_flash.bytes(), row, 24);
    m_length = edit::listedLength(own.dataLength);
    if (own.stopped) fail(*own.stopped);
    else if (own.refused) fail(*own.refused);
}

bool PatchRun::refusedAsReplaced(const firmware::PictureRecord& row) {
    if (!m_patch.isReplaced(row.number)) return false;
    say(m_console.msg(MessageKey::MsgAlreadyReplaced));
    return true;
}

bool PatchRun::place(const firmware::PictureRecord& row, const Bytes& container) {
    const std::int64_t oldLength = m_length;
    ByteReader in(container);
    const auto head = edit::readContainerHead(in, false);
    if (!head) {
        fail(head.error());
        return false;
    }
    const edit::DecodedPicture replacement = m_decoder.containerData(in, head->width, head->height, head->typeText, 24);
    if (replacement.stopped) {
        fail(*replacement.stopped);
        return false;
    }
    m_length = edit::listedLength(replacement.dataLength);
    if (replacement.refused) fail(*replacement.refused);  // told; the data go in as they are
    const edit::PicturePlacement placed = m_patch.add(row, oldLength, container, replacement);
    if (placed.error) fail(*placed.error);
    if (!placed.error && !m_plan.empty()) {
        m_plan.back().placed = placed.kind;
        m_plan.back().address = placed.address;
        m_plan.back().bytes = replacement.dataLength;
    }
    return !placed.error;
}

std::optional<Bytes> PatchRun::encode(const std::string& path, bool png) {
    const auto file = app::readFile(path, app::kMaxPictureFileSize);
    if (!file) {
        fail(file.error());
        return std::nullopt;
    }
    codec::PixelCanvas canvas;
    edit::PngFacts facts;
    const Status loaded = png ? edit::loadPngPicture(*file, canvas, facts) : edit::loadBmpPicture(*file, canvas);
    if (!loaded) {
        fail(loaded.error());
        return std::nullopt;
    }
    const auto encoded = edit::encodeContainer(canvas, m_target, true);
    if (!encoded) {
        fail(encoded.error());
        return std::nullopt;
    }
    for (int i = 0; i < encoded->backSteps; ++i) say("err");
    return encoded->bytes;
}

bool PatchRun::single(const Replacement& r) {
    begin(r.number, r.path);
    const firmware::PictureRecord* row = pictureNumbered(m_console, m_flash, r.number);
    if (row == nullptr) {   // told by the look-up itself
        m_plan.back().messages.push_back(m_console.msg(MessageKey::MsgNoSuchPicture) + std::to_string(r.number));
        return false;
    }
    const std::int64_t lengthBefore = m_length;
    decodeOwn(*row);
    bool accepted = false;
    if (r.kind == Replacement::Kind::Gpf) {
        if (!refusedAsReplaced(*row)) {
            if (app::CheckFexist(r.path)) {
                say(m_console.msg(MessageKey::MsgFileNotExist));
            } else if (const auto file = app::readFile(r.path, app::kMaxPictureFileSize); !file) {
                fail(file.error());
            } else {
                accepted = place(*row, *file);
            }
        }
    } else {
        m_target = std::string{static_cast<char>(r.target), '\0'};
        if (!refusedAsReplaced(*row)) {
            if (const auto container = encode(r.path, r.kind == Replacement::Kind::Png))
                accepted = place(*row, *container);
        }
    }
    // A refused replacement leaves the length the next one starts from as it was.
    if (!accepted) m_length = lengthBefore;
    return accepted;
}

bool PatchRun::gpfFolder(const std::string& folder) {
    const int toldBefore = m_told;
    const int last = std::min(firmware::kPictureMaxIndex, static_cast<int>(m_flash.pictures.size()) - 1);
    for (int n = 0; n <= last; ++n) {
        const std::string path = app::joinPath(folder, app::zeroPadded(n, 4) + ".gpf2");
        if (app::CheckFexist(path)) continue;
        const firmware::PictureRecord& row = m_flash.pictures[static_cast<std::size_t>(n)];
        begin(n, path);
        if (refusedAsReplaced(row)) continue;
        decodeOwn(row);
        if (const auto file = app::readFile(path, app::kMaxPictureFileSize); !file)
            fail(file.error());
        else
            place(row, *file);
    }
    return m_told == toldBefore;
}

bool PatchRun::bmpFolder(const std::string& folder, int target) {
    const int toldBefore = m_told;
    const int last = std::min(firmware::kPictureMaxIndex, static_cast<int>(m_flash.pictures.size()) - 1);
    if (target != 0) m_target = std::string{static_cast<char>(target), '\0'};
    for (int n = 0; n <= last; ++n) {
        const std::string path = app::joinPath(folder, app::zeroPadded(n, 4) + ".bmp");
        if (app::CheckFexist(path)) continue;
        const firmware::PictureRecord& row = m_flash.pictures[static_cast<std::size_t>(n)];
        begin(n, path);
        if (refusedAsReplaced(row)) continue;
        // "orig": each picture keeps its own depth (8-bit 0x85, 12- and 16-bit 0x88, 24-bit
        // 0x8A, 1-bit monochrome); a type without a format keeps the target as it was.
        if (target == 0) {
            if (const auto bits = codec::bitsForTypeCode(row.listedType())) {
                const int own = *bits == 1    ? codec::kTarget1Bit
                                : *bits == 8  ? codec::kTarget8Bit
                                : *bits == 24 ? codec::kTarget24Bit
                                              : codec::kTarget16Bit;
                m_target = std::string{static_cast<char>(own), '\0'};
            }
        }
        // The pictures of a folder are not decoded first: each is compared with the length of
        // whatever was decoded last, as the window's folder command has always done.
        const auto container = encode(path, false);
        if (!container) return false;  // a bitmap that cannot be converted ends the folder
        place(row, *container);         // a picture that finds no room is told; the rest go on
    }
    return m_told == toldBefore;
}

bool PatchRun::run(const Replacement& r) {
    const bool folder = r.kind == Replacement::Kind::GpfFolder || r.kind == Replacement::Kind::BmpFolder;
    if (!folder) return single(r);
    if (!std::filesystem::is_directory(app::toPath(r.path))) {
        say(m_console.msg(MessageKey::MsgFileNotExist) + " " + r.path);
        return false;
    }
    std::string path = r.path;
    while (path.size() > 1 && (path.back() == '/' || path.back() == '\\')) path.pop_back();
    return r.kind == Replacement::Kind::GpfFolder ? gpfFolder(path) : bmpFolder(path, r.target);
}

Json planJson(const std::vector<PlannedPicture>& plan, const Json& output, int status) {
    Json pictures = Json::array();
    std::uint64_t moved = 0;
    for (const PlannedPicture& p : plan) {
        Json entry{{"picture", p.picture}, {"source", p.source}};
        if (!p.placed) {
            entry["result"] = "refused";
        } else {
            const bool inPlace = *p.placed == edit::PicturePlacement::Kind::InPlace;
            entry["result"] = inPlace ? "inPlace" : "moved";
            entry["address"] = p.address;
            entry["bytes"] = p.bytes;
            if (!inPlace) moved += p.bytes;
        }
        entry["messages"] = p.messages;
        pictures.push_back(std::move(entry));
    }
    return Json{{"output", output}, {"replacements", pictures}, {"freeSpaceBytes", moved}, {"exitCode", status}};
}

}  // namespace

int runPatch(const Arguments& args) {
    const Command& command = commandNamed("patch");
    const auto out = args.value("-o");
    if (!args.error.empty() || args.positional.empty() || !out) return usageError(command, args.error);
    // The replacements in the order given, folder options among them; the first positional
    // word is the fullflash.
    std::vector<Replacement> replacements;
    bool flashSeen = false;
    for (const auto& [option, value] : args.ordered) {
        if (option.empty() && !flashSeen) {
            flashSeen = true;
            continue;
        }
        const auto r = parseReplacement(option, value);
        if (!r) return usageError(command, option.empty() ? "cannot read replacement " + value : "cannot read " + option + " " + value);
        replacements.push_back(*r);
    }
    if (replacements.empty()) return usageError(command, "no replacement given");
    Console console;
    std::vector<std::string> inputs{args.positional[0]};
    for (const auto& r : replacements) {
        if (r.kind == Replacement::Kind::GpfFolder || r.kind == Replacement::Kind::BmpFolder)
            Console::addFolderFiles(r.path, inputs);
        else
            inputs.push_back(r.path);
    }
    if (!console.outputAllowed(*out, inputs)) return 1;
    const auto flash = openFlashFile(console, args.positional[0]);
    if (!flash) return 1;
    PatchRun run(console, *flash);
    bool allAccepted = true;
    for (const auto& r : replacements) allAccepted = run.run(r) && allAccepted;
    const bool written = !run.patch().empty() && console.prepare(*out, {flash->path}) &&
                         console.write(*out, bytesOf(run.patch().text()), {flash->path});
    const int status = written && allAccepted ? 0 : 1;   // nothing accepted: nothing written
    if (args.has("--json") && !printJson(planJson(run.plan(), written ? Json(*out) : Json(nullptr), status))) return 1;
    return status;
}

int runApply(const Arguments& args) {
    const Command& command = commandNamed("apply");
    const auto out = args.value("-o");
    if (!args.error.empty() || args.positional.size() != 2 || !out) return usageError(command, args.error);
    if (app::isStandardOutput(*out)) return usageError(command, kNotToStandardOutput);
    Console console;
    if (*out == args.positional[0] || app::sameFile(*out, args.positional[0])) {
        console.say(console.msg(MessageKey::MsgPatchSameFile));
        return 1;
    }
    const auto flash = openFlashFile(console, args.positional[0]);
    if (!flash) return 1;
    const std::string& source = args.positional[1];
    const auto check = edit::checkPatchFile(flash->bytes(), source);
    if (!check) {
        console.fail(check.error());
        return 1;
    }
    if (const std::string problems = app::patchProblemsText(settings::MessageTable(), *check); !problems.empty()) {
        console.say(problems);
        return 1;
    }
    if (!console.prepare(*out, {source, flash->path})) return 1;
    const Bytes patched = patch::applyEdits(check->parsed.edits, flash->bytes());
    return console.write(*out, patched, {source, flash->path}) ? 0 : 1;
}

namespace {

// A folder argument as the folder picker gives it: without a trailing separator.
std::string folderOf(std::string path) {
    while (path.size() > 1 && (path.back() == '/' || path.back() == '\\')) path.pop_back();
    return path;
}

}  // namespace

int runMake(const Arguments& args) {
    const Command& command = commandNamed("make");
    if (!args.error.empty() || args.positional.size() != 2) return usageError(command, args.error);
    Console console;
    if (!std::filesystem::is_directory(app::toPath(args.positional[0]))) {
        console.say(console.msg(MessageKey::MsgFileNotExist) + " " + args.positional[0]);
        return 1;
    }
    std::error_code ec;
    std::filesystem::create_directories(app::toPath(args.positional[1]), ec);
    const std::string source = folderOf(args.positional[0]);
    const std::string output = folderOf(args.positional[1]);
    const std::string dataName = "0x0" + app::hexText(firmware::kPictureDataStart) + ".bin";
    const std::string tableName = "0x0" + app::hexText(firmware::kPictureTableOffset) + ".bin";
    const std::string dataPath = app::joinPath(output, dataName);
    const std::string tablePath = app::joinPath(output, tableName);
    // The notice names the bare file, without its folder.
    for (const auto& [path, name] : {std::pair{dataPath, dataName}, std::pair{tablePath, tableName}}) {
        if (!console.outputAllowed(path, {})) return 1;
        if (!app::CheckFexist(path)) console.say(console.msg(MessageKey::MsgFile) + name + console.msg(MessageKey::MsgFileExists));
    }
    const auto area = edit::makePictureArea(source, firmware::kPictureMaxIndex, [&](const std::string& name) {
        console.say(console.msg(MessageKey::MsgFile) + name + ".gpf2 (or .gpf)" + console.msg(MessageKey::MsgReplacedByEmpty));
    });
    if (!area) {
        console.fail(area.error());
        return 1;
    }
    if (area->overflow) console.say(console.msg(MessageKey::MsgTooMuchSpace));
    const bool dataWritten = console.write(dataPath, area->data, {});
    const bool tableWritten = console.write(tablePath, area->table, {});
    return area->overflow || !dataWritten || !tableWritten ? 1 : 0;
}

int runLumbra(const Arguments& args) {
    const Command& command = commandNamed("lumbra");
    if (!args.error.empty() || args.positional.size() != 2) return usageError(command, args.error);
    Console console;
    const std::string& source = args.positional[0];
    std::error_code ec;
    std::filesystem::create_directories(app::toPath(args.positional[1]), ec);
    if (app::CheckFexist(source)) {
        console.say(console.msg(MessageKey::MsgFileNotExist));
        return 1;
    }
    const auto pictures = edit::containersOfOtherPatch(source);
    if (!pictures) {
        console.fail(pictures.error());
        return 1;
    }
    const std::string folder = folderOf(args.positional[1]);
    for (const auto& [name, file] : *pictures) {
        // The existence test and the deletion use the bare name, as they always have; the
        // file made next lies in the chosen folder and replaces any older one there.
        // Only a plain file is deleted so, never the patch being read nor a folder or device.
        if (!app::CheckFexist(name)) {
            console.say(console.msg(MessageKey::MsgFile) + name + console.msg(MessageKey::MsgFileExists));
            if (std::filesystem::is_regular_file(app::toPath(name), ec) && !app::sameFile(name, source)) app::deleteFile(name);
        }
        console.write(app::joinPath(folder, name), file, {source});
    }
    return console.failures() > 0 ? 1 : 0;
}

}  // namespace korvatek::cli

// Patches read without writing a fullflash: where they stand on one (status), the patch that
// takes one off again (revert), and several joined into one (merge).
#include <string>
#include <vector>

#include "app/error_message.h"
#include "app/patch_status_text.h"
#include "base/file_io.h"
#include "base/hex_text.h"
#include "commands.h"
#include "console.h"
#include "edit/patch_files.h"
#include "json_output.h"
#include "opening.h"
#include "patch/vkp_rewrite.h"

namespace korvatek::cli {

using settings::MessageKey;

namespace {

const char* stateName(patch::LineState state) {
    switch (state) {
        case patch::LineState::Applied: return "applied";
        case patch::LineState::NotApplied: return "notApplied";
        case patch::LineState::Conflicting: return "conflicting";
        case patch::LineState::Outside: return "outside";
        case patch::LineState::ChangesNothing: return "changesNothing";
    }
    return "";
}

const char* stateName(patch::PatchState state) {
    switch (state) {
        case patch::PatchState::Applied: return "applied";
        case patch::PatchState::NotApplied: return "notApplied";
        case patch::PatchState::PartlyApplied: return "partlyApplied";
        case patch::PatchState::Conflicting: return "conflicting";
        case patch::PatchState::Outside: return "outside";
    }
    return "";
}

// What cannot be read in a patch, or what makes it one that could never be applied whole: its
// unreadable lines, lines clashing within it, no data lines at all, lines beyond the image.
std::vector<std::string> patchErrors(const settings::MessageTable& messages, const edit::PatchReport& report) {
    const std::string text = app::patchProblemsText(messages, report.check, app::OldBytes::NotTold);
    std::vector<std::string> lines;
    for (std::size_t start = 0; !text.empty() && start <= text.size();) {
        const std::size_t end = std::min(text.find('\r', start), text.size());
        lines.push_back(text.substr(start, end - start));
        start = end + 1;
    }
    return lines;
}

// 0 every patch applied; 3 none of them applied; 4 partly applied, conflicting or clashing;
// 1 when a patch cannot be read whole or reaches past the fullflash.
int statusExitCode(const edit::StatusReport& report, bool errors) {
    if (errors) return 1;
    if (!report.clashes.empty()) return kStatusPartly;
    bool allApplied = true, noneApplied = true;
    for (const auto& p : report.patches) {
        allApplied = allApplied && p.status.state == patch::PatchState::Applied;
        noneApplied = noneApplied && p.status.state == patch::PatchState::NotApplied;
    }
    return allApplied ? 0 : noneApplied ? kStatusNotApplied : kStatusPartly;
}

}  // namespace

int runStatus(const Arguments& args) {
    const Command& command = commandNamed("status");
    if (!args.error.empty() || args.positional.size() < 2) return usageError(command, args.error);
    Console console;
    const auto flash = openFlashFile(console, args.positional[0]);
    if (!flash) return 1;
    const std::vector<std::string> paths(args.positional.begin() + 1, args.positional.end());
    const auto report = edit::patchStatus(flash->bytes(), paths);
    if (!report) {
        console.fail(report.error());
        return 1;
    }
    const settings::MessageTable english;
    bool errors = false;
    std::vector<std::vector<std::string>> errorsOf;
    for (const auto& p : report->patches) {
        errorsOf.push_back(patchErrors(english, p));
        for (const std::string& line : errorsOf.back()) console.say(p.path + ": " + line);
        errors = errors || !errorsOf.back().empty();
    }
    const int exitCode = statusExitCode(*report, errors);

    if (args.has("--json")) {
        Json patches = Json::array();
        for (std::size_t i = 0; i < report->patches.size(); ++i) {
            const auto& p = report->patches[i];
            Json lines = Json::array();
            for (const auto& l : p.status.lines)
                lines.push_back({{"line", l.line}, {"address", l.offset}, {"bytes", l.length}, {"state", stateName(l.state)}});
            Json unreadable = Json::array();
            for (const auto& m : p.check.parsed.malformed)
                unreadable.push_back({{"line", m.line}, {"reason", app::lineFaultText(english, m.fault)}});
            using enum patch::LineState;
            patches.push_back({{"path", p.path},
                               {"state", stateName(p.status.state)},
                               {"applied", p.status.count(Applied)},
                               {"notApplied", p.status.count(NotApplied)},
                               {"conflicting", p.status.count(Conflicting)},
                               {"outside", p.status.count(Outside)},
                               {"changesNothing", p.status.count(ChangesNothing)},
                               {"unreadableLines", p.check.parsed.malformedCount},
                               {"errors", errorsOf[i]},
                               {"unreadable", unreadable},
                               {"lines", lines}});
        }
        Json clashes = Json::array();
        for (const auto& c : report->clashes)
            clashes.push_back({{"firstPatch", report->patches[c.firstPatch].path}, {"firstLine", c.firstLine},
                               {"secondPatch", report->patches[c.secondPatch].path}, {"secondLine", c.secondLine},
                               {"address", c.offset}});
        if (!printJson({{"flash", flash->path}, {"patches", patches}, {"clashes", clashes}, {"exitCode", exitCode}}))
            return 1;
        return exitCode;
    }

    std::string out;
    for (const auto& p : report->patches) {
        if (p.check.parsed.edits.empty()) continue;
        out += app::patchSummaryText(english, p.path, p.status) + "\n";
        for (const auto& l : p.status.lines)
            out += std::to_string(l.line) + "\t0x" + app::hexText(l.offset) + "\t" + std::to_string(l.length) + "\t" +
                   app::lineStateText(english, l.state) + "\n";
    }
    for (const auto& c : report->clashes)
        out += app::clashText(english, c, report->patches[c.firstPatch].path, report->patches[c.secondPatch].path) + "\n";
    std::fwrite(out.data(), 1, out.size(), stdout);
    return std::fflush(stdout) == 0 ? exitCode : 1;
}

namespace {

// A patch read whole for rewriting; its problems told (with its path when there are several).
std::optional<edit::PatchText> readCleanPatch(Console& console, const std::string& path, const std::string& prefix) {
    auto read = edit::readPatchText(path);
    if (!read) {
        console.fail(read.error());
        return std::nullopt;
    }
    edit::PatchCheck check;
    check.parsed = read->parsed;
    if (const std::string problems = app::patchProblemsText(settings::MessageTable(), check); !problems.empty()) {
        std::string told = prefix + problems;
        for (std::size_t at = told.find('\r'); at != std::string::npos; at = told.find('\r', at + 1))
            told.insert(at + 1, prefix);
        console.say(told);
        return std::nullopt;
    }
    return std::move(*read);
}

}  // namespace

int runRevert(const Arguments& args) {
    const Command& command = commandNamed("revert");
    const auto out = args.value("-o");
    if (!args.error.empty() || args.positional.size() != 1 || !out) return usageError(command, args.error);
    Console console;
    const std::string& source = args.positional[0];
    if (!console.outputAllowed(*out, {source})) return 1;
    const auto read = readCleanPatch(console, source, "");
    if (!read) return 1;
    const std::string header = settings::fillIn(console.msg(MessageKey::MsgPatchReverts), "%1", app::patchName(source));
    const std::string text = patch::revertedPatch(read->text, header);
    if (!console.prepare(*out, {source})) return 1;
    return console.write(*out, bytesOf(text), {source}) ? 0 : 1;
}

int runMerge(const Arguments& args) {
    const Command& command = commandNamed("merge");
    const auto out = args.value("-o");
    if (!args.error.empty() || args.positional.size() < 2 || !out) return usageError(command, args.error);
    Console console;
    const std::vector<std::string>& sources = args.positional;
    if (!console.outputAllowed(*out, sources)) return 1;
    std::vector<edit::PatchText> read;
    for (const std::string& path : sources) {
        auto patch = readCleanPatch(console, path, path + ": ");
        if (!patch) return 1;
        read.push_back(std::move(*patch));
    }
    std::vector<const std::vector<patch::PatchEdit>*> edits;
    for (const auto& r : read) edits.push_back(&r.parsed.edits);
    const auto clashes = patch::clashesBetween(edits);
    const settings::MessageTable english;
    for (const auto& c : clashes) console.say(app::clashText(english, c, sources[c.firstPatch], sources[c.secondPatch]));
    if (!clashes.empty()) return 1;

    std::vector<patch::NamedPatchText> named;
    std::string names;
    for (std::size_t i = 0; i < read.size(); ++i) {
        named.push_back({app::patchName(sources[i]), read[i].text});
        names += (i == 0 ? "" : ", ") + named.back().name;
    }
    const std::string header = settings::fillIn(console.msg(MessageKey::MsgPatchMerged), "%1", names);
    const std::string text = patch::mergedPatch(named, header);
    if (!console.prepare(*out, sources)) return 1;
    return console.write(*out, bytesOf(text), sources) ? 0 : 1;
}

}  // namespace korvatek::cli

// Tools that read patches: converting the other tool's picture patches into containers, and
// checking a patch against the open fullflash before it is flashed.
#include <algorithm>
#include <filesystem>

#include "base/hex_text.h"
#include "app/workspace.h"
#include "app/error_message.h"
#include "app/patch_status_text.h"
#include "edit/patch_files.h"

namespace korvatek::app {

using settings::MessageKey;

void Workspace::mnu_ToolsConvertLumbrapatch() {
    ActionFailed = false;
    std::string source = "xxx.vkp";
    OSdialog(ActionFailed, "Graphic Patch(*.vkp)|*.vkp", "VKP", source, false);
    if (ActionFailed) return;
    if (CheckFexist(source)) {
        showMessage(msg(MessageKey::MsgFileNotExist));
        ActionFailed = true;
        return;
    }
    const std::string folder = fBrowseForFolder(msg(MessageKey::MsgChooseSaveFolder));
    if (folder.empty()) return;
    const auto pictures = edit::containersOfOtherPatch(source);
    if (!pictures) return fail(pictures.error());
    for (const auto& [name, file] : *pictures) {
        // The existence test and the deletion use the bare name, as they always have; the
        // file made next lies in the chosen folder and replaces any older one there.
        // Only a plain file is deleted so, never the patch being read nor a folder or device.
        if (!CheckFexist(name)) {
            showMessage(msg(MessageKey::MsgFile) + name + msg(MessageKey::MsgFileExists));
            std::error_code ec;
            if (std::filesystem::is_regular_file(toPath(name), ec) && !sameFile(name, source)) deleteFile(name);
        }
        IsGPF2 = true;
        writeOutput(joinPath(folder, name), file, {source});
    }
    showSuccess();
}

namespace {

// What stops several patches from going on together: each patch with problems under its name,
// then every address where two of them write different bytes.
std::string severalPatchesProblemsText(const settings::MessageTable& messages, const edit::StatusReport& report,
                                       const std::vector<std::string>& problems) {
    std::string text;
    const auto add = [&](const std::string& line) { text += (text.empty() ? "" : "\r") + line; };
    for (std::size_t i = 0; i < report.patches.size(); ++i)
        if (!problems[i].empty()) add(patchName(report.patches[i].path) + ":\r" + problems[i]);
    for (const patch::PatchClash& clash : report.clashes)
        add(clashText(messages, clash, patchName(report.patches[clash.firstPatch].path),
                      patchName(report.patches[clash.secondPatch].path)));
    return text;
}

}  // namespace

void Workspace::mnu_ToolsCheckPatch() {
    ActionFailed = false;
    if (!firmware) return;
    const std::string kind = "VKP";
    const auto sources = ui.chooseOpenFiles({msg(MessageKey::MsgChooseFile) + kind + ":", kind,
                                             "V_Klay Patch File(*.vkp)|*.vkp", {}});
    if (!sources || sources->empty() ||
        std::any_of(sources->begin(), sources->end(), [](const std::string& path) { return path.empty(); })) {
        ActionFailed = true;
        return;
    }
    const auto report = edit::patchStatus(firmware->bytes(), *sources);
    if (!report) return fail(report.error());

    // The table first, whatever it shows; the patched copy is offered only when every patch
    // matches the fullflash and no two of them write different bytes to one address.
    std::vector<std::string> problems;
    for (const edit::PatchReport& p : report->patches) problems.push_back(patchProblemsText(messages, p.check));
    const bool clean = report->clashes.empty() &&
                       std::all_of(problems.begin(), problems.end(), [](const std::string& p) { return p.empty(); });
    const bool write = ui.showPatchStatus(*report, clean);
    if (!clean) {
        showMessage(sources->size() == 1 ? problems.front() : severalPatchesProblemsText(messages, *report, problems));
        ActionFailed = true;
        return;
    }
    if (!write) {
        ActionFailed = true;
        return;
    }

    std::string target = pathText(toPath(FirmwarePath).stem()) + "_patched.bin";
    OSdialog(ActionFailed, "Fullflash (*.bin)|*.bin", "BIN", target, true);
    if (ActionFailed) return;
    if (sameFile(target, FirmwarePath) || target == FirmwarePath) {
        showMessage(msg(MessageKey::MsgPatchSameFile));
        ActionFailed = true;
        return;
    }
    if (!confirmReplace(target, *sources)) {
        ActionFailed = true;
        return;
    }
    // In the order chosen: patches that pass the checks above touch different bytes or agree.
    Bytes patched = patch::applyEdits(report->patches.front().check.parsed.edits, firmware->bytes());
    for (std::size_t i = 1; i < report->patches.size(); ++i)
        patched = patch::applyEdits(report->patches[i].check.parsed.edits, patched);
    if (!writeOutput(target, patched, *sources)) return;
    PatchedCopyPath = target;
    if (ui.askOkCancel(msg(MessageKey::MsgOpenPatchedCopy))) {
        PathGiven = true;
        CommandLinePath = target;
        ListView1.clear();
        ListView1Selected = -1;
        Ftype.clear();
        PICinfo.clear();
        preview = Preview{};
        mnu_FileOpen();
        PathGiven = false;
    }
}

}  // namespace korvatek::app

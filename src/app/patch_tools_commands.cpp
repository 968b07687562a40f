// Tools that read patches: converting the other tool's picture patches into containers, and
// checking a patch against the open fullflash before it is flashed.
#include <filesystem>

#include "base/hex_text.h"
#include "app/workspace.h"
#include "app/error_message.h"
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

void Workspace::mnu_ToolsCheckPatch() {
    ActionFailed = false;
    if (!firmware) return;
    std::string source;
    OSdialog(ActionFailed, "V_Klay Patch File(*.vkp)|*.vkp", "VKP", source, false);
    if (ActionFailed) return;
    const auto check = edit::checkPatchFile(firmware->bytes(), source);
    if (!check) return fail(check.error());
    const std::string problems = patchProblemsText(messages, *check);
    if (!problems.empty()) {
        showMessage(problems);
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
    if (!confirmReplace(target, {source})) {
        ActionFailed = true;
        return;
    }
    const Bytes patched = patch::applyEdits(check->parsed.edits, firmware->bytes());
    if (!writeOutput(target, patched, {source})) return;
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

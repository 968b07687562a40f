// Tools that read patches: converting the other tool's picture patches into containers, and
// checking a patch against the open fullflash before it is flashed.
#include <filesystem>

#include "app/hex_text.h"
#include "app/workspace.h"
#include "containers/gpf_header.h"
#include "patch/lumbra_patch.h"
#include "patch/vkp_apply.h"

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
    const auto text = readFile(source);
    if (!text) return fail(text.error());

    const auto pictures = patch::parseLumbraPatch(patch::splitLines(textOf(*text)));
    for (const auto& picture : pictures) {
        const std::string name = zeroPadded(picture.number, 4) + ".gpf2";
        // The existence test and the deletion use the bare name, as they always have; the
        // file made next lies in the chosen folder and replaces any older one there.
        if (!CheckFexist(name)) {
            showMessage(msg(MessageKey::MsgFile) + name + msg(MessageKey::MsgFileExists));
            deleteFile(name);
        }
        IsGPF2 = true;
        Bytes file = containers::SaveGPFhead(true, picture.width, picture.height,
                                             std::string{static_cast<char>(picture.typeCode), '\0'});
        file.insert(file.end(), picture.data.begin(), picture.data.end());
        writeOutput(joinPath(folder, name), file);
    }
    showSuccess();
}

void Workspace::mnu_ToolsCheckPatch() {
    ActionFailed = false;
    if (!firmware) return;
    std::string source;
    OSdialog(ActionFailed, "V_Klay Patch File(*.vkp)|*.vkp", "VKP", source, false);
    if (ActionFailed) return;
    const auto text = readFile(source);
    if (!text) return fail(text.error());

    const patch::ParsedPatch parsed = patch::parseVkp(textOf(*text));
    std::vector<std::string> problems;
    for (const auto& p : parsed.malformed)
        problems.push_back(msg(MessageKey::MsgPatchMalformed) + std::to_string(p.line) + " (" + p.what + ")");
    for (const auto& p : patch::checkAgainst(parsed.edits, firmware->bytes()))
        problems.push_back(msg(p.kind == patch::PatchProblem::Kind::Mismatch ? MessageKey::MsgPatchMismatch
                                                                             : MessageKey::MsgPatchBeyond) +
                           hexText(p.offset));
    if (!problems.empty()) {
        std::string all;
        for (const auto& p : problems) all += (all.empty() ? "" : "\r") + p;
        showMessage(all);
        ActionFailed = true;
        return;
    }

    std::string target = std::filesystem::path(FirmwarePath).stem().string() + "_patched.bin";
    OSdialog(ActionFailed, "Fullflash (*.bin)|*.bin", "BIN", target, true);
    if (ActionFailed) return;
    std::error_code ec;
    if (std::filesystem::equivalent(target, FirmwarePath, ec) || target == FirmwarePath) {
        showMessage(msg(MessageKey::MsgPatchSameFile));
        ActionFailed = true;
        return;
    }
    if (!confirmReplace(target)) {
        ActionFailed = true;
        return;
    }
    const Bytes patched = patch::applyEdits(parsed.edits, firmware->bytes());
    if (!writeOutput(target, patched)) return;
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

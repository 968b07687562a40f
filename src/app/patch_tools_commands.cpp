// Tools that read patches: converting the other tool's picture patches into containers, and
// checking a patch against the open fullflash before it is flashed.
#include <filesystem>

#include "base/hex_text.h"
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
    patch::LumbraReader reader;
    const Status read = readFileChunks(source, kMaxPatchFileSize, 1 << 16, [&](ByteView piece) {
        reader.feed(std::string_view(reinterpret_cast<const char*>(piece.data()), piece.size()));
    });
    if (!read) return fail(read.error());
    const auto pictures = reader.finish();
    for (const auto& picture : pictures) {
        const std::string name = zeroPadded(picture.number, 4) + ".gpf2";
        // The existence test and the deletion use the bare name, as they always have; the
        // file made next lies in the chosen folder and replaces any older one there.
        // Only a plain file is deleted so, never the patch being read nor a folder or device.
        if (!CheckFexist(name)) {
            showMessage(msg(MessageKey::MsgFile) + name + msg(MessageKey::MsgFileExists));
            std::error_code ec;
            if (std::filesystem::is_regular_file(toPath(name), ec) && !sameFile(name, source)) deleteFile(name);
        }
        IsGPF2 = true;
        Bytes file = containers::SaveGPFhead(true, picture.width, picture.height,
                                             std::string{static_cast<char>(picture.typeCode), '\0'});
        file.insert(file.end(), picture.data.begin(), picture.data.end());
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
    // Read in pieces: the text is never held whole, only the edits it describes.
    patch::VkpReader reader;
    const Status read = readFileChunks(source, kMaxPatchFileSize, 1 << 16, [&](ByteView piece) {
        reader.feed(std::string_view(reinterpret_cast<const char*>(piece.data()), piece.size()));
    });
    if (!read) return fail(read.error());
    const patch::ParsedPatch parsed = reader.finish();

    std::string problems;
    const auto add = [&](const std::string& line) { problems += (problems.empty() ? "" : "\r") + line; };
    for (const auto& p : parsed.malformed)
        add(msg(MessageKey::MsgPatchMalformed) + std::to_string(p.line) + " (" + p.what + ")");
    if (parsed.malformedCount > parsed.malformed.size())
        add(settings::fillIn(msg(MessageKey::MsgPatchMoreLines), "%1",
                             std::to_string(parsed.malformedCount - parsed.malformed.size())));
    for (const auto& c : parsed.conflicts) {
        const std::string text = settings::fillIn(msg(MessageKey::MsgPatchConflict), "%1", std::to_string(c.firstLine));
        add(settings::fillIn(text, "%2", std::to_string(c.secondLine)) + hexText(c.offset));
    }
    if (problems.empty() && parsed.edits.empty()) add(msg(MessageKey::MsgPatchNothing));
    for (const auto& p : patch::checkAgainst(parsed.edits, firmware->bytes()))
        add(msg(p.kind == patch::PatchProblem::Kind::Mismatch ? MessageKey::MsgPatchMismatch
                                                              : MessageKey::MsgPatchBeyond) +
            hexText(p.offset));
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
    const Bytes patched = patch::applyEdits(parsed.edits, firmware->bytes());
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

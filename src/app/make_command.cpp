// The Make tool: the whole picture area rebuilt from a folder of containers, written as two
// raw blocks named after the fullflash offsets they belong at.
#include "base/hex_text.h"
#include "app/workspace.h"
#include "edit/patch_files.h"
#include "firmware/layout.h"

namespace korvatek::app {

using settings::MessageKey;


void Workspace::mnu_ToolsMake() {
    ActionFailed = false;
    const std::string source = fBrowseForFolder(msg(MessageKey::MsgChooseOpenFolder));
    if (source.empty()) return;
    const std::string output = fBrowseForFolder(msg(MessageKey::MsgChooseSaveFolder));
    if (output.empty()) return;

    const std::string dataName = "0x0" + hexText(firmware::kPictureDataStart) + ".bin";
    const std::string tableName = "0x0" + hexText(firmware::kPictureTableOffset) + ".bin";
    const std::string dataPath = joinPath(output, dataName);
    const std::string tablePath = joinPath(output, tableName);
    // The question names the bare file, without its folder. An older file stays as it is until
    // its new one is complete; a folder or a device under that name is refused.
    for (const auto& [path, name] : {std::pair{dataPath, dataName}, std::pair{tablePath, tableName}}) {
        if (const Status allowed = checkOutput(path, protectedInputs({})); !allowed) return fail(allowed.error());
        if (CheckFexist(path)) continue;
        if (!ui.askOkCancel(msg(MessageKey::MsgFile) + name + msg(MessageKey::MsgFileExists))) {
            ActionFailed = true;
            return;
        }
    }

    const auto area = edit::makePictureArea(
        source, PictureMaxIndex,
        [this](const std::string& name) {
            if (ShowReplaceMessage)
                showMessage(msg(MessageKey::MsgFile) + name + ".gpf2 (or .gpf)" + msg(MessageKey::MsgReplacedByEmpty));
        },
        [this](double percent) { setProgress(percent); }, [this] { return ui.cancelRequested(); });
    // A container that cannot be read stops the tool before anything is written.
    if (!area) return fail(area.error());
    if (area->cancelled) {
        showMessage(msg(MessageKey::MsgCancelledNothingWritten));
        ActionFailed = true;
        return;
    }
    const auto writeBlocks = [&] {
        const bool ok = writeOutput(dataPath, area->data);
        return writeOutput(tablePath, area->table) && ok;
    };
    if (area->overflow) {
        showMessage(msg(MessageKey::MsgTooMuchSpace));
        ActionFailed = true;
        writeBlocks();  // the blocks written so far stay on disk, incomplete
        return;
    }
    if (writeBlocks()) showSuccess();
}

}  // namespace korvatek::app

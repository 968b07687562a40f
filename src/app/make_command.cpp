// The Make tool: the whole picture area rebuilt from a folder of containers, written as two
// raw blocks named after the fullflash offsets they belong at.
#include "base/hex_text.h"
#include "app/workspace.h"
#include "containers/gpf_header.h"
#include "firmware/layout.h"

namespace korvatek::app {

using settings::MessageKey;

namespace {

void putLe(Bytes& out, std::uint32_t value, int bytes) {
    for (int i = 0; i < bytes; ++i) out.push_back(static_cast<std::uint8_t>(value >> (8 * i)));
}

}  // namespace

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

    Bytes dataBlock;
    Bytes tableBlock;
    std::uint64_t offset = firmware::kPictureDataStart;
    std::string emptyPicture;  // made once, on the first missing picture
    const auto writeBlocks = [&] {
        const bool ok = writeOutput(dataPath, dataBlock);
        return writeOutput(tablePath, tableBlock) && ok;
    };
    for (int n = 0; n <= PictureMaxIndex; ++n) {
        const std::string name = zeroPadded(n, 4);
        std::string path = joinPath(source, name + ".gpf2");
        if (CheckFexist(path)) path = joinPath(source, name + ".gpf");
        if (CheckFexist(path)) {
            if (ShowReplaceMessage)
                showMessage(msg(MessageKey::MsgFile) + name + ".gpf2 (or .gpf)" + msg(MessageKey::MsgReplacedByEmpty));
            if (emptyPicture.empty()) emptyPicture = MakeEmptyGPF2();
            path = emptyPicture;
        }
        // A container that cannot be read stops the tool before anything is written.
        const auto file = readFile(path, kMaxPictureFileSize);
        if (!file) return fail(file.error());
        ByteReader in(*file);
        const auto header = containers::LoadGPFhead(in);
        if (!header) return fail(makeError(header.error().code, " " + path));
        // Everything after the 32-byte header: the data and their padding.
        const std::size_t length = file->size() > containers::kGpfHeaderSize ? file->size() - containers::kGpfHeaderSize : 0;
        dataBlock.insert(dataBlock.end(), file->end() - static_cast<std::ptrdiff_t>(length), file->end());

        putLe(tableBlock, static_cast<std::uint16_t>(header->width), 2);
        putLe(tableBlock, static_cast<std::uint16_t>(header->height), 2);
        tableBlock.push_back(static_cast<std::uint8_t>(containers::typeCodeOf(header->typeText)));
        tableBlock.push_back(header->typeText.size() > 1 ? static_cast<std::uint8_t>(header->typeText[1]) : 0);
        putLe(tableBlock, 0, 2);
        // 0xA1 above the low 24 bits: right for every offset of the picture area.
        putLe(tableBlock, 0xA1000000u | static_cast<std::uint32_t>(offset & 0xFFFFFF), 4);

        offset += length;
        if (offset > firmware::kPictureDataLimit) {
            showMessage(msg(MessageKey::MsgTooMuchSpace));
            ActionFailed = true;
            writeBlocks();  // the blocks written so far stay on disk, incomplete
            return;
        }
        setProgress(PictureMaxIndex > 0 ? static_cast<double>(n) / PictureMaxIndex * 100.0 : 100.0);
    }
    if (writeBlocks()) showSuccess();
}

}  // namespace korvatek::app

#include "app/error_message.h"

#include "base/file_io.h"
#include "base/hex_text.h"

namespace korvatek::app {

using settings::MessageKey;

MessageKey messageFor(ErrorCode code) {
    switch (code) {
        case ErrorCode::FileMissing:
        case ErrorCode::FileUnreadable: return MessageKey::MsgCannotOpenFile;
        case ErrorCode::FileUnwritable: return MessageKey::MsgCannotWriteFile;
        case ErrorCode::FileTooLarge: return MessageKey::MsgFileTooLarge;
        case ErrorCode::NotRegularFile: return MessageKey::MsgNotRegularFile;
        case ErrorCode::OutputIsInput: return MessageKey::MsgOutputIsInput;
        case ErrorCode::OutputIsFolder: return MessageKey::MsgOutputIsFolder;
        case ErrorCode::BadMagic: return MessageKey::MsgUnknownFile;
        case ErrorCode::UnsupportedFormat: return MessageKey::MsgGpfNotSupported;
        case ErrorCode::BmpNotTrueColour: return MessageKey::MsgBmpNot24or32;
        case ErrorCode::BmpCompressed: return MessageKey::MsgBmpCompressed;
        case ErrorCode::PictureTooLarge: return MessageKey::MsgMaxSize;
        case ErrorCode::GpfV1TooLarge: return MessageKey::MsgGpfV1MaxSize;
        case ErrorCode::OutsideCanvas: return MessageKey::MsgOutsideCanvas;
        case ErrorCode::GlyphOutsideGrid: return MessageKey::MsgGlyphOutsideGrid;
        case ErrorCode::BadOffset: return MessageKey::MsgDataOffsetZero;
        case ErrorCode::Overflow: return MessageKey::MsgUnknownFile;  // a number too long to read
        case ErrorCode::ModelNotSupported: return MessageKey::MsgModelNotSupported;
        case ErrorCode::FlashTooShort: return MessageKey::MsgFlashTooShort;
        case ErrorCode::NoFreeSpace: return MessageKey::MsgNoFreeSpace;
    }
    return MessageKey::MsgUnknownFile;
}

std::string lineFaultText(const settings::MessageTable& messages, patch::LineFault fault) {
    if (fault == patch::LineFault::None) return {};
    const int first = static_cast<int>(MessageKey::MsgLineFaultBase);
    return messages.text(static_cast<MessageKey>(first + static_cast<int>(fault) - static_cast<int>(patch::LineFault::BaseNotHex)));
}

std::string atLineText(const settings::MessageTable& messages, int line) {
    return settings::fillIn(messages.text(MessageKey::MsgAtLine), "%1", std::to_string(line));
}

std::string patchProblemsText(const settings::MessageTable& messages, const edit::PatchCheck& check,
                              OldBytes oldBytes) {
    std::string problems;
    const auto add = [&](const std::string& line) { problems += (problems.empty() ? "" : "\r") + line; };
    const auto& parsed = check.parsed;
    for (const auto& p : parsed.malformed)
        add(messages.text(MessageKey::MsgPatchMalformed) + std::to_string(p.line) + " (" + lineFaultText(messages, p.fault) + ")");
    if (parsed.malformedCount > parsed.malformed.size())
        add(settings::fillIn(messages.text(MessageKey::MsgPatchMoreLines), "%1",
                             std::to_string(parsed.malformedCount - parsed.malformed.size())));
    for (const auto& c : parsed.conflicts) {
        const std::string text =
            settings::fillIn(messages.text(MessageKey::MsgPatchConflict), "%1", std::to_string(c.firstLine));
        add(settings::fillIn(text, "%2", std::to_string(c.secondLine)) + hexText(c.offset));
    }
    if (problems.empty() && parsed.edits.empty()) add(messages.text(MessageKey::MsgPatchNothing));
    for (const auto& p : check.mismatches) {
        const bool beyond = p.kind == patch::PatchProblem::Kind::Beyond;
        if (beyond || oldBytes == OldBytes::Told)
            add(messages.text(beyond ? MessageKey::MsgPatchBeyond : MessageKey::MsgPatchMismatch) + hexText(p.offset) +
                atLineText(messages, p.line));
    }
    return problems;
}

std::string errorText(const settings::MessageTable& messages, const Error& error) {
    const std::string& text = messages.text(messageFor(error.code));
    return (error.limit ? settings::fillIn(text, "%1", limitText(*error.limit)) : text) + error.detail;
}

}  // namespace korvatek::app

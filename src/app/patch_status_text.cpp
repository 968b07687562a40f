#include "app/patch_status_text.h"

#include <vector>

#include "base/file_io.h"
#include "base/hex_text.h"

namespace korvatek::app {

using settings::MessageKey;

namespace {

// "%1" … "%5" filled in one pass, so that a file name holding "%2" is taken as it is.
std::string fillInAll(const std::string& text, const std::vector<std::string>& values) {
    std::string out;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const std::size_t n = i + 1 < text.size() ? static_cast<std::size_t>(text[i + 1] - '1') : values.size();
        if (text[i] == '%' && n < values.size()) {
            out += values[n];
            ++i;
        } else {
            out += text[i];
        }
    }
    return out;
}

}  // namespace

std::string lineStateText(const settings::MessageTable& messages, patch::LineState state) {
    switch (state) {
        case patch::LineState::Applied: return messages.text(MessageKey::MsgStateApplied);
        case patch::LineState::NotApplied: return messages.text(MessageKey::MsgStateNotApplied);
        case patch::LineState::Conflicting: return messages.text(MessageKey::MsgStateConflicting);
        case patch::LineState::Outside: return messages.text(MessageKey::MsgStateOutside);
        case patch::LineState::ChangesNothing: return messages.text(MessageKey::MsgStateNoChange);
    }
    return {};
}

std::string patchStateText(const settings::MessageTable& messages, patch::PatchState state) {
    switch (state) {
        case patch::PatchState::Applied: return messages.text(MessageKey::MsgStateApplied);
        case patch::PatchState::NotApplied: return messages.text(MessageKey::MsgStateNotApplied);
        case patch::PatchState::PartlyApplied: return messages.text(MessageKey::MsgStatePartly);
        case patch::PatchState::Conflicting: return messages.text(MessageKey::MsgStateConflicting);
        case patch::PatchState::Outside: return messages.text(MessageKey::MsgStateOutside);
    }
    return {};
}

std::string statusCountsText(const settings::MessageTable& messages, const patch::PatchStatus& status) {
    using enum patch::LineState;
    return fillInAll(messages.text(MessageKey::MsgStatusCounts),
                     {std::to_string(status.count(Applied)), std::to_string(status.count(NotApplied)),
                      std::to_string(status.count(Conflicting)), std::to_string(status.count(Outside)),
                      std::to_string(status.count(ChangesNothing))});
}

std::string patchSummaryText(const settings::MessageTable& messages, const std::string& name,
                             const patch::PatchStatus& status) {
    return name + ": " + patchStateText(messages, status.state) + " (" + statusCountsText(messages, status) + ")";
}

std::string clashText(const settings::MessageTable& messages, const patch::PatchClash& clash,
                      const std::string& firstName, const std::string& secondName) {
    return fillInAll(messages.text(MessageKey::MsgPatchClash),
                     {firstName, std::to_string(clash.firstLine), secondName, std::to_string(clash.secondLine)}) +
           hexText(clash.offset);
}

std::string patchName(const std::string& path) {
    return pathText(toPath(path).filename());
}

}  // namespace korvatek::app

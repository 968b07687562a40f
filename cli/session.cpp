#include "session.h"

#include <cstdio>
#include <filesystem>

namespace korvatek::cli {

using settings::MessageKey;

Session::Session() : m_ui(settings::LanguageEN().messages[0].data()), m_workspace(m_ui) {
    m_ui.alphaQuestion = m_workspace.msg(MessageKey::MsgSaveAlpha);
    m_ui.replaceNoticeTail = m_workspace.msg(MessageKey::MsgFileExists);
    m_workspace.StopOnRefusedFormat = true;
}

bool Session::openFlash(const std::string& path) {
    m_workspace.PathGiven = true;
    m_workspace.CommandLinePath = path;
    m_workspace.mnu_FileOpen();
    m_workspace.PathGiven = false;
    return !m_workspace.ActionFailed && m_workspace.firmware != nullptr;
}

bool Session::selectPicture(int n) {
    if (n < 0 || n >= static_cast<int>(m_workspace.ListView1.size())) {
        m_workspace.showMessage(m_workspace.msg(MessageKey::MsgNoSuchPicture) + std::to_string(n));
        return false;
    }
    m_workspace.selectPicture(n);
    return true;
}

bool Session::chooseFont(int n) {
    if (n < 0 || n >= static_cast<int>(m_workspace.Ftype.size())) {
        m_workspace.showMessage(m_workspace.msg(MessageKey::MsgNoSuchFont) + std::to_string(n));
        return false;
    }
    m_workspace.Ftype_Click(n);
    return true;
}

bool Session::selectGlyph(int code) {
    if (code < 1 || code > static_cast<int>(m_workspace.ListView2.size())) {
        m_workspace.showMessage(m_workspace.msg(MessageKey::MsgNoSuchGlyph) + std::to_string(code));
        return false;
    }
    m_workspace.selectGlyph(code - 1);
    return true;
}

void Session::printInformation(bool onStandardError) const {
    if (m_workspace.PICinfo.empty()) return;
    std::string text = m_workspace.PICinfo;
    for (char& c : text)
        if (c == '\r') c = '\n';
    std::fprintf(onStandardError ? stderr : stdout, "%s\n", text.c_str());
}

void Session::addFolderFiles(const std::string& folder, std::vector<std::string>& inputs) {
    std::error_code ec;
    for (const auto& entry : std::filesystem::directory_iterator(app::toPath(folder), ec))
        inputs.push_back(app::pathText(entry.path()));
}

bool Session::outputAllowed(const std::string& output, const std::vector<std::string>& inputs) {
    const Status allowed = app::checkOutput(output, inputs);
    if (allowed) return true;
    m_workspace.showMessage(m_workspace.errorText(allowed.error()));
    return false;
}

}  // namespace korvatek::cli

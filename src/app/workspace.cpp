#include "app/workspace.h"

#include "app/error_message.h"
#include "base/hex_text.h"

namespace korvatek::app {

using settings::MessageKey;

Workspace::Workspace(UserInterface& userInterface) : ui(userInterface) {}

const std::vector<std::string>& Workspace::temporaryFileSuffixes() {
    static const std::vector<std::string> suffixes{"/Korvatek.temp", "/Korvatek_2.temp", "/Korvatek_gp.temp",
                                                   "/temp.bmp",      "/empty.gpf2",      "/temp.gpf2"};
    return suffixes;
}

namespace {

bool endsWith(const std::string& text, std::string_view tail) {
    return text.size() >= tail.size() && text.compare(text.size() - tail.size(), tail.size(), tail) == 0;
}

// The last n characters begin with `head` (a name followed by its closing quote).
bool lastBeginWith(const std::string& text, std::size_t n, std::string_view head) {
    return text.size() >= n && text.compare(text.size() - n, head.size(), head) == 0;
}

}  // namespace

void Workspace::startUp(const std::string& commandLine, settings::SettingsStore& store) {
    // The file named on the command line is opened before the temporary files are cleared and
    // before the settings and the language are applied; this order is deliberate.
    if (endsWith(commandLine, "bin") || lastBeginWith(commandLine, 4, "bin")) {
        PathGiven = true;
        CommandLinePath = commandLine;
        mnu_FileOpen();
    }
    if (endsWith(commandLine, "gpf") || endsWith(commandLine, "gpf2") || lastBeginWith(commandLine, 4, "gpf") ||
        lastBeginWith(commandLine, 5, "gpf2")) {
        std::string path = commandLine;
        if (!path.empty() && path.back() == '"') path = path.size() >= 2 ? path.substr(1, path.size() - 2) : "";
        LoadGPF(path);
    }
    PathGiven = false;

    for (const auto& suffix : temporaryFileSuffixes()) deleteFile(temporaryPath(suffix));

    const settings::StoredSettings stored = settings::RegistryReadSettings(store);
    LanguageIndex = stored.LanguageIndex;
    ShowSuccessMessage = stored.showSuccessMessage;
    ShowReplaceMessage = stored.showReplaceMessage;
    applyLanguage(LanguageIndex);
}

void Workspace::applyLanguage(int languageIndex) {
    if (messages.apply(languageIndex)) LanguageIndex = languageIndex;
}

void Workspace::TabStrip1_Click(int tab) {
    if (tab == 2 || tab == 1) TabStrip1 = tab;
}

void Workspace::OSdialog(bool& errorFlag, const std::string& filter, const std::string& kind, std::string& fileName,
                         bool saveMode) {
    errorFlag = false;
    FileDialogRequest request{msg(MessageKey::MsgChooseFile) + kind + ":", kind, filter, fileName};
    const auto chosen = saveMode ? ui.chooseSaveFile(request) : ui.chooseOpenFile(request);
    if (!chosen || chosen->empty()) {
        errorFlag = true;
        return;
    }
    fileName = *chosen;
}

std::string Workspace::fBrowseForFolder(const std::string& title) {
    auto folder = ui.chooseFolder(title).value_or(std::string());
    while (folder.size() > 1 && (folder.back() == '/' || folder.back() == '\\')) folder.pop_back();
    return folder;
}

void Workspace::showMessage(const std::string& text, const std::string& title) { ui.showMessage(text, title); }

void Workspace::showSuccess() {
    if (ShowSuccessMessage) showMessage(msg(MessageKey::MsgSuccess));
}

std::string Workspace::errorText(const Error& error) const { return app::errorText(messages, error); }

void Workspace::fail(const Error& error) {
    showMessage(errorText(error));
    ActionFailed = true;
}

std::vector<std::string> Workspace::protectedInputs(const std::vector<std::string>& inputs) const {
    std::vector<std::string> all = inputs;
    if (firmware) all.push_back(firmware->path());
    return all;
}

namespace {

// An existing regular file that a new output will replace (a device or a pipe is written to).
bool replacesAFile(const std::string& path) {
    if (isStandardOutput(path) || CheckFexist(path)) return false;
    std::error_code ec;
    return std::filesystem::is_regular_file(toPath(path), ec);
}

}  // namespace

bool Workspace::prepareOutput(const std::string& path, const std::vector<std::string>& inputs) {
    if (const Status allowed = checkOutput(path, protectedInputs(inputs)); !allowed) {
        ++outputFailures;
        fail(allowed.error());
        return false;
    }
    // The old file is replaced only once the new one is complete.
    if (replacesAFile(path)) showMessage(msg(MessageKey::MsgFile) + path + msg(MessageKey::MsgFileExists));
    return true;
}

bool Workspace::confirmReplace(const std::string& path, const std::vector<std::string>& inputs) {
    if (const Status allowed = checkOutput(path, protectedInputs(inputs)); !allowed) {
        fail(allowed.error());
        return false;
    }
    if (!replacesAFile(path)) return true;
    return ui.askOkCancel(msg(MessageKey::MsgFile) + path + msg(MessageKey::MsgFileExists));
}

bool Workspace::writeOutput(const std::string& path, ByteView bytes, const std::vector<std::string>& inputs) {
    const Status written = writeFile(path, bytes, protectedInputs(inputs));
    if (!written) {
        ++outputFailures;
        fail(written.error());
        return false;
    }
    return true;
}

void Workspace::setProgress(double percent) {
    progress = percent;
    ui.setProgress(percent);
}

void Workspace::takeDecoded(const edit::DecodedPicture& decoded) {
    picture.width = decoded.width;
    picture.height = decoded.height;
    picture.typeCode = decoded.typeCode;
    picture.typeText = decoded.typeText;
    picture.compression = decoded.compression;
    picture.bits = decoded.bits;
    picture.dataLength = hexText(decoded.dataLength);
}

const firmware::PictureRecord* Workspace::selectedPicture() const {
    if (ListView1Selected < 0 || ListView1Selected >= static_cast<int>(ListView1.size())) return nullptr;
    return &ListView1[static_cast<std::size_t>(ListView1Selected)];
}

}  // namespace korvatek::app

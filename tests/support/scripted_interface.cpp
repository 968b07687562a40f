#include "support/scripted_interface.h"

namespace korvatek::app {

namespace {

template <class T>
T take(std::deque<T>& queue, T cancel) {
    if (queue.empty()) return cancel;
    T answer = std::move(queue.front());
    queue.pop_front();
    return answer;
}

}  // namespace

bool ScriptedInterface::askOkCancel(const std::string& text) {
    questions.push_back(text);
    return take(answers, true);
}

std::optional<std::string> ScriptedInterface::chooseOpenFile(const FileDialogRequest& request) {
    fileDialogs.push_back(request);
    return take(openFiles, {});
}

std::optional<std::string> ScriptedInterface::chooseSaveFile(const FileDialogRequest& request) {
    fileDialogs.push_back(request);
    return take(saveFiles, {});
}

std::optional<std::vector<std::string>> ScriptedInterface::chooseOpenFiles(const FileDialogRequest& request) {
    if (openFileLists.empty()) return UserInterface::chooseOpenFiles(request);
    fileDialogs.push_back(request);
    std::vector<std::string> chosen = take(openFileLists, {});
    if (chosen.empty()) return std::nullopt;
    return chosen;
}

bool ScriptedInterface::showPatchStatus(const edit::StatusReport& report, bool canWrite) {
    statusTables.push_back({report, canWrite});
    return take(statusAnswers, canWrite) && canWrite;
}

std::optional<std::string> ScriptedInterface::chooseFolder(const std::string& title) {
    folderTitles.push_back(title);
    return take(folders, {});
}

std::optional<std::string> ScriptedInterface::inputText(const std::string& prompt) {
    prompts.push_back(prompt);
    return take(inputs, {});
}

std::vector<std::string> ScriptedInterface::messageTexts() const {
    std::vector<std::string> texts;
    for (const auto& m : messages) texts.push_back(m.text);
    return texts;
}

}  // namespace korvatek::app

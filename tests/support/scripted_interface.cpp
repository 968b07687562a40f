#include "support/scripted_interface.h"

namespace korvatek::app {

namespace {

std::optional<std::string> take(std::deque<std::optional<std::string>>& queue) {
    if (queue.empty()) return std::nullopt;
    auto answer = std::move(queue.front());
    queue.pop_front();
    return answer;
}

}  // namespace

void ScriptedInterface::showMessage(const std::string& text, const std::string& title) {
    messages.push_back({text, title});
}

bool ScriptedInterface::askOkCancel(const std::string& text) {
    questions.push_back(text);
    if (!answers.empty()) {
        const bool answer = answers.front();
        answers.pop_front();
        return answer;
    }
    return defaultAnswer(text);
}

std::optional<std::string> ScriptedInterface::chooseOpenFile(const FileDialogRequest& request) {
    fileDialogs.push_back(request);
    return take(openFiles);
}

std::optional<std::string> ScriptedInterface::chooseSaveFile(const FileDialogRequest& request) {
    fileDialogs.push_back(request);
    return take(saveFiles);
}

std::optional<std::string> ScriptedInterface::chooseFolder(const std::string& title) {
    folderTitles.push_back(title);
    return take(folders);
}

std::optional<std::string> ScriptedInterface::inputText(const std::string& prompt) {
    prompts.push_back(prompt);
    return take(inputs);
}

void ScriptedInterface::setProgress(double percent) {
    lastProgress = percent;
    ++progressCalls;
}

std::vector<std::string> ScriptedInterface::messageTexts() const {
    std::vector<std::string> texts;
    for (const auto& m : messages) texts.push_back(m.text);
    return texts;
}

}  // namespace korvatek::app

#pragma once
// Answers given in advance: file names, folders, texts and OK/Cancel answers are taken from
// queues in the order the command asks for them; every message and question is recorded.
// The tests use it as it is; the command line answers from its arguments through it.

#include <deque>
#include <functional>
#include <string>
#include <vector>

#include "app/user_interface.h"

namespace korvatek::app {

class ScriptedInterface : public UserInterface {
public:
    struct Shown {
        std::string text;
        std::string title;
    };

    // Queued answers. An empty optional in a file/folder/input queue answers Cancel.
    std::deque<std::optional<std::string>> openFiles;
    std::deque<std::optional<std::string>> saveFiles;
    std::deque<std::optional<std::string>> folders;
    std::deque<std::optional<std::string>> inputs;
    std::deque<bool> answers;
    // Answer to a question when the queue is empty (by default OK).
    std::function<bool(const std::string&)> defaultAnswer = [](const std::string&) { return true; };

    // What the command showed and asked.
    std::vector<Shown> messages;
    std::vector<std::string> questions;
    std::vector<FileDialogRequest> fileDialogs;
    std::vector<std::string> folderTitles;
    std::vector<std::string> prompts;
    double lastProgress = -1;
    int progressCalls = 0;

    void showMessage(const std::string& text, const std::string& title) override;
    bool askOkCancel(const std::string& text) override;
    std::optional<std::string> chooseOpenFile(const FileDialogRequest& request) override;
    std::optional<std::string> chooseSaveFile(const FileDialogRequest& request) override;
    std::optional<std::string> chooseFolder(const std::string& title) override;
    std::optional<std::string> inputText(const std::string& prompt) override;
    void setProgress(double percent) override;

    // Texts of the messages shown, in order.
    std::vector<std::string> messageTexts() const;
};

}  // namespace korvatek::app

#pragma once
// Answers given in advance: file names, folders, texts and OK/Cancel answers are taken from
// queues in the order the command asks for them; every message and question is recorded.
// The tests, the fuzz targets and the benchmarks drive the Workspace through it.

#include <deque>
#include <string>
#include <vector>

#include "app/user_interface.h"
#include "edit/patch_files.h"

namespace korvatek::app {

class ScriptedInterface : public UserInterface {
public:
    struct Shown {
        std::string text;
        std::string title;
        bool operator==(const Shown&) const = default;
    };

    // Queued answers. An empty optional, or an empty queue, answers Cancel; a question with
    // no answer queued is answered OK.
    std::deque<std::optional<std::string>> openFiles;
    // Answers of the dialog that opens several files (an empty list cancels); while none is
    // queued it takes one of openFiles.
    std::deque<std::vector<std::string>> openFileLists;
    std::deque<std::optional<std::string>> saveFiles;
    std::deque<std::optional<std::string>> folders;
    std::deque<std::optional<std::string>> inputs;
    std::deque<bool> answers;
    // Answers of the patch status table: true writes the patched copy where it is offered. With
    // none queued it is written whenever it can be.
    std::deque<bool> statusAnswers;

    // What the command showed and asked.
    std::vector<Shown> messages;
    std::vector<std::string> questions;
    std::vector<FileDialogRequest> fileDialogs;
    std::vector<std::string> folderTitles;
    std::vector<std::string> prompts;
    struct StatusShown {
        edit::StatusReport report;
        bool canWrite = false;
    };
    std::vector<StatusShown> statusTables;

    void showMessage(const std::string& text, const std::string& title) override { messages.push_back({text, title}); }
    bool askOkCancel(const std::string& text) override;
    std::optional<std::string> chooseOpenFile(const FileDialogRequest& request) override;
    std::optional<std::string> chooseSaveFile(const FileDialogRequest& request) override;
    std::optional<std::vector<std::string>> chooseOpenFiles(const FileDialogRequest& request) override;
    std::optional<std::string> chooseFolder(const std::string& title) override;
    std::optional<std::string> inputText(const std::string& prompt) override;
    bool showPatchStatus(const edit::StatusReport& report, bool canWrite) override;
    void setProgress(double) override {}

    // Texts of the messages shown, in order.
    std::vector<std::string> messageTexts() const;
};

}  // namespace korvatek::app

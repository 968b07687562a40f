#pragma once
// The one seam between the commands and the person. Commands never print, block or open a
// dialog on their own: the window answers through Qt dialogs, the command line through its
// arguments, the tests through scripted answers.

#include <optional>
#include <string>
#include <vector>

namespace korvatek::edit {
struct StatusReport;
}

namespace korvatek::app {

struct FileDialogRequest {
    std::string title;     // "Choose file fullflash:"
    std::string kind;      // the kind text ("fullflash", "GPF", "VKP"), also the default extension
    std::string filter;    // pairs of description and pattern joined by "|"
    std::string fileName;  // proposed name, may be empty
};

class UserInterface {
public:
    virtual ~UserInterface() = default;

    // A message box with one OK button. The title is empty unless a command gives one.
    virtual void showMessage(const std::string& text, const std::string& title) = 0;
    // A question with OK and Cancel; true for OK.
    virtual bool askOkCancel(const std::string& text) = 0;
    // File dialogs: the chosen path, or nothing when cancelled.
    virtual std::optional<std::string> chooseOpenFile(const FileDialogRequest& request) = 0;
    virtual std::optional<std::string> chooseSaveFile(const FileDialogRequest& request) = 0;
    // Several files to open at once, in the order chosen; nothing when cancelled. Where no
    // several can be chosen, the one of chooseOpenFile.
    virtual std::optional<std::vector<std::string>> chooseOpenFiles(const FileDialogRequest& request) {
        auto chosen = chooseOpenFile(request);
        if (!chosen) return std::nullopt;
        return std::vector<std::string>{std::move(*chosen)};
    }
    // The folder picker: a plain path without a trailing separator, or nothing when cancelled.
    virtual std::optional<std::string> chooseFolder(const std::string& title) = 0;
    // A text input box: the answer, or nothing when cancelled.
    virtual std::optional<std::string> inputText(const std::string& prompt) = 0;
    // Where the patches stand on the open fullflash, line by line. canWrite offers to write the
    // patched copy; true when the person chose that. Where no table can be shown, the patched
    // copy is written whenever it can be.
    virtual bool showPatchStatus(const edit::StatusReport& report, bool canWrite) {
        static_cast<void>(report);
        return canWrite;
    }
    // Progress of a long walk, 0 to 100. The window repaints here.
    virtual void setProgress(double percent) = 0;
    // Whether the person asked to stop the walk under way. A batch asks between two items and
    // stops there, keeping what it has done; where nobody can ask (the command line), never.
    virtual bool cancelRequested() { return false; }
};

}  // namespace korvatek::app

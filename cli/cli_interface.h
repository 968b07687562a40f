#pragma once
// The command line's side of the person-facing seam: answers come from the arguments, queued
// before the command runs; messages go to stderr, one per line, and questions are answered OK
// (with the notice printed) unless the command queued another answer.

#include <map>
#include <string>

#include "app/scripted_interface.h"

namespace korvatek::cli {

class CliInterface : public app::ScriptedInterface {
public:
    explicit CliInterface(std::string successText) : m_successText(std::move(successText)) {}

    void showMessage(const std::string& text, const std::string& title) override;
    bool askOkCancel(const std::string& text) override;

    // The answer to "Save alphachannel for image?" (--alpha).
    std::string alphaQuestion;
    bool alphaAnswer = false;
    // Questions answered without printing them (e.g. Cancel to "open the patched copy?").
    std::map<std::string, bool> fixedAnswers;
    // Messages that report a problem (anything but the success text and replace notices).
    int problems = 0;
    std::string replaceNoticeTail;  // " already exists and will be replaced"

private:
    std::string m_successText;
};

}  // namespace korvatek::cli

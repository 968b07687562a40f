#pragma once
// The command line's side of the person-facing seam: answers come from the arguments, queued
// before the command runs; messages go to stderr, one per line, and questions are answered OK
// (with the notice printed) unless the command queued another answer.

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

private:
    std::string m_successText;
};

}  // namespace korvatek::cli

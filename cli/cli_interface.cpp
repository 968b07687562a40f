#include "cli_interface.h"

#include <cstdio>

namespace korvatek::cli {

namespace {

// The window joins message lines with carriage returns; the terminal wants line feeds.
void printLine(const std::string& text) {
    std::string line = text;
    for (char& c : line)
        if (c == '\r') c = '\n';
    std::fprintf(stderr, "%s\n", line.c_str());
}

}  // namespace

void CliInterface::showMessage(const std::string& text, const std::string& title) {
    ScriptedInterface::showMessage(text, title);
    if (text == m_successText) return;  // the exit status says it
    const bool notice = !replaceNoticeTail.empty() && text.size() >= replaceNoticeTail.size() &&
                        text.compare(text.size() - replaceNoticeTail.size(), replaceNoticeTail.size(), replaceNoticeTail) == 0;
    if (!notice) ++problems;
    printLine(text);
}

bool CliInterface::askOkCancel(const std::string& text) {
    questions.push_back(text);
    if (!answers.empty()) {
        const bool answer = answers.front();
        answers.pop_front();
        return answer;
    }
    if (!alphaQuestion.empty() && text == alphaQuestion) return alphaAnswer;
    if (const auto it = fixedAnswers.find(text); it != fixedAnswers.end()) return it->second;
    printLine(text);
    return true;
}

}  // namespace korvatek::cli

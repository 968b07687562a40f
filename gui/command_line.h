#pragma once
// The program's invocation: its command line as the start-up reads it, and where the program
// lives.

#include <QString>
#include <QStringList>

#include <string>

namespace korvatek::gui {

// The arguments after the program name as one text, joined by single blanks, so that a path
// with blanks passed unquoted (as the desktop does with an unquoted "%1") arrives whole.
// Quotes that reached the program stay in the text.
std::string commandLineText(const QStringList& arguments);

// The program's folder with a trailing separator (ProgramDir).
std::string programDirectory();

// The executable's full path in the platform's form, as the file association registers it.
std::string executablePath();

}  // namespace korvatek::gui

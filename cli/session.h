#pragma once
// One run of a command: the command-line interface and the Workspace it drives.

#include <string>
#include <vector>

#include "app/workspace.h"
#include "cli_interface.h"

namespace korvatek::cli {

class Session {
public:
    Session();
    app::Workspace& workspace() { return m_workspace; }
    CliInterface& ui() { return m_ui; }

    // Opens a fullflash the way a path on the window's command line is opened. False when it
    // was refused (the message is already on stderr).
    bool openFlash(const std::string& path);

    // Selects the row of picture n; false (with a message) when there is no such row.
    bool selectPicture(int n);
    // Chooses font n in the selector (reading its glyph table); false when there is none.
    bool chooseFont(int n);
    // Selects the glyph of code n (its "#" value); false when there is no such row.
    bool selectGlyph(int code);

    // Prints the information text, one line per text line: on stdout, or on stderr when
    // stdout carries the output file itself.
    void printInformation(bool onStandardError = false) const;

    // Refuses, before any work, an output that is a folder or one of the inputs (the fullflash
    // and every file named as a replacement): the message on stderr, false.
    bool outputAllowed(const std::string& output, const std::vector<std::string>& inputs);

    // The files of a folder given as an input, to count among the inputs an output may not be.
    static void addFolderFiles(const std::string& folder, std::vector<std::string>& inputs);

private:
    CliInterface m_ui;
    app::Workspace m_workspace;
};

}  // namespace korvatek::cli

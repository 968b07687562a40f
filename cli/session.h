#pragma once
// One run of a command: the command-line interface and the Workspace it drives.

#include <string>

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

    // Prints the information text, one line per text line.
    void printInformation() const;

private:
    CliInterface m_ui;
    app::Workspace m_workspace;
};

}  // namespace korvatek::cli

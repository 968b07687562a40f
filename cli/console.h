#pragma once
// The command line's voice: the window's messages in English on stderr, one per line, and the
// checks and notices around every file it writes. Nothing here asks a question: where the
// window would ask whether to replace a file, the command line says so and goes on.

#include <string>
#include <vector>

#include "app/message_table.h"
#include "base/bytes.h"
#include "base/result.h"

namespace korvatek::cli {

class Console {
public:
    const std::string& msg(settings::MessageKey key) const { return m_messages.text(key); }
    // A message as the window would show it; its carriage returns become line feeds.
    void say(const std::string& text) const;
    void fail(const Error& error) const;
    std::string errorText(const Error& error) const;

    // Before any work: an output that is a folder or one of the inputs is refused (told).
    bool outputAllowed(const std::string& output, const std::vector<std::string>& inputs) const;
    // Right before writing: the same check, then the notice that an existing file will be
    // replaced (it stays as it is until the new one is whole). A refusal counts as a failure.
    bool prepare(const std::string& path, const std::vector<std::string>& inputs);
    // Writes beside the target and renames; a failure is told and counted.
    bool write(const std::string& path, ByteView bytes, const std::vector<std::string>& inputs);
    int failures() const { return m_failures; }

    // The files of a folder given as an input, to count among the inputs an output may not be.
    static void addFolderFiles(const std::string& folder, std::vector<std::string>& inputs);

private:
    settings::MessageTable m_messages;  // English
    int m_failures = 0;
};

}  // namespace korvatek::cli

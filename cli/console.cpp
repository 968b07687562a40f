#include "console.h"

#include <cstdio>
#include <filesystem>

#include "app/error_message.h"
#include "base/file_io.h"

namespace korvatek::cli {

using settings::MessageKey;

void Console::say(const std::string& text) const {
    std::string line = text;
    for (char& c : line)
        if (c == '\r') c = '\n';
    std::fprintf(stderr, "%s\n", line.c_str());
}

std::string Console::errorText(const Error& error) const { return app::errorText(m_messages, error); }

void Console::fail(const Error& error) const { say(errorText(error)); }

bool Console::outputAllowed(const std::string& output, const std::vector<std::string>& inputs) const {
    const Status allowed = app::checkOutput(output, inputs);
    if (!allowed) fail(allowed.error());
    return allowed.ok();
}

bool Console::prepare(const std::string& path, const std::vector<std::string>& inputs) {
    if (!outputAllowed(path, inputs)) {
        ++m_failures;
        return false;
    }
    std::error_code ec;
    if (!app::isStandardOutput(path) && !app::CheckFexist(path) && std::filesystem::is_regular_file(app::toPath(path), ec))
        say(msg(MessageKey::MsgFile) + path + msg(MessageKey::MsgFileExists));
    return true;
}

bool Console::write(const std::string& path, ByteView bytes, const std::vector<std::string>& inputs) {
    const Status written = app::writeFile(path, bytes, inputs);
    if (!written) {
        ++m_failures;
        fail(written.error());
    }
    return written.ok();
}

void Console::addFolderFiles(const std::string& folder, std::vector<std::string>& inputs) {
    std::error_code ec;
    for (const auto& entry : std::filesystem::directory_iterator(app::toPath(folder), ec))
        inputs.push_back(app::pathText(entry.path()));
}

}  // namespace korvatek::cli

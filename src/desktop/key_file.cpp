#include "desktop/key_file.h"

#include <sstream>
#include <vector>

namespace korvatek::settings {

namespace {

std::vector<std::string> splitLines(const std::string& text) {
    std::vector<std::string> lines;
    std::istringstream in(text);
    for (std::string line; std::getline(in, line);) {
        while (!line.empty() && line.back() == '\r') line.pop_back();  // CR LF and stray CRs alike
        lines.push_back(line);
    }
    return lines;
}

std::string trimmed(const std::string& text) {
    const auto first = text.find_first_not_of(" \t");
    if (first == std::string::npos) return {};
    const auto last = text.find_last_not_of(" \t");
    return text.substr(first, last - first + 1);
}

bool isGroupHeader(const std::string& line) {
    const std::string t = trimmed(line);
    return t.size() >= 2 && t.front() == '[' && t.back() == ']';
}

std::string groupName(const std::string& line) {
    const std::string t = trimmed(line);
    return t.substr(1, t.size() - 2);
}

// The value when the line is "key=value" (blanks around the "=" allowed).
std::optional<std::string> valueOf(const std::string& line, const std::string& key) {
    const auto equals = line.find('=');
    if (equals == std::string::npos || trimmed(line.substr(0, equals)) != key) return std::nullopt;
    return trimmed(line.substr(equals + 1));
}

}  // namespace

std::optional<std::string> keyFileValue(const std::string& text, const std::string& group, const std::string& key) {
    bool inGroup = false;
    for (const std::string& line : splitLines(text)) {
        if (isGroupHeader(line)) {
            inGroup = groupName(line) == group;
            continue;
        }
        if (inGroup)
            if (auto value = valueOf(line, key)) return value;
    }
    return std::nullopt;
}

std::string setKeyFileValue(const std::string& text, const std::string& group, const std::string& key,
                            const std::string& value) {
    std::vector<std::string> lines = splitLines(text);
    const std::string entry = key + "=" + value;
    bool inGroup = false;
    std::optional<std::size_t> keyLine;
    std::optional<std::size_t> insertAt;  // after the group's last non-blank line
    for (std::size_t i = 0; i < lines.size() && !keyLine; ++i) {
        if (isGroupHeader(lines[i])) {
            inGroup = groupName(lines[i]) == group;
            if (inGroup) insertAt = i + 1;
        } else if (inGroup && valueOf(lines[i], key)) {
            keyLine = i;
        } else if (inGroup && !trimmed(lines[i]).empty()) {
            insertAt = i + 1;
        }
    }
    if (keyLine) {
        lines[*keyLine] = entry;
    } else if (insertAt) {
        lines.insert(lines.begin() + static_cast<std::ptrdiff_t>(*insertAt), entry);
    } else {
        if (!lines.empty() && !trimmed(lines.back()).empty()) lines.emplace_back();
        lines.push_back("[" + group + "]");
        lines.push_back(entry);
    }
    std::string result;
    for (const std::string& line : lines) result += line + "\n";
    return result;
}

}  // namespace korvatek::settings

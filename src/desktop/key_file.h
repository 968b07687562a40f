#pragma once
// Reading and changing one value of a freedesktop key file (a desktop entry, mimeapps.list):
// "[Group]" headers and "Key=Value" lines. Every other line, comments included, is kept as
// it stands. Values are taken and written raw, without unescaping.

#include <optional>
#include <string>

namespace korvatek::settings {

std::optional<std::string> keyFileValue(const std::string& text, const std::string& group, const std::string& key);

// The text with group/key set to value: the key's line replaced where it is, else added at the
// end of the group, else the group added at the end of the text.
std::string setKeyFileValue(const std::string& text, const std::string& group, const std::string& key,
                            const std::string& value);

}  // namespace korvatek::settings

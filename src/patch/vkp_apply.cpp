#include "patch/vkp_apply.h"

#include <cctype>

#include "app/hex_text.h"

namespace korvatek::patch {

namespace {

std::string_view trim(std::string_view s) {
    while (!s.empty() && std::isspace(static_cast<unsigned char>(s.front()))) s.remove_prefix(1);
    while (!s.empty() && std::isspace(static_cast<unsigned char>(s.back()))) s.remove_suffix(1);
    return s;
}

bool allHex(std::string_view s) {
    if (s.empty()) return false;
    for (char c : s)
        if (!std::isxdigit(static_cast<unsigned char>(c))) return false;
    return true;
}

// A hex number of up to 8 digits ("0x" allowed in front): addresses and offsets are 32-bit.
std::optional<std::uint64_t> hexNumber(std::string_view s) {
    if (s.size() > 2 && s[0] == '0' && (s[1] == 'x' || s[1] == 'X')) s.remove_prefix(2);
    while (s.size() > 8 && s.front() == '0') s.remove_prefix(1);
    if (!allHex(s) || s.size() > 8) return std::nullopt;
    std::uint64_t v = 0;
    for (char c : s) v = v * 16 + static_cast<std::uint64_t>(std::isdigit(static_cast<unsigned char>(c)) ? c - '0' : (std::toupper(c) - 'A' + 10));
    return v;
}

}  // namespace

ParsedPatch parseVkp(std::string_view text) {
    ParsedPatch parsed;
    std::int64_t base = 0;
    int number = 0;
    std::size_t start = 0;
    while (start <= text.size()) {
        std::size_t end = text.find('\n', start);
        if (end == std::string_view::npos) end = text.size();
        std::string_view line = text.substr(start, end - start);
        start = end + 1;
        ++number;
        if (const auto comment = line.find(';'); comment != std::string_view::npos) line = line.substr(0, comment);
        line = trim(line);
        if (line.empty()) {
            if (end == text.size()) break;
            continue;
        }
        if (line[0] == '+' || line[0] == '-') {
            const auto value = hexNumber(trim(line.substr(1)));
            if (!value) {
                parsed.malformed.push_back({PatchProblem::Kind::Malformed, number, 0, "base offset is not a hex number"});
                continue;
            }
            base = line[0] == '+' ? static_cast<std::int64_t>(*value) : -static_cast<std::int64_t>(*value);
            continue;
        }
        const auto colon = line.find(':');
        if (colon == std::string_view::npos) {
            parsed.malformed.push_back({PatchProblem::Kind::Malformed, number, 0, "no colon after the address"});
            continue;
        }
        const auto address = hexNumber(trim(line.substr(0, colon)));
        std::string_view rest = trim(line.substr(colon + 1));
        const auto blank = rest.find_first_of(" \t");
        if (!address || blank == std::string_view::npos) {
            parsed.malformed.push_back({PatchProblem::Kind::Malformed, number, 0, "expected address: old new"});
            continue;
        }
        const std::string_view oldHex = trim(rest.substr(0, blank));
        const std::string_view newHex = trim(rest.substr(blank));
        if (!allHex(oldHex) || !allHex(newHex) || newHex.find_first_of(" \t") != std::string_view::npos) {
            parsed.malformed.push_back({PatchProblem::Kind::Malformed, number, 0, "bytes are not hex digits"});
            continue;
        }
        if (oldHex.size() % 2 != 0 || newHex.size() % 2 != 0) {
            parsed.malformed.push_back({PatchProblem::Kind::Malformed, number, 0, "an odd number of hex digits"});
            continue;
        }
        if (oldHex.size() != newHex.size()) {
            parsed.malformed.push_back({PatchProblem::Kind::Malformed, number, 0, "old and new bytes differ in length"});
            continue;
        }
        const std::int64_t offset = static_cast<std::int64_t>(*address) + base;
        if (offset < 0) {
            parsed.malformed.push_back({PatchProblem::Kind::Malformed, number, 0, "address before the start of the fullflash"});
            continue;
        }
        parsed.edits.push_back({number, static_cast<std::uint64_t>(offset), app::HEXtext2ASCtext(oldHex, false),
                                app::HEXtext2ASCtext(newHex, false)});
        if (end == text.size()) break;
    }
    return parsed;
}

std::vector<PatchProblem> checkAgainst(const std::vector<PatchEdit>& edits, ByteView image) {
    std::vector<PatchProblem> problems;
    for (const PatchEdit& e : edits) {
        if (e.offset > image.size() || e.oldBytes.size() > image.size() - e.offset) {
            problems.push_back({PatchProblem::Kind::Beyond, e.line, e.offset, {}});
            continue;
        }
        for (std::size_t i = 0; i < e.oldBytes.size(); ++i) {
            if (image[e.offset + i] != e.oldBytes[i]) {
                problems.push_back({PatchProblem::Kind::Mismatch, e.line, e.offset, {}});
                break;
            }
        }
    }
    return problems;
}

Bytes applyEdits(const std::vector<PatchEdit>& edits, ByteView image) {
    Bytes out(image.begin(), image.end());
    for (const PatchEdit& e : edits)
        for (std::size_t i = 0; i < e.newBytes.size() && e.offset + i < out.size(); ++i) out[e.offset + i] = e.newBytes[i];
    return out;
}

}  // namespace korvatek::patch

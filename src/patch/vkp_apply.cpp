#include "patch/vkp_apply.h"

#include <algorithm>
#include <cctype>
#include <numeric>

#include "base/hex_text.h"

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

namespace {
constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
}  // namespace

void VkpReader::feed(std::string_view text) {
    const auto take = [this](std::string_view line) { takeLine(line); };
    if (!m_atStart) return m_lines.feed(text, take);
    // A byte-order mark may be split between pieces: wait for its three bytes.
    m_start.append(text);
    if (m_start.size() < kByteOrderMark.size() && kByteOrderMark.substr(0, m_start.size()) == m_start) return;
    m_atStart = false;
    std::string_view rest = m_start;
    if (rest.substr(0, kByteOrderMark.size()) == kByteOrderMark) rest.remove_prefix(kByteOrderMark.size());
    m_lines.feed(rest, take);
    m_start.clear();
}

ParsedPatch VkpReader::finish() {
    const auto take = [this](std::string_view line) { takeLine(line); };
    if (m_atStart) {  // shorter than a byte-order mark: a part of one is nothing
        m_atStart = false;
        if (kByteOrderMark.substr(0, m_start.size()) != m_start) m_lines.feed(m_start, take);
        m_start.clear();
    }
    m_lines.finish(take);
    m_parsed.conflicts = findConflicts(m_parsed.edits);
    return std::move(m_parsed);
}

VkpLine readVkpLine(std::string_view whole) {
    using Kind = VkpLine::Kind;
    VkpLine read;
    const auto refuse = [&](LineFault fault) {
        read.kind = Kind::Malformed;
        read.fault = fault;
        return read;
    };
    // UTF-16 text has a NUL byte in every ASCII character: say so rather than "not hex".
    if (whole.find('\0') != std::string_view::npos) return refuse(LineFault::NulByte);
    std::string_view line = whole;
    if (const auto comment = line.find(';'); comment != std::string_view::npos) line = line.substr(0, comment);
    line = trim(line);
    if (line.empty()) return read;
    if (line[0] == '+' || line[0] == '-') {
        const auto value = hexNumber(trim(line.substr(1)));
        if (!value) return refuse(LineFault::BaseNotHex);
        read.kind = Kind::Base;
        read.base = line[0] == '+' ? static_cast<std::int64_t>(*value) : -static_cast<std::int64_t>(*value);
        return read;
    }
    const auto colon = line.find(':');
    if (colon == std::string_view::npos) return refuse(LineFault::NoColon);
    const auto address = hexNumber(trim(line.substr(0, colon)));
    std::string_view rest = trim(line.substr(colon + 1));
    const auto blank = rest.find_first_of(" \t");
    if (!address || blank == std::string_view::npos) return refuse(LineFault::NotAddressOldNew);
    const std::string_view oldHex = trim(rest.substr(0, blank));
    const std::string_view newHex = trim(rest.substr(blank));
    if (!allHex(oldHex) || !allHex(newHex) || newHex.find_first_of(" \t") != std::string_view::npos)
        return refuse(LineFault::NotHex);
    if (oldHex.size() % 2 != 0 || newHex.size() % 2 != 0) return refuse(LineFault::OddDigits);
    if (oldHex.size() != newHex.size()) return refuse(LineFault::LengthsDiffer);
    read.kind = Kind::Data;
    read.address = *address;
    read.oldAt = static_cast<std::size_t>(oldHex.data() - whole.data());
    read.newAt = static_cast<std::size_t>(newHex.data() - whole.data());
    read.hexLength = oldHex.size();
    return read;
}

void VkpReader::takeLine(std::string_view line) {
    const int number = ++m_lineNumber;
    const auto refuse = [&](LineFault fault) {
        if (m_parsed.malformed.size() < kMaxKeptMalformedLines)
            m_parsed.malformed.push_back({PatchProblem::Kind::Malformed, number, 0, fault});
        ++m_parsed.malformedCount;
    };
    const VkpLine read = readVkpLine(line);
    switch (read.kind) {
        case VkpLine::Kind::Empty: return;
        case VkpLine::Kind::Malformed: return refuse(read.fault);
        case VkpLine::Kind::Base: m_base = read.base; return;
        case VkpLine::Kind::Data: break;
    }
    const std::int64_t offset = static_cast<std::int64_t>(read.address) + m_base;
    if (offset < 0) return refuse(LineFault::BeforeStart);
    m_parsed.edits.push_back({number, static_cast<std::uint64_t>(offset),
                              app::HEXtext2ASCtext(line.substr(read.oldAt, read.hexLength), false),
                              app::HEXtext2ASCtext(line.substr(read.newAt, read.hexLength), false)});
}

ParsedPatch parseVkp(std::string_view text) {
    VkpReader reader;
    reader.feed(text);
    return reader.finish();
}

std::vector<PatchConflict> findConflicts(const std::vector<PatchEdit>& edits) {
    // In address order, each edit is compared with the one reaching furthest so far: every
    // earlier edit that overlaps it lies inside that one, and agrees with it or was reported.
    std::vector<std::size_t> order(edits.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    std::stable_sort(order.begin(), order.end(),
                     [&](std::size_t a, std::size_t b) { return edits[a].offset < edits[b].offset; });
    std::vector<PatchConflict> conflicts;
    const PatchEdit* reach = nullptr;
    const auto endOf = [](const PatchEdit& e) { return e.offset + e.newBytes.size(); };
    for (const std::size_t index : order) {
        const PatchEdit& edit = edits[index];
        if (reach != nullptr && edit.offset < endOf(*reach)) {
            const std::uint64_t end = std::min(endOf(*reach), endOf(edit));
            for (std::uint64_t at = edit.offset; at < end; ++at) {
                if (reach->newBytes[at - reach->offset] != edit.newBytes[at - edit.offset]) {
                    conflicts.push_back({std::min(reach->line, edit.line), std::max(reach->line, edit.line), at});
                    break;
                }
            }
        }
        if (reach == nullptr || endOf(edit) > endOf(*reach)) reach = &edit;
    }
    std::sort(conflicts.begin(), conflicts.end(), [](const PatchConflict& a, const PatchConflict& b) {
        return a.secondLine != b.secondLine ? a.secondLine < b.secondLine : a.firstLine < b.firstLine;
    });
    return conflicts;
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

#include "app/pending_changes.h"

#include <charconv>
#include <sstream>

#include "base/hex_text.h"
#include "firmware/free_space.h"

namespace korvatek::app {

namespace {

constexpr std::string_view kJournalMagic = "Korvatek pending changes 1";

std::string hexOf(ByteView bytes) {
    // A word is never empty, so a line always splits the same way.
    return bytes.empty() ? "-" : ASCtext2HEXtext(bytes, false);
}

std::optional<Bytes> bytesOfHex(std::string_view text) {
    if (text == "-") return Bytes{};
    if (text.size() % 2 != 0) return std::nullopt;
    Bytes bytes(text.size() / 2);
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        unsigned value = 0;
        const char* first = text.data() + 2 * i;
        const auto [end, ec] = std::from_chars(first, first + 2, value, 16);
        if (ec != std::errc() || end != first + 2) return std::nullopt;
        bytes[i] = static_cast<std::uint8_t>(value);
    }
    return bytes;
}

std::vector<std::string_view> words(std::string_view line) {
    std::vector<std::string_view> out;
    std::size_t at = 0;
    while (at < line.size()) {
        const std::size_t end = std::min(line.find(' ', at), line.size());
        out.push_back(line.substr(at, end - at));
        at = end + 1;
    }
    return out;
}

template <typename T>
bool number(std::string_view word, T& value, int base = 10) {
    const auto [end, ec] = std::from_chars(word.data(), word.data() + word.size(), value, base);
    return ec == std::errc() && end == word.data() + word.size();
}

std::string textOf(ByteView bytes) { return std::string(bytes.begin(), bytes.end()); }

}  // namespace

std::uint64_t flashChecksum(ByteView bytes) {
    std::uint64_t hash = 0xCBF29CE484222325ULL;
    for (std::uint8_t b : bytes) hash = (hash ^ b) * 0x100000001B3ULL;
    return hash;
}

std::string journalHead(const std::string& flashPath, std::uint64_t size, std::uint64_t checksum) {
    std::ostringstream out;
    out << kJournalMagic << '\n'
        << "flash " << size << ' ' << std::hex << checksum << std::dec << ' ' << hexOf(bytesOf(flashPath)) << '\n';
    return out.str();
}

std::string journalLine(std::uint32_t freeSpaceBase, const PendingPicture& picture) {
    const edit::DecodedPicture& r = picture.replacement;
    std::ostringstream out;
    out << "P " << std::hex << freeSpaceBase << std::dec << ' ' << picture.record.number << ' ' << picture.oldLength
        << ' ' << r.width << ' ' << r.height << ' ' << hexOf(bytesOf(r.typeText)) << ' ' << r.dataLength << ' '
        << hexOf(*picture.container) << '\n';
    return out.str();
}

std::string journalLine(int glyphFont, const fonts::CollectedGlyph& glyph) {
    std::ostringstream out;
    out << "G " << glyphFont << ' ' << glyph.number << ' ' << glyph.headerOffset << ' '
        << hexOf(ByteView(glyph.header.data(), glyph.header.size())) << ' ' << hexOf(glyph.bitmap) << '\n';
    return out.str();
}

std::optional<PendingJournal> readJournal(std::string_view text) {
    PendingJournal journal;
    std::size_t at = 0;
    auto nextLine = [&]() -> std::optional<std::string_view> {
        const std::size_t end = text.find('\n', at);
        if (end == std::string_view::npos) return std::nullopt;   // cut short: not a whole line
        const std::string_view line = text.substr(at, end - at);
        at = end + 1;
        return line;
    };
    if (nextLine() != kJournalMagic) return std::nullopt;
    const auto head = nextLine();
    if (!head) return std::nullopt;
    const auto flash = words(*head);
    if (flash.size() != 4 || flash[0] != "flash" || !number(flash[1], journal.flashSize) ||
        !number(flash[2], journal.flashChecksum, 16))
        return std::nullopt;
    const auto path = bytesOfHex(flash[3]);
    if (!path) return std::nullopt;
    journal.flashPath = textOf(*path);

    while (const auto line = nextLine()) {
        const auto w = words(*line);
        if (w.size() == 9 && w[0] == "P") {
            PendingJournal::Picture picture;
            edit::DecodedPicture& r = picture.replacement;
            const auto type = bytesOfHex(w[6]);
            auto container = bytesOfHex(w[8]);
            if (!number(w[1], journal.freeSpaceBase, 16) || !number(w[2], picture.number) ||
                !number(w[3], picture.oldLength) || !number(w[4], r.width) || !number(w[5], r.height) || !type ||
                !number(w[7], r.dataLength) || !container || picture.number < 0)
                continue;
            r.typeText = textOf(*type);
            picture.container = std::move(*container);
            journal.pictures.push_back(std::move(picture));
        } else if (w.size() == 6 && w[0] == "G") {
            fonts::CollectedGlyph glyph;
            const auto header = bytesOfHex(w[4]);
            auto bitmap = bytesOfHex(w[5]);
            if (!number(w[1], journal.glyphFont) || !number(w[2], glyph.number) || !number(w[3], glyph.headerOffset) ||
                !header || header->size() != glyph.header.size() || !bitmap)
                continue;
            std::copy(header->begin(), header->end(), glyph.header.begin());
            glyph.bitmap = std::move(*bitmap);
            journal.glyphs.push_back(std::move(glyph));
        }
        // Anything else is a line this version does not know; the rest is still read.
    }
    return journal;
}

std::uint64_t erasedBytesFrom(ByteView flash, std::uint32_t start) {
    // Where the search would put the smallest picture; from there, the erased bytes in a row.
    const auto found = firmware::FindFreeSpace(flash, 0, start);
    if (!found.address) return 0;
    std::uint64_t position = *found.address == 0 ? 0 : *found.address - 1;
    const std::uint64_t from = position;
    while (position < flash.size() && flash[position] == 0xFF) ++position;
    return position - from;
}

}  // namespace korvatek::app

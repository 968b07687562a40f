#include "patch/lumbra_patch.h"

#include <cmath>

#include "base/hex_text.h"
#include "patch/line_splitter.h"

namespace korvatek::patch {

namespace {

// Mid$(text, start, count), 1-based, shorter or empty past the end.
std::string mid(const std::string& text, std::size_t start, std::size_t count) {
    if (start == 0 || start > text.size()) return {};
    return text.substr(start - 1, count);
}

int hexByte(const std::string& text, std::size_t start) { return app::valHEX(mid(text, start, 2)) & 0xFF; }

// The marker that ends a section: 16 bytes 0x0F.
const std::string kMarker = [] {
    std::string m;
    for (int i = 0; i < 16; ++i) m += "0F";
    return m;
}();

}  // namespace

std::vector<std::string> splitLines(std::string_view text) {
    std::vector<std::string> lines;
    LineSplitter splitter;
    const auto take = [&](std::string_view line) { lines.emplace_back(line); };
    splitter.feed(text, take);
    splitter.finish(take);
    return lines;
}

void LumbraReader::takeLine(std::string_view view) {
    const std::string line(view);
    switch (m_expect) {
        case Expect::Section: {
            if (line.compare(0, kLumbraSectionStart.size(), kLumbraSectionStart) != 0) return;
            m_picture = LumbraPicture{};
            // Up to four characters after the heading, ended by a blank.
            std::string digits = mid(line, 17, 4);
            if (const auto blank = digits.find(' '); blank != std::string::npos) digits.resize(blank);
            m_picture.number = static_cast<int>(app::valDecimal(digits));
            m_expect = Expect::Record;
            return;
        }
        case Expect::Record:
            if (line.size() == 43) {  // 8-byte records: one byte each for width and height
                m_picture.width = hexByte(line, 28);
                m_picture.height = hexByte(line, 30);
                m_picture.typeCode = hexByte(line, 32);
            } else {                  // 12-byte records: two bytes each, low byte first
                m_picture.width = hexByte(line, 36) | (hexByte(line, 38) << 8);
                m_picture.height = hexByte(line, 40) | (hexByte(line, 42) << 8);
                m_picture.typeCode = hexByte(line, 44);
            }
            m_expect = Expect::Blank;
            return;
        case Expect::Blank:  // the empty line, whatever it holds
            m_expect = Expect::Data;
            return;
        case Expect::Data: {
            // The new part is the last (length - 11) / 2 characters, rounded half to even.
            const double half = (static_cast<double>(line.size()) - 11) / 2;
            const auto count = half > 0 ? static_cast<std::size_t>(std::nearbyint(half)) : std::size_t{0};
            const std::string newPart = count >= line.size() ? line : line.substr(line.size() - count);
            if (line.size() < 5 || newPart == kMarker) {
                m_pictures.push_back(std::move(m_picture));
                m_expect = Expect::Section;
                return;
            }
            const Bytes bytes = app::HEXtext2ASCtext(newPart, false);
            m_picture.data.insert(m_picture.data.end(), bytes.begin(), bytes.end());
            if (!bytes.empty() && bytes.size() < 16) m_picture.data.insert(m_picture.data.end(), 16 - bytes.size(), 0);
            return;
        }
    }
}

void LumbraReader::feed(std::string_view text) {
    m_lines.feed(text, [this](std::string_view line) { takeLine(line); });
}

std::vector<LumbraPicture> LumbraReader::finish() {
    m_lines.finish([this](std::string_view line) { takeLine(line); });
    // A section cut short by the end of the text still counts, with what it has.
    if (m_expect != Expect::Section) m_pictures.push_back(std::move(m_picture));
    m_expect = Expect::Section;
    return std::move(m_pictures);
}

std::vector<LumbraPicture> parseLumbraPatch(const std::vector<std::string>& lines) {
    LumbraReader reader;
    for (const std::string& line : lines) reader.takeLine(line);
    return reader.finish();
}

}  // namespace korvatek::patch

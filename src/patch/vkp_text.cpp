#include "patch/vkp_text.h"

#include <algorithm>

#include "base/byte_reader.h"
#include "base/hex_text.h"

namespace korvatek::patch {

std::string boxLine() { return "; " + std::string(71, '#'); }

std::string pictureHeader(const std::string& phoneModel) {
    const std::string blank = "; ###" + std::string(65, ' ') + "###";
    std::string text;
    for (const std::string& line : {
             boxLine(),
             // the right edge is not padded to the box width, as it never was
             "; ### This file is made by " + std::string(kProgramTitle) + std::string(12, ' ') + "###",
             std::string("; ### Made by the Korvatek developers for the phone modding community ###"),
             blank,
             std::string("; ### Korvatek: picture and font editor for E71 and EL71 fullflashes ###"),
             blank,
             "; ### Patch for: BenQ-SIEMENS " + phoneModel + std::string(37, ' ') + "###",
             boxLine(),
         })
        text += line + kLineEnd;
    return text;
}

std::string sectionLine(int pictureNumber) { return "; ##### Picture" + app::signedText(pictureNumber) + " #####"; }

std::string patchLine(std::uint64_t offset, ByteView oldBytes, ByteView newBytes) {
    std::string line(1, '0');
    line += app::hexText(offset);
    line += ": ";
    line += app::ASCtext2HEXtext(oldBytes, false);
    line += ' ';
    line += app::ASCtext2HEXtext(newBytes, false);
    return line;
}

namespace {

void appendHex(std::string& text, ByteView bytes) {
    static constexpr char digits[] = "0123456789ABCDEF";
    for (const std::uint8_t b : bytes) {
        text += digits[b >> 4];
        text += digits[b & 0x0F];
    }
}

}  // namespace

std::string patchLines(ByteView image, std::uint64_t offset, ByteView newBytes) {
    // Written straight into one string: a picture's data are hundreds of lines, and planning a
    // patch again after a change is taken back writes them all.
    std::string text;
    text.reserve((newBytes.size() / 16 + 1) * (12 + 2 * 33 + std::char_traits<char>::length(kLineEnd)));
    ByteReader old(image, offset);
    std::uint8_t oldBytes[16];
    for (std::size_t at = 0; at < newBytes.size(); at += 16) {
        const std::size_t n = std::min<std::size_t>(16, newBytes.size() - at);
        old.read(oldBytes, n);
        text += '0';
        text += app::hexText(offset + at);
        text += ": ";
        appendHex(text, ByteView(oldBytes, n));
        text += ' ';
        appendHex(text, newBytes.subspan(at, n));
        text += kLineEnd;
    }
    return text;
}

}  // namespace korvatek::patch

#pragma once
// Picture patches of the other patch tool: one section per picture, a record line, a skipped
// line, then data lines whose new bytes are the picture data. Characters are taken by their
// positions, as the converter always has; malformed lines are not checked.

#include <string>
#include <vector>

#include "base/bytes.h"
#include "patch/line_splitter.h"

namespace korvatek::patch {

inline constexpr std::string_view kLumbraSectionStart = "; ##### Picture ";

struct LumbraPicture {
    int number = 0;
    int width = 0;
    int height = 0;
    int typeCode = 0;
    Bytes data;  // new bytes of each data line, each line filled up with zeros to 16 bytes
};

// The patch's lines, split at CR LF, CR or LF.
std::vector<std::string> splitLines(std::string_view text);

// Reads the patch line by line, so that its text need not be held whole.
class LumbraReader {
public:
    void feed(std::string_view text);  // text in pieces of any size
    void takeLine(std::string_view line);
    std::vector<LumbraPicture> finish();

private:
    enum class Expect { Section, Record, Blank, Data } m_expect = Expect::Section;
    std::vector<LumbraPicture> m_pictures;
    LumbraPicture m_picture;
    LineSplitter m_lines;
};

std::vector<LumbraPicture> parseLumbraPatch(const std::vector<std::string>& lines);

}  // namespace korvatek::patch

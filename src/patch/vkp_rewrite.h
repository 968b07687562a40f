#pragma once
// Patches made from other patches, as text: the patch that takes one off again, and several
// patches joined into one. Comments and spacing are kept as the authors wrote them; every
// line ends with CR LF, as the tool writes patches. The caller checks first that the patches
// read cleanly and do not clash: these only rewrite.

#include <string>
#include <string_view>
#include <vector>

namespace korvatek::patch {

// Every data line with its old and new bytes swapped, everything else as written, after the
// comment line "; " + header.
std::string revertedPatch(std::string_view text, std::string_view header);

struct NamedPatchText {
    std::string name;
    std::string_view text;
};
// "; " + header, then each patch after a comment line "; " + its name. A base offset that one
// patch leaves set is taken back ("+0") before the next, whose addresses do not expect it.
std::string mergedPatch(const std::vector<NamedPatchText>& patches, std::string_view header);

}  // namespace korvatek::patch

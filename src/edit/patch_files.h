#pragma once
// Patch files read whole: a V_Klay patch checked against the fullflash, the other tool's
// picture patch turned into containers, and the Make tool's picture area.

#include <functional>
#include <string>
#include <vector>

#include "base/result.h"
#include "patch/vkp_apply.h"
#include "patch/vkp_status.h"

namespace korvatek::edit {

// A V_Klay patch read in pieces and checked against the image: what cannot be read, which
// lines clash, which old bytes do not match and what lies beyond the image.
struct PatchCheck {
    patch::ParsedPatch parsed;
    std::vector<patch::PatchProblem> mismatches;   // old bytes that differ, edits beyond the end
    bool clean() const {
        return parsed.malformed.empty() && parsed.conflicts.empty() && mismatches.empty() && !parsed.edits.empty();
    }
};
Result<PatchCheck> checkPatchFile(ByteView image, const std::string& path);

// Where one or more patches stand on the image, line by line, and where they clash with each
// other. A file that cannot be read stops it; lines that cannot be read are in each check.
struct PatchReport {
    std::string path;
    PatchCheck check;
    patch::PatchStatus status;
    bool readable() const { return check.parsed.malformed.empty() && !check.parsed.edits.empty(); }
};
struct StatusReport {
    std::vector<PatchReport> patches;
    std::vector<patch::PatchClash> clashes;   // between the patches, by index into `patches`
    // Every patch read whole, nothing outside the image, no clash, and no line conflicting: the
    // patches can go on in order, each one's lines all applied or all not.
    bool consistent() const;
};
Result<StatusReport> patchStatus(ByteView image, const std::vector<std::string>& paths);

// A whole patch file's text (within the size limit for patches) and what it reads as: for the
// patches made from other patches, which keep their text.
struct PatchText {
    std::string text;
    patch::ParsedPatch parsed;
};
Result<PatchText> readPatchText(const std::string& path);

// The other tool's picture patch: one GPF2 container per picture section, named "0005.gpf2".
struct NamedContainer {
    std::string name;
    Bytes bytes;
};
Result<std::vector<NamedContainer>> containersOfOtherPatch(const std::string& path);

// The Make tool: the picture area rebuilt from a folder of containers "0000.gpf2" (or .gpf)
// up to "1700", a missing one replaced by the empty picture (`missing` is told its number and
// name first). A container that cannot be read stops it (nothing to write); data beyond the
// picture area stop it too, with the blocks made so far (`overflow`). `stop`, asked between
// two containers, ends it early (`cancelled`, the blocks incomplete: not to be written).
struct PictureArea {
    Bytes data;    // belongs at the data start
    Bytes table;   // the index table
    bool overflow = false;
    bool cancelled = false;
};
Result<PictureArea> makePictureArea(const std::string& folder, int maxIndex,
                                    const std::function<void(const std::string& name)>& missing,
                                    const std::function<void(double)>& progress = {},
                                    const std::function<bool()>& stop = {});

}  // namespace korvatek::edit

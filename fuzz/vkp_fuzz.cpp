// V_Klay patch text: parsing, checking against an image and applying to a copy of it, the
// status of each line, and the patches made from it (its revert, it merged with its revert).
// The image is small (4 KiB: zeros, then a pattern), so that checks pass and edits land often.
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "fuzz_support.h"
#include "patch/vkp_apply.h"
#include "patch/vkp_rewrite.h"
#include "patch/vkp_status.h"

namespace {

using namespace korvatek;

const Bytes& image() {
    static const Bytes bytes = [] {
        Bytes b(4096, 0);
        for (std::size_t i = 2048; i < b.size(); ++i) b[i] = static_cast<std::uint8_t>(i * 7 % 251);
        return b;
    }();
    return bytes;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    const patch::ParsedPatch parsed = patch::parseVkp(text);
    int lastLine = 0;
    for (const auto& e : parsed.edits) {
        fuzz::check(e.oldBytes.size() == e.newBytes.size() && !e.newBytes.empty(), "old and new bytes pair up");
        fuzz::check(e.line > lastLine, "edits come in line order");
        lastLine = e.line;
    }

    const auto problems = patch::checkAgainst(parsed.edits, image());
    const Bytes patched = patch::applyEdits(parsed.edits, image());
    fuzz::check(patched.size() == image().size(), "applying keeps the size");
    if (problems.empty() && !parsed.edits.empty()) {
        // Nothing comes after the last edit, so its bytes are what the copy holds there.
        const auto& last = parsed.edits.back();
        fuzz::check(std::equal(last.newBytes.begin(), last.newBytes.end(),
                               patched.begin() + static_cast<std::ptrdiff_t>(last.offset)),
                    "the last edit is in the copy");
    }

    const patch::PatchStatus status = patch::statusOf(parsed.edits, image());
    fuzz::check(status.lines.size() == parsed.edits.size(), "a status for every edit");
    if (problems.empty() && parsed.conflicts.empty() && !parsed.edits.empty()) {
        fuzz::check(status.count(patch::LineState::Applied) == 0 && status.count(patch::LineState::Conflicting) == 0,
                    "a patch whose old bytes all match is not applied anywhere");
        // The revert reads as the same lines with old and new swapped, and takes the patch off.
        const std::string reverted = patch::revertedPatch(text, "revert");
        const patch::ParsedPatch back = patch::parseVkp(reverted);
        fuzz::check(back.edits.size() == parsed.edits.size() && back.malformedCount == parsed.malformedCount,
                    "the revert has the same lines");
        for (std::size_t i = 0; i < back.edits.size() && i < parsed.edits.size(); ++i)
            fuzz::check(back.edits[i].offset == parsed.edits[i].offset && back.edits[i].oldBytes == parsed.edits[i].newBytes &&
                            back.edits[i].newBytes == parsed.edits[i].oldBytes,
                        "the revert swaps old and new");
        const patch::PatchStatus onPatched = patch::statusOf(back.edits, patched);
        fuzz::check(onPatched.count(patch::LineState::NotApplied) + onPatched.count(patch::LineState::ChangesNothing) ==
                        back.edits.size(),
                    "the revert can go on the patched copy");
        if (patch::checkAgainst(back.edits, patched).empty() && back.conflicts.empty())
            fuzz::check(patch::applyEdits(back.edits, patched) == image(), "the revert gives the image back");
        // Merged with itself, every line agrees: twice the edits, at the same offsets.
        const patch::ParsedPatch twice = patch::parseVkp(patch::mergedPatch({{"a", text}, {"b", text}}, "merged"));
        fuzz::check(twice.edits.size() == 2 * parsed.edits.size(), "a merge keeps every line");
        for (std::size_t i = 0; i < parsed.edits.size() && i < twice.edits.size(); ++i)
            fuzz::check(twice.edits[i].offset == parsed.edits[i].offset &&
                            twice.edits[parsed.edits.size() + i].offset == parsed.edits[i].offset,
                        "a merge keeps every address");
    }
    return 0;
}

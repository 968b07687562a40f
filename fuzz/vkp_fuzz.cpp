// V_Klay patch text: parsing, checking against an image and applying to a copy of it. The
// image is small (4 KiB: zeros, then a pattern), so that checks pass and edits land often.
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "fuzz_support.h"
#include "patch/vkp_apply.h"

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
    return 0;
}

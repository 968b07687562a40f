#include "patch/vkp_rewrite.h"

#include "patch/vkp_apply.h"
#include "patch/vkp_text.h"

namespace korvatek::patch {

namespace {

std::string commentLine(std::string_view text) {
    return "; " + std::string(text) + kLineEnd;
}

}  // namespace

std::string revertedPatch(std::string_view text, std::string_view header) {
    std::string out = commentLine(header);
    forEachVkpLine(text, [&](int, std::string_view line) {
        const VkpLine read = readVkpLine(line);
        if (read.kind != VkpLine::Kind::Data) {
            out.append(line);
        } else {
            out.append(line.substr(0, read.oldAt));
            out.append(line.substr(read.newAt, read.hexLength));
            out.append(line.substr(read.oldAt + read.hexLength, read.newAt - read.oldAt - read.hexLength));
            out.append(line.substr(read.oldAt, read.hexLength));
            out.append(line.substr(read.newAt + read.hexLength));
        }
        out += kLineEnd;
    });
    return out;
}

std::string mergedPatch(const std::vector<NamedPatchText>& patches, std::string_view header) {
    std::string out = commentLine(header);
    bool baseSet = false;
    for (const NamedPatchText& patch : patches) {
        out += kLineEnd;
        if (baseSet) out += std::string("+0") + kLineEnd;
        out += commentLine(patch.name);
        baseSet = false;
        forEachVkpLine(patch.text, [&](int, std::string_view line) {
            if (const VkpLine read = readVkpLine(line); read.kind == VkpLine::Kind::Base) baseSet = read.base != 0;
            out.append(line);
            out += kLineEnd;
        });
    }
    return out;
}

}  // namespace korvatek::patch

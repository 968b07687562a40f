#include "patch/vkp_status.h"

#include <algorithm>
#include <tuple>

namespace korvatek::patch {

namespace {

bool holds(ByteView image, std::uint64_t offset, const Bytes& bytes) {
    return std::equal(bytes.begin(), bytes.end(), image.begin() + static_cast<std::ptrdiff_t>(offset));
}

}  // namespace

PatchStatus statusOf(const std::vector<PatchEdit>& edits, ByteView image) {
    PatchStatus status;
    for (const PatchEdit& e : edits) {
        LineStatus line{e.line, e.offset, e.newBytes.size(), LineState::Conflicting};
        if (e.offset > image.size() || e.newBytes.size() > image.size() - e.offset)
            line.state = LineState::Outside;
        else if (holds(image, e.offset, e.newBytes))
            line.state = e.oldBytes == e.newBytes ? LineState::ChangesNothing : LineState::Applied;
        else if (holds(image, e.offset, e.oldBytes))
            line.state = LineState::NotApplied;
        ++status.counts[static_cast<std::size_t>(line.state)];
        status.lines.push_back(line);
    }
    using enum LineState;
    if (status.count(Outside) > 0)
        status.state = PatchState::Outside;
    else if (status.count(Conflicting) > 0)
        status.state = PatchState::Conflicting;
    else if (status.count(Applied) > 0 && status.count(NotApplied) > 0)
        status.state = PatchState::PartlyApplied;
    else
        status.state = status.count(NotApplied) > 0 ? PatchState::NotApplied : PatchState::Applied;
    return status;
}

std::vector<PatchClash> clashesBetween(const std::vector<const std::vector<PatchEdit>*>& patches) {
    struct Placed {
        std::size_t patch;
        const PatchEdit* edit;
        std::uint64_t end() const { return edit->offset + edit->newBytes.size(); }
    };
    std::vector<Placed> all;
    for (std::size_t p = 0; p < patches.size(); ++p)
        for (const PatchEdit& e : *patches[p]) all.push_back({p, &e});
    std::stable_sort(all.begin(), all.end(),
                     [](const Placed& a, const Placed& b) { return a.edit->offset < b.edit->offset; });

    // A sweep in address order: each line is compared with the lines of other patches that are
    // still open at its start. Patches rarely overlap, so the open set stays small.
    std::vector<PatchClash> clashes;
    std::vector<Placed> open;
    for (const Placed& here : all) {
        const std::uint64_t start = here.edit->offset;
        std::erase_if(open, [&](const Placed& o) { return o.end() <= start; });
        for (const Placed& other : open) {
            if (other.patch == here.patch) continue;
            const std::uint64_t end = std::min(other.end(), here.end());
            for (std::uint64_t at = start; at < end; ++at) {
                const std::size_t i = at - other.edit->offset, j = at - start;
                if (other.edit->oldBytes[i] != here.edit->oldBytes[j] || other.edit->newBytes[i] != here.edit->newBytes[j]) {
                    const bool otherFirst = std::tie(other.patch, other.edit->line) < std::tie(here.patch, here.edit->line);
                    const Placed& a = otherFirst ? other : here;
                    const Placed& b = otherFirst ? here : other;
                    clashes.push_back({a.patch, a.edit->line, b.patch, b.edit->line, at});
                    break;
                }
            }
        }
        open.push_back(here);
    }
    std::sort(clashes.begin(), clashes.end(), [](const PatchClash& a, const PatchClash& b) {
        return std::tie(a.secondPatch, a.secondLine, a.firstPatch, a.firstLine) <
               std::tie(b.secondPatch, b.secondLine, b.firstPatch, b.firstLine);
    });
    return clashes;
}

}  // namespace korvatek::patch

#pragma once
// Where a V_Klay patch stands on a fullflash, line by line: already applied (the image holds
// the new bytes), not applied (it holds the old ones), conflicting (neither), or outside the
// image. And the places where several patches would write to the same bytes differently.

#include <array>
#include <cstdint>
#include <vector>

#include "base/bytes.h"
#include "patch/vkp_apply.h"

namespace korvatek::patch {

// A line whose old and new bytes are the same (a picture record left as it was, say) is
// neither applied nor not: it changes nothing, whenever the image holds those bytes.
enum class LineState { Applied, NotApplied, Conflicting, Outside, ChangesNothing };
inline constexpr std::size_t kLineStateCount = 5;

struct LineStatus {
    int line = 0;
    std::uint64_t offset = 0;
    std::size_t length = 0;      // bytes the line writes
    LineState state = LineState::Conflicting;
};

enum class PatchState { Applied, NotApplied, PartlyApplied, Conflicting, Outside };

struct PatchStatus {
    std::vector<LineStatus> lines;
    std::array<std::size_t, kLineStateCount> counts{};  // lines per LineState
    PatchState state = PatchState::Applied;
    std::size_t count(LineState s) const { return counts[static_cast<std::size_t>(s)]; }
};

// The whole patch is outside when any line is, else conflicting when any line is; applied or
// not applied when every line that changes a byte is so; partly applied otherwise. A patch
// whose lines all change nothing is applied.
PatchStatus statusOf(const std::vector<PatchEdit>& edits, ByteView image);

// Two patches writing to one address where their lines do not agree byte for byte (old and
// new bytes both): applying both could not give what each promises.
struct PatchClash {
    std::size_t firstPatch = 0;
    int firstLine = 0;
    std::size_t secondPatch = 0;
    int secondLine = 0;
    std::uint64_t offset = 0;   // the first address where they differ
};

// Each pair of lines reported once, ordered by the later patch's line.
std::vector<PatchClash> clashesBetween(const std::vector<const std::vector<PatchEdit>*>& patches);

}  // namespace korvatek::patch

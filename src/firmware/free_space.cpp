#include "firmware/free_space.h"

#include <algorithm>

#include "firmware/layout.h"

namespace korvatek::firmware {

namespace {

constexpr std::size_t kBlock = 16;

bool erased(const std::uint8_t* block) {
    return std::all_of(block, block + kBlock, [](std::uint8_t b) { return b == 0xFF; });
}

// The next candidate after a block that failed; the file position is just past that block.
// The first test's jump over the first reserved stretch is always overwritten by the second
// test, so in effect only the second stretch is skipped. Both tests are kept as they were.
std::uint64_t nextCandidate(std::uint64_t cur, std::uint64_t filePosition) {
    cur = (cur > kReservedLow1 && cur < kReservedHigh1) ? kReservedJump1 : filePosition;
    return (cur > kReservedLow2 && cur < kReservedHigh2) ? kReservedHigh2 : filePosition;
}

}  // namespace

FreeSpaceResult FindFreeSpace(ByteView flash, std::uint32_t size, std::uint32_t start) {
    const std::uint64_t blocks = size / kBlock + 1;
    std::uint64_t cur = start;
    for (;;) {
        std::uint64_t position = cur == 0 ? 0 : cur - 1;
        bool free = true;
        for (std::uint64_t k = 0; k < blocks; ++k) {
            if (position + kBlock > flash.size()) return {std::nullopt, start};
            const std::uint8_t* block = flash.data() + position;
            position += kBlock;
            if (!erased(block)) {
                free = false;
                break;
            }
        }
        if (free) return {static_cast<std::uint32_t>(cur), static_cast<std::uint32_t>(position + 1)};
        cur = nextCandidate(cur, position);
    }
}

}  // namespace korvatek::firmware

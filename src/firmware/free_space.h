#pragma once
// FindFreeSpace: a run of erased flash (0xFF) for a picture that grew, scanned in 16-byte
// blocks from FreeSpaceStart, skipping the second reserved stretch.

#include <cstdint>
#include <optional>

#include "base/bytes.h"

namespace korvatek::firmware {

struct FreeSpaceResult {
    std::optional<std::uint32_t> address;  // where the caller may write; none when not found
    std::uint32_t nextStart = 0;           // the new FreeSpaceStart (unchanged on failure)
};

// Searches for `size` bytes starting at `start`. The search address is used as a 1-based
// position (each candidate is read from start - 1) and consecutive candidates overlap by one
// byte; both are kept as the search has always worked. A block that would run past the end
// of the image counts as the end.
FreeSpaceResult FindFreeSpace(ByteView flash, std::uint32_t size, std::uint32_t start);

}  // namespace korvatek::firmware

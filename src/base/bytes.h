#pragma once
// Byte strings: what the tool reads from and writes to its files.

#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace korvatek {

using Bytes = std::vector<std::uint8_t>;
using ByteView = std::span<const std::uint8_t>;

inline Bytes bytesOf(std::string_view text) { return Bytes(text.begin(), text.end()); }
inline std::string textOf(ByteView bytes) { return std::string(bytes.begin(), bytes.end()); }

}  // namespace korvatek

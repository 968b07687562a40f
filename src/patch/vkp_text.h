#pragma once
// V_Klay patch text as the tool writes it: every line ends with CR LF, hex digits upper case,
// patch lines "address: old new" with the address as "0" + the fullflash offset in hex.

#include <cstdint>
#include <string>

#include "base/bytes.h"

namespace korvatek::patch {

inline constexpr const char* kLineEnd = "\r\n";
inline constexpr const char* kProgramTitle = "Korvatek";

// "; " and 71 number signs.
std::string boxLine();
// The eight header lines of a picture patch, for the phone model of the open fullflash.
std::string pictureHeader(const std::string& phoneModel);
// "; ##### Picture 5 #####"
std::string sectionLine(int pictureNumber);
// "0" + offset + ": " + old + " " + new, without the line end.
std::string patchLine(std::uint64_t offset, ByteView oldBytes, ByteView newBytes);
// Lines of at most 16 bytes each, from offset on: old bytes from the image, new ones given.
std::string patchLines(ByteView image, std::uint64_t offset, ByteView newBytes);

}  // namespace korvatek::patch

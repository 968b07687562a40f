#pragma once
// Number and text helpers. Addresses, lengths and byte runs travel between the commands as
// upper-case hexadecimal text without prefix, and the commands compare and join those texts,
// so their exact forms matter.

#include <cstdint>
#include <string>
#include <string_view>

#include "base/bytes.h"
#include "base/result.h"

namespace korvatek::app {

// Value of a hex text read as a hexadecimal literal: digits up to the first non-hex character;
// up to 4 digits are a 16-bit two's-complement number (FFFF is -1), 5 to 8 digits a 32-bit one.
// Empty or unparsable text is 0, and so is a run of more than 8 digits (it cannot be a literal).
std::int32_t valHEX(std::string_view text);

// The 8 binary digits of a byte, most significant first.
std::string Dec2Bin(std::uint8_t value);

// Sum of digit x 2^(k-1) over the text, k counting from its end; characters are taken at
// their digit value (a non-digit counts 0). A sum above 32767 overflows.
Result<std::int16_t> Bin2Dec(std::string_view digits);

// Two upper-case hex digits per byte; with reverseByteOrder the first byte is the least
// significant (each pair goes in front of the text built so far).
std::string ASCtext2HEXtext(ByteView bytes, bool reverseByteOrder);

// One byte per pair of hex digits (an odd-length text gets a leading "0"); with
// reverseByteOrder each byte goes in front of the bytes built so far.
Bytes HEXtext2ASCtext(std::string_view hex, bool reverseByteOrder);

// Pads text with 0x00 up to n, but adds at most n - 1 bytes (an empty text comes back one
// short); a text of n or more is returned as it is.
std::string MakeLen(std::string text, int n);

// Upper-case hexadecimal of a value, no prefix, no padding (Hex()).
std::string hexText(std::uint64_t value);

// Decimal text with one leading blank where a minus sign would stand (" 176", "-1").
std::string signedText(std::int64_t value);

// Decimal text padded on the left with "0" to at least `digits` characters.
std::string zeroPadded(std::int64_t value, int digits);

// Numeric value of a decimal text as a list cell holds it: optional blanks, sign, digits and
// a decimal point; anything after that is ignored; no number gives 0.
double valDecimal(std::string_view text);

}  // namespace korvatek::app

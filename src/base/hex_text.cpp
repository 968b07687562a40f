#include "base/hex_text.h"

#include <cctype>
#include <cstdio>

namespace korvatek::app {

namespace {

int hexDigitValue(char c) {
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    return -1;
}

constexpr char kHexDigits[] = "0123456789ABCDEF";

}  // namespace

std::int32_t valHEX(std::string_view text) {
    std::uint32_t value = 0;
    std::size_t digits = 0;
    for (char c : text) {
        const int d = hexDigitValue(c);
        if (d < 0) break;
        if (++digits > 8) return 0;
        value = (value << 4) | static_cast<std::uint32_t>(d);
    }
    if (digits <= 4) return static_cast<std::int16_t>(static_cast<std::uint16_t>(value));
    return static_cast<std::int32_t>(value);
}

std::string Dec2Bin(std::uint8_t value) {
    std::string bits(8, '0');
    for (int i = 0; i < 8; ++i)
        if (value & (1u << i)) bits[7 - i] = '1';
    return bits;
}

Result<std::int16_t> Bin2Dec(std::string_view digits) {
    std::int64_t sum = 0;
    const std::size_t n = digits.size();
    for (std::size_t i = 0; i < n; ++i) {
        const char c = digits[i];
        const int digit = (c >= '0' && c <= '9') ? c - '0' : 0;
        const std::size_t k = n - i;  // the last character has k = 1
        if (digit == 0) continue;
        if (k > 40) return makeError(ErrorCode::Overflow);
        sum += static_cast<std::int64_t>(digit) << (k - 1);
        if (sum > 32767) return makeError(ErrorCode::Overflow);
    }
    return static_cast<std::int16_t>(sum);
}

std::string ASCtext2HEXtext(ByteView bytes, bool reverseByteOrder) {
    std::string text(bytes.size() * 2, '0');
    const std::size_t n = bytes.size();
    for (std::size_t i = 0; i < n; ++i) {
        const std::size_t slot = reverseByteOrder ? n - 1 - i : i;
        text[slot * 2] = kHexDigits[bytes[i] >> 4];
        text[slot * 2 + 1] = kHexDigits[bytes[i] & 0x0F];
    }
    return text;
}

Bytes HEXtext2ASCtext(std::string_view hex, bool reverseByteOrder) {
    std::string text(hex);
    if (text.size() % 2 != 0) text.insert(text.begin(), '0');
    Bytes bytes;
    bytes.reserve(text.size() / 2);
    for (std::size_t i = 0; i < text.size(); i += 2) {
        const auto b = static_cast<std::uint8_t>(valHEX(std::string_view(text).substr(i, 2)) & 0xFF);
        if (reverseByteOrder)
            bytes.insert(bytes.begin(), b);
        else
            bytes.push_back(b);
    }
    return bytes;
}

std::string MakeLen(std::string text, int n) {
    for (int counter = 2; counter <= n; ++counter)
        if (static_cast<int>(text.size()) < n) text.push_back('\0');
    return text;
}

std::string hexText(std::uint64_t value) {
    if (value == 0) return "0";
    std::string text;
    while (value != 0) {
        text.insert(text.begin(), kHexDigits[value & 0x0F]);
        value >>= 4;
    }
    return text;
}

std::string signedText(std::int64_t value) {
    // Built by appending: GCC 12 warns wrongly about a literal + std::string temporary here.
    std::string text(value < 0 ? 0 : 1, ' ');
    text += std::to_string(value);
    return text;
}

std::string zeroPadded(std::int64_t value, int digits) {
    std::string text = std::to_string(value);
    if (value >= 0 && static_cast<int>(text.size()) < digits)
        text.insert(0, static_cast<std::size_t>(digits) - text.size(), '0');
    return text;
}

double valDecimal(std::string_view text) {
    std::size_t i = 0;
    while (i < text.size() && (text[i] == ' ' || text[i] == '\t')) ++i;
    bool negative = false;
    if (i < text.size() && (text[i] == '-' || text[i] == '+')) negative = text[i++] == '-';
    double value = 0;
    while (i < text.size() && std::isdigit(static_cast<unsigned char>(text[i])))
        value = value * 10 + (text[i++] - '0');
    if (i < text.size() && text[i] == '.') {
        double scale = 0.1;
        for (++i; i < text.size() && std::isdigit(static_cast<unsigned char>(text[i])); ++i, scale /= 10)
            value += (text[i] - '0') * scale;
    }
    return negative ? -value : value;
}

}  // namespace korvatek::app

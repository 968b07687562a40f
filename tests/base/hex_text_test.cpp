#include "base/hex_text.h"

#include <gtest/gtest.h>

namespace korvatek::app {

TEST(HexText, valHexReadsFourDigitsOrFewerAsSixteenBitSigned) {
    const std::pair<const char*, std::int64_t> cases[] = {
        {"1B01958", 28318040}, {"FFFF", -1},  {"8000", -32768}, {"0FFFF", 65535}, {"10000", 65536},
        {"FFFFFFFF", -1},      {"", 0},       {"12G4", 18},     {"a0", 160},
        {"123456789", 0},  // no literal holds nine digits
    };
    for (const auto& [text, value] : cases) EXPECT_EQ(valHEX(text), value) << text;
}

TEST(HexText, binaryDigits) {
    for (int b = 0; b < 256; ++b) EXPECT_EQ(*Bin2Dec(Dec2Bin(static_cast<std::uint8_t>(b))), b);
    EXPECT_EQ(Dec2Bin(5), "00000101");
    EXPECT_EQ(*Bin2Dec(""), 0);
    EXPECT_EQ(*Bin2Dec("2"), 2);    // digits are taken at their value, not validated
    EXPECT_EQ(*Bin2Dec("1x1"), 5);  // a non-digit counts 0
    EXPECT_EQ(*Bin2Dec("111111111111111"), 32767);
    EXPECT_FALSE(Bin2Dec("1111111111111111").ok());
}

TEST(HexText, byteOrderFollowsTheFlag) {
    const Bytes address{0x58, 0x19, 0xB0, 0x01};
    EXPECT_EQ(ASCtext2HEXtext(address, true), "01B01958");
    EXPECT_EQ(ASCtext2HEXtext(address, false), "5819B001");
    EXPECT_EQ(HEXtext2ASCtext("ABC", false), (Bytes{0x0A, 0xBC}));
    EXPECT_EQ(HEXtext2ASCtext("ABC", true), (Bytes{0xBC, 0x0A}));
    EXPECT_EQ(HEXtext2ASCtext("1B01958", true), (Bytes{0x58, 0x19, 0xB0, 0x01}));
}

TEST(HexText, numberTexts) {
    EXPECT_EQ(MakeLen("AB", 4), std::string("AB\0\0", 4));
    EXPECT_EQ(MakeLen("", 4), std::string(3, '\0'));  // at most one less than asked is added
    EXPECT_EQ(MakeLen("ABCDE", 4), "ABCDE");
    EXPECT_EQ(signedText(176), " 176");
    EXPECT_EQ(signedText(-1), "-1");
    EXPECT_EQ(hexText(450), "1C2");
    EXPECT_EQ(zeroPadded(7, 4), "0007");
    EXPECT_EQ(zeroPadded(12345, 4), "12345");
    for (const auto& [text, value] : {std::pair{"0005", 5.0}, {"-1", -1.0}, {" 176", 176.0}, {"5.5", 5.5}, {"abc", 0.0}})
        EXPECT_DOUBLE_EQ(valDecimal(text), value) << text;
}

}  // namespace korvatek::app

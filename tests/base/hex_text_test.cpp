#include "base/hex_text.h"

#include <gtest/gtest.h>

namespace korvatek::app {

TEST(HexText, valHexReadsShortTextsAsSixteenBitAndLongerAsThirtyTwoBit) {
    EXPECT_EQ(valHEX("1B01958"), 28318040);
    EXPECT_EQ(valHEX("FFFF"), -1);
    EXPECT_EQ(valHEX("8000"), -32768);
    EXPECT_EQ(valHEX("0FFFF"), 65535);
    EXPECT_EQ(valHEX("10000"), 65536);
    EXPECT_EQ(valHEX("FFFFFFFF"), -1);
    EXPECT_EQ(valHEX(""), 0);
    EXPECT_EQ(valHEX("12G4"), 18);
    EXPECT_EQ(valHEX("a0"), 160);
    EXPECT_EQ(valHEX("123456789"), 0);  // no literal holds nine digits
}

TEST(HexText, binaryDigitsRoundTrip) {
    EXPECT_EQ(Dec2Bin(0), "00000000");
    EXPECT_EQ(Dec2Bin(5), "00000101");
    EXPECT_EQ(Dec2Bin(128), "10000000");
    EXPECT_EQ(Dec2Bin(255), "11111111");
    EXPECT_EQ(*Bin2Dec("00000101"), 5);
    EXPECT_EQ(*Bin2Dec(""), 0);
    EXPECT_EQ(*Bin2Dec("2"), 2);   // digits are taken at their value, not validated
    EXPECT_EQ(*Bin2Dec("1x1"), 5); // a non-digit counts 0
    EXPECT_EQ(*Bin2Dec("111111111111111"), 32767);
    EXPECT_FALSE(Bin2Dec("1111111111111111").ok());
    for (int b = 0; b < 256; ++b) EXPECT_EQ(*Bin2Dec(Dec2Bin(static_cast<std::uint8_t>(b))), b);
}

TEST(HexText, byteOrderFollowsTheFlag) {
    const Bytes address{0x58, 0x19, 0xB0, 0x01};
    EXPECT_EQ(ASCtext2HEXtext(address, true), "01B01958");
    EXPECT_EQ(ASCtext2HEXtext(address, false), "5819B001");
    EXPECT_EQ(ASCtext2HEXtext(Bytes{0x0A}, true), "0A");
    EXPECT_EQ(ASCtext2HEXtext(Bytes{0x0A}, false), "0A");
    EXPECT_EQ(ASCtext2HEXtext(Bytes{}, true), "");
    EXPECT_EQ(HEXtext2ASCtext("ABC", false), (Bytes{0x0A, 0xBC}));
    EXPECT_EQ(HEXtext2ASCtext("ABC", true), (Bytes{0xBC, 0x0A}));
    EXPECT_EQ(HEXtext2ASCtext("1B01958", false), (Bytes{0x01, 0xB0, 0x19, 0x58}));
    EXPECT_EQ(HEXtext2ASCtext("1B01958", true), (Bytes{0x58, 0x19, 0xB0, 0x01}));
}

TEST(HexText, makeLenAddsAtMostOneLessThanAsked) {
    EXPECT_EQ(MakeLen("AB", 4), std::string("AB\0\0", 4));
    EXPECT_EQ(MakeLen("", 4), std::string(3, '\0'));
    EXPECT_EQ(MakeLen("ABCDE", 4), "ABCDE");
}

TEST(HexText, numberTexts) {
    EXPECT_EQ(signedText(176), " 176");
    EXPECT_EQ(signedText(0), " 0");
    EXPECT_EQ(signedText(-1), "-1");
    EXPECT_EQ(hexText(450), "1C2");
    EXPECT_EQ(hexText(0), "0");
    EXPECT_EQ(zeroPadded(7, 4), "0007");
    EXPECT_EQ(zeroPadded(1700, 4), "1700");
    EXPECT_EQ(zeroPadded(12345, 4), "12345");
    EXPECT_DOUBLE_EQ(valDecimal("0005"), 5);
    EXPECT_DOUBLE_EQ(valDecimal("-1"), -1);
    EXPECT_DOUBLE_EQ(valDecimal(" 176"), 176);
    EXPECT_DOUBLE_EQ(valDecimal("5.5"), 5.5);
    EXPECT_DOUBLE_EQ(valDecimal("abc"), 0);
}

}  // namespace korvatek::app

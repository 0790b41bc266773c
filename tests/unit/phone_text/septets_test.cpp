// Packing of septets, worked out by hand (3GPP TS 23.038, 6.1.2.1.1).

#include "phone/text/septets.h"

#include <random>
#include <string_view>

#include <gtest/gtest.h>

namespace phone {
namespace {

Septets ofAscii(std::string_view text) { return {text.begin(), text.end()}; }

TEST(PackSeptets, Examples) {
  EXPECT_EQ(packSeptets(ofAscii("hellohello")), (Octets{0xE8, 0x32, 0x9B, 0xFD, 0x46, 0x97, 0xD9, 0xEC, 0x37}));
  // 41 | 42<<7, 42>>1 | 43<<6, 43>>2 | 44<<5, ...: eight septets are seven octets, the eighth fills what seven leave.
  EXPECT_EQ(packSeptets(ofAscii("ABCDEFG")), (Octets{0x41, 0xE1, 0x90, 0x58, 0x34, 0x1E, 0x01}));
  EXPECT_EQ(packSeptets(ofAscii("ABCDEFGH")), (Octets{0x41, 0xE1, 0x90, 0x58, 0x34, 0x1E, 0x91}));
  EXPECT_EQ(packSeptets({}), Octets{});
}

TEST(PackSeptets, FillBits_ShiftTheText) {
  EXPECT_EQ(packSeptets(ofAscii("A"), 0), (Octets{0x41}));
  EXPECT_EQ(packSeptets(ofAscii("A"), 1), (Octets{0x82}));
  EXPECT_EQ(packSeptets(ofAscii("A"), 2), (Octets{0x04, 0x01}));  // 41<<2 = 104
  EXPECT_EQ(packSeptets(ofAscii("A"), 6), (Octets{0x40, 0x10}));  // 41<<6 = 1040
}

TEST(UnpackSeptets, TheCountDecides_NotTheOctets) {
  const Octets sevenOctets{0x41, 0xE1, 0x90, 0x58, 0x34, 0x1E, 0x01};
  EXPECT_EQ(unpackSeptets(sevenOctets, 7), ofAscii("ABCDEFG"));
  Septets withAtSign = ofAscii("ABCDEFG");
  withAtSign.push_back(0);
  EXPECT_EQ(unpackSeptets(sevenOctets, 8), withAtSign);
  EXPECT_EQ(unpackSeptets(sevenOctets, 9), withAtSign);  // there is no ninth
  EXPECT_EQ(unpackSeptets({}, 5), Septets{});
  EXPECT_EQ(unpackSeptets(Octets{0x82}, 1, 1), ofAscii("A"));
}

TEST(UnpackSeptets, GivesBackWhatWasPacked) {
  std::mt19937 random(20260101);
  for (std::size_t size = 0; size <= 200; ++size) {
    for (std::size_t fill = 0; fill < 7; ++fill) {
      Septets septets(size);
      for (auto& septet : septets) septet = static_cast<std::uint8_t>(random() & 0x7F);
      const Octets packed = packSeptets(septets, fill);
      ASSERT_EQ(packed.size(), (size * 7 + fill + 7) / 8);
      ASSERT_EQ(unpackSeptets(packed, size, fill), septets) << size << " septets, " << fill << " fill bits";
    }
  }
}

TEST(FillBitsAfter, ReachTheNextSeptet) {
  // A header of h octets has 8h bits; with the fill they are a multiple of 7.
  const std::size_t expected[] = {0, 6, 5, 4, 3, 2, 1, 0, 6};
  for (std::size_t octets = 0; octets < std::size(expected); ++octets)
    EXPECT_EQ(fillBitsAfter(octets), expected[octets]) << octets;
}

}  // namespace
}  // namespace phone

#include "phone/pdu/hex.h"

#include <gtest/gtest.h>

namespace phone {
namespace {

TEST(Hex, BothWays) {
  EXPECT_EQ(toHex(Octets{0x00, 0x0A, 0xA0, 0xFF, 0x91}), "000AA0FF91");
  EXPECT_EQ(fromHex("000aA0fF91"), (Octets{0x00, 0x0A, 0xA0, 0xFF, 0x91}));
  EXPECT_EQ(toHex({}), "");
  EXPECT_EQ(fromHex(""), Octets{});
}

TEST(Hex, AnythingElse_IsRefused) {
  for (const char* text : {"0", "000", "0G", "G0", " 00", "00 ", "0x", "-1", "/0", ":0", "@0", "`0", "g0"})
    EXPECT_EQ(fromHex(text), std::nullopt) << text;
  EXPECT_EQ(fromHex(std::string_view("\xC3\xA4")), std::nullopt);
}

}  // namespace
}  // namespace phone

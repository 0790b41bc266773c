// Headers of any content (3GPP TS 23.040, 9.2.3.24).

#include "phone/pdu/user_data_header.h"

#include <random>

#include <gtest/gtest.h>

#include "unit/phone_pdu/pdu_fixture.h"

namespace phone {
namespace {

UserDataHeader header(std::string_view hex) { return readHeader(octetsOf(hex)); }
std::optional<Concatenation> concatenation(std::string_view hex) { return concatenationOf(header(hex)); }

constexpr Concatenation narrow(std::uint8_t reference, std::uint8_t total, std::uint8_t part) {
  return {.reference = reference, .wide = false, .total = total, .part = part};
}
constexpr Concatenation wide(std::uint16_t reference, std::uint8_t total, std::uint8_t part) {
  return {.reference = reference, .wide = true, .total = total, .part = part};
}

TEST(UserDataHeader, ElementsInTheirOrder) {
  const UserDataHeader read = header("00 03 2A 02 01  05 04 0B 84 23 F0  70 00");
  ASSERT_EQ(read.elements.size(), 3U);
  EXPECT_EQ(read.elements[0], (HeaderElement{.id = 0x00, .data = {0x2A, 0x02, 0x01}}));
  EXPECT_EQ(read.elements[1], (HeaderElement{.id = 0x05, .data = {0x0B, 0x84, 0x23, 0xF0}}));
  EXPECT_EQ(read.elements[2], (HeaderElement{.id = 0x70, .data = {}}));
  EXPECT_FALSE(read.malformed);
  EXPECT_EQ(writeHeader(read), octetsOf("0D 00 03 2A 02 01 05 04 0B 84 23 F0 70 00"));
  EXPECT_EQ(writeHeader({}), Octets{0});
}

TEST(UserDataHeader, ElementThatRunsOver_SpoilsAll) {
  for (const char* hex : {"00 03 2A 02 01 70", "00 03 2A 02 01 70 01", "00 03 2A 02", "00", "00 FF"}) {
    EXPECT_TRUE(header(hex).malformed) << hex;
    EXPECT_TRUE(header(hex).elements.empty()) << hex;
  }
  EXPECT_FALSE(header("").malformed);
}

TEST(Concatenation, BothWidths) {
  EXPECT_EQ(concatenation("00 03 2A 03 02"), narrow(0x2A, 3, 2));
  EXPECT_EQ(concatenation("08 04 12 34 03 02"), wide(0x1234, 3, 2));
  EXPECT_EQ(concatenation("08 04 00 2A 03 02"), wide(0x2A, 3, 2));
  EXPECT_EQ(concatenation("00 03 00 FF FF"), narrow(0, 255, 255));  // a reference of 0 is one
  EXPECT_EQ(concatenation("00 03 07 01 01"), narrow(7, 1, 1));
}

TEST(Concatenation, SenselessNumbers_MakeASingleMessage) {
  EXPECT_EQ(concatenation("00 03 2A 00 00"), std::nullopt);
  EXPECT_EQ(concatenation("00 03 2A 00 01"), std::nullopt);
  EXPECT_EQ(concatenation("00 03 2A 02 00"), std::nullopt);
  EXPECT_EQ(concatenation("00 03 2A 02 03"), std::nullopt);
  EXPECT_EQ(concatenation("08 04 00 2A 00 01"), std::nullopt);
  EXPECT_EQ(concatenation("08 04 00 2A 02 03"), std::nullopt);
}

TEST(Concatenation, WrongLength_IsNone) {
  EXPECT_EQ(concatenation("00 04 2A 02 01 00"), std::nullopt);
  EXPECT_EQ(concatenation("00 02 2A 02"), std::nullopt);
  EXPECT_EQ(concatenation("08 03 2A 02 01"), std::nullopt);
  EXPECT_EQ(concatenation("00 00"), std::nullopt);
}

TEST(Concatenation, LastOfSeveral_Counts) {
  EXPECT_EQ(concatenation("00 03 01 02 01  00 03 02 04 03"), narrow(2, 4, 3));
  EXPECT_EQ(concatenation("00 03 01 02 01  08 04 00 05 02 02"), wide(5, 2, 2));
  EXPECT_EQ(concatenation("08 04 00 05 02 02  00 03 01 02 01"), narrow(1, 2, 1));
  EXPECT_EQ(concatenation("00 03 01 02 01  00 03 02 00 03"), narrow(1, 2, 1));  // what makes no sense is not there
  EXPECT_EQ(concatenation("24 01 01  00 03 01 02 01  0A 03 00 01 10"), narrow(1, 2, 1));
}

TEST(Concatenation, AsAnElement) {
  EXPECT_EQ(elementOf(narrow(0x2A, 3, 2)), (HeaderElement{.id = 0x00, .data = {0x2A, 3, 2}}));
  EXPECT_EQ(elementOf(wide(0x1234, 3, 2)), (HeaderElement{.id = 0x08, .data = {0x12, 0x34, 3, 2}}));
}

TEST(UserDataHeader, Ports_AreRecognised) {
  EXPECT_TRUE(isForPort(header("04 02 E2 00")));
  EXPECT_TRUE(isForPort(header("00 03 01 02 01 05 04 0B 84 23 F0")));
  EXPECT_FALSE(isForPort(header("00 03 01 02 01")));
}

TEST(UserDataHeader, NationalTables_TheLastElementOfItsOwnLengthCounts) {
  const auto read = [](const char* elements) {
    return fromSeptets(Septets{0x60, escapeSeptet, 's'}, septetTablesOf(header(elements)));
  };
  EXPECT_EQ(read("00 03 01 02 01"), u"¿s");
  EXPECT_EQ(read("24 01 01"), u"¿ş");
  EXPECT_EQ(read("25 01 01"), u"çs");
  EXPECT_EQ(read("25 01 01  00 03 01 02 01  24 01 01"), u"çş");
  EXPECT_EQ(read("25 01 01  25 01 03"), u"~s");
  EXPECT_EQ(read("25 01 01  25 02 03 03  25 00"), u"çs");
}

TEST(UserDataHeader, TooLongElements_AreLeftOutOfWhatIsWritten) {
  const UserDataHeader large{
      .elements = {{.id = 1, .data = Octets(250)}, {.id = 2, .data = Octets(2)}, {.id = 3, .data = Octets(1)}}};
  const Octets written = writeHeader(large);  // 252 octets, and one of three more
  EXPECT_EQ(written.size(), 256U);
  EXPECT_EQ(written.front(), 255U);
  EXPECT_EQ(readHeader(OctetsView(written).subspan(1)).elements.size(), 2U);
  EXPECT_EQ(readHeader(OctetsView(written).subspan(1)).elements.back().id, 3);
}

TEST(UserDataHeader, AnyElements_ComeBack) {
  std::mt19937 random(11);
  for (int round = 0; round < 2000; ++round) {
    UserDataHeader any;
    std::size_t room = 255;
    while (room >= 2 && random() % 8 != 0) {
      HeaderElement element{.id = static_cast<std::uint8_t>(random()), .data = Octets(random() % (room - 1) % 40)};
      for (auto& octet : element.data) octet = static_cast<std::uint8_t>(random());
      room -= 2 + element.data.size();
      any.elements.push_back(std::move(element));
    }
    const Octets written = writeHeader(any);
    ASSERT_EQ(written.front() + 1U, written.size());
    ASSERT_EQ(readHeader(OctetsView(written).subspan(1)), any);
  }
}

}  // namespace
}  // namespace phone

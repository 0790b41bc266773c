#include "phone/text/national_language.h"

#include <string>

#include <gtest/gtest.h>

namespace {

using namespace phone;
namespace language = national_language;

std::u16string read(std::uint8_t lockingShift, std::uint8_t singleShift, const Septets& septets) {
  return fromSeptets(septets, tablesOf(lockingShift, singleShift));
}

Septets allSeptets(bool afterEscape) {
  Septets septets;
  for (std::uint8_t septet = 0; septet < 128; ++septet) {
    if (septet == escapeSeptet) continue;
    if (afterEscape) septets.push_back(escapeSeptet);
    septets.push_back(septet);
  }
  return septets;
}

TEST(NationalLanguage, Turkish_ByEscapesOrByItsMainTable) {
  EXPECT_EQ(read(language::none, language::turkish, {0x1B, 0x73, 'i', 0x1B, 0x73, 'e'}), u"şişe");
  EXPECT_EQ(read(language::none, language::turkish, {0x1B, 0x49, 'S', 0x1B, 0x47, 0x1B, 0x53, 'A'}), u"İSĞŞA");
  EXPECT_EQ(read(language::none, language::turkish, {0x1B, 0x63, 0x1B, 0x67, 0x1B, 0x69}), u"çğı");
  EXPECT_EQ(read(language::turkish, language::none, {0x40, 0x1C, 0x1D, 0x0B, 0x0C, 0x07, 0x60, 0x04}), u"İŞşĞğıç€");
}

TEST(NationalLanguage, Spanish_HasEscapesAlone) {
  EXPECT_EQ(read(language::none, language::spanish, {'P', 'e', 'r', 0x1B, 0x75}), u"Perú");
  EXPECT_EQ(read(language::none, language::spanish,
                 {0x1B, 0x41, 0x1B, 0x49, 0x1B, 0x4F, 0x1B, 0x55, 0x1B, 0x61, 0x1B, 0x69, 0x1B, 0x6F, 0x1B, 0x09}),
            u"ÁÍÓÚáíóç");
  EXPECT_EQ(read(language::spanish, language::none, allSeptets(false)), fromSeptets(allSeptets(false)));
}

TEST(NationalLanguage, Portuguese_ByEscapesOrByItsMainTable) {
  EXPECT_EQ(read(language::none, language::portuguese, {'S', 0x1B, 0x7B, 'o', ' ', 'c', 'h', 0x1B, 0x7B}), u"São chã");
  EXPECT_EQ(read(language::none, language::portuguese, {0x1B, 0x05, 0x1B, 0x1F, 0x1B, 0x7F, 0x1B, 0x61, 0x1B, 0x19}),
            u"êÊâÂΘ");
  EXPECT_EQ(read(language::portuguese, language::none, {'n', 0x7B, 'o', ',', ' ', 0x09, 0x1D, 0x0F, 0x7C}),
            u"não, çâáõ");
  EXPECT_EQ(read(language::portuguese, language::none, {0x15, 0x16, 0x17, 0x18, 0x1A, 0x24, 0x60, 0x7D}), u"∞^\\€|º~`");
}

// The main table of one language and the escapes of another go together.
TEST(NationalLanguage, TwoLanguages_EachForItsTable) {
  EXPECT_EQ(read(language::portuguese, language::turkish, {0x7B, 0x1B, 0x73, 0x1B, 0x7B}), u"ãşã")
      << "a code without a meaning behind an escape is the main table's";
}

TEST(NationalLanguage, EuroAndBrackets_AreInEveryExtension) {
  for (const std::uint8_t one : {language::none, language::turkish, language::spanish, language::portuguese})
    EXPECT_EQ(read(language::none, one, {0x1B, 0x65, 0x1B, 0x3C, 0x1B, 0x3E, 0x1B, 0x2F, 0x1B, 0x14, 0x1B, 0x0A}),
              u"€[]\\^\f");
}

TEST(NationalLanguage, UnknownLanguages_AreReadWithTheDefaultTables) {
  // Bengali, Gujarati, Hindi, Kannada, Malayalam, Oriya, Punjabi, Tamil, Telugu, Urdu; the others are reserved.
  for (const int unknown : {4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 255})
    for (const bool afterEscape : {false, true}) {
      const auto id = static_cast<std::uint8_t>(unknown);
      EXPECT_EQ(read(id, id, allSeptets(afterEscape)), fromSeptets(allSeptets(afterEscape))) << unknown;
    }
}

}  // namespace

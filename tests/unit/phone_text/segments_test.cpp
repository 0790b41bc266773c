// The alphabet of a text and where it is cut, at the edges of every length (3GPP TS 23.040, 9.2.3.24.1).

#include "phone/text/segments.h"

#include <random>

#include <gtest/gtest.h>

#include "phone/text/gsm_alphabet.h"
#include "phone/text/ucs2.h"

namespace phone {
namespace {

std::u16string many(std::size_t count, char16_t character = u'a') { return std::u16string(count, character); }

std::u16string repeated(std::size_t count, std::u16string_view text) {
  std::u16string result;
  for (std::size_t at = 0; at < count; ++at) result += text;
  return result;
}

std::vector<std::size_t> sizes(std::u16string_view text) {
  std::vector<std::size_t> result;
  for (const std::u16string_view part : segmentsOf(text).parts) result.push_back(part.size());
  return result;
}

using Sizes = std::vector<std::size_t>;

TEST(Segments, SevenBit_160AloneThen153) {
  EXPECT_EQ(sizes(u""), Sizes{0});
  EXPECT_EQ(sizes(many(1)), Sizes{1});
  EXPECT_EQ(sizes(many(160)), Sizes{160});
  EXPECT_EQ(sizes(many(161)), (Sizes{153, 8}));
  EXPECT_EQ(sizes(many(306)), (Sizes{153, 153}));
  EXPECT_EQ(sizes(many(307)), (Sizes{153, 153, 1}));
  EXPECT_EQ(sizes(many(459)), (Sizes{153, 153, 153}));
  EXPECT_EQ(sizes(many(460)), (Sizes{153, 153, 153, 1}));
}

TEST(Segments, Ucs2_70AloneThen67) {
  EXPECT_EQ(sizes(many(70, u'Ж')), Sizes{70});
  EXPECT_EQ(sizes(many(71, u'Ж')), (Sizes{67, 4}));
  EXPECT_EQ(sizes(many(134, u'Ж')), (Sizes{67, 67}));
  EXPECT_EQ(sizes(many(135, u'Ж')), (Sizes{67, 67, 1}));
}

TEST(Segments, OneForeignCharacter_MakesTheWholeTextUcs2) {
  EXPECT_EQ(segmentsOf(many(160)).alphabet, Alphabet::Gsm7);
  EXPECT_EQ(segmentsOf(many(159) + u"€").alphabet, Alphabet::Gsm7);
  EXPECT_EQ(segmentsOf(many(159) + u"ç").alphabet, Alphabet::Ucs2);
  EXPECT_EQ(sizes(many(70) + u"ç"), (Sizes{67, 4}));
}

TEST(Segments, ExtensionCharacters_TakeTwoSeptets) {
  EXPECT_EQ(sizes(repeated(80, u"€")), Sizes{80});
  EXPECT_EQ(sizes(repeated(80, u"€") + u"a"), (Sizes{76, 5}));  // 76 * 2 = 152, and a half does not go in
  EXPECT_EQ(sizes(many(158) + u"€"), Sizes{159});
  EXPECT_EQ(sizes(many(159) + u"€"), (Sizes{153, 7}));
}

TEST(Segments, ExtensionCharacterAtAPartsEnd_GoesToTheNextPart) {
  // 152 septets are taken: one is left, and the pair needs two.
  EXPECT_EQ(sizes(many(152) + u"€" + many(10)), (Sizes{152, 11}));
  // 151 are taken: the pair fits exactly.
  EXPECT_EQ(sizes(many(151) + u"€" + many(10)), (Sizes{152, 10}));
}

TEST(Segments, SurrogatePairAtAPartsEnd_GoesToTheNextPart) {
  EXPECT_EQ(sizes(many(66, u'Ж') + u"\U0001F600" + many(5, u'Ж')), (Sizes{66, 7}));
  EXPECT_EQ(sizes(many(65, u'Ж') + u"\U0001F600" + many(5, u'Ж')), (Sizes{67, 5}));
  EXPECT_EQ(sizes(repeated(35, u"\U0001F600")), Sizes{70});
  EXPECT_EQ(sizes(repeated(36, u"\U0001F600")), (Sizes{66, 6}));  // 33 pairs
}

TEST(Segments, HalfASurrogatePair_IsAUnitOfItsOwn) {
  const std::u16string high(1, static_cast<char16_t>(0xD83D));
  EXPECT_EQ(sizes(repeated(71, high)), (Sizes{67, 4}));
}

TEST(Segments, 255Parts_AreTheMost) {
  EXPECT_EQ(segmentsOf(many(255 * 153)).parts.size(), 255U);
  EXPECT_THROW(segmentsOf(many(255 * 153 + 1)), TextTooLong);
  EXPECT_EQ(segmentsOf(many(255 * 67, u'Ж')).parts.size(), 255U);
  EXPECT_THROW(segmentsOf(many(255 * 67 + 1, u'Ж')), TextTooLong);
  // Characters that do not fill their parts take more of them.
  EXPECT_EQ(segmentsOf(repeated(255 * 76, u"€")).parts.size(), 255U);
  EXPECT_THROW(segmentsOf(repeated(255 * 76 + 1, u"€")), TextTooLong);
}

// Any text: its parts are the text, none is larger than a part may be, none is smaller than the next character allows,
// and no pair is cut.
TEST(Segments, AnyText_IsCutOnlyWhereItMayBe) {
  constexpr std::u16string_view narrow = u"abc @£€[]{}~^|\\\f\r\nØå";
  // The last two make pairs and halves at random.
  constexpr char16_t wide[] = {u'a', u'Ж', u'中', u'€', 0xD83D, 0xDE00};
  std::mt19937 random(4711);
  for (int round = 0; round < 2000; ++round) {
    const std::u16string_view letters = round % 2 ? narrow : std::u16string_view(wide, std::size(wide));
    std::u16string text;
    const std::size_t length = random() % 700;
    while (text.size() < length) text += letters[random() % letters.size()];
    const Segments segments = segmentsOf(text);
    std::u16string joined;
    for (std::size_t at = 0; at < segments.parts.size(); ++at) {
      const std::u16string_view part = segments.parts[at];
      const bool septets = segments.alphabet == Alphabet::Gsm7;
      const std::size_t size = septets ? septetCount(part) : part.size();
      const std::size_t capacity = segments.parts.size() == 1 ? (septets ? 160 : 70) : (septets ? 153 : 67);
      ASSERT_LE(size, capacity);
      joined += part;
      if (at + 1 == segments.parts.size()) break;
      const std::u16string_view next = segments.parts[at + 1];
      ASSERT_FALSE(next.empty());
      ASSERT_GE(size, capacity - 1);
      if (septets) {
        ASSERT_TRUE(size == capacity || septetsOf(next.front()) == 2U);
      } else {
        ASSERT_FALSE(isHighSurrogate(part.back()) && isLowSurrogate(next.front()));
        ASSERT_TRUE(size == capacity || (isHighSurrogate(next[0]) && isLowSurrogate(next[1])));
      }
    }
    ASSERT_EQ(joined, text);
  }
}

}  // namespace
}  // namespace phone

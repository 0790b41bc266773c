// Characters and messages of a text.
#include "mailclient/view/message_parts.h"

#include <gtest/gtest.h>

namespace mailclient {
namespace {

String repeated(StringView text, std::size_t times) {
  String all;
  for (std::size_t i = 0; i < times; ++i) all += text;
  return all;
}

void expectCount(StringView text, const PartCount& expected) {
  const PartCount count = countParts(text);
  EXPECT_EQ(count, expected) << "of " << text.size() << " units: " << count.characters << " characters, " << count.parts
                             << " parts, " << count.left << " left, default " << count.defaultAlphabet;
}

TEST(MessagePartsTest, DefaultAlphabet_160FitOne_ThenEachPartHolds153) {
  expectCount(u"", {true, 0, 1, 160});
  expectCount(repeated(u"a", 160), {true, 160, 1, 0});
  expectCount(repeated(u"a", 161), {true, 161, 2, 145});
  expectCount(repeated(u"a", 306), {true, 306, 2, 0});
  expectCount(repeated(u"a", 307), {true, 307, 3, 152});
}

TEST(MessagePartsTest, OtherCharacters_70FitOne_ThenEachPartHolds67) {
  expectCount(repeated(u"ж", 70), {false, 70, 1, 0});
  expectCount(repeated(u"ж", 71), {false, 71, 2, 63});
  expectCount(repeated(u"ж", 134), {false, 134, 2, 0});
  expectCount(repeated(u"ж", 135), {false, 135, 3, 66});
}

TEST(MessagePartsTest, OneCharacterOutsideTheDefaultAlphabet_ChangesItForAll) {
  expectCount(repeated(u"a", 70) + u"ж", {false, 71, 2, 63});
  expectCount(u"`", {false, 1, 1, 69});
}

TEST(MessagePartsTest, LettersOfTheDefaultAlphabet_CountOnce) {
  expectCount(u"@£$¥èéùìòÇØøÅåÆæßÉÄÖÑÜ§äöñüà¿¡ΔΦΓΛΩΠΨΣΘΞ", {true, 40, 1, 120});
  expectCount(u"\r\n", {true, 2, 1, 158});
}

TEST(MessagePartsTest, CharactersBehindAnEscape_CountTwice) {
  expectCount(u"€", {true, 2, 1, 158});
  expectCount(u"^{}\\[~]|", {true, 16, 1, 144});
}

// 152 letters leave one place in the first part: the two of the euro sign go into the second.
TEST(MessagePartsTest, EscapedCharacter_IsNeverCut) {
  expectCount(repeated(u"a", 152) + u"€" + repeated(u"a", 10), {true, 164, 2, 141});
}

TEST(MessagePartsTest, SurrogatePair_IsNeverCut) {
  expectCount(u"\U0001F600", {false, 2, 1, 68});
  expectCount(repeated(u"ж", 66) + u"\U0001F600" + u"жжжж", {false, 72, 2, 61});
}

TEST(MessagePartsTest, LoneSurrogate_CountsOnce) {
  const String lone(1, char16_t{0xD83D});
  expectCount(lone, {false, 1, 1, 69});
}

TEST(MessagePartsTest, Described_InTheSingularAndThePlural) {
  EXPECT_EQ(describe(countParts(u"a")), u"1 character, 1 message (159 left)");
  EXPECT_EQ(describe(countParts(repeated(u"a", 161))), u"161 characters, 2 messages (145 left)");
}

}  // namespace
}  // namespace mailclient

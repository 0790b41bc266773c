// Delimited text: where items end, what is dropped, and what ends the text.

#include "addin/common/basdelimited.h"

#include <gtest/gtest.h>

namespace addin {
namespace {

using Items = std::vector<std::string>;

// The items, which must not depend on how the text is cut into pieces.
Items itemsOf(std::string_view text) {
  Items first;
  for (std::size_t pieceSize = 1; pieceSize <= text.size() + 1; ++pieceSize) {
    Items items;
    DelimitedText reader([&](const std::string& item) { items.push_back(item); });
    for (std::size_t at = 0; at < text.size(); at += pieceSize)
      if (!reader.add(text.substr(at, pieceSize))) break;
    reader.end();
    reader.end();  // once is enough
    if (pieceSize == 1) first = items;
    EXPECT_EQ(items, first) << "in pieces of " << pieceSize;
  }
  return first;
}

TEST(DelimitedText, OneItemPerLine_WithEveryLineEnd) {
  const Items expected{"One (+1)", "Two (+2)", "Three (+3)"};
  EXPECT_EQ(itemsOf("One (+1)\r\nTwo (+2)\r\nThree (+3)\r\n"), expected);
  EXPECT_EQ(itemsOf("One (+1)\nTwo (+2)\nThree (+3)\n"), expected);
  EXPECT_EQ(itemsOf("One (+1)\rTwo (+2)\rThree (+3)\r"), expected);
  EXPECT_EQ(itemsOf("One (+1)\r\nTwo (+2)\rThree (+3)"), expected);
}

TEST(DelimitedText, Comma_EndsAnItem) {
  EXPECT_EQ(itemsOf("a,b\nc"), (Items{"a", "b", "c"}));
  EXPECT_EQ(itemsOf("a,,b"), (Items{"a", "", "b"}));
  EXPECT_EQ(itemsOf(",a"), (Items{"", "a"}));
  EXPECT_EQ(itemsOf("a,"), (Items{"a"}));
  EXPECT_EQ(itemsOf("a,\nb"), (Items{"a", "", "b"}));
}

TEST(DelimitedText, Quotes_KeepCommasBlanksAndLineEndsAndAreRemoved) {
  EXPECT_EQ(itemsOf("\"North, South (+1)\"\r\nplain\r\n"), (Items{"North, South (+1)", "plain"}));
  EXPECT_EQ(itemsOf("\"  a  \",b"), (Items{"  a  ", "b"}));
  EXPECT_EQ(itemsOf("\"a\r\nb\"\nc"), (Items{"a\r\nb", "c"}));
  EXPECT_EQ(itemsOf("\"\"\na"), (Items{"", "a"}));
  EXPECT_EQ(itemsOf("  \"a,b\"  , c"), (Items{"a,b", "c"}));
  EXPECT_EQ(itemsOf("\"a\",\"b\"\r\n\"c\""), (Items{"a", "b", "c"}));
}

TEST(DelimitedText, QuoteInsideAnItem_IsACharacter) {
  EXPECT_EQ(itemsOf("say \"hi\", then"), (Items{"say \"hi\"", "then"}));
}

TEST(DelimitedText, QuoteThatIsNeverClosed_GoesToTheEnd) {
  EXPECT_EQ(itemsOf("a\n\"b,c\nd"), (Items{"a", "b,c\nd"}));
  EXPECT_EQ(itemsOf("a\n\""), (Items{"a", ""}));
}

TEST(DelimitedText, TextBehindAClosingQuote_IsAnItemOfItsOwn) {
  EXPECT_EQ(itemsOf("\"a\" b,c"), (Items{"a", "b", "c"}));
  EXPECT_EQ(itemsOf("\"a\"\"b\",c"), (Items{"a", "b", "c"}));
}

TEST(DelimitedText, LeadingBlanks_AreDroppedAndTrailingOnesKept) {
  EXPECT_EQ(itemsOf("  a b  \n c"), (Items{"a b  ", "c"}));
}

TEST(DelimitedText, BlankLine_IsAnEmptyItemAndAFinalLineEndIsNone) {
  EXPECT_EQ(itemsOf("a\r\n\r\nb\r\n"), (Items{"a", "", "b"}));
  EXPECT_EQ(itemsOf("a\n\nb\n"), (Items{"a", "", "b"}));
  EXPECT_EQ(itemsOf("a\r\rb"), (Items{"a", "", "b"}));
  EXPECT_EQ(itemsOf("\r\na"), (Items{"", "a"}));
  EXPECT_EQ(itemsOf("a\n\n"), (Items{"a", ""}));
  EXPECT_EQ(itemsOf("a\n   \nb"), (Items{"a", "", "b"}));
  EXPECT_EQ(itemsOf("a\n  "), (Items{"a", ""}));
  EXPECT_EQ(itemsOf("\n"), (Items{""}));
}

TEST(DelimitedText, Nothing_IsNoItem) { EXPECT_EQ(itemsOf(""), Items{}); }

TEST(DelimitedText, Code26_EndsTheText) {
  EXPECT_EQ(itemsOf("a\nb\x1A\nc"), (Items{"a", "b"}));
  EXPECT_EQ(itemsOf("a\n\x1A"), (Items{"a"}));
  EXPECT_EQ(itemsOf("\"a,\x1A b\""), (Items{"a,"}));
  EXPECT_EQ(itemsOf("\x1A"), Items{});
  DelimitedText reader([](const std::string&) {});
  EXPECT_TRUE(reader.add("a"));
  EXPECT_FALSE(reader.add("b\x1A"));
  EXPECT_FALSE(reader.add("c"));
}

TEST(DelimitedText, AnyByte_IsAnOrdinaryCharacter) {
  EXPECT_EQ(itemsOf(std::string_view("\0\x01\xFF\t,\x7F", 6)), (Items{std::string("\0\x01\xFF\t", 4), "\x7F"}));
}

}  // namespace
}  // namespace addin

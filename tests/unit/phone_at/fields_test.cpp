#include "phone/at/fields.h"

#include <gtest/gtest.h>

namespace {

using phone::at::Field;
using phone::at::fieldsOf;
using phone::at::wordsOf;
using Fields = std::vector<Field>;
using Words = std::vector<std::string>;

TEST(AtFields, NumbersTextsAndMissingFields_KeepTheirPlaces) {
  EXPECT_EQ(fieldsOf("3, 1,,24"), (Fields{{"3"}, {"1"}, {""}, {"24"}}));
  EXPECT_EQ(fieldsOf("\"SM\",5,20"), (Fields{{"SM", true}, {"5"}, {"20"}}));
  EXPECT_EQ(fieldsOf(""), (Fields{{""}}));
}

TEST(AtFields, CommaInsideQuotesOrBrackets_SeparatesNothing) {
  EXPECT_EQ(fieldsOf("1,\"Smith, John\",(0,1),7"), (Fields{{"1"}, {"Smith, John", true}, {"(0,1)"}, {"7"}}));
  EXPECT_EQ(fieldsOf("((\"a\",\"b\"),1),2"), (Fields{{"((\"a\",\"b\"),1)"}, {"2"}}));
}

TEST(AtFields, WhatIsNotClosed_EndsWithTheLine) {
  EXPECT_EQ(fieldsOf("\"SM"), (Fields{{"SM", true}}));
  EXPECT_EQ(fieldsOf("(0,1"), (Fields{{"(0,1"}}));
  EXPECT_EQ(fieldsOf("1),2"), (Fields{{"1)"}, {"2"}}));
  EXPECT_EQ(fieldsOf("\""), (Fields{{"", true}}));
}

TEST(AtFields, Number_IsWholeAndNotQuoted) {
  EXPECT_EQ((Field{"12"}.number()), 12);
  EXPECT_EQ((Field{"12", true}.number()), std::nullopt);
  EXPECT_EQ(Field{""}.number(), std::nullopt);
  EXPECT_EQ(Field{"1x"}.number(), std::nullopt);
}

TEST(AtFields, WordsOfAList_AreFoundAtAnyDepth) {
  EXPECT_EQ(wordsOf("(\"SM\",\"ME\")"), (Words{"SM", "ME"}));
  EXPECT_EQ(wordsOf("((\"SM\"),(\"ME\"))"), (Words{"SM", "ME"}));
  EXPECT_EQ(wordsOf("(SM,ME)"), (Words{"SM", "ME"}));
  EXPECT_EQ(wordsOf("()"), Words());
  EXPECT_EQ(wordsOf("\"SM"), Words{"SM"});
}

}  // namespace

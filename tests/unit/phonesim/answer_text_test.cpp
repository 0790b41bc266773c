#include "phonesim/handset/answer_text.h"

#include <random>

#include <gtest/gtest.h>

namespace phonesim {
namespace {

// Mostly of what codes are made of: chance would hardly ever put one together from all octets.
TEST(AnswerText, QuotedText_ComesBackWhateverItIs) {
  constexpr std::string_view octets = "\\\\\\0125CDdAac\"\"\r\nx\xE5\x01";
  std::mt19937 random(7);
  std::uniform_int_distribution<std::size_t> length(0, 12), which(0, octets.size() - 1);
  for (int i = 0; i < 20000; ++i) {
    std::string text;
    for (std::size_t rest = length(random); rest > 0; --rest) text += octets[which(random)];
    const std::string constant = stringConstant(text);
    ASSERT_GE(constant.size(), 2U);
    const std::string between = constant.substr(1, constant.size() - 2);
    EXPECT_EQ(between.find_first_of("\"\r\n"), std::string::npos) << constant;
    EXPECT_EQ(fromConstant(between), text);
  }
}

TEST(AnswerText, NoNumber_IsAnEmptyOne) { EXPECT_EQ(numberAndType(std::nullopt, CharacterSet::Ucs2), "\"\",129"); }

TEST(AnswerText, Time_TellsQuartersOfAnHourWithTheirSign) {
  EXPECT_EQ(quotedTime({2026, 2, 3, 4, 5, 6, -14}), "\"26/02/03,04:05:06-14\"");
  EXPECT_EQ(quotedTime({2026, 2, 3, 4, 5, 6, std::nullopt}), "\"26/02/03,04:05:06+00\"");
}

}  // namespace
}  // namespace phonesim

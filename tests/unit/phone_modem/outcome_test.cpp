#include "phone/modem/outcome.h"

#include <gtest/gtest.h>

#include "addin/platform/sms_objectlib.h"
#include "servers/handset/phone.h"

namespace {

using phone::Outcome;
using phone::resultCode;
using Kind = Outcome::Kind;
using Error = phone::at::Result;

std::uint32_t codeOf(const Outcome& outcome) { return static_cast<std::uint32_t>(resultCode(outcome)); }

TEST(Outcome, CodesThatTheAddInKnows_AreItsOwn) {
  EXPECT_EQ(resultCode({}), platform::sms_objectlib::resultSuccess);
  EXPECT_EQ(resultCode({Kind::Empty}), platform::sms_objectlib::resultEmptySlot);
  EXPECT_EQ(resultCode({Kind::Empty}), handset::emptySlot);
  EXPECT_EQ(resultCode({Kind::NoMemory}), handset::invalidStore);
}

TEST(Outcome, FailuresWithoutANumber_HaveCodesOfTheirOwn) {
  EXPECT_EQ(codeOf({Kind::BadNumber}), 0x888800CAu);
  EXPECT_EQ(codeOf({Kind::TooLong}), 0x888800CBu);
  EXPECT_EQ(codeOf({Kind::Refused, {Error::Kind::Error, 0, "ERROR"}}), 0x888800D0u);
  EXPECT_EQ(codeOf({Kind::NoAnswer}), 0x888800D1u);
  EXPECT_EQ(codeOf({Kind::Unknown}), 0x888800D2u);
}

TEST(Outcome, ErrorNumbers_AreKept) {
  EXPECT_EQ(codeOf({Kind::Refused, {Error::Kind::CmsError, 331, {}}}), 0x8888114Bu);
  EXPECT_EQ(codeOf({Kind::Refused, {Error::Kind::CmeError, 20, {}}}), 0x88882014u);
  EXPECT_EQ(codeOf({Kind::Refused, {Error::Kind::CmsError, phone::at::unknownWords, {}}}), 0x88881FFFu);
  EXPECT_EQ(codeOf({Kind::Refused, {Error::Kind::CmeError, 70000, {}}}), 0x88882FFFu);
}

TEST(Outcome, NoResult_IsNoAnswer) {
  EXPECT_EQ(phone::outcomeOf(std::nullopt), Outcome{Kind::NoAnswer});
  EXPECT_EQ(phone::outcomeOf(Error{}), Outcome());
}

}  // namespace

// Whether the SIM card is full: isSimFull.
#include "unit/sms/receiving_fixture.h"

namespace sms_tests {
namespace {

class IsSimFull : public ReceivingFixture {
 protected:
  void capacity(std::int16_t n) {
    sms->method(u"StorageCapacity", [n](Args) -> Variant { return n; });
  }
  void used(std::int16_t n) {
    sms->method(u"StorageUsed", [n](Args) -> Variant { return n; });
  }
};

const Lines notCompared{
    "m_maxSimCapacity is less or equal than zero (error code) - do not compare it with m_usedSimMemory"};
const Lines compared{"m_maxSimCapacity is larger than zero - compare it with m_usedSimMemory"};

TEST_F(IsSimFull, LessUsedThanCapacity_Is0) {
  used(9);
  EXPECT_EQ(handler().isSimFull(), 0);
  EXPECT_EQ(trace(), joined({{"Inside Function isSimFull", "Max SIM Capacity = 10", "Used SIM Memory = 9"},
                             compared,
                             {"UsedMemory is less than SimCapacity", "isSimFull=0"}}));
  EXPECT_EQ(sms->calls(), (Lines{"StorageCapacity(2)", "StorageUsed(2)"}));
  EXPECT_EQ(probe().maxSimCapacity(), 10);
  EXPECT_EQ(probe().usedSimMemory(), 9);
}

TEST_F(IsSimFull, AsMuchUsedAsCapacity_Is1) {
  used(10);
  EXPECT_EQ(handler().isSimFull(), 1);
  EXPECT_EQ(trace(), joined({{"Inside Function isSimFull", "Max SIM Capacity = 10", "Used SIM Memory = 10"},
                             compared,
                             {"isSimFull=1"}}));
}

TEST_F(IsSimFull, MoreUsedThanCapacity_Is1) {
  used(11);
  EXPECT_EQ(handler().isSimFull(), 1);
}

TEST_F(IsSimFull, SecondTime_AsksForTheUsedCountOnly) {
  handler().isSimFull();
  clear();
  capacity(3);
  EXPECT_EQ(handler().isSimFull(), 0);
  EXPECT_EQ(trace(), joined({{"Inside Function isSimFull", "Used SIM Memory = 0"},
                             compared,
                             {"UsedMemory is less than SimCapacity", "isSimFull=0"}}));
  EXPECT_EQ(sms->calls(), Lines{"StorageUsed(2)"});
}

TEST_F(IsSimFull, CapacityOf0OrAnErrorCode_Is0) {
  for (const std::int16_t code : {std::int16_t{0}, std::int16_t{-1}, std::int16_t{-32768}}) {
    probe().maxSimCapacity() = -1;
    capacity(code);
    used(5);
    clear();
    EXPECT_EQ(handler().isSimFull(), 0);
    EXPECT_EQ(trace(),
              joined({{"Inside Function isSimFull", "Max SIM Capacity = " + number(code), "Used SIM Memory = 5"},
                      notCompared,
                      {"isSimFull=0"}}));
  }
}

TEST_F(IsSimFull, CapacityOfMinus1_IsAskedForAgain) {
  capacity(-1);
  handler().isSimFull();
  capacity(10);
  used(10);
  EXPECT_EQ(handler().isSimFull(), 1);
}

TEST_F(IsSimFull, CapacityOf0_IsNotAskedForAgain) {
  capacity(0);
  handler().isSimFull();
  capacity(10);
  used(10);
  EXPECT_EQ(handler().isSimFull(), 0);
}

// Once known, the capacity is kept for the life of the engine, another phone or not.
TEST_F(IsSimFull, AnotherPhone_IsAskedForTheUsedCountOnly) {
  EXPECT_EQ(handler().isSimFull(), 0);
  notifyConnected(0, phone->object());
  const auto otherSms = newSmsObject("OtherSMS");
  otherSms->method(u"StorageCapacity", [](Args) -> Variant { return std::int16_t{3}; });
  otherSms->method(u"StorageUsed", [](Args) -> Variant { return std::int16_t{5}; });
  const auto other = newPhone("OtherPhone", true, otherSms->object());
  notifyConnected(1, other->object());
  clear();
  EXPECT_EQ(handler().isSimFull(), 0) << "5 of the first one's 10";
  EXPECT_EQ(trace(), joined({{"Inside Function isSimFull", "Used SIM Memory = 5"},
                             compared,
                             {"UsedMemory is less than SimCapacity", "isSimFull=0"}}));
  EXPECT_EQ(otherSms->calls(), (Lines{"connect", "StorageUsed(2)"}));
  EXPECT_EQ(sms->calls(), Lines{});
}

TEST_F(IsSimFull, WithoutAnSmsObject_IsMinus1) {
  probe().sms() = nullptr;
  EXPECT_EQ(handler().isSimFull(), -1);
  EXPECT_EQ(trace(), (Lines{"Inside Function isSimFull", "isSimFull=-1"}));
}

TEST_F(IsSimFull, PhoneThatDoesNotAnswer_IsMinus1) {
  sms->fails(u"StorageUsed", 70);
  EXPECT_EQ(handler().isSimFull(), -1);
  EXPECT_EQ(trace(),
            (Lines{"Inside Function isSimFull", "Max SIM Capacity = 10", "Error:70, Permission denied, mrktxtmsg"}));
  sms->fails(u"StorageCapacity", 70);
  probe().maxSimCapacity() = -1;
  clear();
  EXPECT_EQ(handler().isSimFull(), -1);
  EXPECT_EQ(trace(), (Lines{"Inside Function isSimFull", "Error:70, Permission denied, mrktxtmsg"}));
}

}  // namespace
}  // namespace sms_tests

#include "servers/dvmworker/idleness.h"

#include <gtest/gtest.h>

namespace {

using servers::dvmworker::Idleness;

// At which of the next looks it is time; 0 when not within `most`.
int endsAt(Idleness& idleness, bool isSending, int most = 2000) {
  for (int look = 1; look <= most; ++look)
    if (idleness.look(false, isSending)) return look;
  return 0;
}

TEST(IdlenessTest, WithoutClients_EndsAfterAFewLooks) {
  Idleness idleness;
  EXPECT_EQ(endsAt(idleness, false), 4);
}

TEST(IdlenessTest, Client_BeginsTheCountAnew) {
  Idleness idleness;
  EXPECT_EQ(endsAt(idleness, false, 3), 0);
  EXPECT_FALSE(idleness.look(true, false));
  EXPECT_EQ(endsAt(idleness, false), 4);
}

TEST(IdlenessTest, MessageOnItsWay_IsWaitedForAndThenItIsTime) {
  Idleness idleness;
  EXPECT_EQ(endsAt(idleness, true, 60), 0);
  EXPECT_EQ(endsAt(idleness, false), 1);
}

TEST(IdlenessTest, MessageOnItsWayAndAClient_NeverEnds) {
  Idleness idleness;
  for (int look = 0; look < 2000; ++look) ASSERT_FALSE(idleness.look(true, true));
}

TEST(IdlenessTest, MessageWithoutAnOutcome_IsNotWaitedForForEver) {
  Idleness idleness;
  EXPECT_EQ(endsAt(idleness, true), 600);
}

}  // namespace

#include "addin/settings/modwinversion.h"

#include <gtest/gtest.h>

#include "support/native_system.h"

namespace addin {
namespace {

TEST(IsWindowsNT, IsPlatformTwoAndNoOther) {
  testing_support::NativeSystem system;
  for (const std::int32_t platform : {0, 1, 2, 3}) {
    system.shell.platform = platform;
    EXPECT_EQ(IsWindowsNT(), platform == 2) << platform;
  }
}

}  // namespace
}  // namespace addin

// What the tests of the bridge share: COM on this thread, real calls where an object of ours would be recognised, and
// proof that every object and every outside reference is gone at the end.
#pragma once

#include <gtest/gtest.h>

#include "com/bridge.h"

namespace bridge_test {

// Everything is done and looked at in constructor and destructor, around the life of the test's own members.
class BridgeTest : public testing::Test {
 protected:
  BridgeTest() {
    EXPECT_TRUE(SUCCEEDED(CoInitialize(nullptr)));
    com::recogniseOwn = false;
  }
  ~BridgeTest() override {
    com::recogniseOwn = true;
    com::opaqueConverter = nullptr;
    EXPECT_EQ(platform::Counted::census, census_) << "objects of ours are left";
    EXPECT_EQ(com::liveExports(), exports_) << "outside references are left";
    CoUninitialize();
  }

 private:
  std::int32_t census_ = platform::Counted::census;
  LONG exports_ = com::liveExports();
};

// The object, seen from outside through its IDispatch.
inline platform::Object throughCom(const platform::Object& object) { return com::import(com::exported(object).get()); }

inline ULONG referencesOf(IUnknown& unknown) {
  unknown.AddRef();
  return unknown.Release();
}

}  // namespace bridge_test

// Classes that are created from outside, in process and as a local server does it.
#include "com/class_factory.h"

#include <gtest/gtest.h>

#include "addin/platform/object.h"
#include "com/lasting_interfaces.h"

namespace {

using platform::Guid;
using platform::LateBound;
using platform::Member;
using platform::readOnly;

constexpr Guid clsidGood{0x5A0E6F11, 0x1D0B, 0x4B52, {0x9D, 0x10, 0x6E, 0x4C, 0x22, 0x8B, 0x31, 0x01}};
constexpr Guid clsidBad{0x5A0E6F11, 0x1D0B, 0x4B52, {0x9D, 0x10, 0x6E, 0x4C, 0x22, 0x8B, 0x31, 0x02}};
constexpr Guid clsidNone{0x5A0E6F11, 0x1D0B, 0x4B52, {0x9D, 0x10, 0x6E, 0x4C, 0x22, 0x8B, 0x31, 0x03}};

class Clerk final : public platform::NativeObject {
 public:
  std::span<const Member> members() const override {
    static constexpr Member table[] = {readOnly<&Clerk::answer>(u"Answer", 1)};
    return table;
  }
  std::int32_t answer = 42;
};

platform::Ref<Clerk> makeClerk() { return platform::make<Clerk>(); }
com::Ptr<IUnknown> refuse() { platform::raiseError(70); }

constexpr com::Class classes[] = {com::nativeClass<&makeClerk>(clsidGood), {clsidBad, &refuse}};

int timesEmpty = 0;

class ClassFactory : public testing::Test {
 protected:
  ClassFactory() { EXPECT_TRUE(SUCCEEDED(CoInitialize(nullptr))); }
  ~ClassFactory() override {
    EXPECT_EQ(platform::Counted::census, 0);
    EXPECT_EQ(com::liveExports(), 0);
    EXPECT_EQ(com::canUnloadNow(), S_OK);
    CoUninitialize();
  }

  com::Ptr<IClassFactory> factoryOf(const Guid& clsid) {
    com::Ptr<IClassFactory> factory;
    EXPECT_EQ(com::getClassObject(classes, com::iidOf(clsid), IID_IClassFactory, factory.putVoid()), S_OK);
    return factory;
  }
};

TEST_F(ClassFactory, CreatesObjects_EachANewOne) {
  const auto factory = factoryOf(clsidGood);
  com::Ptr<IDispatch> first;
  com::Ptr<IDispatch> second;
  ASSERT_EQ(factory->CreateInstance(nullptr, IID_IDispatch, first.putVoid()), S_OK);
  ASSERT_EQ(factory->CreateInstance(nullptr, IID_IDispatch, second.putVoid()), S_OK);
  EXPECT_NE(first, second);
  EXPECT_EQ(LateBound(com::import(first.get())).get<std::int32_t>(u"Answer"), 42);
}

TEST_F(ClassFactory, ObjectsFactoriesAndLocks_KeepTheModule) {
  EXPECT_EQ(com::canUnloadNow(), S_OK);
  auto factory = factoryOf(clsidGood);
  EXPECT_EQ(com::canUnloadNow(), S_FALSE);
  EXPECT_EQ(factory->LockServer(TRUE), S_OK);
  com::Ptr<IUnknown> object;
  ASSERT_EQ(factory->CreateInstance(nullptr, IID_IUnknown, object.putVoid()), S_OK);
  factory = nullptr;
  EXPECT_EQ(com::liveExports(), 2);
  object = nullptr;
  EXPECT_EQ(com::canUnloadNow(), S_FALSE) << "locked";
  EXPECT_EQ(factoryOf(clsidGood)->LockServer(FALSE), S_OK);
  EXPECT_EQ(com::canUnloadNow(), S_OK);
}

TEST_F(ClassFactory, LastingInterfaces_AreKept_AndKeepNeitherTheModuleNorTheServer) {
  timesEmpty = 0;
  com::LiveExport::whenNoneIsLeft = [] { ++timesEmpty; };
  {
    const com::LastingInterfaces lasting;
    EXPECT_EQ(lasting.count(), 6);
    EXPECT_EQ(com::canUnloadNow(), S_OK);
    const com::RunningClass running(classes[0]);
    com::Ptr<IDispatch> object;
    ASSERT_EQ(CoCreateInstance(com::iidOf(clsidGood), nullptr, CLSCTX_LOCAL_SERVER, IID_IDispatch, object.putVoid()),
              S_OK);
    object = nullptr;
    EXPECT_EQ(timesEmpty, 1);
  }
  com::LiveExport::whenNoneIsLeft = nullptr;
}

TEST_F(ClassFactory, Failures_AreResults) {
  void* result = &result;
  EXPECT_EQ(com::getClassObject(classes, com::iidOf(clsidNone), IID_IClassFactory, &result), CLASS_E_CLASSNOTAVAILABLE);
  EXPECT_EQ(result, nullptr);
  EXPECT_EQ(com::getClassObject(classes, com::iidOf(clsidGood), IID_IDispatch, &result), E_NOINTERFACE);
  EXPECT_EQ(com::getClassObject(classes, com::iidOf(clsidGood), IID_IClassFactory, nullptr), E_POINTER);

  const auto bad = factoryOf(clsidBad);
  result = &result;
  EXPECT_EQ(bad->CreateInstance(nullptr, IID_IUnknown, &result), static_cast<HRESULT>(0x800A0046));
  EXPECT_EQ(result, nullptr);

  const auto good = factoryOf(clsidGood);
  EXPECT_EQ(good->CreateInstance(good.get(), IID_IUnknown, &result), CLASS_E_NOAGGREGATION);
  EXPECT_EQ(good->CreateInstance(nullptr, IID_IMalloc, &result), E_NOINTERFACE);
  EXPECT_EQ(good->CreateInstance(nullptr, IID_IUnknown, nullptr), E_POINTER);
}

TEST_F(ClassFactory, RunningClass_CanBeCreated_DoesNotKeepTheServer_AndEndsWithItsObject) {
  timesEmpty = 0;
  com::LiveExport::whenNoneIsLeft = [] { ++timesEmpty; };
  const CLSID clsid = com::iidOf(clsidGood);
  {
    const com::RunningClass running(classes[0]);
    EXPECT_EQ(com::liveExports(), 0);
    EXPECT_EQ(timesEmpty, 0);
    com::Ptr<IDispatch> object;
    ASSERT_EQ(CoCreateInstance(clsid, nullptr, CLSCTX_LOCAL_SERVER, IID_IDispatch, object.putVoid()), S_OK);
    EXPECT_EQ(LateBound(com::import(object.get())).get<std::int32_t>(u"Answer"), 42);
    EXPECT_EQ(timesEmpty, 0);
    object = nullptr;
    EXPECT_EQ(timesEmpty, 1);
  }
  com::Ptr<IDispatch> object;
  EXPECT_NE(CoCreateInstance(clsid, nullptr, CLSCTX_LOCAL_SERVER, IID_IDispatch, object.putVoid()), S_OK);
  com::LiveExport::whenNoneIsLeft = nullptr;
}

}  // namespace

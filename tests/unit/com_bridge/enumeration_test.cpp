// Collections walked across the border.
#include "addin/platform/object.h"
#include "bridge_fixture.h"
#include "gadget.h"
#include "support/errors.h"

namespace bridge_test {
namespace {

using platform::make;
using platform::Object;
using platform::Variant;
using testing_support::errorNumberOf;

class Enumeration : public BridgeTest {
 protected:
  Enumeration() { gadget_->count = 5; }
  ~Enumeration() override { Numbers::failAt = -1; }

  com::Ptr<IEnumVARIANT> walk() {
    DISPPARAMS none{};
    com::OwnedVariant result;
    EXPECT_EQ(com::exported(gadget_->object())
                  ->Invoke(DISPID_NEWENUM, IID_NULL, 0, DISPATCH_PROPERTYGET | DISPATCH_METHOD, &none, &result.get(),
                           nullptr, nullptr),
              S_OK);
    EXPECT_EQ(result.get().vt, VT_UNKNOWN);
    return com::Ptr<IUnknown>(result.get().punkVal).as<IEnumVARIANT>();
  }

  platform::Ref<Gadget> gadget_ = make<Gadget>();
};

TEST_F(Enumeration, GivesEveryElementInOrder) {
  const auto elements = throughCom(gadget_->object()).enumerate();
  Variant element;
  for (std::int32_t expected = 1; expected <= 5; ++expected) {
    ASSERT_TRUE(elements->next(element));
    EXPECT_EQ(element, Variant(expected));
  }
  EXPECT_FALSE(elements->next(element));
  EXPECT_FALSE(elements->next(element));
}

TEST_F(Enumeration, OfAnEmptyCollection_EndsAtOnce) {
  gadget_->count = 0;
  Variant element;
  EXPECT_FALSE(throughCom(gadget_->object()).enumerate()->next(element));
}

TEST_F(Enumeration, OfNoCollection_IsError438) {
  gadget_->count = -1;
  EXPECT_EQ(errorNumberOf([&] { throughCom(gadget_->object()).enumerate(); }), 438);
}

TEST_F(Enumeration, OutlivesTheObjectReference) {
  const auto elements = throughCom(gadget_->object()).enumerate();
  gadget_ = nullptr;
  Variant element;
  EXPECT_TRUE(elements->next(element));
}

TEST_F(Enumeration, FailureInTheMiddle_IsTheCallersError) {
  Numbers::failAt = 2;
  const auto elements = throughCom(gadget_->object()).enumerate();
  Variant element;
  EXPECT_TRUE(elements->next(element));
  EXPECT_TRUE(elements->next(element));
  EXPECT_EQ(errorNumberOf([&] { elements->next(element); }), 70);
}

TEST_F(Enumeration, IsAlsoFoundByName) {
  DISPID id = 0;
  wchar_t name[] = L"_NewEnum";
  LPOLESTR names = name;
  EXPECT_EQ(com::exported(gadget_->object())->GetIDsOfNames(IID_NULL, &names, 1, 0, &id), S_OK);
  EXPECT_EQ(id, DISPID_NEWENUM);
}

TEST_F(Enumeration, InBlocks_SkippingAndFromTheStart) {
  const auto elements = walk();
  ASSERT_TRUE(elements);
  VARIANT block[4];
  ULONG fetched = 9;
  EXPECT_EQ(elements->Next(2, block, &fetched), S_OK);
  EXPECT_EQ(fetched, 2u);
  EXPECT_EQ(block[1].lVal, 2);
  EXPECT_EQ(elements->Skip(1), S_OK);
  EXPECT_EQ(elements->Next(4, block, &fetched), S_FALSE);
  EXPECT_EQ(fetched, 2u);
  EXPECT_EQ(block[0].lVal, 4);
  EXPECT_EQ(elements->Skip(1), S_FALSE);
  EXPECT_EQ(elements->Reset(), S_OK);
  EXPECT_EQ(elements->Next(1, block, nullptr), S_OK);
  EXPECT_EQ(block[0].lVal, 1);
  EXPECT_EQ(elements->Next(0, nullptr, &fetched), S_OK);
}

TEST_F(Enumeration, HostileCalls_AreRefused) {
  const auto elements = walk();
  ASSERT_TRUE(elements);
  VARIANT block[2];
  ULONG fetched = 9;
  EXPECT_EQ(elements->Next(2, block, nullptr), E_INVALIDARG);
  EXPECT_EQ(elements->Next(1, nullptr, &fetched), E_INVALIDARG);
  EXPECT_EQ(fetched, 0u);
  EXPECT_EQ(elements->Clone(nullptr), E_POINTER);
}

TEST_F(Enumeration, FailureInABlock_HandsOverNothing) {
  Numbers::failAt = 1;
  const auto elements = walk();
  VARIANT block[3];
  ULONG fetched = 9;
  EXPECT_EQ(elements->Next(3, block, &fetched), static_cast<HRESULT>(0x800A0046));
  EXPECT_EQ(fetched, 0u);
}

}  // namespace
}  // namespace bridge_test

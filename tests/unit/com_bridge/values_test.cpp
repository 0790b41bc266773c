// Values of every type that other programs use, and arguments that no sane program sends.
#include <cstring>

#include "bridge_fixture.h"
#include "dispatch_double.h"
#include "support/errors.h"

namespace bridge_test {
namespace {

using platform::Date;
using platform::ErrorCode;
using platform::Null;
using platform::Object;
using platform::Opaque;
using platform::Variant;
using testing_support::errorNumberOf;

class Values : public BridgeTest {};

VARIANT typed(VARTYPE type) {
  VARIANT v;
  VariantInit(&v);
  v.vt = type;
  return v;
}

template <class T>
VARIANT pointing(VARTYPE type, T* place) {
  VARIANT v = typed(static_cast<VARTYPE>(VT_BYREF | type));
  v.byref = place;
  return v;
}

TEST_F(Values, WholeNumbers_OfEveryWidth_AreRead) {
  VARIANT v = typed(VT_I1);
  v.cVal = static_cast<char>(-3);
  EXPECT_EQ(com::fromVariant(v), Variant(std::int16_t{-3}));
  v = typed(VT_UI1);
  v.bVal = 250;
  EXPECT_EQ(com::fromVariant(v), Variant(std::int16_t{250}));
  v = typed(VT_UI2);
  v.uiVal = 65535;
  EXPECT_EQ(com::fromVariant(v), Variant(65535));
  for (const VARTYPE type : {VT_I4, VT_INT}) {
    v = typed(type);
    v.lVal = -70000;
    EXPECT_EQ(com::fromVariant(v), Variant(-70000));
  }
  for (const VARTYPE type : {VT_UI4, VT_UINT}) {
    v = typed(type);
    v.ulVal = 70000;
    EXPECT_EQ(com::fromVariant(v), Variant(70000));
    v.ulVal = 4000000000;
    EXPECT_EQ(com::fromVariant(v), Variant(4000000000.0)) << "a double when a Long is too small";
  }
  v = typed(VT_I8);
  v.llVal = -5;
  EXPECT_EQ(com::fromVariant(v), Variant(-5));
  v.llVal = -5000000000;
  EXPECT_EQ(com::fromVariant(v), Variant(-5000000000.0));
  v = typed(VT_UI8);
  v.ullVal = 18000000000000000000U;
  EXPECT_EQ(com::fromVariant(v), Variant(18000000000000000000.0));
}

TEST_F(Values, Fractions_OfEveryKind_AreDoubles) {
  VARIANT v = typed(VT_R4);
  v.fltVal = 0.5F;
  EXPECT_EQ(com::fromVariant(v), Variant(0.5));
  v = typed(VT_CY);
  v.cyVal.int64 = -12500;
  EXPECT_EQ(com::fromVariant(v), Variant(-1.25));
  VARIANT decimal;
  VariantInit(&decimal);
  ASSERT_EQ(VarDecFromR8(-2.75, &decimal.decVal), S_OK);
  decimal.vt = VT_DECIMAL;
  EXPECT_EQ(com::fromVariant(decimal), Variant(-2.75));
}

TEST_F(Values, NullTextAndNullObjects_AreEmptyAndNothing) {
  EXPECT_EQ(com::fromVariant(typed(VT_BSTR)), Variant(u""));
  EXPECT_EQ(com::fromVariant(typed(VT_DISPATCH)), Variant(Object()));
  EXPECT_EQ(com::fromVariant(typed(VT_UNKNOWN)), Variant(Object()));
}

TEST_F(Values, Unknown_WithIDispatch_IsAnObject_AndWithout_AnOpaque) {
  DispatchDouble foreign;
  VARIANT v = typed(VT_UNKNOWN);
  v.punkVal = &foreign;
  {
    const Variant object = com::fromVariant(v);
    ASSERT_TRUE(object.as<Object>());
    EXPECT_EQ(com::exported(*object.as<Object>()).get(), &foreign);
  }
  EXPECT_EQ(foreign.references, 0);
}

TEST_F(Values, UnsupportedTypes_AreError458_AndNotTouched) {
  constexpr VARTYPE unsupported[] = {VT_RECORD,         VT_VARIANT,       VT_FILETIME,           VT_LPWSTR, VT_CLSID,
                                     VT_VECTOR | VT_I4, VT_ARRAY | VT_I4, VT_ARRAY | VT_VARIANT, 0x0777,    0xBFFF};
  for (const VARTYPE type : unsupported) {
    VARIANT v = typed(type);
    v.byref = reinterpret_cast<void*>(std::uintptr_t{0x10});  // would crash
    EXPECT_EQ(errorNumberOf([&] { com::fromVariant(v); }), 458) << type;
    if (type == VT_VARIANT) continue;  // by reference it is the usual thing
    v.vt = static_cast<VARTYPE>(v.vt | VT_BYREF);
    EXPECT_EQ(errorNumberOf([&] { com::fromVariant(v); }), 458) << type << " by reference";
    EXPECT_NE(errorNumberOf([&] { com::assignByRef(v, 1); }), 0) << type << " by reference";
  }
  for (const VARTYPE type : {VT_EMPTY, VT_NULL, VT_VOID}) {
    VARIANT v = pointing(type, reinterpret_cast<void*>(std::uintptr_t{0x10}));
    EXPECT_EQ(errorNumberOf([&] { com::fromVariant(v); }), 458) << type << " by reference";
    EXPECT_EQ(errorNumberOf([&] { com::assignByRef(v, 1); }), 458) << type << " by reference";
  }
}

TEST_F(Values, ByReferenceWithoutAPlace_IsError5) {
  for (const VARTYPE type : {VT_I4, VT_BSTR, VT_VARIANT, VT_DISPATCH}) {
    VARIANT v = pointing<void>(type, nullptr);
    EXPECT_EQ(errorNumberOf([&] { com::fromVariant(v); }), 5) << type;
    EXPECT_EQ(errorNumberOf([&] { com::assignByRef(v, 1); }), 5) << type;
  }
}

TEST_F(Values, ReferenceToAReference_IsFollowedOnce_AndARingIsRefused) {
  LONG number = 5;
  VARIANT inner = pointing(VT_I4, &number);
  VARIANT outer = pointing(VT_VARIANT, &inner);
  EXPECT_EQ(com::fromVariant(outer), Variant(5));
  com::assignByRef(outer, u"6");
  EXPECT_EQ(number, 6);

  VARIANT ring = typed(VT_BYREF | VT_VARIANT);
  ring.pvarVal = &ring;
  EXPECT_EQ(errorNumberOf([&] { com::fromVariant(ring); }), 5);
  EXPECT_EQ(errorNumberOf([&] { com::assignByRef(ring, 1); }), 5);
}

// Reads a variable of the type, writes `value` into it, and returns what is read then.
template <class T>
Variant assigned(VARTYPE type, T start, const Variant& value) {
  T place[2] = {start, start};  // the second shows a write that is too wide
  VARIANT v = pointing(type, &place[0]);
  com::assignByRef(v, value);
  EXPECT_EQ(std::memcmp(&place[1], &start, sizeof start), 0) << "type " << type;
  return com::fromVariant(v);
}

TEST_F(Values, ByReference_IsWrittenInTheTypeOfTheVariable) {
  EXPECT_EQ(assigned<signed char>(VT_I1, 1, -7), Variant(std::int16_t{-7}));
  EXPECT_EQ(assigned<BYTE>(VT_UI1, 1, 200), Variant(std::int16_t{200}));
  EXPECT_EQ(assigned<SHORT>(VT_I2, 1, -300), Variant(std::int16_t{-300}));
  EXPECT_EQ(assigned<USHORT>(VT_UI2, 1, 65000), Variant(65000));
  EXPECT_EQ(assigned<LONG>(VT_I4, 1, u"70000"), Variant(70000));
  EXPECT_EQ(assigned<ULONG>(VT_UI4, 1, 3000000000.0), Variant(3000000000.0));
  EXPECT_EQ(assigned<INT>(VT_INT, 1, -70000), Variant(-70000));
  EXPECT_EQ(assigned<UINT>(VT_UINT, 1, 70000), Variant(70000));
  EXPECT_EQ(assigned<LONGLONG>(VT_I8, 1, -5000000000.0), Variant(-5000000000.0));
  EXPECT_EQ(assigned<ULONGLONG>(VT_UI8, 1, 5000000000.0), Variant(5000000000.0));
  EXPECT_EQ(assigned<FLOAT>(VT_R4, 1, 0.25), Variant(0.25));
  EXPECT_EQ(assigned<DOUBLE>(VT_R8, 1, true), Variant(-1.0));
  EXPECT_EQ(assigned<DATE>(VT_DATE, 1, 2.5), Variant(Date{2.5}));
  EXPECT_EQ(assigned<CY>(VT_CY, CY{}, 1.25), Variant(1.25));
  EXPECT_EQ(assigned<SCODE>(VT_ERROR, 1, ErrorCode{-9}), Variant(ErrorCode{-9}));
  EXPECT_EQ(assigned<VARIANT_BOOL>(VT_BOOL, 0, u"True"), Variant(true));
  EXPECT_EQ(assigned<VARIANT_BOOL>(VT_BOOL, 0, 5), Variant(true));
  EXPECT_EQ(assigned<DECIMAL>(VT_DECIMAL, DECIMAL{}, -2.75), Variant(-2.75));
}

TEST_F(Values, ByReferenceBoolean_IsMinusOneInItsSixteenBits) {
  VARIANT_BOOL flags[2] = {VARIANT_FALSE, 0x1234};
  VARIANT v = pointing(VT_BOOL, &flags[0]);
  com::assignByRef(v, true);
  EXPECT_EQ(flags[0], VARIANT_TRUE);
  EXPECT_EQ(flags[1], 0x1234);
}

TEST_F(Values, ByReferenceText_ReplacesTheOldText) {
  BSTR text = SysAllocString(L"old");
  VARIANT v = pointing(VT_BSTR, &text);
  com::assignByRef(v, 12);
  EXPECT_EQ(com::textOf(text), u"12");
  com::assignByRef(v, u"new");
  EXPECT_EQ(com::textOf(text), u"new");
  EXPECT_EQ(errorNumberOf([&] { com::assignByRef(v, Null{}); }), 13);
  EXPECT_EQ(com::textOf(text), u"new");
  SysFreeString(text);
}

TEST_F(Values, ByReferenceObject_TakesTheNewReference_AndReleasesTheOld) {
  DispatchDouble before;
  DispatchDouble after;
  for (const VARTYPE type : {VT_DISPATCH, VT_UNKNOWN}) {
    IDispatch* place = com::Ptr<IDispatch>(&before).detach();
    VARIANT v = pointing(type, &place);
    com::assignByRef(v, com::import(&after));
    EXPECT_EQ(place, &after);
    EXPECT_EQ(before.references, 0);
    EXPECT_EQ(after.references, 1);
    com::assignByRef(v, Object());
    EXPECT_EQ(place, nullptr);
    EXPECT_EQ(after.references, 0);
  }
}

TEST_F(Values, ByReferenceVariant_TakesAnyType_AndClearsWhatItHeld) {
  DispatchDouble held;
  com::OwnedVariant place;
  place.get().vt = VT_DISPATCH;
  place.get().pdispVal = com::Ptr<IDispatch>(&held).detach();
  VARIANT v = pointing(VT_VARIANT, &place.get());
  com::assignByRef(v, u"text");
  EXPECT_EQ(place.get().vt, VT_BSTR);
  EXPECT_EQ(held.references, 0);
  com::assignByRef(v, Null{});
  EXPECT_EQ(place.get().vt, VT_NULL);
}

TEST_F(Values, ByReference_WhatDoesNotFit_IsRefused_AndTheVariableKept) {
  SHORT number = 5;
  VARIANT v = pointing(VT_I2, &number);
  EXPECT_EQ(errorNumberOf([&] { com::assignByRef(v, 70000); }), 6);
  EXPECT_EQ(errorNumberOf([&] { com::assignByRef(v, u"x"); }), 13);
  EXPECT_EQ(number, 5);
  VARIANT notByReference = typed(VT_I2);
  EXPECT_EQ(errorNumberOf([&] { com::assignByRef(notByReference, 1); }), 458);
}

TEST_F(Values, OwnVariantThatRefersToAnother_LeavesAsItsValue) {
  Variant target = u"deep";
  com::OwnedVariant out;
  com::toVariant(Variant::byRef(target), out.get());
  EXPECT_EQ(out.get().vt, VT_BSTR);
  EXPECT_EQ(com::textOf(out.get().bstrVal), u"deep");
}

TEST_F(Values, Missing_IsTheErrorCodeThatAutomationUses) {
  com::OwnedVariant out;
  com::toVariant(platform::missing, out.get());
  EXPECT_EQ(out.get().vt, VT_ERROR);
  EXPECT_EQ(out.get().scode, DISP_E_PARAMNOTFOUND);
}

}  // namespace
}  // namespace bridge_test

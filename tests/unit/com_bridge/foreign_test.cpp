// What a foreign object sees of our calls, and what it is asked.
#include "addin/platform/object.h"
#include "bridge_fixture.h"
#include "com/dispid_cache.h"
#include "dispatch_double.h"
#include "support/errors.h"

namespace bridge_test {
namespace {

using platform::Access;
using platform::LateBound;
using platform::Object;
using platform::Variant;
using testing_support::errorNumberOf;

class Foreign : public BridgeTest {};

struct Seen {
  DISPID id = 0;
  WORD flags = 0;
  UINT named = 0;
  DISPID name = 0;
  bool wantsResult = false;
  std::vector<VARTYPE> types;
};

DispatchDouble::Answer into(Seen& seen) {
  return [&seen](DISPID id, WORD flags, DISPPARAMS& params, VARIANT* result, EXCEPINFO*) {
    seen = {id, flags, params.cNamedArgs, params.cNamedArgs ? params.rgdispidNamedArgs[0] : 0, result != nullptr, {}};
    for (UINT i = 0; i < params.cArgs; ++i) seen.types.push_back(params.rgvarg[i].vt);
    return S_OK;
  };
}

TEST_F(Foreign, CallAndGet_AreSentAsBoth) {
  Seen seen;
  DispatchDouble foreign(into(seen));
  const LateBound object(com::import(&foreign));
  object.call(u"Do", 1, u"two", 3.0);
  EXPECT_EQ(seen.id, 7);
  EXPECT_EQ(seen.flags, DISPATCH_METHOD | DISPATCH_PROPERTYGET);
  EXPECT_EQ(seen.named, 0u);
  EXPECT_TRUE(seen.wantsResult);
  EXPECT_EQ(seen.types, (std::vector<VARTYPE>{VT_R8, VT_BSTR, VT_I4})) << "the last argument comes first";
  object.get<Variant>(u"Do");
  EXPECT_EQ(seen.flags, DISPATCH_METHOD | DISPATCH_PROPERTYGET);
}

TEST_F(Foreign, Puts_NameTheirValue) {
  Seen seen;
  DispatchDouble foreign(into(seen));
  const LateBound object(com::import(&foreign));
  object.let(u"Do", 1);
  EXPECT_EQ(seen.flags, DISPATCH_PROPERTYPUT);
  EXPECT_EQ(seen.named, 1u);
  EXPECT_EQ(seen.name, DISPID_PROPERTYPUT);
  EXPECT_FALSE(seen.wantsResult);
  object.set(u"Do", static_cast<Object>(object));
  EXPECT_EQ(seen.flags, DISPATCH_PROPERTYPUTREF);
  EXPECT_EQ(seen.name, DISPID_PROPERTYPUT);
  EXPECT_EQ(seen.types, std::vector<VARTYPE>{VT_DISPATCH});
}

TEST_F(Foreign, ByReferenceArguments_CarryTheirType) {
  Seen seen;
  DispatchDouble foreign(into(seen));
  const Object object = com::import(&foreign);
  Variant values[] = {true, std::int16_t{1}, 2, 2.5, u"text", Variant(), platform::Null{}, platform::missing};
  std::vector<Variant> arguments;
  for (Variant& value : values) arguments.push_back(Variant::byRef(value));
  object.invoke(u"Do", Access::Call, arguments);
  EXPECT_EQ(seen.types,
            (std::vector<VARTYPE>{VT_ERROR, VT_BYREF | VT_VARIANT, VT_BYREF | VT_VARIANT, VT_BYREF | VT_BSTR,
                                  VT_BYREF | VT_R8, VT_BYREF | VT_I4, VT_BYREF | VT_I2, VT_BYREF | VT_BOOL}));
}

TEST_F(Foreign, DefaultMember_IsNotLookedUp) {
  Seen seen;
  seen.id = 99;
  DispatchDouble foreign(into(seen));
  LateBound(com::import(&foreign)).get<Variant>(u"");
  EXPECT_EQ(seen.id, DISPID_VALUE);
  EXPECT_EQ(foreign.lookUps, 0);
}

TEST_F(Foreign, MemberName_IsLookedUpOnce) {
  DispatchDouble foreign;
  foreign.names = {{L"Do", 7}, {L"Dot", 8}};
  const LateBound object(com::import(&foreign));
  for (int i = 0; i < 3; ++i) object.call(u"Do");
  EXPECT_EQ(foreign.lookUps, 1);
  platform::String text = u"Do";
  object.call(text);
  EXPECT_EQ(foreign.lookUps, 1) << "the name counts, not where it lies";
  text = u"Dx";
  EXPECT_EQ(errorNumberOf([&] { object.call(text); }), 438);
  object.call(u"Dot");
  EXPECT_EQ(foreign.lookUps, 3);
  EXPECT_EQ(errorNumberOf([&] { object.call(u"Dx"); }), 438);
  EXPECT_EQ(foreign.lookUps, 4) << "what is not there may come";
}

TEST_F(Foreign, ManyAndLongMemberNames_KeepTheirIdentifiers) {
  std::vector<std::wstring> names;
  DispatchDouble foreign;
  DISPID answered = 0;
  foreign.answer = [&](DISPID id, WORD, DISPPARAMS&, VARIANT*, EXCEPINFO*) {
    answered = id;
    return S_OK;
  };
  for (int i = 0; i < 40; ++i) {
    names.push_back(std::wstring(static_cast<std::size_t>(i + 1), L'x'));
    foreign.names[names.back()] = 100 + i;
  }
  const LateBound object(com::import(&foreign));
  for (int round = 0; round < 3; ++round)
    for (int i = 0; i < 40; ++i) {
      object.call(platform::StringView(reinterpret_cast<const char16_t*>(names[static_cast<std::size_t>(i)].data()),
                                       static_cast<std::size_t>(i + 1)));
      EXPECT_EQ(answered, 100 + i);
    }
}

TEST_F(Foreign, Identity_IsTheCanonicalUnknown_AndTakesOneReference) {
  DispatchDouble foreign;
  {
    const Object a = com::import(&foreign);
    const Object b = com::import(&foreign);
    EXPECT_EQ(foreign.references, 2);
    EXPECT_EQ(a, b);
    EXPECT_EQ(a, b);
    EXPECT_EQ(foreign.references, 4);
  }
  EXPECT_EQ(foreign.references, 0);
}

TEST_F(Foreign, CallsAndResults_LeaveNoReferences) {
  DispatchDouble result;
  DispatchDouble foreign([&](DISPID, WORD, DISPPARAMS&, VARIANT* out, EXCEPINFO*) {
    if (!out) return S_OK;
    out->vt = VT_DISPATCH;
    out->pdispVal = com::Ptr<IDispatch>(&result).detach();
    return S_OK;
  });
  const LateBound object(com::import(&foreign));
  EXPECT_EQ(foreign.references, 1);
  {
    const auto returned = object.get<Object>(u"Do");
    EXPECT_EQ(result.references, 1);
    object.call(u"Do", returned, static_cast<Object>(object));
    object.set(u"Do", returned);
    Variant variable = returned;
    Variant argument = Variant::byRef(variable);
    object.invoke(u"Do", Access::Call, {&argument, 1});
  }
  EXPECT_EQ(result.references, 0);
  EXPECT_EQ(foreign.references, 1);
}

TEST_F(Foreign, ResultThatCannotBeRead_IsError458_AndIsFreed) {
  DispatchDouble foreign([&](DISPID, WORD, DISPPARAMS&, VARIANT* out, EXCEPINFO*) {
    out->parray = SafeArrayCreateVector(VT_I4, 0, 3);
    out->vt = VT_ARRAY | VT_I4;
    return S_OK;
  });
  const LateBound object(com::import(&foreign));
  EXPECT_EQ(errorNumberOf([&] { object.get<Variant>(u"Do"); }), 458);
}

TEST_F(Foreign, TooManyArguments_AreRefusedBeforeTheCall) {
  DispatchDouble foreign;
  const Object object = com::import(&foreign);
  std::vector<Variant> arguments(60, Variant(u"text"));
  object.invoke(u"Do", Access::Call, arguments);
  EXPECT_EQ(foreign.calls, 1);
  arguments.emplace_back(1);
  EXPECT_EQ(errorNumberOf([&] { object.invoke(u"Do", Access::Call, arguments); }), 450);
  EXPECT_EQ(foreign.calls, 1);
}

TEST_F(Foreign, ArgumentThatCannotLeave_EndsTheCallBeforeItBegins_AndFreesTheOthers) {
  DispatchDouble foreign;
  DispatchDouble argument;
  struct Thing final : platform::Counted {};
  const LateBound object(com::import(&foreign));
  const Object other = com::import(&argument);
  const platform::Opaque stranger{platform::make<Thing>()};
  EXPECT_EQ(errorNumberOf([&] { object.call(u"Do", other, stranger, u"text"); }), 430);
  EXPECT_EQ(foreign.calls, 0);
  EXPECT_EQ(argument.references, 1);
}

TEST_F(Foreign, LettingGoOfTheObjectInsideItsCall_KeepsItUntilTheReturn) {
  DispatchDouble foreign;
  LateBound field(com::import(&foreign));
  LONG inside = 0;
  foreign.answer = [&](DISPID, WORD, DISPPARAMS&, VARIANT*, EXCEPINFO*) {
    field = nullptr;
    inside = foreign.references;
    return S_OK;
  };
  field.call(u"Do");
  EXPECT_EQ(inside, 1);
  EXPECT_EQ(foreign.references, 0);
}

TEST_F(Foreign, Enumerate_OfNoCollection_IsError438) {
  DispatchDouble foreign([](DISPID, WORD, DISPPARAMS&, VARIANT*, EXCEPINFO*) { return DISP_E_MEMBERNOTFOUND; });
  EXPECT_EQ(errorNumberOf([&] { com::import(&foreign).enumerate(); }), 438);
  foreign.answer = nullptr;  // a member -4 that returns nothing
  EXPECT_EQ(errorNumberOf([&] { com::import(&foreign).enumerate(); }), 438);
  foreign.answer = [&](DISPID id, WORD, DISPPARAMS&, VARIANT* out, EXCEPINFO*) {  // or something else
    EXPECT_EQ(id, DISPID_NEWENUM);
    out->vt = VT_DISPATCH;
    out->pdispVal = com::Ptr<IDispatch>(&foreign).detach();
    return S_OK;
  };
  EXPECT_EQ(errorNumberOf([&] { com::import(&foreign).enumerate(); }), 438);
}

TEST_F(Foreign, Subscribe_WithoutConnectionPoints_IsError459_AndOtherFailuresAreTheirOwn) {
  struct Deaf final : platform::EventSink {
    void onEvent(std::int32_t, platform::Args) override {}
  };
  DispatchDouble foreign;
  const auto sink = platform::make<Deaf>();
  const Object object = com::import(&foreign);
  EXPECT_EQ(errorNumberOf([&] { object.subscribe({1, 2, 3, {}}, sink); }), 459);
  foreign.refusal = RPC_E_DISCONNECTED;
  EXPECT_EQ(errorNumberOf([&] { object.subscribe({1, 2, 3, {}}, sink); }), RPC_E_DISCONNECTED);
}

}  // namespace
}  // namespace bridge_test

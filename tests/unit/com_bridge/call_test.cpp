// Calls, puts and results on the whole way: out through one face of the bridge and in through the other.
#include "addin/platform/object.h"
#include "bridge_fixture.h"
#include "dispatch_double.h"
#include "gadget.h"
#include "support/errors.h"

namespace bridge_test {
namespace {

using platform::Access;
using platform::Date;
using platform::ErrorCode;
using platform::LateBound;
using platform::make;
using platform::missing;
using platform::Null;
using platform::Object;
using platform::Opaque;
using platform::Variant;
using testing_support::errorNumberOf;

class Call : public BridgeTest {
 protected:
  platform::Ref<Gadget> gadget_ = make<Gadget>();
  LateBound outside_{throughCom(gadget_->object())};
};

TEST_F(Call, TheObjectSeenFromOutside_IsNotTheNativeOne) { EXPECT_EQ(platform::nativeOf<Gadget>(outside_), nullptr); }

TEST_F(Call, Method_WithTypedArguments_GetsThemInOrder) {
  EXPECT_EQ(outside_.call<std::int32_t>(u"Add", 40, std::int16_t{2}), 42);
  EXPECT_EQ(outside_.call<std::int32_t>(u"Add", u"40", 2.0), 42);
}

TEST_F(Call, Method_WithNineArguments_GetsThemInOrder) {
  EXPECT_EQ(outside_.call<platform::String>(u"Nine", outside_, u"b", u"c", u"d", u"e", u"f", Date{7}, Date{8}, u"i"),
            u"objectbcdef78i");
}

TEST_F(Call, Members_AreFoundInAnyCase) {
  EXPECT_EQ(outside_.call<std::int32_t>(u"ADD", 1, 2), 3);
  EXPECT_EQ(outside_.get<platform::String>(u"nAmE"), u"gadget");
}

TEST_F(Call, EmptyName_IsTheDefaultMember) { EXPECT_EQ(outside_.get<platform::String>(u""), u"gadget"); }

TEST_F(Call, ObjectUsedAsAValue_IsReadThroughItsDefaultMember) {
  EXPECT_EQ(platform::CStr(Variant(static_cast<Object>(outside_))), u"gadget");
}

TEST_F(Call, LetAndSet_ReachTheMember) {
  outside_.let(u"Level", 9);
  EXPECT_EQ(outside_.get<std::int32_t>(u"Level"), 9);
  outside_.let(u"Secret", u"knock");
  EXPECT_EQ(gadget_->secret, u"knock");
  outside_.set(u"Partner", gadget_->object());
  EXPECT_EQ(gadget_->partner, gadget_->object());
  gadget_->partner = nullptr;
}

TEST_F(Call, LetWithAnIndex_PassesTheIndexBeforeTheValue) {
  Variant arguments[] = {1, 21};
  outside_.invoke(u"Element", Access::Let, arguments);
  EXPECT_EQ(gadget_->elements[1], 21);
  EXPECT_EQ(outside_.call<std::int32_t>(u"Element", 1), 21);
}

TEST_F(Call, EveryKindOfValue_ComesBackAsItWas) {
  for (const Variant& value :
       {Variant(), Variant(Null{}), Variant(ErrorCode{-5}), Variant(true), Variant(false), Variant(std::int16_t{-7}),
        Variant(70000), Variant(2.5), Variant(Date{36925.25}), Variant(u""), Variant(u"\u00e5\u4e2d\xD83D"),
        Variant(platform::StringView(u"a\0b", 3)), Variant(Object())}) {
    outside_.let(u"Anything", value);
    EXPECT_EQ(gadget_->anything, value) << "in, kind " << value.value().index();
    EXPECT_EQ(outside_.get<Variant>(u"Anything"), value) << "out, kind " << value.value().index();
    EXPECT_EQ(outside_.call<Variant>(u"Echo", value), value) << "through, kind " << value.value().index();
  }
}

TEST_F(Call, OmittedArguments_AreMissing) {
  EXPECT_EQ(outside_.call<platform::String>(u"Describe", u"a", 2, 3), u"a x 2 and more");
  EXPECT_EQ(outside_.call<platform::String>(u"Describe", u"a", 2), u"a x 2 alone");
  EXPECT_EQ(outside_.call<platform::String>(u"Describe", u"a"), u"a x -1 alone");
  EXPECT_EQ(outside_.call<platform::String>(u"Describe", u"a", missing, 3), u"a x -1 and more");
  EXPECT_EQ(errorNumberOf([&] { outside_.call(u"Describe"); }), 449);
  EXPECT_EQ(errorNumberOf([&] { outside_.call(u"Describe", missing); }), 449);
}

TEST_F(Call, TooManyArguments_AreError450) {
  EXPECT_EQ(errorNumberOf([&] { outside_.call(u"Add", 1, 2, 3); }), 450);
  std::vector<Variant> hundred(100, Variant(1));
  EXPECT_EQ(errorNumberOf([&] { outside_.invoke(u"Add", Access::Call, hundred); }), 450);
}

TEST_F(Call, UnknownMember_IsError438) {
  EXPECT_EQ(errorNumberOf([&] { outside_.get<Variant>(u"Nope"); }), 438);
  EXPECT_EQ(errorNumberOf([&] { outside_.let(u"Name", 1); }), 438);
  EXPECT_EQ(errorNumberOf([&] { outside_.get<Variant>(u"Secret"); }), 438);
  EXPECT_EQ(errorNumberOf([&] { outside_.get<Variant>(std::u16string(64, u'x')); }), 438);
}

TEST_F(Call, ByReference_OfEveryKind_GoesThereAndBack) {
  const Variant values[] = {
      Variant(), Variant(Null{}), Variant(ErrorCode{-5}), true, std::int16_t{-7}, 70000, 2.5, Date{36925.25},
      u"text",   Object()};
  for (const Variant& value : values) {
    gadget_->replacement = value;
    Variant variable = value;
    Variant argument = Variant::byRef(variable);
    outside_.invoke(u"Change", Access::Call, {&argument, 1});
    EXPECT_EQ(gadget_->arrived, value) << "kind " << value.value().index();
    EXPECT_EQ(variable, value) << "kind " << value.value().index();
  }
}

TEST_F(Call, ByReference_WrittenValue_TakesTheTypeOfTheVariable) {
  gadget_->replacement = u"12";
  Variant number = std::int32_t{1};
  Variant argument = Variant::byRef(number);
  outside_.invoke(u"Change", Access::Call, {&argument, 1});
  EXPECT_EQ(number, Variant(std::int32_t{12}));

  Variant untyped;  // takes anything
  argument = Variant::byRef(untyped);
  outside_.invoke(u"Change", Access::Call, {&argument, 1});
  EXPECT_EQ(untyped, Variant(u"12"));

  gadget_->replacement = u"twelve";
  argument = Variant::byRef(number);
  EXPECT_EQ(errorNumberOf([&] { outside_.invoke(u"Change", Access::Call, {&argument, 1}); }), 13);
  EXPECT_EQ(number, Variant(std::int32_t{12}));
}

TEST_F(Call, ByReference_ChangedBeforeAFailure_IsChanged) {
  gadget_->replacement = 8;
  Variant number = 1;
  Variant argument = Variant::byRef(number);
  EXPECT_EQ(errorNumberOf([&] { outside_.invoke(u"ChangeAndFail", Access::Call, {&argument, 1}); }), 70);
  EXPECT_EQ(number, Variant(8));
}

TEST_F(Call, ByReference_Object_IsReplaced) {
  const auto other = make<Gadget>();
  gadget_->replacement = other->object();
  Variant variable = gadget_->object();
  Variant argument = Variant::byRef(variable);
  outside_.invoke(u"Change", Access::Call, {&argument, 1});
  EXPECT_EQ(*gadget_->arrived.as<Object>(), gadget_->object());
  EXPECT_EQ(*variable.as<Object>(), throughCom(other->object()));
  gadget_->arrived = gadget_->replacement = Variant();
}

TEST_F(Call, ObjectArguments_ArriveAsThemselves) {
  outside_.let(u"Anything", static_cast<Object>(outside_));
  EXPECT_EQ(platform::nativeOf<Gadget>(*gadget_->anything.as<Object>()), gadget_.get());
  gadget_->anything = Variant();
}

TEST_F(Call, SameObject_HasOneIdentity) {
  EXPECT_EQ(outside_.get<Object>(u"Self"), outside_);
  EXPECT_EQ(throughCom(gadget_->object()), outside_);
  EXPECT_NE(throughCom(make<Gadget>()->object()), outside_);
}

TEST_F(Call, OwnObjectComingBack_IsRecognised) {
  com::recogniseOwn = true;
  EXPECT_EQ(platform::nativeOf<Gadget>(outside_.get<Object>(u"Self")), gadget_.get());
  const auto face = com::exported(gadget_->object());
  EXPECT_EQ(platform::nativeOf<Gadget>(com::import(face.get())), gadget_.get());
}

TEST_F(Call, Exporting_GivesOneFaceUntilItsLastReference) {
  outside_ = nullptr;
  auto first = com::exported(gadget_->object());
  const auto second = com::exported(gadget_->object());
  EXPECT_EQ(first, second);
  EXPECT_EQ(referencesOf(*first.get()), 2u);
  first = nullptr;
  EXPECT_EQ(com::exported(gadget_->object()), second);
}

TEST_F(Call, NothingAndForeignObjects_AreExportedAsTheyAre) {
  EXPECT_FALSE(com::exported(Object()));
  EXPECT_FALSE(com::import(nullptr));
  DispatchDouble foreign;
  const Object imported = com::import(&foreign);
  EXPECT_EQ(com::exported(imported).get(), &foreign);
}

TEST_F(Call, AnAutomationThatIsNoNativeObject_CannotBeExported) {
  struct Odd final : platform::Automation {
    Variant invoke(platform::StringView, Access, platform::Args) override { return {}; }
    platform::Ref<platform::Counted> subscribe(const platform::Guid&,
                                               const platform::Ref<platform::EventSink>&) override {
      return nullptr;
    }
  };
  const Object odd(platform::Ref<platform::Automation>(make<Odd>()));
  EXPECT_EQ(errorNumberOf([&] { com::exported(odd); }), 430);
  EXPECT_EQ(errorNumberOf([&] { outside_.let(u"Anything", odd); }), 430);
}

TEST_F(Call, Face_KeepsItsObject_AndIsKeptByNobodyElse) {
  bool ended = false;
  gadget_->whenTerminated = [&] { ended = true; };
  gadget_ = nullptr;
  EXPECT_FALSE(ended);
  EXPECT_EQ(outside_.get<platform::String>(u"Name"), u"gadget");
  outside_ = nullptr;
  EXPECT_TRUE(ended);
}

TEST_F(Call, LettingGoOfTheObjectInsideItsCall_EndsItAtOnce_AndKeepsItsMemory) {
  bool ended = false;
  bool endedInside = false;
  auto face = com::exported(gadget_->object());
  outside_ = nullptr;
  gadget_->whenTerminated = [&] { ended = true; };
  gadget_->whenLetGo = [&] {
    face = nullptr;
    endedInside = ended;
  };
  gadget_ = nullptr;
  IDispatch* const raw = face.get();
  DISPPARAMS none{};
  EXPECT_EQ(raw->Invoke(0x28, IID_NULL, 0, DISPATCH_METHOD, &none, nullptr, nullptr, nullptr), S_OK);
  EXPECT_TRUE(endedInside);
}

TEST_F(Call, Opaque_GoesOutAsIUnknown_AndComesBackInABox) {
  DispatchDouble foreign;
  foreign.alsoKnownAs = IID_IMalloc;
  struct Plain final : IUnknown {
    STDMETHODIMP QueryInterface(REFIID iid, void** result) override {
      *result = iid == IID_IUnknown ? this : nullptr;
      return *result ? (AddRef(), S_OK) : E_NOINTERFACE;
    }
    STDMETHODIMP_(ULONG) AddRef() override { return ++references; }
    STDMETHODIMP_(ULONG) Release() override { return --references; }
    ULONG references = 0;
  } plain;
  gadget_->anything = Opaque{make<com::UnknownBox>(com::Ptr<IUnknown>(&plain))};
  {
    const auto back = outside_.get<Opaque>(u"Anything");
    EXPECT_NE(back, *gadget_->anything.as<Opaque>()) << "a box of its own";
    EXPECT_EQ(com::unknownOf(back).get(), &plain);
  }
  gadget_->anything = Variant();
  EXPECT_EQ(plain.references, 0u);
}

TEST_F(Call, Opaque_OfAThingOfOurs_LeavesAsWhatTheConverterMakes) {
  struct Thing final : platform::Counted {};
  static DispatchDouble real;
  gadget_->anything = Opaque{make<Thing>()};
  EXPECT_EQ(errorNumberOf([&] { outside_.get<Variant>(u"Anything"); }), 430);
  com::opaqueConverter = [](platform::Counted& thing) {
    return com::Ptr<IUnknown>(dynamic_cast<Thing*>(&thing) ? &real : nullptr);
  };
  EXPECT_EQ(com::exported(outside_.get<Object>(u"Anything")).get(), &real) << "it has IDispatch, so it is an object";
  gadget_->anything = Opaque{make<com::UnknownBox>(nullptr)};
  EXPECT_FALSE(outside_.get<Object>(u"Anything"));
  gadget_->anything = Opaque{};
  EXPECT_FALSE(outside_.get<Object>(u"Anything"));
  gadget_->anything = Variant();
}

}  // namespace
}  // namespace bridge_test

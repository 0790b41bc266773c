#include "addin/platform/native.h"

#include <gtest/gtest.h>

#include "addin/platform/outlook.h"
#include "support/errors.h"
#include "support/seam_recorder.h"

namespace platform {
namespace {

using testing_support::Census;
using testing_support::errorNumberOf;

constexpr Guid gadgetEvents{1, 2, 3, {4, 5, 6, 7, 8, 9, 10, 11}};
constexpr Event<std::int32_t> Poked{u"Poked", 3};

class Gadget : public NativeObject {
 public:
  std::span<const Member> members() const override {
    static constexpr Member table[] = {
        readOnly<&Gadget::name>(u"Name", 0),
        field<&Gadget::size>(u"Size", 0x10),
        field<&Gadget::small>(u"Small", 0x11),
        field<&Gadget::partner>(u"Partner", 0x12),
        method<&Gadget::add>(u"Add", 0x20),
        method<&Gadget::describe>(u"Describe", 0x21),
        method<&Gadget::swap>(u"Swap", 0x22),
        method<&Gadget::self>(u"Self", 0x23),
        method<&Gadget::none>(u"None", 0x24),
        method<&Gadget::anything>(u"Anything", 0x25),
        method<&Gadget::poke>(u"Poke", 0x26),
        writeOnly<&Gadget::setSecret>(u"Secret", 0x30),
        property<&Gadget::level, &Gadget::setLevel>(u"Level", 0x31),
    };
    return table;
  }
  Guid events() const override { return gadgetEvents; }

  std::int32_t add(std::int32_t a, std::int16_t b) { return a + b; }
  String describe(const String& text, std::optional<std::int32_t> times) const {
    return concat(text, u" x ", times.value_or(-1));
  }
  void swap(String& a, String& b) {
    std::swap(a, b);
    if (a == u"fail") raiseError(5);
  }
  Ref<Gadget> self() { return Ref<Gadget>(this); }
  Ref<Gadget> none() { return nullptr; }
  Variant anything(const Variant& value) { return value; }
  void poke(std::int32_t n) { raiseEvent(Poked, n); }
  void setSecret(const String& text) { secret = text; }
  std::int32_t level() const { return size * 2; }
  void setLevel(std::int32_t value) { size = value / 2; }

  String name = u"gadget";
  std::int32_t size = 0;
  std::int16_t small = 0;
  Object partner;
  String secret;
};

class NativeObjectTest : public testing::Test {
 protected:
  Census census;
  Ref<Gadget> gadget = make<Gadget>();
  LateBound late{gadget->object()};
};

TEST_F(NativeObjectTest, Members_AreFoundWithoutCase) {
  EXPECT_EQ(late.get<String>(u"Name"), u"gadget");
  EXPECT_EQ(late.get<String>(u"NAME"), u"gadget");
  EXPECT_EQ(late.call<std::int32_t>(u"aDD", 2, 3), 5);
}

TEST_F(NativeObjectTest, UnknownMember_Is438) {
  EXPECT_EQ(errorNumberOf([&] { late.get<String>(u"Nam"); }), 438);
  EXPECT_EQ(errorNumberOf([&] { late.call(u"Names"); }), 438);
}

TEST_F(NativeObjectTest, DefaultMember_IsTheOneWithDispid0) {
  EXPECT_EQ(late.get<String>(u""), u"gadget");
  EXPECT_EQ(CStr(gadget->object()), u"gadget");
  ASSERT_TRUE(gadget->find(0));
  EXPECT_EQ(gadget->find(0)->name, u"Name");
}

TEST_F(NativeObjectTest, Find_ByDispid) {
  ASSERT_TRUE(gadget->find(0x20));
  EXPECT_EQ(gadget->find(0x20)->name, u"Add");
  EXPECT_EQ(gadget->find(0x99), nullptr);
}

TEST_F(NativeObjectTest, ReadOnlyMember_CannotBeWritten) {
  EXPECT_EQ(errorNumberOf([&] { late.let(u"Name", u"x"); }), 438);
  EXPECT_EQ(errorNumberOf([&] { late.set(u"Name", Object()); }), 438);
  EXPECT_EQ(gadget->name, u"gadget");
}

TEST_F(NativeObjectTest, WriteOnlyMember_CannotBeRead) {
  late.let(u"Secret", u"hush");
  EXPECT_EQ(gadget->secret, u"hush");
  EXPECT_EQ(errorNumberOf([&] { late.get<String>(u"Secret"); }), 438);
  EXPECT_EQ(errorNumberOf([&] { late.call(u"Secret"); }), 438);
}

TEST_F(NativeObjectTest, Method_CannotBeWritten) {
  EXPECT_EQ(errorNumberOf([&] { late.let(u"Add", 1); }), 438);
}

TEST_F(NativeObjectTest, GetAndCall_AreNotToldApart) {
  EXPECT_EQ(late.call<String>(u"Name"), u"gadget");
  EXPECT_EQ(late.get<std::int32_t>(u"Add", 2, 3), 5);
}

TEST_F(NativeObjectTest, Field_ConvertsWhatIsWritten) {
  late.let(u"Size", u"2.5");
  EXPECT_EQ(gadget->size, 2);
  EXPECT_EQ(errorNumberOf([&] { late.let(u"Size", u"abc"); }), 13);
  EXPECT_EQ(errorNumberOf([&] { late.let(u"Small", 40000); }), 6);
  EXPECT_EQ(gadget->size, 2);
  EXPECT_EQ(gadget->small, 0);
}

TEST_F(NativeObjectTest, Field_WithArguments_Is450) {
  EXPECT_EQ(errorNumberOf([&] { late.get<String>(u"Name", 1); }), 450);
  EXPECT_EQ(errorNumberOf([&] { gadget->invoke(u"Size", Access::Let, {}); }), 450);
}

TEST_F(NativeObjectTest, Property_ReadsAndWritesThroughItsFunctions) {
  late.let(u"Level", 10);
  EXPECT_EQ(gadget->size, 5);
  EXPECT_EQ(late.get<std::int32_t>(u"Level"), 10);
}

TEST_F(NativeObjectTest, Method_WithTooManyArguments_Is450) {
  EXPECT_EQ(errorNumberOf([&] { late.call(u"Add", 1, 2, 3); }), 450);
}

TEST_F(NativeObjectTest, Method_WithTooFewArguments_Is449) {
  EXPECT_EQ(errorNumberOf([&] { late.call(u"Add", 1); }), 449);
  EXPECT_EQ(errorNumberOf([&] { late.call(u"Add", missing, 1); }), 449);
}

TEST_F(NativeObjectTest, OptionalArgument_MayBeLeftOut) {
  EXPECT_EQ(late.call<String>(u"Describe", u"a", 3), u"a x 3");
  EXPECT_EQ(late.call<String>(u"Describe", u"a"), u"a x -1");
  EXPECT_EQ(late.call<String>(u"Describe", u"a", missing), u"a x -1");
}

TEST_F(NativeObjectTest, VariantArgument_TakesEverythingAsItIs) {
  EXPECT_EQ(late.call<Variant>(u"Anything", Null()), Variant(Null()));
  EXPECT_EQ(late.call<Variant>(u"Anything", 2.5), Variant(2.5));
  EXPECT_TRUE(late.call<Variant>(u"Anything").isMissing());
}

TEST_F(NativeObjectTest, BadArgument_IsAConversionError) {
  EXPECT_EQ(errorNumberOf([&] { late.call(u"Add", u"x", 1); }), 13);
  EXPECT_EQ(errorNumberOf([&] { late.call(u"Add", 1, 40000); }), 6);
}

TEST_F(NativeObjectTest, ByReferenceArguments_AreWrittenBack_EvenAfterAFailure) {
  Variant a(u"one");
  Variant b(2);
  std::array<Variant, 2> args{Variant::byRef(a), Variant::byRef(b)};
  gadget->invoke(u"Swap", Access::Call, args);
  EXPECT_EQ(a, Variant(u"2"));
  EXPECT_EQ(b, Variant(u"one"));

  b = Variant(u"fail");
  EXPECT_EQ(errorNumberOf([&] { gadget->invoke(u"Swap", Access::Call, args); }), 5);
  EXPECT_EQ(a, Variant(u"fail"));
  EXPECT_EQ(b, Variant(u"2"));
}

TEST_F(NativeObjectTest, ObjectResults_KeepTheirIdentity) {
  EXPECT_EQ(late.call<Object>(u"Self"), gadget->object());
  EXPECT_EQ(nativeOf<Gadget>(late.call<Object>(u"Self")), gadget.get());
  EXPECT_FALSE(late.call<Object>(u"None"));
}

TEST_F(NativeObjectTest, ObjectField_HoldsAndLetsGo) {
  const Ref<Gadget> other = make<Gadget>();
  late.set(u"Partner", other->object());
  EXPECT_EQ(late.get<Object>(u"Partner"), other->object());
  late.set(u"Partner", Object());
  EXPECT_FALSE(gadget->partner);
  EXPECT_EQ(errorNumberOf([&] { late.let(u"Partner", 5); }), 424);
}

TEST_F(NativeObjectTest, NativeOf_SomethingElse_IsNull) {
  EXPECT_EQ(nativeOf<Gadget>(Object()), nullptr);
  struct Other final : NativeObject {
    std::span<const Member> members() const override { return {}; }
  };
  const Ref<Other> other = make<Other>();
  EXPECT_EQ(nativeOf<Gadget>(other->object()), nullptr);
  EXPECT_EQ(errorNumberOf([&] { CStr(other->object()); }), 438);
  EXPECT_EQ(errorNumberOf([&] { other->object().subscribe(Guid{}, nullptr); }), 459);
}

TEST_F(NativeObjectTest, Subscribe_AdmitsItsOwnInterfaceOnly) {
  struct Sink final : EventSink {
    void onEvent(std::int32_t dispid, Args args) override { heard.push_back(dispid * 100 + CLng(args[0])); }
    std::vector<std::int32_t> heard;
  };
  const Ref<Sink> sink = make<Sink>();
  EXPECT_EQ(errorNumberOf([&] { late.subscribe(outlook::ItemsEvents::iid, sink); }), 459);
  const auto subscription = late.subscribe(gadgetEvents, sink);
  late.call(u"Poke", 5);
  EXPECT_EQ(sink->heard, (std::vector<std::int32_t>{305}));
}

TEST_F(NativeObjectTest, Enumerate_WhatIsNoCollection_Is438) {
  EXPECT_EQ(errorNumberOf([&] { late.enumerate(); }), 438);
}

}  // namespace
}  // namespace platform

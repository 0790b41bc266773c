#include "addin/platform/object.h"

#include <gtest/gtest.h>

#include "addin/platform/outlook.h"
#include "support/errors.h"
#include "support/fake_object.h"
#include "support/seam_recorder.h"

namespace platform {
namespace {

using testing_support::Census;
using testing_support::errorNumberOf;
using testing_support::fake;
using testing_support::FakeObject;
using Log = std::vector<std::string>;

TEST(Object, Nothing_Is91ForEveryUse) {
  const outlook::MailItem nothing;
  EXPECT_FALSE(nothing);
  EXPECT_EQ(errorNumberOf([&] { nothing.Body(); }), 91);
  EXPECT_EQ(errorNumberOf([&] { nothing.Mileage(u"x"); }), 91);
  EXPECT_EQ(errorNumberOf([&] { nothing.Save(); }), 91);
  EXPECT_EQ(errorNumberOf([&] { nothing.subscribe(outlook::ItemEvents::iid, nullptr); }), 91);
  EXPECT_EQ(errorNumberOf([&] { nothing.enumerate(); }), 91);
}

TEST(Object, Facade_UsesMembersByNameAndKind) {
  const Census census;
  const auto item = fake("Item");
  item->value(u"Body", u"Hello").value(u"Mileage", u"1").method(u"Save", [](Args) { return Variant(); });
  const auto mail = item->as<outlook::MailItem>();
  EXPECT_EQ(mail.Body(), u"Hello");
  mail.Mileage(u"2");
  EXPECT_EQ(mail.Mileage(), u"2");
  mail.Save();
  EXPECT_EQ(item->calls(), (Log{"Body", "Mileage = \"2\"", "Mileage", "Save()"}));
}

TEST(Object, Facade_ConvertsResults) {
  const auto item = fake("Item");
  item->value(u"Class", u"43").value(u"SentOn", 36925.0).value(u"Body", 12);
  const auto mail = item->as<outlook::MailItem>();
  EXPECT_EQ(mail.Class(), outlook::olMail);
  EXPECT_EQ(mail.SentOn(), Date{36925});
  EXPECT_EQ(mail.Body(), u"12");
  item->value(u"Class", u"mail").value(u"Body", Null());
  EXPECT_EQ(errorNumberOf([&] { mail.Class(); }), 13);
  EXPECT_EQ(errorNumberOf([&] { mail.Body(); }), 94);
}

TEST(Object, Facade_ResultThatIsNoObject_Is424) {
  const auto item = fake("Item");
  item->value(u"FormDescription", 5);
  EXPECT_EQ(errorNumberOf([&] { item->as<outlook::MailItem>().FormDescription(); }), 424);
}

TEST(Object, As_IsTheSameObjectAndAsksItNothing) {
  const auto item = fake("Item");
  const auto mail = as<outlook::MailItem>(item->object());
  EXPECT_EQ(mail, item->object());
  EXPECT_TRUE(item->calls().empty());
}

TEST(Object, Equality_IsIdentity) {
  struct Face final : Automation {
    explicit Face(const void* i) : id(i) {}
    Variant invoke(StringView, Access, Args) override { return {}; }
    Ref<Counted> subscribe(const Guid&, const Ref<EventSink>&) override { return {}; }
    const void* identity() noexcept override { return id; }
    const void* id;
  };
  const int one = 1;
  const int two = 2;
  const auto face = [](const void* id) { return Object(Ref<Automation>(make<Face>(id))); };
  EXPECT_EQ(face(&one), face(&one));
  EXPECT_NE(face(&one), face(&two));
  EXPECT_NE(face(&one), Object());
  EXPECT_EQ(Object(), Object(nullptr));
}

// A call may pump messages, and what runs then may empty the very field that the call came through.
TEST(Object, CallThatEmptiesItsOwnField_KeepsTheObjectUntilItReturns) {
  const Census census;
  Log log;
  outlook::MailItem field;
  {
    const auto item = fake("Item");
    item->method(u"Save", [&](Args) {
      field = nullptr;
      log.emplace_back("field emptied");
      return Variant(u"a result that is long enough to live on the heap");
    });
    item->whenTerminated = [&] { log.emplace_back("ended"); };
    field = item->as<outlook::MailItem>();
  }
  field.Save();
  EXPECT_EQ(log, (Log{"field emptied", "ended"}));
}

TEST(Object, SubscriptionThatEmptiesItsOwnField_KeepsTheObjectUntilItReturns) {
  const Census census;
  Log log;
  Object field;
  struct Emptying final : Automation {
    Emptying(Object& f, Log& l) : field(f), log(l) {}
    void terminate() noexcept override { log.emplace_back("ended"); }
    Variant invoke(StringView, Access, Args) override { return {}; }
    Ref<Counted> subscribe(const Guid&, const Ref<EventSink>&) override {
      field = nullptr;
      log.emplace_back("field emptied");
      return {};
    }
    Ref<Enumerator> enumerate() override {
      subscribe({}, {});
      return {};
    }
    Object& field;
    Log& log;
  };
  field = Object(Ref<Automation>(make<Emptying>(field, log)));
  field.subscribe({}, {});
  field = Object(Ref<Automation>(make<Emptying>(field, log)));
  field.enumerate();
  EXPECT_EQ(log, (Log{"field emptied", "ended", "field emptied", "ended"}));
}

TEST(Object, Enumerate_WalksTheElements) {
  const auto collection = fake("Collection");
  collection->elements({u"a", 2});
  const auto walk = collection->object().enumerate();
  Variant element;
  ASSERT_TRUE(walk->next(element));
  EXPECT_EQ(element, Variant(u"a"));
  ASSERT_TRUE(walk->next(element));
  EXPECT_EQ(element, Variant(2));
  EXPECT_FALSE(walk->next(element));
}

TEST(Variant, KeepsTheTypeItWasMadeFrom) {
  EXPECT_TRUE(Variant(true).as<bool>());
  EXPECT_TRUE(Variant(std::int16_t{1}).as<std::int16_t>());
  EXPECT_TRUE(Variant(1).as<std::int32_t>());
  EXPECT_TRUE(Variant(1.0).as<double>());
  EXPECT_TRUE(Variant(u"x").as<String>());
  EXPECT_TRUE(Variant(Date{1}).as<Date>());
  EXPECT_TRUE(Variant().isEmpty());
  EXPECT_TRUE(Variant(outlook::olMail).as<std::int32_t>());
  EXPECT_TRUE(Variant(missing).isMissing());
  EXPECT_FALSE(Variant(ErrorCode{5}).isMissing());
}

TEST(Variant, ByReference_ShowsItsTarget) {
  Variant place(1);
  const Variant reference = Variant::byRef(place);
  EXPECT_EQ(reference.target(), &place);
  EXPECT_EQ(reference.plain(), Variant(1));
  place = Variant();
  EXPECT_TRUE(reference.isEmpty());
  EXPECT_EQ(Variant(1).target(), nullptr);
}

}  // namespace
}  // namespace platform

#include <gtest/gtest-spi.h>
#include <gtest/gtest.h>

#include "addin/platform/outlook.h"
#include "support/errors.h"
#include "support/fake_object.h"
#include "support/seam_recorder.h"

namespace testing_support {
namespace {

namespace outlook = platform::outlook;
using platform::Args;
using platform::LateBound;
using platform::Object;
using platform::Ref;
using platform::RuntimeError;
using platform::Variant;
using Lines = std::vector<std::string>;

const RuntimeError refused(70, u"test", u"Permission denied");

struct Mail {
  Mail() {
    item->value(u"Body", u"a \"b\"\r\n").value(u"UnRead", true).value(u"Parent", Object());
    item->method(u"Move", [](Args args) { return args[0]; });
  }
  Ref<FakeObject> item = fake("MailItem");
  Ref<FakeObject> folder = fake("Folder");
  outlook::MailItem mail = item->as<outlook::MailItem>();
  outlook::MAPIFolder inbox = folder->as<outlook::MAPIFolder>();
  LateBound late{item->object()};
};

TEST(Recorder, WritesGetLetSetAndCall) {
  const Mail m;
  Recorder recorder;
  recorder.name(m.inbox, "Folder Inbox");
  m.mail.Body();
  m.mail.UnRead(false);
  m.late.set(u"Parent", m.inbox);
  m.mail.Move(m.inbox);
  EXPECT_EQ(recorder.lines(), (Lines{"MailItem.Body", "MailItem.UnRead = False", "set MailItem.Parent = <Folder Inbox>",
                                     "MailItem.Move(<Folder Inbox>)"}));
}

TEST(Recorder, MarksWhatFailed_AndPassesTheErrorOn) {
  const Mail m;
  Recorder recorder;
  EXPECT_EQ(errorNumberOf([&] { m.mail.Save(); }), 438);
  m.mail.Body();
  EXPECT_EQ(recorder.lines(), (Lines{"MailItem.Save() -> error 438", "MailItem.Body"}));
}

TEST(Recorder, ACallMadeByACall_ComesBelowIt) {
  const Mail m;
  m.item->method(u"Save", [&](Args) { return Variant(LateBound(m.folder->object()).get<Variant>(u"Items")); });
  m.folder->value(u"Items", 5);
  Recorder recorder;
  m.mail.Save();
  EXPECT_EQ(recorder.lines(), (Lines{"MailItem.Save()", "Folder.Items"}));
}

TEST(Recorder, SubscriptionsAndDefaultMembers) {
  const Mail m;
  m.item->value(u"", u"text");
  Recorder recorder;
  const auto subscription = m.mail.subscribe(outlook::ItemEvents::iid, nullptr);
  platform::CStr(m.mail);
  EXPECT_EQ(recorder.lines(), (Lines{"connect MailItem", "MailItem[default]"}));
}

TEST(Recorder, ValuesOfEveryKind) {
  const Mail m;
  m.item->method(u"F", [](Args) { return Variant(); });
  Recorder recorder;
  Variant place(3);
  std::array<Variant, 9> args{
      u"a \"b\"\r\n",       2.5, true, Object(), Variant(), platform::Null(), platform::missing, platform::Date{36925},
      Variant::byRef(place)};
  m.mail.invoke(u"F", platform::Access::Call, args);
  EXPECT_EQ(recorder.lines(),
            (Lines{R"(MailItem.F("a ""b""\r\n", 2.5, True, Nothing, Empty, Null, Missing, #2/3/2001#, &3))"}));
}

TEST(Recorder, LinesWith_AndClear) {
  const Mail m;
  Recorder recorder;
  m.mail.Body();
  m.mail.UnRead(true);
  EXPECT_EQ(recorder.linesWith("UnRead"), (Lines{"MailItem.UnRead = True"}));
  recorder.clear();
  EXPECT_TRUE(recorder.lines().empty());
}

TEST(Tap, EndsWithItsLife) {
  const Mail m;
  {
    const Recorder recorder;
    EXPECT_EQ(platform::seamTap, &recorder);
  }
  EXPECT_EQ(platform::seamTap, nullptr);
  EXPECT_EQ(m.mail.Body(), u"a \"b\"\r\n");
}

TEST(FaultInjector, FailsTheCallWithThatNumberOnly) {
  const Mail m;
  FaultInjector injector(2, refused);
  EXPECT_EQ(errorNumberOf([&] { m.mail.Body(); }), 0);
  EXPECT_EQ(errorNumberOf([&] { m.mail.UnRead(false); }), 70);
  EXPECT_EQ(errorNumberOf([&] { m.mail.UnRead(false); }), 0);
  EXPECT_EQ(injector.calls(), 3);
  EXPECT_EQ(injector.failed(), (Lines{"MailItem.UnRead = False"}));
  EXPECT_EQ(m.item->calls(), (Lines{"Body", "UnRead = False"}));  // the failed one did not reach the object
}

TEST(FaultInjector, FailsASubscription) {
  const Mail m;
  FaultInjector injector(1, refused);
  EXPECT_EQ(errorNumberOf([&] { m.mail.subscribe(outlook::ItemEvents::iid, nullptr); }), 70);
  EXPECT_EQ(injector.failed(), (Lines{"connect MailItem"}));
}

TEST(FaultInjector, FailsAMember_UntilToldNotTo) {
  const Mail m;
  FaultInjector injector;
  injector.failMember(u"body", refused);
  EXPECT_EQ(errorNumberOf([&] { m.mail.Body(); }), 70);
  EXPECT_EQ(errorNumberOf([&] { m.mail.Body(); }), 70);
  EXPECT_EQ(errorNumberOf([&] { m.mail.UnRead(true); }), 0);
  injector.failNoMore();
  EXPECT_EQ(errorNumberOf([&] { m.mail.Body(); }), 0);
}

TEST(FaultInjector, TogetherWithARecorder_WhichSeesTheFailure) {
  const Mail m;
  FaultInjector injector(1, refused);
  Recorder recorder;
  EXPECT_EQ(errorNumberOf([&] { m.mail.Body(); }), 70);
  EXPECT_EQ(recorder.lines(), (Lines{"MailItem.Body -> error 70"}));
}

TEST(FailEachCall, RunsOncePerCallAndOnceUndisturbed) {
  std::vector<std::vector<std::int32_t>> results;
  const std::int32_t calls = failEachCall(refused, [&](FaultInjector&) {
    const Mail m;
    results.push_back({errorNumberOf([&] { m.mail.Body(); }), errorNumberOf([&] { m.mail.UnRead(true); })});
  });
  EXPECT_EQ(calls, 2);
  EXPECT_EQ(results, (std::vector<std::vector<std::int32_t>>{{0, 0}, {70, 0}, {0, 70}}));
}

TEST(CallCounter, CountsInAllAndByMember) {
  const Mail m;
  CallCounter counter;
  m.mail.Body();
  m.mail.Body();
  const auto subscription = m.mail.subscribe(outlook::ItemEvents::iid, nullptr);
  EXPECT_EQ(counter.total(), 3);
  EXPECT_EQ(counter.of("Body"), 2);
  EXPECT_EQ(counter.of("connect"), 1);
  EXPECT_EQ(counter.of("Save"), 0);
  counter.clear();
  EXPECT_EQ(counter.total(), 0);
}

TEST(Census, FailsTheTestWhenSomethingIsLeftOver) {
  static Ref<FakeObject> leftOver;
  EXPECT_NONFATAL_FAILURE(
      {
        const Census census;
        leftOver = fake("left over");
      },
      "counted objects are left over");
  leftOver = nullptr;
  const Census census;
  fake("gone at once");
  EXPECT_EQ(census.more(), 0);
}

TEST(FakeObject, UnknownAndFailingMembers) {
  const Mail m;
  EXPECT_EQ(errorNumberOf([&] { m.late.get<Variant>(u"Nope"); }), 438);
  m.item->fails(u"Body", 13);
  EXPECT_EQ(errorNumberOf([&] { m.mail.Body(); }), 13);
  m.item->value(u"Body", u"again");
  EXPECT_EQ(m.mail.Body(), u"again");
  m.item->removed(u"Body");
  EXPECT_EQ(errorNumberOf([&] { m.mail.Body(); }), 438);
  EXPECT_EQ(errorNumberOf([&] { m.late.let(u"Move", 1); }), 438);
  EXPECT_NONFATAL_FAILURE(m.item->valueOf(u"Body"), "MailItem has no value Body");
}

}  // namespace
}  // namespace testing_support

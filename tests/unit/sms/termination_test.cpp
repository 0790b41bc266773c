// The end of the engine: what is released when, also from inside its own events and waits.
#include <set>

#include "unit/sms/engine_fixture.h"

namespace sms_tests {
namespace {

using testing_support::fake;

// Objects that only the engine holds, so that the order in which it lets go of them shows.
class Termination : public ::testing::Test {
 protected:
  class Transaction final : public clsTransaction {
   public:
    explicit Transaction(Lines& l) : log(l) {}
    void terminate() noexcept override { log.emplace_back("transactions"); }
    Lines& log;
  };
  class TimeOut final : public clstimeout {
   public:
    explicit TimeOut(Lines& l) : log(l) {}
    void terminate() noexcept override { log.emplace_back("time-out"); }
    Lines& log;
  };

  Ref<FakeObject> watched(const std::string& name) {
    const auto object = fake(name);
    object->whenTerminated = [this, name] { log.push_back(name); };
    return object;
  }
  // A getter that gives its only reference away.
  static FakeObject::Script once(Ref<FakeObject> object) {
    const auto kept = std::make_shared<Ref<FakeObject>>(std::move(object));
    return [kept](Access, Args) -> Variant { return std::exchange(*kept, nullptr)->object(); };
  }
  Ref<FakeObject> timer(const std::string& name) {
    const auto object = watched(name);
    object->script(u"Enabled", [this, name](Access, Args args) -> Variant {
      log.push_back(name + (to<bool>(args[0]) ? " on" : " off"));
      if (timersFail) raiseError(5);
      return {};
    });
    return object;
  }
  outlook::MAPIFolder folder(const std::string& name) {
    const auto object = watched(name);
    object->script(u"Items", once(watched(name + " items")));
    return object->as<outlook::MAPIFolder>();
  }

  void fill() {
    handler = make<clsSMSHandler>();
    int made = 0;
    system.objects.provide(timermm::progIdTimer,
                           [&] { return timer(made++ == 0 ? "send timer" : "guard timer")->object(); });
    system.objects.provide(txtmsghelper::progIdTxtMsg, [&] { return watched("helper")->object(); });
    const auto phones = fake("phones");
    phones->value(u"Count", 0);
    FakeObject* worker = nullptr;
    system.objects.provide(dvmworkerlib::progIdWorker, [&] {
      const auto object = watched("worker");
      object->value(u"CellPhones", phones->object());
      worker = object.get();
      return object->object();
    });
    handler->InitCAPIObjects();
    handler->Inbox(folder("Inbox"));
    handler->DeletedItems(folder("Deleted Items"));
    handler->Outbox(folder("Outbox"));
    handler->SentMail(folder("Sent Items"));
    handler->Contacts(folder("Contacts"));
    {
      const auto application = watched("application");
      const auto nameSpace = std::make_shared<Ref<FakeObject>>(watched("namespace"));
      application->method(u"GetNamespace",
                          [nameSpace](Args) -> Variant { return std::exchange(*nameSpace, nullptr)->object(); });
      handler->OutlookApplication(application->as<outlook::Application>());
    }
    const auto phone = watched("phone");
    phone->script(u"SMS", once(watched("SMS object")));
    worker->fire(dvmworkerlib::WorkerEvents::OnNotifyCellPhoneConnected, 1, phone->object());
    SMSHandlerProbe probe(*handler);
    probe.transactions()->Add(make<Transaction>(log), u"Key:1");
    probe.timeOut() = make<TimeOut>(log);
    log.clear();
  }

  testing_support::Census census;
  testing_support::NativeSystem system;
  Lines log;
  bool timersFail = false;
  Ref<clsSMSHandler> handler;
};

const Lines order{"guard timer off", "guard timer", "send timer off",      "send timer",    "transactions",
                  "Inbox",           "Inbox items", "Deleted Items items", "Deleted Items", "Outbox items",
                  "Outbox",          "Sent Items",  "Sent Items items",    "helper",        "SMS object",
                  "phone",           "worker",      "namespace",           "application"};

TEST_F(Termination, ReleasesInOrder_ContactsAndTimeOutWithTheObject) {
  fill();
  handler = nullptr;
  ASSERT_GE(log.size(), order.size());
  const auto end = log.begin() + static_cast<std::ptrdiff_t>(order.size());
  EXPECT_EQ((Lines(log.begin(), end)), order);
  // Nobody asked these folders for their items, which end with them.
  EXPECT_EQ((std::multiset<std::string>(end, log.end())),
            (std::multiset<std::string>{"Contacts", "Contacts items", "time-out"}));
}

TEST_F(Termination, TimersThatFailToStop_AreReleasedAllTheSame) {
  fill();
  timersFail = true;
  handler = nullptr;
  EXPECT_EQ(firstOf(log, order.size()), order);
}

TEST_F(Termination, FreshEngine_ReleasesNothing) {
  handler = make<clsSMSHandler>();
  handler = nullptr;
  EXPECT_EQ(log, Lines{});
}

// ---- from inside ----------------------------------------------------------------------------------------------------

// The owner lets go from inside an event or a wait: everything is released at that moment, though the stack still
// stands on the engine's memory.
class LettingGo : public EngineFixture {
 protected:
  LettingGo() { start(); }

  // Lets go and looks, on the spot, at what the engine still holds and hears.
  void letGoAndLook() {
    SMSHandlerProbe engine(handler());
    letGo();
    looked = true;
    EXPECT_FALSE(engine.transactions());
    EXPECT_FALSE(engine.cellPhone());
    EXPECT_FALSE(engine.application());
    EXPECT_FALSE(engine.nameSpace());
    for (const auto* folder :
         {&engine.inbox(), &engine.deletedItems(), &engine.outbox(), &engine.sentMail(), &engine.contacts()})
      EXPECT_FALSE(*folder);
    EXPECT_FALSE(engine.mapiHelper());
    EXPECT_FALSE(engine.smsToDelete());
    EXPECT_FALSE(engine.colInbox());
    EXPECT_FALSE(engine.colDeletedItems());
    for (const auto& source : {sms, worker, timers[0], timers[1], outbox.items, deletedItems.items})
      EXPECT_EQ(source->listeners(), 0u) << source->label();
    EXPECT_EQ(timers[0]->valueOf(u"Enabled"), Variant(false));
    EXPECT_EQ(timers[1]->valueOf(u"Enabled"), Variant(false));
  }
  // True when nobody but this test held it any more.
  static bool wasOnlyOurs(Ref<FakeObject>& object) {
    bool gone = false;
    object->whenTerminated = [&] { gone = true; };
    FakeObject* const raw = object.get();
    object = nullptr;
    if (!gone) raw->whenTerminated = nullptr;
    return gone;
  }
  void expectReleased() {
    letGoAndLook();
    EXPECT_TRUE(wasOnlyOurs(application));
    EXPECT_TRUE(wasOnlyOurs(helper));
    EXPECT_TRUE(wasOnlyOurs(timers[0]));
    EXPECT_TRUE(wasOnlyOurs(timers[1]));
    EXPECT_TRUE(wasOnlyOurs(inbox.folder));
    EXPECT_TRUE(wasOnlyOurs(sentMail.folder));
    EXPECT_TRUE(wasOnlyOurs(contacts.folder));
    EXPECT_TRUE(wasOnlyOurs(outbox.folder));
    EXPECT_TRUE(wasOnlyOurs(outbox.items));
    EXPECT_TRUE(wasOnlyOurs(deletedItems.folder));
    EXPECT_TRUE(wasOnlyOurs(deletedItems.items));
  }

  bool looked = false;
};

TEST_F(LettingGo, InsideOnPhoneConnected_ReleasesEverythingAtOnce) {
  owner->whenNoticed = [this](bool) { expectReleased(); };
  notifyConnected(1, phone->object());
  EXPECT_TRUE(looked);
  EXPECT_EQ(trace(), (Lines{"m_bPhoneConnected = 1", "New phone connected!", "Old phone still connected, use this"}));
}

TEST_F(LettingGo, InsideOnPhoneConnectedOfTheStart_EndsTheStart) {
  letGo();
  timers.clear();
  owner->m_objSMSHandler = make<clsSMSHandler>();
  clear();
  owner->whenNoticed = [this](bool) {
    giveFolders();
    expectReleased();
  };
  EXPECT_TRUE(owner->m_objSMSHandler->InitCAPIObjects());
  EXPECT_TRUE(looked);
}

// Calls into the worker's process serve the mail client's messages, its disconnect among them.
class LettingGoInside : public LettingGo, public ::testing::WithParamInterface<const char*> {
 protected:
  // The next answer comes after the owner has let go.
  void letGoBefore(FakeObject& object, StringView member, Variant answer) {
    object.script(member, [this, answer](Access, Args) -> Variant {
      if (!looked) letGoAndLook();
      return answer;
    });
  }
  void expectUnheard() {
    EXPECT_TRUE(looked);
    EXPECT_EQ(owner->notices, std::vector<bool>{});
    for (const auto& source : {sms, worker, timers[0], timers[1]}) EXPECT_EQ(source->listeners(), 0u);
  }
};

TEST_P(LettingGoInside, AStartsCall_TellsNobodyAndLeavesNoListener) {
  const std::string call = GetParam();
  letGo();
  timers.clear();
  owner->m_objSMSHandler = make<clsSMSHandler>();
  clear();
  if (call == "New Worker")
    system.objects.provide(dvmworkerlib::progIdWorker, [this] {
      letGoAndLook();
      return worker->object();
    });
  if (call == "CellPhones") letGoBefore(*worker, u"CellPhones", phones->object());
  if (call == "Item") letGoBefore(*phones, u"Item", phone->object());
  if (call == "IsConnected") letGoBefore(*phone, u"IsConnected", true);
  if (call == "SMS") letGoBefore(*phone, u"SMS", sms->object());
  owner->m_objSMSHandler->InitCAPIObjects();
  expectUnheard();
}
INSTANTIATE_TEST_SUITE_P(Calls, LettingGoInside,
                         ::testing::Values("New Worker", "CellPhones", "Item", "IsConnected", "SMS"));

class LettingGoInsideANotice : public LettingGoInside {};

TEST_P(LettingGoInsideANotice, TellsNobodyAndLeavesNoListener) {
  const std::string call = GetParam();
  phone->value(u"IsConnected", false);
  const auto otherSms = newSmsObject("OtherSMS");
  const auto other = newPhone("OtherPhone", true, otherSms->object());
  if (call == "IsConnected") letGoBefore(*phone, u"IsConnected", false);
  if (call == "SMS") letGoBefore(*other, u"SMS", otherSms->object());
  notifyConnected(1, other->object());
  expectUnheard();
  EXPECT_EQ(otherSms->listeners(), 0u);
}
INSTANTIATE_TEST_SUITE_P(Calls, LettingGoInsideANotice, ::testing::Values("IsConnected", "SMS"));

TEST_F(LettingGo, InsideASend_LeavesTheMessageAlone) {
  const auto item = addItem(outbox, u"Anna [1]", u"Hello");
  phone->script(u"IsConnected", [this](Access, Args) -> Variant {
    letGoAndLook();
    return true;
  });
  tick(sendTimer(), 500);
  EXPECT_TRUE(looked);
  EXPECT_TRUE(outbox.has(item));
  EXPECT_EQ(created.size(), 0u);
  EXPECT_EQ(item->valueOf(u"Mileage"), Variant(u""));
}

TEST_F(LettingGo, BetweenSendAndTransaction_IsQuiet) {
  const auto item = addItem(outbox, u"Anna [1]", u"Hello");
  guardTimer().script(u"Resolution", [this](Access, Args) -> Variant {
    guardTimer().value(u"Resolution", 0);
    letGoAndLook();
    return {};
  });
  tick(sendTimer(), 500);
  EXPECT_TRUE(looked);
  EXPECT_TRUE(outbox.has(item));
}

TEST_F(LettingGo, InsideTheDeletedItemsEventOfAFailure_IsValidToTheEnd) {
  const auto item = addItem(outbox, u"Anna [1]", u"Hello");
  item->value(u"Mileage", u"2");
  tick(sendTimer(), 500);
  clear();
  // The event's handler asks for the item's class first of all.
  item->method(u"Delete", [this, item = item.get()](Args) -> Variant {
    item->script(u"MessageClass", [this](Access, Args) -> Variant {
      letGoAndLook();
      return MESSAGE_CLASS;
    });
    moveTo(Ref<FakeObject>(item), deletedItems);
    return {};
  });
  answer(17, -1);
  EXPECT_TRUE(looked);
  EXPECT_TRUE(deletedItems.has(item));
  EXPECT_EQ(inbox.contents.size(), 1u);
  const Lines lines = trace();
  EXPECT_EQ(lines.back(), "ReceiveAll function called.");
}

TEST_F(LettingGo, InsideTheMoveToSentItems_IsLogged) {
  const auto item = addItem(outbox, u"Anna [1]", u"Hello");
  tick(sendTimer(), 500);
  clear();
  item->method(u"Move", [this, item = item.get()](Args args) -> Variant {
    moveTo(Ref<FakeObject>(item), *folderOf(to<Object>(args[0])));
    letGoAndLook();
    return item->object();
  });
  answer(17, 0);
  EXPECT_TRUE(looked);
  EXPECT_TRUE(sentMail.has(item));
  EXPECT_EQ(trace().back(), "Error:91, Object variable or With block variable not set, mrktxtmsg");
}

TEST_F(LettingGo, InsideTheBalloon_SendsNothing) {
  notifyConnected(0, Object());
  assistant->value(u"On", true);
  balloon->method(u"Show", [this](Args) -> Variant {
    letGoAndLook();
    return -1;
  });
  arrive(outbox, newItem(u"Anna [1]", u"Hello"));
  EXPECT_TRUE(looked);
}

TEST_F(LettingGo, InsideTheListingsWait_EndsItFalse) {
  answersListings = false;
  bool result = true;
  system.time.post([this] { expectReleased(); });
  const Hold<clsSMSHandler> keep(&handler());
  result = keep->ReceiveAll();
  EXPECT_FALSE(result);
  EXPECT_TRUE(looked);
  EXPECT_EQ(system.time.waits(), 1);
  EXPECT_EQ(trace(), (Lines{"Inside Function ReceiveAll", "Create m_smsToDelete collection",
                            "Inside ReceiveAll Function - m_bReceiveAll = True", "List Message - InitTimeOut 5000ms",
                            "Wait for async operation to complete", "ListMessage - cpSMSMEMessageStore - bRet = False",
                            "Error:3, Error during ListMessage, Store:1, ReceiveAll"}));
}

TEST_F(LettingGo, InsideTheDeletionsWait_EndsItFalse) {
  answersDeletions = false;
  system.time.post([this] { expectReleased(); });
  std::int32_t store = 2;
  const Hold<clsSMSHandler> keep(&handler());
  EXPECT_FALSE(keep->DeleteSMSFromPhone(store, 1));
  EXPECT_TRUE(looked);
  EXPECT_EQ(system.time.waits(), 1);
  EXPECT_EQ(trace(), (Lines{"Inside Function DeleteSMSFromPhone", "DeleteSMSFromPhone - IsStorageSupported = True",
                            "Delete SMS in phone: transaction id: 17", "DeleteSMSFromPhone = False"}));
}

TEST_F(LettingGo, InsideTheWaitOfAFullRun_IsValidToTheEnd) {
  store({.text = u"One", .index = 1});
  system.registry.setString(rootCurrentUser, "Software\\Microsoft\\Office\\9.0\\Outlook\\Options\\TextMessage",
                            "SendReceive_AutoRemove", "1");
  answersDeletions = false;
  sms->method(u"DeleteMessage", [this](Args) -> Variant {
    system.time.post([this] { letGoAndLook(); });
    return 40;
  });
  const Hold<clsSMSHandler> keep(&handler());
  EXPECT_TRUE(keep->ReceiveAll()) << "the listings had ended";
  EXPECT_TRUE(looked);
  EXPECT_EQ(inbox.bodies(), Lines{"One"});
}

TEST_F(LettingGo, TimersAndAnswersAfterwards_AreNotHeard) {
  const auto oldTimers = timers;
  letGo();
  system.windows.clearTrace();
  for (const auto& timer : oldTimers) tick(*timer, 500);
  answer(17, 0);
  notifyConnected(1, phone->object());
  arrive(outbox, newItem(u"Anna [1]", u"Hello"));
  EXPECT_EQ(trace(), Lines{});
}

}  // namespace
}  // namespace sms_tests

// Receiving through the stand-in mail client, the servers and a simulated handset, all in this process: what a user
// sees in the folders and on the phone.
#include "addin/diag/basDbgOut.h"
#include "addin/platform/date.h"
#include "mailclient/application.h"
#include "mailclient/client.h"
#include "servers/dvmworker/worker.h"
#include "servers/handset/simulated_phone.h"
#include "servers/mrktxtmsghelper/txtmsg.h"
#include "servers/sms_object/sms_object.h"
#include "servers/timermm/timer.h"
#include "unit/sms/receiving_fixture.h"

namespace sms_tests {
namespace {

using handset::Operation;
using handset::Outcome;
using handset::SimulatedPhone;
using handset::Store;
using testing_support::utf8;

class ReceivingFromTheHandset : public ::testing::Test, protected ReceivingTrace {
 protected:
  ReceivingFromTheHandset() {
    dbgChannel = {};
    dbgChannel.Level = 2;
    system.windows.openViewer();
    option("My_FullName", "Me");
    option("My_PhoneNo", "+4670");
    provideServers();
    mail = mailclient::MailClient::create();
    const outlook::Application application(mail->application().get()->object().automation());
    session = application.GetNamespace(u"MAPI");

    engine = make<clsSMSHandler>();
    engine->InitCAPIObjects();
    engine->Inbox(folder(outlook::olFolderInbox));
    engine->DeletedItems(folder(outlook::olFolderDeletedItems));
    engine->Outbox(folder(outlook::olFolderOutbox));
    engine->SentMail(folder(outlook::olFolderSentMail));
    engine->Contacts(folder(outlook::olFolderContacts));
    engine->OutlookApplication(application);
    system.windows.clearTrace();
  }
  ~ReceivingFromTheHandset() override {
    engine = nullptr;
    session = {};
    system.time.dropWork();
    system.objects.withdrawAll();
    mail->quit();
    dbgChannel = {};
  }

  void provideServers() {
    namespace dvmworker = servers::dvmworker;
    const auto sms = make<servers::sms_object::SmsObject>(system.time, ids);
    sms->attach(phone);
    const auto phones = make<dvmworker::CellPhones>(std::vector{make<dvmworker::CellPhone>(phone, sms->object())});
    const auto worker = make<dvmworker::Worker>(system.time, phones);
    system.objects.provide(dvmworkerlib::progIdWorker, [worker] { return worker->object(); });
    system.objects.provide(platform::timermm::progIdTimer,
                           [this] { return make<servers::timermm::Timer>(system.time)->object(); });
    system.objects.provide(platform::txtmsghelper::progIdTxtMsg, [] {
      return make<servers::txtmsghelper::TxtMsg>(
                 servers::txtmsghelper::Surroundings{.toUtc = [](Date local) { return local; }})
          ->object();
    });
  }

  void option(const std::string& name, const std::string& text) {
    system.registry.setString(rootCurrentUser, optionsKey, name, text);
  }
  void autoRemove() { system.registry.setDword(rootCurrentUser, optionsKey, "SendReceive_AutoRemove", 1); }

  outlook::MAPIFolder folder(outlook::OlDefaultFolders which) { return session.GetDefaultFolder(which); }
  static std::vector<outlook::MailItem> itemsOf(const outlook::MAPIFolder& where) {
    std::vector<outlook::MailItem> result;
    const outlook::Items items = where.Items();
    for (std::int32_t i = 1; i <= items.Count(); ++i) result.push_back(items.Item(i));
    return result;
  }
  Lines bodies(outlook::OlDefaultFolders which) {
    Lines result;
    for (const outlook::MailItem& item : itemsOf(folder(which))) result.push_back(utf8(item.Body()));
    return result;
  }
  // Everything that a received item shows.
  static Lines shown(const outlook::MailItem& item) {
    const LateBound late(item);
    return {utf8(item.MessageClass()),
            utf8(item.To()),
            utf8(item.SenderName()),
            utf8(late.get<String>(u"Subject")),
            utf8(item.Body()),
            utf8(item.ConversationTopic()),
            utf8(concat(item.SentOn())),
            utf8(concat(late.get<Date>(u"ReceivedTime"))),
            late.get<bool>(u"UnRead") ? "unread" : "read"};
  }

  void put(StringView text, StringView timeStamp, Store where = Store::Sim,
           handset::Status status = handset::Status::ReceivedUnread) {
    ASSERT_NE(phone->put({.store = where,
                          .status = status,
                          .number = u"+46701",
                          .text = text.data(),
                          .timeStamp = timeStamp.data()}),
              0);
  }
  Lines onPhone(Store where) {
    Lines result;
    for (const handset::StoredMessage& m : phone->stored(where)) result.push_back(utf8(m.text));
    return result;
  }
  void plugOutAndIn() {
    phone->unplug();
    system.time.runDue();
    phone->plug();
    system.time.runDue();
    system.windows.clearTrace();
  }

  testing_support::NativeSystem system;
  servers::sms_object::TransactionIds ids{{[] { return 17; }, [](std::int32_t) {}}};
  Ref<SimulatedPhone> phone = make<SimulatedPhone>(system.time);
  mailclient::ClientPtr mail;
  outlook::NameSpace session;
  Ref<clsSMSHandler> engine;
};

TEST_F(ReceivingFromTheHandset, FourMessages_AreWholeItemsInTheInbox) {
  const outlook::MAPIFolder contacts = folder(outlook::olFolderContacts);
  const LateBound folders(contacts.Folders());
  const outlook::MAPIFolder friends(folders.call<Object>(u"Add", u"Friends").automation());
  const LateBound anna(friends.Items().Add(u"IPM.Contact"));
  anna.let(u"FullName", u"Anna Berg");
  anna.let(u"MobileTelephoneNumber", u"+46 (7) 01");
  anna.call(u"Save");
  put(u"one", u"010203040506", Store::Phone);
  put(u"two\r\nlines and more", u"991231235959", Store::Phone);
  phone->put({.store = Store::Sim, .number = u"+49", .text = u"three", .timeStamp = u"490101000000"});
  put(u"four", u"010203040507");

  EXPECT_TRUE(engine->ReceiveAll());

  const auto items = itemsOf(folder(outlook::olFolderInbox));
  ASSERT_EQ(items.size(), 4u);
  EXPECT_EQ(shown(items[0]), (Lines{"IPM.Note.TxtMsg", "Me [+4670]", "Anna Berg [+46701]", "one...", "one",
                                    "Me [+4670]\x01"
                                    "010203040506",
                                    "2/3/2001 4:05:06 AM", "2/3/2001 4:05:06 AM", "unread"}));
  EXPECT_EQ(shown(items[1]),
            (Lines{"IPM.Note.TxtMsg", "Me [+4670]", "Anna Berg [+46701]", "two lines ...", "two\r\nlines and more",
                   "Me [+4670]\x01"
                   "991231235959",
                   "12/31/1999 11:59:59 PM", "12/31/1999 11:59:59 PM", "unread"}));
  EXPECT_EQ(shown(items[2]), (Lines{"IPM.Note.TxtMsg", "Me [+4670]", "[+49]", "three...", "three",
                                    "Me [+4670]\x01"
                                    "490101000000",
                                    "1/1/2049", "1/1/2049", "unread"}));
  EXPECT_EQ(utf8(items[3].Body()), "four");
  EXPECT_EQ(bodies(outlook::olFolderOutbox), Lines{});
  EXPECT_EQ(onPhone(Store::Phone), (Lines{"one", "two\r\nlines and more"}));
  EXPECT_EQ(onPhone(Store::Sim), (Lines{"three", "four"}));
}

TEST_F(ReceivingFromTheHandset, OneMessage_WritesTheWholeTrace) {
  put(u"Hello", u"010203040506");
  EXPECT_TRUE(engine->ReceiveAll());
  const auto items = itemsOf(folder(outlook::olFolderInbox));
  ASSERT_EQ(items.size(), 1u);
  const std::string id = utf8(items[0].EntryID());
  const Lines creation = joined({creationBegins(), searched(builtInbox(), {}, false), notInInbox(),
                                 searched(builtDeletedItems(), {}, false), dupe(false), itemMade(id)});
  // The phone's last answer carries the message and ends the listing.
  const Lines last = joined({listingBegins(),
                             answered(18, 0, STATE_LIST),
                             {"STATE_LIST - Got one message, tranid: 18 status: 0"},
                             creation,
                             {"CreateMessage called - message will be created in outbox",
                              "Return from CreateMessage call - strEntryId = " + id,
                              "Check if message lengt is larger than 0", "YES, Move message to Inbox: " + id},
                             moved(id, "Outbox", "Inbox")});
  EXPECT_EQ(system.trace(), run(true, listed(17), last));
}

TEST_F(ReceivingFromTheHandset, SameMessageInBothMemories_IsCreatedOnce) {
  put(u"Hello", u"010203040506", Store::Phone);
  put(u"Hello", u"010203040506");
  EXPECT_TRUE(engine->ReceiveAll());
  EXPECT_EQ(bodies(outlook::olFolderInbox), Lines{"Hello"});
}

TEST_F(ReceivingFromTheHandset, SecondFullListing_CreatesNothing) {
  put(u"one", u"010203040506", Store::Phone);
  put(u"two\r\n", u"010203040507");
  engine->ReceiveAll();
  plugOutAndIn();
  EXPECT_TRUE(engine->ReceiveAll());
  EXPECT_EQ(bodies(outlook::olFolderInbox), (Lines{"one", "two\r\n"}));
}

TEST_F(ReceivingFromTheHandset, LaterMessage_IsBroughtInByAnUnreadListing) {
  put(u"one", u"010203040506");
  engine->ReceiveAll();
  phone->deliver(u"+46701", u"two", u"010203040507");
  EXPECT_TRUE(engine->ReceiveAll());
  EXPECT_TRUE(engine->ReceiveAll());
  EXPECT_EQ(bodies(outlook::olFolderInbox), (Lines{"one", "two"}));
}

TEST_F(ReceivingFromTheHandset, DeletedInTheMailClient_LeavesTheSim) {
  put(u"one", u"010203040506");
  put(u"two", u"010203040507");
  engine->ReceiveAll();
  itemsOf(folder(outlook::olFolderInbox)).at(0).Delete();
  EXPECT_EQ(onPhone(Store::Sim), Lines{"two"});
  EXPECT_EQ(bodies(outlook::olFolderInbox), Lines{"two"});
  EXPECT_EQ(bodies(outlook::olFolderDeletedItems), Lines{"one"});
}

TEST_F(ReceivingFromTheHandset, WithAutoRemove_FreshMessagesLeaveThePhone) {
  autoRemove();
  put(u"one", u"010203040506", Store::Phone);
  put(u"two", u"010203040507");
  EXPECT_TRUE(engine->ReceiveAll());
  EXPECT_EQ(bodies(outlook::olFolderInbox), (Lines{"one", "two"}));
  EXPECT_EQ(onPhone(Store::Phone), Lines{});
  EXPECT_EQ(onPhone(Store::Sim), Lines{});
}

TEST_F(ReceivingFromTheHandset, StoredOutgoingMessages_StayWhereTheyAre) {
  autoRemove();
  put(u"draft", u"010203040506", Store::Sim, handset::Status::StoredUnsent);
  put(u"sent", u"010203040507", Store::Sim, handset::Status::StoredSent);
  EXPECT_TRUE(engine->ReceiveAll());
  EXPECT_EQ(bodies(outlook::olFolderInbox), Lines{});
  EXPECT_EQ(onPhone(Store::Sim), (Lines{"draft", "sent"}));
}

TEST_F(ReceivingFromTheHandset, SimThatFillsUp_IsFullAndIsNotAnyMoreWhenOneGoes) {
  EXPECT_EQ(engine->isSimFull(), 0);
  EXPECT_GT(phone->fill(Store::Sim), 0);
  EXPECT_EQ(engine->isSimFull(), 1);
  std::int32_t mem = sim;
  EXPECT_TRUE(engine->DeleteSMSFromPhone(mem, 1));
  EXPECT_EQ(engine->isSimFull(), 0);
  EXPECT_TRUE(engine->DeleteSMSFromPhone(mem, 1));  // gone already
}

TEST_F(ReceivingFromTheHandset, FullInbox_ReceivesOnlyWhatIsNew) {
  const outlook::Items inbox = folder(outlook::olFolderInbox).Items();
  put(u"old", u"010203040506");
  engine->ReceiveAll();
  for (int i = 0; i < 200; ++i) {
    const outlook::MailItem item = inbox.Add(MESSAGE_CLASS);
    LateBound(item).let(u"Body", u"filler");
    item.Save();
  }
  plugOutAndIn();
  put(u"new", u"010203040507");
  EXPECT_TRUE(engine->ReceiveAll());
  const Lines all = bodies(outlook::olFolderInbox);
  EXPECT_EQ(all.size(), 202u);
  EXPECT_EQ(std::count(all.begin(), all.end(), "old"), 1);
  EXPECT_EQ(all.back(), "new");
}

TEST_F(ReceivingFromTheHandset, SilentPhone_TimesOutAndTheNextRunBringsEverything) {
  put(u"one", u"010203040506", Store::Phone);
  phone->script(Operation::List, {.silent = true});
  EXPECT_FALSE(engine->ReceiveAll());
  EXPECT_EQ(system.trace().back(), "Error:3, Error during ListMessage, Store:1, ReceiveAll");
  plugOutAndIn();
  EXPECT_TRUE(engine->ReceiveAll());
  EXPECT_EQ(bodies(outlook::olFolderInbox), Lines{"one"});
}

TEST_F(ReceivingFromTheHandset, UnpluggedWhileListing_NothingIsLostOrDoubled) {
  put(u"one", u"010203040506", Store::Phone);
  put(u"two", u"010203040507");
  system.time.post(50, [this] { phone->unplug(); });
  EXPECT_FALSE(engine->ReceiveAll());
  phone->plug();
  system.time.runDue();
  EXPECT_TRUE(engine->ReceiveAll());
  EXPECT_EQ(bodies(outlook::olFolderInbox), (Lines{"one", "two"}));
}

TEST_F(ReceivingFromTheHandset, DeletionThatThePhoneRefuses_LeavesTheMessageAndGoesOn) {
  autoRemove();
  put(u"one", u"010203040506");
  put(u"two", u"010203040507");
  phone->script(Operation::Remove, {.result = 5});
  EXPECT_TRUE(engine->ReceiveAll());
  EXPECT_EQ(onPhone(Store::Sim), Lines{"one"});
  EXPECT_EQ(bodies(outlook::olFolderInbox), (Lines{"one", "two"}));
}

TEST_F(ReceivingFromTheHandset, LongListing_TakesAsLongAsItTakes) {
  for (int i = 10; i < 18; ++i)
    put(u"one", String(u"0102030405") + String(1, u'1') + static_cast<char16_t>(u'0' + i % 10));
  phone->script(Operation::List, {.delay = 4000});
  phone->script(Operation::List, {.delay = 4000});
  EXPECT_TRUE(engine->ReceiveAll());
  EXPECT_GE(system.time.elapsed(), 8000);
  EXPECT_EQ(bodies(outlook::olFolderInbox).size(), 8u);
}

TEST_F(ReceivingFromTheHandset, EngineLetGoWhileListing_LeavesThePhoneAndTheMailClientAlone) {
  put(u"one", u"010203040506");
  system.time.post(50, [this] { engine = nullptr; });
  clsSMSHandler& running = *engine;
  const Hold<clsSMSHandler> memory(&running);
  EXPECT_FALSE(running.ReceiveAll());
  system.time.runDue();
  EXPECT_EQ(bodies(outlook::olFolderInbox), Lines{});
  EXPECT_EQ(onPhone(Store::Sim), Lines{"one"});
}

}  // namespace
}  // namespace sms_tests

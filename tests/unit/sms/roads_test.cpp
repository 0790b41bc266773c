// The roads of a message from end to end, in one process: the stand-in mail client, the servers' own objects and the
// simulated handset, with time that is moved by hand.
#include <gtest/gtest.h>

#include "addin/diag/basDbgOut.h"
#include "mailclient/application.h"
#include "mailclient/client.h"
#include "servers/dvmworker/worker.h"
#include "servers/handset/simulated_phone.h"
#include "servers/mrktxtmsghelper/txtmsg.h"
#include "servers/sms_object/sms_object.h"
#include "servers/timermm/timer.h"
#include "support/native_system.h"
#include "support/seam_recorder.h"
#include "support/text.h"
#include "unit/sms/sms_handler_probe.h"

namespace sms_tests {
namespace {

using namespace addin;
using handset::Operation;
using handset::OutgoingMessage;
using handset::Store;
using testing_support::utf8;
using Lines = std::vector<std::string>;

class Roads : public ::testing::Test {
 protected:
  Roads() {
    dbgChannel = {};
    dbgChannel.Level = 2;
    system.windows.openViewer();
    provideServers();
    engine = make<clsSMSHandler>();
    engine->InitCAPIObjects();
    engine->Inbox(folder(outlook::olFolderInbox));
    engine->DeletedItems(folder(outlook::olFolderDeletedItems));
    engine->Outbox(folder(outlook::olFolderOutbox));
    engine->SentMail(folder(outlook::olFolderSentMail));
    engine->Contacts(folder(outlook::olFolderContacts));
    engine->OutlookApplication(application());
    system.windows.clearTrace();
  }
  ~Roads() override { dbgChannel = {}; }

  void provideServers() {
    system.objects.provide(timermm::progIdTimer,
                           [this] { return make<servers::timermm::Timer>(system.time)->object(); });
    system.objects.provide(txtmsghelper::progIdTxtMsg, [] {
      return make<servers::txtmsghelper::TxtMsg>(servers::txtmsghelper::Surroundings{.toUtc = [](Date d) { return d; }})
          ->object();
    });
    system.objects.provide(dvmworkerlib::progIdWorker, [this] {
      const auto sms = make<servers::sms_object::SmsObject>(system.time, ids);
      sms->attach(phone);
      std::vector<Ref<servers::dvmworker::CellPhone>> phones{make<servers::dvmworker::CellPhone>(phone, sms->object())};
      return make<servers::dvmworker::Worker>(system.time, make<servers::dvmworker::CellPhones>(std::move(phones)))
          ->object();
    });
  }

  outlook::Application application() { return as<outlook::Application>(client->application().get()->object()); }
  outlook::MAPIFolder folder(outlook::OlDefaultFolders which) {
    return application().GetNamespace(u"MAPI").GetDefaultFolder(which);
  }
  // What a user does who writes a text message and sends it. The topic of a message follows its subject.
  void write(StringView to, StringView text) {
    const auto item = folder(outlook::olFolderOutbox).Items().Add(MESSAGE_CLASS);
    const LateBound writable(item);
    writable.let(u"To", to);
    writable.let(u"Subject", to);
    writable.let(u"Body", text);
    item.Save();
  }
  Lines bodies(outlook::OlDefaultFolders which) {
    Lines result;
    const auto items = folder(which).Items();
    for (std::int32_t i = 1; i <= items.Count(); ++i) result.push_back(utf8(items.Item(i).Body()));
    return result;
  }
  bool unread(outlook::OlDefaultFolders which, std::int32_t position) {
    return LateBound(folder(which).Items().Item(position)).get<bool>(u"UnRead");
  }
  std::int32_t count(const std::string& line) {
    const Lines all = system.trace();
    return static_cast<std::int32_t>(std::count(all.begin(), all.end(), line));
  }
  SMSHandlerProbe probe() { return SMSHandlerProbe(*engine); }

  testing_support::Census census;
  testing_support::NativeSystem system;
  std::int32_t nextId = 0;
  servers::sms_object::TransactionIds ids{{[this] { return nextId; }, [this](std::int32_t n) { nextId = n; }}};
  Ref<handset::SimulatedPhone> phone = make<handset::SimulatedPhone>(system.time);
  mailclient::ClientPtr client = mailclient::MailClient::create();
  Ref<clsSMSHandler> engine;
};

const std::string errorReport = "The TextMessage Service was unable to deliver the following message.\r\n\r\nHello";

TEST_F(Roads, OutgoingMessage_EndsReadInSentItems) {
  write(u"Anna Berg [+46 (70) 123 45 67]", u"Hello");
  EXPECT_EQ(phone->sent().size(), 0u);
  system.time.run(2000);
  EXPECT_EQ(phone->sent(), (std::vector<OutgoingMessage>{{u"", u"+46701234567", u"Hello"}}))
      << "the built-in service centre stands for the SIM's own";
  EXPECT_EQ(bodies(outlook::olFolderOutbox), Lines{});
  EXPECT_EQ(bodies(outlook::olFolderSentMail), Lines{"Hello"});
  EXPECT_FALSE(unread(outlook::olFolderSentMail, 1));
  EXPECT_EQ(probe().state(), IDLE);
  EXPECT_EQ(probe().transactions()->Count(), 0);
}

TEST_F(Roads, LongMessage_SetsTheGuardForItsParts) {
  write(u"Anna [1]", String(160, u'x'));
  system.time.run(2000);
  EXPECT_EQ(count("Guard timmer set to [2] parts"), 1);
  EXPECT_EQ(count("SetupGuard [50000]ms"), 1);
  EXPECT_EQ(phone->sent().size(), 1u);
}

TEST_F(Roads, SeveralMessages_GoOutInOrderOneAfterTheOther) {
  write(u"Anna [1]", u"First");
  write(u"Bo [2]", u"Second");
  write(u"Cia [3]", u"Third");
  system.time.run(5000);
  EXPECT_EQ(bodies(outlook::olFolderSentMail), (Lines{"First", "Second", "Third"}));
  EXPECT_EQ(phone->sent().size(), 3u);
  EXPECT_EQ(bodies(outlook::olFolderOutbox), Lines{});
}

TEST_F(Roads, RefusedThreeTimes_BecomesAnErrorReport) {
  for (int i = 0; i < 3; ++i) phone->script(Operation::Send, {.result = -1});
  write(u"Anna [1]", u"Hello");
  system.time.run(2000);
  EXPECT_EQ(bodies(outlook::olFolderOutbox), Lines{"Hello"}) << "nothing tries again by itself";
  EXPECT_TRUE(engine->SendAll());
  system.time.run(2000);
  EXPECT_EQ(bodies(outlook::olFolderInbox), Lines{});
  EXPECT_TRUE(engine->SendAll());
  system.time.run(2000);
  EXPECT_EQ(bodies(outlook::olFolderOutbox), Lines{});
  EXPECT_EQ(bodies(outlook::olFolderInbox), Lines{errorReport});
  EXPECT_TRUE(unread(outlook::olFolderInbox, 1));
  EXPECT_EQ(bodies(outlook::olFolderDeletedItems), Lines{"Hello"});
  EXPECT_EQ(phone->sent().size(), 0u);
  EXPECT_EQ(count("Error:-1, Not idle!, ReceiveAll"), 1);
  EXPECT_EQ(probe().state(), IDLE);
}

TEST_F(Roads, SilentPhone_IsGivenUpByTheGuardAndSentLater) {
  phone->script(Operation::Send, {.silent = true});
  write(u"Anna [1]", u"Hello");
  system.time.run(25000);
  EXPECT_EQ(probe().state(), STATE_SEND);
  system.time.run(1000);
  EXPECT_EQ(probe().state(), IDLE);
  EXPECT_EQ(count("Failed count:0"), 1);
  system.time.run(60000);
  EXPECT_EQ(phone->sent().size(), 0u) << "no next message is started";
  EXPECT_TRUE(engine->SendAll());
  system.time.run(2000);
  EXPECT_EQ(phone->sent().size(), 1u);
  EXPECT_EQ(bodies(outlook::olFolderSentMail), Lines{"Hello"});
}

TEST_F(Roads, UnpluggedDuringASend_GoesOutOnceAfterwards) {
  phone->script(Operation::Send, {.delay = 5000});
  write(u"Anna [1]", u"Hello");
  system.time.run(1000);
  EXPECT_EQ(probe().state(), STATE_SEND);
  phone->unplug();
  system.time.run(1000);
  EXPECT_FALSE(engine->IsPhoneConnected());
  EXPECT_EQ(probe().state(), STATE_SEND);
  EXPECT_FALSE(engine->SendAll());
  phone->plug();
  system.time.run(1000);
  EXPECT_TRUE(engine->IsPhoneConnected());
  EXPECT_TRUE(engine->SendAll());
  system.time.run(60000);
  EXPECT_EQ(phone->sent().size(), 1u);
  EXPECT_EQ(bodies(outlook::olFolderSentMail), Lines{"Hello"});
  EXPECT_EQ(bodies(outlook::olFolderOutbox), Lines{});
  EXPECT_EQ(count("Failed count:0"), 0) << "the new send's answer switched the old guard off";
}

TEST_F(Roads, IncomingMessages_ArriveUnreadOnceAndLeaveTheSimWhenDeleted) {
  phone->put({Store::Phone, 0, handset::Status::ReceivedRead, u"+461", u"One", u"010203040506"});
  phone->put({Store::Phone, 0, handset::Status::StoredSent, u"+469", u"Old", u""});
  phone->put({Store::Sim, 0, handset::Status::ReceivedUnread, u"+462", u"Two", u"010203040507"});
  phone->put({Store::Sim, 0, handset::Status::ReceivedUnread, u"+461", u"One", u"010203040506"});
  EXPECT_TRUE(engine->ReceiveAll());
  EXPECT_EQ(bodies(outlook::olFolderInbox), (Lines{"One", "Two"}));
  EXPECT_TRUE(unread(outlook::olFolderInbox, 1));
  EXPECT_EQ(bodies(outlook::olFolderOutbox), Lines{});
  EXPECT_TRUE(engine->ReceiveAll());
  EXPECT_EQ(bodies(outlook::olFolderInbox), (Lines{"One", "Two"}));

  folder(outlook::olFolderInbox).Items().Item(2).Delete();
  EXPECT_EQ(bodies(outlook::olFolderInbox), Lines{"One"});
  ASSERT_EQ(phone->stored(Store::Sim).size(), 1u);
  EXPECT_EQ(phone->stored(Store::Sim)[0].text, u"One");
  EXPECT_EQ(phone->stored(Store::Phone).size(), 2u);
}

TEST_F(Roads, SendDuringAListing_WaitsForTheNextOccasion) {
  phone->put({Store::Sim, 0, handset::Status::ReceivedUnread, u"+462", u"In", u"010203040507"});
  system.time.post([this] { write(u"Anna [1]", u"Out"); });
  EXPECT_TRUE(engine->ReceiveAll());
  EXPECT_EQ(bodies(outlook::olFolderInbox), Lines{"In"});
  EXPECT_EQ(bodies(outlook::olFolderOutbox), Lines{"Out"});
  EXPECT_TRUE(engine->SendAll());
  system.time.run(2000);
  EXPECT_EQ(phone->sent().size(), 1u);
}

TEST_F(Roads, End_LeavesNothingBehind) {
  phone->script(Operation::Send, {.silent = true});
  write(u"Anna [1]", u"Hello");
  system.time.run(1000);
  engine = nullptr;
  EXPECT_EQ(client->census[u"MAPIFolder"] + client->census[u"Items"] + client->census[u"Application"], 0);
  system.time.run(60000);
  EXPECT_EQ(bodies(outlook::olFolderOutbox), Lines{"Hello"});
}

}  // namespace
}  // namespace sms_tests

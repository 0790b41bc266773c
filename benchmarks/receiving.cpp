// A full run of 1,000 new messages into an Inbox of 10,000, through the stand-in mail client, the servers' objects and
// a simulated handset, all in this process. The clock is moved by hand, so nothing is waited for.
#include <cstdio>

#include "addin/diag/basDbgOut.h"
#include "mailclient/application.h"
#include "mailclient/client.h"
#include "mailclient/item.h"
#include "measure.h"
#include "servers/dvmworker/worker.h"
#include "servers/handset/simulated_phone.h"
#include "servers/mrktxtmsghelper/txtmsg.h"
#include "servers/sms_object/sms_object.h"
#include "servers/timermm/timer.h"
#include "support/native_system.h"
#include "unit/sms/sms_handler_probe.h"

namespace bench {
namespace {

using namespace addin;
using handset::SimulatedPhone;
using handset::Store;

constexpr std::int32_t messages = 1'000;
constexpr std::int32_t inboxItems = 10'000;

String stampOf(std::int32_t n) { return concat(u"01", 1'000'000'000 + n).substr(0, 12); }

// Hears every answer after the engine and walks through all records for it, as the look-up would without its index.
class Walker final : public Counted {
 public:
  explicit Walker(clsSMSHandler& engine) : inside_(engine) {}

  void answered(std::int32_t /*TransactionID*/, std::int32_t /*status*/, const Object& ShortMessage) {
    if (!ShortMessage) return;
    const String stamp = as<sms_objectlib::ShortMessage>(ShortMessage).TimeStamp();
    for (const Ref<coltextmessage>& cache : {inside_.colInbox(), inside_.colDeletedItems()}) {
      for (const Ref<clstextmessage>& record : *cache) {
        ++compared;
        if (record->SentOn() == stamp) ++same;
      }
    }
  }

  WithEvents<sms_objectlib::SMS> sms{this, on<sms_objectlib::SMSEvents::OnNotifyResponse, &Walker::answered>};
  std::int64_t compared = 0;
  std::int64_t same = 0;

 private:
  SMSHandlerProbe inside_;
};

class World {
 public:
  World() {
    dbgChannel = {};
    dbgChannel.Level = 1;
    namespace dvmworker = servers::dvmworker;
    sms_->attach(phone_);
    const auto phones = make<dvmworker::CellPhones>(std::vector{make<dvmworker::CellPhone>(phone_, sms_->object())});
    const auto worker = make<dvmworker::Worker>(system_.time, phones);
    system_.objects.provide(dvmworkerlib::progIdWorker, [worker] { return worker->object(); });
    system_.objects.provide(timermm::progIdTimer,
                            [this] { return make<servers::timermm::Timer>(system_.time)->object(); });
    system_.objects.provide(txtmsghelper::progIdTxtMsg, [] {
      return make<servers::txtmsghelper::TxtMsg>(
                 servers::txtmsghelper::Surroundings{.toUtc = [](Date local) { return local; }})
          ->object();
    });
    const outlook::Application application(mail_->application().get()->object().automation());
    const outlook::NameSpace session = application.GetNamespace(u"MAPI");
    inbox_ = session.GetDefaultFolder(outlook::olFolderInbox);
    fill();
    engine_->InitCAPIObjects();
    engine_->Inbox(inbox_);
    engine_->DeletedItems(session.GetDefaultFolder(outlook::olFolderDeletedItems));
    engine_->Outbox(session.GetDefaultFolder(outlook::olFolderOutbox));
    engine_->SentMail(session.GetDefaultFolder(outlook::olFolderSentMail));
    engine_->Contacts(session.GetDefaultFolder(outlook::olFolderContacts));
    engine_->OutlookApplication(application);
  }
  ~World() {
    engine_ = nullptr;
    inbox_ = {};
    system_.time.dropWork();
    system_.objects.withdrawAll();
    mail_->quit();
    dbgChannel = {};
  }
  World(const World&) = delete;
  World& operator=(const World&) = delete;

  double receive(bool walking) {
    const auto walker = make<Walker>(*engine_);
    if (walking) walker->sms = sms_objectlib::SMS(sms_->object().automation());
    const double seconds = secondsOf([&] { require(engine_->ReceiveAll(), "the run ends well"); });
    require(inbox_.Items().Count() == inboxItems + messages, "every message is in the Inbox");
    if (walking) require(walker->compared == std::int64_t{inboxItems} * messages, "every record is walked over");
    require(walker->same == 0, "no message was there before");
    return seconds;
  }

 private:
  void fill() {
    const outlook::Items items = inbox_.Items();
    for (std::int32_t n = 0; n < inboxItems; ++n) {
      const outlook::MailItem item = items.Add(MESSAGE_CLASS);
      mailclient::Item* const made = nativeOf<mailclient::Item>(item);
      made->putText(mailclient::Text::ConversationTopic, concat(u"[+46701234567]\x01", stampOf(n)));
      LateBound(item).let(u"Body", concat(u"An old message with the number ", n));
      item.Save();
    }
    for (const Store store : {Store::Phone, Store::Sim}) {
      phone_->setCapacity(store, messages / 2);
      for (std::int32_t n = 0; n < messages / 2; ++n) {
        const std::int32_t number = inboxItems + n + (store == Store::Sim ? messages / 2 : 0);
        require(phone_->put({.store = store,
                             .number = u"+46709999999",
                             .text = concat(u"A new message with the number ", number),
                             .timeStamp = stampOf(number)}) != 0,
                "the message fits");
      }
    }
  }

  testing_support::NativeSystem system_;
  servers::sms_object::TransactionIds ids_{{[] { return 1; }, [](std::int32_t) {}}};
  Ref<SimulatedPhone> phone_ = make<SimulatedPhone>(system_.time);
  Ref<servers::sms_object::SmsObject> sms_ = make<servers::sms_object::SmsObject>(system_.time, ids_);
  mailclient::ClientPtr mail_ = mailclient::MailClient::create();
  outlook::MAPIFolder inbox_;
  Ref<clsSMSHandler> engine_ = make<clsSMSHandler>();
};

}  // namespace

void receiving() {
  std::printf("\nReceiveAll of %s new messages, Inbox of %s (median of %d runs)\n", grouped(messages).c_str(),
              grouped(inboxItems).c_str(), runs);
  for (const bool walking : {false, true}) {
    const double seconds = medianOf([&] { return World().receive(walking); });
    const std::string how = walking ? "with a plain walk for each message" : "as it is";
    report(how + ", total", seconds, grouped(messages) + " created and moved");
    report(how + ", per message", seconds / messages,
           walking ? grouped(std::int64_t{inboxItems} * messages) + " records looked at" : "");
  }
}

}  // namespace bench

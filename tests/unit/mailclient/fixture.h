// A mail client in memory, seen through the add-in's own facades, and listeners that write down what they hear.
#pragma once

#include <functional>
#include <set>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "addin/platform/outlook.h"
#include "addin/platform/with_events.h"
#include "mailclient/application.h"
#include "mailclient/client.h"
#include "mailclient/item.h"

namespace mailclient {

namespace outlook = platform::outlook;
namespace office = platform::office;
using platform::LateBound;

// Expects the run-time error `number` from `act`.
inline void expectError(std::int32_t number, const std::function<void()>& act) {
  try {
    act();
    ADD_FAILURE() << "no error, expected " << number;
  } catch (const RuntimeError& error) {
    EXPECT_EQ(error.number, number) << std::string(error.description.begin(), error.description.end());
  }
}

class MailClientTest : public testing::Test {
 protected:
  void start(ClientOptions options = {}) {
    client = MailClient::create(std::move(options));
    application = outlook::Application(client->application().get()->object().automation());
    session = application.GetNamespace(u"MAPI");
  }
  void SetUp() override { start(); }

  outlook::MAPIFolder folder(outlook::OlDefaultFolders which) { return session.GetDefaultFolder(which); }

  // A saved text message.
  outlook::MailItem textMessage(const outlook::MAPIFolder& in, StringView body = u"Hello") {
    const outlook::MailItem item = in.Items().Add(u"IPM.Note.TxtMsg");
    LateBound(item).let(u"Body", body);
    item.Save();
    return item;
  }

  ClientPtr client;
  outlook::Application application;
  outlook::NameSpace session;
};

using Heard = std::vector<String>;

// Writes down the events of a set of items.
class ItemsListener final : public platform::Counted {
 public:
  explicit ItemsListener(Heard& heard, StringView name = {}) : heard_(heard), name_(name) {}

  void added(Object item) { say(u"added ", item); }
  void changed(Object item) { say(u"changed ", item); }
  void removed() { heard_.push_back(name_ + u"removed"); }

  platform::WithEvents<outlook::Items> items{this, platform::on<outlook::ItemsEvents::ItemAdd, &ItemsListener::added>,
                                             platform::on<outlook::ItemsEvents::ItemChange, &ItemsListener::changed>,
                                             platform::on<outlook::ItemsEvents::ItemRemove, &ItemsListener::removed>};

 private:
  void say(StringView what, const Object& item) {
    heard_.push_back(name_ + String(what) + LateBound(item).get<String>(u"Body"));
  }

  Heard& heard_;
  String name_;
};

}  // namespace mailclient

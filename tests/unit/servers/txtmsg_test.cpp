#include "servers/mrktxtmsghelper/txtmsg.h"

#include <gtest/gtest.h>

#include "addin/platform/date.h"
#include "support/errors.h"
#include "support/text.h"

namespace {

using namespace platform;
using servers::txtmsghelper::Surroundings;
using servers::txtmsghelper::TxtMsg;
using testing_support::errorNumberOf;
using testing_support::utf8;
using Log = std::vector<std::string>;

struct Properties final : mapi::MessageProps {
  explicit Properties(Log* l) : log(l) {}
  void setString(std::uint32_t tag, StringView text) override { write(tag, utf8(text)); }
  void setTime(std::uint32_t tag, Date utc) override { write(tag, std::to_string(utc.days)); }
  void setLong(std::uint32_t tag, std::int32_t value) override { write(tag, std::to_string(value)); }
  void write(std::uint32_t tag, const std::string& value) {
    char name[16];
    std::snprintf(name, sizeof name, "%08X=", tag);
    log->push_back(name + value);
    if (tag == failingTag) raiseError(-2147221246, u"MAPI", u"Not supported");
  }
  Log* log;
  std::uint32_t failingTag = 0;
};

// A mail client that writes down what is done with it.
struct Item final : NativeObject {
  explicit Item(Log* l) : log(l), properties(make<Properties>(l)) {}
  std::span<const Member> members() const override {
    static constexpr Member table[] = {
        writeOnly<&Item::setTo>(u"To", 1),           writeOnly<&Item::setBody>(u"Body", 2),
        method<&Item::mapiObject>(u"MAPIOBJECT", 3), method<&Item::Save>(u"Save", 4),
        readOnly<&Item::entryId>(u"EntryID", 5),
    };
    return table;
  }
  void setTo(const String& text) { log->push_back("To=" + utf8(text)); }
  void setBody(const String& text) { log->push_back("Body=" + utf8(text)); }
  Opaque mapiObject() { return {offersProperties ? Ref<Counted>(properties.get()) : Ref<Counted>(this)}; }
  void Save() {
    log->push_back("Save");
    entryId = u"00000042";
  }
  Log* log;
  Ref<Properties> properties;
  bool offersProperties = true;
  String entryId;
};

struct MailClient final : NativeObject {
  std::span<const Member> members() const override {
    static constexpr Member table[] = {
        method<&MailClient::GetNamespace>(u"GetNamespace", 1),
        method<&MailClient::GetDefaultFolder>(u"GetDefaultFolder", 2),
        method<&MailClient::Items>(u"Items", 3),
        method<&MailClient::Add>(u"Add", 4),
    };
    return table;
  }
  Object GetNamespace(const String& type) { return write("GetNamespace " + utf8(type)); }
  Object GetDefaultFolder(std::int32_t folder) { return write("GetDefaultFolder " + std::to_string(folder)); }
  Object Items() { return object(); }
  Object Add(const String& messageClass) {
    write("Add " + utf8(messageClass));
    return item->object();
  }
  Object write(const std::string& line) {
    log.push_back(line);
    return object();
  }
  Log log;
  Ref<Item> item = make<Item>(&log);
};

class TxtMsgTest : public testing::Test {
 protected:
  String create() {
    return helper.CreateMessage(as<outlook::Application>(client->object()), u"IPM.Note.TxtMsg", u"Me [+46701]",
                                u"Åsa [+46702]", u"Hello worl...", u"Hello world", sent, received, u"010203040506");
  }

  const Date sent = *dateFromParts({2001, 2, 3, 4, 30, 0});
  const Date received = *dateFromParts({2001, 2, 3, 6, 0, 0});
  Ref<MailClient> client = make<MailClient>();
  txtmsghelper::TxtMsg helper = as<txtmsghelper::TxtMsg>(
      make<TxtMsg>(Surroundings{.toUtc = [](Date local) { return Date{local.days - 1.0 / 24}; }}).get()->object());
};

TEST_F(TxtMsgTest, CreateMessage_StoresEveryArgumentAndSavesOnce) {
  EXPECT_EQ(create(), u"00000042");
  EXPECT_EQ(client->log, (Log{
                             "GetNamespace MAPI",
                             "GetDefaultFolder 4",
                             "Add IPM.Note.TxtMsg",
                             "To=Me [+46701]",
                             "Body=Hello world",
                             "0037001E=Hello worl...",
                             "0C1A001E=Åsa [+46702]",
                             "0042001E=Åsa [+46702]",
                             "00390040=36925.145833",  // 3:30
                             "0E060040=36925.208333",  // 5:00
                             "0E070003=0",
                             "0070001E=Me [+46701]\x01"
                             "010203040506",
                             "Save",
                         }));
}

TEST_F(TxtMsgTest, CreateMessage_WithoutTimeStamp_StillSeparates) {
  helper.CreateMessage(as<outlook::Application>(client->object()), u"IPM.Note.TxtMsg", u"Me", u"", u"", u"", sent,
                       received, u"");
  EXPECT_EQ(client->log.at(client->log.size() - 2), "0070001E=Me\x01");
}

TEST_F(TxtMsgTest, CreateMessage_WhenAPropertyFails_SavesNothing) {
  client->item->properties->failingTag = mapi::tag::conversationTopic;
  EXPECT_EQ(errorNumberOf([&] { create(); }), -2147221246);
  EXPECT_EQ(client->log.back().substr(0, 8), "0070001E");
}

TEST_F(TxtMsgTest, CreateMessage_WithoutMapiProperties_IsAnErrorAndSavesNothing) {
  client->item->offersProperties = false;
  EXPECT_EQ(errorNumberOf([&] { create(); }), 430);
  EXPECT_EQ(client->log.back(), "Body=Hello world");
}

TEST_F(TxtMsgTest, CreateMessage_WithoutApplication_IsAnError) {
  client = nullptr;
  EXPECT_EQ(errorNumberOf([&] { helper.CreateMessage({}, u"", u"", u"", u"", u"", sent, received, u""); }), 91);
}

}  // namespace

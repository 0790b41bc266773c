// The installed product in a mail client of its own.
//
// Each test has its own settings, trace and mail client, and leaves nothing behind. When it ends, the mail client must
// still answer, let go of the add-in without a reference left, and quit by itself.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "support/win32/mail_client_process.h"
#include "support/win32/product.h"

namespace installed_product {

using testing_support::Answer;
using testing_support::MailClientProcess;
using testing_support::patience;
using testing_support::SavedSettings;
using testing_support::TraceLog;
using Lines = std::vector<std::string>;

inline constexpr const char* sendReceive = "click \"Send & Receive Text Message\"";
inline constexpr const char* addressOfBo = "Bo [+46707778899]";

inline Lines operator+(Lines a, const Lines& b) {
  a.insert(a.end(), b.begin(), b.end());
  return a;
}

// Registers the product for as long as the program's tests run (testing::AddGlobalTestEnvironment).
class Registration final : public testing::Environment {
 public:
  void SetUp() override;
  void TearDown() override;
};

class InstalledProduct : public testing::Test {
 protected:
  InstalledProduct();
  ~InstalledProduct() override;

  void TearDown() override;

  void startClient(const std::wstring& arguments = L"");
  void restartClient(const std::wstring& arguments);
  Answer ask(const std::string& command) { return client_->ask(command, patience); }
  void compose(const std::string& to, const std::string& body);
  void connectAddIn() { EXPECT_TRUE(ask("connect mrktxtmsg.connect").ok); }
  void disconnectAddIn() { EXPECT_TRUE(ask("disconnect mrktxtmsg.connect").ok); }
  // As when the mail client ends: it loads the add-in at its next start.
  void letGoOfAddIn() { EXPECT_TRUE(ask("disconnect mrktxtmsg.connect 0").ok); }
  void clickSendReceive() { EXPECT_EQ(ask(sendReceive).result, "clicked"); }
  bool isSendReceiveEnabled();
  // Whether the folder has this many items, now or soon.
  bool waitForItems(const std::string& folder, std::size_t count);
  // The mail client's objects that somebody still holds, by class.
  Lines references() { return ask("references").lines; }

  // Every item of the mail folders, as "Inbox: body", folder by folder. A long body as its beginning and its length.
  Lines items();
  // One line of `list FOLDER`.
  std::string itemOf(const std::string& folder, std::size_t position = 0);

  // A place in the trace.
  std::size_t mark() const { return trace_->size(); }
  // The trace from there on, without "mrktxtmsg (2) :" in front; of other levels, or another writer, it stays. "#"
  // stands for what differs from run to run: identifiers, ticks and times. A tick of the send timer that finds nothing
  // to do is left out.
  Lines traced(std::size_t from) const;
  bool waitForTrace(const std::string& line, std::size_t from) const;

  SavedSettings settings_;
  std::wstring folder_;  // for files of this test, no trailing backslash
  std::unique_ptr<TraceLog> trace_;
  std::unique_ptr<MailClientProcess> client_;
  bool quitsByItself_ = false;  // this test makes the mail client quit
};

// ---- what the trace says while all is well --------------------------------------------------------------------------

// As long as no localizer is installed, each reading of it says so.
inline const Lines noLocalizer{"Error:429, ActiveX component can't create object, mrktxtmsg"};
inline const std::string cannotCreate = noLocalizer[0];

enum class Start : std::uint8_t { OfTheMailClient, ByTheUser };
// From the beginning of OnConnection until the engine is made, the buttons being in place.
Lines connectingLines(Start start);
// Of the engine's start: everything, with a phone connected.
Lines engineLines();
// Of a start without trouble.
Lines startLines(Start start);
Lines disconnectedByUserLines();

// Of a listing up to the wait, and of its answer when there is nothing to list.
Lines listingBegins();
Lines nothingListed(int state = 1);
Lines storeListed(const char* store, bool listed);
// Of a receive without a new message.
Lines receivedNothing(bool everything);
// Of one message listed alone, from the answer to the moved item. Inbox and Deleted Items have so many text messages.
Lines messageBegins(const std::string& status = "0");
Lines messageChecked(std::size_t inInbox, std::size_t inDeletedItems);
Lines messageMoved();
Lines sendTimerArmed();
Lines reportMovedAndItemDeleted();  // the third failure of a message, its report made
Lines simChecked(int used, int capacity);
// Of the send timer's tick up to the request.
Lines messageHandedOver(const std::string& number, const std::string& text, int parts = 1);
// Of the phone's word that it went out. The timer is armed for the next message.
Lines messageSent();

}  // namespace installed_product

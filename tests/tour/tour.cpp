// The guided tour: does what a user would do, through real COM, and says what came of each step.
//
//   tour FOLDER     leaves the mail store and the trace in FOLDER
//
// The add-in is the real DLL, loaded by the stand-in mail client through the registry; the phone is the simulated
// handset behind its COM servers. Exit code 0 when every check held.

#include <algorithm>
#include <cstdio>
#include <string>

#include "com/bridge.h"
#include "support/text.h"
#include "support/win32/mail_client_process.h"
#include "support/win32/product.h"

namespace {

using namespace testing_support;
using platform::String;

constexpr const char* addInId = "mrktxtmsg.connect";
constexpr const char* sendReceive = "click \"Send & Receive Text Message\"";
constexpr std::int32_t phoneMemory = 1;
constexpr std::int32_t sim = 2;

class Tour {
 public:
  explicit Tour(const std::wstring& folder) : folder_(folder), trace_(folder + L"\\trace.log") {}

  int run() {
    std::printf("A tour of the Marrick Text Message Add-In, through real COM\n");
    install();
    connectAddIn();
    sendMessages();
    receiveMessages();
    pollForMessages();
    replyToOne();
    listAgain();
    deleteOne();
    removeAutomatically();
    fillTheSim();
    refuseAMessage();
    unplugDuringASend();
    disconnectAddIn();
    std::printf("\n%d passed, %d failed\n", passed_, failed_);
    return failed_ == 0 ? 0 : 1;
  }

 private:
  // ---- telling ------------------------------------------------------------------------------------------------------

  void step(const char* title) { std::printf("\n%d. %s\n", ++steps_, title); }
  void say(const std::string& text) { std::printf("     %s\n", text.c_str()); }
  bool check(bool holds, const std::string& what) {
    std::printf("  %s %s\n", holds ? "ok  " : "FAIL", what.c_str());
    std::fflush(stdout);
    ++(holds ? passed_ : failed_);
    return holds;
  }
  bool traced(const std::string& line, std::size_t from) {
    return check(trace_.waitFor(line, from), "the trace says \"" + line + "\"");
  }

  // ---- asking -------------------------------------------------------------------------------------------------------

  Answer ask(const std::string& command) { return client_->ask(command); }
  std::size_t itemsIn(const std::string& folder) {
    return ask("list " + MailClientProcess::quoted(folder)).lines.size();
  }
  bool waitFor(const std::string& folder, std::size_t count) {
    return ask("wait " + MailClientProcess::quoted(folder) + " " + std::to_string(count) + " 20000").result == "yes";
  }
  // The item of a folder whose body is this text; empty when there is none.
  std::string itemWith(const std::string& folder, const std::string& body) {
    for (const std::string& line : ask("list " + MailClientProcess::quoted(folder)).lines)
      if (field(line, "body") == body) return line;
    return {};
  }
  static std::string field(const std::string& line, const std::string& name) {
    return MailClientProcess::field(line, name);
  }
  // Clicks Send & Receive and waits for the run to have armed the send timer.
  void clickSendReceive() {
    const std::size_t from = trace_.size();
    check(ask(sendReceive).result == "clicked", "Send & Receive is clicked");
    trace_.waitFor("SendAll = ", from);
  }

  // ---- the steps ----------------------------------------------------------------------------------------------------

  void install() {
    step("Install: register the servers and the add-in");
    for (const std::string& line : registerProduct()) check(!line.starts_with("failed"), line);
    removeAllOptions();
    setOption(L"WizardDone", 1);
    setOption(L"My_FullName", L"Eva Moberg");
    setOption(L"My_PhoneNo", L"+46700000001");
    setOption(L"SendReceive_UseAuto", 0u);
    setShortMinute(0);
    setHandsetStateFile(folder_ + L"\\handset.txt");
    handset_ = Handset::connect();
    handset_.Clear(phoneMemory);
    handset_.Clear(sim);
    handset_.Plug();
    check(handset_.StoredCount(sim) == 0, "a simulated handset is plugged in, its memories empty");
  }

  void connectAddIn() {
    step("Start the mail client: it loads the add-in");
    client_ = std::make_unique<MailClientProcess>(L"--store \"" + folder_ + L"\\store\"");
    check(client_->isReady(), "the mail client is ready");
    for (const char* const line :
         {"<==== MRKTXTMSG Version 1.0.0", "Connectmode:1", "ActiveWindow is something",
          "Added textmessage to new menu", "Added send&receive to tools menu", "Added about to help menu",
          "Added Help button to Help menu", "If phone connected - Get reference to SMS object",
          "m_objSMSHandler_OnPhoneConnected: True"})
      traced(line, 0);
    const auto buttons = ask("buttons").lines;
    const auto has = [&](const std::string& menu, const std::string& caption) {
      const bool there = std::any_of(buttons.begin(), buttons.end(), [&](const std::string& line) {
        return field(line, "menu") == menu && field(line, "caption") == caption && field(line, "enabled") == "1";
      });
      check(there, "button \"" + caption + "\" in its menu");
    };
    has("30037", "Text Message");
    has("30007", "Send && Receive Text Messages");
    has("30010", "About Text Message Add-In");
    has("30010", "Text Message Add-In Help");
    const auto forms = ask("form").lines;
    check(forms.size() == 1 && forms[0].starts_with("\"IPM.Note.TxtMsg\""), "the text-message form is published");
  }

  void sendMessages() {
    step("Send a short message, and one of exactly 160 characters");
    ask("contact \"Anna Berg\" \"+46 (70) 111 22 33\" Friends");
    std::size_t from = trace_.size();
    ask("compose \"Anna Berg [+46 (70) 111 22 33]\" \"Hello Anna\"");
    check(waitFor("Sent Items", 1) && itemsIn("Outbox") == 0, "the message leaves the Outbox for Sent Items");
    traced("Guard timmer set to [1] parts", from);
    check(handset_.SentCount() == 1 && handset_.SentText(0) == u"Hello Anna", "the handset has sent its text");
    check(handset_.SentDestination(0) == u"+46701112233", "to the number without blanks and parentheses");
    check(field(itemWith("Sent Items", "Hello Anna"), "unread") == "0", "the sent item is marked as read");

    from = trace_.size();
    const std::string longText(160, 'x');
    ask("compose \"Anna Berg [+46701112233]\" \"" + longText + "\"");
    check(waitFor("Sent Items", 2), "the long message is in Sent Items too");
    traced("Guard timmer set to [2] parts", from);
    traced("SetupGuard [50000]ms", from);
    check(field(itemWith("Sent Items", longText), "unread") == "0", "and marked as read");
  }

  void receiveMessages() {
    step("Receive: two messages in the phone memory, two on the SIM card");
    handset_.Put(phoneMemory, 0, u"+46701112233", u"Hi, this is Anna", u"261120080000");
    handset_.Put(phoneMemory, 0, u"+46702223344", u"From the phone memory", u"261120080100");
    handset_.Put(sim, 0, u"+46703334455", u"From the SIM card", u"261120080200");
    handset_.Put(sim, 1, u"+46704445566", u"Read on the phone already", u"261120080300");
    clickSendReceive();
    check(waitFor("Inbox", 4) && itemsIn("Outbox") == 0, "four items are in the Inbox, none is left in the Outbox");
    const std::string anna = itemWith("Inbox", "Hi, this is Anna");
    check(field(anna, "sender") == "Anna Berg [+46701112233]", "the sender is named by a contact in a subfolder");
    check(field(anna, "unread") == "1", "and the item is unread");
    check(field(anna, "topic") == "Eva Moberg [+46700000001]\\u0001261120080000",
          "its topic is the own address and the phone's time stamp");
    check(field(itemWith("Inbox", "From the SIM card"), "sender") == "[+46703334455]", "an unknown sender is a number");
  }

  void pollForMessages() {
    step("Polling: a fifth message comes by itself (the timer server's minute lasts 1.5 seconds)");
    ask("disconnect " + std::string(addInId));
    setShortMinute(1500);
    setOption(L"SendReceive_UseAuto", 1);
    setOption(L"SendReceive_AutoIntervall", 1);
    ask("connect " + std::string(addInId));
    handset_.Deliver(u"+46705556677", u"Nobody pressed a button", u"261120080400");
    check(waitFor("Inbox", 5), "it is in the Inbox");
    check(trace_.count("Poll timer: ") > 0, "and the polling timer brought it");
    ask("disconnect " + std::string(addInId));
    setShortMinute(0);
    setOption(L"SendReceive_UseAuto", 0u);
    ask("connect " + std::string(addInId));
  }

  void replyToOne() {
    step("Reply to a text message");
    const std::string id = field(itemWith("Inbox", "Hi, this is Anna"), "id");
    ask("select " + id);
    check(ask("reply " + id).result == "\"R;" + id + ";\"", "the reply carries the mark R; and the message's EntryID");
    check(ask("forward " + id).result == "\"F;" + id + ";\"", "and a forward the mark F;");
  }

  void listAgain() {
    step("List everything again: nothing comes twice");
    const std::size_t before = itemsIn("Inbox");
    const std::size_t from = trace_.size();
    clickSendReceive();
    check(itemsIn("Inbox") == before, "the Inbox still has " + std::to_string(before) + " items");
    check(trace_.count("Inside ReceiveAll Function - m_bReceiveAll = True", from) == 1,
          "after a listing of all messages");
    check(trace_.count("FOUND DUPLICATE!", from) == before, "each of which was recognised");
  }

  void deleteOne() {
    step("Delete a message in the mail client: it goes from the SIM card too");
    const std::int32_t before = handset_.StoredCount(sim);
    ask("delete " + field(itemWith("Inbox", "From the SIM card"), "id"));
    check(waitUntil([&] { return handset_.StoredCount(sim) == before - 1; }), "the SIM card holds one message less");
    check(utf8(handset_.Stored(sim)).find("From the SIM card") == std::string::npos, "and it is that one");
    check(itemsIn("Deleted Items") == 1, "the item is in Deleted Items");
  }

  void removeAutomatically() {
    step("Auto-remove: fresh messages leave the SIM card once they are in the Inbox");
    setOption(L"SendReceive_AutoRemove", 1);
    const std::int32_t before = handset_.StoredCount(sim);
    const std::size_t items = itemsIn("Inbox");
    handset_.Deliver(u"+46706667788", u"Fresh one", u"261120080500");
    handset_.Deliver(u"+46706667788", u"Fresh two", u"261120080600");
    clickSendReceive();
    check(waitFor("Inbox", items + 2), "two more items are in the Inbox");
    check(handset_.StoredCount(sim) == before, "and both messages are off the SIM card");
    setOption(L"SendReceive_AutoRemove", 0u);
  }

  void fillTheSim() {
    step("Fill the SIM card: the add-in warns");
    handset_.Fill(sim);
    const int click = client_->send(sendReceive);
    check(closeWindow(L"Marrick Text Message Add-In For Outlook"), "the warning box appears (and is closed)");
    check(client_->answerTo(click).result == "clicked", "the command ends when the box is closed");
    traced("Show message SIM card is full", 0);
    handset_.Clear(sim);
  }

  void refuseAMessage() {
    step("A message that the network refuses");
    handset_.Unplug();
    waitUntil([&] { return !sendReceiveEnabled(); });
    ask("compose \"Bo [+46707778899]\" \"Not wanted\"");
    check(itemsIn("Outbox") == 1, "it waits in the Outbox while no phone is there");
    handset_.Plug();
    check(waitUntil([&] { return sendReceiveEnabled(); }), "the phone is back, and the button is enabled");
    const std::size_t items = itemsIn("Inbox");
    for (int attempt = 1; attempt <= 3; ++attempt) {
      handset_.AnswerNext(u"send", 17);
      const std::size_t from = trace_.size();
      clickSendReceive();
      traced("Failed count:" + std::to_string(attempt - 1), from);
    }
    check(waitFor("Inbox", items + 1) && waitFor("Outbox", 0),
          "at the third Send & Receive it becomes an error report");
    bool report = false;
    for (const std::string& line : ask("list Inbox").lines)
      report |= field(line, "subject") == "TextMessage Service - Error Report" &&
                field(line, "body").ends_with("\\u000d\\u000a\\u000d\\u000aNot wanted");
    check(report, "in the Inbox, with the message's text");
  }

  void unplugDuringASend() {
    step("Unplug the phone during a send, and plug it in again");
    handset_.ClearSent();
    handset_.SilenceNext(u"send");
    std::size_t from = trace_.size();
    const std::size_t sent = itemsIn("Sent Items");
    ask("compose \"Bo [+46707778899]\" \"Only once\"");
    traced("Inside SendMessage Function - AddTransaction called", from);
    handset_.Unplug();
    traced("Phone disconnected!", from);
    handset_.Plug();
    traced("New phone connected!", from);
    check(waitUntil([&] { return sendReceiveEnabled(); }), "the button is enabled again");
    clickSendReceive();
    check(waitFor("Sent Items", sent + 1) && waitFor("Outbox", 0), "the message is in Sent Items");
    check(handset_.SentCount() == 1, "and has gone out once");
  }

  void disconnectAddIn() {
    step("Disconnect");
    const std::size_t from = trace_.size();
    check(ask("disconnect " + std::string(addInId)).ok, "the add-in is disconnected");
    for (const char* const line : {"OnDisconnection", "Removed new button", "Removed send&receive button",
                                   "Removed delete button", "Removed Help button"})
      traced(line, from);
    check(ask("buttons").lines.empty(), "its buttons are gone");
    const Answer references = ask("references");
    for (const std::string& line : references.lines) say(line);
    check(references.result == "0", "no reference to the mail client's objects is left");
    check(client_->quit(), "the mail client ends");
    handset_ = nullptr;
  }

  bool sendReceiveEnabled() {
    for (const std::string& line : ask("buttons").lines)
      if (field(line, "tag") == "Send & Receive Text Message") return field(line, "enabled") == "1";
    return false;
  }

  std::wstring folder_;
  TraceLog trace_;
  Handset handset_;
  std::unique_ptr<MailClientProcess> client_;
  int steps_ = 0;
  int passed_ = 0;
  int failed_ = 0;
};

}  // namespace

int wmain(int count, wchar_t** texts) {
  if (count != 2) {
    std::fputs("tour FOLDER\n", stderr);
    return 2;
  }
  if (FAILED(OleInitialize(nullptr))) return 1;
  int code = 1;
  try {
    code = Tour(texts[1]).run();
  } catch (const platform::RuntimeError& error) {
    std::printf("\nThe tour ended with error %d: %s\n0 passed, 1 failed\n", static_cast<int>(error.number),
                utf8(error.description).c_str());
  }
  OleUninitialize();
  return code;
}

// Sending and receiving: what the phone, the mail store and the trace say.
#include "support/text.h"
#include "tour/tour.h"

namespace tour {
namespace {

constexpr const char* sendReceive = "click \"Send & Receive Text Message\"";

}  // namespace

void Tour::sendLongMessage() {
  step("Send a message of exactly 160 characters");
  const std::size_t from = trace_.size();
  const std::string longText(160, 'x');
  ask("compose \"Anna Berg [+46701112233]\" \"" + longText + "\"");
  check(waitFor("Sent Items", 3), "it is in Sent Items");
  traced("Guard timmer set to [2] parts", from);
  traced("SetupGuard [50000]ms", from);
  check(field(itemWith("Sent Items", longText), "unread") == "0", "and marked as read");
  picture("160-characters-sent");
}

void Tour::receiveMessages() {
  step("Receive: two messages in the phone memory, two on the SIM card");
  phone("capacity SM " + std::to_string(storedOn(sim)));  // what arrives now goes to the phone memory
  arrives("+46701112233", u"Anna once more", "261120080030");
  arrives("+46702223344", u"From the phone memory", "261120080100");
  phone("capacity SM 8");
  arrives("+46703334455", u"From the SIM card", "261120080200");
  arrives("+46703334455", u"The other one on the card", "261120080300");
  check(storedOn("ME") == 2 && storedOn(sim) == 4, "they are in the memories, the SIM card's with two earlier ones");
  clickSendReceive();
  check(waitFor("Inbox", 6) && itemsIn("Outbox") == 0, "six items are in the Inbox, none is left in the Outbox");
  const std::string anna = itemWith("Inbox", "Anna once more");
  check(field(anna, "sender") == "Anna Berg [+46701112233]", "the sender is named by a contact in a subfolder");
  check(field(anna, "unread") == "1", "and the item is unread");
  check(field(anna, "topic") == "Eva Moberg [+46700000001]\\u0001261120080030",
        "its topic is the own address and the phone's time stamp");
  check(field(itemWith("Inbox", "From the SIM card"), "sender") == "[+46703334455]", "an unknown sender is a number");
  picture("inbox");
}

void Tour::pollForMessages() {
  step("Polling: a message comes by itself (the timer server's minute lasts 1.5 seconds)");
  ask("disconnect " + std::string(addInId));
  setShortMinute(1500);
  setOption(L"SendReceive_UseAuto", 1);
  setOption(L"SendReceive_AutoIntervall", 1);
  ask("connect " + std::string(addInId));
  arrives("+46705556677", u"Nobody pressed a button", "261120080400");
  check(waitFor("Inbox", 7), "it is in the Inbox");
  check(trace_.count("Poll timer: ") > 0, "and the polling timer brought it");
  ask("disconnect " + std::string(addInId));
  setShortMinute(0);
  setOption(L"SendReceive_UseAuto", 0u);
  ask("connect " + std::string(addInId));
  picture("polled");
}

void Tour::listAgain() {
  step("List everything again: nothing comes twice");
  const std::size_t before = itemsIn("Inbox");
  const std::size_t from = trace_.size();
  clickSendReceive();
  check(itemsIn("Inbox") == before, "the Inbox still has " + std::to_string(before) + " items");
  check(trace_.count("Inside ReceiveAll Function - m_bReceiveAll = True", from) == 1,
        "after a listing of all messages");
  check(trace_.count("FOUND DUPLICATE!", from) == before, "each of which was recognised");
  picture("listed-again");
}

void Tour::deleteOne() {
  step("Delete a message in the mail client: it goes from the SIM card too");
  const std::size_t before = storedOn(sim);
  ask("delete " + field(itemWith("Inbox", "From the SIM card"), "id"));
  check(waitUntil([&] { return storedOn(sim) == before - 1; }), "the SIM card holds one message less");
  bool isThere = false;
  for (const std::string& line : phone("list SM")) isThere |= line.find("From the SIM card") != std::string::npos;
  check(!isThere, "and it is that one");
  check(itemsIn("Deleted Items") == 1, "the item is in Deleted Items");
  picture("deleted");
}

void Tour::removeAutomatically() {
  step("Auto-remove: fresh messages leave the SIM card once they are in the Inbox");
  setOption(L"SendReceive_AutoRemove", 1);
  const std::size_t before = storedOn(sim);
  const std::size_t items = itemsIn("Inbox");
  arrives("+46706667788", u"Fresh one", "261120080500");
  arrives("+46706667788", u"Fresh two", "261120080600");
  clickSendReceive();
  check(waitFor("Inbox", items + 2), "two more items are in the Inbox");
  check(storedOn(sim) == before, "and both messages are off the SIM card");
  setOption(L"SendReceive_AutoRemove", 0u);
  picture("removed-automatically");
}

void Tour::fillTheSim() {
  step("Fill the SIM card: the add-in warns");
  for (std::size_t used = storedOn(sim); used < 8; ++used)
    arrives("+46707778899", u"One more", ("26112008060" + std::to_string(used)).c_str());
  const int click = client_->send(sendReceive);
  const HWND box = screen::await(process(), L"#32770", messageBoxTitle);
  check(box && toFront(box, "the warning"), "the warning box appears");
  picture("sim-card-full");
  screen::press(VK_RETURN);
  check(client_->answerTo(click).result == "clicked", "and the command ends when Enter closes it");
  traced("Show message SIM card is full", 0);
  // A later tick would try to send what the next step writes.
  check(waitUntil([&] { return !sendTimerIsArmed(); }), "and the send timer ticks, with nothing to send");
  phone("clear SM");
}

void Tour::refuseAMessage() {
  step("A message that the network refuses");
  phone("unplug");
  waitUntil([&] { return !sendReceiveEnabled(); });
  const int compose = client_->send("compose \"Bo [+46707778899]\" \"Not wanted\"");
  const HWND balloon = screen::await(process(), L"#32770", L"Office Assistant");
  check(balloon && toFront(balloon, "the Assistant"), "without a phone, the Office Assistant says so");
  picture("no-phone");
  screen::press(VK_RETURN);
  check(client_->answerTo(compose).ok && itemsIn("Outbox") == 1, "the message waits in the Outbox");
  phone("plug");
  check(waitUntil([&] { return sendReceiveEnabled(); }), "the phone is back, and the button is enabled");
  const std::size_t items = itemsIn("Inbox");
  for (int attempt = 1; attempt <= 3; ++attempt) {
    phone("fail send 1 17");
    const std::size_t from = trace_.size();
    clickSendReceive();
    traced("Failed count:" + std::to_string(attempt - 1), from);
  }
  check(waitFor("Inbox", items + 1) && waitFor("Outbox", 0), "at the third Send & Receive it becomes an error report");
  bool report = false;
  for (const std::string& line : ask("list Inbox").lines)
    report |= field(line, "subject") == "TextMessage Service - Error Report" &&
              field(line, "body").ends_with("\\u000d\\u000a\\u000d\\u000aNot wanted");
  check(report, "in the Inbox, with the message's text");
}

void Tour::unplugDuringASend() {
  step("Unplug the phone during a send, and plug it in again");
  phone("sent clear");
  phone("silent");
  std::size_t from = trace_.size();
  const std::size_t sent = itemsIn("Sent Items");
  ask("compose \"Bo [+46707778899]\" \"Only once\"");
  traced("Inside SendMessage Function - AddTransaction called", from);
  phone("unplug");
  traced("Phone disconnected!", from);
  phone("speak");
  phone("plug");
  traced("New phone connected!", from);
  check(waitUntil([&] { return sendReceiveEnabled(); }), "the button is enabled again");
  clickSendReceive();
  check(waitFor("Sent Items", sent + 1) && waitFor("Outbox", 0), "the message is in Sent Items");
  check(phone("sent").size() == 1, "and has gone out once");
  picture("plugged-in-again");
}

void Tour::disconnectAddIn() {
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
  picture("disconnected");
  check(client_->quit(), "the mail client ends");
  handset_ = nullptr;
}
}  // namespace tour

// What a user does in the mail client's windows.
#include "support/text.h"
#include "tour/tour.h"

namespace tour {
namespace {

constexpr const wchar_t* untitled = L"Untitled - Text Message";

HWND recipientOf(HWND form) { return screen::child(form, WC_EDITW, 0); }
HWND bodyOf(HWND form) { return screen::child(form, WC_EDITW, 1); }

}  // namespace

void Tour::showAbout() {
  step("Help > About Text Message Add-In");
  openMenu(L'H', {}, 2);
  picture("help-menu");
  screen::press(VK_RETURN);
  const DialogUser box(aboutTitle);
  check(box.isThere(), "the About box is there");
  check(box.find(L"Static", L"Version 1.0.0") != nullptr, "and says \"Version 1.0.0\"");
  check(IsWindowEnabled(explorer_) != FALSE, "the mail client's window does not wait for it");
  picture("about");
  if (!box.isThere() || !toFront(box.dialog(), "the About box")) return;
  screen::press(VK_ESCAPE);
  check(box.hasGone(), "Esc closes it");
}

bool Tour::helpIsAsked(const std::wstring& path) {
  const HWND viewer = screen::await(process(), L"Marrick stand-in help viewer");
  if (!viewer || !toFront(viewer, "the help viewer")) return false;
  const std::wstring asked = screen::textOf(screen::child(viewer, WC_STATICW));
  picture("help");
  screen::press(VK_ESCAPE);
  const bool closed = waitUntil([&] { return !IsWindow(viewer); });
  return closed && asked == L"This window stands in for the help viewer, which was asked to open\r\n\r\n" + path +
                                L"\r\n\r\n(owner 0, command 0, data 0)";
}

void Tour::askForHelp() {
  step("Help > Text Message Add-In Help, where Swedish help files are installed");
  setHelpFiles(L"C:\\Program Files\\Text Message Help", 1053);
  choose(L'H', 1);
  check(helpIsAsked(L"C:\\Program Files\\Text Message Help\\smsx_sv.chm"), "the help viewer is asked for smsx_sv.chm");
  setHelpFiles(L"", 0);
}

void Tour::openOptions() {
  step("Tools > Options");
  choose(L'T', 2);
  const HWND dialog = screen::await(process(), L"#32770", L"Options");
  if (!check(dialog && toFront(dialog, "the dialog"), "the dialog opens")) return;
  check(SendMessageW(screen::child(dialog, WC_TABCONTROLW), TCM_GETITEMCOUNT, 0, 0) == 1,
        "with the mail client's own page alone: the add-in's is not in this build");
  picture("options");
  screen::press(VK_ESCAPE);
  check(screen::awaitGone(process(), L"#32770"), "Esc closes it");
}

void Tour::addContact() {
  step("File > New > Contact");
  toFront(explorer_, "the main window");
  screen::press('C', true, true);
  const HWND form = awaitItemWindow(L"Untitled - Contact");
  if (!form) return;
  screen::type(L"Bo Lind");
  screen::press(VK_TAB);
  screen::press(VK_TAB);
  screen::type(L"+46 70 777 88 99");
  check(waitForText(screen::child(form, WC_EDITW, 2), L"+46 70 777 88 99"), "a name and a mobile number are typed");
  picture("contact");
  screen::press('S', true);
  check(screen::awaitGone(process(), screen::inspectorClass) && itemsIn("Contacts") == 1, "Ctrl+S saves the contact");
  ask("contact \"Anna Berg\" \"+46 (70) 111 22 33\" Friends");
}

void Tour::writeMessage() {
  step("File > New > Text Message: write to a contact, and send");
  openNewMenu();
  screen::press(VK_RETURN);
  const HWND form = awaitItemWindow(untitled);
  if (!form) return;
  screen::type(L"an");
  const HWND matches = screen::child(form, WC_LISTBOXW);
  check(waitUntil([&] { return IsWindowVisible(matches) && SendMessageW(matches, LB_GETCOUNT, 0, 0) == 1; }),
        "the beginning of a name offers the contact");
  picture("text-message-recipient");
  screen::press(VK_RETURN);
  check(waitForText(recipientOf(form), L"Anna Berg [+46 (70) 111 22 33]"), "Enter takes it");
  screen::press(VK_TAB);
  screen::type(L"Hello Anna");
  check(waitForText(screen::child(form, WC_STATICW, 1), L"10 characters, 1 message (150 left)"),
        "the characters are counted");
  picture("text-message");
  const std::size_t from = trace_.size();
  screen::clickAt(screen::child(form, TOOLBARCLASSNAMEW), 24, 12);
  check(screen::awaitGone(process(), screen::inspectorClass), "a click on Send closes the window");
  check(waitFor("Sent Items", 1) && itemsIn("Outbox") == 0, "the message leaves the Outbox for Sent Items");
  traced("Guard timmer set to [1] parts", from);
  const auto sent = phone("sent");
  const std::string first = sent.empty() ? "" : sent[0];
  check(sent.size() == 1 && first.find(" \"Hello Anna\"") != std::string::npos, "the handset has sent its text");
  check(first.starts_with("+46701112233 "), "to the number without blanks and parentheses");
  check(first.ends_with(" by +46705008999"), "by the service centre that the wizard was told");
  check(field(itemWith("Sent Items", "Hello Anna"), "unread") == "0", "the sent item is marked as read");
}

void Tour::receiveAnswer() {
  step("An answer arrives");
  arrives("+46701112233", u"Hi, this is Anna", "261120080000");
  clickSendReceive();
  check(waitFor("Inbox", 2) && itemsIn("Outbox") == 0,
        "it is in the Inbox, with a message on the SIM card that was read on the phone already");
  check(selectRow(0, L"Anna Berg [+46701112233]"), "the arrow keys select it");
  check(waitForText(screen::child(explorer_, WC_EDITW), L"Hi, this is Anna"), "the reading pane shows it");
  picture("answer-in-the-inbox");
  screen::press(VK_RETURN);
  const HWND form = awaitItemWindow(L"Hi, this i... - Text Message");
  if (!form) return;
  check(screen::textOf(recipientOf(form)) == L"Anna Berg [+46701112233]", "Enter opens it: it is from Anna");
  picture("received-message");
}

void Tour::replyToAnswer() {
  step("Reply to the text message");
  const std::string id = field(itemWith("Inbox", "Hi, this is Anna"), "id");
  screen::press('R', true);
  const HWND form = awaitItemWindow(untitled);
  if (!form) return;
  check(screen::textOf(recipientOf(form)) == L"Anna Berg [+46701112233]", "Ctrl+R opens a reply to Anna");
  screen::type(L"Nice to hear from you");
  check(waitForText(bodyOf(form), L"Nice to hear from you"), "the text is typed");
  picture("reply");
  screen::press(VK_RETURN, true);
  check(waitFor("Sent Items", 2) && phone("sent").size() == 2, "Ctrl+Enter sends it");
  check(field(itemWith("Sent Items", "Nice to hear from you"), "billing") == "R;" + id + ";",
        "it carries the mark R; and the message's EntryID");
  check(screen::awaitGone(process(), screen::inspectorClass, untitled), "its window has closed");
  screen::toFront(screen::find(process(), screen::inspectorClass));
  screen::press(VK_ESCAPE);
  check(screen::awaitGone(process(), screen::inspectorClass), "Esc closes the answer");
  ask("select " + id);
  check(ask("reply " + id).result == "\"R;" + id + ";\"", "so does a reply that a program makes");
  check(ask("forward " + id).result == "\"F;" + id + ";\"", "and a forward the mark F;");
}

}  // namespace tour

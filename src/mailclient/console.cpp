#include "mailclient/console.h"

#include <algorithm>
#include <cstdio>
#include <iterator>

#include "addin/platform/convert.h"
#include "addin/platform/date.h"
#include "mailclient/application.h"
#include "mailclient/item.h"
#include "mailclient/text_coding.h"
#include "mailclient/view/folder_tree.h"

namespace mailclient {
namespace {

using platform::CLng;

std::string number(std::size_t n) { return std::to_string(n); }

char16_t hexUnit(std::string_view digits) {
  unsigned value = 0;
  for (const char c : digits) {
    const auto at = std::string_view("0123456789abcdef").find(static_cast<char>(c >= 'A' && c <= 'F' ? c + 32 : c));
    if (at == std::string_view::npos) raiseError(5);
    value = value * 16 + static_cast<unsigned>(at);
  }
  return static_cast<char16_t>(value);
}

// Reads one argument; `rest` begins at its first character and ends behind its last.
class ArgumentReader {
 public:
  explicit ArgumentReader(std::string_view& rest) : rest_(rest) {}

  String read() {
    if (rest_.front() != '"') {
      const std::string_view plain = rest_.substr(0, rest_.find(' '));
      rest_.remove_prefix(plain.size());
      return fromUtf8(plain);
    }
    rest_.remove_prefix(1);
    while (!rest_.empty() && rest_.front() != '"') take();
    if (rest_.empty()) raiseError(5);
    rest_.remove_prefix(1);
    flush();
    return text_;
  }

 private:
  void take() {
    if (rest_.front() != '\\') {
      bytes_ += rest_.front();
      rest_.remove_prefix(1);
      return;
    }
    if (rest_.size() < 2) raiseError(5);
    const char kind = rest_[1];
    rest_.remove_prefix(2);
    switch (kind) {
      case 'r':
        bytes_ += '\r';
        break;
      case 'n':
        bytes_ += '\n';
        break;
      case 't':
        bytes_ += '\t';
        break;
      case '"':
      case '\\':
        bytes_ += kind;
        break;
      case 'u':
        if (rest_.size() < 4) raiseError(5);
        flush();
        text_ += hexUnit(rest_.substr(0, 4));
        rest_.remove_prefix(4);
        break;
      default:
        raiseError(5);
    }
  }

  void flush() {
    text_ += fromUtf8(bytes_);
    bytes_.clear();
  }

  std::string_view& rest_;
  std::string bytes_;
  String text_;
};

bool isSurrogate(char16_t c) { return c >= 0xD800 && c <= 0xDFFF; }

void appendEscaped(std::string& to, char16_t c) {
  static constexpr char digits[] = "0123456789abcdef";
  to += "\\u";
  for (int shift = 12; shift >= 0; shift -= 4) to += digits[c >> shift & 15];
}

// 2001-02-03T04:05:06, UTC; empty when it was never set.
std::string describe(Date date) {
  if (date == Date{}) return {};
  const platform::DateParts p = platform::partsOf(date);
  char text[40];
  std::snprintf(text, sizeof text, "%04d-%02d-%02dT%02d:%02d:%02d", int{p.year}, int{p.month}, int{p.day}, int{p.hour},
                int{p.minute}, int{p.second});
  return text;
}

std::string describe(const Message& m) {
  const auto field = [&](const char* name, Text text) {
    return std::string(" ") + name + "=" + Console::quoted(m[text]);
  };
  return "id=" + toUtf8(m.entryId) + field("class", Text::MessageClass) + " unread=" + (m.unread ? "1" : "0") +
         field("to", Text::To) + field("sender", Text::SenderName) + field("subject", Text::Subject) +
         field("topic", Text::ConversationTopic) + field("billing", Text::BillingInformation) +
         field("mileage", Text::Mileage) + " sent=" + describe(m.sentOn) + " received=" + describe(m.receivedTime) +
         field("body", Text::Body);
}

}  // namespace

struct Console::Command {
  StringView name;
  std::size_t least;  // arguments
  std::size_t most;
  Result (Console::*run)(const Words&);
};

const Console::Command* Console::find(StringView name) {
  constexpr std::size_t any = 1000;
  static constexpr Command commands[] = {
      {u"help", 0, 0, &Console::help},
      {u"status", 0, 0, &Console::status},
      {u"folders", 0, 0, &Console::folders},
      {u"list", 1, 1, &Console::list},
      {u"compose", 2, 2, &Console::compose},
      {u"item", 4, 4, &Console::item},
      {u"contact", 2, 3, &Console::contact},
      {u"delete", 1, 1, &Console::remove},
      {u"move", 2, 2, &Console::move},
      {u"select", 0, any, &Console::select},
      {u"reply", 1, 1, &Console::reply},
      {u"replyall", 1, 1, &Console::reply},
      {u"forward", 1, 1, &Console::reply},
      {u"buttons", 0, 0, &Console::buttons},
      {u"click", 1, 1, &Console::click},
      {u"menus", 0, 0, &Console::menus},
      {u"explorer", 1, 2, &Console::explorer},
      {u"inspector", 1, 2, &Console::inspector},
      {u"options", 0, 0, &Console::options},
      {u"assistant", 1, 1, &Console::assistant},
      {u"balloons", 0, 0, &Console::balloons},
      {u"form", 0, 0, &Console::form},
      {u"connect", 1, 1, &Console::connect},
      {u"disconnect", 1, 2, &Console::disconnect},
      {u"wait", 3, 3, &Console::wait},
      {u"idle", 1, 1, &Console::idle},
      {u"references", 0, 0, &Console::references},
      {u"quit", 0, 0, &Console::quit},
  };
  const auto* const at =
      std::find_if(std::begin(commands), std::end(commands), [&](const Command& c) { return c.name == name; });
  return at == std::end(commands) ? nullptr : at;
}

Console::Words Console::split(std::string_view line) {
  Words words;
  while (true) {
    const std::size_t start = line.find_first_not_of(" \r\t");
    if (start == std::string_view::npos) return words;
    line.remove_prefix(start);
    words.push_back(ArgumentReader(line).read());
  }
}

std::string Console::quoted(StringView text) {
  std::string result = "\"";
  for (std::size_t i = 0; i < text.size(); ++i) {
    const char16_t c = text[i];
    const bool pair =
        c >= 0xD800 && c < 0xDC00 && i + 1 < text.size() && text[i + 1] >= 0xDC00 && text[i + 1] <= 0xDFFF;
    if (c == u'"' || c == u'\\') {
      result += '\\';
      result += static_cast<char>(c);
    } else if (pair) {
      result += toUtf8(text.substr(i++, 2));
    } else if (c < u' ' || c == 0x7F || isSurrogate(c)) {
      appendEscaped(result, c);
    } else {
      result += toUtf8(text.substr(i, 1));
    }
  }
  return result += '"';
}

void Console::execute(std::string_view line) {
  const int mine = ++number_;
  const int outer = std::exchange(answered_, mine);
  std::string end;
  try {
    const Words words = split(line);
    const Command* const command = words.empty() ? nullptr : find(words[0]);
    if (!command || words.size() - 1 < command->least || words.size() - 1 > command->most)
      raiseError(5, u"console", u"Unknown command, or wrong number of arguments");
    const std::string result = (this->*command->run)(words);
    end = result.empty() ? "ok" : "ok " + result;
  } catch (const RuntimeError& error) {
    end = "error " + std::to_string(error.number) + " " + toUtf8(error.description);
  }
  host_.answer(std::to_string(mine) + " " + end);
  answered_ = outer;
}

void Console::tell(const std::string& line) { host_.answer(std::to_string(answered_) + " - " + line); }

std::shared_ptr<Folder> Console::folderNamed(StringView name) const {
  const std::shared_ptr<Folder> folder = folderAt(client_.store(), name);
  if (!folder || folder == client_.store().root()) fail(failure::notFound, u"There is no such folder");
  return folder;
}

MessagePtr Console::messageWith(const String& entryId) const {
  const MessagePtr message = client_.store().find(entryId);
  if (!message) fail(failure::notFound, u"There is no such item");
  return message;
}

// What the mail client does when the user saves or sends: stored, and then the observers hear it.
void Console::saved(const MessagePtr& message) { client_.store().save(message); }

Console::Result Console::help(const Words&) {
  std::string_view rest = helpText();
  while (!rest.empty()) {
    const std::size_t end = rest.find('\n');
    tell(std::string(rest.substr(0, end)));
    rest.remove_prefix(end + 1);
  }
  return {};
}

Console::Result Console::status(const Words&) {
  tell("explorers " + number(client_.windows().explorers().size()));
  tell("inspectors " + number(client_.windows().inspectors().size()));
  for (const AddInPtr& addIn : client_.addIns().entries)
    tell("add-in " + toUtf8(addIn->progId) + (addIn->connected ? " connected" : " disconnected"));
  return {};
}

void Console::listFolder(const Folder& folder) {
  tell(quoted(folderPath(folder)) + " items=" + number(folder.messages().size()) +
       " unread=" + std::to_string(folder.unreadCount()));
  for (const auto& child : folder.children()) listFolder(*child);
}

Console::Result Console::folders(const Words&) {
  for (const auto& folder : client_.store().root()->children()) listFolder(*folder);
  return {};
}

Console::Result Console::list(const Words& words) {
  const auto folder = folderNamed(words[1]);
  for (const MessagePtr& message : folder->messages()) tell(describe(*message));
  return number(folder->messages().size());
}

Console::Result Console::compose(const Words& words) {
  Folder& outbox = *client_.store().defaultFolder(DefaultFolder::Outbox);
  const MessagePtr message = client_.createItem(outbox, textMessageClass);
  setSubject(*message, words[2].substr(0, 10));
  (*message)[Text::To] = words[1];
  (*message)[Text::ConversationTopic] = words[1];  // the display address: the form of the class puts it there
  (*message)[Text::Body] = words[2];
  saved(message);
  return toUtf8(message->entryId);
}

Console::Result Console::item(const Words& words) {
  const auto folder = folderNamed(words[1]);
  const MessagePtr message = client_.createItem(*folder, words[2]);
  setSubject(*message, words[3]);
  (*message)[Text::Body] = words[4];
  saved(message);
  return toUtf8(message->entryId);
}

Console::Result Console::contact(const Words& words) {
  auto folder = client_.store().defaultFolder(DefaultFolder::Contacts);
  if (words.size() > 3) {
    const auto below = folder->child(words[3]);
    folder = below ? below : client_.store().addFolder(*folder, words[3], ItemType::Contact);
  }
  const MessagePtr message = client_.createItem(*folder, u"IPM.Contact");
  (*message)[Text::FullName] = words[1];
  (*message)[Text::MobileTelephoneNumber] = words[2];
  setSubject(*message, words[1]);
  saved(message);
  return toUtf8(message->entryId);
}

Console::Result Console::remove(const Words& words) {
  client_.store().remove(messageWith(words[1]));
  return {};
}

Console::Result Console::move(const Words& words) {
  client_.store().move(messageWith(words[1]), *folderNamed(words[2]));
  return {};
}

Console::Result Console::select(const Words& words) {
  std::vector<MessagePtr> messages;
  std::transform(words.begin() + 1, words.end(), std::back_inserter(messages),
                 [&](const String& id) { return messageWith(id); });
  if (client_.windows().explorers().empty()) fail(failure::notFound, u"There is no explorer");
  client_.windows().select(client_.windows().explorers().back(), std::move(messages));
  return {};
}

Console::Result Console::reply(const Words& words) {
  const Ref<Item> item = client_.itemObject(messageWith(words[1]));
  auto* const mail = dynamic_cast<MailItem*>(item.get());
  if (!mail) raiseError(438);
  const Object made = words[0] == u"reply"      ? mail->reply()
                      : words[0] == u"replyall" ? mail->replyAll()
                                                : mail->forward();
  if (!made) return "cancelled";
  return quoted((*Item::of(made))[Text::BillingInformation]);
}

Console::Result Console::buttons(const Words&) {
  client_.explorerBars().forEach([&](const ControlPtr& control) {
    if (control->builtIn || control->deleted) return;
    tell("menu=" + std::to_string(control->bar->menuId) + " tag=" + quoted(control->tag) +
         " caption=" + quoted(control->caption) + " tooltip=" + quoted(control->tooltip) +
         " enabled=" + (control->enabled ? "1" : "0") + " face=" + std::to_string(control->faceId) +
         " style=" + std::to_string(control->style));
  });
  return {};
}

Console::Result Console::click(const Words& words) {
  const ControlPtr control = client_.explorerBars().find({.tag = words[1]});
  return control && client_.explorerBars().click(control) ? "clicked" : "ignored";
}

Console::Result Console::menus(const Words&) {
  for (const std::string& item : host_.menuItems()) tell(item);
  return {};
}

Console::Result Console::explorer(const Words& words) {
  Windows& windows = client_.windows();
  if (words[1] == u"open") {
    windows.openExplorer(words.size() > 2 ? folderNamed(words[2])
                                          : client_.store().defaultFolder(DefaultFolder::Inbox));
  } else if (words[1] == u"close" && !windows.explorers().empty()) {
    windows.close(windows.explorers().back());
  } else {
    raiseError(5);
  }
  return {};
}

Console::Result Console::inspector(const Words& words) {
  Windows& windows = client_.windows();
  if (words[1] == u"open" && words.size() > 2) {
    windows.openInspector(messageWith(words[2]));
  } else if (words[1] == u"close" && !windows.inspectors().empty()) {
    windows.close(windows.inspectors().back());
  } else {
    raiseError(5);
  }
  return {};
}

Console::Result Console::options(const Words&) {
  const auto pages = client_.collectOptionsPages();
  for (const OptionsPage& page : pages) tell(quoted(page.title));
  return number(pages.size());
}

Console::Result Console::assistant(const Words& words) {
  if (words[1] != u"on" && words[1] != u"off") raiseError(5);
  client_.assistant().on = words[1] == u"on";
  return {};
}

Console::Result Console::balloons(const Words&) {
  for (const BalloonState& balloon : client_.assistant().shown)
    tell(quoted(balloon.heading) + " " + quoted(balloon.text) + " " + quoted(balloon.labels[0]));
  return number(client_.assistant().shown.size());
}

Console::Result Console::form(const Words&) {
  for (const PublishedForm& form : client_.store().state().forms)
    tell(quoted(form.messageClass) + " " + quoted(form.name) + " " + std::to_string(form.registry));
  return {};
}

Console::Result Console::connect(const Words& words) {
  host_.connectAddIn(words[1]);
  return {};
}

Console::Result Console::disconnect(const Words& words) {
  host_.disconnectAddIn(words[1], words.size() > 2 ? CLng(words[2]) : 1);
  return {};
}

Console::Result Console::wait(const Words& words) {
  const auto folder = folderNamed(words[1]);
  const auto count = static_cast<std::size_t>(CLng(words[2]));
  return host_.waitUntil([&] { return folder->messages().size() == count; }, CLng(words[3])) ? "yes" : "no";
}

Console::Result Console::idle(const Words& words) {
  host_.waitUntil([] { return false; }, CLng(words[1]));
  return {};
}

Console::Result Console::references(const Words&) {
  std::int32_t all = 0;
  for (const auto& [name, count] : client_.census) {
    if (count != 0) tell(toUtf8(name) + " " + std::to_string(count));
    all += count;
  }
  return std::to_string(all);
}

Console::Result Console::quit(const Words&) {
  host_.quit();
  return {};
}

}  // namespace mailclient

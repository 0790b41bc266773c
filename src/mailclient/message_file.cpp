#include "mailclient/message_file.h"

#include <charconv>

#include "addin/platform/date.h"
#include "mailclient/folder.h"
#include "mailclient/foreign_body.h"
#include "mailclient/header_text.h"
#include "mailclient/properties.h"
#include "mailclient/text_coding.h"

namespace mailclient {
namespace {

constexpr std::string_view ours = "X-Mailclient-";
constexpr std::string_view version = "X-Mailclient-Version";
constexpr std::string_view foreignVersion = "foreign";

std::string ascii(StringView name) { return {name.begin(), name.end()}; }
std::string ourName(StringView name) { return std::string(ours) + ascii(name); }
bool isOurs(const HeaderLine& line) { return sameAscii(line.name.substr(0, ours.size()), ours); }

std::string daysText(Date date) {
  std::array<char, 32> buffer{};
  return {buffer.data(), std::to_chars(buffer.data(), buffer.data() + buffer.size(), date.days).ptr};
}

Date parseDays(std::string_view text) {
  double days = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), days);
  return error == std::errc{} && platform::isInCalendar(Date{days}) ? Date{days} : Date{};
}

// What a reader of the usual headers and body would make of them.
String lines(StringView text) { return fromUtf8(fromQuotedPrintable(toQuotedPrintable(toUtf8(text)))); }
String shownSubject(StringView subject) {
  std::string_view body;
  const std::string header = displayHeader("Subject", subject);
  return displayText(splitMessage(header, body).at(0).value);
}

bool needsOwnHeader(const Message& m, Text text) {
  if (text == Text::Subject) return shownSubject(m[text]) != m[text];
  if (text == Text::Body) return lines(m[text]) != m[text];
  return !m[text].empty();
}

std::string textHeader(const Message& m, const TextProperty& p) {
  return foldAnywhere(ourName(p.name), escapeExactly(m[p.text]));
}

// The properties that are no texts.
std::string stateHeaders(const Message& m) {
  std::string headers = foldAnywhere(ourName(u"EntryID"), escapeExactly(m.entryId));
  if (m.sentOn != Date{}) headers += foldAnywhere(ourName(u"SentOn"), daysText(m.sentOn));
  if (m.receivedTime != Date{}) headers += foldAnywhere(ourName(u"ReceivedTime"), daysText(m.receivedTime));
  headers += foldAnywhere(ourName(u"Unsent"), m.unsent ? "1" : "0");
  return headers;
}

// A file of ours: the display headers, our own, and the body.
std::string ownFile(const Message& m) {
  // Addresses of text messages are names and numbers, no mailboxes: they stand as the name of one that never exists.
  constexpr std::string_view nowhere = "<textmessage@mailclient.invalid>";
  const bool isContact = !m[Text::FullName].empty();
  std::string file = displayHeader("From", m[Text::SenderName], nowhere);
  if (!m[Text::To].empty()) file += displayHeader("To", m[Text::To], nowhere);
  file += displayHeader("Subject", isContact && m[Text::Subject].empty() ? m[Text::FullName] : m[Text::Subject]);
  if (m.sentOn != Date{}) file += "Date: " + dateText(m.sentOn) + "\r\n";
  file += "Message-ID: <" + ascii(m.entryId) + "@mailclient.invalid>\r\n";
  file +=
      "MIME-Version: 1.0\r\nContent-Type: text/plain; charset=UTF-8\r\nContent-Transfer-Encoding: quoted-printable\r\n";
  file += foldAnywhere(version, "1") + stateHeaders(m);
  for (const TextProperty& p : textProperties())
    if (needsOwnHeader(m, p.text) || (p.text == Text::Subject && isContact)) file += textHeader(m, p);
  return file + "\r\n" + toQuotedPrintable(toUtf8(m[Text::Body]));
}

// A file of another program: our headers for what has changed, above the file as it was.
std::string foreignFile(const Message& m, std::string_view original) {
  std::string_view body;
  std::string rest;
  for (const HeaderLine& line : splitMessage(original, body))
    if (!isOurs(line)) rest += line.whole;
  const std::size_t headersEnd = original.size() - body.size();
  if (rest.empty() || rest.back() != '\n') rest += "\r\n";
  Message before;
  readMessageFile(rest + "\r\n" + std::string(original.substr(headersEnd)), before);
  std::string file = foldAnywhere(version, foreignVersion) + stateHeaders(m);
  for (const TextProperty& p : textProperties())
    if (m[p.text] != before[p.text]) file += textHeader(m, p);
  return file + rest + "\r\n" + std::string(body);
}

void readOwnHeader(const HeaderLine& line, Message& m) {
  const std::string_view name = line.name.substr(ours.size());
  if (sameAscii(name, "EntryID"))
    m.entryId = unescapeExactly(line.value);
  else if (sameAscii(name, "SentOn"))
    m.sentOn = parseDays(line.value);
  else if (sameAscii(name, "ReceivedTime"))
    m.receivedTime = parseDays(line.value);
  else if (sameAscii(name, "Unsent"))
    m.unsent = line.value == "1";
  for (const TextProperty& p : textProperties())
    if (name.size() == p.name.size() && sameAscii(name, ascii(p.name))) m[p.text] = unescapeExactly(line.value);
}

const HeaderLine* lineNamed(const std::vector<HeaderLine>& lines, std::string_view name) {
  for (const HeaderLine& line : lines)
    if (isHeader(line, name)) return &line;
  return nullptr;
}

void readUsualHeaders(const std::vector<HeaderLine>& lines, Message& m) {
  const auto text = [&](std::string_view name) {
    const HeaderLine* const line = lineNamed(lines, name);
    return line ? displayText(line->value) : String();
  };
  m[Text::MessageClass] = messageClassOf(ItemType::Mail);
  setSubject(m, text("Subject"));
  m[Text::SenderName] = text("From");
  m[Text::To] = text("To");
  m[Text::Cc] = text("Cc");
  if (const HeaderLine* const line = lineNamed(lines, "Date")) {
    m.sentOn = parseDateText(line->value).value_or(Date{});
    m.receivedTime = m.sentOn;
  }
  m.unsent = false;
}

}  // namespace

std::string messageFile(const Message& message, std::string_view original) {
  return message.foreign ? foreignFile(message, original) : ownFile(message);
}

void readMessageFile(std::string_view content, Message& message) {
  std::string_view body;
  const std::vector<HeaderLine> lines = splitMessage(content, body);
  const HeaderLine* const ourVersion = lineNamed(lines, version);
  message.foreign = !ourVersion || ourVersion->value == foreignVersion;
  if (message.foreign) {
    readUsualHeaders(lines, message);
    message[Text::Body] = foreignBody(lines, body);
  } else {
    if (const HeaderLine* const line = lineNamed(lines, "Subject")) message[Text::Subject] = displayText(line->value);
    message[Text::Body] = fromUtf8(fromQuotedPrintable(body));
  }
  for (const HeaderLine& line : lines)
    if (isOurs(line)) readOwnHeader(line, message);
  if (message[Text::MessageClass].empty()) message[Text::MessageClass] = messageClassOf(ItemType::Mail);
}

}  // namespace mailclient

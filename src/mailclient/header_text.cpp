#include "mailclient/header_text.h"

#include <algorithm>
#include <array>
#include <charconv>

#include "addin/platform/date.h"
#include "mailclient/text_coding.h"

namespace mailclient {
namespace {

constexpr std::size_t lineLength = 76;
constexpr std::string_view wordStart = "=?UTF-8?Q?";
constexpr std::string_view wordEnd = "?=";
constexpr std::array<std::string_view, 12> months{"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                                  "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};

char lower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }
bool isBlank(char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n'; }

std::string_view trimmed(std::string_view text) {
  while (!text.empty() && isBlank(text.front())) text.remove_prefix(1);
  while (!text.empty() && isBlank(text.back())) text.remove_suffix(1);
  return text;
}

// Whether a text may stand in a header as it is: words of printable ASCII with single blanks between them.
bool isPlain(StringView text) {
  constexpr std::size_t longestWord = 60;
  std::size_t word = 0;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const char16_t c = text[i];
    if (c < u' ' || c > u'~' || (c == u' ' && word == 0)) return false;
    word = c == u' ' ? 0 : word + 1;
    if (word > longestWord) return false;
  }
  return (text.empty() || text.back() != u' ') && text.find(u"=?") == StringView::npos;
}

// The characters of a text, one piece of UTF-8 each, in the Q encoding.
std::vector<std::string> encodedCharacters(StringView text) {
  std::vector<std::string> pieces;
  const std::string bytes = toUtf8(text);
  constexpr std::string_view digits = "0123456789ABCDEF";
  for (const char c : bytes) {
    const auto byte = static_cast<unsigned char>(c);
    if ((byte & 0xC0) != 0x80) pieces.emplace_back();
    const bool plain = (c >= '0' && c <= '9') || (lower(c) >= 'a' && lower(c) <= 'z') || c == '-' || c == '+';
    if (plain)
      pieces.back() += c;
    else if (c == ' ')
      pieces.back() += '_';
    else
      pieces.back() += {'=', digits[byte >> 4], digits[byte & 15]};
  }
  return pieces;
}

// One encoded word at the start of `rest`, which it is taken from.
std::optional<String> takeEncodedWord(std::string_view& rest) {
  if (rest.substr(0, 2) != "=?") return std::nullopt;
  const std::size_t charsetEnd = rest.find('?', 2);
  if (charsetEnd == std::string_view::npos || charsetEnd + 2 >= rest.size() || rest[charsetEnd + 2] != '?')
    return std::nullopt;
  const char encoding = lower(rest[charsetEnd + 1]);
  const std::size_t start = charsetEnd + 3;
  const std::size_t end = rest.find("?=", start);
  if (end == std::string_view::npos || (encoding != 'q' && encoding != 'b')) return std::nullopt;
  std::string content(rest.substr(start, end - start));
  const std::string_view charset = rest.substr(2, charsetEnd - 2);
  if (encoding == 'q') {
    std::replace(content.begin(), content.end(), '_', ' ');
    content += '.';  // keeps the decoder from taking a blank at the end for one that was added on the way
    content = fromQuotedPrintable(content);
    content.pop_back();
  } else {
    content = fromBase64(content);
  }
  String text = decodeCharset(charset.substr(0, charset.find('*')), content);
  rest.remove_prefix(end + 2);
  return text;
}

std::optional<int> takeNumber(std::string_view& text) {
  text = trimmed(text);
  int number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (error != std::errc{}) return std::nullopt;
  text.remove_prefix(static_cast<std::size_t>(end - text.data()));
  return number;
}

bool take(std::string_view& text, char mark) {
  text = trimmed(text);
  if (text.empty() || text.front() != mark) return false;
  text.remove_prefix(1);
  return true;
}

// Minutes east of Greenwich; names of zones other than the four-digit form, and what is no zone on earth, count as
// Greenwich.
int zoneMinutes(std::string_view text) {
  const bool west = take(text, '-');
  if (!west && !take(text, '+')) return 0;
  constexpr int furthest = 1400;
  const int zone = takeNumber(text).value_or(0);
  if (zone < 0 || zone > furthest || zone % 100 >= 60) return 0;
  const int minutes = zone / 100 * 60 + zone % 100;
  return west ? -minutes : minutes;
}

std::string twoDigits(int number) {
  return {static_cast<char>('0' + number / 10 % 10), static_cast<char>('0' + number % 10)};
}

}  // namespace

bool sameAscii(std::string_view a, std::string_view b) {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(), [](char x, char y) { return lower(x) == lower(y); });
}

bool isHeader(const HeaderLine& line, std::string_view name) { return sameAscii(line.name, name); }

std::vector<HeaderLine> splitMessage(std::string_view message, std::string_view& body) {
  std::vector<HeaderLine> lines;
  std::size_t at = 0;
  while (at < message.size()) {
    std::size_t end = message.find('\n', at);
    end = end == std::string_view::npos ? message.size() : end + 1;
    if (trimmed(message.substr(at, end - at)).empty()) {
      at = end;
      break;
    }
    while (end < message.size() && (message[end] == ' ' || message[end] == '\t')) {  // folded
      const std::size_t more = message.find('\n', end);
      const std::size_t next = more == std::string_view::npos ? message.size() : more + 1;
      if (trimmed(message.substr(end, next - end)).empty()) break;
      end = next;
    }
    const std::string_view whole = message.substr(at, end - at);
    const std::size_t colon = whole.find(':');
    if (colon != std::string_view::npos && colon > 0)
      lines.push_back({trimmed(whole.substr(0, colon)), trimmed(whole.substr(colon + 1)), whole});
    at = end;
  }
  body = message.substr(std::min(at, message.size()));
  return lines;
}

std::string foldAnywhere(std::string_view name, std::string_view value) {
  std::string line = std::string(name) + ": ";
  std::size_t column = line.size();
  while (!value.empty()) {
    const std::size_t room = column < lineLength ? lineLength - column : 1;
    line += value.substr(0, room);
    value.remove_prefix(std::min(room, value.size()));
    if (!value.empty()) line += "\r\n ";
    column = 1;
  }
  return line + "\r\n";
}

std::string displayHeader(std::string_view name, StringView text, std::string_view trailer) {
  std::string line = std::string(name) + ":";
  std::size_t column = line.size();
  const auto put = [&](const std::string& word) {  // behind a blank, on a new line when there is no room
    if (column + 1 + word.size() > lineLength) {
      line += "\r\n";
      column = 0;
    }
    line += " " + word;
    column += 1 + word.size();
  };
  if (isPlain(text) && trailer.empty()) {
    std::string word;
    for (const char16_t c : text) {
      if (c != u' ') word += static_cast<char>(c);
      if (c != u' ') continue;
      put(word);
      word.clear();
    }
    if (!word.empty()) put(word);
  } else {
    std::string word;
    for (const std::string& piece : encodedCharacters(text)) {
      if (wordStart.size() + word.size() + piece.size() + wordEnd.size() > 72) {
        put(std::string(wordStart) + word + std::string(wordEnd));
        word.clear();
      }
      word += piece;
    }
    if (!word.empty()) put(std::string(wordStart) + word + std::string(wordEnd));
  }
  if (!trailer.empty()) put(std::string(trailer));
  return line + "\r\n";
}

String displayText(std::string_view value) {
  String text;
  std::string plain;
  bool afterWord = false;
  const auto flush = [&] {
    text += decodeCharset(isUtf8(plain) ? "utf-8" : "iso-8859-1", plain);
    plain.clear();
  };
  value = trimmed(value);
  while (!value.empty()) {
    std::string_view rest = value;
    if (const auto word = takeEncodedWord(rest)) {
      // Blanks between two encoded words only separate them.
      if (afterWord && std::all_of(plain.begin(), plain.end(), isBlank)) plain.clear();
      flush();
      text += *word;
      value = rest;
      afterWord = true;
      continue;
    }
    if (value.front() != '\r' && value.front() != '\n') {
      if (!isBlank(value.front())) afterWord = false;
      plain += value.front();
    }
    value.remove_prefix(1);
  }
  flush();
  return text;
}

std::string dateText(Date utc) {
  constexpr std::array<std::string_view, 7> days{"Sat", "Sun", "Mon", "Tue",
                                                 "Wed", "Thu", "Fri"};  // day 0 was a Saturday
  const platform::DateParts p = platform::partsOf(utc);
  const auto day = static_cast<std::int64_t>(utc.days < 0 ? 0 : utc.days + 0.5 / 86400);
  return std::string(days[static_cast<std::size_t>(day % 7)]) + ", " + twoDigits(p.day) + " " +
         std::string(months[static_cast<std::size_t>(p.month - 1)]) + " " + twoDigits(p.year / 100) +
         twoDigits(p.year % 100) + " " + twoDigits(p.hour) + ":" + twoDigits(p.minute) + ":" + twoDigits(p.second) +
         " +0000";
}

std::optional<Date> parseDateText(std::string_view text) {
  if (const std::size_t comma = text.find(','); comma != std::string_view::npos) text.remove_prefix(comma + 1);
  platform::DateParts p;
  const auto day = takeNumber(text);
  text = trimmed(text);
  const auto* const month =
      std::find_if(months.begin(), months.end(), [&](std::string_view m) { return sameAscii(m, text.substr(0, 3)); });
  if (!day || month == months.end()) return std::nullopt;
  text.remove_prefix(3);
  const auto year = takeNumber(text);
  const auto hour = takeNumber(text);
  const auto minute = take(text, ':') ? takeNumber(text) : std::nullopt;
  const auto second = take(text, ':') ? takeNumber(text) : std::optional(0);
  if (!year || !hour || !minute || !second) return std::nullopt;
  p.year = *year < 50 ? *year + 2000 : *year < 1000 ? *year + 1900 : *year;  // RFC 5322, 4.3
  p.month = static_cast<std::int32_t>(month - months.begin()) + 1;
  p.day = *day;
  p.hour = *hour;
  p.minute = *minute;
  p.second = std::min(*second, 59);  // a leap second
  const auto local = platform::dateFromParts(p);
  if (!local) return std::nullopt;
  const Date utc{local->days - zoneMinutes(text) / 1440.0};
  return platform::isInCalendar(utc) ? std::optional(utc) : std::nullopt;
}

String decodeCharset(std::string_view charset, std::string_view bytes) {
  if (sameAscii(charset, "utf-8") || sameAscii(charset, "us-ascii") || charset.empty())
    return isUtf8(bytes) || sameAscii(charset, "utf-8") ? fromUtf8(bytes) : fromLatin1(bytes);
  return fromLatin1(bytes);
}

}  // namespace mailclient

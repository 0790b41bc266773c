#include "addin/common/bastext.h"

#include <algorithm>

#include "addin/platform/date.h"

namespace addin {
namespace {

bool isDigit(char16_t c) { return c >= u'0' && c <= u'9'; }

// The number that up to two digits at `position` make; a text of 11 characters ends in the middle of the seconds.
std::int32_t twoDigits(StringView digits, std::size_t position) {
  std::int32_t number = 0;
  for (const char16_t c : digits.substr(position, 2)) number = number * 10 + (c - u'0');
  return number;
}

}  // namespace

String GetBetween(StringView text, StringView startMark, StringView endMark) {
  const std::size_t p = text.find(startMark);
  if (p == StringView::npos) return {};
  const std::size_t q = text.find(endMark, p);
  if (q == StringView::npos || q <= p) return {};
  return String(text.substr(p + 1, q - p - 1));
}

String RemoveAll(StringView text, StringView what) {
  if (what.empty()) return String(text);
  String result;
  while (true) {
    const std::size_t at = text.find(what);
    result += text.substr(0, at);
    if (at == StringView::npos) return result;
    text.remove_prefix(at + what.size());
  }
}

String NumberInParentheses(StringView text) { return RemoveAll(GetBetween(text, u"(", u")"), u" "); }

bool ParseTimeStamp(StringView text, Date& result) {
  if (text.size() < 11 || !std::all_of(text.begin(), text.end(), isDigit)) return false;
  const std::int32_t yy = twoDigits(text, 0);
  const auto date = dateFromParts({.year = yy >= 50 ? 1900 + yy : 2000 + yy,
                                   .month = twoDigits(text, 2),
                                   .day = twoDigits(text, 4),
                                   .hour = twoDigits(text, 6),
                                   .minute = twoDigits(text, 8),
                                   .second = twoDigits(text, 10)});
  if (date) result = *date;
  return date.has_value();
}

}  // namespace addin

#include "support/native_locale.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "addin/platform/date.h"

namespace testing_support {
namespace {

// What the code page has at 0x80 to 0x9F; the five free places stand for the control characters of the same number.
constexpr std::array<char16_t, 32> upperRow{0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,
                                            0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0x008D, 0x017D, 0x008F,
                                            0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
                                            0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

char ansiOf(char16_t c) {
  if (c < 0x80 || (c >= 0xA0 && c <= 0xFF)) return static_cast<char>(c);
  const auto* const at = std::find(upperRow.begin(), upperRow.end(), c);
  return at == upperRow.end() ? '?' : static_cast<char>(0x80 + (at - upperRow.begin()));
}

char16_t unitOf(char c) {
  const auto byte = static_cast<unsigned char>(c);
  return byte >= 0x80 && byte < 0xA0 ? upperRow[byte - 0x80u] : char16_t{byte};
}

std::string twoDigits(std::int32_t n) { return (n < 10 ? "0" : "") + std::to_string(n); }

}  // namespace

std::string NativeLocale::toAnsi(platform::StringView text) {
  std::string result;
  std::transform(text.begin(), text.end(), std::back_inserter(result), ansiOf);
  return result;
}

platform::String NativeLocale::fromAnsi(std::string_view text) {
  platform::String result;
  std::transform(text.begin(), text.end(), std::back_inserter(result), unitOf);
  return result;
}

platform::String NativeLocale::dateText(platform::Date date) {
  const platform::DateParts p = platform::partsOf(date);
  const std::string day = std::to_string(p.month) + "/" + std::to_string(p.day) + "/" + std::to_string(p.year);
  const std::int32_t hour = p.hour % 12 == 0 ? 12 : p.hour % 12;
  const std::string time =
      std::to_string(hour) + ":" + twoDigits(p.minute) + ":" + twoDigits(p.second) + (p.hour < 12 ? " AM" : " PM");
  const bool dayZero = p.year == 1899 && p.month == 12 && p.day == 30;
  const bool midnight = p.hour == 0 && p.minute == 0 && p.second == 0;
  if (dayZero) return fromAnsi(time);
  return fromAnsi(midnight ? day : day + " " + time);
}

}  // namespace testing_support

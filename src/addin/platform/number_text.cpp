#include "addin/platform/number_text.h"

#include <array>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <system_error>

#include "addin/platform/runtime_error.h"

namespace platform {
namespace {

// The blanks of Unicode too, as iswspace knows them.
bool isBlank(char16_t c) {
  constexpr StringView blanks = u"\t\n\v\f\r \u0085\u00A0\u1680\u2028\u2029\u202F\u205F\u3000";
  return blanks.find(c) != StringView::npos || (c >= u'\u2000' && c <= u'\u200A');
}

bool isDigit(char16_t c) { return c >= u'0' && c <= u'9'; }

// A mark that may stand before or behind the number, but once only.
struct Mark {
  char16_t sign;
  bool seen = false;
};

class Reader {
 public:
  explicit Reader(StringView text) : text_(text) {}

  std::optional<TextNumber> read() {
    takeMarks();
    if (take(u'(')) {
      parenthesis_ = true;
      takeMarks();
    }
    if (!(at(u'&') ? takeRadix() : takeDecimal())) return std::nullopt;
    takeMarks();
    if (parenthesis_ && !take(u')')) return std::nullopt;
    takeMarks();
    if (!text_.empty()) return std::nullopt;
    if (isTooLong_) raiseError(6);
    return bits_ ? TextNumber{0, bits_} : TextNumber{value(), std::nullopt};
  }

 private:
  bool at(char16_t c) const { return !text_.empty() && text_.front() == c; }
  bool take(char16_t c) {
    if (!at(c)) return false;
    text_.remove_prefix(1);
    return true;
  }
  bool takeLetter(char16_t upper) {
    if (text_.empty() || asciiUpper(text_.front()) != upper) return false;
    text_.remove_prefix(1);
    return true;
  }

  bool takeMark() {
    for (Mark* const mark : {&plus_, &minus_, &currency_})
      if (!mark->seen && take(mark->sign)) return mark->seen = true;
    return false;
  }
  void takeMarks() {
    for (;;) {
      while (!text_.empty() && isBlank(text_.front())) text_.remove_prefix(1);
      if (!takeMark()) return;
    }
  }

  bool takeRadix() {
    text_.remove_prefix(1);
    const unsigned shift = takeLetter(u'H') ? 4 : takeLetter(u'O') ? 3 : 0;
    for (; shift != 0 && !text_.empty(); text_.remove_prefix(1)) {
      const char16_t c = asciiUpper(text_.front());
      const unsigned digit = isDigit(c) ? c - unsigned{u'0'} : c >= u'A' && c <= u'F' ? c - unsigned{u'A'} + 10 : 99;
      if (digit >> shift) break;
      const std::uint64_t before = bits_.value_or(0);
      if (before >> (64 - shift)) isTooLong_ = true;
      bits_ = before << shift | digit;
    }
    return bits_.has_value();
  }

  bool takeDecimal() {
    takeDigits();
    if (take(u'.')) {
      digits_ += '.';
      takeDigits();
    }
    if (!anyDigit_) return false;
    if (currency_.seen || !(takeLetter(u'E') || takeLetter(u'D'))) return true;
    return takeExponent();
  }

  void takeDigits() {
    while (!text_.empty() && (isDigit(text_.front()) || (anyDigit_ && at(u',')))) {
      if (!take(u',')) {
        digits_ += static_cast<char>(text_.front());
        anyDigit_ = true;
        text_.remove_prefix(1);
      }
    }
  }

  bool takeExponent() {
    digits_ += 'e';
    if (take(u'-'))
      digits_ += '-';
    else
      take(u'+');
    bool any = false;
    for (; !text_.empty() && isDigit(text_.front()); text_.remove_prefix(1), any = true)
      digits_ += static_cast<char>(text_.front());
    return any;
  }

  double value() const {
    double magnitude = 0;
    const auto result = std::from_chars(digits_.data(), digits_.data() + digits_.size(), magnitude);
    // from_chars does not say at which end a number leaves the range; strtod does, by infinity or about zero.
    if (result.ec == std::errc::result_out_of_range) magnitude = std::strtod(digits_.c_str(), nullptr);
    if (std::isinf(magnitude)) raiseError(6);
    return minus_.seen || parenthesis_ ? -magnitude : magnitude;
  }

  StringView text_;
  std::string digits_;  // as from_chars wants them
  std::optional<std::uint64_t> bits_;
  Mark plus_{u'+'};
  Mark minus_{u'-'};
  Mark currency_{u'$'};
  bool anyDigit_ = false;
  bool isTooLong_ = false;
  bool parenthesis_ = false;
};

constexpr std::size_t shownDigits = 15;

struct Decimal {
  std::string digits;  // the point is behind the first
  int exponent;
};

// The C library rounds a half to the even neighbour, automation away from zero: hence from more digits, by hand.
Decimal roundedDecimal(double magnitude) {
  std::array<char, 48> buffer{};
  std::snprintf(buffer.data(), buffer.size(), "%.30e", magnitude);  // d.ddd…e±dd
  Decimal d{std::string(1, buffer[0]) + std::string(&buffer[2], shownDigits - 1), std::atoi(&buffer[33])};
  if (buffer[shownDigits + 1] >= '5') {
    auto at = d.digits.rbegin();
    for (; at != d.digits.rend() && *at == '9'; ++at) *at = '0';
    if (at != d.digits.rend()) {
      ++*at;
    } else {
      d.digits.insert(0, 1, '1');
      ++d.exponent;
    }
  }
  d.digits.erase(d.digits.find_last_not_of('0') + 1);
  return d;
}

}  // namespace

std::optional<TextNumber> readNumber(StringView text) { return Reader(text).read(); }

String numberText(double number) {
  if (number == 0) return u"0";
  std::array<char, 48> buffer{};
  if (!std::isfinite(number))
    return String(buffer.data(), buffer.data() + std::snprintf(buffer.data(), 48, "%G", number));
  auto [digits, exponent] = roundedDecimal(std::fabs(number));
  const auto count = static_cast<int>(digits.size());
  if (exponent < -4 || exponent >= static_cast<int>(shownDigits)) {
    if (count > 1) digits.insert(1, 1, '.');
    std::snprintf(buffer.data(), buffer.size(), "E%+03d", exponent);
    digits += buffer.data();
  } else if (exponent < 0) {
    digits.insert(0, "0." + std::string(static_cast<std::size_t>(-exponent - 1), '0'));
  } else if (count <= exponent + 1) {
    digits.append(static_cast<std::size_t>(exponent + 1 - count), '0');
  } else {
    digits.insert(static_cast<std::size_t>(exponent) + 1, 1, '.');
  }
  if (number < 0) digits.insert(0, 1, '-');
  return String(digits.begin(), digits.end());
}

}  // namespace platform

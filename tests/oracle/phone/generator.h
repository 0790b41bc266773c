// Messages at random, the same in every run.
#pragma once

#include <random>
#include <string>
#include <string_view>

#include "phone/pdu/address.h"
#include "phone/pdu/time_stamp.h"

namespace oracle {

class Generator {
 public:
  explicit Generator(unsigned seed) : random_(seed) {}

  std::size_t below(std::size_t limit) { return random_() % limit; }

  std::u16string text(std::u16string_view letters, std::size_t most) {
    std::u16string result;
    for (std::size_t left = below(most + 1); left > 0; --left) result += letters[below(letters.size())];
    return result;
  }

  // 1 to 15 digits, some with a plus sign.
  phone::Address number() {
    std::u16string digits(1, static_cast<char16_t>(u'1' + below(9)));
    while (digits.size() < 15 && below(10) != 0) digits += static_cast<char16_t>(u'0' + below(10));
    return {.type = below(2) ? phone::NumberType::International : phone::NumberType::Unknown, .value = digits};
  }

  // In this century: one of the judges has its own idea of the years before.
  phone::TimeStamp timeStamp() {
    return phone::fromUtcSeconds(std::int64_t{10958} * 86400 + static_cast<std::int64_t>(below(60U * 365 * 86400)),
                                 static_cast<int>(below(105)) - 48);
  }

 private:
  std::mt19937 random_;
};

}  // namespace oracle

// How lines of the console are written: words between blanks, text in double quotes.
#pragma once

#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace phonesim {

// What is wrong with a line; the console tells it.
class ConsoleError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// In quotes, a backslash goes before a quote, a backslash, n, r, t, and before u with four hexadecimal digits (one
// UTF-16 unit). Throws ConsoleError.
std::vector<std::u16string> splitWords(std::string_view utf8);

// In quotes, in one line, as splitWords() reads it.
std::string inQuotes(std::u16string_view text);

// Octets that are no UTF-8 become U+FFFD, and so does half a surrogate pair.
std::u16string fromUtf8(std::string_view utf8);
std::string toUtf8(std::u16string_view text);

}  // namespace phonesim

// Header lines of a message: folding, display texts with encoded words, and dates (RFC 5322, RFC 2047).
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "mailclient/types.h"

namespace mailclient {

struct HeaderLine {
  std::string_view name;   // without the colon
  std::string_view value;  // still folded
  std::string_view whole;  // with its line breaks
};

// The header lines of a message; `body` becomes what follows the empty line. Lines that are no header are skipped.
std::vector<HeaderLine> splitMessage(std::string_view message, std::string_view& body);

bool isHeader(const HeaderLine& line, std::string_view name);  // names ignore case

// "Name: value" for a value that may be cut anywhere, in lines of 78 characters at most.
std::string foldAnywhere(std::string_view name, std::string_view value);

// "Name: text", the text as it stands when it is plain ASCII, else in encoded words of UTF-8.
std::string displayHeader(std::string_view name, StringView text, std::string_view trailer = {});
// The text of a display header of anybody's. Without an encoding, bytes are UTF-8 or, failing that, ISO 8859-1.
String displayText(std::string_view value);

// "Sat, 03 Feb 2001 12:00:00 +0000"
std::string dateText(Date utc);
std::optional<Date> parseDateText(std::string_view text);  // UTC

// Bytes in a character set that a message names; those that are not known are taken as ISO 8859-1.
String decodeCharset(std::string_view charset, std::string_view bytes);

bool sameAscii(std::string_view a, std::string_view b);  // ignoring case

}  // namespace mailclient

// Text as bytes: UTF-8, an escape that keeps every UTF-16 unit exactly, quoted-printable and base64.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "mailclient/types.h"

namespace mailclient {

// Units that belong to no character (lone surrogates) become U+FFFD.
std::string toUtf8(StringView text);
// Bytes that are no UTF-8 become U+FFFD.
String fromUtf8(std::string_view bytes);
bool isUtf8(std::string_view bytes);
// Each byte is the character of that number (ISO 8859-1).
String fromLatin1(std::string_view bytes);

// Printable ASCII for any text at all. Blanks are "_"; what is not printable ASCII, and "%" and "_", is "%" and the
// unit's four hexadecimal digits. Blanks and line breaks in the escaped form mean nothing, so that it may be folded
// anywhere.
std::string escapeExactly(StringView text);
String unescapeExactly(std::string_view escaped);

// Quoted-printable (RFC 2045, 6.7) of text lines: CR LF stays a line break, a lone CR or LF is encoded.
std::string toQuotedPrintable(std::string_view bytes);
// Damaged encodings are taken as they stand. Line breaks come out as CR LF, whatever they were.
std::string fromQuotedPrintable(std::string_view text);

// Characters outside the alphabet are skipped.
std::string fromBase64(std::string_view text);

// Tells texts apart (FNV-1a, 64 bits), but not against somebody who wants them to look the same.
std::uint64_t fingerprint(std::string_view bytes);

}  // namespace mailclient

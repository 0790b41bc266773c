// How texts, numbers and times are written in commands and answers.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "phone/pdu/address.h"
#include "phone/pdu/time_stamp.h"
#include "phonesim/handset/character_set.h"

namespace phonesim {

// A string constant (ITU-T V.250, 5.4.2.2). What cannot stand in one, a quotation mark or an end of a line, is written
// as a backslash and two hexadecimal digits. A backslash is written so only where it would be read as the beginning of
// such a code: it is a letter's code in the 7-bit alphabet, and few programs know of codes at all.
std::string stringConstant(std::string_view octets);
// What stood between the quotation marks.
std::string fromConstant(std::string_view constant);

std::string quotedText(std::u16string_view text, CharacterSet set);
// <number>,<type>: "+46701",145. No number is told as an empty one.
std::string numberAndType(const std::optional<phone::Address>& number, CharacterSet set);
// The same in a phone book, where only names are in the character set of +CSCS: nothing in 3GPP TS 27.007 has numbers
// converted, as TS 27.005 has those of messages, and programs show what they find here as the number.
std::string bookNumberAndType(const std::optional<phone::Address>& number);
// "26/02/03,04:05:06+04": quarters of an hour from Greenwich (3GPP TS 27.007, 8.15).
std::string quotedTime(const phone::TimeStamp& time);

}  // namespace phonesim

// The user data: a header, if any, and the text or data behind it (3GPP TS 23.040, 9.2.3.24).
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "phone/pdu/data_coding.h"
#include "phone/pdu/user_data_header.h"
#include "phone/text/octets.h"

namespace phone {

// As it travels.
struct UserData {
  bool hasHeader = false;   // the first octet's bit 6
  std::uint8_t length = 0;  // septets of 7-bit text (header and fill bits included), octets of everything else
  Octets octets = {};       // without the length octet
  friend bool operator==(const UserData&, const UserData&) = default;
};

// What it says.
struct Content {
  UserDataHeader header = {};
  std::u16string text = {};  // to be shown, whatever the coding
  Octets data = {};          // of 8-bit and compressed messages
  friend bool operator==(const Content&, const Content&) = default;
};

// The octets that user data of that coding and length occupy.
std::size_t octetsOfUserData(const DataCoding& coding, std::uint8_t length);

// Throws BadPdu when the length is above what a message can hold or the header is longer than the user data.
Content readUserData(const UserData& data, const DataCoding& coding);

// One message's user data. The text must fit, see capacityAlone() and capacityOfPart(). As 8-bit data, it is written in
// ISO 8859-1.
UserData writeUserData(const UserDataHeader& header, std::u16string_view text, Alphabet alphabet);
UserData writeUserData(const UserDataHeader& header, OctetsView data);

struct EncodedText {
  Alphabet alphabet = Alphabet::Gsm7;
  std::vector<UserData> parts = {};  // with a concatenation header when there are several
};

// Throws TextTooLong.
EncodedText encodeText(std::u16string_view text, std::uint8_t reference);

}  // namespace phone

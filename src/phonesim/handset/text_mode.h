// Messages in text mode (3GPP TS 27.005, 3): how a PDU is told in words, and how what is typed becomes one.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "phone/pdu/decode.h"
#include "phonesim/handset/character_set.h"
#include "phonesim/handset/memory.h"

namespace phonesim {

// What +CSMP sets: the first octet, validity, protocol and data coding of a message that is typed.
struct TextParameters {
  static constexpr int usualFirst = 17;  // Submit, with a relative validity period
  static constexpr int usualValidity = 167;
  int first = usualFirst;
  int validity = usualValidity;
  int protocol = 0;
  int coding = 0;
};

std::string_view wordFor(Status status);
// As a listing's filter: allStatuses for "ALL".
std::optional<int> statusNamed(std::string_view word);

// A PDU as text mode tells it.
class TextView {
 public:
  // `details` as +CSDH chose; `centre` is the one that the SIM knows.
  TextView(const Octets& pdu, CharacterSet characters, bool details, const std::optional<phone::Address>& centre);

  std::string listed(Status status) const;  // behind the index of +CMGL
  std::string read(Status status) const;    // behind +CMGR
  std::string arrived() const;              // behind +CMT
  std::string reported() const;             // behind +CDS

 private:
  std::string number(const phone::Address& address) const;
  std::string time(const std::optional<phone::TimeStamp>& stamp) const;
  std::string header() const;
  std::string body() const;

  phone::Message message_;
  CharacterSet characters_;
  bool details_;
  std::optional<phone::Address> centre_;
};

// The user data in what was typed: text in the character set, or hexadecimal when the coding is not the 7-bit alphabet
// or there is a header. Nothing when it is too long, or not in that form.
std::optional<phone::UserData> typedData(std::string_view typed, const TextParameters& parameters, CharacterSet set);

}  // namespace phonesim

// Whom a text message can go to: the contacts with a mobile number, and what a user may type for a recipient.
#pragma once

#include <optional>
#include <vector>

#include "mailclient/folder.h"

namespace mailclient {

struct AddressEntry {
  String name;
  String number;
  friend bool operator==(const AddressEntry&, const AddressEntry&) = default;
};

// The contacts of a folder and of those below it that have a mobile number, by name.
std::vector<AddressEntry> addressBook(const Folder& contacts);

// "Name [number]". Whoever sends the message takes what stands between the first brackets, without blanks and
// parentheses: other separators are left out of the number, and brackets in the name become parentheses. Control
// characters become blanks (code 1 ends the address in a topic).
String displayAddress(const AddressEntry& entry);

// True for a number as people write it: digits, perhaps a leading "+", and separators.
bool isPhoneNumber(StringView text);

// The entries that begin with what was typed: in a word of the name, or in the digits of the number. None for nothing.
std::vector<AddressEntry> complete(const std::vector<AddressEntry>& book, StringView typed, std::size_t limit = 20);

// Which of the entries found for what was typed may be taken without being chosen: the first for the beginning of a
// name; for a number, which may be complete as it stands, only the one whose number it is.
std::optional<std::size_t> preselected(const std::vector<AddressEntry>& found, StringView typed);

// The display address that a typed recipient means: of one with a number in brackets only what the sender could not
// dial is left out, a bare number is put in brackets, with the name of the contact who has it, a name stands for the
// one contact that has it. Nothing when it means nobody, or more than one.
std::optional<String> resolveRecipient(const std::vector<AddressEntry>& book, StringView typed);

}  // namespace mailclient

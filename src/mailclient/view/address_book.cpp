#include "mailclient/view/address_book.h"

#include <algorithm>

#include "mailclient/view/collate.h"

namespace mailclient {
namespace {

bool isDigit(char16_t c) { return c >= u'0' && c <= u'9'; }
bool isSeparator(char16_t c) { return c == u' ' || c == u'(' || c == u')' || c == u'-' || c == u'.' || c == u'/'; }

StringView trimmed(StringView text) {
  while (!text.empty() && text.front() <= u' ') text.remove_prefix(1);
  while (!text.empty() && text.back() <= u' ') text.remove_suffix(1);
  return text;
}

// Nothing but what is dialled.
String dialled(StringView number) {
  String digits;
  for (const char16_t c : number)
    if (isDigit(c) || c == u'+') digits += c;
  return digits;
}

String plain(StringView text) {
  String result(text);
  for (char16_t& c : result)
    if (c < u' ') c = u' ';
  return result;
}

// As it stands in a display address: without what the sender does not take out of it.
String addressNumber(StringView number) {
  String result = plain(number);
  std::erase_if(result, [](char16_t c) { return c == u'-' || c == u'.' || c == u'/'; });
  return result;
}

void collect(const Folder& folder, std::vector<AddressEntry>& book) {
  for (const MessagePtr& contact : folder.messages()) {
    const StringView number = trimmed((*contact)[Text::MobileTelephoneNumber]);
    if (number.empty()) continue;
    const String& name = (*contact)[Text::FullName];
    book.push_back({name.empty() ? (*contact)[Text::FileAs] : name, String(number)});
  }
  for (const auto& below : folder.children()) collect(*below, book);
}

bool wordBeginsWith(StringView name, StringView start) {
  for (std::size_t at = 0; at != StringView::npos; at = name.find(u' ', at)) {
    if (at != 0) ++at;
    if (beginsAlike(name.substr(at), start)) return true;
  }
  return false;
}

// The number between the first "[" and the next "]".
std::optional<StringView> bracketed(StringView text) {
  const std::size_t open = text.find(u'[');
  const std::size_t close = open == StringView::npos ? open : text.find(u']', open);
  if (close == StringView::npos) return std::nullopt;
  return text.substr(open + 1, close - open - 1);
}

// A number typed alone gets the name of the only contact who has it.
String addressOfNumber(const std::vector<AddressEntry>& book, StringView typed) {
  const String wanted = dialled(typed);
  const AddressEntry* owner = nullptr;
  for (const AddressEntry& entry : book) {
    if (dialled(entry.number) != wanted) continue;
    if (owner) return u"[" + wanted + u"]";
    owner = &entry;
  }
  return owner ? displayAddress(*owner) : u"[" + wanted + u"]";
}

}  // namespace

std::vector<AddressEntry> addressBook(const Folder& contacts) {
  std::vector<AddressEntry> book;
  collect(contacts, book);
  std::stable_sort(book.begin(), book.end(),
                   [](const AddressEntry& a, const AddressEntry& b) { return collate(a.name, b.name) < 0; });
  return book;
}

String displayAddress(const AddressEntry& entry) {
  String address = plain(entry.name);
  for (char16_t& c : address) {
    if (c == u'[') c = u'(';
    if (c == u']') c = u')';
  }
  if (!address.empty()) address += u' ';
  return address + u'[' + addressNumber(entry.number) + u']';
}

bool isPhoneNumber(StringView text) {
  text = trimmed(text);
  if (!text.empty() && text.front() == u'+') text.remove_prefix(1);
  return std::all_of(text.begin(), text.end(), [](char16_t c) { return isDigit(c) || isSeparator(c); }) &&
         std::any_of(text.begin(), text.end(), isDigit);
}

std::vector<AddressEntry> complete(const std::vector<AddressEntry>& book, StringView typed, std::size_t limit) {
  typed = trimmed(typed);
  std::vector<AddressEntry> found;
  if (typed.empty()) return found;
  const String digits = isPhoneNumber(typed) ? dialled(typed) : String();
  for (const AddressEntry& entry : book) {
    if (found.size() == limit) break;
    if (wordBeginsWith(entry.name, typed) || (!digits.empty() && dialled(entry.number).starts_with(digits)))
      found.push_back(entry);
  }
  return found;
}

std::optional<std::size_t> preselected(const std::vector<AddressEntry>& found, StringView typed) {
  if (found.empty()) return std::nullopt;
  if (!isPhoneNumber(typed)) return 0;
  const String digits = dialled(typed);
  const auto isIt = [&](const AddressEntry& entry) { return dialled(entry.number) == digits; };
  if (std::count_if(found.begin(), found.end(), isIt) != 1) return std::nullopt;
  return static_cast<std::size_t>(std::find_if(found.begin(), found.end(), isIt) - found.begin());
}

std::optional<String> resolveRecipient(const std::vector<AddressEntry>& book, StringView typed) {
  typed = trimmed(typed);
  if (const auto number = bracketed(typed)) {
    if (!isPhoneNumber(*number)) return std::nullopt;
    const auto before = static_cast<std::size_t>(number->data() - typed.data());
    return plain(typed.substr(0, before)) + addressNumber(*number) + plain(typed.substr(before + number->size()));
  }
  if (isPhoneNumber(typed)) return addressOfNumber(book, typed);
  const AddressEntry* only = nullptr;
  for (const AddressEntry& entry : book) {
    if (entry.name.size() != typed.size() || !beginsAlike(entry.name, typed)) continue;
    if (only) return std::nullopt;
    only = &entry;
  }
  if (!only || typed.empty() || !isPhoneNumber(only->number)) return std::nullopt;
  return displayAddress(*only);
}

}  // namespace mailclient

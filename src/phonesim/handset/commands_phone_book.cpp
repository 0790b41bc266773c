// The phone books: 3GPP TS 27.007, 8.11 to 8.14.
#include <algorithm>
#include <array>

#include "phonesim/handset/answer_text.h"
#include "phonesim/handset/message_arguments.h"

namespace phonesim {

namespace {

constexpr std::array<std::string_view, 3> bookNames{"SM", "ME", "ON"};
constexpr std::size_t longestNumber = phone::mostDigits + 1;  // with the plus sign

Result unknownBookForm() { return Result::cme(cme::operationNotSupported); }

// The one that +CPBS has chosen. The handset's own numbers can be read, not written.
struct Chosen {
  PhoneBook own;
  const PhoneBook* book = nullptr;
  std::optional<Place> place;
  int size = 0;
};

void choose(const Call& call, Chosen& chosen) {
  const BookName name = call.settings().phoneBook;
  if (name == BookName::Own) {
    chosen.own.put(1, {call.handset().number(), u""});
    chosen.book = &chosen.own;
    chosen.size = 1;
    return;
  }
  chosen.place = name == BookName::Sim ? Place::Sim : Place::Phone;
  chosen.book = &call.handset().state().contacts.at(*chosen.place);
  chosen.size = PhoneBook::capacity;
}

Result phoneBook(const Call& call) {
  BookName& name = call.settings().phoneBook;
  switch (call.command.form) {
    case Form::Test:
      call.answer.line(R"(+CPBS: ("SM","ME","ON"))");
      return Result::ok();
    case Form::Read: {
      Chosen chosen;
      choose(call, chosen);
      call.answer.line("+CPBS: \"" + std::string(bookNames[static_cast<std::size_t>(name)]) + "\"," +
                       std::to_string(chosen.book->used()) + ',' + std::to_string(chosen.size));
      return Result::ok();
    }
    case Form::Set:
      break;
    case Form::Execute:
      return unknownBookForm();
  }
  const auto found = std::ranges::find(bookNames, call.command.arguments[0].text);
  if (call.command.count() > 2) return Result::cme(cme::incorrectParameters);
  if (found == bookNames.end()) return Result::cme(cme::operationNotSupported);
  name = static_cast<BookName>(found - bookNames.begin());
  return Result::ok();
}

void tellEntry(const Call& call, int index, const Contact& contact) {
  const CharacterSet set = call.settings().characters;
  call.answer.line(call.command.name + ": " + std::to_string(index) + ',' + bookNumberAndType(contact.number) + ',' +
                   quotedText(contact.name, set));
}

Result readEntries(const Call& call) {
  Chosen chosen;
  choose(call, chosen);
  if (call.command.form == Form::Test) {
    call.answer.line("+CPBR: (1-" + std::to_string(chosen.size) + ")," + std::to_string(longestNumber) + ',' +
                     std::to_string(longestName));
    return Result::ok();
  }
  if (call.command.form != Form::Set) return unknownBookForm();
  if (call.command.count() > 2) return Result::cme(cme::incorrectParameters);
  const auto first = call.command.numberAt(0, 1, chosen.size);
  const auto last = first ? call.command.numberAt(1, *first, chosen.size, *first) : std::nullopt;
  if (!last) return Result::cme(cme::invalidIndex);
  const auto& entries = chosen.book->entries();
  for (auto entry = entries.lower_bound(*first); entry != entries.end() && entry->first <= *last; ++entry)
    tellEntry(call, entry->first, entry->second);
  return Result::ok();
}

char16_t small(char16_t c) { return c >= u'A' && c <= u'Z' ? static_cast<char16_t>(c - u'A' + u'a') : c; }

bool beginsWith(std::u16string_view name, std::u16string_view beginning) {
  return name.size() >= beginning.size() &&
         std::ranges::equal(name.substr(0, beginning.size()), beginning, {}, small, small);
}

Result findEntries(const Call& call) {
  if (call.command.form == Form::Test) {
    call.answer.line("+CPBF: " + std::to_string(longestNumber) + ',' + std::to_string(longestName));
    return Result::ok();
  }
  if (call.command.form != Form::Set) return unknownBookForm();
  const auto wanted = fromCharacterSet(call.command.arguments[0].text, call.settings().characters);
  if (call.command.count() > 1 || !wanted) return Result::cme(cme::incorrectParameters);
  Chosen chosen;
  choose(call, chosen);
  bool found = false;
  for (const auto& [index, contact] : chosen.book->entries()) {
    if (!beginsWith(contact.name, *wanted)) continue;
    tellEntry(call, index, contact);
    found = true;
  }
  return found ? Result::ok() : Result::cme(cme::notFound);
}

// The entry of +CPBW=<index>,<number>,<type>,<text>.
Result readContact(const Call& call, Contact& contact) {
  const auto& arguments = call.command.arguments;
  const auto number = plainNumberIn(call, 1);
  if (!number) return Result::cme(hasTooManyDigits(call, 1) ? cme::numberTooLong : cme::invalidNumber);
  contact.number = *number;
  if (!applyTypeIn(call, 2, contact.number)) return Result::cme(cme::incorrectParameters);
  const auto name = fromCharacterSet(arguments.size() > 3 ? arguments[3].text : "", call.settings().characters);
  if (!name) return Result::cme(cme::invalidText);
  if (name->size() > longestName) return Result::cme(cme::textTooLong);
  contact.name = *name;
  return Result::ok();
}

Result writeEntry(const Call& call) {
  if (call.command.form == Form::Test) {
    call.answer.line("+CPBW: (1-" + std::to_string(PhoneBook::capacity) + ")," + std::to_string(longestNumber) +
                     ",(129,145,161)," + std::to_string(longestName));
    return Result::ok();
  }
  if (call.command.form != Form::Set) return unknownBookForm();
  if (call.settings().phoneBook == BookName::Own) return Result::cme(cme::operationNotAllowed);
  const auto& arguments = call.command.arguments;
  if (arguments.size() > 4) return Result::cme(cme::incorrectParameters);
  PhoneBook& book = call.handset().contacts(call.settings().phoneBook == BookName::Sim ? Place::Sim : Place::Phone);
  std::optional<int> index;
  if (!arguments[0].isEmpty()) {
    index = call.command.numberAt(0, 1, PhoneBook::capacity);
    if (!index) return Result::cme(cme::invalidIndex);
  }
  const bool removes = arguments.size() < 2 || (arguments.size() == 2 && arguments[1].text.empty());
  if (removes) {
    if (!index) return Result::cme(cme::invalidIndex);
    book.remove(*index);
  } else {
    Contact contact;
    if (const Result result = readContact(call, contact); result.kind != Result::Kind::Ok) return result;
    if (!index) index = book.freeIndex();
    if (!index) return Result::cme(cme::memoryFull);
    book.put(*index, std::move(contact));
  }
  call.handset().changed();
  return Result::ok();
}

constexpr std::array phoneBookTable{
    Command{"+CPBS", phoneBook, true},
    Command{"+CPBR", readEntries, true},
    Command{"+CPBF", findEntries, true},
    Command{"+CPBW", writeEntry, true},
};

}  // namespace

std::span<const Command> phoneBookCommands() { return phoneBookTable; }

}  // namespace phonesim

#include "phonesim/handset/message_arguments.h"

#include <algorithm>
#include <utility>

namespace phonesim {

namespace {

// Both ways to read an argument, the likelier one first.
std::vector<std::u16string> readings(const Call& call, std::size_t position) {
  const auto& arguments = call.command.arguments;
  if (position >= arguments.size()) return {};
  const std::string& typed = arguments[position].text;
  std::vector<std::u16string> texts;
  if (auto text = fromCharacterSet(typed, call.settings().characters)) texts.push_back(std::move(*text));
  texts.emplace_back(typed.begin(), typed.end());
  return texts;
}

}  // namespace

Result invalidParameter(const Settings& settings) {
  return Result::cms(settings.textMode ? cms::invalidTextParameter : cms::invalidPduParameter);
}

std::optional<phone::Address> plainNumberIn(const Call& call, std::size_t position) {
  for (const std::u16string& text : readings(call, position))
    if (auto number = phone::parseNumber(text)) return number;
  return std::nullopt;
}

bool hasTooManyDigits(const Call& call, std::size_t position) {
  return std::ranges::any_of(readings(call, position), [](const std::u16string& text) {
    return text.size() > phone::mostDigits && phone::parseNumber(text.substr(0, phone::mostDigits));
  });
}

bool applyTypeIn(const Call& call, std::size_t position, phone::Address& number) {
  const auto& arguments = call.command.arguments;
  if (position >= arguments.size() || arguments[position].isEmpty()) return true;
  const auto type = call.command.numberAt(position, 128, 255);
  if (!type) return false;
  phone::setType(number, static_cast<std::uint8_t>(*type));
  return number.type != phone::NumberType::Alphanumeric;
}

std::optional<phone::Address> numberIn(const Call& call, std::size_t position) {
  auto number = plainNumberIn(call, position);
  return number && applyTypeIn(call, position + 1, *number) ? number : std::nullopt;
}

}  // namespace phonesim

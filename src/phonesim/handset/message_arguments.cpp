#include "phonesim/handset/message_arguments.h"

namespace phonesim {

namespace {

std::optional<phone::Address> plainNumber(const std::string& text, CharacterSet set) {
  if (const auto plain = fromCharacterSet(text, set))
    if (auto address = phone::parseNumber(*plain)) return address;
  return phone::parseNumber(std::u16string(text.begin(), text.end()));
}

}  // namespace

Result invalidParameter(const Settings& settings) {
  return Result::cms(settings.textMode ? cms::invalidTextParameter : cms::invalidPduParameter);
}

std::optional<phone::Address> numberIn(const Call& call, std::size_t position) {
  const auto& arguments = call.command.arguments;
  if (position >= arguments.size()) return std::nullopt;
  auto address = plainNumber(arguments[position].text, call.settings().characters);
  const std::size_t behind = position + 1;
  if (!address || behind >= arguments.size() || arguments[behind].isEmpty()) return address;
  const auto type = call.command.numberAt(behind, 128, 255);
  if (!type) return std::nullopt;
  address->type = static_cast<phone::NumberType>((*type >> 4) & 7);
  address->plan = static_cast<std::uint8_t>(*type & 0x0F);
  if (address->type == phone::NumberType::Alphanumeric) return std::nullopt;
  return address;
}

}  // namespace phonesim

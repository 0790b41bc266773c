// The text properties by name: who has them, how they are stored, and whether a filter may ask for them.
#pragma once

#include <optional>
#include <span>

#include "mailclient/message.h"

namespace mailclient {

// Which items have a property.
enum class Owners : std::uint8_t { All, Mail, Contacts };

struct TextProperty {
  Text text;
  StringView name;  // in the object model
  Owners owners;
  bool searchable;  // Restrict and Find accept it
};

std::span<const TextProperty> textProperties();  // in the order of Text

bool hasProperty(const Message& message, Text text);

// The property that a filter names; nothing when there is none, or when it may not be searched.
std::optional<Text> searchableText(StringView name);

}  // namespace mailclient

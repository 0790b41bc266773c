#include "mailclient/properties.h"

namespace mailclient {
namespace {

constexpr std::array<TextProperty, textCount> table{{
    {Text::MessageClass, u"MessageClass", Owners::All, true},
    {Text::Subject, u"Subject", Owners::All, true},
    {Text::Body, u"Body", Owners::All, false},
    {Text::HtmlBody, u"HTMLBody", Owners::Mail, false},
    {Text::To, u"To", Owners::Mail, true},
    {Text::Cc, u"CC", Owners::Mail, true},
    {Text::Bcc, u"BCC", Owners::Mail, true},
    {Text::SenderName, u"SenderName", Owners::Mail, true},
    {Text::ConversationTopic, u"ConversationTopic", Owners::All, true},
    {Text::BillingInformation, u"BillingInformation", Owners::All, true},
    {Text::Mileage, u"Mileage", Owners::All, true},
    {Text::Categories, u"Categories", Owners::All, false},
    {Text::Companies, u"Companies", Owners::All, false},
    {Text::FullName, u"FullName", Owners::Contacts, true},
    {Text::FirstName, u"FirstName", Owners::Contacts, true},
    {Text::LastName, u"LastName", Owners::Contacts, true},
    {Text::CompanyName, u"CompanyName", Owners::Contacts, true},
    {Text::FileAs, u"FileAs", Owners::Contacts, true},
    {Text::MobileTelephoneNumber, u"MobileTelephoneNumber", Owners::Contacts, true},
    {Text::BusinessTelephoneNumber, u"BusinessTelephoneNumber", Owners::Contacts, true},
    {Text::HomeTelephoneNumber, u"HomeTelephoneNumber", Owners::Contacts, true},
}};

constexpr std::int32_t mailItemKind = 43;
constexpr std::int32_t contactKind = 40;

}  // namespace

std::span<const TextProperty> textProperties() { return table; }

bool hasProperty(const Message& message, Text text) {
  switch (table[static_cast<std::size_t>(text)].owners) {
    case Owners::All:
      return true;
    case Owners::Mail:
      return kindOf(message[Text::MessageClass]) == mailItemKind;
    case Owners::Contacts:
      return kindOf(message[Text::MessageClass]) == contactKind;
  }
  return false;
}

std::optional<Text> searchableText(StringView name) {
  for (const TextProperty& p : table)
    if (p.searchable && sameName(p.name, name)) return p.text;
  return std::nullopt;
}

}  // namespace mailclient

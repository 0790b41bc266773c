// Phone numbers, service centre and the names of people.

#include "addin/common/bastext.h"
#include "addin/diag/basDbgOut.h"
#include "addin/diag/basDebug.h"
#include "addin/settings/options.h"
#include "addin/sms/clsSMSHandler.h"
#include "addin/sms/clscontactfolder.h"

namespace addin {
namespace {

// Used when the user has chosen none. A placeholder: the SMS object server takes it for "the SIM's own".
constexpr StringView fallbackServiceCentre = u"+46701740699";

}  // namespace

String clsSMSHandler::ExtractPhoneNumber(StringView address) {
  return RemoveAll(RemoveAll(RemoveAll(GetBetween(address, u"[", u"]"), u"("), u")"), u" ");
}

String clsSMSHandler::ExtractParenthesisedNumber(StringView text) { return NumberInParentheses(text); }

String clsSMSHandler::GetServiceCentreAddress() {
  return onErrorLog<String>([&](String& result) {
    result = fallbackServiceCentre;
    const String chosen = ExtractParenthesisedNumber(OptionText(u"SCAddress"));
    const std::int32_t useOwn = OptionNumber(u"SCAddress_UseOwn", 0);
    const String own = ExtractParenthesisedNumber(OptionText(u"SCAddress_Own"));
    const String& number = useOwn == 0 ? chosen : own;
    if (!number.empty()) result = number;
  });
}

String clsSMSHandler::GetOwnAddress() {
  return onErrorLog<String>([&](String& result) {
    const String name = OptionText(u"My_FullName");
    const String number = OptionText(u"My_PhoneNo");
    if (!name.empty()) result = concat(name, u" ");
    if (!number.empty()) result += concat(u"[", number, u"]");
  });
}

String clsSMSHandler::BuildFromAddress(StringView number) {
  return onErrorLog<String>([&](String& result) {
    const String bracketed = concat(u"[", number, u"]");
    result = bracketed;
    if (!m_objContacts) raiseError(7, u"BuildFromAddress", u"No m_objContacts object");
    clscontactfolder folder;
    folder.ContactsFld(m_objContacts);
    const outlook::ContactItem contact = folder.FindContact(number);
    if (contact) result = concat(contact.FullName(), u" ", bracketed);
  });
}

}  // namespace addin

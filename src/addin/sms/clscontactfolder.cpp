#include "addin/sms/clscontactfolder.h"

#include "addin/common/bastext.h"
#include "addin/diag/basDebug.h"

namespace addin {

using outlook::ContactItem;

ContactItem clscontactfolder::FindContact(const Variant& strMobilePhoneNo) {
  return onErrorLog<ContactItem>([&](ContactItem& result) {
    if (!m_objContacts) raiseError(7, u"FindContact", u"No m_objContacts object");
    const String number = CStr(strMobilePhoneNo);
    result = SearchFolder(m_objContacts.Items(), number);
    if (!result) result = SearchFolders(m_objContacts.Folders(), number);
  });
}

ContactItem clscontactfolder::SearchFolder(const outlook::Items& items, StringView number) {
  return onErrorLog<ContactItem>([&](ContactItem& result) {
    const outlook::Items withNumber = items.Restrict(u"[MobileTelephoneNumber] > ''");
    const std::int32_t count = withNumber.Count();
    for (std::int32_t i = 1; i <= count; ++i) {
      const auto contact = withNumber.Item<ContactItem>(i);
      const String mobile = RemoveAll(RemoveAll(RemoveAll(contact.MobileTelephoneNumber(), u"("), u")"), u" ");
      if (mobile != number) continue;
      result = contact;
      return;
    }
  });
}

ContactItem clscontactfolder::SearchFolders(const outlook::Folders& folders, StringView number) {
  return onErrorLog<ContactItem>([&](ContactItem& result) {
    const std::int32_t count = folders.Count();
    for (std::int32_t i = 1; i <= count && !result; ++i) {
      const outlook::MAPIFolder folder = folders.Item(i);
      result = SearchFolder(folder.Items(), number);
      if (!result) result = SearchFolders(folder.Folders(), number);
    }
  });
}

}  // namespace addin

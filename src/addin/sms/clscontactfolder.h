// Finds a contact by its mobile number, in a contacts folder and the folders below it.
#pragma once

#include "addin/common/basGlobal.h"
#include "addin/platform/outlook.h"

namespace addin {

class clscontactfolder {
 public:
  void ContactsFld(const outlook::MAPIFolder& folder) { m_objContacts = folder; }

  // The first contact whose mobile number, without parentheses and spaces, is exactly this text; Nothing when there is
  // none. The folder's own contacts come first, then its subfolders, depth first.
  outlook::ContactItem FindContact(const Variant& strMobilePhoneNo);

 private:
  outlook::ContactItem SearchFolder(const outlook::Items& items, StringView number);
  outlook::ContactItem SearchFolders(const outlook::Folders& folders, StringView number);

  outlook::MAPIFolder m_objContacts;
};

}  // namespace addin

// Names in a Maildir tree: folders, and message files with their flags.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "mailclient/types.h"

namespace mailclient {

// ".Contacts.Work" for {"Contacts", "Work"}; each name in modified UTF-7 (RFC 3501, 5.1.3), in which a dot, what
// Windows refuses in names and what is not ASCII are encoded. Any text comes back exactly.
std::string folderDirectory(const std::vector<String>& path);
// Nothing for a directory that is no folder of the tree.
std::optional<std::vector<String>> folderNames(std::string_view directory);

// "<base>:2,<flags>", with ":" or ";".
struct FlaggedName {
  std::string base;
  std::string flags;  // in ASCII order, as the Maildir format asks for
};
FlaggedName parseName(const std::string& name);
std::string joinName(const FlaggedName& name, char separator);
// The same with a flag set or cleared.
FlaggedName withFlag(FlaggedName name, char flag, bool set);

}  // namespace mailclient

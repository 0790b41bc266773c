// The folder tree: which folders it shows, in what order, and what it writes beside them.
#pragma once

#include "mailclient/store.h"
#include "mailclient/view/columns.h"

namespace mailclient {

// The folders below one: those of the mail client in its own order, then the others by name. Calendar, Journal, Notes
// and Tasks, which this mail client has no views for, are left out while nothing lies in them.
std::vector<std::shared_ptr<Folder>> shownChildren(const Store& store, const Folder& folder);

// "Inbox (2)"; in the Outbox and among the drafts every item counts.
String folderLabel(const Store& store, const Folder& folder);
bool labelIsBold(const Store& store, const Folder& folder);

// The names on the way down, with "/" between (and "\" before a "/" or "\" of a name); and the folder there, null when
// it has gone.
String folderPath(const Folder& folder);
std::shared_ptr<Folder> folderAt(const Store& store, StringView path);

}  // namespace mailclient

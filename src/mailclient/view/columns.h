// The columns of a message list: which a folder shows, what stands in them, and how they sort.
#pragma once

#include <functional>
#include <span>

#include "mailclient/store.h"

namespace mailclient {

enum class Column : std::uint8_t { From, To, Subject, Received, Sent, FullName, Company, Mobile, Business, Home };

struct ColumnInfo {
  Column column;
  StringView title;
  std::int32_t width;  // at 96 dots per inch
  bool newestFirst;    // sorts downwards at the first click
};

// What a folder holds, as far as the window cares.
enum class FolderKind : std::uint8_t { Inbox, Outbox, Sent, Deleted, Drafts, Contacts, Plain, Other };
FolderKind folderKind(const Store& store, const Folder& folder);

std::span<const ColumnInfo> columnsOf(FolderKind kind);
// The column that a folder is sorted by until the user says otherwise: the time, or the name.
Column firstSortOf(FolderKind kind);

// A stored time (UTC; 0 when not set) as text.
using TimeText = std::function<String(Date utc)>;

String cellText(const Message& message, Column column, const TimeText& timeText);
// The time that a column shows; 0 when it has none.
Date timeOf(const Message& message, Column column);
// Below 0, 0 or above 0.
int compare(const Message& a, const Message& b, Column column);
// Among those that are the same in the column the newest comes first, whichever way they are sorted.
bool isNewer(const Message& a, const Message& b, Column column);

// On one line: line breaks and tabs are blanks.
String oneLine(StringView text);

}  // namespace mailclient

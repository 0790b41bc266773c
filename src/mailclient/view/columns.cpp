#include "mailclient/view/columns.h"

#include <array>

#include "mailclient/view/collate.h"

namespace mailclient {
namespace {

constexpr std::array receivedColumns{
    ColumnInfo{Column::From, u"From", 190, false},
    ColumnInfo{Column::Subject, u"Subject", 260, false},
    ColumnInfo{Column::Received, u"Received", 150, true},
};
constexpr std::array sentColumns{
    ColumnInfo{Column::To, u"To", 190, false},
    ColumnInfo{Column::Subject, u"Subject", 260, false},
    ColumnInfo{Column::Sent, u"Sent", 150, true},
};
constexpr std::array contactColumns{
    ColumnInfo{Column::FullName, u"Full Name", 190, false},
    ColumnInfo{Column::Company, u"Company", 150, false},
    ColumnInfo{Column::Mobile, u"Mobile Phone", 140, false},
    ColumnInfo{Column::Business, u"Business Phone", 140, false},
};

Text textOf(Column column) {
  switch (column) {
    case Column::From:
      return Text::SenderName;
    case Column::To:
      return Text::To;
    case Column::FullName:
      return Text::FullName;
    case Column::Company:
      return Text::CompanyName;
    case Column::Mobile:
      return Text::MobileTelephoneNumber;
    case Column::Business:
      return Text::BusinessTelephoneNumber;
    case Column::Home:
      return Text::HomeTelephoneNumber;
    case Column::Subject:
    case Column::Received:
    case Column::Sent:
      break;
  }
  return Text::Subject;
}

// A contact without a name is shown as it is filed.
const String& shownText(const Message& message, Column column) {
  const bool asFiled = column == Column::FullName && message[Text::FullName].empty();
  return message[asFiled ? Text::FileAs : textOf(column)];
}

bool isTime(Column column) { return column == Column::Received || column == Column::Sent; }

int compareTimes(Date a, Date b) {
  if (a.days == b.days) return 0;
  return a.days < b.days ? -1 : 1;
}

}  // namespace

FolderKind folderKind(const Store& store, const Folder& folder) {
  struct Known {
    DefaultFolder which;
    FolderKind kind;
  };
  constexpr std::array known{
      Known{DefaultFolder::Inbox, FolderKind::Inbox},    Known{DefaultFolder::Outbox, FolderKind::Outbox},
      Known{DefaultFolder::SentItems, FolderKind::Sent}, Known{DefaultFolder::DeletedItems, FolderKind::Deleted},
      Known{DefaultFolder::Drafts, FolderKind::Drafts},
  };
  for (const Known& k : known)
    if (store.defaultFolder(k.which).get() == &folder) return k.kind;
  if (folder.type() == ItemType::Contact) return FolderKind::Contacts;
  return folder.type() == ItemType::Mail ? FolderKind::Plain : FolderKind::Other;
}

std::span<const ColumnInfo> columnsOf(FolderKind kind) {
  switch (kind) {
    case FolderKind::Contacts:
      return contactColumns;
    case FolderKind::Outbox:
    case FolderKind::Sent:
    case FolderKind::Drafts:
      return sentColumns;
    case FolderKind::Inbox:
    case FolderKind::Deleted:
    case FolderKind::Plain:
    case FolderKind::Other:
      break;
  }
  return receivedColumns;
}

Column firstSortOf(FolderKind kind) {
  if (kind == FolderKind::Contacts) return Column::FullName;
  return columnsOf(kind)[2].column;
}

// What was written here and never received shows when it was sent, and the other way round.
Date timeOf(const Message& message, Column column) {
  const bool received = column != Column::Sent;
  const Date first = received ? message.receivedTime : message.sentOn;
  if (first != Date{}) return first;
  return received ? message.sentOn : message.receivedTime;
}

String oneLine(StringView text) {
  String line;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] == u'\r' && i + 1 < text.size() && text[i + 1] == u'\n') continue;
    line += text[i] < u' ' ? u' ' : text[i];
  }
  return line;
}

String cellText(const Message& message, Column column, const TimeText& timeText) {
  if (isTime(column)) {
    const Date time = timeOf(message, column);
    return time == Date{} ? String(u"None") : timeText(time);
  }
  return oneLine(shownText(message, column));
}

int compare(const Message& a, const Message& b, Column column) {
  if (isTime(column)) return compareTimes(timeOf(a, column), timeOf(b, column));
  return collate(shownText(a, column), shownText(b, column));
}

bool isNewer(const Message& a, const Message& b, Column column) {
  return compareTimes(timeOf(a, column), timeOf(b, column)) > 0;
}

}  // namespace mailclient

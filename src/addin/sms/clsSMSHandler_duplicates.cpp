// Duplicate detection. A phone keeps its messages after they have been listed, so the same one is offered again and
// again. Before an item is made, the Inbox and Deleted Items are asked, through one cached collection each.
//
// Two messages are the same when their time-stamp texts, their recipients and their texts without spaces and line
// breaks are identical. The cache is built on first use and dropped when a full listing starts; items created later are
// not added to it.

#include <algorithm>

#include "addin/common/basapi.h"
#include "addin/common/bastext.h"
#include "addin/diag/basDbgOut.h"
#include "addin/diag/basDebug.h"
#include "addin/sms/clsSMSHandler.h"

namespace addin {
namespace {

constexpr std::size_t subjectLength = 10;

void replaceAll(String& text, StringView what, StringView with) {
  for (std::size_t at = text.find(what); at != String::npos; at = text.find(what, at + with.size()))
    text.replace(at, what.size(), with);
}

void lineFeedsOnly(String& text) {
  replaceAll(text, CRLF, u"\n");
  std::replace(text.begin(), text.end(), u'\r', u'\n');
}

// The walk over the records of one time stamp, in the order of adding.
bool findAmong(const coltextmessage& records, StringView recipient, const String& body, const String& sentOn) {
  for (const clstextmessage* const record : records.SentAt(sentOn)) {
    DbgOut(2, u"YES,SAME DATE");
    if (record->Recipient() != recipient) continue;
    DbgOut(2, u"YES,SAME RECIPIENT");
    if (record->MessageBody() != body) continue;
    DbgOut(2, u"FOUND DUPLICATE!");
    return true;
  }
  return false;
}

}  // namespace

// `body` is a copy: the search leaves it normalised, and the item is to have the text as it came.
bool clsSMSHandler::FindTextMessage(std::int32_t folder, StringView recipient, StringView subject, String body,
                                    const String& sentOn) {
  return onErrorLog<bool>([&](bool& result) {
    DbgOut(2, u"Inside Function FindTextMessage");
    result = FindInFolderCollection(folder, recipient, subject, body, sentOn);
    DbgOut(2, u"FindInFolderCollection = ", result);
  });
}

bool clsSMSHandler::FindInFolderCollection(std::int32_t folder, StringView recipient, StringView /*subject*/,
                                           String& body, const String& sentOn) {
  return onErrorLog<bool>([&](bool& result) {
    DbgOut(2, u"Inside Function FindInFolderCollection");
    const Ref<coltextmessage> colFolder = GetFolderCollection(folder);
    DbgOut(2, u"GetFolderCollection called");
    if (!colFolder) return;
    NormaliseBody(body);
    result = findAmong(*colFolder, recipient, body, sentOn);
    const Ref<coltextmessage> created = folder == FOLDER_INBOX ? m_colCreated : nullptr;
    if (!result && created) result = findAmong(*created, recipient, body, sentOn);
  });
}

Ref<coltextmessage> clsSMSHandler::GetFolderCollection(std::int32_t folder) {
  return onErrorLog<Ref<coltextmessage>>([&](Ref<coltextmessage>& result) {
    DbgOut(2, u"Inside Function GetFolderCollection");
    switch (folder) {
      case FOLDER_INBOX:
        if (!m_colInbox) {
          m_colInbox = make<coltextmessage>();
          BuildFolderCollection(m_objInbox, m_colInbox);
          DbgOut(2, u"Case FOLDER_INBOX - BuildFolderCollection called");
        }
        result = m_colInbox;
        break;
      case FOLDER_DELETEDITEMS:
        if (!m_colDeletedItems) {
          m_colDeletedItems = make<coltextmessage>();
          BuildFolderCollection(m_objDeletedItems, m_colDeletedItems);
          DbgOut(2, u"Case FOLDER_DELETEDITEMS -  BuildFolderCollection called");
        }
        result = m_colDeletedItems;
        break;
      default:
        break;
    }
  });
}

bool clsSMSHandler::BuildFolderCollection(const outlook::MAPIFolder& folder, const Ref<coltextmessage>& colFolder) {
  const Ref<coltextmessage> records = colFolder;  // the cache may be dropped while the folder is read
  return onErrorLog<bool>([&](bool& result) {
    DbgOut(2, u"Inside Function BuildFolderCollection");
    DbgOut(2, u"Restrict folder items to TextMessage's");
    const outlook::Items items = folder.Items().Restrict(MESSAGE_CLASS_FILTER);
    const std::int32_t count = items ? items.Count() : 0;
    for (std::int32_t i = 1; i <= count; ++i) {
      const outlook::MailItem item = items.Item(i);
      const String topic = item.ConversationTopic();
      const std::size_t end = topic.find(TOPIC_SEPARATOR);
      const StringView recipient = StringView(topic).substr(0, end);
      StringView sentOn;
      if (end != String::npos) {
        sentOn = StringView(topic).substr(end + 1);
        sentOn = sentOn.substr(0, sentOn.find(TOPIC_SEPARATOR));  // later pieces are ignored
      }
      String body = item.Body();
      NormaliseBody(body);
      records->Add(recipient, sentOn, body);
      DbgOut(2, u"colfolder.Add called");
    }
    result = true;
  });
}

String clsSMSHandler::BuildSubject(StringView text) {
  String line(text);
  lineFeedsOnly(line);
  std::replace(line.begin(), line.end(), u'\n', u' ');
  if (line.empty()) return {};
  return concat(StringView(line).substr(0, subjectLength), u"...");  // the dots come in any case
}

String clsSMSHandler::TrimTrailingLineBreaks(StringView text) {
  const std::size_t last = text.find_last_not_of(CRLF);
  return String(text.substr(0, last == StringView::npos ? 0 : last + 1));
}

void clsSMSHandler::NormaliseBody(String& body) {
  body = TrimTrailingLineBreaks(body);
  lineFeedsOnly(body);
  std::erase(body, u' ');
  std::erase(body, u'\n');
}

// A diagnostic: nothing in the program calls it.
void clsSMSHandler::CompareStrings(StringView s1, StringView s2) {
  onErrorLog([&] {
    DbgOut(2, u"Len s1 = ", static_cast<std::int32_t>(s1.size()));
    DbgOut(2, u"Len s2 = ", static_cast<std::int32_t>(s2.size()));
    if (s1 == s2) DbgOut(2, u"They are the same after all");
    if (s1 == s2 || s1.size() != s2.size()) return;
    for (std::size_t i = 0; i < s1.size(); ++i)
      DbgOut(2, static_cast<std::int32_t>(i + 1), u" : ", std::int32_t{s1[i]}, u" : ", std::int32_t{s2[i]},
             s1[i] != s2[i] ? StringView(u" Differs") : StringView());
  });
}

}  // namespace addin

#include "mailclient/message.h"

#include <algorithm>

namespace mailclient {
namespace {

struct KnownClass {
  StringView base;
  std::int32_t kind;
};

constexpr std::array knownClasses{
    KnownClass{u"IPM.Appointment", 26}, KnownClass{u"IPM.Contact", 40}, KnownClass{u"IPM.Document", 41},
    KnownClass{u"IPM.Activity", 42},    KnownClass{u"IPM.Note", 43},    KnownClass{u"IPM.StickyNote", 44},
    KnownClass{u"IPM.Post", 45},        KnownClass{u"REPORT", 46},      KnownClass{u"IPM.Task", 48},
    KnownClass{u"IPM.DistList", 69},
};
constexpr std::int32_t mailKind = 43;

// A mark is one to three characters that are no digits, a colon and a blank (MAPI's rule for PR_NORMALIZED_SUBJECT).
StringView withoutMark(StringView subject) {
  constexpr std::size_t longestMark = 3;
  const std::size_t colon = subject.find(u": ");
  if (colon == 0 || colon == StringView::npos || colon > longestMark) return subject;
  const StringView mark = subject.substr(0, colon);
  const bool plain =
      std::none_of(mark.begin(), mark.end(), [](char16_t c) { return (c >= u'0' && c <= u'9') || c == u' '; });
  return plain ? subject.substr(colon + 2) : subject;
}

}  // namespace

bool isOfClass(StringView messageClass, StringView base) {
  if (messageClass.size() < base.size() || !sameName(messageClass.substr(0, base.size()), base)) return false;
  return messageClass.size() == base.size() || messageClass[base.size()] == u'.';
}

std::int32_t kindOf(StringView messageClass) {
  const auto* const known = std::find_if(knownClasses.begin(), knownClasses.end(),
                                         [&](const KnownClass& c) { return isOfClass(messageClass, c.base); });
  return known == knownClasses.end() ? mailKind : known->kind;
}

void setSubject(Message& message, String subject) {
  message[Text::ConversationTopic] = withoutMark(subject);
  message[Text::Subject] = std::move(subject);
}

}  // namespace mailclient

// Constants that several modules share.
#pragma once

#include "addin/platform/object.h"
#include "addin/platform/system.h"

namespace addin {

using namespace platform;

inline constexpr StringView MESSAGE_CLASS = u"IPM.Note.TxtMsg";

// Every walk over text messages uses this one filter.
inline constexpr StringView MESSAGE_CLASS_FILTER = u"[MessageClass] = 'IPM.Note.TxtMsg'";

// Separates recipient and time-stamp text in an item's conversation topic.
inline constexpr char16_t TOPIC_SEPARATOR = u'\x01';

inline constexpr StringView KEY_OPTIONS = u"Software\\Microsoft\\Office\\9.0\\Outlook\\Options\\TextMessage";
inline constexpr StringView KEY_INSTALLATION = u"Software\\Marrick\\TextMessageAddIn";
inline constexpr StringView KEY_DEBUG = u"SOFTWARE\\Marrick\\DbgOut";

inline constexpr StringView PROCESS_NAME = u"mrktxtmsg";
inline constexpr StringView FORM_TEMPLATE = u"\\mrktxtmsg.oft";

inline constexpr StringView CRLF = u"\r\n";

}  // namespace addin

// Small text routines. They never raise an error: what cannot be done gives the empty text, or False.
#pragma once

#include "addin/common/basGlobal.h"

namespace addin {

// The text between the first startMark and the next endMark at or after it; the marks are single characters.
String GetBetween(StringView text, StringView startMark, StringView endMark);

// `text` with every occurrence of `what` removed.
String RemoveAll(StringView text, StringView what);

// The number of a service-centre text, which stands between "(" and ")", without spaces.
String NumberInParentheses(StringView text);

// Reads a time stamp of digits only, two each for year, month, day, hour, minute and second, at least 11 characters
// long; what follows the twelfth is ignored. Years 50 to 99 are 19xx, 00 to 49 are 20xx. False, with `result` left
// alone, when the text is no time stamp or names an impossible date.
bool ParseTimeStamp(StringView text, Date& result);

}  // namespace addin

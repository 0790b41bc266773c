// The text of a message that another program wrote.
#pragma once

#include "mailclient/header_text.h"

namespace mailclient {

// The body as text with CR LF line breaks: decoded, and of a multipart message the first plain text part. What cannot
// be made sense of is given as it stands.
String foreignBody(const std::vector<HeaderLine>& headers, std::string_view body);

}  // namespace mailclient

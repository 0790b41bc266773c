// Accelerator keys for a dialog whose captions say none.
#pragma once

#include <vector>

#include "addin/platform/text.h"

namespace win32 {

struct AcceleratorText {
  platform::String text;
  // Texts of one page and those of no page (0) are seen together and get different keys; two pages may share one.
  int page = 0;
};

// Puts a "&" in front of one letter of each text, in the order given and those of no page first. A "&" that a text has
// already stays. The first letter of a word comes before one inside a word. A text without Latin letters or digits gets
// a letter in parentheses behind it, as is the custom in East Asia; one for which no key is left stays as it is.
void addAccelerators(std::vector<AcceleratorText>& texts);

}  // namespace win32

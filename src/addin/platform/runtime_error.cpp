#include "addin/platform/runtime_error.h"

#include <algorithm>
#include <array>

namespace platform {
namespace {

struct Entry {
  std::int32_t number;
  StringView text;
};

// The texts of the automation run time, in the order of their numbers.
constexpr std::array entries{
    Entry{5, u"Invalid procedure call or argument"},
    Entry{6, u"Overflow"},
    Entry{7, u"Out of memory"},
    Entry{9, u"Subscript out of range"},
    Entry{13, u"Type mismatch"},
    Entry{51, u"Internal error"},
    Entry{53, u"File not found"},
    Entry{70, u"Permission denied"},
    Entry{75, u"Path/File access error"},
    Entry{76, u"Path not found"},
    Entry{91, u"Object variable or With block variable not set"},
    Entry{94, u"Invalid use of Null"},
    Entry{380, u"Invalid property value"},
    Entry{381, u"Invalid property array index"},
    Entry{400, u"Form already displayed; can't show modally"},
    Entry{401, u"Can't show non-modal form when modal form is displayed"},
    Entry{424, u"Object required"},
    Entry{429, u"ActiveX component can't create object"},
    Entry{430, u"Class does not support Automation or does not support expected interface"},
    Entry{438, u"Object doesn't support this property or method"},
    Entry{440, u"Automation error"},
    Entry{446, u"Object doesn't support named arguments"},
    Entry{448, u"Named argument not found"},
    Entry{449, u"Argument not optional"},
    Entry{450, u"Wrong number of arguments or invalid property assignment"},
    Entry{457, u"This key is already associated with an element of this collection"},
    Entry{458, u"Variable uses an Automation type not supported"},
    Entry{459, u"Object or class does not support the set of events"},
    Entry{462, u"The remote server machine does not exist or is unavailable"},
};

}  // namespace

StringView standardText(std::int32_t number) noexcept {
  const auto* const e =
      std::find_if(entries.begin(), entries.end(), [&](const Entry& x) { return x.number == number; });
  return e == entries.end() ? StringView(u"Application-defined or object-defined error") : e->text;
}

RuntimeError::RuntimeError(std::int32_t n, StringView src, StringView text)
    : number(n), source(src), description(text), what_(std::to_string(n) + ' ') {
  for (const char16_t unit : text) what_ += unit < 0x80 ? static_cast<char>(unit) : '?';
}

void raiseError(std::int32_t number, StringView source, StringView description) {
  throw RuntimeError(number, source, description);
}

void raiseError(std::int32_t number) { throw RuntimeError(number, u"mrktxtmsg", standardText(number)); }

}  // namespace platform

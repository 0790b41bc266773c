#include "addin/settings/clsReg.h"

#include "addin/diag/basDbgOut.h"
#include "addin/settings/basRegistry.h"

namespace addin {
namespace {

// Runs one statement; when it fails, `complaint` is written and the next statement runs.
template <class Statement>
void attempt(StringView complaint, Statement&& statement) {
  try {
    statement();
  } catch (const std::exception&) {
    DbgOut(2, complaint);
  }
}

}  // namespace

String clsReg::GetRegString(const String& strKeyName, const String& strValueName, const String& strDefault) {
  constexpr StringView complaint = u"Error in GetRegString";
  String text;
  attempt(complaint, [&] { text = CStr(GetRegValue(rootCurrentUser, strKeyName, strValueName)); });
  if (text.empty()) attempt(complaint, [&] { text = CStr(GetRegValue(rootLocalMachine, strKeyName, strValueName)); });
  return text.empty() ? strDefault : text;
}

std::int16_t clsReg::GetRegDword(const String& strKeyName, const String& strValueName, const std::int16_t& nDefault) {
  constexpr StringView complaint = u"Error in GetRegDword";
  std::int16_t result = 0;
  for (const RootKey root : {rootCurrentUser, rootLocalMachine}) {
    String text;
    attempt(complaint, [&] { text = CStr(GetRegValue(root, strKeyName, strValueName)); });
    if (text.empty()) continue;
    // Through text on purpose: a DWORD and a text of digits give the same number.
    attempt(complaint, [&] { result = CInt(text); });
    return result;
  }
  return nDefault;
}

}  // namespace addin

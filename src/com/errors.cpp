#include "com/errors.h"

#include <algorithm>
#include <array>

#include "com/pointers.h"

namespace com {
namespace {

using platform::RuntimeError;
using platform::standardText;
using platform::String;
using platform::StringView;

constexpr StringView ownSource = u"mrktxtmsg";
constexpr std::int32_t runTimeFailure =
    static_cast<std::int32_t>(0x800A0000);  // severity and facility of run-time errors
constexpr std::int32_t lowWord = 0xFFFF;

struct Meaning {
  HRESULT failure;
  std::int32_t number;
};

constexpr std::array meanings{
    Meaning{DISP_E_UNKNOWNINTERFACE, 438}, Meaning{DISP_E_MEMBERNOTFOUND, 438},   Meaning{DISP_E_PARAMNOTFOUND, 448},
    Meaning{DISP_E_TYPEMISMATCH, 13},      Meaning{DISP_E_UNKNOWNNAME, 438},      Meaning{DISP_E_NONAMEDARGS, 446},
    Meaning{DISP_E_BADVARTYPE, 458},       Meaning{DISP_E_OVERFLOW, 6},           Meaning{DISP_E_BADINDEX, 9},
    Meaning{DISP_E_BADPARAMCOUNT, 450},    Meaning{DISP_E_PARAMNOTOPTIONAL, 449}, Meaning{REGDB_E_CLASSNOTREG, 429},
    Meaning{CO_E_CLASSSTRING, 429},
};

std::int32_t numberOf(HRESULT failure) {
  const auto* const m =
      std::find_if(meanings.begin(), meanings.end(), [&](const Meaning& x) { return x.failure == failure; });
  return m == meanings.end() ? failure : m->number;
}

// 0x800Axxxx is run-time error xxxx; an xxxx of 0 would be no error at all.
std::int32_t withoutFacility(std::int32_t number) {
  const bool isRunTime = (number & ~lowWord) == runTimeFailure && (number & lowWord) != 0;
  return isRunTime ? number & lowWord : number;
}

// Line ends inside become one blank each, those at the end go.
String onOneLine(StringView text) {
  String line;
  for (const char16_t c : text) {
    const bool isBlank = c == u'\r' || c == u'\n' || c == u'\t' || c == u' ';
    if (!isBlank)
      line += c;
    else if (!line.empty() && line.back() != u' ')
      line += u' ';
  }
  while (!line.empty() && line.back() == u' ') line.pop_back();
  return line;
}

String messageOf(DWORD code) {
  std::array<wchar_t, 1024> buffer;
  const DWORD length =
      FormatMessageW(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS | FORMAT_MESSAGE_MAX_WIDTH_MASK,
                     nullptr, code, 0, buffer.data(), static_cast<DWORD>(buffer.size()), nullptr);
  return onOneLine({reinterpret_cast<const char16_t*>(buffer.data()), length});
}

String systemText(HRESULT failure) {
  String text = messageOf(static_cast<DWORD>(failure));
  if (text.empty() && HRESULT_FACILITY(failure) == FACILITY_WIN32) text = messageOf(HRESULT_CODE(failure));
  return text.empty() ? String(standardText(440)) : text;
}

String descriptionOf(std::int32_t number) { return number < 0 ? systemText(number) : String(standardText(number)); }

RuntimeError errorOf(const EXCEPINFO& info) {
  std::int32_t number = withoutFacility(info.scode ? info.scode : info.wCode);
  if (number == 0) number = DISP_E_EXCEPTION;  // an exception that does not say which
  const String source = textOf(info.bstrSource);
  return {number, source.empty() ? ownSource : StringView(source),
          info.bstrDescription ? textOf(info.bstrDescription) : descriptionOf(number)};
}

BSTR tryBstr(StringView text) {
  return SysAllocStringLen(reinterpret_cast<const OLECHAR*>(text.data()), static_cast<UINT>(text.size()));
}

}  // namespace

RuntimeError errorOf(HRESULT failure, EXCEPINFO* info) {
  if (failure == DISP_E_EXCEPTION && info) {
    if (info->pfnDeferredFillIn) info->pfnDeferredFillIn(info);
    return errorOf(*info);
  }
  const std::int32_t number = withoutFacility(numberOf(failure));
  return {number, ownSource, descriptionOf(number)};
}

void check(HRESULT result) {
  if (FAILED(result)) throw errorOf(result);
}

HRESULT resultOf(const RuntimeError& error, EXCEPINFO* info) noexcept {
  const HRESULT code = error.number > 0 && error.number <= lowWord ? runTimeFailure | error.number : error.number;
  if (!info) return FAILED(code) ? code : E_FAIL;
  *info = {};
  info->scode = code ? code : E_FAIL;
  info->bstrSource = tryBstr(error.source);
  info->bstrDescription = tryBstr(error.description);
  return DISP_E_EXCEPTION;
}

}  // namespace com

#include "win32/locale.h"

#include "com/errors.h"
#include "com/pointers.h"

namespace win32 {
namespace {

// Without this flag some characters would become others that look alike. UTF-8, which later systems admit as the code
// page, has a place for every character and refuses the flag.
DWORD conversionFlags() { return GetACP() == CP_UTF8 ? 0 : WC_NO_BEST_FIT_CHARS; }

}  // namespace

std::string Locale::toAnsi(platform::StringView text) {
  if (text.empty()) return {};
  const auto* const from = reinterpret_cast<const wchar_t*>(text.data());
  const auto units = static_cast<int>(text.size());
  const DWORD flags = conversionFlags();
  std::string result;
  const int size = WideCharToMultiByte(CP_ACP, flags, from, units, nullptr, 0, nullptr, nullptr);
  result.resize(static_cast<std::size_t>(size));
  WideCharToMultiByte(CP_ACP, flags, from, units, result.data(), size, nullptr, nullptr);
  return result;
}

platform::String Locale::fromAnsi(std::string_view text) {
  if (text.empty()) return {};
  const auto bytes = static_cast<int>(text.size());
  platform::String result;
  const int units = MultiByteToWideChar(CP_ACP, 0, text.data(), bytes, nullptr, 0);
  result.resize(static_cast<std::size_t>(units));
  MultiByteToWideChar(CP_ACP, 0, text.data(), bytes, reinterpret_cast<wchar_t*>(result.data()), units);
  return result;
}

platform::String Locale::dateText(platform::Date date) {
  com::Bstr text;
  com::check(VarBstrFromDate(date.days, LOCALE_USER_DEFAULT, 0, text.put()));
  return text.text();
}

}  // namespace win32

#include "servers/mrktxtmsghelper/win/message_props.h"

#include <cmath>
#include <ctime>
#include <optional>
#include <string>

#include "addin/platform/date.h"
#include "com/bridge.h"

// After Windows' own headers, which it builds on.
#include <mapidefs.h>

namespace servers::txtmsghelper {

using namespace platform;

namespace {

constexpr IID iidMapiProp{0x00020303, 0, 0, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};
constexpr IID iidMessage{0x00020307, 0, 0, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};

constexpr std::uint32_t withType(std::uint32_t tag, std::uint32_t type) { return (tag & 0xFFFF0000) | type; }

// Nothing when a character has no place in the ANSI code page.
std::optional<std::string> exactAnsi(StringView text) {
  if (text.empty()) return std::string();
  const auto* const wide = reinterpret_cast<const wchar_t*>(text.data());
  const auto length = static_cast<int>(text.size());
  BOOL replaced = FALSE;
  const int size = WideCharToMultiByte(CP_ACP, WC_NO_BEST_FIT_CHARS, wide, length, nullptr, 0, nullptr, &replaced);
  if (size == 0 || replaced) return std::nullopt;
  std::string ansi(static_cast<std::size_t>(size), '\0');
  WideCharToMultiByte(CP_ACP, WC_NO_BEST_FIT_CHARS, wide, length, ansi.data(), size, nullptr, nullptr);
  return ansi;
}

// As good as the code page can: another character, or "?".
std::string nearestAnsi(StringView text) {
  const auto* const wide = reinterpret_cast<const wchar_t*>(text.data());
  const auto length = static_cast<int>(text.size());
  const int size = text.empty() ? 0 : WideCharToMultiByte(CP_ACP, 0, wide, length, nullptr, 0, nullptr, nullptr);
  std::string ansi(static_cast<std::size_t>(size), '\0');
  if (size > 0) WideCharToMultiByte(CP_ACP, 0, wide, length, ansi.data(), size, nullptr, nullptr);
  return ansi;
}

// What MAPI allocated, MAPI frees; it is loaded in any process that got something from it.
void freeMapiBuffer(void* buffer) {
  const HMODULE mapi = GetModuleHandleW(L"mapi32.dll");
  const auto function = mapi ? GetProcAddress(mapi, "MAPIFreeBuffer") : nullptr;
  if (function) reinterpret_cast<ULONG(WINAPI*)(void*)>(reinterpret_cast<void*>(function))(buffer);
}

class MapiProps final : public mapi::MessageProps {
 public:
  explicit MapiProps(com::Ptr<IMAPIProp> properties) : properties_(std::move(properties)) {}

  void setString(std::uint32_t tag, StringView text) override {
    if (const auto ansi = exactAnsi(text)) return com::check(setAnsi(tag, *ansi));
    String wide(text);
    SPropValue value{};
    value.ulPropTag = withType(tag, PT_UNICODE);
    value.Value.lpszW = reinterpret_cast<wchar_t*>(wide.data());
    if (SUCCEEDED(set(value))) return;
    com::check(setAnsi(tag, nearestAnsi(text)));  // a store of 2000 knows no Unicode
  }

  void setTime(std::uint32_t tag, Date utc) override {
    const DateParts parts = partsOf(utc);
    const SYSTEMTIME time{static_cast<WORD>(parts.year),
                          static_cast<WORD>(parts.month),
                          0,
                          static_cast<WORD>(parts.day),
                          static_cast<WORD>(parts.hour),
                          static_cast<WORD>(parts.minute),
                          static_cast<WORD>(parts.second),
                          0};
    SPropValue value{};
    value.ulPropTag = tag;
    if (!SystemTimeToFileTime(&time, &value.Value.ft)) com::check(E_INVALIDARG);
    com::check(set(value));
  }

  void setLong(std::uint32_t tag, std::int32_t number) override {
    SPropValue value{};
    value.ulPropTag = tag;
    value.Value.l = number;
    com::check(set(value));
  }

 private:
  HRESULT setAnsi(std::uint32_t tag, std::string text) {
    SPropValue value{};
    value.ulPropTag = withType(tag, PT_STRING8);
    value.Value.lpszA = text.data();
    return set(value);
  }

  // A property that could not be set is told aside from the result.
  HRESULT set(SPropValue& value) {
    LPSPropProblemArray problems = nullptr;
    const HRESULT hr = properties_->SetProps(1, &value, &problems);
    if (FAILED(hr) || !problems) return hr;
    const HRESULT problem = problems->cProblem > 0 ? problems->aProblem[0].scode : S_OK;
    freeMapiBuffer(problems);
    return problem;
  }

  com::Ptr<IMAPIProp> properties_;
};

}  // namespace

Ref<mapi::MessageProps> propertiesOf(const Opaque& mapiObject) {
  auto* const box = dynamic_cast<com::UnknownBox*>(mapiObject.thing.get());
  if (!box) return {};
  auto properties = box->unknown().as<IMAPIProp>(iidMapiProp);
  if (!properties) properties = box->unknown().as<IMAPIProp>(iidMessage);  // derived from it
  if (!properties) return {};
  return make<MapiProps>(std::move(properties));
}

Date toUtc(Date local) {
  const DateParts parts = partsOf(local);
  std::tm time{};
  time.tm_year = parts.year - 1900;
  time.tm_mon = parts.month - 1;
  time.tm_mday = parts.day;
  time.tm_hour = parts.hour;
  time.tm_min = parts.minute;
  time.tm_sec = parts.second;
  time.tm_isdst = -1;
  if (parts.year >= 1970 && parts.year <= 2037) {
    const std::time_t seconds = std::mktime(&time);
    constexpr double epoch = 25569;  // 1 January 1970
    if (seconds != static_cast<std::time_t>(-1)) return {epoch + static_cast<double>(seconds) / 86400.0};
  }
  TIME_ZONE_INFORMATION zone{};
  const DWORD now = GetTimeZoneInformation(&zone);
  const LONG minutes = zone.Bias + (now == TIME_ZONE_ID_DAYLIGHT ? zone.DaylightBias : zone.StandardBias);
  return {local.days + static_cast<double>(minutes) / 1440.0};
}

}  // namespace servers::txtmsghelper

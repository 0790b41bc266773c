// Conversions between the value types, by the rules of automation (oleaut32, US English), and the joining of text.
//
// Every typed read of a Variant uses them: facades, member tables and the add-in alike. Errors: 13 type mismatch,
// 6 overflow, 94 Null used as a value, 424 not an object. An object is converted through its default member.
#pragma once

#include <concepts>
#include <cstdint>

#include "addin/platform/variant.h"

namespace platform {

String CStr(const Variant& value);        // True/False for Booleans, up to 15 digits for doubles
std::int32_t CLng(const Variant& value);  // halves go to the even neighbour; Empty is 0
std::int16_t CInt(const Variant& value);
double CDbl(const Variant& value);
bool CBool(const Variant& value);  // "True" and "False" in any case, "#TRUE#", "#FALSE#", or a number
Date CDate(const Variant& value);  // from a number or a date; a text is a type mismatch unless it is a number;
                                   // error 6 outside the years 100 to 9999
Object CObj(const Variant& value);

// Appends the text of a value as CStr gives it; a line is built in one buffer.
inline void appendText(String& to, StringView text) { to += text; }
void appendText(String& to, std::int32_t number);
inline void appendText(String& to, std::int16_t number) { appendText(to, std::int32_t{number}); }
inline void appendText(String& to, std::same_as<bool> auto value) { to += value ? u"True" : u"False"; }
void appendText(String& to, Date date);  // in the user's locale, see Locale::dateText
inline void appendText(String& to, const std::same_as<Variant> auto& value) { to += CStr(value); }

template <class... P>
String concat(const P&... pieces) {
  String text;
  (appendText(text, pieces), ...);
  return text;
}

// The types that a member's result or an argument can be read as.
template <class T>
concept Readable =
    std::same_as<T, Variant> || std::same_as<T, String> || std::same_as<T, bool> || std::same_as<T, std::int16_t> ||
    std::same_as<T, std::int32_t> || std::same_as<T, double> || std::same_as<T, Date> || std::same_as<T, Opaque> ||
    std::is_enum_v<T> || std::derived_from<T, Object>;

template <Readable T>
T to(const Variant& value) {
  if constexpr (std::same_as<T, Variant>) {
    return value.plain();
  } else if constexpr (std::same_as<T, String>) {
    return CStr(value);
  } else if constexpr (std::same_as<T, bool>) {
    return CBool(value);
  } else if constexpr (std::same_as<T, std::int16_t>) {
    return CInt(value);
  } else if constexpr (std::same_as<T, std::int32_t>) {
    return CLng(value);
  } else if constexpr (std::same_as<T, double>) {
    return CDbl(value);
  } else if constexpr (std::same_as<T, Date>) {
    return CDate(value);
  } else if constexpr (std::same_as<T, Opaque>) {
    const Opaque* const opaque = value.as<Opaque>();
    return opaque ? *opaque : (raiseError(13), Opaque());
  } else if constexpr (std::is_enum_v<T>) {
    return static_cast<T>(CLng(value));
  } else {
    return T(CObj(value).automation());
  }
}

}  // namespace platform

#include "addin/platform/convert.h"

#include <charconv>
#include <cmath>
#include <limits>
#include <optional>

#include "addin/platform/date.h"
#include "addin/platform/number_text.h"
#include "addin/platform/system.h"

namespace platform {
namespace {

// The value that a conversion works on: behind by-reference arguments and default members.
class Resolved {
 public:
  explicit Resolved(const Variant& v) : at_(&v.plain()) {
    constexpr int deepest = 8;  // a default member whose default member … is a mismatch, not a hang
    for (int depth = 0; const auto* object = at_->as<Object>(); ++depth) {
      if (depth == deepest) raiseError(13);
      if (!*object) raiseError(91);
      kept_ = object->invoke(u"", Access::Get, {});
      at_ = &kept_;
    }
  }
  const Variant::Value& value() const { return at_->value(); }

 private:
  const Variant* at_;
  Variant kept_;
};

// A text's number; type mismatch when there is none.
TextNumber numberIn(StringView text) {
  const auto number = readNumber(text);
  if (!number) raiseError(13);
  return *number;
}

// Bits that were written out are a number of the width that reads them: CInt("&HFFFF") is -1, CLng("&HFFFF") is 65535.
template <class T>
T fromBits(std::uint64_t bits) {
  if (bits > std::numeric_limits<std::make_unsigned_t<T>>::max()) raiseError(6);
  return static_cast<T>(bits);
}

double doubleFromBits(std::uint64_t bits) {
  if (bits > static_cast<std::uint64_t>(std::numeric_limits<std::int32_t>::max())) raiseError(6);
  return static_cast<double>(bits);
}

double numberOf(const Variant::Value& value) {
  return std::visit(Overload{[](std::monostate) { return 0.0; }, [](Null) -> double { raiseError(94); },
                             [](ErrorCode) -> double { raiseError(13); }, [](bool b) { return b ? -1.0 : 0.0; },
                             [](std::int16_t n) { return static_cast<double>(n); },
                             [](std::int32_t n) { return static_cast<double>(n); }, [](double d) { return d; },
                             [](Date d) { return d.days; },
                             [](const String& s) {
                               const TextNumber number = numberIn(s);
                               return number.bits ? doubleFromBits(*number.bits) : number.value;
                             },
                             [](const auto&) -> double { raiseError(13); }},
                    value);
}

template <class T>
T rounded(double number) {
  const double whole = std::nearbyint(number);  // the default rounding mode: halves to even
  if (!(whole >= double{std::numeric_limits<T>::min()} && whole <= double{std::numeric_limits<T>::max()}))
    raiseError(6);
  return static_cast<T>(whole);
}

template <class T>
T wholeNumber(const Variant& v) {
  const Resolved resolved(v);
  if (const auto* const text = std::get_if<String>(&resolved.value())) {
    const TextNumber number = numberIn(*text);
    return number.bits ? fromBits<T>(*number.bits) : rounded<T>(number.value);
  }
  return rounded<T>(numberOf(resolved.value()));
}

std::optional<bool> booleanWord(StringView s) {
  if (sameName(s, u"True") || s == u"#TRUE#") return true;
  if (sameName(s, u"False") || s == u"#FALSE#") return false;
  return std::nullopt;
}

}  // namespace

String CStr(const Variant& value) {
  const Resolved resolved(value);
  return std::visit(Overload{[](std::monostate) { return String(); }, [](Null) -> String { raiseError(94); },
                             [](ErrorCode) -> String { raiseError(13); }, [](const String& s) { return s; },
                             [](double d) { return numberText(d); }, [](const Object&) -> String { raiseError(13); },
                             [](const Opaque&) -> String { raiseError(13); },
                             [](Variant*) -> String { raiseError(13); }, [](auto simple) { return concat(simple); }},
                    resolved.value());
}

double CDbl(const Variant& value) { return numberOf(Resolved(value).value()); }
std::int32_t CLng(const Variant& value) { return wholeNumber<std::int32_t>(value); }
std::int16_t CInt(const Variant& value) { return wholeNumber<std::int16_t>(value); }

Date CDate(const Variant& value) {
  const Date date{CDbl(value)};
  if (!isInCalendar(date)) raiseError(6);
  return date;
}

bool CBool(const Variant& value) {
  const Resolved resolved(value);
  if (const auto* s = std::get_if<String>(&resolved.value()))
    if (const auto word = booleanWord(*s)) return *word;
  return numberOf(resolved.value()) != 0;
}

Object CObj(const Variant& value) {
  const Object* const object = value.as<Object>();
  if (!object) raiseError(424);
  return *object;
}

void appendText(String& to, std::int32_t number) {
  char buffer[12];
  const auto end = std::to_chars(buffer, buffer + sizeof buffer, number).ptr;
  to.append(buffer, end);
}

void appendText(String& to, Date date) { to += system().locale.dateText(date); }

}  // namespace platform

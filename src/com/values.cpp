// VARIANT to Variant and back.
#include "com/bridge.h"

namespace com {
namespace {

using platform::Date;
using platform::ErrorCode;
using platform::Null;
using platform::Object;
using platform::Opaque;
using platform::Overload;
using platform::raiseError;
using platform::Ref;
using platform::String;
using platform::Variant;

// US English, as everywhere where a value changes its type.
constexpr LCID englishUs = 0x0409;

Variant fromUnknown(IUnknown* unknown) {
  if (!unknown) return Object();
  const Ptr<IUnknown> keep(unknown);
  if (const auto dispatch = keep.as<IDispatch>()) return import(dispatch.get());
  return Opaque{platform::make<UnknownBox>(keep)};
}

template <class T>
Variant wholeOrDouble(T number) {
  if (std::in_range<std::int32_t>(number)) return static_cast<std::int32_t>(number);
  return static_cast<double>(number);
}

double fromDecimal(DECIMAL decimal) {
  double number = 0;
  check(VarR8FromDec(&decimal, &number));
  return number;
}

// The value behind a by-reference VARIANT, as a plain one that owns nothing.
VARIANT behind(const VARIANT& value) {
  VARIANT plain;
  VariantInit(&plain);
  plain.vt = static_cast<VARTYPE>(value.vt & ~VT_BYREF);
  switch (plain.vt) {
    case VT_I1:
    case VT_UI1:
      plain.bVal = *value.pbVal;
      break;
    case VT_BOOL:
    case VT_I2:
    case VT_UI2:
      plain.iVal = *value.piVal;
      break;
    case VT_ERROR:
    case VT_INT:
    case VT_UINT:
    case VT_R4:
    case VT_I4:
    case VT_UI4:
      plain.ulVal = *value.pulVal;
      break;
    case VT_CY:
    case VT_DATE:
    case VT_R8:
    case VT_I8:
    case VT_UI8:
      plain.ullVal = *value.pullVal;
      break;
    case VT_BSTR:
      plain.bstrVal = *value.pbstrVal;
      break;
    case VT_DISPATCH:
    case VT_UNKNOWN:
      plain.punkVal = *value.ppunkVal;
      break;
    case VT_DECIMAL:  // lies over the whole VARIANT, its type included
      plain.decVal = *value.pdecVal;
      plain.vt = VT_DECIMAL;
      break;
    default:
      raiseError(458);
  }
  return plain;
}

Variant fromPlain(const VARIANT& value) {
  switch (value.vt) {
    case VT_EMPTY:
      return {};
    case VT_NULL:
      return Null{};
    case VT_ERROR:
      return ErrorCode{value.scode};
    case VT_BOOL:
      return value.boolVal != VARIANT_FALSE;
    case VT_I1:
      return static_cast<std::int16_t>(static_cast<signed char>(value.bVal));
    case VT_UI1:
      return static_cast<std::int16_t>(value.bVal);
    case VT_I2:
      return static_cast<std::int16_t>(value.iVal);
    case VT_UI2:
      return static_cast<std::int32_t>(value.uiVal);
    case VT_I4:
    case VT_INT:
      return static_cast<std::int32_t>(value.lVal);
    case VT_UI4:
    case VT_UINT:
      return wholeOrDouble(value.ulVal);
    case VT_I8:
      return wholeOrDouble(value.llVal);
    case VT_UI8:
      return wholeOrDouble(value.ullVal);
    case VT_R4:
      return static_cast<double>(value.fltVal);
    case VT_R8:
      return value.dblVal;
    case VT_CY:
      return static_cast<double>(value.cyVal.int64) / 10000;
    case VT_DECIMAL:
      return fromDecimal(value.decVal);
    case VT_DATE:
      return Date{value.date};
    case VT_BSTR:
      return textOf(value.bstrVal);
    case VT_DISPATCH:
      return import(value.pdispVal);
    case VT_UNKNOWN:
      return fromUnknown(value.punkVal);
    default:
      raiseError(458);
  }
}

// Puts a new value in place before the old one goes: its release may run code that looks there.
template <class T, class Release>
void replace(T& place, T value, Release release) {
  const T old = std::exchange(place, value);
  release(old);
}

// Writes `value`, which has the type of the place already, and leaves it empty when it moved.
void store(VARIANT& target, OwnedVariant& value, VARTYPE type) {
  const VARIANT& v = value.get();
  switch (type) {
    case VT_I1:
    case VT_UI1:
      *target.pbVal = v.bVal;
      break;
    case VT_BOOL:
    case VT_I2:
    case VT_UI2:
      *target.piVal = v.iVal;
      break;
    case VT_ERROR:
    case VT_INT:
    case VT_UINT:
    case VT_R4:
    case VT_I4:
    case VT_UI4:
      *target.pulVal = v.ulVal;
      break;
    case VT_CY:
    case VT_DATE:
    case VT_R8:
    case VT_I8:
    case VT_UI8:
      *target.pullVal = v.ullVal;
      break;
    case VT_DECIMAL:
      *target.pdecVal = v.decVal;
      target.pdecVal->wReserved = 0;
      break;
    case VT_BSTR:
      replace(*target.pbstrVal, value.detach().bstrVal, [](BSTR old) { SysFreeString(old); });
      break;
    case VT_DISPATCH:
    case VT_UNKNOWN:
      replace(*target.ppunkVal, value.detach().punkVal, [](IUnknown* old) {
        if (old) old->Release();
      });
      break;
    default:
      raiseError(458);
  }
}

void changeType(OwnedVariant& value, VARTYPE type) {
  if (type == VT_UNKNOWN && value.get().vt == VT_DISPATCH) return;  // the same reference does for both
  if (value.get().vt != type)
    check(VariantChangeTypeEx(&value.get(), &value.get(), englishUs, VARIANT_ALPHABOOL, type));
}

constexpr VARTYPE byRefVariant = VT_BYREF | VT_VARIANT;

bool isByRef(const VARIANT& value) { return (value.vt & VT_BYREF) != 0; }
void requirePlace(const VARIANT& value) {
  if (!value.byref) raiseError(5);
}

}  // namespace

Variant fromVariant(const VARIANT& value) {
  const VARIANT* at = &value;
  if (at->vt == byRefVariant) {
    requirePlace(*at);
    at = at->pvarVal;
    if (at->vt == byRefVariant) raiseError(5);  // automation has one level of this, and a ring of them has no end
  }
  if (!isByRef(*at)) return fromPlain(*at);
  if (at->vt & VT_ARRAY) raiseError(458);
  requirePlace(*at);
  return fromPlain(behind(*at));
}

void toVariant(const Variant& value, VARIANT& to) {
  VariantInit(&to);
  std::visit(Overload{[](std::monostate) {}, [&](Null) { to.vt = VT_NULL; },
                      [&](ErrorCode e) {
                        to.vt = VT_ERROR;
                        to.scode = e.scode;
                      },
                      [&](bool b) {
                        to.vt = VT_BOOL;
                        to.boolVal = b ? VARIANT_TRUE : VARIANT_FALSE;
                      },
                      [&](std::int16_t n) {
                        to.vt = VT_I2;
                        to.iVal = n;
                      },
                      [&](std::int32_t n) {
                        to.vt = VT_I4;
                        to.lVal = n;
                      },
                      [&](double d) {
                        to.vt = VT_R8;
                        to.dblVal = d;
                      },
                      [&](Date d) {
                        to.vt = VT_DATE;
                        to.date = d.days;
                      },
                      [&](const String& s) {
                        to.bstrVal = newBstr(s);
                        to.vt = VT_BSTR;
                      },
                      [&](const Object& o) {
                        to.pdispVal = exported(o).detach();
                        to.vt = VT_DISPATCH;
                      },
                      [&](const Opaque& o) {
                        to.punkVal = unknownOf(o).detach();
                        to.vt = VT_UNKNOWN;
                      },
                      [&](const Variant* target) { toVariant(target->plain(), to); }},
             value.value());
}

void assignByRef(VARIANT& target, const Variant& value) {
  if (!isByRef(target) || (target.vt & VT_ARRAY)) raiseError(458);
  requirePlace(target);
  if (target.vt == byRefVariant) {
    VARIANT& place = *target.pvarVal;
    if (place.vt == byRefVariant) raiseError(5);
    if (isByRef(place)) return assignByRef(place, value);  // a variable of another type, handed on
    OwnedVariant content;
    toVariant(value, content.get());
    std::swap(place, content.get());
    return;
  }
  const auto type = static_cast<VARTYPE>(target.vt & ~VT_BYREF);
  OwnedVariant content;
  toVariant(value, content.get());
  changeType(content, type);
  store(target, content, type);
}

Ptr<IUnknown> unknownOf(const Opaque& opaque) {
  platform::Counted* const thing = opaque.thing.get();
  if (!thing) return nullptr;
  if (const auto* const box = dynamic_cast<UnknownBox*>(thing)) return box->unknown();
  if (auto converted = opaqueConverter ? opaqueConverter(*thing) : nullptr) return converted;
  raiseError(430);
}

}  // namespace com

// Our conversions beside oleaut32's, US English, with Booleans as words: the same value or the same error.
//
// Where Wine's oleaut32 is itself known to differ from Windows', the pair is in `exceptions`, and what ours gives there
// is checked in tests/unit/platform.
#include <algorithm>
#include <array>
#include <cmath>
#include <random>
#include <regex>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "addin/platform/convert.h"
#include "com/bridge.h"
#include "support/errors.h"
#include "support/text.h"

namespace platform {
namespace {

constexpr LCID englishUs = 0x0409;

struct Target {
  const char* name;
  VARTYPE type;
  Variant (*ours)(const Variant& value);
};

constexpr std::array targets{
    Target{"CStr", VT_BSTR, [](const Variant& v) { return Variant(CStr(v)); }},
    Target{"CLng", VT_I4, [](const Variant& v) { return Variant(CLng(v)); }},
    Target{"CInt", VT_I2, [](const Variant& v) { return Variant(CInt(v)); }},
    Target{"CBool", VT_BOOL, [](const Variant& v) { return Variant(CBool(v)); }},
    Target{"CDbl", VT_R8, [](const Variant& v) { return Variant(CDbl(v)); }},
};

std::string bits(double d) {
  std::array<char, 40> buffer{};
  std::snprintf(buffer.data(), buffer.size(), "%.17g", d);
  return buffer.data();
}

std::string written(const Variant& v) {
  if (const auto* const d = v.as<double>()) return bits(*d);
  if (const auto* const s = v.as<String>()) return "'" + testing_support::utf8(*s) + "'";
  return testing_support::utf8(CStr(v));
}

std::string nameOf(const Variant& v) {
  if (v.isEmpty()) return "Empty";
  if (v.as<Null>()) return "Null";
  if (v.as<ErrorCode>()) return "ErrorCode";
  return written(v);
}

std::string ours(const Target& target, const Variant& value) {
  try {
    return written(target.ours(value));
  } catch (const RuntimeError& e) {
    return "error " + std::to_string(e.number);
  }
}

std::string theirs(const Target& target, const Variant& value) {
  com::OwnedVariant from;
  com::toVariant(value, from.get());
  com::OwnedVariant result;
  const HRESULT hr = VariantChangeTypeEx(&result.get(), &from.get(), englishUs, VARIANT_ALPHABOOL, target.type);
  if (FAILED(hr)) return "error " + std::to_string(com::errorOf(hr).number);
  return written(com::fromVariant(result.get()));
}

bool has(const std::string& text, const char* pattern) { return std::regex_search(text, std::regex(pattern)); }

// Where Wine differs from Windows, or does what no text of a person needs.
struct Exception {
  const char* pattern;
  const char* reason;
};
constexpr std::array exceptions{
    Exception{"^[^&]*[0-9.,][dD]", "Windows knows D as the mark of an exponent, Wine does not"},
    Exception{"([+].*[+]|-.*-|[$].*[$])[-+$ \t]*$", "Wine takes marks behind a number any number of times"},
    Exception{"^[^)]*[(][^)]*$", "Wine forgives an open parenthesis beside a minus"},
    Exception{"[eE$ \t+-].*,", "Wine skips commas in an exponent and among the marks behind the number"},
    Exception{"[eE][+-]*[+-][+-]", "Wine takes any number of signs in an exponent"},
    Exception{"^[-+(]*&H80000000[)]*$", "Wine reads this one alone as a negative double"},
};
// Wine rounds a fraction that begins with a zero, or comes of an exponent, up: CInt(".07") is 1 there.
constexpr const char* roundedUpByWine = "[.],*0|[eE]-";

bool isExcepted(const Target& target, const Variant& value) {
  if (!value.as<String>()) return false;
  const std::string text = testing_support::utf8(*value.as<String>());
  const bool isWhole = target.type == VT_I4 || target.type == VT_I2;
  return (isWhole && has(text, roundedUpByWine)) ||
         std::any_of(exceptions.begin(), exceptions.end(), [&](const Exception& e) { return has(text, e.pattern); });
}

// Wine scales by multiplying, which costs the last digits, and leaves the range of doubles early.
bool isSameDouble(const std::string& a, const std::string& b) {
  constexpr double tolerance = 1e-14;
  constexpr double largest = 1e300;
  constexpr double smallest = 1e-300;
  char* endOfA = nullptr;
  char* endOfB = nullptr;
  const double x = std::strtod(a.c_str(), &endOfA);
  const double y = std::strtod(b.c_str(), &endOfB);
  if (*endOfA) return false;
  if (std::fabs(x) > largest && b == "error 6") return true;
  if (*endOfB) return false;
  return std::fabs(x - y) <= tolerance * std::fabs(x) || (std::fabs(x) < smallest && y == 0);
}

void compare(const Variant& value) {
  for (const Target& target : targets) {
    if (target.type == VT_BSTR && value.as<Date>()) continue;  // in the user's locale, not this one
    const std::string our = ours(target, value);
    const std::string their = theirs(target, value);
    if (our == their || (target.type == VT_R8 && isSameDouble(our, their)) || isExcepted(target, value)) continue;
    ADD_FAILURE() << target.name << " of " << nameOf(value) << ": ours " << our << ", oleaut32 " << their;
  }
}

TEST(ConvertOracle, Numbers) {
  const Variant numbers[] = {Variant(),
                             missing,
                             true,
                             false,
                             std::int16_t{-5},
                             std::int16_t{32767},
                             0,
                             1,
                             32767,
                             32768,
                             -32768,
                             -32769,
                             70000,
                             -70000,
                             2147483647,
                             0.0,
                             0.4,
                             0.5,
                             1.5,
                             2.5,
                             3.5,
                             -0.5,
                             -1.5,
                             -2.5,
                             0.1,
                             1.0 / 3,
                             2.0 / 3,
                             0.1 + 0.2,
                             100.0,
                             1e14,
                             123456789012345.0,
                             999999999999999.0,
                             1e15,
                             1e16,
                             1e-4,
                             1e-5,
                             1e-15,
                             1.5e-10,
                             1e100,
                             1e300,
                             -1e300,
                             5e-324,
                             123456789.125,
                             32767.4,
                             32767.5,
                             -32768.5,
                             -32768.6,
                             2147483647.4,
                             2147483647.5,
                             -2147483648.5,
                             -2147483648.6,
                             1e10,
                             Date{36925.25},
                             Date{0.5},
                             Date{-1.25}};
  for (const Variant& number : numbers) compare(number);
}

TEST(ConvertOracle, Texts) {
  const StringView texts[] = {
      // plain
      u"", u" ", u"0", u"00", u"12", u"007", u" 12 ", u" 7 ", u"\t7\r\n", u"1\t", u"\n1", u"7\v", u"7\f", u"\u00A07",
      // signs
      u"+12", u"-12", u"12-", u"12+", u"- 12", u"+ 5", u"12 -", u"--1", u"-1-", u"+-1", u"-0", u"+", u"-", u"-(5)",
      u"(-5)", u"(5)", u"(5", u"5)", u"( 5 )", u" (5) ", u"()", u"(5)-", u"(+5)", u"(1,000)", u"(.5)",
      // separators and points
      u"1,000", u"1,234", u"1,23", u"1,,2", u",5", u"5,", u"1,", u",", u"1,234,567.5", u"1.5", u"2.5", u"3.5", u"-2.5",
      u"-3.5", u".5", u"5.", u".", u"-.5", u"1.2.3", u"1.5,0", u"1 000", u"1 2", u"0.4", u"0.5", u"0.0", u"1,000.50",
      // exponents
      u"1e3", u"1E+3", u"1E-3", u"1d3", u"1D-2", u"1e", u"1e+", u"e3", u"1e 3", u"1 e3", u"1e3.5", u"1e400", u"1e-400",
      u"1e308", u"1e309", u"1.5e2", u".5e1", u"5.e1", u"1e1e1", u"1e03", u"1,000e2", u"12e-1", u"(1e2)", u"1e5-",
      // other bases
      u"&H10", u"&h10", u"&HFF", u"&hff", u"&HFFFF", u"&H8000", u"&H7FFF", u"&H10000", u"&HFFFFFFFF", u"&H80000000",
      u"&H7FFFFFFF", u"&H100000000", u"&H", u"&", u"&HG", u"&H1G", u"&O17", u"&o17", u"&17", u"&O8", u"&O", u"-&H10",
      u" &H10 ", u"&H 10", u"&H10 ", u"&H1.5", u"0x10", u"&HFFFFFF", u"&O177777", u"&O37777777777", u"(&H10)",
      // money and other marks
      u"$12", u"12$", u"-$12", u"$-12", u"$ 12", u"($12)", u"$1,000.50", u"$", u"12%", u"%12", u"\u20AC12", u"12 $",
      // limits
      u"32767", u"32768", u"-32768", u"-32769", u"32767.5", u"65535", u"2147483647", u"2147483648", u"-2147483648",
      u"-2147483649", u"2147483647.5", u"2147483647.4", u"3000000000", u"99999999999", u"9999999999999999",
      u"123456789012345678", u"0.1234567890123456789", u"12345678901234567890123456789", u"0.1", u"0.2", u"0.3",
      u"1.7e308", u"1.8e308", u"1e-300", u"00000000000000000000000000000000001",
      u"0.00000000000000000000000000000000001", u"79228162514264337593543950336", u"1.0000000000000002",
      u"123456789.12345678", u"1e22", u"1e23", u"991231235959", u"01020304050607",
      // words
      u"True", u"False", u"TRUE", u"false", u"tRuE", u" True", u"True ", u"#TRUE#", u"#FALSE#", u"#True#", u"#true#",
      u"#TRUE", u"T", u"yes", u"no", u"on", u"abc", u"12abc", u"abc12", u"1a", u"x", u"Empty", u"Null", u"nan", u"inf",
      u"Infinity", u"1#INF",
      // other characters
      u"\uFF15", u"\u0661", u"5\u00B2", u"\u22125", u"1'000", u"1_000", u"1:2", u"2/3", u"\"5\"", u"'5'", u"5;", u"5!",
      u"\u20035", u"\u30005", u"\u00855", u"\u20285", u"\u16805", u"\uFEFF5", u"\u180E5", u"5#", u"5&", u"5@"};
  for (const StringView text : texts) compare(Variant(text));
}

// Texts of the characters that numbers are made of, in any order.
TEST(ConvertOracle, GeneratedTexts) {
  std::mt19937 random(20001);
  constexpr std::u16string_view common = u"0123456789012345678900";
  constexpr std::u16string_view marks = u"+-.,eEdD() &HhOo$#\t";
  const auto pick = [&](std::u16string_view from) { return from[random() % from.size()]; };
  for (int i = 0; i < 8000; ++i) {
    String text;
    const auto length = 1 + random() % 8;
    while (text.size() < length) text += random() % 3 ? pick(common) : pick(marks);
    compare(Variant(text));
  }
}

TEST(ConvertOracle, GeneratedNumbers) {
  std::mt19937_64 random(20002);
  for (int i = 0; i < 2000; ++i) {
    const auto whole = static_cast<std::int64_t>(random() >> (random() % 60 + 3));
    const double scale = std::pow(10.0, static_cast<double>(random() % 30) - 15);
    for (const double d :
         {static_cast<double>(whole), static_cast<double>(whole) * scale, -static_cast<double>(whole) / 8}) {
      compare(Variant(d));
      compare(Variant(platform::StringView(CStr(Variant(d)))));
    }
  }
}

}  // namespace
}  // namespace platform

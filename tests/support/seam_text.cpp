#include "support/seam_text.h"

#include <cstdio>
#include <cstdlib>
#include <memory>
#include <typeinfo>

#include <cxxabi.h>

#include "addin/platform/convert.h"
#include "support/native_locale.h"
#include "support/text.h"

namespace testing_support {
namespace {

std::string classOf(const std::type_info& type) {
  int status = 0;
  const std::unique_ptr<char, decltype(&std::free)> full(abi::__cxa_demangle(type.name(), nullptr, nullptr, &status),
                                                         &std::free);
  const std::string name = status == 0 ? full.get() : type.name();
  const auto colon = name.rfind("::");
  return colon == std::string::npos ? name : name.substr(colon + 2);
}

std::string quotedText(platform::StringView text) {
  std::string result = "\"";
  for (const char c : utf8(text)) {
    switch (c) {
      case '"':
        result += "\"\"";
        break;
      case '\r':
        result += "\\r";
        break;
      case '\n':
        result += "\\n";
        break;
      case '\0':
        result += "\\0";
        break;
      default:
        result += c;
    }
  }
  return result + '"';
}

std::string hex(std::int32_t number) {
  char buffer[12];
  std::snprintf(buffer, sizeof buffer, "%08X", static_cast<unsigned>(number));
  return buffer;
}

std::string listOf(const Labels& labels, platform::Args args) {
  std::string result;
  for (const platform::Variant& argument : args) result += (result.empty() ? "" : ", ") + labels.textOf(argument);
  return result;
}

}  // namespace

void Labels::name(const platform::Object& object, std::string label) {
  names_[object.automation().get()->identity()] = std::move(label);
}

std::string Labels::of(platform::Automation& object) const {
  if (const auto at = names_.find(object.identity()); at != names_.end()) return at->second;
  if (const auto* const labelled = dynamic_cast<const Labelled*>(&object)) return labelled->label();
  return classOf(typeid(object));
}

std::string Labels::textOf(const platform::Variant& value) const {
  struct Text {
    const Labels& labels;
    std::string operator()(std::monostate) const { return "Empty"; }
    std::string operator()(platform::Null) const { return "Null"; }
    std::string operator()(platform::ErrorCode e) const {
      return e == platform::missing ? "Missing" : "error " + hex(e.scode);
    }
    std::string operator()(bool b) const { return b ? "True" : "False"; }
    std::string operator()(std::int32_t n) const { return std::to_string(n); }
    std::string operator()(double d) const { return utf8(platform::CStr(d)); }
    std::string operator()(platform::Date d) const { return "#" + utf8(NativeLocale().dateText(d)) + "#"; }
    std::string operator()(const platform::String& s) const { return quotedText(s); }
    std::string operator()(const platform::Object& o) const {
      return o ? "<" + labels.of(*o.automation()) + ">" : "Nothing";
    }
    std::string operator()(const platform::Opaque&) const { return "<opaque>"; }
    std::string operator()(platform::Variant* target) const { return "&" + labels.textOf(*target); }
  };
  return std::visit(Text{*this}, value.value());
}

std::string lineOf(const Labels& labels, const std::string& object, platform::StringView member,
                   platform::Access access, platform::Args args) {
  const std::string place = member.empty() ? object + "[default]" : object + "." + utf8(member);
  const std::string list = listOf(labels, args);
  switch (access) {
    case platform::Access::Get:
      return args.empty() ? place : place + "(" + list + ")";
    case platform::Access::Let:
      return place + " = " + list;
    case platform::Access::Set:
      return "set " + place + " = " + list;
    case platform::Access::Call:
      break;
  }
  return place + "(" + list + ")";
}

}  // namespace testing_support

#include "mailclient/state_file.h"

#include <algorithm>
#include <charconv>

#include "mailclient/text_coding.h"

namespace mailclient {
namespace {

using Fields = std::vector<std::string_view>;

std::string field(StringView text) { return " =" + escapeExactly(text); }
std::string field(std::uint64_t number) { return " =" + std::to_string(number); }
std::string field(std::int32_t number) { return " =" + std::to_string(number); }
std::string field(bool on) { return on ? " =1" : " =0"; }

template <class Number>
Number number(std::string_view text) {
  Number value = 0;
  std::from_chars(text.data(), text.data() + text.size(), value);
  return value;
}

// The word and the fields of a line.
Fields split(std::string_view line, std::string_view& word) {
  Fields fields;
  word = line.substr(0, line.find(' '));
  for (std::size_t at = line.find(" ="); at != std::string_view::npos;) {
    const std::size_t next = line.find(" =", at + 2);
    fields.push_back(line.substr(at + 2, next == std::string_view::npos ? next : next - at - 2));
    at = next;
  }
  return fields;
}

PublishedForm formOf(const Fields& f) {
  return {unescapeExactly(f[0]), unescapeExactly(f[1]), unescapeExactly(f[2]), number<std::int32_t>(f[3])};
}

SavedButton buttonOf(const Fields& f) {
  return {.menu = number<std::int32_t>(f[0]),
          .bar = unescapeExactly(f[1]),
          .caption = unescapeExactly(f[2]),
          .tag = unescapeExactly(f[3]),
          .tooltip = unescapeExactly(f[4]),
          .parameter = unescapeExactly(f[5]),
          .onAction = unescapeExactly(f[6]),
          .faceId = number<std::int32_t>(f[7]),
          .style = number<std::int32_t>(f[8]),
          .beginGroup = f[9] == "1",
          .enabled = f[10] == "1",
          .visible = f[11] == "1"};
}

bool isStoreId(StringView text) {
  return text.size() == 32 && std::all_of(text.begin(), text.end(), [](char16_t c) {
           return (c >= u'0' && c <= u'9') || (c >= u'A' && c <= u'F');
         });
}

}  // namespace

std::string stateFile(const StoreState& state) {
  std::string file = "mailclient-state =1\n";
  file += "store" + field(state.storeId) + "\n";
  file += "next" + field(state.nextId) + "\n";
  for (const PublishedForm& f : state.forms)
    file += "form" + field(f.messageClass) + field(f.name) + field(f.displayName) + field(f.registry) + "\n";
  for (const SavedButton& b : state.buttons)
    file += "button" + field(b.menu) + field(b.bar) + field(b.caption) + field(b.tag) + field(b.tooltip) +
            field(b.parameter) + field(b.onAction) + field(b.faceId) + field(b.style) + field(b.beginGroup) +
            field(b.enabled) + field(b.visible) + "\n";
  for (const auto& [name, value] : state.settings) file += "setting" + field(name) + field(value) + "\n";
  return file;
}

StoreState readStateFile(std::string_view content) {
  constexpr std::size_t formFields = 4;
  constexpr std::size_t buttonFields = 12;
  StoreState state;
  while (!content.empty()) {
    const std::size_t end = content.find('\n');
    std::string_view line = content.substr(0, end);
    content.remove_prefix(end == std::string_view::npos ? content.size() : end + 1);
    if (!line.empty() && line.back() == '\r') line.remove_suffix(1);
    std::string_view word;
    const Fields fields = split(line, word);
    if (word == "store" && fields.size() == 1 && isStoreId(unescapeExactly(fields[0])))
      state.storeId = unescapeExactly(fields[0]);
    if (word == "next" && fields.size() == 1)
      state.nextId = std::max<std::uint64_t>(1, number<std::uint64_t>(fields[0]));
    if (word == "form" && fields.size() == formFields) state.forms.push_back(formOf(fields));
    if (word == "setting" && fields.size() == 2)
      state.settings[unescapeExactly(fields[0])] = unescapeExactly(fields[1]);
    if (word == "button" && fields.size() == buttonFields) state.buttons.push_back(buttonOf(fields));
  }
  return state;
}

}  // namespace mailclient

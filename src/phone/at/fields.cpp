#include "phone/at/fields.h"

#include "phone/at/characters.h"

namespace phone::at {

std::optional<int> Field::number() const { return quoted ? std::nullopt : wholeNumber(text); }

namespace {

Field makeField(std::string_view text) {
  text = trimmed(text);
  if (text.empty() || text.front() != '"') return {std::string(text), false};
  text.remove_prefix(1);
  if (!text.empty() && text.back() == '"') text.remove_suffix(1);
  return {std::string(text), true};
}

}  // namespace

std::vector<Field> fieldsOf(std::string_view text) {
  std::vector<Field> fields;
  std::size_t begin = 0;
  int depth = 0;
  bool quoted = false;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] == '"') {
      quoted = !quoted;
    } else if (quoted) {
      continue;
    } else if (text[i] == '(') {
      ++depth;
    } else if (text[i] == ')') {
      if (depth > 0) --depth;
    } else if (text[i] == ',' && depth == 0) {
      fields.push_back(makeField(text.substr(begin, i - begin)));
      begin = i + 1;
    }
  }
  fields.push_back(makeField(text.substr(begin)));
  return fields;
}

std::vector<std::string> wordsOf(std::string_view list) {
  const bool quotes = list.find('"') != std::string_view::npos;
  const std::string_view separators = quotes ? "\"" : ",() ";
  std::vector<std::string> words;
  bool inside = false;
  std::size_t begin = 0;
  for (std::size_t i = 0; i <= list.size(); ++i) {
    if (i < list.size() && separators.find(list[i]) == std::string_view::npos) continue;
    if ((inside || !quotes) && i > begin) words.emplace_back(list.substr(begin, i - begin));
    inside = !inside;
    begin = i + 1;
  }
  return words;
}

}  // namespace phone::at

// The fields of an information line: separated by commas, texts in quotes, lists in brackets (ITU-T V.250, 5.7.3).
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace phone::at {

struct Field {
  std::string text;  // without its quotes; a list as it stands, brackets included
  bool quoted = false;
  friend bool operator==(const Field&, const Field&) = default;

  std::optional<int> number() const;
};

// Commas inside quotes or brackets separate nothing. What is not closed ends with the line.
std::vector<Field> fieldsOf(std::string_view text);

// Every text in quotes, in order, however deep in brackets. With none at all: the words between commas and brackets,
// for modems that leave the quotes out.
std::vector<std::string> wordsOf(std::string_view list);

}  // namespace phone::at

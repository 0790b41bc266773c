#include "mailclient/template_file.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>

#include "mailclient/compound_file.h"

namespace mailclient {
namespace {

// PR_MESSAGE_CLASS as a stream of the item's storage, with the Unicode and the 8-bit type.
constexpr StringView unicodeClass = u"__substg1.0_001A001F";
constexpr StringView ansiClass = u"__substg1.0_001A001E";

// Callers write Windows paths; where folders are separated otherwise, their backslashes mean the same.
std::filesystem::path pathOf(StringView text) {
  String path(text);
  if constexpr (std::filesystem::path::preferred_separator == '/') std::replace(path.begin(), path.end(), u'\\', u'/');
  return path;
}

String messageClassIn(const CompoundFile& file) {
  String messageClass;
  if (const auto wide = file.stream(unicodeClass)) {
    for (std::size_t i = 0; i + 1 < wide->size(); i += 2)
      messageClass += static_cast<char16_t>(static_cast<unsigned char>((*wide)[i]) |
                                            static_cast<unsigned char>((*wide)[i + 1]) << 8);
  } else if (const auto narrow = file.stream(ansiClass)) {
    for (const char c : *narrow) messageClass += static_cast<char16_t>(static_cast<unsigned char>(c));
  }
  return messageClass.substr(0, messageClass.find(u'\0'));
}

}  // namespace

String readTemplateClass(StringView path) {
  std::ifstream stream(pathOf(path), std::ios::binary);
  if (!stream)
    fail(failure::fileNotFound, String(u"Cannot open file: ")
                                    .append(path)
                                    .append(u". The file may not exist, or you may not have "
                                            u"permission to open it."));
  const auto file = CompoundFile::read({std::istreambuf_iterator<char>(stream), {}});
  const String messageClass = file ? messageClassIn(*file) : String();
  if (messageClass.empty()) fail(failure::badFile, String(u"This is not a form template: ").append(path));
  return messageClass;
}

}  // namespace mailclient

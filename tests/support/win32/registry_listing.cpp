#include "support/win32/registry_listing.h"

#include "support/text.h"

namespace testing_support {
namespace {

using platform::String;
using Lines = std::vector<std::string>;

std::string narrow(const wchar_t* text) { return utf8(reinterpret_cast<const char16_t*>(text)); }

std::string dataText(DWORD type, const std::vector<BYTE>& data) {
  if (type == REG_DWORD && data.size() == 4) return "dword " + std::to_string(data[0] + 256 * data[1]);
  if (type != REG_SZ || data.size() < 2) return "type " + std::to_string(type);
  const String text(reinterpret_cast<const char16_t*>(data.data()), data.size() / 2);
  const bool ends = text.back() == u'\0';
  return utf8(text.substr(0, text.size() - ends)) + (ends ? "" : " without its NUL");
}

void list(HKEY root, const std::wstring& key, const std::string& path, Lines& to) {
  HKEY opened = nullptr;
  if (RegOpenKeyExW(root, key.c_str(), 0, KEY_READ, &opened) != ERROR_SUCCESS) {
    to.push_back("none");
    return;
  }
  wchar_t name[256];
  for (DWORD i = 0;; ++i) {
    DWORD nameSize = 256;
    DWORD type = 0;
    std::vector<BYTE> data(70000);
    auto size = static_cast<DWORD>(data.size());
    if (RegEnumValueW(opened, i, name, &nameSize, nullptr, &type, data.data(), &size) != ERROR_SUCCESS) break;
    data.resize(size);
    to.push_back(path + "|" + narrow(name) + "|" + dataText(type, data));
  }
  for (DWORD i = 0;; ++i) {
    DWORD nameSize = 256;
    if (RegEnumKeyExW(opened, i, name, &nameSize, nullptr, nullptr, nullptr, nullptr) != ERROR_SUCCESS) break;
    list(root, key + L"\\" + name, path + "\\" + narrow(name), to);
  }
  RegCloseKey(opened);
}

}  // namespace

std::vector<std::string> listed(HKEY root, const std::wstring& key) {
  Lines lines;
  list(root, key, "", lines);
  return lines;
}

}  // namespace testing_support

#include "servers/common/win/settings.h"

#include "com/windows.h"
#include "servers/common/win/wide.h"

namespace servers::settings {

using platform::String;
using platform::StringView;

namespace {

class Key {
 public:
  static Key open(StringView path) {
    HKEY key = nullptr;
    RegOpenKeyExW(HKEY_CURRENT_USER, wide(String(path)), 0, KEY_QUERY_VALUE, &key);
    return Key(key);
  }
  static Key create(StringView path) {
    HKEY key = nullptr;
    RegCreateKeyExW(HKEY_CURRENT_USER, wide(String(path)), 0, nullptr, REG_OPTION_NON_VOLATILE, KEY_SET_VALUE, nullptr,
                    &key, nullptr);
    return Key(key);
  }
  Key(const Key&) = delete;
  Key& operator=(const Key&) = delete;
  ~Key() {
    if (key_) RegCloseKey(key_);
  }
  HKEY get() const { return key_; }

 private:
  explicit Key(HKEY key) : key_(key) {}
  HKEY key_;
};

}  // namespace

std::optional<std::uint32_t> number(StringView key, StringView name) {
  const Key opened = Key::open(key);
  DWORD value = 0;
  DWORD size = sizeof value;
  DWORD type = 0;
  if (!opened.get() || RegQueryValueExW(opened.get(), wide(String(name)), nullptr, &type,
                                        reinterpret_cast<BYTE*>(&value), &size) != ERROR_SUCCESS)
    return std::nullopt;
  if (type != REG_DWORD || size != sizeof value) return std::nullopt;
  return value;
}

std::optional<String> text(StringView key, StringView name) {
  const Key opened = Key::open(key);
  const String valueName(name);
  DWORD size = 0;
  DWORD type = 0;
  if (!opened.get() ||
      RegQueryValueExW(opened.get(), wide(valueName), nullptr, &type, nullptr, &size) != ERROR_SUCCESS ||
      type != REG_SZ)
    return std::nullopt;
  String value(size / sizeof(char16_t), u'\0');
  size = static_cast<DWORD>(value.size() * sizeof(char16_t));
  if (RegQueryValueExW(opened.get(), wide(valueName), nullptr, &type, reinterpret_cast<BYTE*>(value.data()), &size) !=
      ERROR_SUCCESS)
    return std::nullopt;
  value.resize(size / sizeof(char16_t));
  if (const auto end = value.find(u'\0'); end != String::npos) value.resize(end);
  return value;
}

bool setNumber(StringView key, StringView name, std::uint32_t value) noexcept {
  const Key opened = Key::create(key);
  return opened.get() && RegSetValueExW(opened.get(), wide(String(name)), 0, REG_DWORD,
                                        reinterpret_cast<const BYTE*>(&value), sizeof value) == ERROR_SUCCESS;
}

}  // namespace servers::settings

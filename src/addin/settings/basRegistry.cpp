#include "addin/settings/basRegistry.h"

#include "addin/common/basapi.h"

namespace addin {
namespace {

constexpr std::int32_t notRead = -1;

std::string ansi(StringView text) { return system().locale.toAnsi(text); }

// Closes the key on every way out; a key that could not be opened is closed too, which does no harm.
class KeyCloser {
 public:
  explicit KeyCloser(const KeyHandle& key) : key_(key) {}
  KeyCloser(const KeyCloser&) = delete;
  KeyCloser& operator=(const KeyCloser&) = delete;
  ~KeyCloser() { system().registry.closeKey(key_); }

 private:
  const KeyHandle& key_;
};

std::int32_t readText(KeyHandle key, const std::string& name, std::uint32_t size, Variant& result) {
  std::string buffer(size, '\0');
  std::uint32_t type = 0;
  std::uint32_t room = size;
  const std::int32_t status =
      system().registry.queryValue(key, name, type, reinterpret_cast<std::byte*>(buffer.data()), room);
  if (status == STATUS_SUCCESS) result = system().locale.fromAnsi(std::string_view(buffer).substr(0, room));
  return status;
}

std::int32_t readNumber(KeyHandle key, const std::string& name, Variant& result) {
  std::int32_t number = 0;
  std::uint32_t type = 0;
  std::uint32_t room = sizeof number;
  const std::int32_t status =
      system().registry.queryValue(key, name, type, reinterpret_cast<std::byte*>(&number), room);
  if (status == STATUS_SUCCESS) result = number;
  return status;
}

}  // namespace

std::int32_t ReadValueFromKey(KeyHandle key, StringView valueName, Variant& result) {
  result = Variant();
  const std::string name = ansi(valueName);
  std::uint32_t type = 0;
  std::uint32_t size = 0;
  if (system().registry.queryValue(key, name, type, nullptr, size) != STATUS_SUCCESS) return notRead;
  if (type == REG_TYPE_SZ) return readText(key, name, size, result);
  if (type == REG_TYPE_DWORD) return readNumber(key, name, result);
  return notRead;
}

Variant GetRegValue(RootKey root, StringView keyPath, StringView valueName) {
  KeyHandle key = 0;
  const KeyCloser closer(key);
  system().registry.openKey(root, ansi(keyPath), key);  // not looked at: reading from no key gives Empty
  Variant result;
  ReadValueFromKey(key, valueName, result);
  if (const String* const text = result.as<String>(); text && !text->empty() && text->back() == u'\0')
    result = text->substr(0, text->size() - 1);
  return result;
}

bool SetRegValue(RootKey& root, String& keyPath, StringView valueName, const Variant& value, std::int32_t& valueType) {
  if (keyPath.starts_with(u'\\')) {
    keyPath.erase(0, 1);
  } else if (keyPath.empty()) {
    return false;
  }
  KeyHandle key = 0;
  const KeyCloser closer(key);
  system().registry.createKey(root, ansi(keyPath), key);
  WriteValueToKey(key, valueName, valueType, value);
  return true;
}

std::int32_t WriteValueToKey(KeyHandle key, StringView valueName, std::int32_t& valueType, const Variant& value) {
  const auto type = static_cast<std::uint32_t>(valueType);
  if (valueType == REG_TYPE_SZ) {
    const String text = CStr(value);
    std::string bytes = ansi(text);
    bytes.resize(text.size());  // as many bytes as characters, and no NUL
    return system().registry.setValue(key, ansi(valueName), type, std::as_bytes(std::span(bytes)));
  }
  if (valueType == REG_TYPE_DWORD) {
    const std::int32_t number = CLng(value);
    return system().registry.setValue(key, ansi(valueName), type, std::as_bytes(std::span(&number, 1)));
  }
  return STATUS_SUCCESS;
}

}  // namespace addin

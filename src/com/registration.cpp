#include "com/registration.h"

#include <array>

#include "com/errors.h"
#include "com/pointers.h"

namespace com {
namespace {

using platform::String;
using platform::StringView;

const wchar_t* wide(const String& text) { return reinterpret_cast<const wchar_t*>(text.c_str()); }

void checkStatus(LSTATUS status) { check(HRESULT_FROM_WIN32(static_cast<DWORD>(status))); }

class Key {
 public:
  static Key create(HKEY root, const String& path) {
    HKEY key = nullptr;
    checkStatus(
        RegCreateKeyExW(root, wide(path), 0, nullptr, REG_OPTION_NON_VOLATILE, KEY_WRITE, nullptr, &key, nullptr));
    return Key(key);
  }

  // Without a key when there is none.
  static Key open(HKEY root, const String& path, REGSAM rights) {
    HKEY key = nullptr;
    const LSTATUS status = RegOpenKeyExW(root, wide(path), 0, rights, &key);
    if (status != ERROR_FILE_NOT_FOUND) checkStatus(status);
    return Key(key);
  }

  Key(Key&& other) noexcept : key_(std::exchange(other.key_, nullptr)) {}
  Key& operator=(Key&&) = delete;
  ~Key() {
    if (key_) RegCloseKey(key_);
  }
  explicit operator bool() const noexcept { return key_ != nullptr; }

  void set(const String& name, const String& text) const {
    const auto bytes = static_cast<DWORD>((text.size() + 1) * sizeof(char16_t));
    checkStatus(RegSetValueExW(key_, wide(name), 0, REG_SZ, reinterpret_cast<const BYTE*>(text.c_str()), bytes));
  }
  void set(const String& name, std::uint32_t number) const {
    checkStatus(RegSetValueExW(key_, wide(name), 0, REG_DWORD, reinterpret_cast<const BYTE*>(&number), sizeof number));
  }

  void remove(const String& name) const {
    const LSTATUS status = RegDeleteValueW(key_, wide(name));
    if (status != ERROR_FILE_NOT_FOUND) checkStatus(status);
  }

  bool isEmpty() const {
    DWORD keys = 0;
    DWORD values = 0;
    checkStatus(RegQueryInfoKeyW(key_, nullptr, nullptr, nullptr, &keys, nullptr, nullptr, &values, nullptr, nullptr,
                                 nullptr, nullptr));
    return keys == 0 && values == 0;
  }

  // The default value, when it is a text that may be the identifier of a class.
  String shortText() const {
    std::array<char16_t, 64> buffer{};
    DWORD type = 0;
    DWORD bytes = sizeof buffer - sizeof(char16_t);
    const LSTATUS status =
        RegQueryValueExW(key_, nullptr, nullptr, &type, reinterpret_cast<BYTE*>(buffer.data()), &bytes);
    return status == ERROR_SUCCESS && type == REG_SZ ? String(buffer.data()) : String();
  }

 private:
  explicit Key(HKEY key) noexcept : key_(key) {}
  HKEY key_;
};

String joined(StringView path, StringView key) {
  String whole(path);
  if (!path.empty() && !key.empty()) whole += u'\\';
  return whole += key;
}

// Deletes the key and its parents, as far as they are empty and below the place. Before Windows NT deleting a key took
// everything below along, so emptiness is looked at and not left to the call.
void removeEmptyKeys(const RegistryPlace& place, String key) {
  while (!key.empty()) {
    const String path = joined(place.path, key);
    if (const Key opened = Key::open(place.root, path, KEY_READ); opened && !opened.isEmpty()) return;
    const LSTATUS status = RegDeleteKeyW(place.root, wide(path));
    if (status != ERROR_FILE_NOT_FOUND) checkStatus(status);
    const auto cut = key.rfind(u'\\');
    key.resize(cut == String::npos ? 0 : cut);
  }
}

void removeEntry(const RegistryPlace& place, const RegistryEntry& entry) {
  if (const Key key = Key::open(place.root, joined(place.path, entry.key), KEY_SET_VALUE)) key.remove(entry.name);
  removeEmptyKeys(place, entry.key);
}

struct ClassEntries {
  std::vector<RegistryEntry> ofClass;
  std::vector<RegistryEntry> ofProgId;
};

ClassEntries entriesOf(const ClassRegistration& registration, StringView path) {
  const bool local = registration.kind == ServerKind::Local;
  const String clsid = guidText(registration.clsid);
  const String classKey = joined(u"CLSID", clsid);
  const String serverKey = joined(classKey, local ? u"LocalServer32" : u"InprocServer32");
  const String progId(registration.progId);
  const String title(registration.title);

  ClassEntries entries;
  entries.ofClass = {{classKey, u"", title}, {joined(classKey, u"ProgID"), u"", progId}};
  if (local) {
    // Quoted, because this is a command line: C:\Program Files\x.exe would also start C:\Program.exe.
    entries.ofClass.push_back({serverKey, u"", u"\"" + String(path) + u"\""});
  } else {
    entries.ofClass.push_back({serverKey, u"", String(path)});
    entries.ofClass.push_back({serverKey, u"ThreadingModel", String(u"Apartment")});
  }
  entries.ofProgId = {{progId, u"", title}, {joined(progId, u"CLSID"), u"", clsid}};
  return entries;
}

// Whether the ProgID belongs to another class by now; `entry` is what its class would be if it were ours.
bool namesAnother(const RegistryPlace& place, const RegistryEntry& entry) {
  const Key key = Key::open(place.root, joined(place.path, entry.key), KEY_READ);
  return key && !platform::sameName(key.shortText(), std::get<String>(entry.data));
}

}  // namespace

HRESULT writeEntries(const RegistryPlace& place, std::span<const RegistryEntry> entries) noexcept {
  return guarded([&] {
    for (const RegistryEntry& entry : entries) {
      const Key key = Key::create(place.root, joined(place.path, entry.key));
      std::visit([&](const auto& data) { key.set(entry.name, data); }, entry.data);
    }
    return S_OK;
  });
}

HRESULT removeEntries(const RegistryPlace& place, std::span<const RegistryEntry> entries) noexcept {
  HRESULT first = S_OK;
  for (auto entry = entries.rbegin(); entry != entries.rend(); ++entry) {
    const HRESULT hr = guarded([&] {
      removeEntry(place, *entry);
      return S_OK;
    });
    if (SUCCEEDED(first)) first = hr;
  }
  return first;
}

std::vector<RegistryEntry> classEntries(const ClassRegistration& registration, StringView path) {
  auto [entries, ofProgId] = entriesOf(registration, path);
  entries.insert(entries.end(), ofProgId.begin(), ofProgId.end());
  return entries;
}

HRESULT registerClass(const RegistryPlace& place, const ClassRegistration& registration, StringView path) noexcept {
  return guarded([&] { return writeEntries(place, classEntries(registration, path)); });
}

HRESULT unregisterClass(const RegistryPlace& place, const ClassRegistration& registration) noexcept {
  return guarded([&] {
    const auto [ofClass, ofProgId] = entriesOf(registration, {});
    const HRESULT first = namesAnother(place, ofProgId.back()) ? S_OK : removeEntries(place, ofProgId);
    const HRESULT second = removeEntries(place, ofClass);
    return FAILED(first) ? first : second;
  });
}

String modulePath(HMODULE module) {
  constexpr std::size_t longest = 32768;  // of all paths that Windows knows
  String path(MAX_PATH, u'\0');
  for (;;) {
    const DWORD length =
        GetModuleFileNameW(module, reinterpret_cast<wchar_t*>(path.data()), static_cast<DWORD>(path.size()));
    if (length < path.size() || path.size() >= longest) {
      path.resize(length);
      return path;
    }
    path.resize(path.size() * 2);
  }
}

String guidText(const platform::Guid& guid) {
  std::array<wchar_t, 40> buffer{};
  StringFromGUID2(iidOf(guid), buffer.data(), static_cast<int>(buffer.size()));
  return reinterpret_cast<const char16_t*>(buffer.data());
}

}  // namespace com

#include "mailclient/win/addin_loader.h"

#include <algorithm>
#include <cstdio>

#include "com/bridge.h"
#include "com/extensibility2.h"
#include "mailclient/application.h"
#include "mailclient/text_coding.h"
#include "mailclient/win/ui.h"

namespace mailclient::win {
namespace {

constexpr const wchar_t* listKey = L"Software\\Microsoft\\Office\\Outlook\\Addins";
// Bits of LoadBehavior.
constexpr DWORD connected = 1;
constexpr DWORD loadsAtStartup = 2;

class Key {
 public:
  Key(HKEY root, const wchar_t* path, REGSAM access) {
    if (RegOpenKeyExW(root, path, 0, access, &key_) != ERROR_SUCCESS) key_ = nullptr;
  }
  Key(const Key&) = delete;
  Key& operator=(const Key&) = delete;
  ~Key() {
    if (key_) RegCloseKey(key_);
  }
  HKEY get() const { return key_; }

 private:
  HKEY key_ = nullptr;
};

std::vector<String> listedAddIns() {
  std::vector<String> names;
  const Key list(HKEY_CURRENT_USER, listKey, KEY_READ);
  wchar_t name[256];
  for (DWORD i = 0; list.get(); ++i) {
    DWORD length = 256;
    if (RegEnumKeyExW(list.get(), i, name, &length, nullptr, nullptr, nullptr, nullptr) != ERROR_SUCCESS) break;
    names.emplace_back(reinterpret_cast<const char16_t*>(name), length);
  }
  return names;
}

const wchar_t* const behaviorName = L"LoadBehavior";

String addInKey(const String& progId) { return reinterpret_cast<const char16_t*>(listKey) + (u"\\" + progId); }

DWORD loadBehavior(const String& progId) {
  const Key key(HKEY_CURRENT_USER, wide(addInKey(progId)), KEY_READ);
  DWORD value = 0;
  DWORD size = sizeof value;
  DWORD type = 0;
  if (!key.get() || RegQueryValueExW(key.get(), behaviorName, nullptr, &type, reinterpret_cast<BYTE*>(&value), &size) !=
                        ERROR_SUCCESS)
    return 0;
  return type == REG_DWORD ? value : 0;
}

// Only where the value is already: an add-in that is not listed stays so.
void rememberConnected(const String& progId, bool connectedNow) {
  const DWORD before = loadBehavior(progId);
  const DWORD after = connectedNow ? before | connected : before & ~connected;
  const Key key(HKEY_CURRENT_USER, wide(addInKey(progId)), KEY_READ | KEY_WRITE);
  if (before != 0 && after != before && key.get())
    RegSetValueExW(key.get(), behaviorName, 0, REG_DWORD, reinterpret_cast<const BYTE*>(&after), sizeof after);
}

com::Ptr<com::IDTExtensibility2> create(const String& progId) {
  CLSID clsid{};
  com::Ptr<com::IDTExtensibility2> addIn;
  if (FAILED(CLSIDFromProgID(wide(progId), &clsid)) ||
      FAILED(CoCreateInstance(clsid, nullptr, CLSCTX_INPROC_SERVER, __uuidof(com::IDTExtensibility2), addIn.putVoid())))
    raiseError(429);
  return addIn;
}

// The array that the mail client hands over with every call: empty.
class CustomArray {
 public:
  CustomArray() : array_(SafeArrayCreateVector(VT_VARIANT, 1, 0)) {}
  CustomArray(const CustomArray&) = delete;
  CustomArray& operator=(const CustomArray&) = delete;
  ~CustomArray() { SafeArrayDestroy(array_); }
  SAFEARRAY** get() { return &array_; }

 private:
  SAFEARRAY* array_;
};

}  // namespace

class LoadedAddIn {
 public:
  LoadedAddIn(const String& progId, AddInPtr entry)
      : progId_(progId), entry_(std::move(entry)), addIn_(create(progId)) {}

  const String& progId() const { return progId_; }
  void connect(MailClient& client, ConnectMode mode) {
    const auto application = com::exported(client.application()->object());
    const Ref<COMAddIn> instance = entry_->view.get(client.shared_from_this(), entry_);
    const auto inst = com::exported(instance->object());
    CustomArray custom;
    entry_->connected = true;
    addIn_->OnConnection(application.get(), static_cast<LONG>(mode), inst.get(), custom.get());
  }
  void startupComplete() {
    CustomArray custom;
    addIn_->OnStartupComplete(custom.get());
  }
  void beginShutdown() {
    CustomArray custom;
    addIn_->OnBeginShutdown(custom.get());
  }
  void disconnect(std::int32_t removeMode) {
    CustomArray custom;
    addIn_->OnDisconnection(removeMode, custom.get());
    entry_->connected = false;
  }

 private:
  String progId_;
  AddInPtr entry_;
  com::Ptr<com::IDTExtensibility2> addIn_;
};

// What other programs still hold of an add-in can no longer be wired to anything.
AddInLoader::~AddInLoader() {
  for (const AddInPtr& entry : client_.addIns().entries) entry->wire = nullptr;
}

std::shared_ptr<LoadedAddIn> AddInLoader::find(const String& progId) const {
  const auto at =
      std::find_if(loaded_.begin(), loaded_.end(), [&](const auto& a) { return sameName(a->progId(), progId); });
  return at == loaded_.end() ? nullptr : *at;
}

// By value: the name may be that of the wire itself.
void AddInLoader::connect(String progId, ConnectMode mode) {
  if (find(progId)) return;
  AddInPtr entry = client_.addIns().find(progId);
  if (!entry) entry = client_.addIns().add(progId, progId);
  if (!entry->wire)
    entry->wire = [this, progId](bool on) {
      if (on)
        connect(progId, ConnectMode::AfterStartup);
      else
        disconnect(progId, static_cast<std::int32_t>(RemoveMode::UserClosed));
    };
  const auto addIn = std::make_shared<LoadedAddIn>(progId, entry);
  loaded_.push_back(addIn);
  addIn->connect(client_, mode);
  rememberConnected(progId, true);
}

void AddInLoader::loadAtStartup() {
  for (const String& progId : listedAddIns()) {
    if ((loadBehavior(progId) & (connected | loadsAtStartup)) != (connected | loadsAtStartup)) continue;
    try {
      connect(progId, ConnectMode::Startup);
    } catch (const RuntimeError& error) {
      std::fprintf(stderr, "mailclient: %s cannot be loaded: %s\n", toUtf8(progId).c_str(),
                   toUtf8(error.description).c_str());
    }
  }
  for (const auto& addIn : std::vector(loaded_)) addIn->startupComplete();
}

void AddInLoader::disconnect(String progId, std::int32_t removeMode) {
  const auto addIn = find(progId);
  if (!addIn) fail(failure::notFound, u"There is no such add-in");
  std::erase(loaded_, addIn);
  addIn->disconnect(removeMode);
  if (removeMode == static_cast<std::int32_t>(RemoveMode::UserClosed)) rememberConnected(addIn->progId(), false);
}

void AddInLoader::shutDown() {
  for (const auto& addIn : std::vector(loaded_)) addIn->beginShutdown();
  while (!loaded_.empty()) disconnect(loaded_.back()->progId(), static_cast<std::int32_t>(RemoveMode::HostShutdown));
}

}  // namespace mailclient::win

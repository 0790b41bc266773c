#include "com/class_factory.h"

#include <algorithm>
#include <optional>

#include "com/com_object.h"

namespace com {
namespace {

enum class Holder : std::uint8_t { Client, ThisServer };

class ClassFactory final : public ComObject<IClassFactory> {
 public:
  // A factory that a client holds keeps the module; one that the server itself offers must not keep the server.
  ClassFactory(const Class& made, Holder holder) : made_(made) {
    if (holder == Holder::Client) live_.emplace();
  }

  STDMETHODIMP CreateInstance(IUnknown* outer, REFIID iid, void** result) override {
    if (!result) return E_POINTER;
    *result = nullptr;
    if (outer) return CLASS_E_NOAGGREGATION;
    return guarded([&] {
      const auto object = made_.create();
      return object ? object->QueryInterface(iid, result) : E_OUTOFMEMORY;
    });
  }

  STDMETHODIMP LockServer(BOOL lock) override {
    if (lock)
      LiveExport::enter();
    else
      LiveExport::leave();
    return S_OK;
  }

 private:
  Class made_;
  std::optional<LiveExport> live_;
};

}  // namespace

HRESULT getClassObject(std::span<const Class> classes, REFCLSID clsid, REFIID iid, void** result) noexcept {
  if (!result) return E_POINTER;
  *result = nullptr;
  const auto at = std::find_if(classes.begin(), classes.end(), [&](const Class& c) { return iidOf(c.clsid) == clsid; });
  if (at == classes.end()) return CLASS_E_CLASSNOTAVAILABLE;
  return guarded([&] { return makeCom<ClassFactory>(*at, Holder::Client)->QueryInterface(iid, result); });
}

HRESULT canUnloadNow() noexcept { return liveExports() == 0 ? S_OK : S_FALSE; }

RunningClass::RunningClass(const Class& offered, REGCLS use) {
  const auto factory = makeCom<ClassFactory>(offered, Holder::ThisServer);
  check(CoRegisterClassObject(iidOf(offered.clsid), factory.get(), CLSCTX_LOCAL_SERVER, use, &cookie_));
}

RunningClass::~RunningClass() { CoRevokeClassObject(cookie_); }

}  // namespace com

#include "win32/addin_dll/connect_face.h"

#include <algorithm>
#include <array>

#include "addin/host/connect.h"
#include "com/com_object.h"
#include "com/extensibility2.h"

namespace win32 {
namespace {

using com::Ptr;
using platform::Variant;

// Follows what a script hands over: a variable that holds an array.
bool isArray(const VARIANT& value) {
  if (value.vt == (VT_BYREF | VT_VARIANT) && value.pvarVal) return (value.pvarVal->vt & VT_ARRAY) != 0;
  return (value.vt & VT_ARRAY) != 0;
}

// A caller's arguments with `custom`, the one array among them, left out: nobody looks at it, and automation values
// have no arrays here. The values stay the caller's.
class PlainArguments {
 public:
  explicit PlainArguments(DISPPARAMS* params) : params_(params) {
    if (!params || !params->rgvarg || params->cArgs > most) return;
    std::copy_n(params->rgvarg, params->cArgs, list_.begin());
    for (VARIANT& value : list_) {
      if (!isArray(value)) continue;
      value.vt = VT_ERROR;
      value.scode = DISP_E_PARAMNOTFOUND;
    }
    plain_ = *params;
    plain_.rgvarg = list_.data();
    params_ = &plain_;
  }
  PlainArguments(const PlainArguments&) = delete;
  PlainArguments& operator=(const PlainArguments&) = delete;
  ~PlainArguments() = default;

  DISPPARAMS* get() const { return params_; }

 private:
  static constexpr std::size_t most = 4;  // of OnConnection
  std::array<VARIANT, most> list_{};
  DISPPARAMS plain_{};
  DISPPARAMS* params_;
};

class ConnectFace final : public com::ComObject<com::IDTExtensibility2> {
 public:
  ConnectFace() : object_(platform::make<addin::connect>()), dispatch_(com::exported(object_->object())) {}

  STDMETHODIMP OnConnection(IDispatch* Application, LONG ConnectMode, IDispatch* AddInInst,
                            SAFEARRAY** /*custom*/) override {
    return succeed(
        [&] { object_->OnConnection(com::import(Application), ConnectMode, com::import(AddInInst), Variant()); });
  }
  STDMETHODIMP OnDisconnection(LONG RemoveMode, SAFEARRAY** /*custom*/) override {
    return succeed([&] { object_->OnDisconnection(RemoveMode, Variant()); });
  }
  STDMETHODIMP OnAddInsUpdate(SAFEARRAY** /*custom*/) override {
    return succeed([&] { object_->OnAddInsUpdate(Variant()); });
  }
  STDMETHODIMP OnStartupComplete(SAFEARRAY** /*custom*/) override {
    return succeed([&] { object_->OnStartupComplete(Variant()); });
  }
  STDMETHODIMP OnBeginShutdown(SAFEARRAY** /*custom*/) override {
    return succeed([&] { object_->OnBeginShutdown(Variant()); });
  }

  STDMETHODIMP GetTypeInfoCount(UINT* count) override { return dispatch_->GetTypeInfoCount(count); }
  STDMETHODIMP GetTypeInfo(UINT index, LCID locale, ITypeInfo** result) override {
    return dispatch_->GetTypeInfo(index, locale, result);
  }
  STDMETHODIMP GetIDsOfNames(REFIID reserved, LPOLESTR* names, UINT count, LCID locale, DISPID* ids) override {
    return dispatch_->GetIDsOfNames(reserved, names, count, locale, ids);
  }
  STDMETHODIMP Invoke(DISPID id, REFIID reserved, LCID locale, WORD flags, DISPPARAMS* params, VARIANT* result,
                      EXCEPINFO* info, UINT* bad) override {
    const Ptr<ConnectFace> self(this);
    const PlainArguments plain(params);
    return dispatch_->Invoke(id, reserved, locale, flags, plain.get(), result, info, bad);
  }

 protected:
  void* find(REFIID iid) override {
    return iid == IID_IDispatch ? static_cast<IDispatch*>(this) : ComObject::find(iid);
  }

 private:
  // The mail client may let go of this object from inside the call.
  template <class Body>
  HRESULT succeed(Body&& body) noexcept {
    const Ptr<ConnectFace> self(this);
    static_cast<void>(com::guarded([&] {
      body();
      return S_OK;
    }));
    return S_OK;
  }

  com::LiveExport live_;
  platform::Ref<addin::connect> object_;
  Ptr<IDispatch> dispatch_;
};

}  // namespace

Ptr<IUnknown> createConnect() { return com::makeCom<ConnectFace>(); }

}  // namespace win32

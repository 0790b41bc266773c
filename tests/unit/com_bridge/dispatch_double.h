// A foreign automation object that a test scripts, and that counts what is done to it. It lives on the stack; a
// reference that is left at its end is a failure.
#pragma once

#include <functional>
#include <map>
#include <string>

#include <gtest/gtest.h>

#include "com/pointers.h"

namespace bridge_test {

class DispatchDouble final : public IDispatch {
 public:
  using Answer = std::function<HRESULT(DISPID id, WORD flags, DISPPARAMS& params, VARIANT* result, EXCEPINFO* info)>;

  DispatchDouble() = default;
  explicit DispatchDouble(Answer script) : answer(std::move(script)) {}
  DispatchDouble(const DispatchDouble&) = delete;
  DispatchDouble& operator=(const DispatchDouble&) = delete;
  virtual ~DispatchDouble() { EXPECT_EQ(references, 0) << "references to the double are left"; }

  STDMETHODIMP QueryInterface(REFIID iid, void** result) override {
    *result = nullptr;
    if (iid == IID_IUnknown || iid == IID_IDispatch || iid == alsoKnownAs) *result = static_cast<IDispatch*>(this);
    if (!*result) return refusal;
    AddRef();
    return S_OK;
  }
  STDMETHODIMP_(ULONG) AddRef() override {
    ++additions;
    return static_cast<ULONG>(++references);
  }
  STDMETHODIMP_(ULONG) Release() override { return static_cast<ULONG>(--references); }
  STDMETHODIMP GetTypeInfoCount(UINT* count) override {
    *count = 0;
    return S_OK;
  }
  STDMETHODIMP GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
  STDMETHODIMP GetIDsOfNames(REFIID, LPOLESTR* wanted, UINT, LCID, DISPID* ids) override {
    ++lookUps;
    if (const auto at = names.find(wanted[0]); at != names.end()) {
      ids[0] = at->second;
      return S_OK;
    }
    ids[0] = DISPID_UNKNOWN;
    return DISP_E_UNKNOWNNAME;
  }
  STDMETHODIMP Invoke(DISPID id, REFIID, LCID, WORD flags, DISPPARAMS* params, VARIANT* result, EXCEPINFO* info,
                      UINT*) override {
    ++calls;
    return answer ? answer(id, flags, *params, result, info) : S_OK;
  }

  Answer answer;
  std::map<std::wstring, DISPID> names{{L"Do", 7}};
  IID alsoKnownAs = IID_IDispatch;
  HRESULT refusal = E_NOINTERFACE;
  LONG references = 0;
  int additions = 0;
  int lookUps = 0;
  int calls = 0;
};

}  // namespace bridge_test

// What COM objects of ours are made of: the count, the interfaces, and IDispatch's answers for objects without types.
#pragma once

#include "com/bridge.h"

namespace com {

// An object with a count of its own that answers for IUnknown and the given interfaces. It begins with one reference,
// which makeCom() owns.
template <class First, class... More>
class ComObject : public First, public More... {
 public:
  ComObject(const ComObject&) = delete;
  ComObject& operator=(const ComObject&) = delete;

  STDMETHODIMP QueryInterface(REFIID iid, void** result) override {
    if (!result) return E_POINTER;
    *result = find(iid);
    if (!*result) return E_NOINTERFACE;
    AddRef();
    return S_OK;
  }
  STDMETHODIMP_(ULONG) AddRef() override { return ++count_; }
  STDMETHODIMP_(ULONG) Release() override {
    const ULONG left = --count_;
    if (left == 0) {
      count_ = ending;  // a reference that the destructor itself takes and drops must not end up here again
      delete this;
    }
    return left;
  }

 protected:
  ComObject() = default;
  virtual ~ComObject() = default;

  // The interface as QueryInterface gives it, not counted; null when there is none. IUnknown is that of `First`.
  virtual void* find(REFIID iid) {
    if (iid == IID_IUnknown || iid == __uuidof(First)) return static_cast<First*>(this);
    void* found = nullptr;
    static_cast<void>(((iid == __uuidof(More) ? (found = static_cast<More*>(this), true) : false) || ...));
    return found;
  }

 private:
  static constexpr ULONG ending = 0x40000000;
  ULONG count_ = 1;
};

// An IDispatch without type information and, unless overridden, without names.
template <class... More>
class DispatchObject : public ComObject<IDispatch, More...> {
 public:
  STDMETHODIMP GetTypeInfoCount(UINT* count) override {
    if (!count) return E_POINTER;
    *count = 0;
    return S_OK;
  }
  STDMETHODIMP GetTypeInfo(UINT /*index*/, LCID /*locale*/, ITypeInfo** result) override {
    if (!result) return E_POINTER;
    *result = nullptr;
    return DISP_E_BADINDEX;
  }
  STDMETHODIMP GetIDsOfNames(REFIID /*reserved*/, LPOLESTR* names, UINT count, LCID /*locale*/, DISPID* ids) override {
    if (!names || !ids) return E_POINTER;
    for (UINT i = 0; i < count; ++i) ids[i] = DISPID_UNKNOWN;
    return DISP_E_UNKNOWNNAME;
  }

 private:
  LiveExport live_;
};

template <class T, class... A>
Ptr<T> makeCom(A&&... args) {
  return Ptr<T>::adopt(new T(std::forward<A>(args)...));
}

}  // namespace com

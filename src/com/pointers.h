// Owners of what COM hands out: references, strings, values, and the error record of a call.
#pragma once

#include <concepts>
#include <new>
#include <utility>

#include "addin/platform/guid.h"
#include "addin/platform/text.h"
#include "com/windows.h"

namespace com {

inline IID iidOf(const platform::Guid& guid) noexcept {
  return {
      guid.a, guid.b, guid.c, {guid.d[0], guid.d[1], guid.d[2], guid.d[3], guid.d[4], guid.d[5], guid.d[6], guid.d[7]}};
}

inline platform::Guid guidOf(const GUID& guid) noexcept {
  const auto* const d = guid.Data4;
  return {
      static_cast<std::uint32_t>(guid.Data1), guid.Data2, guid.Data3, {d[0], d[1], d[2], d[3], d[4], d[5], d[6], d[7]}};
}

// A counted reference to a COM interface.
template <class T>
class Ptr {
 public:
  Ptr() = default;
  Ptr(std::nullptr_t) {}
  explicit Ptr(T* p) noexcept : p_(p) {
    if (p_) p_->AddRef();
  }
  Ptr(const Ptr& other) noexcept : Ptr(other.p_) {}
  Ptr(Ptr&& other) noexcept : p_(other.detach()) {}
  template <std::derived_from<T> U>
  Ptr(const Ptr<U>& other) noexcept : Ptr(static_cast<T*>(other.get())) {}
  template <std::derived_from<T> U>
  Ptr(Ptr<U>&& other) noexcept : p_(other.detach()) {}
  ~Ptr() {
    if (p_) p_->Release();
  }

  // The old reference goes last: its release may run code that looks at this pointer.
  Ptr& operator=(Ptr other) noexcept {
    std::swap(p_, other.p_);
    return *this;
  }

  // Takes over a reference that is already counted.
  static Ptr adopt(T* p) noexcept {
    Ptr r;
    r.p_ = p;
    return r;
  }

  T* get() const noexcept { return p_; }
  T* operator->() const noexcept { return p_; }
  explicit operator bool() const noexcept { return p_ != nullptr; }
  friend bool operator==(const Ptr& a, const Ptr& b) noexcept { return a.p_ == b.p_; }

  // Gives the reference to the caller.
  [[nodiscard]] T* detach() noexcept { return std::exchange(p_, nullptr); }

  // For a function that returns a reference through its argument. What was here is released first.
  T** put() noexcept {
    *this = nullptr;
    return &p_;
  }
  void** putVoid() noexcept { return reinterpret_cast<void**>(put()); }

  // Another interface of the same object; null when it has none. `failure` tells why.
  template <class U>
  Ptr<U> as(const IID& iid = __uuidof(U), HRESULT* failure = nullptr) const noexcept {
    Ptr<U> other;
    const HRESULT hr = p_ ? p_->QueryInterface(iid, other.putVoid()) : E_POINTER;
    if (FAILED(hr)) static_cast<void>(other.detach());  // a careless object may leave rubbish behind
    if (failure) *failure = hr;
    return other;
  }

 private:
  T* p_ = nullptr;
};

inline platform::String textOf(BSTR text) {
  return text ? platform::String(reinterpret_cast<const char16_t*>(text), SysStringLen(text)) : platform::String();
}

// A new BSTR that the caller owns. Throws std::bad_alloc.
inline BSTR newBstr(platform::StringView text) {
  BSTR b = SysAllocStringLen(reinterpret_cast<const OLECHAR*>(text.data()), static_cast<UINT>(text.size()));
  if (!b) throw std::bad_alloc();
  return b;
}

class Bstr {
 public:
  Bstr() = default;
  explicit Bstr(platform::StringView text) : b_(newBstr(text)) {}
  Bstr(Bstr&& other) noexcept : b_(other.detach()) {}
  Bstr& operator=(Bstr other) noexcept {
    std::swap(b_, other.b_);
    return *this;
  }
  ~Bstr() { SysFreeString(b_); }

  BSTR get() const noexcept { return b_; }
  BSTR* put() noexcept {
    *this = Bstr();
    return &b_;
  }
  [[nodiscard]] BSTR detach() noexcept { return std::exchange(b_, nullptr); }
  platform::String text() const { return textOf(b_); }

 private:
  BSTR b_ = nullptr;
};

// A VARIANT that is cleared at its end.
class OwnedVariant {
 public:
  OwnedVariant() noexcept { VariantInit(&v_); }
  OwnedVariant(const OwnedVariant&) = delete;
  OwnedVariant& operator=(const OwnedVariant&) = delete;
  ~OwnedVariant() { VariantClear(&v_); }

  VARIANT& get() noexcept { return v_; }
  const VARIANT& get() const noexcept { return v_; }
  VARIANT* operator->() noexcept { return &v_; }
  // Gives the content to the caller, who clears it.
  [[nodiscard]] VARIANT detach() noexcept {
    const VARIANT content = v_;
    VariantInit(&v_);
    return content;
  }

 private:
  VARIANT v_;
};

// The error record that an Invoke fills, with the strings that it hands over.
class ExceptionInfo {
 public:
  ExceptionInfo() = default;
  ExceptionInfo(const ExceptionInfo&) = delete;
  ExceptionInfo& operator=(const ExceptionInfo&) = delete;
  ~ExceptionInfo() {
    SysFreeString(info_.bstrSource);
    SysFreeString(info_.bstrDescription);
    SysFreeString(info_.bstrHelpFile);
  }
  EXCEPINFO* get() noexcept { return &info_; }

 private:
  EXCEPINFO info_{};
};

}  // namespace com

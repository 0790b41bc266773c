// What a property page of the mail client's Options dialog and its host are to each other, as the mail client declares
// it: both are called through their vtables.
#pragma once

#include "com/windows.h"

namespace com {

// The page: an ActiveX control implements it. E_NOTIMPL is a usual answer of GetPageInfo.
struct PropertyPage : IDispatch {
  virtual HRESULT STDMETHODCALLTYPE GetPageInfo(BSTR* helpFile, LONG* helpContext) = 0;
  virtual HRESULT STDMETHODCALLTYPE get_Dirty(VARIANT_BOOL* dirty) = 0;
  virtual HRESULT STDMETHODCALLTYPE Apply() = 0;
};

// The page asks its client site for this, and calls OnStatusChange when Dirty may have changed.
struct PropertyPageSite : IDispatch {
  virtual HRESULT STDMETHODCALLTYPE get_Application(IDispatch** application) = 0;
  virtual HRESULT STDMETHODCALLTYPE get_Class(LONG* number) = 0;
  virtual HRESULT STDMETHODCALLTYPE get_Session(IDispatch** session) = 0;
  virtual HRESULT STDMETHODCALLTYPE get_Parent(IDispatch** parent) = 0;
  virtual HRESULT STDMETHODCALLTYPE OnStatusChange() = 0;
};

// Dispatch identifiers of the two.
inline constexpr LONG getPageInfoId = 0x2100;
inline constexpr LONG dirtyId = 0x2101;
inline constexpr LONG applyId = 0x2102;
inline constexpr LONG onStatusChangeId = 0x2100;

}  // namespace com

__CRT_UUID_DECL(com::PropertyPage, 0x0006307E, 0, 0, 0xC0, 0, 0, 0, 0, 0, 0, 0x46)
__CRT_UUID_DECL(com::PropertyPageSite, 0x0006307F, 0, 0, 0xC0, 0, 0, 0, 0, 0, 0, 0x46)

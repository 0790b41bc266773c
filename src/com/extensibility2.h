// IDTExtensibility2 as the mail client calls it: through its vtable. The same five methods answer through IDispatch,
// with identifiers 1 to 5 in this order.
#pragma once

#include "com/windows.h"

namespace com {

struct IDTExtensibility2 : IDispatch {
  virtual HRESULT STDMETHODCALLTYPE OnConnection(IDispatch* Application, LONG ConnectMode, IDispatch* AddInInst,
                                                 SAFEARRAY** custom) = 0;
  virtual HRESULT STDMETHODCALLTYPE OnDisconnection(LONG RemoveMode, SAFEARRAY** custom) = 0;
  virtual HRESULT STDMETHODCALLTYPE OnAddInsUpdate(SAFEARRAY** custom) = 0;
  virtual HRESULT STDMETHODCALLTYPE OnStartupComplete(SAFEARRAY** custom) = 0;
  virtual HRESULT STDMETHODCALLTYPE OnBeginShutdown(SAFEARRAY** custom) = 0;
};

}  // namespace com

// Makes __uuidof answer; the value is that of platform::extensibility::iidExtensibility2.
__CRT_UUID_DECL(com::IDTExtensibility2, 0xB65AD801, 0xABAF, 0x11D0, 0xBB, 0x8B, 0x00, 0xA0, 0xC9, 0x0F, 0x27, 0x44)

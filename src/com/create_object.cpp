#include "com/create_object.h"

namespace com {
namespace {

constexpr auto serverUnavailable = static_cast<HRESULT>(0x800706BA);  // RPC_S_SERVER_UNAVAILABLE

HRESULT tryOnce(REFCLSID clsid, Ptr<IDispatch>& made) noexcept {
  return CoCreateInstance(clsid, nullptr, CLSCTX_INPROC_SERVER | CLSCTX_LOCAL_SERVER, IID_IDispatch, made.putVoid());
}

}  // namespace

HRESULT createObject(REFCLSID clsid, Ptr<IDispatch>& made) noexcept {
  const HRESULT first = tryOnce(clsid, made);
  const bool dead = first == serverUnavailable || first == RPC_E_DISCONNECTED || first == CO_E_OBJNOTCONNECTED;
  return dead ? tryOnce(clsid, made) : first;
}

}  // namespace com

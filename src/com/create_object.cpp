#include "com/create_object.h"

namespace com {
namespace {

constexpr auto serverUnavailable = static_cast<HRESULT>(0x800706BA);  // RPC_S_SERVER_UNAVAILABLE
constexpr int mostTries = 8;

bool isDead(HRESULT result) noexcept {
  return result == serverUnavailable || result == RPC_E_DISCONNECTED || result == CO_E_OBJNOTCONNECTED;
}

HRESULT tryOnce(REFCLSID clsid, Ptr<IDispatch>& made) noexcept {
  return CoCreateInstance(clsid, nullptr, CLSCTX_INPROC_SERVER | CLSCTX_LOCAL_SERVER, IID_IDispatch, made.putVoid());
}

}  // namespace

HRESULT createObject(REFCLSID clsid, Ptr<IDispatch>& made) noexcept {
  HRESULT result = tryOnce(clsid, made);
  for (int tries = 1; tries < mostTries && isDead(result); ++tries) result = tryOnce(clsid, made);
  return result;
}

}  // namespace com

#include "com/create_object.h"

#include <algorithm>
#include <array>

namespace com {
namespace {

constexpr int mostTries = 8;

// What a call of a process says that is gone, or is just going; Wine says E_FAIL when it goes in the middle of the
// call.
constexpr std::array deaths{HRESULT_FROM_WIN32(RPC_S_SERVER_UNAVAILABLE),
                            HRESULT_FROM_WIN32(RPC_S_UNKNOWN_IF),
                            HRESULT_FROM_WIN32(RPC_S_CALL_FAILED),
                            HRESULT_FROM_WIN32(RPC_S_CALL_FAILED_DNE),
                            RPC_E_DISCONNECTED,
                            RPC_E_SERVER_DIED,
                            RPC_E_SERVER_DIED_DNE,
                            CO_E_OBJNOTCONNECTED,
                            CO_E_SERVER_STOPPING,
                            E_FAIL};

bool mayBeDead(HRESULT result) noexcept { return std::find(deaths.begin(), deaths.end(), result) != deaths.end(); }

HRESULT tryOnce(REFCLSID clsid, Ptr<IDispatch>& made) noexcept {
  return CoCreateInstance(clsid, nullptr, CLSCTX_INPROC_SERVER | CLSCTX_LOCAL_SERVER, IID_IDispatch, made.putVoid());
}

}  // namespace

HRESULT createObject(REFCLSID clsid, Ptr<IDispatch>& made) noexcept {
  HRESULT result = tryOnce(clsid, made);
  for (int tries = 1; tries < mostTries && mayBeDead(result); ++tries) result = tryOnce(clsid, made);
  return result;
}

}  // namespace com

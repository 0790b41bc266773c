// The events of an exported object: its one connection point, and the outside sinks that are connected there.
#pragma once

#include "com/bridge.h"

namespace com {

class Connections;

// Part of an exported face: it shares the face's count and lives as long.
class ConnectionPoint final : public IConnectionPoint {
 public:
  ConnectionPoint(IConnectionPointContainer& face, platform::NativeObject& source);
  virtual ~ConnectionPoint();
  ConnectionPoint(const ConnectionPoint&) = delete;
  ConnectionPoint& operator=(const ConnectionPoint&) = delete;

  STDMETHODIMP QueryInterface(REFIID iid, void** result) override;
  STDMETHODIMP_(ULONG) AddRef() override { return face_.AddRef(); }
  STDMETHODIMP_(ULONG) Release() override { return face_.Release(); }

  STDMETHODIMP GetConnectionInterface(IID* iid) override;
  STDMETHODIMP GetConnectionPointContainer(IConnectionPointContainer** result) override;
  STDMETHODIMP Advise(IUnknown* sink, DWORD* cookie) override;
  STDMETHODIMP Unadvise(DWORD cookie) override;
  STDMETHODIMP EnumConnections(IEnumConnections** result) override;

 private:
  IConnectionPointContainer& face_;
  platform::NativeObject& source_;
  platform::Ref<Connections> connections_;
};

// The enumerator of a container that has this one connection point.
Ptr<IEnumConnectionPoints> enumerateOne(ConnectionPoint& point);

}  // namespace com

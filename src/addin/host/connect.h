// The add-in's entry point: the mail client loads it and talks to it only through this object, which answers the add-in
// connection interface IDTExtensibility2. Success is all that the mail client is ever told.
#pragma once

#include "addin/common/basGlobal.h"
#include "addin/host/OutAddIn.h"
#include "addin/platform/native.h"

namespace addin {

class connect final : public NativeObject {
 public:
  std::span<const Member> members() const override;

  void OnConnection(const Object& Application, std::int32_t ConnectMode, const Object& AddInInst,
                    const Variant& custom);
  void OnDisconnection(std::int32_t RemoveMode, const Variant& custom);
  void OnAddInsUpdate(const Variant& custom);
  void OnStartupComplete(const Variant& custom);
  void OnBeginShutdown(const Variant& custom);

 private:
  // Creates a fresh object whenever it is read while empty.
  Ref<OutAddIn> baseclass();

  Ref<OutAddIn> m_baseclass;
};

}  // namespace addin

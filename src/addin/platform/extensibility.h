// The add-in connection interface IDTExtensibility2 and what the mail client hands over with it.
#pragma once

#include "addin/platform/object.h"

namespace platform::extensibility {

inline constexpr Guid iidExtensibility2{0xB65AD801, 0xABAF, 0x11D0, {0xBB, 0x8B, 0x00, 0xA0, 0xC9, 0x0F, 0x27, 0x44}};

enum ext_ConnectMode : std::int32_t {
  ext_cm_AfterStartup = 0,
  ext_cm_Startup = 1,
  ext_cm_External = 2,
  ext_cm_CommandLine = 3
};
enum ext_DisconnectMode : std::int32_t { ext_dm_HostShutdown = 0, ext_dm_UserClosed = 1 };

// The mail client's entry for this add-in.
class AddInInst : public Object {
 public:
  using Object::Object;
  String ProgId() const { return get<String>(u"ProgId"); }
};

}  // namespace platform::extensibility

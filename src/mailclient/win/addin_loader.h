// Loads add-ins as the mail client does: from its list in the registry, through COM.
#pragma once

#include "mailclient/client.h"

namespace mailclient::win {

// The connect modes of IDTExtensibility2.
enum class ConnectMode : std::int32_t { AfterStartup = 0, Startup = 1 };
enum class RemoveMode : std::int32_t { HostShutdown = 0, UserClosed = 1 };

class LoadedAddIn;

class AddInLoader {
 public:
  explicit AddInLoader(MailClient& client) : client_(client) {}
  ~AddInLoader();
  AddInLoader(const AddInLoader&) = delete;
  AddInLoader& operator=(const AddInLoader&) = delete;

  // Every add-in of the list whose LoadBehavior says "connected, and loaded at start-up" (3), in the order of the list:
  // OnConnection for each, then OnStartupComplete for each. One that cannot be created is left out; the reason goes to
  // standard error.
  void loadAtStartup();
  // One add-in, switched on by the user, or off (remove mode 1). The mail client remembers that in LoadBehavior: 3
  // becomes 2, and 2 becomes 3. Error 429 when it cannot be created.
  void connect(String progId, ConnectMode mode);
  void disconnect(String progId, std::int32_t removeMode);
  // OnBeginShutdown for each, then OnDisconnection.
  void shutDown();

 private:
  std::shared_ptr<LoadedAddIn> find(const String& progId) const;

  MailClient& client_;
  std::vector<std::shared_ptr<LoadedAddIn>> loaded_;
};

}  // namespace mailclient::win

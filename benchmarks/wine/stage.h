// What the measurements under Wine stand on: the installed product, a mail client in this process, the simulated
// handset in its server. No debug viewer, and the wizard is done.
#pragma once

#include "addin/host/connect.h"
#include "mailclient/client.h"
#include "mailclient/console.h"
#include "support/win32/product.h"

namespace bench {

// Registers the product, writes the settings, empties the handset. Ends the program when that fails.
void install();

// The mail client, with one window, and a user at its command line.
class Stage final : private mailclient::ConsoleHost {
 public:
  Stage();
  ~Stage();
  Stage(const Stage&) = delete;
  Stage& operator=(const Stage&) = delete;

  platform::Object application() const;
  platform::Object addInInst() const;
  std::size_t addedButtons() const;

  // One command; its answer's last line without the number. A command that fails ends the program.
  std::string tell(const std::string& command);
  void awaitItems(const std::string& folder, int count);

 private:
  void answer(const std::string& line) override { last_ = line; }
  bool waitUntil(const std::function<bool()>& condition, std::int32_t milliseconds) override;
  void connectAddIn(const platform::String& /*progId*/) override {}
  void disconnectAddIn(const platform::String& /*progId*/, std::int32_t /*removeMode*/) override {}
  void quit() override {}

  mailclient::ClientPtr client_;
  mailclient::AddInPtr entry_;
  mailclient::Console console_;
  std::string last_;
};

inline constexpr const char* sendReceive = "click \"Send & Receive Text Message\"";

// With the add-in connected. Its own code runs in this program, where its one door can be watched.
class ConnectedStage {
 public:
  ConnectedStage() { addIn_->OnConnection(stage_.application(), 1, stage_.addInInst(), platform::Variant()); }
  ~ConnectedStage() { addIn_->OnDisconnection(1, platform::Variant()); }
  ConnectedStage(const ConnectedStage&) = delete;
  ConnectedStage& operator=(const ConnectedStage&) = delete;
  Stage* operator->() { return &stage_; }

 private:
  Stage stage_;
  platform::Ref<addin::connect> addIn_ = platform::make<addin::connect>();
};

// User and kernel time; std::clock is wall-clock time on Windows.
double processorSeconds(void* process);

void connecting();    // OnConnection, through the DLL
void borderCalls();   // how many calls leave the add-in for a message
void listTimesOut();  // processor time of a wait
// The window with a store that was never opened, which has this many messages in its Inbox.
void opening(const wchar_t* store, int count);

}  // namespace bench

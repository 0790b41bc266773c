// What the tests of a connected add-in stand on.
#pragma once

#include "addin_library.h"
#include "host.h"
#include "settings.h"
#include "viewer.h"

namespace addin_dll_tests {

using Lines = std::vector<std::string>;

class Connection : public testing::Test {
 protected:
  // A program that is about to end: its quit message closes the wizard as soon as it is shown, and the add-in starts
  // nothing more.
  Connection() {
    OleInitialize(nullptr);
    PostQuitMessage(0);
  }
  ~Connection() override {
    takeQuit();
    application_ = nullptr;
    addInInst_ = nullptr;
    OleUninitialize();
  }

  static void takeQuit() {
    MSG message;
    while (PeekMessageW(&message, nullptr, WM_QUIT, WM_QUIT, PM_REMOVE)) continue;
  }

  com::Ptr<IDispatch> application() const { return com::exported(application_.get()->object()); }
  com::Ptr<IDispatch> addInInst() const { return com::exported(addInInst_.get()->object()); }

  // Start-up gets as far as this small mail client allows.
  static Lines startUpLines() {
    return {"<==== MRKTXTMSG Version 1.0.0", "Connectmode:1", "ActiveWindow is something",
            "InitHandler Error:438, Object doesn't support this property or method, mrktxtmsg",
            "Error:-1, Failed in baseclass.StartUpCompleted, IDTExtensibility2_OnConnection"};
  }

  const WizardNotDone wizardNotDone_;
  Viewer viewer_;
  platform::Ref<HostApplication> application_ = platform::make<HostApplication>();
  platform::Ref<HostAddInInst> addInInst_ = platform::make<HostAddInInst>();
};

}  // namespace addin_dll_tests

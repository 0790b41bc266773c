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
  Connection() { OleInitialize(nullptr); }
  ~Connection() override {
    application_ = nullptr;
    addInInst_ = nullptr;
    OleUninitialize();
  }

  com::Ptr<IDispatch> application() const { return com::exported(application_.get()->object()); }
  com::Ptr<IDispatch> addInInst() const { return com::exported(addInInst_.get()->object()); }

  // Start-up gets as far as this small mail client allows.
  static Lines startUpLines() {
    return {"<==== MRKTXTMSG Version 1.0.0",
            "Connectmode:1",
            "ActiveWindow is something",
            "InitHandler Error:438, Object doesn't support this property or method, mrktxtmsg",
            "Error:438, Object doesn't support this property or method, mrktxtmsg",
            "Error:-1, Failed in baseclass.StartUpCompleted, IDTExtensibility2_OnConnection"};
  }

  const WizardNotDone wizardNotDone_;
  Viewer viewer_;
  platform::Ref<HostApplication> application_ = platform::make<HostApplication>();
  platform::Ref<HostAddInInst> addInInst_ = platform::make<HostAddInInst>();
};

}  // namespace addin_dll_tests

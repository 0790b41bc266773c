// A small mail client: just enough of one for the add-in to connect, to take its references and to fail from there on.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "addin/platform/native.h"
#include "addin/platform/outlook.h"

namespace addin_dll_tests {

class HostApplication final : public platform::NativeObject {
 public:
  std::span<const platform::Member> members() const override {
    static constexpr platform::Member table[] = {
        platform::method<&HostApplication::activeWindow>(u"ActiveWindow", 0x11F),
        platform::method<&HostApplication::activeExplorer>(u"ActiveExplorer", 0x111),
    };
    return table;
  }
  platform::Guid events() const override { return platform::outlook::ApplicationEvents::iid; }

  platform::Object activeWindow() {
    if (whenAskedForItsWindow) whenAskedForItsWindow();
    return hasWindow ? object() : platform::Object();
  }
  platform::Object activeExplorer() { return object(); }

  bool hasWindow = true;
  std::function<void()> whenAskedForItsWindow;
};

class HostAddInInst final : public platform::NativeObject {
 public:
  std::span<const platform::Member> members() const override {
    static constexpr platform::Member table[] = {platform::readOnly<&HostAddInInst::progId>(u"ProgId", 2)};
    return table;
  }
  platform::String progId = u"mrktxtmsg.connect";
};

}  // namespace addin_dll_tests

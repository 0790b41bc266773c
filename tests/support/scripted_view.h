// A form without a window, and the user before it. What a user could not do is a test failure.
//
//   system.ui.view(u"frmwizard").type("txtName", "Anna").click("btnNext");
#pragma once

#include <string>
#include <vector>

#include "addin/platform/form.h"

namespace testing_support {

class ScriptedView final : public platform::FormView {
 public:
  explicit ScriptedView(platform::Form& form);
  ~ScriptedView();
  ScriptedView(const ScriptedView&) = delete;
  ScriptedView& operator=(const ScriptedView&) = delete;

  bool isOpen() const { return static_cast<bool>(form_); }
  platform::Form& form() const { return *form_; }
  // A test failure ends the test when the form has no control of that name.
  platform::Control& control(const std::string& name) const;

  // The user
  // -----------------------------------------------------------------------------------------------------------

  ScriptedView& click(const std::string& name);
  // Each character goes through the control's key filter, and what that lets pass into the text, at its end. U+0008
  // takes the last one away.
  ScriptedView& type(const std::string& name, platform::StringView keys);
  ScriptedView& erase(const std::string& name, std::size_t times = 1);
  ScriptedView& choose(const std::string& name, std::int32_t index);
  void close();  // by the window's own means; nothing when the form is not open

  // What there is to see
  // -----------------------------------------------------------------------------------------------

  std::string caption() const;  // of the form
  std::string caption(const std::string& name) const;
  std::string text(const std::string& name) const;
  bool enabled(const std::string& name) const { return control(name).Enabled(); }
  bool seen(const std::string& name) const { return control(name).IsShown(); }
  std::string focus() const;  // the name of the control that has it; empty: it was put nowhere
  std::vector<std::string> entries(const std::string& name) const;

  // What the view was told, in order: btnNext.Enabled = False, cboSCAddress.List, focus txtName.
  const std::vector<std::string>& told() const { return told_; }
  void clearTold() { told_.clear(); }

  void changed(platform::Control& control, platform::Property property) override;
  void captionChanged() override;
  void focusMoved(platform::Control& control) override;
  void unloaded() override;

 private:
  platform::Control& usable(const std::string& name) const;

  platform::Ref<platform::Form> form_;
  std::vector<std::string> told_;
};

}  // namespace testing_support

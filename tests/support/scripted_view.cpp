#include "support/scripted_view.h"

#include <stdexcept>

#include <gtest/gtest.h>

#include "support/text.h"

namespace testing_support {

using platform::Control;
using platform::Property;
using platform::String;
using platform::StringView;

namespace {

constexpr char16_t backspace = 8;
constexpr std::int32_t firstPrintable = 32;

String wide(const std::string& ascii) { return String(ascii.begin(), ascii.end()); }

std::string value(bool value) { return value ? "True" : "False"; }

std::string describe(const Control& control, Property property) {
  switch (property) {
    case Property::Caption:
      return ".Caption = " + utf8(control.Caption());
    case Property::Text:
      return ".Text = " + utf8(control.Text());
    case Property::Value:
      return ".Value = " + value(control.Value());
    case Property::Enabled:
      return ".Enabled = " + value(control.Enabled());
    case Property::Visible:
      return ".Visible = " + value(control.Visible());
    case Property::BackColor:
      return ".BackColor = " + std::to_string(control.BackColor());
    case Property::List:
      return ".List";
    case Property::ListIndex:
      return ".ListIndex = " + std::to_string(control.ListIndex());
    case Property::MaxLength:
      return ".MaxLength = " + std::to_string(control.MaxLength());
  }
  return {};
}

}  // namespace

ScriptedView::ScriptedView(platform::Form& form) : form_(&form) { form.SetView(this); }

ScriptedView::~ScriptedView() {
  if (form_) form_->SetView(nullptr);
}

Control& ScriptedView::control(const std::string& name) const {
  Control* const found = form_ ? form_->Find(wide(name)) : nullptr;
  if (!found) throw std::logic_error("no control " + name);
  return *found;
}

Control& ScriptedView::usable(const std::string& name) const {
  Control& found = control(name);
  EXPECT_TRUE(found.IsShown()) << name << " cannot be seen";
  EXPECT_TRUE(found.Enabled()) << name << " is disabled";
  return found;
}

ScriptedView& ScriptedView::click(const std::string& name) {
  usable(name).userClicks();
  return *this;
}

ScriptedView& ScriptedView::type(const std::string& name, StringView keys) {
  Control& box = usable(name);
  for (const char16_t key : keys) {
    const std::int32_t code = box.userPresses(key);
    String text = box.Text();
    if (code == backspace) {
      if (!text.empty()) text.pop_back();
    } else if (code >= firstPrintable && (box.MaxLength() == 0 || text.size() < box.MaxLength())) {
      text += static_cast<char16_t>(code);
    }
    box.userEdits(text);
  }
  return *this;
}

ScriptedView& ScriptedView::erase(const std::string& name, std::size_t times) {
  return type(name, String(times, backspace));
}

ScriptedView& ScriptedView::choose(const std::string& name, std::int32_t index) {
  usable(name).userSelects(index);
  return *this;
}

void ScriptedView::close() {
  if (form_) form_->userCloses();
}

std::string ScriptedView::caption() const { return utf8(form_->Caption()); }
std::string ScriptedView::caption(const std::string& name) const { return utf8(control(name).Caption()); }
std::string ScriptedView::text(const std::string& name) const { return utf8(control(name).Text()); }

std::string ScriptedView::focus() const {
  const Control* const active = form_->ActiveControl();
  return active ? utf8(active->Name()) : "";
}

std::vector<std::string> ScriptedView::entries(const std::string& name) const {
  const Control& list = control(name);
  std::vector<std::string> texts;
  for (std::int32_t i = 0; i < list.ListCount(); ++i) texts.push_back(utf8(list.List(i)));
  return texts;
}

void ScriptedView::changed(Control& control, Property property) {
  told_.push_back(utf8(control.Name()) + describe(control, property));
}

void ScriptedView::captionChanged() { told_.push_back("caption " + caption()); }
void ScriptedView::focusMoved(Control& control) { told_.push_back("focus " + utf8(control.Name())); }
void ScriptedView::unloaded() { form_ = nullptr; }

}  // namespace testing_support

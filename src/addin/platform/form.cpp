#include "addin/platform/form.h"

#include <algorithm>

#include "addin/platform/on_error.h"
#include "addin/platform/system.h"

namespace platform {
namespace {

thread_local constinit std::int32_t modalForms = 0;  // being waited for

class ModalForm {
 public:
  explicit ModalForm(FormModality modality) : count_(modality == FormModality::Modal ? 1 : 0) { modalForms += count_; }
  ModalForm(const ModalForm&) = delete;
  ModalForm& operator=(const ModalForm&) = delete;
  ~ModalForm() { modalForms -= count_; }

 private:
  std::int32_t count_;
};

}  // namespace

// Controls ------------------------------------------------------------------------------------------------------------

Control::Control(Form& form, StringView name, ControlKind kind, Control* container)
    : form_(form), name_(name), kind_(kind), container_(container) {
  form.controls_.push_back(this);
}

void Control::tell(Property property) {
  if (FormView* const view = form_.View()) view->changed(*this, property);
}

void Control::Caption(StringView caption) {
  if (caption == caption_) return;
  caption_ = caption;
  tell(Property::Caption);
}

void Control::Text(StringView text) {
  if (maxLength_ != 0) text = text.substr(0, maxLength_);
  if (text == text_) return;
  text_ = text;
  tell(Property::Text);
  if (Change) Change();
}

void Control::Value(bool ticked) {
  if (ticked == value_) return;
  value_ = ticked;
  tell(Property::Value);
  if (Click) Click();
}

void Control::Enabled(bool enabled) {
  if (enabled == enabled_) return;
  enabled_ = enabled;
  tell(Property::Enabled);
}

void Control::Visible(bool visible) {
  if (visible == visible_) return;
  visible_ = visible;
  tell(Property::Visible);
}

void Control::BackColor(Color color) {
  if (color == backColor_) return;
  backColor_ = color;
  tell(Property::BackColor);
}

void Control::MaxLength(std::size_t units) {
  maxLength_ = units;
  tell(Property::MaxLength);
}

const String& Control::List(std::int32_t index) const {
  if (index < 0 || index >= ListCount()) raiseError(381);
  return list_[static_cast<std::size_t>(index)];
}

void Control::AddItem(StringView text) {
  if (ListCount() >= mostListEntries) raiseError(7);
  list_.emplace_back(text);
  tell(Property::List);
}

void Control::Clear() {
  list_.clear();
  listIndex_ = -1;
  tell(Property::List);
}

void Control::ListIndex(std::int32_t index) {
  if (index < -1 || index >= ListCount()) raiseError(380);
  if (index == listIndex_) return;
  listIndex_ = index;
  tell(Property::ListIndex);
  if (Click) Click();
}

void Control::SetFocus() {
  if (!IsUsable()) raiseError(5);
  form_.activeControl_ = this;
  if (FormView* const view = form_.View()) view->focusMoved(*this);
}

// A handler may unload the form and end with it, so each of these holds the form.

void Control::userClicks() {
  if (!form_.IsLoaded() || !IsUsable()) return;
  const Hold<Form> form(&form_);
  if (kind_ == ControlKind::CheckBox) {
    Value(!value_);
  } else if (Click) {
    Click();
  }
}

void Control::userEdits(StringView text) {
  if (!form_.IsLoaded() || !IsUsable() || text == text_) return;
  const Hold<Form> form(&form_);
  text_ = text;
  if (Change) Change();
}

void Control::userSelects(std::int32_t index) {
  if (!form_.IsLoaded() || !IsUsable() || index < 0 || index >= ListCount() || index == listIndex_) return;
  const Hold<Form> form(&form_);
  listIndex_ = index;
  if (Click) Click();
}

std::int32_t Control::userPresses(std::int32_t code) {
  if (!form_.IsLoaded() || !IsUsable()) return 0;
  const Hold<Form> form(&form_);
  return KeyPress ? KeyPress(code) : code;
}

// Forms ---------------------------------------------------------------------------------------------------------------

void Form::Caption(StringView caption) {
  if (caption == caption_) return;
  caption_ = caption;
  if (view_) view_->captionChanged();
}

Control* Form::Find(StringView name) const {
  const auto at = std::find_if(controls_.begin(), controls_.end(),
                               [&](const Control* control) { return sameName(control->Name(), name); });
  return at == controls_.end() ? nullptr : *at;
}

bool Form::Show(FormModality modality) {
  if (modality == FormModality::Modeless && modalForms > 0) raiseError(401);
  if (loading_) {
    if (modality == FormModality::Modeless) return true;  // it is about to be shown
    raiseError(400);  // waiting for it would keep the loading, below on the stack, from coming to its end
  }
  const Ref<Form> self(this);         // who holds the form may let go of it while it is open
  const ModalForm counted(modality);  // from before it is loaded: loading may serve messages
  try {
    if (!loaded_) {
      loaded_ = loading_ = true;
      Form_Load();
      if (!loaded_) return true;  // the owner was torn down meanwhile
      loading_ = false;
    }
    return system().ui.showForm(*this, modality);
  } catch (...) {
    if (!view_) Unload();
    throw;
  }
}

void Form::Unload() {
  if (!loaded_) return;
  const Hold<Form> self(this);
  loaded_ = loading_ = false;
  Form_Unload();
  if (view_) std::exchange(view_, nullptr)->unloaded();
  if (const auto tell = std::exchange(whenUnloaded, nullptr)) tell();
}

void Form::terminate() noexcept {
  onErrorResumeNext([&] { Unload(); });
}

}  // namespace platform

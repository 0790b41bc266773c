// Forms as data. A form is a plain object whose controls are values; its procedures change them. A setter that changes
// a value tells the view and then runs the Change or Click handler, whoever made the change. The view paints what it is
// told and hands back what the user does; it decides nothing.
#pragma once

#include <cstdint>
#include <functional>
#include <vector>

#include "addin/platform/counted.h"
#include "addin/platform/text.h"

namespace platform {

class Form;

enum class ControlKind : std::uint8_t { Label, TextBox, CheckBox, Button, DropDownList, Frame, Picture, Line };

// What a view is told has changed.
enum class Property : std::uint8_t { Caption, Text, Value, Enabled, Visible, BackColor, List, ListIndex, MaxLength };

// 0x00BBGGRR, or 0x80000000 plus the number of a system colour.
using Color = std::uint32_t;
inline constexpr Color colorWhite = 0xFFFFFF;
inline constexpr Color colorButtonFace = 0x8000000F;

// In dialog units: a quarter of the font's mean character width, an eighth of its height.
struct Place {
  std::int32_t left = 0;
  std::int32_t top = 0;
  std::int32_t width = 0;
  std::int32_t height = 0;
  friend bool operator==(const Place&, const Place&) = default;
};

// A list has 16-bit positions, and so has no room for more entries than this.
inline constexpr std::int32_t mostListEntries = 32767;

class Control {
 public:
  // `container` is a frame: its controls are placed from its corner and seen only while it is.
  Control(Form& form, StringView name, ControlKind kind, Control* container = nullptr);
  Control(const Control&) = delete;
  Control& operator=(const Control&) = delete;

  StringView Name() const { return name_; }
  ControlKind Kind() const { return kind_; }
  Control* Container() const { return container_; }

  const String& Caption() const { return caption_; }
  void Caption(StringView caption);
  const String& Text() const { return text_; }
  void Text(StringView text);  // cut at MaxLength; runs Change
  bool Value() const { return value_; }
  void Value(bool ticked);  // runs Click
  bool Enabled() const { return enabled_; }
  void Enabled(bool enabled);
  bool Visible() const { return visible_; }
  void Visible(bool visible);
  Color BackColor() const { return backColor_; }
  void BackColor(Color color);
  std::size_t MaxLength() const { return maxLength_; }
  void MaxLength(std::size_t units);  // 0: no limit

  std::int32_t ListCount() const { return static_cast<std::int32_t>(list_.size()); }
  const String& List(std::int32_t index) const;  // error 381 when there is no such entry
  void AddItem(StringView text);                 // error 7 when the list is full
  void Clear();                                  // nothing is selected then
  std::int32_t ListIndex() const { return listIndex_; }
  void ListIndex(std::int32_t index);  // -1: none; error 380 when there is no such entry; runs Click

  // Error 5 when the control cannot take the focus.
  void SetFocus();

  // Seen by the user: itself and what it lies in.
  bool IsShown() const { return visible_ && (!container_ || container_->IsShown()); }
  bool IsUsable() const { return enabled_ && IsShown(); }

  // Handlers.
  std::function<void()> Change;
  std::function<void()> Click;
  std::function<std::int32_t(std::int32_t)> KeyPress;  // takes a character code and gives the one to go on with

  // What the form's author fixes, for views to look at once.
  Place place;
  String accessibleName;    // for screen readers, where no label stands in front of the control
  StringView picture;       // the name of a picture of the product
  bool bold = false;        // a heading
  bool isDefault = false;   // the button that Enter means
  bool isCancel = false;    // the button that Esc means
  bool noMnemonic = false;  // a "&" in the caption is a "&"

  // From the view, when the user did something; it is not told of its own change. Ignored while the user could not
  // have done it.
  void userClicks();                     // a button, or a check box, which changes its value
  void userEdits(StringView text);       // the text is now this
  void userSelects(std::int32_t index);  // an entry that is there
  // The character code that the view is to go on with: 0 and 1 are not for the text box.
  std::int32_t userPresses(std::int32_t code);

 private:
  void tell(Property property);

  Form& form_;
  StringView name_;
  ControlKind kind_;
  Control* container_;
  String caption_;
  String text_;
  std::vector<String> list_;
  std::int32_t listIndex_ = -1;
  std::size_t maxLength_ = 0;
  Color backColor_ = colorButtonFace;
  bool value_ = false;
  bool enabled_ = true;
  bool visible_ = true;
};

class FormView {
 public:
  virtual void changed(Control& control, Property property) = 0;
  virtual void captionChanged() = 0;  // of the form
  virtual void focusMoved(Control& control) = 0;
  // The form has been unloaded: the view goes, and with it its reference to the form.
  virtual void unloaded() = 0;

 protected:
  ~FormView() = default;
};

enum class FormModality : std::uint8_t { Modeless, Modal };

class Form : public Counted {
 public:
  explicit Form(StringView name) : name_(name) {}

  // Loads the form when it is not loaded, and shows it or brings it to the front. A modal one is waited for until it
  // has been unloaded; false when a quit message ended the wait. Error 401 for a modeless one while a modal one is
  // being loaded or open, on this thread. While this form is being loaded, which ends in showing it: nothing when it
  // need not be waited for, error 400 when it should.
  bool Show(FormModality modality);
  // Takes the form from the screen and ends it. Nothing when it is not loaded.
  void Unload();
  bool IsLoaded() const { return loaded_; }

  StringView Name() const { return name_; }
  const String& Caption() const { return caption_; }
  void Caption(StringView caption);

  // All controls in the order of the Tab key; a label names the control that follows it.
  const std::vector<Control*>& Controls() const { return controls_; }
  Control* Find(StringView name) const;  // null when there is none of that name
  // The control that has the focus, or is to have it once the form is seen; null: the first that can.
  Control* ActiveControl() const { return activeControl_; }

  // The form's one view registers itself here while it lives.
  void SetView(FormView* view) { view_ = view; }
  FormView* View() const { return view_; }

  // From the view: the user closes the window by its own means.
  void userCloses() { Unload(); }

  // Run once, after the form has been unloaded; for who holds the form.
  std::function<void()> whenUnloaded;

  std::int32_t width = 0;  // in dialog units
  std::int32_t height = 0;

 protected:
  virtual void Form_Load() = 0;  // may unload the form
  virtual void Form_Unload() {}  // lets go of what is outside
  void terminate() noexcept override;

 private:
  friend class Control;

  StringView name_;
  String caption_;
  std::vector<Control*> controls_;
  Control* activeControl_ = nullptr;
  FormView* view_ = nullptr;
  bool loaded_ = false;
  bool loading_ = false;  // Form_Load is running, and nobody has unloaded it
};

}  // namespace platform

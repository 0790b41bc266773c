// A window with one item: what the forms of the item kinds share.
#pragma once

#include "mailclient/win/icons.h"
#include "mailclient/win/shell.h"

namespace mailclient::win {

class InspectorFrame : public Window {
 public:
  InspectorFrame(Shell& shell, InspectorPtr window);

  bool open();  // false when there is no display
  void close() { destroy(); }
  void toFront();
  const InspectorPtr& window() const { return window_; }
  // Keys of the form: true when it has served this one.
  virtual bool onKey(WPARAM key, bool control);

  static constexpr const wchar_t* className = L"Marrick mail client inspector";

 protected:
  struct Tool {
    int id;
    const wchar_t* text;
    Art art;
    const wchar_t* hint;
  };
  struct Field {
    HWND label;
    HWND control;
  };

  virtual const wchar_t* kind() const = 0;  // for the remembered size
  virtual SIZE firstSize() const { return {560, 420}; }
  virtual String title() const = 0;
  virtual std::vector<Tool> tools() const = 0;
  virtual void createFields() = 0;
  virtual void layoutBelow(const RECT& area) = 0;
  virtual bool run(int id);          // a tool; false for none of its own
  virtual void changed(int, int) {}  // a control's notification
  virtual bool isChanged() const { return false; }
  virtual void save() {}
  virtual HWND firstFocus() const = 0;

  // A label and an edit control beside it, in the next line of the form.
  Field addField(const wchar_t* label, const String& text, bool readOnly, int id);
  HWND addBody(const String& text, bool readOnly, int id);
  Shell& shell() { return shell_; }
  Message& message() { return *window_->message; }
  const Message& message() const { return *window_->message; }
  const MessagePtr& messagePtr() const { return window_->message; }
  // The item as programs see it, on its way to the Outbox.
  void sendItem();
  // Deletes the item; its windows close before anybody hears of it.
  void removeItem();
  void retitle() { SetWindowTextW(handle(), wide(title())); }
  void layout();

  LRESULT onMessage(UINT message, WPARAM wide, LPARAM extra) override;

 private:
  void createTools();
  bool mayClose();
  // One thing at a time: what is pressed while a command or a question of this window is still at work does not count.
  template <class F>
  void alone(F&& action);
  LRESULT onClose();
  LRESULT onActivate(bool active);
  LRESULT onTip(NMHDR& header);

  Shell& shell_;
  InspectorPtr window_;
  HWND toolbar_ = nullptr;
  HWND text_ = nullptr;  // the body's control
  HWND focus_ = nullptr;
  bool busy_ = false;
  std::vector<Field> fields_;
};

enum CommonTool : int {
  toolClose = 1,
  toolDelete = 2,
  toolSend = 3,
  toolSave = 4,
  toolReply = 5,
  toolReplyAll = 6,
  toolForward = 7
};

// The form that an item opens in.
std::unique_ptr<InspectorFrame> makeInspector(Shell& shell, const InspectorPtr& window);

}  // namespace mailclient::win

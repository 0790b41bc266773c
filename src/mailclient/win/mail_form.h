// The ordinary mail form, and the form of a contact.
#pragma once

#include "mailclient/win/inspector_frame.h"

namespace mailclient::win {

// A form of text fields and a body.
class FieldsForm : public InspectorFrame {
 public:
  using InspectorFrame::InspectorFrame;

 protected:
  struct Line {
    Text text;
    const wchar_t* label;
  };
  virtual std::vector<Line> lines() const = 0;
  virtual bool isReadOnly() const = 0;

  void createFields() override;
  void layoutBelow(const RECT& area) override;
  bool isChanged() const override { return !isReadOnly() && changed_; }
  void changed(int id, int what) override;
  HWND firstFocus() const override;
  // Puts the fields into the item.
  virtual void take();
  void save() override;
  void noteSaved() { changed_ = false; }

 private:
  std::vector<std::pair<Text, HWND>> edits_;
  HWND body_ = nullptr;
  bool changed_ = false;
  bool ready_ = false;
};

class MailForm final : public FieldsForm {
 public:
  using FieldsForm::FieldsForm;

 protected:
  const wchar_t* kind() const override { return L"mail"; }
  String title() const override;
  std::vector<Tool> tools() const override;
  std::vector<Line> lines() const override;
  bool isReadOnly() const override { return !message().unsent; }
  bool run(int id) override;
  void take() override;
};

class ContactForm final : public FieldsForm {
 public:
  using FieldsForm::FieldsForm;

 protected:
  const wchar_t* kind() const override { return L"contact"; }
  SIZE firstSize() const override { return {460, 380}; }
  String title() const override;
  std::vector<Tool> tools() const override;
  std::vector<Line> lines() const override;
  bool isReadOnly() const override { return false; }
  bool run(int id) override;
  void take() override;
};

}  // namespace mailclient::win

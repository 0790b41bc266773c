// The text-message form: writing one, and reading one that came.
#pragma once

#include "mailclient/win/inspector_frame.h"

namespace mailclient::win {

class TextMessageForm final : public InspectorFrame {
 public:
  using InspectorFrame::InspectorFrame;
  bool onKey(WPARAM key, bool control) override;

 protected:
  const wchar_t* kind() const override { return L"text"; }
  SIZE firstSize() const override { return {520, 360}; }
  String title() const override;
  std::vector<Tool> tools() const override;
  void createFields() override;
  void layoutBelow(const RECT& area) override;
  bool run(int id) override;
  void changed(int id, int what) override;
  bool isChanged() const override;
  void save() override;
  HWND firstFocus() const override;

 private:
  bool isRead() const { return !message().unsent; }
  void showCount();
  void showMatches();
  void hideMatches() { ShowWindow(matches_, SW_HIDE); }
  bool matchesShown() const { return matches_ && IsWindowVisible(matches_); }
  void takeMatch();
  void fillRecipient(const String& address);
  void send();
  std::vector<AddressEntry> book() const;

  HWND to_ = nullptr;
  HWND body_ = nullptr;
  HWND count_ = nullptr;
  HWND matches_ = nullptr;  // what the recipient may be
  std::vector<AddressEntry> found_;
  String savedTo_;
  String savedBody_;
  bool completing_ = false;
};

}  // namespace mailclient::win

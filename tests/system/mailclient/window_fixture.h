// A mail client with windows, driven by its command line and by its windows.
#pragma once

#include <algorithm>
#include <filesystem>
#include <memory>

#include <gtest/gtest.h>

#include "support/win32/screen.h"

class WindowTest : public testing::Test {
 protected:
  using Answer = testing_support::Answer;
  using MailClientProcess = testing_support::MailClientProcess;

  void SetUp() override {
    // No add-in is loaded unless a test says so.
    HKEY key = nullptr;
    if (RegOpenKeyExW(HKEY_CURRENT_USER, addInsKey, 0, KEY_WRITE, &key) == ERROR_SUCCESS) {
      const DWORD off = 2;
      RegSetValueExW(key, L"LoadBehavior", 0, REG_DWORD, reinterpret_cast<const BYTE*>(&off), sizeof off);
      RegCloseKey(key);
    }
    start(L"");
  }
  void TearDown() override {
    if (client_ && client_->isRunning()) client_->quit();
    client_ = nullptr;
    removeStore();
  }

  void start(const std::wstring& arguments) {
    client_ = std::make_unique<MailClientProcess>(arguments, L"--console");
    ASSERT_TRUE(client_->isReady());
    explorer_ = screen::await(processId(), screen::explorerClass);
    ASSERT_TRUE(explorer_);
  }
  void restartWithStore() {
    client_->quit();
    startWithStore();
  }
  void startWithStore() {
    wchar_t temporary[MAX_PATH];
    GetTempPathW(MAX_PATH, temporary);
    store_ = std::wstring(temporary) + L"marrick window test " + std::to_wstring(GetCurrentProcessId());
    start(L"--store \"" + store_ + L"\"");
  }
  void removeStore() {
    if (store_.empty()) return;
    std::error_code ignored;
    std::filesystem::remove_all(store_, ignored);
  }

  DWORD processId() const { return client_->processId(); }
  HWND list() const { return screen::child(explorer_, WC_LISTVIEWW); }
  HWND tree() const { return screen::child(explorer_, WC_TREEVIEWW); }
  HWND status() const { return screen::child(explorer_, STATUSCLASSNAMEW); }
  int selectedCount() const { return static_cast<int>(SendMessageW(list(), LVM_GETSELECTEDCOUNT, 0, 0)); }
  void selectFolder(const std::wstring& label, const std::wstring& name) {
    // Real keys, from the list back to the tree.
    ASSERT_TRUE(screen::toFront(explorer_));
    std::ptrdiff_t steps = 0;
    ASSERT_TRUE(screen::waitUntil([&] {
      const auto labels = screen::treeLabels(tree());
      const auto at = std::find(labels.begin(), labels.end(), label);
      steps = at - labels.begin();
      return at != labels.end();
    })) << "the counts are brought up to date a moment later";
    screen::press(VK_TAB, false, true);
    screen::press(VK_HOME);
    for (std::ptrdiff_t i = 0; i < steps; ++i) screen::press(VK_DOWN);
    ASSERT_TRUE(screen::waitUntil([&] { return screen::textOf(explorer_) == name + L" - Mail Client"; }));
  }

  // An item of the menus, by its caption.
  struct MenuItem {
    int id = 0;
    bool enabled = false;
    bool checked = false;
    bool icon = false;
  };
  MenuItem menuItem(const std::string& caption) {
    for (const std::string& line : ask("menus").lines) {
      const std::string text = field(line, "text");
      if (text.substr(0, text.find("\\u0009")) != caption) continue;
      return {std::stoi(field(line, "id")), field(line, "enabled") == "1", field(line, "checked") == "1",
              field(line, "icon") == "1"};
    }
    return {};
  }
  void choose(const std::string& caption) {
    PostMessageW(explorer_, WM_COMMAND, static_cast<WPARAM>(menuItem(caption).id), 0);
  }

  Answer ask(const std::string& command) { return client_->ask(command); }
  void item(const std::string& folder, const std::string& subject) {
    ASSERT_TRUE(ask("item \"" + folder + "\" IPM.Note \"" + subject + "\" text").ok);
  }
  std::size_t count(const std::string& folder) { return ask("list \"" + folder + "\"").lines.size(); }
  static std::string field(const std::string& line, const std::string& name) {
    return MailClientProcess::field(line, name);
  }

  static constexpr const wchar_t* addInsKey = L"Software\\Microsoft\\Office\\Outlook\\Addins\\mrktxtmsg.connect";
  std::unique_ptr<MailClientProcess> client_;
  HWND explorer_ = nullptr;
  std::wstring store_;
};

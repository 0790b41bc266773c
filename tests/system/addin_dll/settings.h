// The user's settings of the add-in, put aside while a test runs.
#pragma once

#include "addin/common/basGlobal.h"
#include "com/windows.h"
#include "win32/text.h"

namespace addin_dll_tests {

// Without this value the add-in shows its wizard at start-up.
class WizardNotDone {
 public:
  WizardNotDone() {
    DWORD size = sizeof value_;
    RegCreateKeyW(HKEY_CURRENT_USER, win32::wide(platform::String(addin::KEY_OPTIONS)), &key_);
    had_ = RegQueryValueExW(key_, L"WizardDone", nullptr, nullptr, reinterpret_cast<BYTE*>(&value_), &size) ==
           ERROR_SUCCESS;
    RegDeleteValueW(key_, L"WizardDone");
  }
  WizardNotDone(const WizardNotDone&) = delete;
  WizardNotDone& operator=(const WizardNotDone&) = delete;
  ~WizardNotDone() {
    if (had_) RegSetValueExW(key_, L"WizardDone", 0, REG_DWORD, reinterpret_cast<const BYTE*>(&value_), sizeof value_);
    RegCloseKey(key_);
  }

 private:
  HKEY key_ = nullptr;
  DWORD value_ = 0;
  bool had_ = false;
};

}  // namespace addin_dll_tests

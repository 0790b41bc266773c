#include "com/class_factory.h"
#include "sample_page/sample_page.h"

namespace sample_page {
namespace {

constexpr com::Class classes[] = {{clsidPage, &createPage}, {clsidAddIn, &createAddIn}};

}  // namespace

// Lines are ASCII.
void log(platform::StringView line) {
  wchar_t path[MAX_PATH];
  if (GetEnvironmentVariableW(logVariable, path, MAX_PATH) == 0) return;
  const HANDLE file = CreateFileW(path, FILE_APPEND_DATA, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_ALWAYS,
                                  FILE_ATTRIBUTE_NORMAL, nullptr);
  if (file == INVALID_HANDLE_VALUE) return;
  const std::string text = std::string(line.begin(), line.end()) + "\n";
  DWORD written = 0;
  WriteFile(file, text.data(), static_cast<DWORD>(text.size()), &written, nullptr);
  CloseHandle(file);
}

}  // namespace sample_page

STDAPI DllGetClassObject(REFCLSID clsid, REFIID iid, void** result) {
  return com::getClassObject(sample_page::classes, clsid, iid, result);
}
STDAPI DllCanUnloadNow() { return com::canUnloadNow(); }

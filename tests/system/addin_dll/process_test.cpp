// The add-in in processes of its own: driven by a script, and in one that ends without disconnecting it.

#include <fstream>

#include "connection.h"
#include "support/text.h"

namespace addin_dll_tests {
namespace {

using platform::String;

constexpr const wchar_t* endVariable = L"MRKTXTMSG_TEST_END";
constexpr UINT calledAfterTheEnd = 99;

// The mail client's Application in a process that ends: whoever still calls it then is found out.
class Witness final : public IDispatch {
 public:
  STDMETHODIMP QueryInterface(REFIID iid, void** result) override {
    check();
    if (iid == IID_IUnknown || iid == IID_IDispatch) {
      *result = this;
      return S_OK;
    }
    return inner->QueryInterface(iid, result);
  }
  STDMETHODIMP_(ULONG) AddRef() override { return check(), 2; }
  STDMETHODIMP_(ULONG) Release() override { return check(), 1; }
  STDMETHODIMP GetTypeInfoCount(UINT* count) override { return check(), inner->GetTypeInfoCount(count); }
  STDMETHODIMP GetTypeInfo(UINT i, LCID l, ITypeInfo** info) override {
    return check(), inner->GetTypeInfo(i, l, info);
  }
  STDMETHODIMP GetIDsOfNames(REFIID r, LPOLESTR* names, UINT count, LCID locale, DISPID* ids) override {
    return check(), inner->GetIDsOfNames(r, names, count, locale, ids);
  }
  STDMETHODIMP Invoke(DISPID id, REFIID r, LCID locale, WORD flags, DISPPARAMS* params, VARIANT* result,
                      EXCEPINFO* info, UINT* bad) override {
    return check(), inner->Invoke(id, r, locale, flags, params, result, info, bad);
  }

  IDispatch* inner = nullptr;
  bool over = false;

 private:
  void check() const {
    if (over) TerminateProcess(GetCurrentProcess(), calledAfterTheEnd);
  }
};

constinit Witness witness;

// Connects and ends, with everything still in place; 98 when it did not get that far.
[[noreturn]] void connectAndEnd() {
  OleInitialize(nullptr);
  const WizardNotDone wizardNotDone;
  PostQuitMessage(0);  // closes the wizard
  auto* const application = new platform::Ref<HostApplication>(platform::make<HostApplication>());
  const auto addInInst = platform::make<HostAddInInst>();
  witness.inner = com::exported(application->get()->object()).detach();
  auto* const library = new AddInLibrary;
  auto* const connect = new com::Ptr<com::IDTExtensibility2>(library->connect());
  (*connect)->OnConnection(&witness, 1, com::exported(addInInst.get()->object()).get(), nullptr);
  if (application->get()->listenerCount() != 1) ExitProcess(98);
  witness.over = true;
  ExitProcess(0);
}

[[maybe_unused]] const bool isChild = [] {
  if (GetEnvironmentVariableW(endVariable, nullptr, 0) == 0) return false;
  connectAndEnd();
}();

// Runs a program to its end, serving messages meanwhile. Its exit code.
DWORD run(String commandLine) {
  STARTUPINFOW startup{};
  startup.cb = sizeof startup;
  PROCESS_INFORMATION process{};
  if (!CreateProcessW(nullptr, win32::wide(commandLine), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup,
                      &process))
    return GetLastError();
  MSG message;
  while (MsgWaitForMultipleObjects(1, &process.hProcess, FALSE, INFINITE, QS_ALLINPUT) == WAIT_OBJECT_0 + 1)
    while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) DispatchMessageW(&message);
  DWORD code = 0;
  GetExitCodeProcess(process.hProcess, &code);
  CloseHandle(process.hThread);
  CloseHandle(process.hProcess);
  return code;
}

TEST(ProcessEnd, WithoutDisconnection_CrashesNothingAndCallsNobody) {
  SetEnvironmentVariableW(endVariable, L"1");
  EXPECT_EQ(run(u'"' + com::modulePath(nullptr) + u'"'), 0u);
  SetEnvironmentVariableW(endVariable, nullptr);
}

class Script : public Connection {
 protected:
  void SetUp() override {
    wchar_t folder[MAX_PATH];
    GetSystemDirectoryW(folder, MAX_PATH);
    host_ = String(reinterpret_cast<const char16_t*>(folder)) + u"\\cscript.exe";
    if (GetFileAttributesW(win32::wide(host_)) == INVALID_FILE_ATTRIBUTES)
      GTEST_SKIP() << "THERE IS NO cscript.exe HERE: that a script can drive the add-in is not tested";
    GetTempPathW(MAX_PATH, folder);
    file_ = String(reinterpret_cast<const char16_t*>(folder)) + u"mrktxtmsg_test.vbs";
    ASSERT_EQ(addIn_.registerServer(), S_OK);
  }
  void TearDown() override {
    addIn_.unregisterServer();
    DeleteFileW(win32::wide(file_));
  }

  DWORD runScript(const char* text) {
    std::ofstream(win32::wide(file_)) << text;
    return run(u'"' + host_ + u"\" //nologo \"" + file_ + u'"');
  }

  const AddInLibrary addIn_;
  String host_;
  String file_;
};

TEST_F(Script, CreatesTheAddInByItsProgIdAndCallsItsMethods) {
  EXPECT_EQ(runScript("Set addIn = CreateObject(\"mrktxtmsg.connect\")\n"
                      "addIn.OnConnection Nothing, 2, Nothing, Array()\n"
                      "addIn.OnStartupComplete Array()\n"
                      "addIn.OnAddInsUpdate Array(1, \"two\")\n"
                      "addIn.OnBeginShutdown\n"
                      "addIn.OnDisconnection 1\n"
                      "addIn.OnDisconnection 0, Array()\n"
                      "WScript.Quit 42\n"),
            42u);
  EXPECT_EQ(viewer_.take(),
            (Lines{"<==== MRKTXTMSG Version 1.0.0", "Connectmode:2",
                   "Error:91, Object variable or With block variable not set, mrktxtmsg", "OnStartupComplete",
                   "OnAddInsUpdate", "OnBeginShutdown", "OnDisconnection",
                   "OnDisconnection - RemoveMode = ext_dm_UserClosed!!!!!!!!!!!!!!!!!!!!", "OnDisconnection"}));
}

TEST_F(Script, WrongArguments_AreAnErrorOfTheScript) {
  EXPECT_EQ(runScript("Set addIn = CreateObject(\"mrktxtmsg.connect\")\n"
                      "On Error Resume Next\n"
                      "addIn.OnDisconnection \"often\"\n"
                      "If Err.Number = 13 Then WScript.Quit 42\n"
                      "WScript.Quit 1\n"),
            42u);
  EXPECT_EQ(viewer_.take(), Lines{});
}

}  // namespace
}  // namespace addin_dll_tests

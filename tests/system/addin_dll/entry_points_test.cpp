#include "addin/platform/extensibility.h"
#include "connection.h"

namespace addin_dll_tests {
namespace {

class EntryPoints : public Connection {};

TEST_F(EntryPoints, GetClassObject_OtherClassOrNoPlaceForIt_IsRefused) {
  const AddInLibrary addIn;
  void* result = &result;
  EXPECT_EQ(addIn.getClassObject(IID_IDispatch, IID_IClassFactory, &result), CLASS_E_CLASSNOTAVAILABLE);
  EXPECT_EQ(result, nullptr);
  result = &result;
  EXPECT_EQ(addIn.getClassObject(com::iidOf(win32::clsidConnect), IID_IDispatch, &result), E_NOINTERFACE);
  EXPECT_EQ(result, nullptr);
  EXPECT_EQ(addIn.getClassObject(com::iidOf(win32::clsidConnect), IID_IClassFactory, nullptr), E_POINTER);
}

TEST_F(EntryPoints, CreateInstance_InsideAnotherObject_IsRefused) {
  const AddInLibrary addIn;
  com::Ptr<IUnknown> made;
  EXPECT_EQ(addIn.factory()->CreateInstance(application().get(), IID_IUnknown, made.putVoid()), CLASS_E_NOAGGREGATION);
  EXPECT_FALSE(made);
}

TEST_F(EntryPoints, Connect_AnswersForItsThreeInterfacesAsOneObject) {
  const AddInLibrary addIn;
  const auto connect = addIn.connect();
  const auto dispatch = connect.as<IDispatch>();
  ASSERT_TRUE(dispatch);
  EXPECT_EQ(dispatch.as<IUnknown>(), connect.as<IUnknown>());
  EXPECT_EQ(dispatch.as<com::IDTExtensibility2>(), connect);
  EXPECT_FALSE(connect.as<IClassFactory>());
  EXPECT_EQ(com::guidOf(__uuidof(com::IDTExtensibility2)), platform::extensibility::iidExtensibility2);
}

TEST_F(EntryPoints, CanUnloadNow_NotWhileAnObjectAFactoryOrALockIsHeld) {
  const AddInLibrary addIn;
  EXPECT_EQ(addIn.canUnloadNow(), S_OK);
  auto factory = addIn.factory();
  EXPECT_EQ(addIn.canUnloadNow(), S_FALSE);
  factory->LockServer(TRUE);
  factory = nullptr;
  EXPECT_EQ(addIn.canUnloadNow(), S_FALSE);
  addIn.factory()->LockServer(FALSE);
  EXPECT_EQ(addIn.canUnloadNow(), S_OK);
  auto connect = addIn.connect();
  EXPECT_EQ(addIn.canUnloadNow(), S_FALSE);
  connect = nullptr;
  EXPECT_EQ(addIn.canUnloadNow(), S_OK);
}

TEST_F(EntryPoints, FreeLibrary_AfterEachOfThreeConnections_ReallyUnloads) {
  for (int round = 1; round <= 3; ++round) {
    SCOPED_TRACE(round);
    const auto objects = platform::Counted::census;
    const auto exports = com::liveExports();
    {
      const AddInLibrary addIn;
      auto connect = addIn.connect();
      EXPECT_EQ(connect->OnConnection(application().get(), 1, addInInst().get(), nullptr), S_OK);
      EXPECT_EQ(viewer_.take(), startUpLines());
      EXPECT_EQ(application_.get()->listenerCount(), 1u);
      EXPECT_EQ(connect->OnDisconnection(0, nullptr), S_OK);
      EXPECT_EQ(viewer_.take(), Lines{"OnDisconnection"});
      EXPECT_EQ(application_.get()->listenerCount(), 0u);
      connect = nullptr;
      EXPECT_EQ(addIn.canUnloadNow(), S_OK);
      EXPECT_NE(GetModuleHandleW(dllName), nullptr);
    }
    EXPECT_EQ(GetModuleHandleW(dllName), nullptr);
    EXPECT_EQ(platform::Counted::census, objects);
    EXPECT_EQ(com::liveExports(), exports);
  }
}

TEST_F(EntryPoints, FreeLibrary_AfterAnotherThreadHasUsedIt_ReallyUnloads) {
  {
    const AddInLibrary addIn;
    const auto useIt = [](void* library) -> DWORD {
      OleInitialize(nullptr);
      static_cast<const AddInLibrary*>(library)->connect()->OnStartupComplete(nullptr);
      OleUninitialize();
      return 0;
    };
    struct Function {
      static DWORD WINAPI run(void* library) { return decltype(useIt){}(library); }
    };
    const HANDLE thread = CreateThread(nullptr, 0, Function::run, const_cast<AddInLibrary*>(&addIn), 0, nullptr);
    MSG message;
    // The viewer's window, which is this thread's, gets what the other thread writes.
    while (MsgWaitForMultipleObjects(1, &thread, FALSE, INFINITE, QS_ALLINPUT) == WAIT_OBJECT_0 + 1)
      PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE);
    CloseHandle(thread);
  }
  EXPECT_EQ(GetModuleHandleW(dllName), nullptr);
}

// The limit that the add-in set itself. A 64-bit one is bigger by nature.
TEST_F(EntryPoints, File_Of32Bits_IsSmall) {
  WIN32_FILE_ATTRIBUTE_DATA file{};
  ASSERT_TRUE(GetFileAttributesExW(win32::wide(productFile(u"mrktxtmsg.dll")), GetFileExInfoStandard, &file));
  EXPECT_LT(file.nFileSizeLow, sizeof(void*) == 4 ? 700'000u : 900'000u);
}

}  // namespace
}  // namespace addin_dll_tests

// What registering writes, read back as it is stored.

#include <string>
#include <vector>

#include "addin_library.h"
#include "support/text.h"
#include "support/win32/registry_listing.h"

namespace addin_dll_tests {
namespace {

using platform::String;
using testing_support::listed;

using Lines = std::vector<std::string>;

constexpr const wchar_t* addInsKey = L"Software\\Microsoft\\Office\\Outlook\\Addins";
constexpr const wchar_t* addInKey = L"Software\\Microsoft\\Office\\Outlook\\Addins\\mrktxtmsg.connect";
constexpr const wchar_t* classKey = L"CLSID\\{E095A390-ABCC-4B19-8580-F6DA56BEFDB7}";
constexpr const wchar_t* progIdKey = L"mrktxtmsg.connect";

Lines addInEntry() {
  return {"|FriendlyName|Marrick Text Message Add-In", "|Description|Marrick Text Message Add-In for Outlook 2000",
          "|LoadBehavior|dword 3", "|CommandLineSafe|dword 0", "|RequireShutdownNotification|dword 1"};
}

Lines classEntry(const String& path) {
  return {"||Marrick Text Message Add-In", "\\InprocServer32||" + testing_support::utf8(path),
          "\\InprocServer32|ThreadingModel|Apartment", "\\ProgID||mrktxtmsg.connect"};
}

Lines progIdEntry() { return {"||Marrick Text Message Add-In", "\\CLSID||{E095A390-ABCC-4B19-8580-F6DA56BEFDB7}"}; }

Lines sorted(Lines lines) {
  std::sort(lines.begin(), lines.end());
  return lines;
}

const std::wstring userClasses = L"Software\\Classes\\";

class Registration : public testing::Test {
 protected:
  void SetUp() override { clear(); }
  void TearDown() override { clear(); }

  void clear() const {
    addIn_.unregisterServer();
    addIn_.install(false, L"user");
  }

  static void expectNothingIsRegistered() {
    EXPECT_EQ(listed(HKEY_CURRENT_USER, addInKey), Lines{"none"});
    EXPECT_EQ(listed(HKEY_CLASSES_ROOT, classKey), Lines{"none"});
    EXPECT_EQ(listed(HKEY_CLASSES_ROOT, progIdKey), Lines{"none"});
    EXPECT_EQ(listed(HKEY_CURRENT_USER, userClasses + classKey), Lines{"none"});
    EXPECT_EQ(listed(HKEY_CURRENT_USER, userClasses + progIdKey), Lines{"none"});
  }

  static void expectRegistered(HKEY root, const std::wstring& below, const String& path) {
    EXPECT_EQ(sorted(listed(HKEY_CURRENT_USER, addInKey)), sorted(addInEntry()));
    EXPECT_EQ(sorted(listed(root, below + classKey)), sorted(classEntry(path)));
    EXPECT_EQ(sorted(listed(root, below + progIdKey)), sorted(progIdEntry()));
  }

  const AddInLibrary addIn_;
};

TEST_F(Registration, RegisterServer_WritesClassAndAddInEntry) {
  EXPECT_EQ(addIn_.registerServer(), S_OK);
  expectRegistered(HKEY_CLASSES_ROOT, L"", productFile(u"mrktxtmsg.dll"));
  EXPECT_EQ(listed(HKEY_CURRENT_USER, userClasses + classKey), Lines{"none"});
  EXPECT_EQ(addIn_.unregisterServer(), S_OK);
  expectNothingIsRegistered();
}

TEST_F(Registration, RegisterServer_Twice_IsTheSameAsOnce) {
  EXPECT_EQ(addIn_.registerServer(), S_OK);
  EXPECT_EQ(addIn_.registerServer(), S_OK);
  expectRegistered(HKEY_CLASSES_ROOT, L"", productFile(u"mrktxtmsg.dll"));
}

TEST_F(Registration, Unregister_OfWhatIsNotThere_IsNoFailure) {
  EXPECT_EQ(addIn_.unregisterServer(), S_OK);
  EXPECT_EQ(addIn_.install(false, L"user"), S_OK);
  expectNothingIsRegistered();
}

TEST_F(Registration, InstallForTheUser_WritesEverythingBelowTheUsersOwnKeys) {
  EXPECT_EQ(addIn_.install(true, L"user"), S_OK);
  expectRegistered(HKEY_CURRENT_USER, userClasses, productFile(u"mrktxtmsg.dll"));
  HKEY machine = nullptr;
  const std::wstring machineClass = std::wstring(L"SOFTWARE\\Classes\\") + classKey;
  EXPECT_EQ(RegOpenKeyExW(HKEY_LOCAL_MACHINE, machineClass.c_str(), 0, KEY_READ, &machine), ERROR_FILE_NOT_FOUND);
  EXPECT_EQ(addIn_.install(false, L"USER"), S_OK);
  expectNothingIsRegistered();
}

TEST_F(Registration, Install_WithoutAText_IsForEverybody) {
  EXPECT_EQ(addIn_.install(true, nullptr), S_OK);
  expectRegistered(HKEY_CLASSES_ROOT, L"", productFile(u"mrktxtmsg.dll"));
  EXPECT_EQ(addIn_.install(false, L""), S_OK);
  expectNothingIsRegistered();
}

TEST_F(Registration, Install_WithAnyOtherText_IsRefusedAndWritesNothing) {
  EXPECT_EQ(addIn_.install(true, L"users"), E_INVALIDARG);
  expectNothingIsRegistered();
}

// The mail client writes 2 there when the user switches the add-in off.
TEST_F(Registration, RegisterServer_AfterTheAddInWasSwitchedOff_SwitchesItOn) {
  EXPECT_EQ(addIn_.registerServer(), S_OK);
  const DWORD off = 2;
  HKEY key = nullptr;
  ASSERT_EQ(RegOpenKeyExW(HKEY_CURRENT_USER, addInKey, 0, KEY_SET_VALUE, &key), ERROR_SUCCESS);
  RegSetValueExW(key, L"LoadBehavior", 0, REG_DWORD, reinterpret_cast<const BYTE*>(&off), sizeof off);
  RegCloseKey(key);
  EXPECT_EQ(addIn_.registerServer(), S_OK);
  expectRegistered(HKEY_CLASSES_ROOT, L"", productFile(u"mrktxtmsg.dll"));
}

TEST_F(Registration, Unregister_LeavesWhatOthersWrote) {
  const std::wstring neighbour = std::wstring(addInsKey) + L"\\other.addin";
  HKEY key = nullptr;
  ASSERT_EQ(RegCreateKeyW(HKEY_CURRENT_USER, neighbour.c_str(), &key), ERROR_SUCCESS);
  RegCloseKey(key);
  EXPECT_EQ(addIn_.registerServer(), S_OK);
  ASSERT_EQ(RegOpenKeyExW(HKEY_CURRENT_USER, addInKey, 0, KEY_SET_VALUE, &key), ERROR_SUCCESS);
  const DWORD value = 5;
  RegSetValueExW(key, L"Foreign", 0, REG_DWORD, reinterpret_cast<const BYTE*>(&value), sizeof value);
  RegCloseKey(key);

  EXPECT_EQ(addIn_.unregisterServer(), S_OK);
  EXPECT_EQ(listed(HKEY_CURRENT_USER, addInKey), Lines{"|Foreign|dword 5"});
  EXPECT_EQ(listed(HKEY_CURRENT_USER, neighbour), Lines{});
  EXPECT_EQ(listed(HKEY_CLASSES_ROOT, classKey), Lines{"none"});

  RegDeleteKeyW(HKEY_CURRENT_USER, addInKey);
  RegDeleteKeyW(HKEY_CURRENT_USER, neighbour.c_str());
}

// A copy of the DLL in a folder whose path is longer than MAX_PATH and outside of the code page.
class LongFolder {
 public:
  LongFolder() {
    wchar_t temp[MAX_PATH];
    GetTempPathW(MAX_PATH, temp);
    String path = u"\\\\?\\" + String(reinterpret_cast<const char16_t*>(temp)) + u"mrktxtmsg";
    for (int i = 0; i < 4; ++i) {
      path += u'\\' + String(70, u'\u65E5');
      if (i == 0) path.resize(path.find_last_of(u'\\')), path += u" " + String(70, u'\u00C5');
      CreateDirectoryW(win32::wide(path), nullptr);
      folders_.push_back(path);
    }
    file = path + u"\\mrktxtmsg.dll";
    EXPECT_TRUE(CopyFileW(win32::wide(productFile(u"mrktxtmsg.dll")), win32::wide(file), FALSE)) << GetLastError();
  }
  LongFolder(const LongFolder&) = delete;
  LongFolder& operator=(const LongFolder&) = delete;
  ~LongFolder() {
    DeleteFileW(win32::wide(file));
    for (auto folder = folders_.rbegin(); folder != folders_.rend(); ++folder) RemoveDirectoryW(win32::wide(*folder));
  }

  String file;

 private:
  std::vector<String> folders_;
};

TEST_F(Registration, RegisterServer_InALongFolderWithForeignLetters_WritesItsWholePath) {
  const LongFolder folder;
  const AddInLibrary copy(folder.file);
  const String path = copy.path();
  ASSERT_GT(path.size(), static_cast<std::size_t>(MAX_PATH));
  ASSERT_TRUE(folder.file.ends_with(path));  // with or without \\?\ before it, as the system likes
  EXPECT_EQ(copy.install(true, L"user"), S_OK);
  expectRegistered(HKEY_CURRENT_USER, userClasses, path);
}

}  // namespace
}  // namespace addin_dll_tests

// What registering writes, and that unregistering takes exactly that away.
#include "com/registration.h"

#include <algorithm>

#include <gtest/gtest.h>

#include "support/text.h"

namespace {

using com::RegistryEntry;
using com::RegistryPlace;
using com::ServerKind;
using platform::String;
using platform::StringView;
using testing_support::utf8;

constexpr StringView playground = u"Software\\MarrickRegistrationTest";
constexpr com::ClassRegistration inProcess{
    {0x5A0E6F11, 0x1D0B, 0x4B52, {0x9D, 0x10, 0x6E, 0x4C, 0x22, 0x8B, 0x31, 0x11}}, u"MarrickTest.Thing", u"A thing"};
constexpr com::ClassRegistration local{inProcess.clsid, inProcess.progId, inProcess.title, ServerKind::Local};

const wchar_t* wide(const String& s) { return reinterpret_cast<const wchar_t*>(s.c_str()); }

// Every key and value below a key, one line each; the registry's own order means nothing.
void list(HKEY root, const String& path, const String& shown, std::vector<std::string>& lines) {
  HKEY key = nullptr;
  if (RegOpenKeyExW(root, wide(path), 0, KEY_READ, &key) != ERROR_SUCCESS) return;
  for (DWORD i = 0;; ++i) {
    char16_t name[256];
    char16_t data[1024] = {};
    DWORD nameLength = 256;
    DWORD bytes = sizeof data;
    DWORD type = 0;
    if (RegEnumValueW(key, i, reinterpret_cast<wchar_t*>(name), &nameLength, nullptr, &type,
                      reinterpret_cast<BYTE*>(data), &bytes) != ERROR_SUCCESS)
      break;
    std::string text = "?";
    if (type == REG_SZ) text = "'" + utf8(StringView(data, bytes / 2 - 1)) + "'";
    if (type == REG_DWORD) text = std::to_string(DWORD{data[0]} + (DWORD{data[1]} << 16));
    lines.push_back(utf8(shown) + "[" + utf8(StringView(name, nameLength)) + "] " + text);
  }
  for (DWORD i = 0;; ++i) {
    char16_t name[256];
    if (RegEnumKeyW(key, i, reinterpret_cast<wchar_t*>(name), 256) != ERROR_SUCCESS) break;
    lines.push_back(utf8(shown + name));
    list(root, path + u"\\" + name, shown + name + u"\\", lines);
  }
  RegCloseKey(key);
}

std::vector<std::string> sorted(std::vector<std::string> lines) {
  std::sort(lines.begin(), lines.end());
  return lines;
}

class Registration : public testing::Test {
 protected:
  Registration() { RegCreateKeyW(HKEY_CURRENT_USER, wide(String(playground)), &key_); }
  ~Registration() override {
    clear();
    RegCloseKey(key_);
    RegDeleteKeyW(HKEY_CURRENT_USER, wide(String(playground)));
  }

  void clear() {
    for (int round = 0; round < 8; ++round)
      for (const std::string& line : lines()) {
        if (line.back() == '\'' || line.find('[') != std::string::npos) continue;
        RegDeleteKeyA(key_, line.c_str());  // leaves go first, in as many rounds as there are levels
      }
    for (const char* name : {"", "Number"}) RegDeleteValueA(key_, name);
  }

  static std::vector<std::string> lines() {
    std::vector<std::string> all;
    list(HKEY_CURRENT_USER, String(playground), u"", all);
    return sorted(std::move(all));
  }

  RegistryPlace place_{HKEY_CURRENT_USER, playground};
  HKEY key_ = nullptr;
};

const std::string clsid = "CLSID\\{5A0E6F11-1D0B-4B52-9D10-6E4C228B3111}";

TEST_F(Registration, InProcessServer_IsWrittenAsApartmentClass) {
  ASSERT_EQ(com::registerClass(place_, inProcess, u"C:\\Program Files\\\u00e5\\thing.dll"), S_OK);
  EXPECT_EQ(lines(), sorted({"CLSID", clsid, clsid + "\\[] 'A thing'", clsid + "\\InprocServer32",
                             clsid + "\\InprocServer32\\[] 'C:\\Program Files\\\u00e5\\thing.dll'",
                             clsid + "\\InprocServer32\\[ThreadingModel] 'Apartment'", clsid + "\\ProgID",
                             clsid + "\\ProgID\\[] 'MarrickTest.Thing'", "MarrickTest.Thing",
                             "MarrickTest.Thing\\[] 'A thing'", "MarrickTest.Thing\\CLSID",
                             "MarrickTest.Thing\\CLSID\\[] '{5A0E6F11-1D0B-4B52-9D10-6E4C228B3111}'"}));
}

TEST_F(Registration, LocalServer_IsWrittenInQuotes_AndHasNoThreadingModel) {
  ASSERT_EQ(com::registerClass(place_, local, u"C:\\Program Files\\thing.exe"), S_OK);
  const auto all = lines();
  EXPECT_NE(std::find(all.begin(), all.end(), clsid + "\\LocalServer32\\[] '\"C:\\Program Files\\thing.exe\"'"),
            all.end());
  for (const std::string& line : all) {
    EXPECT_EQ(line.find("ThreadingModel"), std::string::npos);
    EXPECT_EQ(line.find("Inproc"), std::string::npos);
  }
}

TEST_F(Registration, VeryLongPath_IsWrittenWhole) {
  const String path = u"\\\\?\\C:\\" + String(400, u'x') + u"\\thing.dll";
  ASSERT_EQ(com::registerClass(place_, inProcess, path), S_OK);
  const auto all = lines();
  EXPECT_NE(std::find(all.begin(), all.end(), clsid + "\\InprocServer32\\[] '" + utf8(path) + "'"), all.end());
}

TEST_F(Registration, Unregistering_LeavesNothing) {
  for (const auto& registration : {inProcess, local}) {
    ASSERT_EQ(com::registerClass(place_, registration, u"C:\\thing.dll"), S_OK);
    EXPECT_EQ(com::unregisterClass(place_, registration), S_OK);
    EXPECT_EQ(lines(), std::vector<std::string>{});
  }
}

TEST_F(Registration, RegisteringTwice_AndUnregisteringTwice_AreNoFailures) {
  ASSERT_EQ(com::registerClass(place_, inProcess, u"C:\\old.dll"), S_OK);
  ASSERT_EQ(com::registerClass(place_, inProcess, u"C:\\new.dll"), S_OK);
  EXPECT_EQ(com::unregisterClass(place_, inProcess), S_OK);
  EXPECT_EQ(com::unregisterClass(place_, inProcess), S_OK);
  EXPECT_EQ(lines(), std::vector<std::string>{});
}

TEST_F(Registration, Unregistering_KeepsWhatOthersWrote) {
  const std::vector<RegistryEntry> others{{u"CLSID\\{OTHER}", u"", String(u"other")},
                                          {u"MarrickTest.Thing\\shell", u"Number", std::uint32_t{7}}};
  ASSERT_EQ(com::writeEntries(place_, others), S_OK);
  ASSERT_EQ(com::registerClass(place_, inProcess, u"C:\\thing.dll"), S_OK);
  EXPECT_EQ(com::unregisterClass(place_, inProcess), S_OK);
  EXPECT_EQ(lines(), sorted({"CLSID", "CLSID\\{OTHER}", "CLSID\\{OTHER}\\[] 'other'", "MarrickTest.Thing",
                             "MarrickTest.Thing\\shell", "MarrickTest.Thing\\shell\\[Number] 7"}));
}

TEST_F(Registration, ProgIdThatNamesAnotherClassByNow_IsLeftAlone) {
  ASSERT_EQ(com::registerClass(place_, inProcess, u"C:\\thing.dll"), S_OK);
  const std::vector<RegistryEntry> newer{{u"MarrickTest.Thing\\CLSID", u"", String(u"{NEWER}")}};
  ASSERT_EQ(com::writeEntries(place_, newer), S_OK);
  EXPECT_EQ(com::unregisterClass(place_, inProcess), S_OK);
  EXPECT_EQ(lines(), sorted({"MarrickTest.Thing", "MarrickTest.Thing\\[] 'A thing'", "MarrickTest.Thing\\CLSID",
                             "MarrickTest.Thing\\CLSID\\[] '{NEWER}'"}));
}

TEST_F(Registration, Entries_AreWrittenAndRemovedByName) {
  const std::vector<RegistryEntry> entries{{u"A\\B", u"Text", String(u"")}, {u"A\\B", u"Number", 3u}};
  ASSERT_EQ(com::writeEntries(place_, entries), S_OK);
  EXPECT_EQ(lines(), sorted({"A", "A\\B", "A\\B\\[Text] ''", "A\\B\\[Number] 3"}));
  EXPECT_EQ(com::removeEntries(place_, std::span(entries).first(1)), S_OK);
  EXPECT_EQ(lines(), sorted({"A", "A\\B", "A\\B\\[Number] 3"}));
  EXPECT_EQ(com::removeEntries(place_, entries), S_OK);
  EXPECT_EQ(lines(), std::vector<std::string>{});
}

TEST_F(Registration, PlaceThatCannotBeWritten_IsAFailure) {
  const RegistryPlace nowhere{reinterpret_cast<HKEY>(std::uintptr_t{0x1234}), u""};
  const std::vector<RegistryEntry> entries{{u"A", u"", String(u"x")}};
  EXPECT_TRUE(FAILED(com::writeEntries(nowhere, entries)));
  EXPECT_TRUE(FAILED(com::removeEntries(nowhere, entries)));
  EXPECT_TRUE(FAILED(com::registerClass(nowhere, inProcess, u"x")));
  EXPECT_TRUE(FAILED(com::unregisterClass(nowhere, inProcess)));
}

TEST(ModulePath, OfTheProgram_IsItsFullPath) {
  const String path = com::modulePath(nullptr);
  EXPECT_EQ(path.substr(1, 2), u":\\");
  EXPECT_EQ(path.substr(path.size() - 4), u".exe");
  EXPECT_EQ(GetFileAttributesW(wide(path)) & FILE_ATTRIBUTE_DIRECTORY, 0u);
}

}  // namespace

// The setup wizard of the real add-in: shown inside OnConnection, used by somebody at the screen, with the registry's
// bytes afterwards.

#include <algorithm>
#include <fstream>
#include <functional>

#include "connection.h"
#include "support/text.h"
#include "support/win32/dialog_user.h"
#include "support/win32/product.h"
#include "support/win32/registry_listing.h"
#include "unit/win32_system/test_window.h"

namespace addin_dll_tests {
namespace {

using testing_support::DialogUser;
using testing_support::waitUntil;
using win32_tests::TestWindow;
using win32_tests::Thread;

constexpr const wchar_t* title = L"Marrick Text Message Add-In for Outlook 2000";
constexpr const wchar_t* optionsKey = L"Software\\Microsoft\\Office\\9.0\\Outlook\\Options\\TextMessage";
constexpr const wchar_t* installationKey = L"Software\\Marrick\\TextMessageAddIn";
constexpr const wchar_t* windowsKey = L"SOFTWARE\\Microsoft\\Windows NT\\CurrentVersion";
constexpr const wchar_t* ownNumber = L"I want to use a different number.";
constexpr const wchar_t* polling = L"I want to send and receive text messages every";
constexpr const wchar_t* removing = L"Remove text messages from the SIM card when retrieved in the Inbox.";

// A text value that is what it was when the test ends.
class TextValue {
 public:
  TextValue(HKEY root, const wchar_t* path, const wchar_t* name) : name_(name) {
    RegCreateKeyW(root, path, &key_);
    DWORD size = sizeof before_;
    had_ = RegQueryValueExA(key_, narrow().c_str(), nullptr, nullptr, reinterpret_cast<BYTE*>(before_), &size) == 0;
  }
  TextValue(const TextValue&) = delete;
  TextValue& operator=(const TextValue&) = delete;
  ~TextValue() {
    if (had_)
      set(before_);
    else
      RegDeleteValueW(key_, name_);
    RegCloseKey(key_);
  }
  void set(const std::string& text) {
    RegSetValueExA(key_, narrow().c_str(), 0, REG_SZ, reinterpret_cast<const BYTE*>(text.c_str()),
                   static_cast<DWORD>(text.size() + 1));
  }
  void remove() { RegDeleteValueW(key_, name_); }

 private:
  std::string narrow() const {
    const std::wstring name(name_);
    return {name.begin(), name.end()};
  }
  const wchar_t* name_;
  HKEY key_ = nullptr;
  char before_[1024] = "";
  bool had_ = false;
};

class Wizard : public Connection {
 protected:
  Wizard() {
    takeQuit();
    testing_support::removeAllOptions();
    owner_.set("Registered Owner");
    wchar_t folder[MAX_PATH];
    GetTempPathW(MAX_PATH, folder);
    listFile_ = std::wstring(folder) + L"mrktxtmsg service centres.txt";
    writeList("Choose one\r\nAs stored on the SIM card ()\r\n\"North, Sweden (+46 70 174 06 05)\"\r\n");
    ShowWindow(mailClient_.handle(), SW_SHOW);
    SetForegroundWindow(mailClient_.handle());
  }
  ~Wizard() override {
    DeleteFileW(listFile_.c_str());
    testing_support::removeAllOptions();
  }

  void writeList(const std::string& text) {
    std::ofstream(listFile_.c_str(), std::ios::binary) << text;
    listPath_.set({listFile_.begin(), listFile_.end()});
  }

  // Connects; the wizard is used and, when that has left it open, closed. Then disconnects.
  void connectWhile(const std::function<void(const DialogUser&)>& use) {
    {
      const Thread user([&] {
        const DialogUser dialog(title);
        if (!dialog.isThere()) {
          ADD_FAILURE() << "no wizard";
          return;
        }
        EXPECT_FALSE(IsWindowEnabled(mailClient_.handle()));
        use(dialog);
        if (dialog.isThere()) dialog.closeByMenu();
        EXPECT_TRUE(dialog.hasGone());
      });
      EXPECT_EQ(connect_->OnConnection(application().get(), 1, addInInst().get(), nullptr), S_OK);
    }
    EXPECT_TRUE(IsWindowEnabled(mailClient_.handle()));
    EXPECT_EQ(connect_->OnDisconnection(0, nullptr), S_OK);
  }

  // Type and bytes, as the registry holds them: "1:text", "4:" and eight hexadecimal digits, "none".
  static std::string stored(const wchar_t* name) {
    HKEY key = nullptr;
    if (RegOpenKeyW(HKEY_CURRENT_USER, optionsKey, &key) != ERROR_SUCCESS) return "none";
    char bytes[256];
    DWORD size = sizeof bytes;
    DWORD type = 0;
    const std::wstring wide(name);
    const std::string narrow(wide.begin(), wide.end());
    const LSTATUS status = RegQueryValueExA(key, narrow.c_str(), nullptr, &type, reinterpret_cast<BYTE*>(bytes), &size);
    RegCloseKey(key);
    if (status != ERROR_SUCCESS) return "none";
    if (type == REG_SZ) return "1:" + std::string(bytes, size);
    std::string digits;
    for (DWORD i = 0; i < size; ++i) {
      constexpr char hex[] = "0123456789abcdef";
      digits += {hex[static_cast<unsigned char>(bytes[i]) >> 4], hex[bytes[i] & 15]};
    }
    return std::to_string(type) + ":" + digits;
  }

  static void fillLastPage(const DialogUser& dialog) {
    EXPECT_TRUE(waitUntil([&] { return dialog.edit(1) != nullptr; }));
    EXPECT_TRUE(dialog.waitForFocus(dialog.edit(0)));
    for (const wchar_t c : std::wstring(L"+4670")) SendMessageW(dialog.edit(1), WM_CHAR, c, 1);
    EXPECT_TRUE(dialog.waitFor(L"Finish"));
  }

  TestWindow mailClient_;
  TextValue owner_{HKEY_LOCAL_MACHINE, windowsKey, L"RegisteredOwner"};
  TextValue listPath_{HKEY_LOCAL_MACHINE, installationKey, L"SMSCPath"};
  std::wstring listFile_;
  const AddInLibrary addIn_;
  com::Ptr<com::IDTExtensibility2> connect_ = addIn_.connect();
};

TEST_F(Wizard, FirstRun_EveryPageForwardsAndBackwards_ThenFinish) {
  connectWhile([&](const DialogUser& dialog) {
    EXPECT_EQ(GetWindow(dialog.dialog(), GW_OWNER), mailClient_.handle());
    EXPECT_TRUE(dialog.waitFor(L"< Back", false));
    EXPECT_TRUE(dialog.click(L"Next >"));
    const HWND list = dialog.list();
    EXPECT_EQ(SendMessageW(list, CB_GETCOUNT, 0, 0), 3);
    EXPECT_EQ(SendMessageW(list, CB_GETCURSEL, 0, 0), 1);
    EXPECT_FALSE(DialogUser::isTicked(dialog.button(ownNumber)));
    dialog.select(list, 2);
    EXPECT_TRUE(dialog.click(L"Next >"));
    EXPECT_TRUE(DialogUser::isTicked(dialog.button(polling)));
    EXPECT_EQ(DialogUser::textOf(dialog.edit()), L"2");
    EXPECT_FALSE(DialogUser::isTicked(dialog.button(removing)));
    EXPECT_TRUE(dialog.click(removing));
    EXPECT_TRUE(dialog.click(L"Next >"));
    EXPECT_TRUE(dialog.waitFor(L"Finish", false));
    EXPECT_EQ(DialogUser::textOf(dialog.edit(0)), L"Registered Owner");
    EXPECT_EQ(DialogUser::textOf(dialog.edit(1)), L"");
    for (int i = 0; i < 3; ++i) EXPECT_TRUE(dialog.click(L"< Back"));
    EXPECT_TRUE(dialog.waitFor(L"< Back", false));
    for (int i = 0; i < 3; ++i) EXPECT_TRUE(dialog.click(L"Next >"));
    fillLastPage(dialog);
    EXPECT_TRUE(dialog.click(L"Finish"));
    EXPECT_TRUE(dialog.hasGone());
  });
  EXPECT_EQ(stored(L"SCAddress"), "1:North, Sweden (+46 70 174 06 05)");
  EXPECT_EQ(stored(L"SCAddress_Own"), "1:()");
  EXPECT_EQ(stored(L"SCAddress_UseOwn"), "4:00000000");
  EXPECT_EQ(stored(L"SendReceive_UseAuto"), "4:01000000");
  EXPECT_EQ(stored(L"SendReceive_AutoIntervall"), "4:02000000");
  EXPECT_EQ(stored(L"SendReceive_AutoRemove"), "4:01000000");
  EXPECT_EQ(stored(L"My_FullName"), "1:Registered Owner");
  EXPECT_EQ(stored(L"My_PhoneNo"), "1:+4670");
  EXPECT_EQ(stored(L"WizardDone"), "4:01000000");
}

TEST_F(Wizard, OwnNumberAndPollingOff_AreStoredAndTheNextStartAsksNoMore) {
  connectWhile([&](const DialogUser& dialog) {
    EXPECT_TRUE(dialog.click(L"Next >"));
    EXPECT_TRUE(dialog.click(ownNumber));
    EXPECT_TRUE(dialog.waitFor(L"Next >", false));
    EXPECT_FALSE(IsWindowEnabled(dialog.list()));
    for (const wchar_t c : std::wstring(L"+46 1")) SendMessageW(dialog.edit(), WM_CHAR, c, 1);
    EXPECT_TRUE(dialog.click(L"Next >"));
    EXPECT_TRUE(dialog.click(polling));
    EXPECT_FALSE(IsWindowEnabled(dialog.edit()));
    EXPECT_TRUE(dialog.click(L"Next >"));
    fillLastPage(dialog);
    EXPECT_TRUE(dialog.click(L"Finish"));
  });
  EXPECT_EQ(stored(L"SCAddress_Own"), "1:(+46 1)");
  EXPECT_EQ(stored(L"SCAddress_UseOwn"), "4:01000000");
  EXPECT_EQ(stored(L"SendReceive_UseAuto"), "4:00000000");
  EXPECT_EQ(connect_->OnConnection(application().get(), 1, addInInst().get(), nullptr), S_OK);  // would wait for it
  EXPECT_EQ(FindWindowW(L"#32770", title), nullptr);
  EXPECT_EQ(connect_->OnDisconnection(0, nullptr), S_OK);
}

TEST_F(Wizard, NoList_WantsAnOwnNumber) {
  listPath_.remove();
  connectWhile([&](const DialogUser& dialog) {
    EXPECT_TRUE(dialog.click(L"Next >"));
    EXPECT_TRUE(dialog.waitFor(L"Next >", false));
    EXPECT_TRUE(DialogUser::isTicked(dialog.button(ownNumber)));
    EXPECT_FALSE(IsWindowEnabled(dialog.button(ownNumber)));
    EXPECT_FALSE(IsWindowEnabled(dialog.list()));
    EXPECT_TRUE(dialog.waitForFocus(dialog.edit()));
    dialog.type(L"+");
    EXPECT_TRUE(dialog.waitFor(L"Next >"));
  });
  EXPECT_EQ(stored(L"WizardDone"), "none");
}

TEST_F(Wizard, LettersInTheNumberFields_NeverAppear) {
  connectWhile([](const DialogUser& dialog) {
    for (int i = 0; i < 2; ++i) EXPECT_TRUE(dialog.click(L"Next >"));
    const HWND interval = dialog.edit();
    SendMessageW(interval, EM_SETSEL, 0, -1);
    for (const wchar_t c : std::wstring(L"a1-2b345")) SendMessageW(interval, WM_CHAR, c, 1);
    EXPECT_EQ(DialogUser::textOf(interval), L"123");
    EXPECT_TRUE(dialog.click(L"Next >"));
    const HWND phone = dialog.edit(1);
    for (const wchar_t c : std::wstring(L"a +4 b6 +x7")) SendMessageW(phone, WM_CHAR, c, 1);
    EXPECT_EQ(DialogUser::textOf(phone), L"+46+7");
  });
}

TEST_F(Wizard, LeftOnAnyPage_ByCancelOrByItsMenu_StoresNothing) {
  testing_support::setOption(L"My_PhoneNo", L"+46");
  for (int page = 1; page <= 4; ++page) {
    for (const bool byMenu : {false, true}) {
      connectWhile([&](const DialogUser& dialog) {
        for (int at = 1; at < page; ++at) EXPECT_TRUE(dialog.click(L"Next >"));
        if (byMenu)
          dialog.closeByMenu();
        else
          EXPECT_TRUE(dialog.click(L"Cancel"));
        EXPECT_TRUE(dialog.hasGone());
      });
      ASSERT_EQ(testing_support::listed(HKEY_CURRENT_USER, optionsKey), Lines{"|My_PhoneNo|+46"}) << page << byMenu;
    }
  }
}

// Of every type that a setting cannot have.
TEST_F(Wizard, ValuesOfOtherTypes_CountAsMissingAndAreWrittenAnew) {
  const auto bytes = [](std::initializer_list<unsigned char> values) {
    std::vector<std::byte> data;
    for (const unsigned char value : values) data.push_back(std::byte{value});
    return data;
  };
  using testing_support::setOption;
  setOption(L"SCAddress", REG_MULTI_SZ, bytes({'N', 0, 0, 0, 0, 0}));
  setOption(L"SCAddress_Own", REG_BINARY, bytes({'(', 0, '7', 0, ')', 0, 0, 0}));
  setOption(L"SCAddress_UseOwn", REG_QWORD, bytes({1, 0, 0, 0, 0, 0, 0, 0}));
  setOption(L"SendReceive_UseAuto", REG_EXPAND_SZ, bytes({'0', 0, 0, 0}));
  setOption(L"SendReceive_AutoIntervall", REG_BINARY, bytes({9, 0, 0, 0}));
  setOption(L"SendReceive_AutoRemove", REG_DWORD_BIG_ENDIAN, bytes({0, 0, 0, 1}));
  setOption(L"My_FullName", REG_NONE, {});
  setOption(L"My_PhoneNo", REG_LINK, bytes({'7', 0, 0, 0}));
  connectWhile([](const DialogUser& dialog) {
    EXPECT_TRUE(dialog.click(L"Next >"));
    EXPECT_EQ(SendMessageW(dialog.list(), CB_GETCURSEL, 0, 0), 1);
    EXPECT_FALSE(DialogUser::isTicked(dialog.button(ownNumber)));
    EXPECT_EQ(DialogUser::textOf(dialog.edit()), L"");
    EXPECT_TRUE(dialog.click(L"Next >"));
    EXPECT_TRUE(DialogUser::isTicked(dialog.button(polling)));
    EXPECT_EQ(DialogUser::textOf(dialog.edit()), L"2");
    EXPECT_FALSE(DialogUser::isTicked(dialog.button(removing)));
    EXPECT_TRUE(dialog.click(L"Next >"));
    EXPECT_EQ(DialogUser::textOf(dialog.edit(0)), L"Registered Owner");
    EXPECT_EQ(DialogUser::textOf(dialog.edit(1)), L"");
    fillLastPage(dialog);
    const HWND finish = dialog.button(L"Finish");
    PostMessageW(finish, BM_CLICK, 0, 0);  // pressed twice
    PostMessageW(finish, BM_CLICK, 0, 0);
    EXPECT_TRUE(dialog.hasGone());
  });
  EXPECT_EQ(testing_support::listed(HKEY_CURRENT_USER, optionsKey).size(), 9u);
  EXPECT_EQ(stored(L"SCAddress"), "1:As stored on the SIM card ()");
  EXPECT_EQ(stored(L"SCAddress_Own"), "1:()");
  EXPECT_EQ(stored(L"SCAddress_UseOwn"), "4:00000000");
  EXPECT_EQ(stored(L"SendReceive_UseAuto"), "4:01000000");
  EXPECT_EQ(stored(L"SendReceive_AutoIntervall"), "4:02000000");
  EXPECT_EQ(stored(L"SendReceive_AutoRemove"), "4:00000000");
  EXPECT_EQ(stored(L"My_FullName"), "1:Registered Owner");
  EXPECT_EQ(stored(L"My_PhoneNo"), "1:+4670");
  EXPECT_EQ(stored(L"WizardDone"), "4:01000000");
}

TEST_F(Wizard, ListThatIsNoList_OpensInTimeWithWhatCanBeRead) {
  const auto entries = [this](int expected, int longest = 0) {
    const std::uint32_t start = testing_support::ticksNow();
    connectWhile([&](const DialogUser& dialog) {
      EXPECT_TRUE(dialog.click(L"Next >"));
      EXPECT_TRUE(waitUntil([&] { return dialog.list() != nullptr; }));
      EXPECT_EQ(SendMessageW(dialog.list(), CB_GETCOUNT, 0, 0), expected);
      EXPECT_EQ(IsWindowEnabled(dialog.list()) != FALSE, expected > 0);
      if (longest != 0) {
        EXPECT_EQ(SendMessageW(dialog.list(), CB_GETLBTEXTLEN, 0, 0), longest);
      }
      EXPECT_TRUE(dialog.click(L"Cancel"));
    });
    EXPECT_LT(testing_support::ticksNow() - start, 10000u);
  };
  writeList("");
  entries(0);
  DeleteFileW(listFile_.c_str());
  entries(0);
  listPath_.set("C:\\windows");  // a folder
  entries(0);
  listPath_.set("");
  entries(0);

  std::string binary(300'000, '\0');
  for (std::size_t i = 0; i < binary.size(); ++i) binary[i] = static_cast<char>(i * 7 % 256);  // every value in turn
  std::replace(binary.begin(), binary.end(), '\x1A', '\0');                                    // not the end
  const auto isEnd = [](char c) { return c == ',' || c == '\r' || c == '\n'; };
  writeList(binary);
  entries(static_cast<int>(std::count_if(binary.begin(), binary.end(), isEnd)) + 1);
  writeList(std::string(10u << 20, 'x'));  // without a line end
  entries(1, 1000);                        // nobody reads more
}

TEST_F(Wizard, MailClientDisconnectsWhileItIsOpen_NothingIsStartedAndNothingIsLeft) {
  const TestWindow shutDown([&](UINT message, WPARAM, LPARAM) -> std::optional<LRESULT> {
    if (message != WM_APP) return std::nullopt;
    EXPECT_EQ(connect_->OnDisconnection(0, nullptr), S_OK);
    return 0;
  });
  {
    const Thread user([&] {
      const DialogUser dialog(title);
      EXPECT_TRUE(dialog.isThere());
      SendMessageW(shutDown.handle(), WM_APP, 0, 0);
      EXPECT_TRUE(dialog.hasGone());
    });
    EXPECT_EQ(connect_->OnConnection(application().get(), 1, addInInst().get(), nullptr), S_OK);
  }
  Lines expected = startUpLines();
  expected.insert(expected.end() - 1, "OnDisconnection");
  EXPECT_EQ(viewer_.take(), expected);
  EXPECT_EQ(application_.get()->listenerCount(), 0u);
  EXPECT_TRUE(IsWindowEnabled(mailClient_.handle()));
  connect_ = nullptr;
  EXPECT_EQ(addIn_.canUnloadNow(), S_OK);
}

TEST_F(Wizard, ProgramEndsWhileItIsOpen_NothingIsStarted) {
  const DWORD self = GetCurrentThreadId();
  {
    const Thread user([&] {
      const DialogUser dialog(title);
      PostThreadMessageW(self, WM_QUIT, 0, 0);
      EXPECT_TRUE(dialog.hasGone());
    });
    EXPECT_EQ(connect_->OnConnection(application().get(), 1, addInInst().get(), nullptr), S_OK);
  }
  EXPECT_EQ(viewer_.take(), startUpLines());
}

}  // namespace
}  // namespace addin_dll_tests

// The dialogs: who waits for them, how the keyboard reaches them, and how they end.

#include "form_fixture.h"

namespace win32_tests {
namespace {

class FormWindow : public FormFixture {};

bool isBefore(HWND a, HWND b) {
  for (HWND next = a; next; next = GetWindow(next, GW_HWNDNEXT))
    if (next == b) return true;
  return false;
}

// Modal and modeless --------------------------------------------------------------------------------------------------

TEST_F(FormWindow, Modal_BelongsToTheActiveWindowWhichWaits) {
  const TestWindow other;
  ShowWindow(other.handle(), SW_SHOWNOACTIVATE);
  SetActiveWindow(mailClient.handle());
  EXPECT_TRUE(modal([&](const DialogUser& user) {
    EXPECT_EQ(GetWindow(user.dialog(), GW_OWNER), mailClient.handle());
    EXPECT_FALSE(IsWindowEnabled(mailClient.handle()));
    EXPECT_FALSE(IsWindowEnabled(other.handle()));
    EXPECT_TRUE(user.click(L"Cancel"));
  }));
  EXPECT_TRUE(IsWindowEnabled(mailClient.handle()));
  EXPECT_TRUE(IsWindowEnabled(other.handle()));
  EXPECT_EQ(GetActiveWindow(), mailClient.handle());
}

TEST_F(FormWindow, Modal_WithoutAnActiveWindow_BelongsToTheFirstOne) {
  SetActiveWindow(nullptr);
  EXPECT_TRUE(modal([&](const DialogUser& user) {
    EXPECT_EQ(GetWindow(user.dialog(), GW_OWNER), mailClient.handle());
    EXPECT_FALSE(IsWindowEnabled(mailClient.handle()));
  }));
}

TEST_F(FormWindow, Modal_WithoutAnyWindow_IsShownAllTheSame) {
  ShowWindow(mailClient.handle(), SW_HIDE);
  EXPECT_TRUE(modal([&](const DialogUser& user) { EXPECT_EQ(GetWindow(user.dialog(), GW_OWNER), nullptr); }));
}

TEST_F(FormWindow, Modal_DisabledWindows_StayDisabled) {
  const TestWindow other;
  ShowWindow(other.handle(), SW_SHOWNOACTIVATE);
  EnableWindow(other.handle(), FALSE);
  EXPECT_TRUE(modal([](const DialogUser&) {}));
  EXPECT_FALSE(IsWindowEnabled(other.handle()));
}

TEST_F(FormWindow, Modeless_LeavesTheOthersAlone) {
  modeless([&](const DialogUser&) { EXPECT_TRUE(IsWindowEnabled(mailClient.handle())); });
}

TEST_F(FormWindow, ShowAgain_BringsTheSameWindowToTheFront) {
  const auto about = platform::make<addin::frmabout>();
  wizard->Show(FormModality::Modeless);
  const HWND dialog = FindWindowW(L"#32770", wizardTitle);
  about->Show(FormModality::Modeless);
  EXPECT_NE(GetActiveWindow(), dialog);
  wizard->Show(FormModality::Modeless);
  EXPECT_EQ(GetActiveWindow(), dialog);
  EXPECT_EQ(FindWindowExW(nullptr, dialog, L"#32770", wizardTitle), nullptr);
  about->Unload();
}

TEST_F(FormWindow, Placed_OverTheMiddleOfItsOwnerAndOnTheScreen) {
  SetWindowPos(mailClient.handle(), nullptr, 40, 40, 900, 700, SWP_NOZORDER);
  SetActiveWindow(mailClient.handle());
  wizard->Show(FormModality::Modeless);
  RECT place{};
  GetWindowRect(FindWindowW(L"#32770", wizardTitle), &place);
  EXPECT_NEAR((place.left + place.right) / 2, 490, 1);
  EXPECT_NEAR((place.top + place.bottom) / 2, 390, 1);
  wizard->Unload();
  wizard = platform::make<addin::frmwizard>();
  SetWindowPos(mailClient.handle(), nullptr, 0, 0, 60, 60, SWP_NOZORDER);
  wizard->Show(FormModality::Modeless);
  GetWindowRect(FindWindowW(L"#32770", wizardTitle), &place);
  EXPECT_GE(place.left, 0);
  EXPECT_GE(place.top, 0);
}

// The keyboard --------------------------------------------------------------------------------------------------------

// The same road for both: modal in our own loop, modeless in one that knows nothing of dialogs.
void walkByKeyboard(const DialogUser& user) {
  EXPECT_TRUE(user.waitForFocus(user.button(L"Next >")));  // Back is disabled
  user.press(VK_RETURN);
  EXPECT_TRUE(waitUntil([&] { return user.list() != nullptr; }));
  EXPECT_TRUE(user.waitForFocus(user.list()));
  user.press(VK_TAB);
  EXPECT_TRUE(user.waitForFocus(user.button(L"I want to use a different number.")));
  user.pressWithAlt(L's');  // Service Centre Number
  EXPECT_TRUE(user.waitForFocus(user.list()));
  user.pressWithAlt(L'n');
  EXPECT_TRUE(waitUntil([&] { return user.button(L"I want to send and receive text messages every") != nullptr; }));
  EXPECT_TRUE(user.waitForFocus(user.button(L"I want to send and receive text messages every")));
  user.press(VK_SPACE);
  EXPECT_TRUE(waitUntil([&] { return !IsWindowEnabled(user.edit()); }));
  user.press(VK_RETURN);
  EXPECT_TRUE(user.waitFor(L"Finish", false));
  EXPECT_TRUE(user.waitForFocus(user.edit(0)));
  user.type(L"Anna");
  user.press(VK_TAB);
  EXPECT_TRUE(user.waitForFocus(user.edit(1)));
  user.type(L"a+4 6x70");
  EXPECT_TRUE(user.waitFor(L"Finish"));
  EXPECT_TRUE(waitUntil([&] { return DialogUser::textOf(user.edit(1)) == L"+4670"; }));
  user.press(VK_RETURN);
  EXPECT_TRUE(user.hasGone());
}

TEST_F(FormWindow, Keyboard_FromTheFirstPageToFinish) {
  for (const bool isModal : {true, false}) {
    native.registry.deleteKey(platform::rootCurrentUser, optionsKey);
    if (isModal)
      modal(walkByKeyboard);
    else
      modeless(walkByKeyboard);
    const auto stored = [&](const char* name) {
      const auto value = native.registry.value(platform::rootCurrentUser, optionsKey, name);
      return value ? value->bytes : "none";
    };
    EXPECT_EQ(stored("My_FullName"), "Anna");
    EXPECT_EQ(stored("My_PhoneNo"), "+4670");
    EXPECT_EQ(stored("SendReceive_UseAuto"), std::string(4, '\0'));
    EXPECT_EQ(stored("SCAddress"), "As stored on the SIM card ()");
    EXPECT_EQ(stored("WizardDone"), std::string("\1\0\0\0", 4));
    wizard = platform::make<addin::frmwizard>();
  }
}

TEST_F(FormWindow, Esc_IsCancelWhereverTheFocusIs) {
  for (int page = 1; page <= 3; ++page) {
    modeless([&](const DialogUser& user) {
      for (int at = 1; at < page; ++at) user.click(L"Next >");
      user.press(VK_ESCAPE);
      EXPECT_TRUE(user.hasGone()) << page;
    });
    EXPECT_FALSE(wizard->IsLoaded());
    wizard = platform::make<addin::frmwizard>();
  }
}

TEST_F(FormWindow, Enter_OnTheAboutBox_ClosesIt) {
  const auto about = platform::make<addin::frmabout>();
  for (const WORD key : {WORD{VK_RETURN}, WORD{VK_ESCAPE}, WORD{VK_SPACE}}) {
    modeless(*about, aboutTitle, [&](const DialogUser& user) {
      EXPECT_TRUE(user.waitForFocus(user.button(L"OK")));
      user.press(key);
      EXPECT_TRUE(user.hasGone());
    });
    EXPECT_FALSE(about->IsLoaded());
  }
}

TEST_F(FormWindow, TwoModelessForms_EachHasItsOwnKeys) {
  const auto pressEsc = [](const DialogUser& user) {
    user.press(VK_ESCAPE);
    EXPECT_TRUE(user.hasGone());
  };
  const auto about = platform::make<addin::frmabout>();
  wizard->Show(FormModality::Modeless);
  modeless(*about, aboutTitle, pressEsc);
  EXPECT_FALSE(about->IsLoaded());
  EXPECT_TRUE(wizard->IsLoaded());
  modeless(pressEsc);
}

TEST_F(FormWindow, BackToTheFirstPage_GivesTheFocusToNext) {
  modeless([](const DialogUser& user) {
    EXPECT_TRUE(user.click(L"Next >"));
    EXPECT_TRUE(user.waitFor(L"< Back"));
    SendMessageW(user.dialog(), WM_NEXTDLGCTL, reinterpret_cast<WPARAM>(user.button(L"< Back")), TRUE);
    EXPECT_TRUE(user.waitForFocus(user.button(L"< Back")));
    user.press(VK_RETURN);
    EXPECT_TRUE(user.waitFor(L"< Back", false));
    EXPECT_TRUE(user.waitForFocus(user.button(L"Next >")));  // a disabled button takes no keys
  });
}

// Text boxes ----------------------------------------------------------------------------------------------------------

void putOnClipboard(const std::wstring& text) {
  const HGLOBAL block = GlobalAlloc(GMEM_MOVEABLE, (text.size() + 1) * sizeof(wchar_t));
  memcpy(GlobalLock(block), text.c_str(), (text.size() + 1) * sizeof(wchar_t));
  GlobalUnlock(block);
  ASSERT_TRUE(OpenClipboard(nullptr));
  EmptyClipboard();
  SetClipboardData(CF_UNICODETEXT, block);
  CloseClipboard();
}

void goToPage4(const DialogUser& user) {
  for (int i = 0; i < 3; ++i) EXPECT_TRUE(user.click(L"Next >"));
  EXPECT_TRUE(waitUntil([&] { return user.edit(1) != nullptr; }));
}

TEST_F(FormWindow, Paste_GoesThroughTheFilterCharacterByCharacter) {
  setOption("My_FullName", "Anna");
  for (const bool byKey : {false, true}) {
    modeless([&](const DialogUser& user) {
      goToPage4(user);
      putOnClipboard(L"Tel: +46 (70) 174-06-99\r\n12");
      const HWND phone = user.edit(1);
      SendMessageW(phone, byKey ? UINT{WM_CHAR} : UINT{WM_PASTE}, byKey ? 22 : 0, byKey ? 1 : 0);
      EXPECT_EQ(DialogUser::textOf(phone), L"+46701740699");
      EXPECT_TRUE(user.waitFor(L"Finish"));
    });
    wizard = platform::make<addin::frmwizard>();
  }
}

TEST_F(FormWindow, RefusedCharacter_SelectsNothing) {
  setOption("My_PhoneNo", "+46");
  modeless([](const DialogUser& user) {
    goToPage4(user);
    const HWND phone = user.edit(1);
    SendMessageW(phone, EM_SETSEL, 3, 3);
    SendMessageW(phone, WM_CHAR, L'x', 1);
    SendMessageW(phone, WM_CHAR, 1, 1);  // Ctrl+A
    DWORD from = 9;
    DWORD to = 9;
    SendMessageW(phone, EM_GETSEL, reinterpret_cast<WPARAM>(&from), reinterpret_cast<LPARAM>(&to));
    EXPECT_EQ(from, 3u);
    EXPECT_EQ(to, 3u);
    SendMessageW(phone, WM_CHAR, L'7', 1);
    EXPECT_EQ(DialogUser::textOf(phone), L"+467");
  });
}

// Cutting, copying and undoing are keys too: the button follows the text as it was before them.
TEST_F(FormWindow, CutAndCopyByKey_GoThroughTheFilterAndAreDoneAllTheSame) {
  setOption("My_FullName", "Anna");
  modeless([](const DialogUser& user) {
    goToPage4(user);
    const HWND phone = user.edit(1);
    const HWND finish = user.button(L"Finish");
    const auto press = [&](WPARAM code) {
      SendMessageW(phone, WM_CHAR, code, 1);
      return DialogUser::textOf(phone);
    };
    EXPECT_EQ(press(L'4'), L"4");
    EXPECT_FALSE(IsWindowEnabled(finish));
    SendMessageW(phone, EM_SETSEL, 0, -1);
    EXPECT_EQ(press(24), L"");
    EXPECT_TRUE(IsWindowEnabled(finish));
    EXPECT_EQ(press(L'7'), L"7");
    EXPECT_FALSE(IsWindowEnabled(finish));
    SendMessageW(phone, EM_SETSEL, 0, -1);
    EXPECT_EQ(press(3), L"7");
    EXPECT_TRUE(IsWindowEnabled(finish));
    SendMessageW(phone, EM_SETSEL, 1, 1);
    SendMessageW(phone, WM_PASTE, 0, 0);
    EXPECT_EQ(DialogUser::textOf(phone), L"77");  // it had been copied
  });
}

TEST_F(FormWindow, UndoByKey_GoesThroughTheFilterAndIsDoneAllTheSame) {
  setOption("My_FullName", "Anna");
  modeless([](const DialogUser& user) {
    goToPage4(user);
    const HWND phone = user.edit(1);
    SendMessageW(phone, WM_CHAR, L'4', 1);
    EXPECT_FALSE(IsWindowEnabled(user.button(L"Finish")));
    SendMessageW(phone, WM_CHAR, 26, 1);
    EXPECT_EQ(DialogUser::textOf(phone), L"");
    EXPECT_TRUE(IsWindowEnabled(user.button(L"Finish")));  // there was a text when the key came
  });
}

TEST_F(FormWindow, PhoneNumber_IsFifteenCharactersAtMost) {
  modeless([](const DialogUser& user) {
    goToPage4(user);
    const HWND phone = user.edit(1);
    for (int i = 0; i < 20; ++i) SendMessageW(phone, WM_CHAR, L'5', 1);
    EXPECT_EQ(DialogUser::textOf(phone), std::wstring(15, L'5'));
  });
}

TEST_F(FormWindow, FieldsWithoutALabel_HaveAHiddenOneInFrontForScreenReaders) {
  modeless([](const DialogUser& user) {
    EXPECT_TRUE(user.click(L"Next >"));
    const auto nameOf = [](HWND field) { return DialogUser::captionOf(GetWindow(field, GW_HWNDPREV)); };
    EXPECT_EQ(nameOf(user.list()), L"Service Centre Number");
    EXPECT_EQ(nameOf(user.edit()), L"I want to use a different number.");
    EXPECT_TRUE(user.click(L"Next >"));
    EXPECT_EQ(nameOf(user.edit()), L"I want to send and receive text messages every minutes.");
    EXPECT_TRUE(user.click(L"Next >"));
    EXPECT_EQ(nameOf(user.edit(0)), L"Full Name:");
    EXPECT_EQ(nameOf(user.edit(1)), L"Mobile Phone Number:");
    EXPECT_TRUE(isBefore(user.edit(1), user.button(L"Finish")));
  });
}

// The list ------------------------------------------------------------------------------------------------------------

TEST_F(FormWindow, List_ShowsTheEntriesAndTellsTheForm) {
  modeless([&](const DialogUser& user) {
    EXPECT_TRUE(user.click(L"Next >"));
    const HWND list = user.list();
    EXPECT_EQ(SendMessageW(list, CB_GETCOUNT, 0, 0), 3);
    EXPECT_EQ(SendMessageW(list, CB_GETCURSEL, 0, 0), 1);
    user.select(list, 2);
    EXPECT_EQ(wizard->Find(u"cboSCAddress")->ListIndex(), 2);
  });
}

TEST_F(FormWindow, List_ClosedByEscOrEnter_HasTheFormAgreeAndTheDialogStay) {
  for (const WORD key : {WORD{VK_ESCAPE}, WORD{VK_RETURN}}) {
    modeless([&](const DialogUser& user) {
      EXPECT_TRUE(user.click(L"Next >"));
      const HWND list = user.list();
      EXPECT_TRUE(user.waitForFocus(list));
      const auto isOpen = [&] { return SendMessageW(list, CB_GETDROPPEDSTATE, 0, 0) != 0; };
      user.press(VK_F4);
      EXPECT_TRUE(waitUntil(isOpen));
      user.press(VK_DOWN);
      user.press(key);
      EXPECT_TRUE(waitUntil([&] { return !isOpen(); }));
      EXPECT_TRUE(user.isThere());
      EXPECT_EQ(user.list(), list);  // on the same page
      EXPECT_EQ(wizard->Find(u"cboSCAddress")->ListIndex(), SendMessageW(list, CB_GETCURSEL, 0, 0));
      if (key == VK_RETURN) {
        EXPECT_EQ(SendMessageW(list, CB_GETCURSEL, 0, 0), 2);
      }
    });
    wizard = platform::make<addin::frmwizard>();
  }
}

// Some systems take a choice back without telling of another one.
TEST_F(FormWindow, List_ClosedWithAnotherEntryThanTheLastTold_HasTheFormAgree) {
  modeless([&](const DialogUser& user) {
    EXPECT_TRUE(user.click(L"Next >"));
    const HWND list = user.list();
    for (const WORD notice : {WORD{CBN_SELENDCANCEL}, WORD{CBN_CLOSEUP}}) {
      user.select(list, 2);
      EXPECT_EQ(wizard->Find(u"cboSCAddress")->ListIndex(), 2);
      SendMessageW(list, CB_SETCURSEL, 1, 0);
      SendMessageW(user.dialog(), WM_COMMAND, MAKEWPARAM(GetDlgCtrlID(list), notice), reinterpret_cast<LPARAM>(list));
      EXPECT_EQ(wizard->Find(u"cboSCAddress")->ListIndex(), 1) << notice;
    }
  });
}

TEST_F(FormWindow, List_AsLongAsItCanBeAndOneEntryOfTenMegabytes_OpensQuickly) {
  std::string many;
  for (int i = 0; i < 33000; ++i) many += "Operator (+" + std::to_string(i) + ")\n";
  for (const std::string& text : {many, std::string(10u << 20, 'x')}) {
    native.files.contents[u"list"] = text;
    native.files.pieceSize = 65536;
    const std::uint32_t start = testing_support::ticksNow();
    modeless([](const DialogUser& user) { EXPECT_TRUE(user.click(L"Next >")); });
    EXPECT_LT(testing_support::ticksNow() - start, 10000u);
    wizard = platform::make<addin::frmwizard>();
  }
}

// The end -------------------------------------------------------------------------------------------------------------

TEST_F(FormWindow, OwnerThatGoes_TakesTheDialogAndUnloadsTheForm) {
  for (const bool isModal : {true, false}) {
    const auto owner = std::make_unique<TestWindow>();
    ShowWindow(owner->handle(), SW_SHOW);
    SetActiveWindow(owner->handle());
    const HWND window = owner->handle();
    const TestWindow closer([window](UINT message, WPARAM, LPARAM) -> std::optional<LRESULT> {
      if (message != WM_APP) return std::nullopt;
      DestroyWindow(window);  // inside a sent message
      return 0;
    });
    const auto end = [&](const DialogUser& user) {
      EXPECT_EQ(GetWindow(user.dialog(), GW_OWNER), window);
      SendMessageW(closer.handle(), WM_APP, 0, 0);
    };
    if (isModal)
      EXPECT_TRUE(modal(end));
    else
      modeless(end);
    EXPECT_FALSE(wizard->IsLoaded());
    EXPECT_TRUE(IsWindowEnabled(mailClient.handle()));
    wizard = platform::make<addin::frmwizard>();
  }
}

TEST_F(FormWindow, UnloadedBesideTheQueue_EndsTheWait) {
  const TestWindow closer([&](UINT message, WPARAM, LPARAM) -> std::optional<LRESULT> {
    if (message != WM_APP) return std::nullopt;
    wizard->Unload();  // as a call from another program does
    return 0;
  });
  EXPECT_TRUE(modal([&](const DialogUser&) { SendMessageW(closer.handle(), WM_APP, 0, 0); }));
}

TEST_F(FormWindow, QuitMessage_ClosesAModalFormAndStaysPosted) {
  const DWORD self = GetCurrentThreadId();
  EXPECT_FALSE(modal([&](const DialogUser&) { PostThreadMessageW(self, WM_QUIT, 7, 0); }));
  EXPECT_FALSE(wizard->IsLoaded());
  EXPECT_TRUE(IsWindowEnabled(mailClient.handle()));
  MSG message{};
  ASSERT_TRUE(PeekMessageW(&message, nullptr, WM_QUIT, WM_QUIT, PM_REMOVE));
  EXPECT_EQ(message.wParam, 7u);
}

TEST_F(FormWindow, Finish_PressedTwice_SavesOnce) {
  setOption("My_FullName", "Anna");
  setOption("My_PhoneNo", "+46");
  modeless([](const DialogUser& user) {
    goToPage4(user);
    EXPECT_TRUE(user.waitFor(L"Finish"));
    const HWND finish = user.button(L"Finish");
    PostMessageW(finish, BM_CLICK, 0, 0);
    PostMessageW(finish, BM_CLICK, 0, 0);
    EXPECT_TRUE(user.hasGone());
  });
  int saves = 0;
  for (const std::string& line : native.registry.log())
    if (line.starts_with("set ") && line.find("WizardDone") != std::string::npos) ++saves;
  EXPECT_EQ(saves, 1);
}

}  // namespace
}  // namespace win32_tests

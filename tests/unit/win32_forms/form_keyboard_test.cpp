// Where the keyboard goes on each page, and whose keys are left alone.

#include <atomic>

#include "form_fixture.h"

namespace win32_tests {
namespace {

constexpr const wchar_t* pollCaption = L"I want to send and receive text messages every";

class FormKeyboard : public FormFixture {
 protected:
  // Tab goes through these, which begin with the one that has the focus, and around.
  static void expectTabOrder(const DialogUser& user, const std::vector<HWND>& order) {
    EXPECT_TRUE(user.waitForFocus(order.front()));
    for (std::size_t i = 1; i <= order.size(); ++i) {
      user.press(VK_TAB);
      EXPECT_TRUE(user.waitForFocus(order[i % order.size()])) << i;
    }
  }
};

TEST_F(FormKeyboard, Tab_GoesThroughEveryPageAndAround) {
  modeless([](const DialogUser& user) {
    const auto button = [&](const wchar_t* caption) { return user.button(caption); };
    user.click(L"Next >");
    expectTabOrder(user, {user.list(), button(L"I want to use a different number."), button(L"< Back"),
                          button(L"Next >"), button(L"Cancel"), button(L"Help")});
    user.click(L"Next >");
    expectTabOrder(user, {button(pollCaption), user.edit(),
                          button(L"Remove text messages from the SIM card when retrieved in the Inbox."),
                          button(L"< Back"), button(L"Next >"), button(L"Cancel"), button(L"Help")});
    user.click(L"Next >");
    // Finish is disabled.
    expectTabOrder(user, {user.edit(0), user.edit(1), button(L"< Back"), button(L"Cancel"), button(L"Help")});
  });
}

TEST_F(FormKeyboard, Tab_WithoutServiceCentres_BeginsInTheOwnNumber) {
  native.files.contents.clear();
  modeless([](const DialogUser& user) {
    user.click(L"Next >");
    expectTabOrder(user, {user.edit(), user.button(L"< Back"), user.button(L"Cancel"), user.button(L"Help")});
  });
}

TEST_F(FormKeyboard, Enter_WhileNextIsDisabled_DoesNothing) {
  native.files.contents.clear();
  modeless([](const DialogUser& user) {
    user.click(L"Next >");
    const HWND number = user.edit();
    EXPECT_TRUE(user.waitForFocus(number));
    user.press(VK_RETURN);
    user.type(L"7");  // comes after it
    EXPECT_TRUE(user.waitFor(L"Next >"));
    EXPECT_EQ(user.edit(), number);  // still there
    EXPECT_EQ(DialogUser::textOf(number), L"7");
    user.press(VK_RETURN);
    EXPECT_TRUE(waitUntil([&] { return user.button(pollCaption) != nullptr; }));
  });
}

TEST_F(FormKeyboard, Esc_InTheFieldThatTakesDigitsOnly_IsCancel) {
  modeless([](const DialogUser& user) {
    for (int page = 1; page < 4; ++page) user.click(L"Next >");
    EXPECT_TRUE(user.waitForFocus(user.edit(0)));
    user.press(VK_TAB);
    EXPECT_TRUE(user.waitForFocus(user.edit(1)));
    user.press(VK_ESCAPE);
    EXPECT_TRUE(user.hasGone());
  });
  EXPECT_FALSE(wizard->IsLoaded());
}

TEST_F(FormKeyboard, KeysOfOtherWindows_AreTheirs) {
  std::atomic<int> keys = 0;
  const TestWindow other([&](UINT message, WPARAM, LPARAM) -> std::optional<LRESULT> {
    if (message == WM_KEYDOWN) ++keys;
    return std::nullopt;
  });
  modeless([&](const DialogUser& user) {
    for (const WPARAM key : {VK_TAB, VK_RETURN, VK_ESCAPE}) other.post(WM_KEYDOWN, key, 1);
    EXPECT_TRUE(waitUntil([&] { return keys == 3; }));
    EXPECT_TRUE(user.isThere());
  });
}

TEST_F(FormKeyboard, Timers_RunWhileAModalFormIsOpen) {
  std::atomic<int> ticks = 0;
  const TestWindow other([&](UINT message, WPARAM, LPARAM) -> std::optional<LRESULT> {
    if (message == WM_TIMER) ++ticks;
    return std::nullopt;
  });
  SetTimer(other.handle(), 1, 20, nullptr);
  EXPECT_TRUE(modal([&](const DialogUser&) {
    const int before = ticks;
    EXPECT_TRUE(waitUntil([&] { return ticks >= before + 3; }));
  }));
}

}  // namespace
}  // namespace win32_tests

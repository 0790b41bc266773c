// A mail client with windows and the add-in in it, and the simulated handset.
#pragma once

#include <gtest/gtest.h>

#include "com/bridge.h"
#include "support/text.h"
#include "system/mailclient/window_fixture.h"

class AddInWindowTest : public WindowTest {
 protected:
  void SetUp() override {
    OleInitialize(nullptr);
    for (const std::string& line : testing_support::registerProduct()) ASSERT_FALSE(line.starts_with("failed")) << line;
    testing_support::removeAllOptions();
    testing_support::setOption(L"WizardDone", 1);
    testing_support::setOption(L"SendReceive_UseAuto", 0u);
    handset_ = testing_support::Handset::connect();
    handset_.Clear(1);
    handset_.Clear(2);
    handset_.ClearSent();
    handset_.ForgetOutcomes();
    handset_.Unplug();
    start(L"");
    ask("contact \"Anna Ek\" \"+46 (70) 123\"");
    ask("contact \"Annika Berg\" \"+46 73 9\" Family");
  }
  void TearDown() override {
    WindowTest::TearDown();
    handset_ = testing_support::Handset();
    testing_support::removeAllOptions();
    OleUninitialize();
  }

  HWND newTextMessage() {
    choose("Text Message");
    const HWND form = screen::await(processId(), screen::inspectorClass, L"Untitled - Text Message");
    EXPECT_TRUE(form && screen::toFront(form));
    return form;
  }
  static HWND to(HWND form) { return screen::child(form, WC_EDITW, 0); }
  static HWND body(HWND form) { return screen::child(form, WC_EDITW, 1); }
  // Types the message and sends it with its keys.
  void write(const std::wstring& recipient, const std::wstring& text) {
    const HWND form = newTextMessage();
    screen::type(recipient);
    ASSERT_TRUE(screen::waitUntil([&] { return screen::textOf(to(form)) == recipient; }));
    screen::press(VK_TAB);
    screen::type(text);
    ASSERT_TRUE(screen::waitUntil([&] { return screen::textOf(body(form)) == text; }));
    screen::press(VK_RETURN, true);
    ASSERT_TRUE(screen::awaitGone(processId(), screen::inspectorClass));
  }

  // The phone takes this long for the next listing: meanwhile the add-in waits inside the event that it serves.
  void slowListing(std::int32_t milliseconds) {
    platform::LateBound(handset_).call<void>(u"AnswerNext", u"list", std::int32_t{0}, milliseconds);
  }

  testing_support::Handset handset_;
};

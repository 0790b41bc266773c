// What a screen reader calls the fields.

#include <oleacc.h>

#include "com/pointers.h"
#include "form_fixture.h"

namespace win32_tests {
namespace {

class AccessibleNames : public FormFixture {
 protected:
  // As Microsoft Active Accessibility tells it.
  static std::wstring nameOf(HWND control) {
    com::Ptr<IAccessible> accessible;
    if (FAILED(AccessibleObjectFromWindow(control, static_cast<DWORD>(OBJID_CLIENT), __uuidof(IAccessible),
                                          accessible.putVoid())))
      return L"not accessible";
    VARIANT self{};
    self.vt = VT_I4;
    self.lVal = CHILDID_SELF;
    BSTR name = nullptr;
    if (accessible.get()->get_accName(self, &name) != S_OK || !name) return L"no name";
    std::wstring text = name;
    SysFreeString(name);
    return text;
  }
  // Not every system calls a list by its label; some tell its value for a name.
  static std::wstring labelBefore(HWND list) { return DialogUser::captionOf(GetWindow(list, GW_HWNDPREV)); }

 private:
  const Apartment apartment_;
};

using Names = std::vector<std::wstring>;

TEST_F(AccessibleNames, EveryControlOfEveryPageHasOne) {
  const Names buttons{L"< Back", L"Next >", L"Cancel", L"Help"};
  const std::vector<Names> pages{
      {L"Welcome to Marrick Text Message Setup Wizard\r\n\r\nThis Wizard will collect some information needed to send "
       L"Text Messages in Microsoft Outlook 2000."},
      {L"Service Centre Number", L"Service Centre Number", L"I want to use a different number.",
       L"I want to use a different number."},
      {L"Send and Receive", L"I want to send and receive text messages every",
       L"I want to send and receive text messages every minutes.", L"minutes.",
       L"Remove text messages from the SIM card when retrieved in the Inbox."},
      {L"User Information", L"Full Name:", L"Full Name:", L"Mobile Phone Number:", L"Mobile Phone Number:"}};
  modeless([&](const DialogUser& user) {
    for (const Names& page : pages) {
      Names expected{L"Marrick Text Message Add-In for Outlook 2000"};
      expected.insert(expected.end(), page.begin(), page.end());
      expected.insert(expected.end(), buttons.begin(), buttons.end());
      const bool isLast = &page == &pages.back();
      if (isLast) *(expected.end() - 3) = L"Finish";
      Names names;
      for (const HWND control : user.controls())
        names.push_back(control == user.list() ? labelBefore(control) : nameOf(control));
      EXPECT_EQ(names, expected);
      EXPECT_TRUE(isLast || user.click(L"Next >"));
    }
  });
}

}  // namespace
}  // namespace win32_tests

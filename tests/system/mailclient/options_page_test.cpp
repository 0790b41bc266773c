// A property page of an add-in in the Options dialog: a control in a DLL (see sample_page/), which writes down what is
// asked of it.
#include <fstream>

#include <gtest/gtest.h>

#include "addin/platform/optionspage.h"
#include "com/registration.h"
#include "sample_page/sample_page.h"
#include "system/mailclient/window_fixture.h"

// After our own windows header on purpose.
#include <prsht.h>

namespace {

using namespace screen;
using Lines = std::vector<std::string>;

constexpr com::ClassRegistration pageClass{sample_page::clsidPage, sample_page::progIdPage, u"Sample page",
                                           com::ServerKind::InProcess};
constexpr com::ClassRegistration addInClass{sample_page::clsidAddIn, sample_page::progIdAddIn, u"Sample add-in",
                                            com::ServerKind::InProcess};
const com::RegistryPlace addIns{HKEY_CURRENT_USER, u"Software\\Microsoft\\Office\\Outlook\\Addins"};
const std::vector<com::RegistryEntry> addInEntry{{platform::String(sample_page::progIdAddIn), u"LoadBehavior", 3u}};

constexpr int applyButton = 0x3021;

// What a page is asked when it is shown, whatever happens to it then.
const Lines opening{"made", "SetClientSite", "site 70 of Outlook", "InitNew", "DoVerb -5"};

class OptionsPageTest : public WindowTest {
 protected:
  void SetUp() override {
    const std::wstring folder = testing_support::productFolder();
    const std::wstring dll = folder.substr(0, folder.rfind(L'\\')) + L"\\tests\\sample_page.dll";
    path_.assign(dll.begin(), dll.end());
    ASSERT_EQ(com::registerClass(com::machineClasses, pageClass, path_), S_OK);
    ASSERT_EQ(com::registerClass(com::machineClasses, addInClass, path_), S_OK);
    ASSERT_EQ(com::writeEntries(addIns, addInEntry), S_OK);
    log_ = std::filesystem::temp_directory_path() / ("sample page " + std::to_string(GetCurrentProcessId()));
    std::filesystem::remove(log_);
    SetEnvironmentVariableW(sample_page::logVariable, log_.c_str());
    WindowTest::SetUp();
    bringAddIn();
    references_ = ask("references").result;
    openDialog();
  }
  virtual void bringAddIn() {}  // the sample's own is loaded at the start
  void TearDown() override {
    WindowTest::TearDown();
    com::removeEntries(addIns, addInEntry);
    com::unregisterClass(com::machineClasses, addInClass);
    com::unregisterClass(com::machineClasses, pageClass);
    SetEnvironmentVariableW(sample_page::logVariable, nullptr);
    std::filesystem::remove(log_);
  }

  void openDialog() {
    choose("&Options...");
    dialog_ = await(processId(), L"#32770", L"Options");
    ASSERT_TRUE(dialog_ && toFront(dialog_));
  }
  int tabs() const { return static_cast<int>(SendMessageW(child(dialog_, WC_TABCONTROLW), TCM_GETITEMCOUNT, 0, 0)); }
  // The page is made the first time.
  void turnToThePage() {
    PostMessageW(dialog_, PSM_SETCURSEL, 1, 0);
    ASSERT_TRUE(waitUntil([&] { return edit() != nullptr && IsWindowVisible(edit()); }));
  }
  void typeIntoThePage(const std::wstring& text) {
    ASSERT_NO_FATAL_FAILURE(turnToThePage());
    clickAt(edit(), 20, 8);
    type(text);
    ASSERT_TRUE(waitUntil([&] { return textOf(edit()) == text; }));
  }
  HWND edit() const {
    for (HWND page = nullptr; (page = FindWindowExW(dialog_, page, L"#32770", nullptr)) != nullptr;)
      if (const HWND window = child(page, sample_page::windowClass)) return child(window, WC_EDITW);
    return nullptr;
  }
  bool canApply() const { return IsWindowEnabled(GetDlgItem(dialog_, applyButton)) != FALSE; }
  void awaitClosed() {
    ASSERT_TRUE(awaitGone(processId(), L"#32770"));
    ASSERT_TRUE(waitUntil([&] { return IsWindowEnabled(explorer_) != FALSE; }));
    EXPECT_EQ(ask("references").result, references_) << "nothing of the mail client is held";
  }

  Lines asked() const {
    Lines lines;
    std::ifstream stream(log_);
    for (std::string line; std::getline(stream, line);) lines.push_back(line);
    return lines;
  }
  // Between the opening and the end of a page that was shown.
  static Lines shownAnd(const Lines& between) {
    Lines lines = opening;
    lines.insert(lines.end(), between.begin(), between.end());
    for (const char* const line : {"InPlaceDeactivate", "Close 1", "SetClientSite nothing", "gone"})
      lines.emplace_back(line);
    return lines;
  }

  platform::String path_;  // of the DLL
  std::filesystem::path log_;
  std::string references_;
  HWND dialog_ = nullptr;
};

TEST_F(OptionsPageTest, TypedAndApplied_StoresOnce_AndOkHasNothingLeftToStore) {
  EXPECT_EQ(tabs(), 2) << "the page that nobody makes is left out";
  ASSERT_NO_FATAL_FAILURE(turnToThePage());
  EXPECT_FALSE(canApply());
  clickAt(edit(), 20, 8);
  type(L"ab");
  EXPECT_TRUE(waitUntil([&] { return canApply(); }));
  press(VK_BACK);
  press(VK_BACK);
  EXPECT_TRUE(waitUntil([&] { return !canApply(); })) << "the page is as it was";
  type(L"c");
  ASSERT_TRUE(waitUntil([&] { return canApply(); }));
  SendMessageW(dialog_, PSM_PRESSBUTTON, PSBTN_APPLYNOW, 0);
  EXPECT_FALSE(canApply());
  press(VK_RETURN);
  awaitClosed();
  EXPECT_EQ(asked(), shownAnd({"Apply c"}));
}

TEST_F(OptionsPageTest, Cancel_StoresNothing) {
  ASSERT_NO_FATAL_FAILURE(typeIntoThePage(L"abc"));
  press(VK_ESCAPE);
  awaitClosed();
  EXPECT_EQ(asked(), shownAnd({}));
}

TEST_F(OptionsPageTest, PageThatRefuses_KeepsTheDialog_UntilItAccepts) {
  ASSERT_NO_FATAL_FAILURE(typeIntoThePage(sample_page::refused));
  press(VK_RETURN);
  const HWND message = await(processId(), L"#32770", L"Mail Client");
  ASSERT_TRUE(message && toFront(message));
  press(VK_RETURN);
  ASSERT_TRUE(awaitGone(processId(), L"#32770", L"Mail Client"));
  ASSERT_TRUE(IsWindow(dialog_) && toFront(dialog_));
  EXPECT_EQ(textOf(edit()), sample_page::refused);
  clickAt(edit(), 150, 8);
  type(L"2");
  ASSERT_TRUE(waitUntil([&] { return textOf(edit()) == L"refused2"; }));
  press(VK_RETURN);
  awaitClosed();
  EXPECT_EQ(asked(), shownAnd({"Apply refused", "Apply refused2"}));
}

TEST_F(OptionsPageTest, PageThatIsNotLookedAt_IsAskedNothing) {
  press(VK_RETURN);
  awaitClosed();
  EXPECT_EQ(asked(), (Lines{"made", "gone"}));
  openDialog();
  EXPECT_EQ(tabs(), 2) << "the dialog asks for its pages each time";
  press(VK_ESCAPE);
  awaitClosed();
}

TEST_F(OptionsPageTest, Help_IsOfThePageThatNamesItsFile) {
  const HWND help = GetDlgItem(dialog_, IDHELP);
  ASSERT_TRUE(help);
  EXPECT_FALSE(IsWindowEnabled(help)) << "the mail client's own page";
  ASSERT_NO_FATAL_FAILURE(turnToThePage());
  EXPECT_TRUE(waitUntil([&] { return IsWindowEnabled(help) != FALSE; }));
  PostMessageW(dialog_, PSM_PRESSBUTTON, PSBTN_HELP, 0);
  const HWND message = await(processId(), L"#32770", L"Mail Client");
  ASSERT_TRUE(message && toFront(message));
  EXPECT_EQ(textOf(child(message, WC_STATICW, 1)), L"The help file cannot be opened: no such sample_page.chm");
  press(VK_RETURN);
  ASSERT_TRUE(awaitGone(processId(), L"#32770", L"Mail Client"));
  ASSERT_TRUE(toFront(dialog_));
  press(VK_ESCAPE);
  awaitClosed();
}

// The product's add-in makes its page itself, and hands over the object.
class ProductPageTest : public OptionsPageTest {
 protected:
  void SetUp() override {
    for (const std::string& line : testing_support::registerProduct()) ASSERT_FALSE(line.starts_with("failed")) << line;
    testing_support::removeAllOptions();
    testing_support::setOption(L"WizardDone", 1);
    testing_support::setOption(L"SendReceive_UseAuto", 0u);
    OptionsPageTest::SetUp();
  }
  void TearDown() override {
    OptionsPageTest::TearDown();
    com::unregisterClass(com::machineClasses, productPage);
    testing_support::removeAllOptions();
  }
  void bringAddIn() override {
    ASSERT_TRUE(ask("disconnect sample_page.addin").ok);
    ASSERT_TRUE(ask("connect mrktxtmsg.connect").ok);
    ASSERT_EQ(com::registerClass(com::machineClasses, productPage, path_), S_OK);
  }

  static constexpr com::ClassRegistration productPage{sample_page::clsidPage, platform::optionspage::progIdPage,
                                                      u"Text Messages", com::ServerKind::InProcess};
};

TEST_F(ProductPageTest, ShownTypedAndConfirmed_Stores) {
  EXPECT_EQ(tabs(), 2);
  ASSERT_NO_FATAL_FAILURE(typeIntoThePage(L"abc"));
  press(VK_RETURN);
  awaitClosed();
  EXPECT_EQ(asked(), shownAnd({"Apply abc"}));
}

}  // namespace

#include "mailclient/win/options_dialog.h"

#include <algorithm>

#include "com/errors.h"
#include "mailclient/win/dialogs.h"
#include "mailclient/win/property_page_host.h"

// After our own windows header on purpose.
#include <prsht.h>
#include <shellapi.h>

namespace mailclient::win {
namespace {

enum ControlId : int { idAssistant = 10 };

// A dialog template without a control; its size is in dialog units.
struct PageTemplate {
  alignas(4) DLGTEMPLATE dialog{};
  WORD menu = 0;
  WORD windowClass = 0;
  WORD title = 0;
};

constexpr short pageWidth = 250;
constexpr short pageHeight = 200;

class Page {
 public:
  explicit Page(String title) : title_(std::move(title)) {
    template_.dialog.style = WS_CHILD | WS_VISIBLE | DS_CONTROL;
    template_.dialog.cx = pageWidth;
    template_.dialog.cy = pageHeight;
  }
  Page(const Page&) = delete;
  Page& operator=(const Page&) = delete;
  virtual ~Page() = default;

  HPROPSHEETPAGE create() {
    PROPSHEETPAGEW page{};
    page.dwSize = sizeof page;
    page.dwFlags = PSP_DLGINDIRECT | PSP_USETITLE | (hasHelp() ? PSP_HASHELP : 0);
    page.hInstance = GetModuleHandleW(nullptr);
    page.pResource = &template_.dialog;
    page.pszTitle = wide(title_);
    page.pfnDlgProc = &Page::procedure;
    page.lParam = reinterpret_cast<LPARAM>(this);
    return CreatePropertySheetPageW(&page);
  }

 protected:
  HWND handle() const { return handle_; }
  // Whether there is something to apply.
  void setDirty(bool dirty) {
    SendMessageW(GetParent(handle_), dirty ? PSM_CHANGED : PSM_UNCHANGED, reinterpret_cast<WPARAM>(handle_), 0);
  }
  virtual void opened() = 0;
  virtual void command(int) {}
  // False when it could not be done: the dialog stays then.
  virtual bool apply() = 0;
  virtual bool hasHelp() { return false; }
  virtual void help() {}
  virtual void closed() {}

 private:
  static INT_PTR CALLBACK procedure(HWND window, UINT message, WPARAM wide, LPARAM extra) {
    if (message == WM_INITDIALOG)
      SetWindowLongPtrW(window, DWLP_USER, reinterpret_cast<PROPSHEETPAGEW*>(extra)->lParam);
    auto* const self = reinterpret_cast<Page*>(GetWindowLongPtrW(window, DWLP_USER));
    if (!self) return FALSE;
    return com::guardedOr<INT_PTR>(FALSE, [&]() -> INT_PTR {
      switch (message) {
        case WM_INITDIALOG:
          self->handle_ = window;
          self->opened();
          return TRUE;
        case WM_COMMAND:
          self->command(LOWORD(wide));
          return TRUE;
        case WM_NOTIFY:
          return self->notice(reinterpret_cast<NMHDR*>(extra)->code);
        case WM_DESTROY:
          self->closed();
          return FALSE;
        default:
          return FALSE;
      }
    });
  }

  INT_PTR notice(UINT code) {
    if (code == PSN_HELP) help();
    if (code == PSN_APPLY)
      SetWindowLongPtrW(handle_, DWLP_MSGRESULT, apply() ? PSNRET_NOERROR : PSNRET_INVALID_NOCHANGEPAGE);
    return TRUE;
  }

  String title_;
  PageTemplate template_;
  HWND handle_ = nullptr;
};

class GeneralPage final : public Page {
 public:
  explicit GeneralPage(Shell& shell) : Page(u"General"), shell_(shell) {}

 protected:
  void opened() override {
    const int margin = scaled(12);
    assistant_ = makeControl(handle(), WC_BUTTONW, L"&Show the notices of the Office Assistant",
                             WS_TABSTOP | BS_AUTOCHECKBOX, idAssistant);
    place(assistant_, margin, margin, widthOf(clientArea(handle())) - 2 * margin, lineHeight() + scaled(4));
    SendMessageW(assistant_, BM_SETCHECK, shell_.client().assistant().on ? BST_CHECKED : BST_UNCHECKED, 0);
  }
  void command(int id) override {
    if (id == idAssistant) setDirty(true);
  }
  bool apply() override {
    shell_.client().assistant().on = SendMessageW(assistant_, BM_GETCHECK, 0, 0) == BST_CHECKED;
    shell_.client().assistant().visible = shell_.client().assistant().on;
    return true;
  }

 private:
  Shell& shell_;
  HWND assistant_ = nullptr;
};

// A page that an add-in brought: a control that lives in a window of its own here.
class GuestPage final : public Page {
 public:
  GuestPage(Shell& shell, const OptionsPage& page, std::unique_ptr<PropertyPageHost> host)
      : Page(page.title.empty() ? String(u"Add-In") : page.title), shell_(shell), host_(std::move(host)) {}

 protected:
  void opened() override {
    attempt(shell_, handle(),
            [&] { host_->show(handle(), clientArea(handle()), [this] { setDirty(host_->isDirty()); }); });
  }
  bool apply() override {
    bool done = false;
    attempt(shell_, handle(), [&] {
      host_->apply();
      done = true;
    });
    return done;
  }
  bool hasHelp() override { return !host_->helpFile().empty(); }
  void help() override {
    const String file = host_->helpFile();
    const auto result =
        reinterpret_cast<INT_PTR>(ShellExecuteW(handle(), L"open", wide(file), nullptr, nullptr, SW_SHOWNORMAL));
    constexpr INT_PTR lastError = 32;
    if (result <= lastError)
      attempt(shell_, handle(), [&] { fail(failure::notFound, u"The help file cannot be opened: " + file); });
  }
  void closed() override { host_->close(); }

 private:
  Shell& shell_;
  std::unique_ptr<PropertyPageHost> host_;
};

// The system puts the sheet into the owner's corner, over its menus.
int CALLBACK sheetChanged(HWND sheet, UINT what, LPARAM) {
  if (what != PSCB_INITIALIZED) return 0;
  RECT now{};
  GetWindowRect(sheet, &now);
  placeOver(GetWindow(sheet, GW_OWNER), sheet, widthOf(now), heightOf(now));
  return 0;
}

}  // namespace

void showOptions(Shell& shell, HWND owner) {
  std::vector<std::unique_ptr<Page>> pages;
  pages.push_back(std::make_unique<GeneralPage>(shell));
  for (const OptionsPage& page : shell.client().collectOptionsPages())
    if (auto host = PropertyPageHost::create(page.page, shell.client()))
      pages.push_back(std::make_unique<GuestPage>(shell, page, std::move(host)));
  std::vector<HPROPSHEETPAGE> handles;
  for (const auto& page : pages) handles.push_back(page->create());
  PROPSHEETHEADERW sheet{};
  sheet.dwSize = sizeof sheet;
  sheet.dwFlags = PSH_NOCONTEXTHELP | PSH_USECALLBACK;
  sheet.pfnCallback = &sheetChanged;
  sheet.hwndParent = owner;
  sheet.hInstance = GetModuleHandleW(nullptr);
  sheet.pszCaption = L"Options";
  sheet.nPages = static_cast<UINT>(handles.size());
  sheet.phpage = handles.data();
  PropertySheetW(&sheet);
}

}  // namespace mailclient::win

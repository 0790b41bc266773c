// The mail client's window on a large Inbox: how long it takes to show its rows, and to go through all of them page by
// page. These are times by the clock: the window also waits for the system, and its user for both.
#include <algorithm>
#include <cstdio>
#include <filesystem>

#include "../measure.h"
#include "com/windows.h"
#include "stage.h"
#include "support/win32/mail_client_process.h"
#include "support/win32/product.h"
#include "support/win32/screen.h"

namespace bench {
namespace {

using testing_support::MailClientProcess;
namespace fs = std::filesystem;

double now() {
  LARGE_INTEGER ticks, perSecond;
  QueryPerformanceCounter(&ticks);
  QueryPerformanceFrequency(&perSecond);
  return static_cast<double>(ticks.QuadPart) / static_cast<double>(perSecond.QuadPart);
}

void waitFor(const std::function<bool()>& condition, const char* what) {
  const double end = now() + 60;
  while (!condition()) {
    require(now() < end, what);
    Sleep(1);
  }
}

// The program with its window, from the start of the process until the list shows its first rows.
class OpenWindow {
 public:
  OpenWindow(const fs::path& store, int expected)
      : start_(now()), client_(L"--store \"" + store.wstring() + L"\"", L"--console") {
    require(client_.isReady(), "the mail client starts");
    explorer_ = screen::find(client_.processId(), screen::explorerClass);
    list_ = screen::child(explorer_, WC_LISTVIEWW);
    subject_ = screen::child(explorer_, WC_STATICW);
    require(list_ && subject_, "its window is there");
    waitFor([&] { return screen::rows(list_) == expected && isPainted(); }, "the list has its rows");
    seconds_ = now() - start_;
    require(!screen::cell(list_, 0, 1).empty(), "and they have texts");
    process_.reset(OpenProcess(PROCESS_QUERY_INFORMATION, FALSE, client_.processId()));
  }
  double secondsToOpen() const { return seconds_; }
  double processorSecondsSoFar() const { return processorSeconds(process_.get()); }
  HWND list() const { return list_; }
  void close() { require(client_.quit(), "the mail client ends"); }

  // Seconds from the key until the list has moved on and is painted, and the pane shows the row that has the focus.
  double pageDown() const {
    const LRESULT before = focused();
    const double start = now();
    PostMessageW(list_, WM_KEYDOWN, VK_NEXT, 0);
    waitFor([&] { return focused() != before && isPainted(); }, "the list moves on");
    const std::wstring subject = screen::cell(list_, static_cast<int>(focused()), 1);
    waitFor([&] { return screen::textOf(subject_) == subject; }, "the pane follows");
    return now() - start;
  }
  bool isAtTheEnd() const { return focused() + 1 == screen::rows(list_); }

 private:
  LRESULT focused() const {
    return SendMessageW(list_, LVM_GETNEXTITEM, static_cast<WPARAM>(-1), MAKELPARAM(LVNI_FOCUSED, 0));
  }
  bool isPainted() const { return !GetUpdateRect(list_, nullptr, FALSE); }

  struct Closes {
    void operator()(HANDLE handle) const { CloseHandle(handle); }
  };

  double start_;
  double seconds_ = 0;
  MailClientProcess client_;
  std::unique_ptr<void, Closes> process_;
  HWND explorer_ = nullptr;
  HWND list_ = nullptr;
  HWND subject_ = nullptr;
};

void scroll(const OpenWindow& window) {
  std::vector<double> pages;
  const double before = window.processorSecondsSoFar();
  while (!window.isAtTheEnd()) pages.push_back(window.pageDown());
  const double used = window.processorSecondsSoFar() - before;
  const auto count = static_cast<double>(pages.size());
  require(count > 100, "the list has many pages");
  std::sort(pages.begin(), pages.end());
  const std::string work = std::to_string(pages.size()) + " pages, each painted and its last row in the reading pane";
  report("a page down", pages[pages.size() / 2], 0.05, work);
  report("a page down, the slowest", pages.back(), "the same");
  report("a page down, processor time", used / count, 0.02, "the same");
}

}  // namespace

void opening(const wchar_t* store, int count) {
  std::printf("The mail client's window with %s text messages in its Inbox (the quickest of %d runs)\n",
              grouped(count).c_str(), runs);
  double processor = 60;
  const auto openOnce = [&] {
    OpenWindow window(store, count);
    processor = std::min(processor, window.processorSecondsSoFar());
    window.close();
    return window.secondsToOpen();
  };
  const auto quickestOf = [&](int times) {
    double seconds = openOnce();
    for (int i = 1; i < times; ++i) seconds = std::min(seconds, openOnce());
    return seconds;
  };
  const fs::path copy = fs::path(store) / "mailclient.cache";
  require(!fs::exists(copy), "the store is new");
  testing_support::setLoadBehavior(2);  // add-ins are loaded when the list is there
  report("the first start", openOnce(), "each message file opened; one run");
  require(fs::exists(copy), "it left its copy of them");
  report("a later start", quickestOf(runs), 1.0, "from the start of the process to the painted list");
  report("a later start, processor time", processor, "the same");
  OpenWindow window(store, count);
  scroll(window);
  window.close();
  testing_support::setLoadBehavior(3);
}

}  // namespace bench

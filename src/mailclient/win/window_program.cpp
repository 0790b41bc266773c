#include "mailclient/win/window_program.h"

#include <algorithm>
#include <cstdio>
#include <list>
#include <map>

#include "addin/platform/date.h"
#include "mailclient/built_in_commands.h"
#include "mailclient/view/folder_tree.h"
#include "mailclient/win/balloon.h"
#include "mailclient/win/explorer_frame.h"
#include "mailclient/win/inspector_frame.h"
#include "mailclient/win/key_router.h"
#include "mailclient/win/options_dialog.h"
#include "mailclient/win/phone_watch.h"
#include "mailclient/win/program.h"

namespace mailclient::win {
namespace {

constexpr UINT sweep = WM_APP + 1;         // delete the frames of closed windows
constexpr UINT connectPhone = WM_APP + 2;  // look for the phone, once the window is there
constexpr UINT_PTR phoneTimer = 1;
constexpr UINT_PTR sweepTimer = 2;
constexpr UINT sweepAgain = 200;  // milliseconds, while a closed window's frame is still at work
constexpr UINT phoneTick = 250;   // milliseconds, while the phone is at work

// The program, and the window behind all windows: it does not show, and serves what belongs to none of them.
class WindowProgram final : public Window, public Shell, public WindowsHost, public Program {
 public:
  WindowProgram(const ClientPtr& client, const WindowOptions& options)
      : Program(*client),
        client_(client),
        options_(options),
        settings_(client->store().state().settings),
        keys_([this](HWND top, MSG& message) { return routeKey(top, message); }) {}

  ~WindowProgram();

  int run();

  // ---- Shell
  MailClient& client() override { return *client_; }
  String setting(StringView name) const override;
  void putSetting(StringView name, const String& value) override { settings_[String(name)] = value; }
  String timeText(Date utc) const override;
  const PhoneActivity& phone() const override { return phone_; }
  void click(const ControlPtr& control) override;
  void open(const std::vector<MessagePtr>& messages) override;
  void answer(const MessagePtr& original, Answer kind) override;
  void newItem(Folder& folder, StringView messageClass) override;
  void exit() override;
  void tellError(void* owner, const RuntimeError& error) override;

  // ---- WindowsHost
  void opened(const ExplorerPtr& window) override;
  void opened(const InspectorPtr& window) override;
  void toFront(const ExplorerPtr& window) override;
  void toFront(const InspectorPtr& window) override;
  void closed(const ExplorerPtr& window) override;
  void closed(const InspectorPtr& window) override;
  void folderShown(const ExplorerPtr& window) override;
  void selectionChanged(const ExplorerPtr& window) override;
  void stateChanged(const ExplorerPtr& window) override;

  // ---- Program
  using Program::answer;
  std::vector<std::string> menuItems() override {
    const ExplorerFrame* const frame = activeFrame();
    return frame ? frame->menuItems() : std::vector<std::string>();
  }

 protected:
  LRESULT onMessage(UINT message, WPARAM wide, LPARAM extra) override;

 private:
  class OutboxWatch;

  void leaving(Steps& steps) override;
  void left(Steps& steps) override;
  bool routeKey(HWND top, MSG& message);
  void runBuiltIn(std::int32_t id);
  ExplorerFrame* activeFrame();
  HWND activeHandle();
  void retire(std::unique_ptr<Window> frame);
  void watchPhone();
  void showPhone();
  void showAssistantState();
  void endIfNoWindowIsLeft();
  void sweepRetired();

  ClientPtr client_;
  WindowOptions options_;
  std::map<String, String> settings_;
  PhoneActivity phone_;
  KeyRouter keys_;
  Ref<PhoneWatch> watch_;
  std::unique_ptr<OutboxWatch> outbox_;
  std::map<ExplorerWindow*, std::unique_ptr<ExplorerFrame>> explorers_;
  std::map<InspectorWindow*, std::unique_ptr<InspectorFrame>> inspectors_;
  std::list<std::unique_ptr<Window>> retired_;
  bool started_ = false;
};

// How many text messages wait to be sent.
class WindowProgram::OutboxWatch final : public FolderObserver {
 public:
  explicit OutboxWatch(WindowProgram& program)
      : program_(program), outbox_(program.client_->store().defaultFolder(DefaultFolder::Outbox)) {
    outbox_->addObserver(*this);
    look();
  }
  OutboxWatch(const OutboxWatch&) = delete;
  OutboxWatch& operator=(const OutboxWatch&) = delete;
  ~OutboxWatch() { outbox_->removeObserver(*this); }

  void itemAdded(const MessagePtr&) override { look(); }
  void itemChanged(const MessagePtr&) override {}
  void itemRemoved() override { look(); }

 private:
  void look() {
    const auto& all = outbox_->messages();
    const auto isText = [](const MessagePtr& m) { return isOfClass((*m)[Text::MessageClass], textMessageClass); };
    const auto waiting = std::count_if(all.begin(), all.end(), isText);
    const auto first = std::find_if(all.begin(), all.end(), isText);
    const std::size_t characters = first == all.end() ? 0 : (**first)[Text::Body].size();
    program_.phone_.outboxHolds(static_cast<std::size_t>(waiting), characters, GetTickCount());
    program_.showPhone();
  }

  WindowProgram& program_;
  std::shared_ptr<Folder> outbox_;
};

// ---- life
// ---------------------------------------------------------------------------------------------------------------

// The mail client lives on while anybody holds one of its objects.
WindowProgram::~WindowProgram() {
  client_->windows().host = nullptr;
  client_->endProgram = nullptr;
  client_->explorerBars().changed = [] {};
  client_->explorerBars().runBuiltIn = nullptr;
  client_->assistant().present = nullptr;
  client_->store().foldersChanged = [] {};
}

int WindowProgram::run() {
  const INITCOMMONCONTROLSEX controls{sizeof(INITCOMMONCONTROLSEX),
                                      ICC_WIN95_CLASSES | ICC_STANDARD_CLASSES | ICC_LINK_CLASS};
  InitCommonControlsEx(&controls);
  if (!create({L"Marrick mail client", u"Mail Client", WS_POPUP, WS_EX_TOOLWINDOW, RECT{0, 0, 0, 0}})) return 3;
  client_->windows().host = this;
  client_->endProgram = [this] { quit(); };
  client_->explorerBars().changed = [this] {
    for (const auto& [window, frame] : explorers_) frame->refreshCommands();
  };
  client_->explorerBars().runBuiltIn = [this](std::int32_t id) { runBuiltIn(id); };
  client_->assistant().on = setting(u"assistant") != u"0";
  client_->assistant().present = [this](const BalloonState& balloon) { return showBalloon(activeHandle(), balloon); };
  client_->store().foldersChanged = [this] {
    for (const auto& [window, frame] : explorers_) frame->foldersChanged();
  };
  outbox_ = std::make_unique<OutboxWatch>(*this);

  std::unique_ptr<ConsoleInput> input;
  if (options_.console) input = std::make_unique<ConsoleInput>([this](const std::string& line) { execute(line); });
  if (options_.explorer) {
    auto folder = folderAt(client_->store(), setting(u"explorer.folder"));
    if (!folder || folder == client_->store().root()) folder = client_->store().defaultFolder(DefaultFolder::Inbox);
    client_->windows().openExplorer(folder);
    if (explorers_.empty()) return 3;
  }
  showAssistantState();
  PostMessageW(handle(), connectPhone, 0, 0);
  started_ = true;
  loadAddIns();
  if (options_.console) answer("0 ready");
  if (options_.explorer) endIfNoWindowIsLeft();
  return serveMessages();
}

void WindowProgram::leaving(Steps& steps) {
  for (const auto& [window, frame] : explorers_) frame->rememberPlace();
  steps.run([&] {
    if (watch_) watch_->release();
  });
  KillTimer(handle(), phoneTimer);
}

void WindowProgram::left(Steps& steps) {
  settings_[u"assistant"] = client_->assistant().on ? u"1" : u"0";
  steps.run([&] { client_->store().saveSettings(settings_); });
  outbox_ = nullptr;
  if (steps.failure() && !options_.console) tellError(nullptr, *steps.failure());
}

void WindowProgram::endIfNoWindowIsLeft() {
  const Windows& windows = client_->windows();
  if (started_ && !isEnding() && windows.explorers().empty() && windows.inspectors().empty()) quit();
}

void WindowProgram::exit() {
  // As the user would do it: a window with changes may ask, and stay.
  for (const InspectorPtr& window : std::vector(client_->windows().inspectors()))
    if (const auto at = inspectors_.find(window.get()); at != inspectors_.end())
      SendMessageW(at->second->handle(), WM_CLOSE, 0, 0);
  if (!client_->windows().inspectors().empty()) return;
  for (const ExplorerPtr& window : std::vector(client_->windows().explorers()))
    if (const auto at = explorers_.find(window.get()); at != explorers_.end())
      SendMessageW(at->second->handle(), WM_CLOSE, 0, 0);
}

// A frame may be closed from inside its own messages: it goes later.
void WindowProgram::retire(std::unique_ptr<Window> frame) {
  retired_.push_back(std::move(frame));
  PostMessageW(handle(), sweep, 0, 0);
  endIfNoWindowIsLeft();
}

void WindowProgram::sweepRetired() {
  retired_.remove_if([](const auto& frame) { return !frame->isServing(); });
  if (retired_.empty())
    KillTimer(handle(), sweepTimer);
  else
    SetTimer(handle(), sweepTimer, sweepAgain, nullptr);
}

LRESULT WindowProgram::onMessage(UINT message, WPARAM wide, LPARAM extra) {
  switch (message) {
    case sweep:
      sweepRetired();
      return 0;
    case connectPhone:
      watchPhone();
      return 0;
    case WM_TIMER:
      if (wide == phoneTimer) showPhone();
      if (wide == sweepTimer) sweepRetired();
      return 0;
    // The user logs off, and the process may be ended as soon as this has been served.
    case WM_ENDSESSION:
      if (wide) quit();
      return 0;
    default:
      return byDefault(message, wide, extra);
  }
}

// ---- phone
// --------------------------------------------------------------------------------------------------------------

void WindowProgram::watchPhone() {
  if (isEnding()) return;
  watch_ = make<PhoneWatch>(phone_, [this] { showPhone(); });
  watch_->connect();
}

void WindowProgram::showPhone() {
  if (isEnding() || !handle()) return;
  for (const auto& [window, frame] : explorers_) frame->showPhone();
  if (phone_.isWorking(GetTickCount()))
    SetTimer(handle(), phoneTimer, phoneTick, nullptr);
  else
    KillTimer(handle(), phoneTimer);
}

// ---- windows
// ------------------------------------------------------------------------------------------------------------

void WindowProgram::opened(const ExplorerPtr& window) {
  auto frame = std::make_unique<ExplorerFrame>(*this, window);
  ExplorerFrame& shown = *frame;
  explorers_[window.get()] = std::move(frame);
  const Serving atWork(shown);  // it may be closed while it comes to the front
  if (!shown.open()) client_->windows().close(window);
}

void WindowProgram::opened(const InspectorPtr& window) {
  auto frame = makeInspector(*this, window);
  InspectorFrame& shown = *frame;
  inspectors_[window.get()] = std::move(frame);
  const Serving atWork(shown);  // it may be closed while it comes to the front
  const MessagePtr message = window->message;
  if (!shown.open()) {
    client_->windows().close(window);
    return;
  }
  if (message->unread && message->saved() && !message->gone)
    attempt(*this, nullptr, [&] { client_->store().setUnread(message, false); });
}

void WindowProgram::toFront(const ExplorerPtr& window) {
  if (const auto at = explorers_.find(window.get()); at != explorers_.end()) at->second->toFront();
}

void WindowProgram::toFront(const InspectorPtr& window) {
  if (const auto at = inspectors_.find(window.get()); at != inspectors_.end()) at->second->toFront();
}

void WindowProgram::closed(const ExplorerPtr& window) {
  const auto at = explorers_.find(window.get());
  if (at == explorers_.end()) return;
  auto frame = std::move(at->second);
  explorers_.erase(at);
  frame->close();
  retire(std::move(frame));
}

void WindowProgram::closed(const InspectorPtr& window) {
  const auto at = inspectors_.find(window.get());
  if (at == inspectors_.end()) return;
  auto frame = std::move(at->second);
  inspectors_.erase(at);
  frame->close();
  retire(std::move(frame));
}

void WindowProgram::folderShown(const ExplorerPtr& window) {
  if (const auto at = explorers_.find(window.get()); at != explorers_.end()) at->second->showFolder();
}

void WindowProgram::selectionChanged(const ExplorerPtr& window) {
  if (const auto at = explorers_.find(window.get()); at != explorers_.end()) at->second->showSelection();
}

void WindowProgram::stateChanged(const ExplorerPtr& window) {
  if (const auto at = explorers_.find(window.get()); at != explorers_.end()) at->second->showState();
}

ExplorerFrame* WindowProgram::activeFrame() {
  const HWND active = GetActiveWindow();
  for (const auto& [window, frame] : explorers_)
    if (frame->handle() == active) return frame.get();
  if (client_->windows().explorers().empty()) return nullptr;
  const auto at = explorers_.find(client_->windows().explorers().back().get());
  return at == explorers_.end() ? nullptr : at->second.get();
}

HWND WindowProgram::activeHandle() {
  for (const auto& [window, frame] : inspectors_)
    if (frame->handle() == GetActiveWindow()) return frame->handle();
  const ExplorerFrame* const frame = activeFrame();
  return frame ? frame->handle() : nullptr;
}

// Explorers: the keys of the commands, and Tab from pane to pane. Inspectors: dialog keys.
bool WindowProgram::routeKey(HWND top, MSG& message) {
  const bool down = message.message == WM_KEYDOWN;
  const bool control = GetKeyState(VK_CONTROL) < 0;
  for (const auto& [window, frame] : explorers_) {
    if (frame->handle() != top) continue;
    if (down && message.wParam == VK_TAB && !control) {
      const HWND next = GetNextDlgTabItem(top, message.hwnd, GetKeyState(VK_SHIFT) < 0);
      if (next) SetFocus(next);
      return true;
    }
    // Text that is read may be marked as a whole with the same key.
    if (down && control && message.wParam == 'A' && frame->isText(message.hwnd)) return false;
    return TranslateAcceleratorW(top, commandKeys(), &message) != 0;
  }
  for (const auto& [window, frame] : inspectors_) {
    if (frame->handle() != top) continue;
    if (down && frame->onKey(message.wParam, control)) return true;
    // In a text of many lines Enter is a line break, which IsDialogMessage leaves to it.
    return IsDialogMessageW(top, &message) != 0;
  }
  return false;
}

// ---- commands
// -----------------------------------------------------------------------------------------------------------

String WindowProgram::setting(StringView name) const {
  const auto at = settings_.find(String(name));
  return at == settings_.end() ? String() : at->second;
}

// Empty for what no calendar has.
String WindowProgram::timeText(Date utc) const {
  if (!platform::isInCalendar(utc)) return {};
  const Date local = client_->environment().toLocal(utc);
  if (!platform::isInCalendar(local)) return {};
  const platform::DateParts parts = platform::partsOf(local);
  SYSTEMTIME time{};
  time.wYear = static_cast<WORD>(parts.year);
  time.wMonth = static_cast<WORD>(parts.month);
  time.wDay = static_cast<WORD>(parts.day);
  time.wHour = static_cast<WORD>(parts.hour);
  time.wMinute = static_cast<WORD>(parts.minute);
  wchar_t day[80] = L"";
  wchar_t hour[80] = L"";
  GetDateFormatW(LOCALE_USER_DEFAULT, DATE_SHORTDATE, &time, nullptr, day, 80);
  GetTimeFormatW(LOCALE_USER_DEFAULT, TIME_NOSECONDS, &time, nullptr, hour, 80);
  return String(view(day)) + u" " + String(view(hour));
}

void WindowProgram::click(const ControlPtr& control) {
  const bool ofAddIn = !control->builtIn;
  if (ofAddIn) phone_.commandBegan();
  showPhone();
  attempt(*this, activeHandle(), [&] { client_->explorerBars().click(control); });
  saveButtons();
  if (ofAddIn) phone_.commandEnded(GetTickCount());
  showPhone();
}

void WindowProgram::open(const std::vector<MessagePtr>& messages) {
  constexpr std::size_t most = 20;  // a slip of the hand must not open thousands of windows
  attempt(*this, activeHandle(), [&] {
    for (std::size_t i = 0; i < messages.size() && i < most; ++i)
      if (!messages[i]->gone) client_->windows().openInspector(messages[i]);
  });
}

void WindowProgram::answer(const MessagePtr& original, Answer kind) {
  attempt(*this, activeHandle(), [&] {
    if (const MessagePtr made = answerTo(*client_, original, kind)) client_->windows().openInspector(made);
  });
}

void WindowProgram::newItem(Folder& folder, StringView messageClass) {
  attempt(*this, activeHandle(), [&] { client_->windows().openInspector(client_->createItem(folder, messageClass)); });
}

void WindowProgram::tellError(void* owner, const RuntimeError& error) {
  MessageBoxW(static_cast<HWND>(owner), wide(error.description), L"Mail Client", MB_OK | MB_ICONEXCLAMATION);
}

void WindowProgram::showAssistantState() {
  constexpr std::int32_t down = -1;  // msoButtonDown
  for (const ControlPtr& control : client_->explorerBars().controlsOf(command::assistant))
    control->state = client_->assistant().on ? down : 0;
  client_->explorerBars().changed();
}

void WindowProgram::runBuiltIn(std::int32_t id) {
  Store& store = client_->store();
  ExplorerFrame* const frame = activeFrame();
  switch (id) {
    case command::newMail:
      newItem(*store.defaultFolder(DefaultFolder::Drafts), messageClassOf(ItemType::Mail));
      return;
    case command::newContact: {
      const auto shown = frame ? frame->window()->folder : nullptr;
      const bool isContacts = shown && shown->type() == ItemType::Contact;
      newItem(isContacts ? *shown : *store.defaultFolder(DefaultFolder::Contacts), messageClassOf(ItemType::Contact));
      return;
    }
    case command::exit:
      exit();
      return;
    case command::options:
      showOptions(*this, activeHandle());
      showAssistantState();
      return;
    case command::assistant:
      client_->assistant().on = !client_->assistant().on;
      client_->assistant().visible = client_->assistant().on;
      showAssistantState();
      return;
    case command::about:
      MessageBoxW(activeHandle(),
                  L"Mail Client\r\n\r\nA small stand-in for the mail client that the add-in is written for.",
                  L"About Mail Client", MB_OK | MB_ICONINFORMATION);
      return;
    default:
      if (frame) frame->run(id);
  }
}

}  // namespace

int runWindows(const ClientPtr& client, const WindowOptions& options) {
  WindowProgram program(client, options);
  return program.run();
}

}  // namespace mailclient::win

#include "support/win32/mail_client_process.h"

#include <atomic>

#include "com/windows.h"

namespace testing_support {
namespace {

class Handle {
 public:
  Handle() = default;
  Handle(const Handle&) = delete;
  Handle& operator=(const Handle&) = delete;
  ~Handle() { close(); }
  HANDLE get() const { return handle_; }
  HANDLE* put() { return &handle_; }
  void close() {
    if (handle_) CloseHandle(handle_);
    handle_ = nullptr;
  }

 private:
  HANDLE handle_ = nullptr;
};

}  // namespace

std::wstring productFolder() {
  wchar_t path[MAX_PATH];
  GetModuleFileNameW(nullptr, path, MAX_PATH);
  std::wstring folder = path;
  folder.resize(folder.rfind(L'\\'));
  folder.resize(folder.rfind(L'\\'));
  return folder + L"\\bin";
}

// The process and its standard streams. Its lines are collected by a thread.
class MailClientProcess::Pipes {
 public:
  explicit Pipes(std::wstring command) {
    InitializeCriticalSection(&lock_);
    arrived_ = CreateEventW(nullptr, FALSE, FALSE, nullptr);
    start(std::move(command));
    reader_ = CreateThread(nullptr, 0, &Pipes::read, this, 0, nullptr);
  }
  Pipes(const Pipes&) = delete;
  Pipes& operator=(const Pipes&) = delete;
  ~Pipes() {
    if (isRunning()) TerminateProcess(process_.get(), 99);
    input_.close();
    stop_ = true;
    DWORD written = 0;
    WriteFile(wake_.get(), "\n", 1, &written, nullptr);
    WaitForSingleObject(reader_, 5000);
    CloseHandle(reader_);
    CloseHandle(arrived_);
    DeleteCriticalSection(&lock_);
  }

  bool isRunning() const { return process_.get() && WaitForSingleObject(process_.get(), 0) == WAIT_TIMEOUT; }
  bool waitForEnd(DWORD milliseconds) const {
    return WaitForSingleObject(process_.get(), milliseconds) == WAIT_OBJECT_0;
  }
  void kill() {
    TerminateProcess(process_.get(), 99);
    waitForEnd(5000);
  }
  DWORD id() const { return id_; }
  DWORD exitCode() const {
    DWORD code = 0;
    GetExitCodeProcess(process_.get(), &code);
    return code;
  }

  void write(const std::string& line) {
    DWORD written = 0;
    WriteFile(input_.get(), line.data(), static_cast<DWORD>(line.size()), &written, nullptr);
  }

  // Waits until `take`, called with all lines so far, is content.
  template <class F>
  bool waitFor(DWORD milliseconds, F&& take) {
    const DWORD start = GetTickCount();
    for (bool over = false;;) {
      const bool running = isRunning();
      EnterCriticalSection(&lock_);
      const bool content = take(lines_);
      LeaveCriticalSection(&lock_);
      if (content) return true;
      const DWORD passed = GetTickCount() - start;
      if (passed >= milliseconds || over) return false;
      over = !running;  // one more look: its last lines may be on their way
      WaitForSingleObject(arrived_, milliseconds - passed < 200 ? milliseconds - passed : 200);
    }
  }

 private:
  void start(std::wstring command) {
    SECURITY_ATTRIBUTES inherited{sizeof(SECURITY_ATTRIBUTES), nullptr, TRUE};
    Handle childInput;
    Handle childOutput;
    CreatePipe(childInput.put(), input_.put(), &inherited, 0);
    CreatePipe(output_.put(), childOutput.put(), &inherited, 0);
    // What the process starts may keep its output open after its end: the reader is woken by us.
    DuplicateHandle(GetCurrentProcess(), childOutput.get(), GetCurrentProcess(), wake_.put(), 0, FALSE,
                    DUPLICATE_SAME_ACCESS);
    SetHandleInformation(input_.get(), HANDLE_FLAG_INHERIT, 0);
    SetHandleInformation(output_.get(), HANDLE_FLAG_INHERIT, 0);
    STARTUPINFOW startup{};
    startup.cb = sizeof startup;
    startup.dwFlags = STARTF_USESTDHANDLES;
    startup.hStdInput = childInput.get();
    startup.hStdOutput = childOutput.get();
    startup.hStdError = GetStdHandle(STD_ERROR_HANDLE);
    PROCESS_INFORMATION information{};
    if (!CreateProcessW(nullptr, command.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr, &startup, &information))
      return;
    CloseHandle(information.hThread);
    *process_.put() = information.hProcess;
    id_ = information.dwProcessId;
  }

  static DWORD WINAPI read(void* self) {
    auto& pipes = *static_cast<Pipes*>(self);
    std::string line;
    char buffer[4096];
    DWORD count = 0;
    while (ReadFile(pipes.output_.get(), buffer, sizeof buffer, &count, nullptr) && count > 0 && !pipes.stop_) {
      for (DWORD i = 0; i < count; ++i) {
        if (buffer[i] == '\n') {
          pipes.add(std::move(line));
          line.clear();
        } else if (buffer[i] != '\r') {
          line += buffer[i];
        }
      }
    }
    return 0;
  }
  void add(std::string line) {
    EnterCriticalSection(&lock_);
    lines_.push_back(std::move(line));
    LeaveCriticalSection(&lock_);
    SetEvent(arrived_);
  }

  CRITICAL_SECTION lock_{};
  HANDLE arrived_ = nullptr;
  HANDLE reader_ = nullptr;
  Handle process_;
  Handle input_;
  Handle output_;
  Handle wake_;  // the other end of output_
  DWORD id_ = 0;
  std::atomic<bool> stop_{false};
  std::vector<std::string> lines_;
};

MailClientProcess::MailClientProcess(NotAwaited, const std::wstring& arguments, const std::wstring& mode)
    : pipes_(std::make_unique<Pipes>(L"\"" + productFolder() + L"\\mailclient.exe\" " + mode + L" " + arguments)) {}

MailClientProcess::MailClientProcess(const std::wstring& arguments, const std::wstring& mode)
    : MailClientProcess(NotAwaited{}, arguments, mode) {
  awaitReady();
}

bool MailClientProcess::awaitReady() {
  ready_ = answerTo(0, 60000).result == "ready";
  return ready_;
}

MailClientProcess::~MailClientProcess() = default;

bool MailClientProcess::isRunning() const { return pipes_->isRunning(); }
std::uint32_t MailClientProcess::processId() const { return pipes_->id(); }
std::uint32_t MailClientProcess::exitCode() const { return pipes_->exitCode(); }
bool MailClientProcess::waitForEnd(std::uint32_t milliseconds) const { return pipes_->waitForEnd(milliseconds); }
void MailClientProcess::kill() { pipes_->kill(); }

int MailClientProcess::send(std::string_view command) {
  pipes_->write(std::string(command) + "\n");
  return ++sent_;
}

Answer MailClientProcess::answerTo(int number, std::uint32_t milliseconds) {
  const std::string prefix = std::to_string(number) + " ";
  Answer answer;
  const bool came = pipes_->waitFor(milliseconds, [&](const std::vector<std::string>& lines) {
    answer = {};
    for (const std::string& line : lines) {
      if (!line.starts_with(prefix)) continue;
      const std::string text = line.substr(prefix.size());
      if (text.starts_with("- ")) {
        answer.lines.push_back(text.substr(2));
        continue;
      }
      const std::string kind = text.substr(0, text.find(' '));
      answer.ok = kind == "ok" || kind == "ready";
      answer.result = kind == text ? (kind == "ok" ? "" : kind) : text.substr(kind.size() + 1);
      return true;
    }
    return false;
  });
  if (!came) answer = {false, "no answer", {}};
  return answer;
}

bool MailClientProcess::quit(std::uint32_t milliseconds) {
  send("quit");
  return waitForEnd(milliseconds);
}

std::string MailClientProcess::field(const std::string& line, const std::string& name) {
  const std::size_t at = (" " + line).find(" " + name + "=");
  if (at == std::string::npos) return {};
  const std::string value = line.substr(at + name.size() + 1);
  if (!value.starts_with('"')) return value.substr(0, value.find(' '));
  std::size_t end = 1;
  while (end < value.size() && value[end] != '"') end += value[end] == '\\' ? 2 : 1;
  return value.substr(1, end - 1);
}

}  // namespace testing_support

// A program with pipes for its standard streams, driven line by line.
#pragma once

#include <atomic>
#include <string>
#include <vector>

#include "com/windows.h"
#include "support/patience.h"

namespace testing_support {

class PipeHandle {
 public:
  PipeHandle() = default;
  PipeHandle(const PipeHandle&) = delete;
  PipeHandle& operator=(const PipeHandle&) = delete;
  ~PipeHandle() { close(); }
  HANDLE get() const { return handle_; }
  HANDLE* put() { return &handle_; }
  void close() {
    if (handle_) CloseHandle(handle_);
    handle_ = nullptr;
  }

 private:
  HANDLE handle_ = nullptr;
};

// The process and its standard streams. Its lines are collected by a thread.
class PipedProcess {
 public:
  explicit PipedProcess(std::wstring command) {
    InitializeCriticalSection(&lock_);
    arrived_ = CreateEventW(nullptr, FALSE, FALSE, nullptr);
    start(std::move(command));
    reader_ = CreateThread(nullptr, 0, &PipedProcess::read, this, 0, nullptr);
  }
  PipedProcess(const PipedProcess&) = delete;
  PipedProcess& operator=(const PipedProcess&) = delete;
  ~PipedProcess() {
    if (isRunning()) TerminateProcess(process_.get(), 99);
    input_.close();
    stop_ = true;
    DWORD written = 0;
    WriteFile(wake_.get(), "\n", 1, &written, nullptr);
    WaitForSingleObject(reader_, patience);
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
    waitForEnd(patience);
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
    PipeHandle childInput;
    PipeHandle childOutput;
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
    auto& pipes = *static_cast<PipedProcess*>(self);
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
  PipeHandle process_;
  PipeHandle input_;
  PipeHandle output_;
  PipeHandle wake_;  // the other end of output_
  DWORD id_ = 0;
  std::atomic<bool> stop_{false};
  std::vector<std::string> lines_;
};

}  // namespace testing_support

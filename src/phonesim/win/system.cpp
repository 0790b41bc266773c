#include "phonesim/line/system.h"

#include <array>
#include <stdexcept>
#include <system_error>

#include <windows.h>
#include <process.h>

namespace phonesim {

namespace {

struct Reading {
  EventLoop& loop;
  std::function<void(std::string_view)> receive;
};

// Pipes and consoles have no reading that the loop could wait for: a thread does nothing but read and hand on.
unsigned __stdcall readForEver(void* argument) {
  const std::unique_ptr<Reading> reading(static_cast<Reading*>(argument));
  const HANDLE input = GetStdHandle(STD_INPUT_HANDLE);
  std::array<char, 4096> buffer;
  DWORD count = 0;
  while (ReadFile(input, buffer.data(), static_cast<DWORD>(buffer.size()), &count, nullptr) && count > 0)
    reading->loop.post([receive = reading->receive, octets = std::string(buffer.data(), count)] { receive(octets); });
  reading->loop.post([receive = reading->receive] { receive({}); });
  return 0;
}

}  // namespace

Terminal openTerminal(EventLoop&) { throw std::runtime_error("There are no pseudo-terminals on this system."); }
void linkTerminal(const std::string&, const std::string&) {}
void removeLink(const std::string&) noexcept {}

bool connectionsKeepPorts() { return false; }

void readStandardInput(EventLoop& loop, std::function<void(std::string_view)> receive) {
  auto reading = std::make_unique<Reading>(Reading{loop, std::move(receive)});
  const auto thread = reinterpret_cast<HANDLE>(_beginthreadex(nullptr, 0, readForEver, reading.get(), 0, nullptr));
  if (!thread) throw std::runtime_error("Standard input cannot be read.");
  static_cast<void>(reading.release());  // the thread's now
  CloseHandle(thread);
}

}  // namespace phonesim

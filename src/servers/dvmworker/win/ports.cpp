#include "servers/dvmworker/win/ports.h"

#include <algorithm>

#include "com/windows.h"
#include "phone/line/open_line.h"
#include "phone/line/steady_clock.h"
#include "servers/common/win/settings.h"
#include "servers/common/win/window_scheduler.h"
#include "servers/dvmworker/win/send_file.h"
#include "servers/dvmworker/win/trace_file.h"
#include "servers/modem/modem_phone.h"
#include "servers/modem/win/line_thread.h"

namespace servers::dvmworker {

using phone::LineName;
using platform::Ref;

namespace {

constexpr const wchar_t* serialKey = L"HARDWARE\\DEVICEMAP\\SERIALCOMM";
// Less than a line that is given up may take to end.
constexpr phone::Milliseconds connectLimit{3000};

constinit const phone::SteadyClock clockOfLines;

// Names of ports and hosts; other characters make a name that does not exist.
std::string narrow(platform::StringView text) {
  std::string result;
  for (const char16_t c : text) result += c < 0x80 ? static_cast<char>(c) : '?';
  return result;
}

}  // namespace

Ports portsOfUser() {
  // Missing is no different from empty: a user who has set nothing yet must not have messages "sent" by a simulation.
  const auto list = settings::text(settings::workerKey, u"Ports").value_or(platform::String());
  const phone::LineNames read = phone::parseLineNames(narrow(list));
  Ports ports;
  for (const LineName& name : read.names)
    if (std::find(ports.names.begin(), ports.names.end(), name) == ports.names.end()) ports.names.push_back(name);
  ports.serialOnes = read.names.empty() && read.unreadable.empty();
  return ports;
}

std::vector<LineName> serialPortsOfSystem() {
  std::vector<LineName> ports;
  HKEY key = nullptr;
  if (RegOpenKeyExW(HKEY_LOCAL_MACHINE, serialKey, 0, KEY_QUERY_VALUE, &key) != ERROR_SUCCESS) return ports;
  for (DWORD i = 0;; ++i) {
    wchar_t device[256];
    char16_t port[64];
    DWORD deviceLength = static_cast<DWORD>(std::size(device));
    DWORD size = sizeof port;
    DWORD type = 0;
    const LONG result =
        RegEnumValueW(key, i, device, &deviceLength, nullptr, &type, reinterpret_cast<BYTE*>(port), &size);
    if (result == ERROR_MORE_DATA) continue;  // no name of a port is that long
    if (result != ERROR_SUCCESS) break;
    platform::StringView text(port, size / sizeof *port);
    text = text.substr(0, text.find(u'\0'));
    if (type == REG_SZ && !text.empty()) ports.push_back({LineName::Kind::Serial, narrow(text), {}});
  }
  RegCloseKey(key);
  return ports;
}

std::shared_ptr<modem::SendRecord> recordOfSends() {
  return std::make_shared<modem::SendRecord>(windowScheduler(), clockOfLines, std::make_unique<SendFile>());
}

Ref<handset::Phone> modemAt(const LineName& name, std::shared_ptr<modem::SendRecord> record,
                            std::function<bool()> isHeard) {
  auto opener = [name] { return phone::openLine(name, clockOfLines.now() + connectLimit); };
  // Anything but what was used a moment ago: a message's parts must not be taken for those of another one.
  const auto reference = static_cast<std::uint8_t>(GetTickCount() / 1000);
  return platform::make<modem::ModemPhone>(windowScheduler(), clockOfLines, std::move(record), std::move(isHeard),
                                           modem::makeLineThread(std::move(opener), clockOfLines, traceOf(name)),
                                           reference);
}

}  // namespace servers::dvmworker

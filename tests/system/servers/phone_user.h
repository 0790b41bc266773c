// What a client does with the phones of the running server, and where they come from.
#pragma once

#include <cwchar>

#include <gtest/gtest.h>

#include "addin/platform/dvmworkerlib.h"
#include "support/text.h"
#include "system/servers/registered_servers.h"
#include "unit/servers/recording.h"

namespace servers_tests {

inline constexpr std::int32_t simCard = 2;
inline constexpr std::int32_t allStatuses = 4;

inline platform::dvmworkerlib::Worker newWorker() {
  return platform::as<platform::dvmworkerlib::Worker>(create(platform::dvmworkerlib::clsidWorker));
}

// The first phone, once it is connected.
inline platform::dvmworkerlib::CellPhone connectedPhone() {
  const auto phone = newWorker().CellPhones().Item(0);
  EXPECT_TRUE(serveUntil([&] { return phone.IsConnected(); }));
  return phone;
}

// "1 +46701111111 text" for each message on the SIM card.
inline std::vector<std::string> textsOf(const platform::sms_objectlib::SMS& sms) {
  const auto answers = platform::make<servers_testing::AnswerRecorder>(sms);
  sms.ListMessages(simCard, allStatuses);
  serveUntil([&] { return !answers->lines.empty() && answers->lines.back().find(" 0") != std::string::npos; });
  std::vector<std::string> texts;
  for (const auto& message : answers->messages)
    texts.push_back(std::to_string(message.Index()) + " " + testing_support::utf8(message.Originator()) + " " +
                    testing_support::utf8(message.Text()));
  return texts;
}

// What a file holds that another process may be writing; nothing when it is not there.
inline std::optional<std::string> contentsOf(const platform::String& path) {
  const HANDLE file =
      CreateFileW(wide(path), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING, 0, nullptr);
  if (file == INVALID_HANDLE_VALUE) return std::nullopt;
  std::string text(GetFileSize(file, nullptr), '\0');
  DWORD read = 0;
  EXPECT_TRUE(ReadFile(file, text.data(), static_cast<DWORD>(text.size()), &read, nullptr));
  CloseHandle(file);
  return text;
}

// The list that the system keeps of its serial ports, with ports that are not there.
class SerialPorts {
 public:
  SerialPorts() {
    RegCreateKeyExW(HKEY_LOCAL_MACHINE, L"HARDWARE\\DEVICEMAP\\SERIALCOMM", 0, nullptr, REG_OPTION_VOLATILE,
                    KEY_QUERY_VALUE | KEY_SET_VALUE, nullptr, &key_, nullptr);
  }
  SerialPorts(const SerialPorts&) = delete;
  SerialPorts& operator=(const SerialPorts&) = delete;
  ~SerialPorts() {
    for (const wchar_t* const name : {L"\\Device\\MarrickTest0", L"\\Device\\MarrickTest1"})
      RegDeleteValueW(key_, name);
    RegCloseKey(key_);
  }
  void add(const wchar_t* device, const wchar_t* port) {
    RegSetValueExW(key_, device, 0, REG_SZ, reinterpret_cast<const BYTE*>(port),
                   static_cast<DWORD>((std::wcslen(port) + 1) * sizeof *port));
  }
  std::int32_t count() const {
    DWORD values = 0;
    RegQueryInfoKeyW(key_, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, &values, nullptr, nullptr, nullptr,
                     nullptr);
    return static_cast<std::int32_t>(values);
  }

 private:
  HKEY key_ = nullptr;
};

// The transaction.
inline std::int32_t send(const platform::sms_objectlib::SMS& sms, platform::StringView number,
                         platform::StringView text) {
  const auto message = sms.CreateShortMessage();
  message.Destination(platform::String(number));
  message.Text(platform::String(text));
  return message.Send();
}

// The status of the answer to a request, with a blank in front.
inline std::string answerTo(const platform::sms_objectlib::SMS& sms, const std::function<std::int32_t()>& request) {
  const auto answers = platform::make<servers_testing::AnswerRecorder>(sms);
  const std::string transaction = std::to_string(request());
  EXPECT_TRUE(serveUntil([&] { return !answers->lines.empty(); }));
  return answers->lines.empty() ? "none" : answers->lines.back().substr(transaction.size());
}

}  // namespace servers_tests

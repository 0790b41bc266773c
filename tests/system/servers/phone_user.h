// What a client does with the phones of the running server.
#pragma once

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

#include "phone_test.h"

#include <algorithm>

namespace phone_tests {

[[maybe_unused]] static const auto* const registration = testing::AddGlobalTestEnvironment(new Registration);

PhoneTest::PhoneTest() { testing_support::setHandsetStateFile(folder_ + L"\\handset.txt"); }
PhoneTest::~PhoneTest() { phone_ = nullptr; }

void PhoneTest::startClient() {
  InstalledProduct::startClient();
  EXPECT_TRUE(ask("contact \"Anna Berg\" \"+46 (70) 111 22 33\"").ok);
}

Lines PhoneTest::phone(const std::string& command) {
  const Answer answer = phone_->ask(command);
  EXPECT_TRUE(answer.ok) << command << ": " << answer.result;
  return answer.lines;
}

bool PhoneTest::awaitSent(std::size_t count) {
  return testing_support::waitUntil([&] { return sent().size() == count; }, patience);
}

void PhoneTest::arrives(const std::string& text, const std::string& number) {
  phone("deliver " + number + ' ' + MailClientProcess::quoted(text));
  EXPECT_TRUE(phone_->awaitCopy());
}

Lines PhoneTest::bodies(const std::string& folder) {
  Lines all;
  for (const std::string& line : ask("list " + MailClientProcess::quoted(folder)).lines)
    all.push_back(MailClientProcess::field(line, "body"));
  return all;
}

Lines PhoneTest::tracedOf(std::size_t from, const Lines& beginnings) const {
  Lines lines = traced(from);
  std::erase_if(lines, [&](const std::string& line) {
    return std::none_of(beginnings.begin(), beginnings.end(),
                        [&](const std::string& beginning) { return line.starts_with(beginning); });
  });
  return lines;
}

Lines failedLines(std::int32_t status, int before) {
  const std::string number = std::to_string(status);
  return {"m_objSMS_OnNotifyResponse - TransID:#, Status:" + number + ", State:2", "disablar guard timer",
          "SendMessage Failed!!! TransactionID: # Status: " + number, "Failed count:" + std::to_string(before)};
}

}  // namespace phone_tests

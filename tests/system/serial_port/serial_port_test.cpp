// A modem at a serial port: phonesim at a pseudo-terminal, which Wine shows as COM7. run_serial_port starts it.

#include <cstdlib>

#include <gmock/gmock.h>

#include "phone/line/steady_clock.h"
#include "phone/line/tcp_line.h"
#include "support/errors.h"
#include "system/servers/phone_user.h"

namespace servers_tests {
namespace {

using namespace platform;
using servers_testing::NoticeRecorder;
using testing_support::errorNumberOf;
using Notices = std::vector<NoticeRecorder::Notice>;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::StartsWith;

// The simulator's console; the environment says where.
class Operator {
 public:
  Operator() : line_("127.0.0.1", std::getenv("PHONESIM_CONTROL"), in(10000)) {}

  // Its last line; empty when none came.
  std::string tell(const std::string& command) {
    line_.write(command + "\n", in(10000));
    std::string answer;
    for (std::string octets = "-"; !octets.empty();) {
      octets = line_.read(in(10000));
      std::erase(octets, '\r');
      answer += octets;
      const std::size_t end = answer.rfind('\n');
      const std::string last = end == std::string::npos ? "" : answer.substr(0, end);
      const std::size_t begin = last.rfind('\n') + 1;  // npos + 1 is the beginning
      if (last.substr(begin).starts_with("ok") || last.substr(begin).starts_with("error")) return last.substr(begin);
    }
    return {};
  }

 private:
  phone::Instant in(int milliseconds) const { return clock_.now() + phone::Milliseconds(milliseconds); }

  phone::SteadyClock clock_;
  phone::TcpLine line_;
};

class SerialPort : public RegisteredServers {
 protected:
  void SetUp() override {
    ASSERT_NE(std::getenv("PHONESIM_CONTROL"), nullptr) << "to be started by run_serial_port";
    console_.emplace();
    ASSERT_THAT(console_->tell("clear SM"), StartsWith("ok"));
    ASSERT_THAT(console_->tell("clear ME"), StartsWith("ok"));
    ASSERT_EQ(console_->tell("sent clear"), "ok");
    ports_.set(u"COM7");
  }

  std::optional<Operator> console_;
};

TEST_F(SerialPort, ModemBehindIt_ListsSendsAndDeletes) {
  const std::string longText = std::string(300, 'a') + " the end";
  ASSERT_EQ(console_->tell("deliver +46701111111 \"one\""), "ok stored");
  ASSERT_EQ(console_->tell("deliver +46701111111 \"" + longText + "\""), "ok stored");
  const auto phone = connectedPhone();
  EXPECT_EQ(phone.Name(), u"Marrick Simulated handset");
  const auto sms = phone.SMS();
  EXPECT_EQ(sms.StorageUsed(simCard), 4);  // one, and three parts
  EXPECT_THAT(textsOf(sms), ElementsAre("1 +46701111111 one", "2 +46701111111 " + longText));

  EXPECT_EQ(answerTo(sms, [&] { return send(sms, u"+46702222222", u"Hello"); }), " 0");
  EXPECT_EQ(console_->tell("sent"), "ok 1");
  // With characters that a terminal might take for commands, were it not raw, and in four parts.
  String odd(200, u'\u0444');
  odd += u"\r\n\U0001F600";
  EXPECT_EQ(answerTo(sms, [&] { return send(sms, u"+46702222222", odd); }), " 0");
  EXPECT_EQ(console_->tell("sent"), "ok 5");

  EXPECT_EQ(answerTo(sms, [&] { return sms.DeleteMessage(simCard, 2); }), " 0");
  EXPECT_EQ(console_->tell("list SM"), "ok 1");
  EXPECT_THAT(textsOf(sms), ElementsAre("1 +46701111111 one"));
}

TEST_F(SerialPort, ArrivingMessage_IsHeardOf) {
  const auto sms = connectedPhone().SMS();
  EXPECT_THAT(textsOf(sms), IsEmpty());
  ASSERT_EQ(console_->tell("deliver +46701111111 \"news\""), "ok stored");
  EXPECT_TRUE(serveUntil([&] { return sms.StorageUsed(simCard) == 1; }));
  EXPECT_THAT(textsOf(sms), ElementsAre("1 +46701111111 news"));
}

TEST_F(SerialPort, ModemPulledOut_IsLostAndFoundAgain) {
  ASSERT_EQ(console_->tell("deliver +46701111111 \"one\""), "ok stored");
  const auto worker = newWorker();
  const auto phone = worker.CellPhones().Item(0);
  ASSERT_TRUE(serveUntil([&] { return phone.IsConnected(); }));
  const auto notices = make<NoticeRecorder>(worker);
  serveFor(200);  // the notice of this finding may still be on its way
  notices->notices.clear();

  ASSERT_EQ(console_->tell("unplug"), "ok");
  EXPECT_TRUE(serveUntil([&] { return notices->notices.size() == 1; }));
  EXPECT_FALSE(worker.IsConnected());
  EXPECT_EQ(errorNumberOf([&] { phone.SMS().StorageUsed(simCard); }), static_cast<std::int32_t>(0x88880001));
  ASSERT_EQ(console_->tell("plug"), "ok");
  EXPECT_TRUE(serveUntil([&] { return notices->notices.size() == 2; }));
  EXPECT_EQ(notices->notices, (Notices{{0, phone}, {1, phone}}));
  EXPECT_THAT(textsOf(phone.SMS()), ElementsAre("1 +46701111111 one"));
  EXPECT_EQ(answerTo(phone.SMS(), [&] { return send(phone.SMS(), u"+46702222222", u"Hello"); }), " 0");
}

TEST_F(SerialPort, WithoutTheValue_TheModemIsFoundByItself) {
  ASSERT_EQ(console_->tell("deliver +46701111111 \"one\""), "ok stored");
  SerialPorts listed;
  listed.add(L"\\Device\\MarrickTest0", L"COM7");
  ports_.remove();
  const auto worker = newWorker();
  ASSERT_EQ(worker.CellPhones().Count(), listed.count());
  ASSERT_TRUE(serveUntil([&] { return worker.IsConnected(); }));
  std::vector<std::string> texts;
  for (std::int32_t i = 0; i < listed.count(); ++i)
    if (const auto phone = worker.CellPhones().Item(i); phone.IsConnected()) texts = textsOf(phone.SMS());
  EXPECT_THAT(texts, ElementsAre("1 +46701111111 one"));
}

}  // namespace
}  // namespace servers_tests

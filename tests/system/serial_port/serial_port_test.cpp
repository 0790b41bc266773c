// A modem at a serial port: phonesim at a pseudo-terminal, which Wine shows as COM7. run_serial_port starts it.

#include <cstdlib>

#include <gmock/gmock.h>

#include "phone/line/steady_clock.h"
#include "phone/line/tcp_line.h"
#include "support/errors.h"
#include "support/patience.h"
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
  Operator() : line_("127.0.0.1", std::getenv("PHONESIM_CONTROL"), in(testing_support::patience)) {}

  // Its last line; empty when none came.
  std::string tell(const std::string& command) {
    line_.write(command + "\n", in(testing_support::patience));
    std::string answer;
    for (std::string octets = "-"; !octets.empty();) {
      octets = line_.read(in(testing_support::patience));
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

  ~SerialPort() override {
    DeleteFileW(wide(traceFile_));
    RemoveDirectoryW(wide(file_ + u".trace"));
  }

  std::optional<Operator> console_;
  Setting traceFolder_{L"Software\\Marrick\\DVMWorker", L"TraceFolder"};
  String traceFile_ = file_ + u".trace\\port_COM7.txt";
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

TEST_F(SerialPort, Trace_IsNamedAfterThePortAndHoldsNoTextsAndNumbers) {
  ASSERT_EQ(console_->tell("deliver +46701111111 \"one\""), "ok stored");
  ASSERT_FALSE(contentsOf(traceFile_).has_value());
  traceFolder_.set(file_ + u".trace");
  {
    const auto sms = connectedPhone().SMS();
    EXPECT_EQ(answerTo(sms, [&] { return send(sms, u"+46702222222", u"Hello"); }), " 0");
    // The last that is asked when nothing else is to be done.
    const auto described = [&] {
      return contentsOf(traceFile_).value_or("").find("- service centre") != std::string::npos;
    };
    EXPECT_TRUE(serveUntil(described));
  }
  killWorker(handset());
  const std::string trace = contentsOf(traceFile_).value_or("none");
  std::size_t from = 0;
  for (const char* const line :
       {" > ATE0\r\n", " > AT+CMEE=1\r\n", " > AT+CMGF=0\r\n", " > AT+CNMI=2,1,0,0,0\r\n", " < +CMGL: 1,0,,"}) {
    const std::size_t found = trace.find(line, from);
    ASSERT_NE(found, std::string::npos) << line << trace;
    from = found;
  }
  // The one octet more is the service centre, of which there is none in the message.
  for (const char* const line :
       {" > AT+CMGS=18\r\n", " > <19 octets>\r\n", " < +CMGS: ", " - SIM: ready\r\n", " - network: the SIM's own\r\n",
        " - signal: -67 dBm\r\n", " - service centre on the SIM: \"***\"\r\n"})
    EXPECT_NE(trace.find(line, from), std::string::npos) << line << trace;
  // Texts and numbers of either message as they are and as they travel; those of the SIM and its service centre.
  for (const char* const secret : {"Hello", "C8329BFD06", "EFB719", "1111", "2222", "46700", "6407"})
    EXPECT_EQ(trace.find(secret), std::string::npos) << secret << trace;
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

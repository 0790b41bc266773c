// The value "Ports": phones of dvmworker.exe that stand behind lines, with phonesim.exe at the other end.

#include <algorithm>
#include <chrono>

#include <gmock/gmock.h>

#include "support/errors.h"
#include "support/win32/phonesim_process.h"
#include "system/servers/phone_user.h"

namespace servers_tests {
namespace {

using namespace platform;
using servers_testing::AnswerRecorder;
using servers_testing::NoticeRecorder;
using testing_support::errorNumberOf;
using testing_support::PhonesimProcess;
using Lines = std::vector<std::string>;
using Notices = std::vector<NoticeRecorder::Notice>;
using testing::ElementsAre;

// A process that is watched to its end.
class Ending {
 public:
  explicit Ending(std::int32_t id)
      : process_(OpenProcess(SYNCHRONIZE | PROCESS_QUERY_INFORMATION, FALSE, static_cast<DWORD>(id))) {}
  Ending(const Ending&) = delete;
  Ending& operator=(const Ending&) = delete;
  ~Ending() { CloseHandle(process_); }

  // 259 while it does not end.
  DWORD exitCode() const {
    serveUntil([this] { return WaitForSingleObject(process_, 0) == WAIT_OBJECT_0; });
    DWORD code = 0;
    GetExitCodeProcess(process_, &code);
    return code;
  }

 private:
  HANDLE process_;
};

class PortsOfUser : public RegisteredServers {
 protected:
  ~PortsOfUser() override {
    DeleteFileW(wide(memory_));
    DeleteFileW(wide(traceFile_));
    RemoveDirectoryW(wide(file_ + u".trace"));
  }

  static std::int32_t serverId() { return handset().get<std::int32_t>(u"ProcessId"); }

  // A handset with memories that outlive it.
  std::unique_ptr<PhonesimProcess> newPhone(const std::wstring& address) const {
    return std::make_unique<PhonesimProcess>(L"--manufacturer Acme --model T1 --memory \"" +
                                             std::wstring(wide(memory_)) + L"\" --listen " + address);
  }
  // The same, as the phone of the user.
  std::unique_ptr<PhonesimProcess> newPhoneInUse() {
    auto phonesim = newPhone(L"127.0.0.1:0");
    const std::string address = phonesim->awaitLine("* tcp ").value_or("");
    EXPECT_NE(address, "");
    ports_.set(u"tcp:" + String(address.begin(), address.end()));
    traceFile_ = file_ + u".trace\\tcp_" + String(address.begin(), address.end()) + u".txt";
    std::replace(traceFile_.begin() + static_cast<std::ptrdiff_t>(file_.size()), traceFile_.end(), u':', u'_');
    DeleteFileW(wide(traceFile_));
    return phonesim;
  }
  // What the trace's file holds.
  std::optional<std::string> traced() const { return contentsOf(traceFile_); }
  // A listing of the SIM card: how long its first answer took, and the number of messages.
  struct TimedListing {
    std::chrono::milliseconds first{};
    std::size_t messages = 0;
  };
  static TimedListing timed(const sms_objectlib::SMS& sms) {
    using Clock = std::chrono::steady_clock;
    const auto answers = make<AnswerRecorder>(sms);
    std::optional<Clock::time_point> answered;
    answers->inside = [&] {
      if (!answered) answered = Clock::now();
    };
    const auto asked = Clock::now();
    const std::string last = std::to_string(sms.ListMessages(simCard, allStatuses)) + " 0";
    EXPECT_TRUE(serveUntil([&] { return !answers->lines.empty() && answers->lines.back().starts_with(last); }));
    const auto first = answered.value_or(Clock::time_point::max()) - asked;
    return {std::chrono::duration_cast<std::chrono::milliseconds>(first), answers->messages.size()};
  }
  static std::int32_t sendHello(const sms_objectlib::SMS& sms) { return send(sms, u"+46702222222", u"Hello"); }
  static std::string answerToHello(const sms_objectlib::SMS& sms) {
    return answerTo(sms, [&] { return sendHello(sms); });
  }

  Setting traceFolder_{L"Software\\Marrick\\DVMWorker", L"TraceFolder"};
  Setting traceTexts_{L"Software\\Marrick\\DVMWorker", L"TraceTexts"};
  String memory_ = file_ + u".phone";
  String traceFile_;
};

TEST_F(PortsOfUser, PhoneBehindALine_IsUsedLostAndFoundAgain) {
  DeleteFileW(wide(memory_));
  auto phonesim = newPhone(L"127.0.0.1:0");
  const std::string address = phonesim->awaitLine("* tcp ").value_or("");
  ASSERT_NE(address, "");
  phonesim->type("deliver +46701111111 \"one\"");
  phonesim->type("deliver +46701111111 \"two\"");
  ASSERT_TRUE(phonesim->awaitLine("* stored SM 2"));
  ports_.set(u"tcp:" + String(address.begin(), address.end()));

  const Ending server(serverId());
  {
    const auto worker = newWorker();
    const auto notices = make<NoticeRecorder>(worker);
    ASSERT_EQ(worker.CellPhones().Count(), 1);
    const auto phone = worker.CellPhones().Item(0);
    ASSERT_TRUE(serveUntil([&] { return phone.IsConnected(); }));
    EXPECT_TRUE(worker.IsConnected());
    EXPECT_EQ(phone.Name(), u"Acme T1");
    const auto sms = phone.SMS();
    EXPECT_THAT(textsOf(sms), ElementsAre("1 +46701111111 one", "2 +46701111111 two"));

    const auto answers = make<AnswerRecorder>(sms);
    const auto message = sms.CreateShortMessage();
    message.Destination(u"+46702222222");
    message.Text(u"Hello");
    const std::int32_t sending = message.Send();
    EXPECT_TRUE(serveUntil([&] { return answers->lines.size() == 1; }));
    EXPECT_EQ(phonesim->awaitLine("* sent "), "+46702222222 \"Hello\"");
    const std::int32_t deletion = sms.DeleteMessage(simCard, 1);
    EXPECT_TRUE(serveUntil([&] { return answers->lines.size() == 2; }));
    EXPECT_THAT(answers->lines, ElementsAre(std::to_string(sending) + " 0", std::to_string(deletion) + " 0"));

    // It may have been found before there was a worker to tell of it.
    EXPECT_LE(notices->notices.size(), 1u);
    notices->notices.clear();
    phonesim->kill();
    EXPECT_TRUE(serveUntil([&] { return notices->notices.size() == 1; }));
    EXPECT_FALSE(worker.IsConnected());
    EXPECT_EQ(errorNumberOf([&] { sms.ListMessages(simCard, allStatuses); }), static_cast<std::int32_t>(0x88880001));
    phonesim = newPhone(std::wstring(address.begin(), address.end()));
    EXPECT_TRUE(serveUntil([&] { return notices->notices.size() == 2; }));
    EXPECT_EQ(notices->notices, (Notices{{0, phone}, {1, phone}}));
    EXPECT_THAT(textsOf(sms), ElementsAre("2 +46701111111 two"));
  }
  EXPECT_EQ(server.exitCode(), 0u);
}

TEST_F(PortsOfUser, ServerKilledWhileAMessageIsOnItsWay_DoesNotSendItAgain) {
  DeleteFileW(wide(memory_));
  const auto phonesim = newPhoneInUse();
  phonesim->type("lose 1");
  const auto first = connectedPhone();
  const auto answers = make<AnswerRecorder>(first.SMS());
  sendHello(first.SMS());
  EXPECT_EQ(phonesim->awaitLine("* sent "), "+46702222222 \"Hello\"");
  EXPECT_EQ(answers->lines, Lines{});
  killWorker(handset());

  const auto second = connectedPhone();
  constexpr const char* unknown = " 2290614482";  // 0x888800D2
  for (int attempt = 1; attempt <= 3; ++attempt) EXPECT_EQ(answerToHello(second.SMS()), unknown);
  phonesim->type("sent");
  EXPECT_EQ(phonesim->awaitLine("ok 1").value_or("none"), "");
  // Its user has had a report by now; this is somebody who wants it sent.
  EXPECT_EQ(answerToHello(second.SMS()), " 0");
  phonesim->type("sent");
  EXPECT_EQ(phonesim->awaitLine("ok 2").value_or("none"), "");
}

TEST_F(PortsOfUser, MessageOnItsWayWithoutAClient_IsWaitedForAndItsOutcomeKept) {
  DeleteFileW(wide(memory_));
  const auto phonesim = newPhoneInUse();
  phonesim->type("slow send 7000");
  const Ending server(serverId());
  const DWORD start = GetTickCount();
  sendHello(connectedPhone().SMS());
  EXPECT_EQ(server.exitCode(), 0u);
  EXPECT_GE(GetTickCount() - start, 7000u);  // without the message it is gone after four seconds
  EXPECT_EQ(phonesim->awaitLine("* sent "), "+46702222222 \"Hello\"");

  EXPECT_EQ(answerToHello(connectedPhone().SMS()), " 0");
  phonesim->type("sent");
  EXPECT_EQ(phonesim->awaitLine("ok 1").value_or("none"), "");
}

// Who asks gives a phone up that has said nothing for five seconds, and does not ask it again. So nothing that is
// answered from the copy may wait for the line, however slow it is.
constexpr std::chrono::milliseconds atOnce{1000};

TEST_F(PortsOfUser, ThousandMessages_AreListedWithoutWaitingForTheLine) {
  DeleteFileW(wide(memory_));
  const auto phonesim = newPhoneInUse();
  ASSERT_TRUE(phonesim->ask("capacity SM 1000").ok);
  ASSERT_TRUE(phonesim->ask("fill SM").ok);
  const auto sms = connectedPhone().SMS();
  EXPECT_EQ(sms.StorageUsed(simCard), 1000);
  // From here on, reading the memory would take a quarter of an hour.
  ASSERT_TRUE(phonesim->ask("slow list 1000").ok);
  // A busy machine may be late once; what waits for the line is late each time.
  std::chrono::milliseconds fastest = std::chrono::milliseconds::max();
  for (int i = 0; i < 4; ++i) {
    const TimedListing listing = timed(sms);
    fastest = std::min(fastest, listing.first);
    EXPECT_EQ(listing.messages, 1000u);
  }
  EXPECT_LT(fastest, atOnce);
}

TEST_F(PortsOfUser, MemoryThatIsBeingRead_MakesNobodyWait) {
  DeleteFileW(wide(memory_));
  const auto phonesim = newPhoneInUse();
  traceFolder_.set(file_ + u".trace");
  ASSERT_TRUE(phonesim->ask("capacity SM 10").ok);
  ASSERT_TRUE(phonesim->ask("fill SM").ok);
  ASSERT_TRUE(phonesim->ask("slow list 700").ok);
  const auto phone = newWorker().CellPhones().Item(0);
  const auto isReading = [&] {
    const std::string lines = traced().value_or("");
    const std::size_t begun = lines.rfind("> AT+CMGL=4");
    return begun != std::string::npos && lines.find("< +CMGL: ", begun) != std::string::npos &&
           lines.find("< OK", begun) == std::string::npos;
  };
  // For the first time: it is no phone yet, which whoever asks is told at once.
  ASSERT_TRUE(serveUntil(isReading));
  EXPECT_FALSE(phone.IsConnected());
  EXPECT_EQ(errorNumberOf([&] { phone.SMS().ListMessages(simCard, allStatuses); }),
            static_cast<std::int32_t>(0x88880001));
  EXPECT_TRUE(isReading());
  ASSERT_TRUE(serveUntil([&] { return phone.IsConnected(); }));
  // Again, after a deletion: what was read before is answered.
  const auto sms = phone.SMS();
  EXPECT_EQ(timed(sms).messages, 10u);
  EXPECT_EQ(answerTo(sms, [&] { return sms.DeleteMessage(simCard, 3); }), " 0");
  ASSERT_TRUE(serveUntil(isReading));
  EXPECT_EQ(timed(sms).messages, 9u);
  EXPECT_TRUE(isReading());
  killWorker(handset());  // which has the trace open
}

TEST_F(PortsOfUser, Trace_ShowsTheDialogueWithoutTextsAndNumbersUnlessTheyAreWanted) {
  DeleteFileW(wide(memory_));
  const auto phonesim = newPhoneInUse();
  EXPECT_FALSE(traced().has_value());
  traceFolder_.set(file_ + u".trace");
  EXPECT_EQ(answerToHello(connectedPhone().SMS()), " 0");
  killWorker(handset());
  const std::string masked = traced().value_or("none");
  // The time of each line in front.
  for (const char* const line :
       {" > AT+CMGF=0\r\n", " < +CPMS: (\"SM\"", " > AT+CMGS=18\r\n", " > <19 octets>\r\n", " < +CMGS: ", " < OK\r\n"})
    EXPECT_NE(masked.find(line), std::string::npos) << line;
  EXPECT_EQ(masked.find("C8329BFD06"), std::string::npos);  // Hello
  EXPECT_EQ(masked.find("2222"), std::string::npos);        // of the number, in either form

  traceTexts_.set(1);
  const auto sms = connectedPhone().SMS();
  EXPECT_EQ(answerTo(sms, [&] { return send(sms, u"+46702222222", u"hello"); }), " 0");
  killWorker(handset());
  const std::string whole = traced().value_or("none");
  EXPECT_TRUE(whole.starts_with(masked));
  EXPECT_NE(whole.find(" > 0001000B916407222222F2000005E8329BFD06"), std::string::npos) << whole;
}

TEST_F(PortsOfUser, TraceThatCannotBeWritten_DoesNotDisturbThePhone) {
  DeleteFileW(wide(memory_));
  const auto phonesim = newPhoneInUse();
  traceFolder_.set(u"Z:\\no such place\\nor this");
  EXPECT_EQ(answerToHello(connectedPhone().SMS()), " 0");
}

TEST_F(PortsOfUser, SeveralPorts_ArePhonesInTheirOrder) {
  ports_.set(u"tcp:127.0.0.1:1;COM255, sim sim nonsense:1");
  const Ending server(serverId());
  {
    const auto phones = newWorker().CellPhones();
    ASSERT_EQ(phones.Count(), 3);
    EXPECT_FALSE(phones.Item(0).IsConnected());
    EXPECT_FALSE(phones.Item(1).IsConnected());
    EXPECT_TRUE(phones.Item(2).IsConnected());
    EXPECT_EQ(phones.Item(2).Name(), u"Simulated handset");
  }
  // Also while lines are being tried.
  EXPECT_EQ(server.exitCode(), 0u);
}

TEST_F(PortsOfUser, MissingValue_MeansTheSerialPortsOfTheSystemAndNeverTheSimulation) {
  SerialPorts serial;
  serial.add(L"\\Device\\MarrickTest0", L"COM254");
  ports_.remove();
  const Ending server(serverId());
  {
    const auto phones = newWorker().CellPhones();
    ASSERT_EQ(phones.Count(), serial.count());
    for (std::int32_t i = 0; i < phones.Count(); ++i) EXPECT_NE(phones.Item(i).Name(), u"Simulated handset");
  }
  EXPECT_EQ(server.exitCode(), 0u);
}

TEST_F(PortsOfUser, EmptyValue_MeansTheSerialPortsOfTheSystemAndThoseThatComeLater) {
  SerialPorts serial;
  serial.add(L"\\Device\\MarrickTest0", L"COM254");
  const std::int32_t first = serial.count();
  ASSERT_GE(first, 1);
  ports_.set(u" ");
  const Ending server(serverId());
  {
    const auto worker = newWorker();
    EXPECT_EQ(worker.CellPhones().Count(), first);
    EXPECT_FALSE(worker.IsConnected());
    serial.add(L"\\Device\\MarrickTest1", L"COM255");
    EXPECT_TRUE(serveUntil([&] { return worker.CellPhones().Count() != first; }));
    EXPECT_EQ(worker.CellPhones().Count(), first + 1);
  }
  EXPECT_EQ(server.exitCode(), 0u);
}

}  // namespace
}  // namespace servers_tests

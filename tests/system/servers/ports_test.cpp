// The value "Ports": phones of dvmworker.exe that stand behind lines, with phonesim.exe at the other end.

#include <cwchar>

#include <gmock/gmock.h>

#include "addin/platform/dvmworkerlib.h"
#include "registered_servers.h"
#include "support/errors.h"
#include "support/win32/phonesim_process.h"
#include "unit/servers/recording.h"

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

constexpr std::int32_t simCard = 2;
constexpr std::int32_t everything = 4;

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
  ~PortsOfUser() override { DeleteFileW(wide(memory_)); }

  static dvmworkerlib::Worker newWorker() { return as<dvmworkerlib::Worker>(create(dvmworkerlib::clsidWorker)); }
  static std::int32_t serverId() { return handset().get<std::int32_t>(u"ProcessId"); }

  // A handset with memories that outlive it.
  std::unique_ptr<PhonesimProcess> newPhone(const std::wstring& address) const {
    return std::make_unique<PhonesimProcess>(L"--manufacturer Acme --model T1 --memory \"" +
                                             std::wstring(wide(memory_)) + L"\" --listen " + address);
  }
  static std::vector<std::string> textsOf(const sms_objectlib::SMS& sms) {
    const auto answers = make<AnswerRecorder>(sms);
    sms.ListMessages(simCard, everything);
    serveUntil([&] { return !answers->lines.empty() && answers->lines.back().find(" 0") != std::string::npos; });
    std::vector<std::string> texts;
    for (const auto& message : answers->messages)
      texts.push_back(std::to_string(message.Index()) + " " + testing_support::utf8(message.Originator()) + " " +
                      testing_support::utf8(message.Text()));
    return texts;
  }

  // The same, as the phone of the user.
  std::unique_ptr<PhonesimProcess> newPhoneInUse() {
    auto phonesim = newPhone(L"127.0.0.1:0");
    const std::string address = phonesim->awaitLine("* tcp ").value_or("");
    EXPECT_NE(address, "");
    ports_.set(u"tcp:" + String(address.begin(), address.end()));
    return phonesim;
  }
  static dvmworkerlib::CellPhone connectedPhone() {
    const auto phone = newWorker().CellPhones().Item(0);
    EXPECT_TRUE(serveUntil([&] { return phone.IsConnected(); }));
    return phone;
  }
  static std::int32_t sendHello(const sms_objectlib::SMS& sms) {
    const auto message = sms.CreateShortMessage();
    message.Destination(u"+46702222222");
    message.Text(u"Hello");
    return message.Send();
  }
  // The status, with a blank in front.
  static std::string answerToHello(const sms_objectlib::SMS& sms) {
    const auto answers = make<AnswerRecorder>(sms);
    const std::string transaction = std::to_string(sendHello(sms));
    EXPECT_TRUE(serveUntil([&] { return !answers->lines.empty(); }));
    return answers->lines.empty() ? "none" : answers->lines.back().substr(transaction.size());
  }

  String memory_ = file_ + u".phone";
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
    EXPECT_EQ(errorNumberOf([&] { sms.ListMessages(simCard, everything); }), static_cast<std::int32_t>(0x88880001));
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

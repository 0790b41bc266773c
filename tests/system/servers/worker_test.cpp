// dvmworker.exe and sms_object.dll in a process of their own: what arrives, in which order, and what a crash does.

#include <set>

#include "addin/platform/dvmworkerlib.h"
#include "support/errors.h"
#include "system/servers/phone_user.h"
#include "unit/servers/recording.h"

// Behind the system's own header, which comes with the others.
#include <tlhelp32.h>

namespace servers_tests {
namespace {

using namespace platform;
using servers_testing::AnswerRecorder;
using servers_testing::NoticeRecorder;
using testing_support::errorNumberOf;
using Lines = std::vector<std::string>;

// The oldest; 0 when there is no such process.
DWORD mainThreadOf(DWORD process) {
  const HANDLE threads = CreateToolhelp32Snapshot(TH32CS_SNAPTHREAD, 0);
  THREADENTRY32 one{};
  one.dwSize = sizeof one;
  DWORD found = 0;
  for (BOOL more = Thread32First(threads, &one); more && found == 0; more = Thread32Next(threads, &one))
    if (one.th32OwnerProcessID == process) found = one.th32ThreadID;
  CloseHandle(threads);
  return found;
}

class WorkerServer : public RegisteredServers {
 protected:
  static std::string line(std::int32_t transaction, const std::string& rest) {
    return std::to_string(transaction) + rest;
  }
  static sms_objectlib::ShortMessage filled(const sms_objectlib::SMS& sms, StringView text) {
    const auto message = sms.CreateShortMessage();
    message.ServiceCentre(u"+46701740699");
    message.Destination(u"+46702222222");
    message.Text(text);
    return message;
  }
};

TEST_F(WorkerServer, PhoneAndItsMessages_AreReachedFromAnotherProcess) {
  const auto control = handset();
  const auto worker = newWorker();
  EXPECT_TRUE(worker.IsConnected());
  ASSERT_EQ(worker.CellPhones().Count(), 1);
  const auto phone = worker.CellPhones().Item(0);
  EXPECT_EQ(phone.Name(), u"Simulated handset");
  EXPECT_EQ(errorNumberOf([&] { worker.CellPhones().Item(1); }), 9);

  const auto sms = phone.SMS();
  const auto answers = make<AnswerRecorder>(sms);
  EXPECT_EQ(control.call<std::int32_t>(u"Deliver", u"+46701111111", u"Ett \u20AC \U0001F600", u"010203040506"), 1);
  EXPECT_EQ(control.call<std::int32_t>(u"Put", 2, 3, u"+46701111111", u"two", u"010203040507"), 2);
  EXPECT_EQ(sms.StorageUsed(2), 2);
  const std::int32_t listing = sms.ListMessages(2, 4);
  EXPECT_TRUE(serveUntil([&] { return answers->lines.size() == 2; }));
  EXPECT_EQ(answers->lines, (Lines{line(listing, " 2290614316 Ett \u20AC \U0001F600"), line(listing, " 0 two")}));
  EXPECT_EQ(answers->messages.at(0).Originator(), u"+46701111111");
  EXPECT_EQ(answers->messages.at(0).TimeStamp(), u"010203040506");
  EXPECT_EQ(answers->messages.at(1).Status(), sms_objectlib::storedSent);
  EXPECT_EQ(answers->messages.at(1).Index(), 2);

  answers->lines.clear();
  const std::int32_t deletion = sms.DeleteMessage(2, 1);
  EXPECT_TRUE(serveUntil([&] { return answers->lines.size() == 1; }));
  const std::int32_t sending = filled(sms, u"Hello").Send();
  EXPECT_TRUE(serveUntil([&] { return answers->lines.size() == 2; }));
  EXPECT_EQ(answers->lines, (Lines{line(deletion, " 0"), line(sending, " 0")}));
  EXPECT_EQ(control.call<std::int32_t>(u"SentCount"), 1);
  EXPECT_EQ(control.call<String>(u"SentText", 0), u"Hello");
  EXPECT_EQ(control.call<String>(u"SentServiceCentre", 0), u"");
}

// Between two calls of the client its thread serves incoming calls, so an answer that comes early is found out.
TEST_F(WorkerServer, ThreeHundredRequests_AreNeverAnsweredBeforeTheirReturn) {
  const auto sms = newWorker().CellPhones().Item(0).SMS();
  const auto answers = make<AnswerRecorder>(sms);
  std::set<std::string> returned;
  int early = 0;
  answers->inside = [&] { early += returned.contains(answers->lines.back()) ? 0 : 1; };
  Lines expected;
  while (expected.size() < 300) {
    for (int burst = 0; burst < 10; ++burst) {
      const std::size_t kind = expected.size() % 3;
      const std::int32_t id = kind == 0   ? sms.ListMessages(1, 4)
                              : kind == 1 ? sms.DeleteMessage(2, 9)
                                          : filled(sms, u"x").Send();
      expected.push_back(line(id, kind == 1 ? " 2290614472" : " 0"));
      returned.insert(expected.back());
      sms.StorageUsed(2);
    }
    ASSERT_TRUE(serveUntil([&] { return answers->lines.size() == expected.size(); }));
  }
  EXPECT_EQ(early, 0);
  EXPECT_EQ(answers->lines, expected);
  EXPECT_EQ(returned.size(), 300u);  // no identifier twice
}

TEST_F(WorkerServer, UnplugAndPlug_AreNoticedAndDropWhatIsPending) {
  const auto control = handset();
  const auto worker = newWorker();
  const auto notices = make<NoticeRecorder>(worker);
  const auto phone = worker.CellPhones().Item(0);
  const auto sms = phone.SMS();
  const auto answers = make<AnswerRecorder>(sms);
  control.call<void>(u"AnswerNext", u"send", 0, 300);
  filled(sms, u"never answered").Send();
  control.call<void>(u"Unplug");
  EXPECT_TRUE(serveUntil([&] { return notices->notices.size() == 1; }));
  EXPECT_FALSE(phone.IsConnected());
  EXPECT_FALSE(worker.IsConnected());
  const auto failure = testing_support::errorOf([&] { sms.ListMessages(2, 4); });
  ASSERT_TRUE(failure);
  EXPECT_EQ(failure->number, static_cast<std::int32_t>(0x88880001));
  EXPECT_EQ(failure->description, u"The phone is not connected");
  control.call<void>(u"Plug");
  EXPECT_TRUE(serveUntil([&] { return notices->notices.size() == 2; }));
  serveFor(500);
  EXPECT_EQ(notices->notices, (std::vector<NoticeRecorder::Notice>{{0, phone}, {1, phone}}));
  EXPECT_EQ(answers->lines, Lines{});
  EXPECT_EQ(control.call<std::int32_t>(u"SentCount"), 0);
}

TEST_F(WorkerServer, KilledAndStartedAgain_KeepsItsMemoriesAndRepeatsNoIdentifier) {
  std::int32_t before = 0;
  {
    const auto control = handset();
    const auto worker = newWorker();
    const auto sms = worker.CellPhones().Item(0).SMS();
    const auto answers = make<AnswerRecorder>(sms);
    control.call<void>(u"Deliver", u"+46701111111", u"kept", u"010203040506");
    before = sms.ListMessages(2, 4);
    EXPECT_TRUE(serveUntil([&] { return answers->lines.size() == 1; }));
    killWorker(control);
    EXPECT_NE(errorNumberOf([&] { sms.StorageUsed(2); }), 0);
    EXPECT_NE(errorNumberOf([&] { worker.IsConnected(); }), 0);
  }
  const auto worker = newWorker();
  EXPECT_TRUE(worker.IsConnected());
  const auto sms = worker.CellPhones().Item(0).SMS();
  const auto answers = make<AnswerRecorder>(sms);
  const std::int32_t after = sms.ListMessages(2, 4);
  EXPECT_GT(after, before);
  EXPECT_TRUE(serveUntil([&] { return answers->lines.size() == 1; }));
  EXPECT_EQ(answers->lines, (Lines{line(after, " 0 kept")}));
  EXPECT_EQ(answers->messages.at(0).Status(), sms_objectlib::receivedRead);
}

TEST_F(WorkerServer, WithoutTheSmsLibrary_ThePhoneHasNoSmsObject) {
  ASSERT_EQ(callEntry(u"sms_object.dll", "DllUnregisterServer"), S_OK);
  const auto worker = newWorker();
  EXPECT_TRUE(worker.IsConnected());
  EXPECT_FALSE(worker.CellPhones().Item(0).SMS());
  EXPECT_EQ(callEntry(u"sms_object.dll", "DllRegisterServer"), S_OK);
}

TEST_F(WorkerServer, WithoutClients_Ends) {
  auto client = handset();
  const HANDLE process = OpenProcess(SYNCHRONIZE, FALSE, static_cast<DWORD>(client.get<std::int32_t>(u"ProcessId")));
  ASSERT_NE(process, nullptr);
  const DWORD start = GetTickCount();
  client = LateBound();
  EXPECT_TRUE(serveUntil([&] { return WaitForSingleObject(process, 0) == WAIT_OBJECT_0; }));
  EXPECT_GE(GetTickCount() - start, 3000u);  // a client that comes back soon finds it
  CloseHandle(process);
}

// What was asked for in the moment in which a server gave up serving is still made, and keeps it.
TEST_F(WorkerServer, AskedWhileItIsEnding_GoesOnServing) {
  const LateBound held = handset();
  const auto id = held.get<std::int32_t>(u"ProcessId");
  const DWORD thread = mainThreadOf(static_cast<DWORD>(id));
  ASSERT_NE(thread, 0u);
  for (int i = 0; i < 15; ++i) {
    ASSERT_TRUE(PostThreadMessageW(thread, WM_QUIT, 0, 0));
    Sleep(static_cast<DWORD>(i % 5));
    const LateBound made = handset();
    ASSERT_EQ(errorNumberOf([&] { EXPECT_EQ(made.get<std::int32_t>(u"ProcessId"), id); }), 0);
  }
  EXPECT_EQ(held.get<std::int32_t>(u"ProcessId"), id);
}

TEST_F(WorkerServer, SmsObjectHeldAlone_KeepsTheServer) {
  DWORD id = 0;
  sms_objectlib::SMS sms;
  {
    id = static_cast<DWORD>(handset().get<std::int32_t>(u"ProcessId"));
    sms = newWorker().CellPhones().Item(0).SMS();
  }
  const HANDLE process = OpenProcess(SYNCHRONIZE, FALSE, id);
  serveFor(6000);  // longer than a server without clients stays
  EXPECT_EQ(WaitForSingleObject(process, 0), static_cast<DWORD>(WAIT_TIMEOUT));
  EXPECT_EQ(sms.StorageCapacity(2), 20);
  sms = {};
  EXPECT_TRUE(serveUntil([&] { return WaitForSingleObject(process, 0) == WAIT_OBJECT_0; }));
  CloseHandle(process);
}

TEST_F(WorkerServer, CommandLine_ThatMakesNoSense_IsRefused) {
  EXPECT_EQ(run(productFile(u"dvmworker.exe") + u" /Nonsense"), 2u);
}

}  // namespace
}  // namespace servers_tests

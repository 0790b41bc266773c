#include <vector>

#include <gtest/gtest.h>

#include "com/bridge.h"
#include "support/fake_object.h"
#include "test_window.h"
#include "win32/system.h"

namespace win32_tests {
namespace {

// Far more than any of these needs, and far less than the time-out of the test run.
constexpr std::int32_t longTime = 60000;

bool wait(std::int32_t milliseconds) { return win32::system().pump.wait(milliseconds); }

// A quit message of one test must not end the waits of the next.
class Pump : public testing::Test {
 protected:
  void SetUp() override { empty(); }
  void TearDown() override { empty(); }

  static void empty() {
    MSG message;
    while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) {
    }
  }

  std::vector<UINT> handled_;
  TestWindow window_{[this](UINT message, WPARAM, LPARAM) -> std::optional<LRESULT> {
    if (message < WM_APP && message != WM_CHAR && message != WM_TIMER) return std::nullopt;
    handled_.push_back(message);
    return 17;
  }};
};

TEST_F(Pump, Wait_NothingComes_EndsTrueWhenTheTimeHasPassed) {
  const DWORD before = GetTickCount();
  EXPECT_TRUE(wait(100));
  EXPECT_GE(GetTickCount() - before, 50u);  // ticks come in steps
}

TEST_F(Pump, Wait_NothingComes_UsesNoProcessorTime) {
  const auto processorTime = [] {
    FILETIME created, ended, kernel, user;
    GetThreadTimes(GetCurrentThread(), &created, &ended, &kernel, &user);
    return (kernel.dwLowDateTime + user.dwLowDateTime) / 10000;  // milliseconds, as differences
  };
  const DWORD before = processorTime();
  EXPECT_TRUE(wait(500));
  EXPECT_LT(processorTime() - before, 50u);
}

TEST_F(Pump, Wait_MessagesArePosted_ServesThemAllAndEndsAtOnce) {
  for (const UINT message : {WM_APP + 1, WM_APP + 2, WM_APP + 3}) window_.post(message);
  const DWORD before = GetTickCount();
  EXPECT_TRUE(wait(longTime));
  EXPECT_LT(GetTickCount() - before, static_cast<DWORD>(longTime / 2));
  EXPECT_EQ(handled_, (std::vector<UINT>{WM_APP + 1, WM_APP + 2, WM_APP + 3}));
}

TEST_F(Pump, Wait_MessageThatSomebodyHasLookedAtAlready_EndsAtOnce) {
  window_.post(WM_APP);
  MSG message;
  ASSERT_TRUE(PeekMessageW(&message, nullptr, 0, 0, PM_NOREMOVE));
  EXPECT_TRUE(wait(longTime));
  EXPECT_EQ(handled_, std::vector<UINT>{WM_APP});
}

TEST_F(Pump, Wait_NegativeTime_ServesWhatIsThere) {
  window_.post(WM_APP);
  EXPECT_TRUE(wait(-1));
  EXPECT_EQ(handled_, std::vector<UINT>{WM_APP});
  EXPECT_TRUE(wait(-1));
}

TEST_F(Pump, Wait_KeyPress_BecomesACharacter) {
  window_.post(WM_KEYDOWN, 'A', 1);
  while (handled_.empty()) ASSERT_TRUE(wait(longTime));
  EXPECT_EQ(handled_, std::vector<UINT>{WM_CHAR});
}

TEST_F(Pump, Wait_TimerOfAWindow_IsServed) {
  SetTimer(window_.handle(), 1, 20, nullptr);
  while (handled_.empty()) ASSERT_TRUE(wait(longTime));
  KillTimer(window_.handle(), 1);
  EXPECT_EQ(handled_.front(), static_cast<UINT>(WM_TIMER));
}

TEST_F(Pump, Wait_MessageSentByAnotherThread_IsAnswered) {
  LRESULT answer = 0;
  {
    const Thread sender([&] { answer = SendMessageA(window_.handle(), WM_APP, 0, 0); });
    while (!sender.hasEnded()) ASSERT_TRUE(wait(100));
  }
  EXPECT_EQ(answer, 17);
  EXPECT_EQ(handled_, std::vector<UINT>{WM_APP});
}

TEST_F(Pump, Wait_CallOfAnotherApartment_IsServed) {
  const Apartment apartment;
  const auto object = platform::make<testing_support::FakeObject>("object");
  class Native final : public platform::NativeObject {
   public:
    std::span<const platform::Member> members() const override {
      static constexpr platform::Member table[] = {platform::method<&Native::call>(u"Call", 1)};
      return table;
    }
    void call() { thread = GetCurrentThreadId(); }
    DWORD thread = 0;
  };
  const auto native = platform::make<Native>();
  const auto face = com::exported(native->object());
  IStream* packed = nullptr;
  ASSERT_EQ(CoMarshalInterThreadInterfaceInStream(IID_IDispatch, face.get(), &packed), S_OK);
  HRESULT result = E_FAIL;
  {
    const Thread caller([&] {
      const Apartment other;
      com::Ptr<IDispatch> proxy;
      result = CoGetInterfaceAndReleaseStream(packed, IID_IDispatch, proxy.putVoid());
      DISPPARAMS none{};
      if (proxy)
        result = proxy->Invoke(1, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_METHOD, &none, nullptr, nullptr, nullptr);
    });
    while (!caller.hasEnded()) ASSERT_TRUE(wait(100));
  }
  EXPECT_EQ(result, S_OK);
  EXPECT_EQ(native->thread, GetCurrentThreadId());
}

TEST_F(Pump, Wait_Quit_EndsThisWaitAndEveryLaterOneFalseUntilSomebodyTakesIt) {
  PostQuitMessage(7);
  EXPECT_FALSE(wait(longTime));
  EXPECT_FALSE(wait(longTime));
  EXPECT_FALSE(wait(0));
  MSG message;
  ASSERT_TRUE(PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE));
  EXPECT_EQ(message.message, static_cast<UINT>(WM_QUIT));
  EXPECT_EQ(message.wParam, 7u);
  EXPECT_TRUE(wait(10));
}

TEST_F(Pump, Wait_QuitBehindOtherMessages_ServesThoseFirst) {
  PostQuitMessage(0);
  window_.post(WM_APP);
  EXPECT_FALSE(wait(longTime));
  EXPECT_EQ(handled_, std::vector<UINT>{WM_APP});
}

TEST_F(Pump, Wait_QuitInsideAWaitInsideAMessage_EndsBoth) {
  std::vector<bool> results;
  const TestWindow outer([&](UINT message, WPARAM, LPARAM) {
    if (message == WM_APP) {
      PostQuitMessage(0);
      results.push_back(wait(longTime));
    }
    return std::optional<LRESULT>();
  });
  outer.post(WM_APP);
  results.push_back(wait(longTime));
  EXPECT_EQ(results, (std::vector<bool>{false, false}));
}

TEST_F(Pump, Wait_MessageThatPostsItselfAgain_DoesNotKeepTheCaller) {
  int count = 0;
  const TestWindow flood([&](UINT message, WPARAM, LPARAM) {
    if (message == WM_APP) {
      ++count;
      flood.post(WM_APP);
    }
    return std::optional<LRESULT>();
  });
  flood.post(WM_APP);
  EXPECT_TRUE(wait(longTime));
  EXPECT_GE(count, 1);
  EXPECT_LE(count, 1000);
}

}  // namespace
}  // namespace win32_tests

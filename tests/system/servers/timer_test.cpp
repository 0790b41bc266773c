// timermm.dll through COM: on whose thread its events arrive, and that nothing is left behind.

#include "addin/platform/timermm.h"
#include "registered_servers.h"
#include "unit/servers/recording.h"

namespace servers_tests {
namespace {

using namespace platform;
using servers_testing::TickRecorder;
using Ticks = std::vector<std::int32_t>;

class TimerServer : public RegisteredServers {
 protected:
  static Ref<TickRecorder> newTimer() { return make<TickRecorder>(create(timermm::clsidTimer)); }
  static void arm(const timermm::Timer& timer, std::int32_t interval, std::int32_t periodic) {
    timer.Enabled(false);
    timer.Periodic(periodic);
    timer.Interval(interval);
    timer.Resolution(10);
    timer.Enabled(true);
  }
};

TEST_F(TimerServer, OneShotAndPeriodic_TickOnTheCreatingThread) {
  const auto once = newTimer();
  const auto often = newTimer();
  const DWORD thread = GetCurrentThreadId();
  bool elsewhere = false;
  once->inside = often->inside = [&] { elsewhere |= GetCurrentThreadId() != thread; };
  arm(once->timer(), 60, 0);
  arm(often->timer(), 30, 1);
  EXPECT_TRUE(serveUntil([&] { return often->ticks.size() >= 6; }));
  EXPECT_EQ(once->ticks, Ticks{60});
  EXPECT_EQ(often->ticks, Ticks(often->ticks.size(), 30));
  EXPECT_FALSE(elsewhere);
  often->timer().Enabled(false);
  const auto count = often->ticks.size();
  serveFor(150);
  EXPECT_EQ(often->ticks.size(), count);
}

TEST_F(TimerServer, Tick_ComesNotBeforeItsTime) {
  const auto timer = newTimer();
  const DWORD start = GetTickCount();
  DWORD at = 0;
  timer->inside = [&] { at = GetTickCount(); };
  arm(timer->timer(), 200, 0);
  EXPECT_TRUE(serveUntil([&] { return at != 0; }));
  EXPECT_GE(at - start, 200u);
}

TEST_F(TimerServer, Tick_NeedsTheMessageLoop) {
  const auto timer = newTimer();
  arm(timer->timer(), 0, 0);
  Sleep(100);
  static_cast<void>(LateBound(timer->timer()).get<bool>(u"Enabled"));
  EXPECT_EQ(timer->ticks, Ticks{});
  EXPECT_TRUE(serveUntil([&] { return !timer->ticks.empty(); }));
}

TEST_F(TimerServer, ReleasedInItsOwnEvent_EndsQuietly) {
  const auto timer = newTimer();
  timer->inside = [&] { timer->releaseTimer(); };
  arm(timer->timer(), 20, 1);
  EXPECT_TRUE(serveUntil([&] { return !timer->ticks.empty(); }));
  serveFor(100);
  EXPECT_EQ(timer->ticks, Ticks{20});
}

TEST_F(TimerServer, RearmedInItsOwnEvent_TicksAgain) {
  const auto timer = newTimer();
  timer->inside = [&] {
    if (timer->ticks.size() < 3) timer->timer().Enabled(true);
  };
  arm(timer->timer(), 20, 0);
  EXPECT_TRUE(serveUntil([&] { return timer->ticks.size() == 3; }));
  serveFor(100);
  EXPECT_EQ(timer->ticks, (Ticks{20, 20, 20}));
}

TEST_F(TimerServer, Minute_IsAsShortAsItsTestSettingSays) {
  minute_.set(50);
  const auto timer = newTimer();
  arm(timer->timer(), 60000, 1);
  EXPECT_TRUE(serveUntil([&] { return timer->ticks.size() == 2; }));
  EXPECT_EQ(timer->ticks, (Ticks{60000, 60000}));
}

TEST_F(TimerServer, Library_CanBeUnloadedOnceItsTimersAreGone) {
  const auto timer = newTimer();
  arm(timer->timer(), 10, 1);
  EXPECT_TRUE(serveUntil([&] { return timer->ticks.size() == 2; }));
  const FARPROC entry = GetProcAddress(GetModuleHandleW(L"timermm.dll"), "DllCanUnloadNow");
  const auto canUnloadNow = reinterpret_cast<HRESULT(WINAPI*)()>(reinterpret_cast<void*>(entry));
  EXPECT_EQ(canUnloadNow(), S_FALSE);
  timer->releaseTimer();
  EXPECT_EQ(canUnloadNow(), S_OK);
}

// A thread with an apartment and a timer of its own, and the timer's reference for another apartment.
struct OtherApartment {
  HANDLE ready = CreateEventW(nullptr, TRUE, FALSE, nullptr);
  IStream* reference = nullptr;
  HRESULT result = E_FAIL;
  DWORD id = 0;
  HANDLE thread = CreateThread(nullptr, 0, &run, this, 0, &id);

  static DWORD WINAPI run(void* parameter) {
    auto* const self = static_cast<OtherApartment*>(parameter);
    CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
    {
      com::Ptr<IUnknown> timer;
      self->result = CoCreateInstance(com::iidOf(timermm::clsidTimer), nullptr, CLSCTX_INPROC_SERVER, IID_IDispatch,
                                      timer.putVoid());
      if (SUCCEEDED(self->result))
        self->result = CoMarshalInterThreadInterfaceInStream(IID_IDispatch, timer.get(), &self->reference);
    }
    MSG message;
    PeekMessageW(&message, nullptr, 0, 0, PM_NOREMOVE);  // from here on the thread can be posted to
    SetEvent(self->ready);
    while (GetMessageW(&message, nullptr, 0, 0) > 0) DispatchMessageW(&message);
    CoUninitialize();
    return 0;
  }
};

TEST_F(TimerServer, TimerOfAnotherApartment_TicksOnTheListenersThread) {
  OtherApartment other;
  EXPECT_TRUE(serveUntil([&] { return WaitForSingleObject(other.ready, 0) == WAIT_OBJECT_0; }));
  ASSERT_EQ(other.result, S_OK);
  com::Ptr<IDispatch> proxy;
  ASSERT_EQ(CoGetInterfaceAndReleaseStream(other.reference, IID_IDispatch, proxy.putVoid()), S_OK);
  {
    const auto timer = make<TickRecorder>(com::import(proxy.get()));
    proxy = nullptr;
    const DWORD thread = GetCurrentThreadId();
    bool elsewhere = false;
    timer->inside = [&] { elsewhere |= GetCurrentThreadId() != thread; };
    arm(timer->timer(), 30, 1);
    EXPECT_TRUE(serveUntil([&] { return timer->ticks.size() >= 3; }));
    EXPECT_FALSE(elsewhere);
    timer->inside = [&] { timer->releaseTimer(); };
    const auto count = timer->ticks.size();
    EXPECT_TRUE(serveUntil([&] { return timer->ticks.size() > count; }));
    serveFor(100);
    EXPECT_EQ(timer->ticks.size(), count + 1);
  }
  PostThreadMessageW(other.id, WM_QUIT, 0, 0);
  EXPECT_TRUE(serveUntil([&] { return WaitForSingleObject(other.thread, 0) == WAIT_OBJECT_0; }));
  CloseHandle(other.thread);
  CloseHandle(other.ready);
}

}  // namespace
}  // namespace servers_tests

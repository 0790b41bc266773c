// The bridge between two processes, and what happens when one of them is killed.
//
// The other process is this program again, running nothing but the test "OtherProcess.DISABLED_Serve". It leaves its
// object, marshalled, in a file.
#include <string>
#include <vector>

#include "addin/platform/object.h"
#include "addin/platform/with_events.h"
#include "bridge_fixture.h"
#include "com/lasting_interfaces.h"
#include "com/registration.h"
#include "gadget.h"
#include "support/errors.h"

namespace bridge_test {
namespace {

using platform::Access;
using platform::Counted;
using platform::LateBound;
using platform::make;
using platform::Member;
using platform::Object;
using platform::on;
using platform::Ref;
using platform::String;
using platform::Variant;
using platform::WithEvents;

struct PokedFacade : Object {
  using Object::Object;
  struct Events {
    static constexpr platform::Guid iid = gadgetEvents;
  };
};

struct Counter final : Counted {
  void field_Poked(std::int32_t number, const String&) { sum += number; }
  void field_Closing(const Object&, bool& cancel) { cancel = true; }
  std::int32_t sum = 0;
  WithEvents<PokedFacade> field{this, on<Poked, &Counter::field_Poked>, on<Closing, &Counter::field_Closing>};
};

// What the other process serves.
class Remote final : public platform::NativeObject {
 public:
  std::span<const Member> members() const override {
    using platform::field, platform::method, platform::readOnly;
    static constexpr Member table[] = {
        method<&Remote::poke>(u"Poke", 1),      method<&Remote::close>(u"Close", 2),
        method<&Remote::listen>(u"Listen", 3),  method<&Remote::heard>(u"Heard", 4),
        method<&Remote::twice>(u"Twice", 5),    method<&Remote::fail>(u"Fail", 6),
        field<&Remote::partner>(u"Partner", 7),
    };
    return table;
  }
  platform::Guid events() const override { return gadgetEvents; }
  platform::Ref<platform::Enumerator> enumerate() override { return make<Numbers>(3); }

  void poke(std::int32_t number) { fire(Poked, number, u"from afar"); }
  bool close() {
    bool cancel = false;
    fire(Closing, object(), cancel);
    return cancel;
  }
  void listen(const Object& source) { counter->field = PokedFacade(source.automation()); }
  std::int32_t heard() { return counter->sum; }
  void twice(std::int32_t& number, String& text) {
    number *= 2;
    text += text;
  }
  void fail() { platform::raiseError(17, u"Afar", u"Cannot"); }

  Ref<Counter> counter = make<Counter>();
  Object partner;
};

constexpr const wchar_t* fileVariable = L"BRIDGE_TEST_FILE";

String fileToWrite() {
  wchar_t path[MAX_PATH] = {};
  GetEnvironmentVariableW(fileVariable, path, MAX_PATH);
  return reinterpret_cast<const char16_t*>(path);
}

const wchar_t* wide(const String& s) { return reinterpret_cast<const wchar_t*>(s.c_str()); }

void serveMessages(DWORD milliseconds) {
  const DWORD start = GetTickCount();
  while (GetTickCount() - start < milliseconds) {
    MsgWaitForMultipleObjectsEx(0, nullptr, 10, QS_ALLINPUT, MWMO_INPUTAVAILABLE);
    for (MSG m; PeekMessageW(&m, nullptr, 0, 0, PM_REMOVE);) DispatchMessageW(&m);
  }
}

void writeObject(IUnknown& object, const String& path) {
  com::Ptr<IStream> stream;
  ASSERT_EQ(CreateStreamOnHGlobal(nullptr, TRUE, stream.put()), S_OK);
  ASSERT_EQ(CoMarshalInterface(stream.get(), IID_IDispatch, &object, MSHCTX_LOCAL, nullptr, MSHLFLAGS_NORMAL), S_OK);
  STATSTG facts{};
  ASSERT_EQ(stream->Stat(&facts, STATFLAG_NONAME), S_OK);
  std::vector<char> bytes(facts.cbSize.LowPart);
  ASSERT_EQ(stream->Seek({}, STREAM_SEEK_SET, nullptr), S_OK);
  ASSERT_EQ(stream->Read(bytes.data(), static_cast<ULONG>(bytes.size()), nullptr), S_OK);
  const String beside = path + u".new";
  const HANDLE file = CreateFileW(wide(beside), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr);
  DWORD written = 0;
  WriteFile(file, bytes.data(), static_cast<DWORD>(bytes.size()), &written, nullptr);
  CloseHandle(file);
  MoveFileW(wide(beside), wide(path));  // whoever sees the file sees it whole
}

TEST(OtherProcess, DISABLED_Serve) {
  const String path = fileToWrite();
  if (path.empty()) GTEST_SKIP() << "runs in a process of its own";
  ASSERT_TRUE(SUCCEEDED(CoInitialize(nullptr)));
  const com::LastingInterfaces lasting;
  const auto remote = make<Remote>();
  writeObject(*com::exported(remote->object()).get(), path);
  serveMessages(60'000);  // until it is killed
}

class Processes : public BridgeTest {
 protected:
  Processes() {
    wchar_t folder[MAX_PATH] = {};
    GetTempPathW(MAX_PATH, folder);
    path_ = String(reinterpret_cast<const char16_t*>(folder)) + u"bridge_test.object";
    DeleteFileW(wide(path_));
    SetEnvironmentVariableW(fileVariable, wide(path_));
    String command =
        u"\"" + com::modulePath(nullptr) + u"\" --gtest_filter=OtherProcess.* --gtest_also_run_disabled_tests";
    STARTUPINFOW how{};
    how.cb = sizeof how;
    EXPECT_TRUE(CreateProcessW(nullptr, reinterpret_cast<wchar_t*>(command.data()), nullptr, nullptr, FALSE, 0, nullptr,
                               nullptr, &how, &process_));
    SetEnvironmentVariableW(fileVariable, nullptr);
    remote_ = LateBound(readObject());
  }
  ~Processes() override {
    kill();
    CloseHandle(process_.hThread);
    CloseHandle(process_.hProcess);
    DeleteFileW(wide(path_));
  }

  void kill() {
    TerminateProcess(process_.hProcess, 1);
    EXPECT_EQ(WaitForSingleObject(process_.hProcess, 10'000), WAIT_OBJECT_0);
  }

  Object readObject() {
    HANDLE file = INVALID_HANDLE_VALUE;
    for (int i = 0; i < 3000 && file == INVALID_HANDLE_VALUE; ++i) {
      Sleep(10);
      file = CreateFileW(wide(path_), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr);
    }
    std::vector<char> bytes(GetFileSize(file, nullptr));
    DWORD read = 0;
    ReadFile(file, bytes.data(), static_cast<DWORD>(bytes.size()), &read, nullptr);
    CloseHandle(file);
    com::Ptr<IStream> stream;
    EXPECT_EQ(CreateStreamOnHGlobal(nullptr, TRUE, stream.put()), S_OK);
    stream->Write(bytes.data(), read, nullptr);
    stream->Seek({}, STREAM_SEEK_SET, nullptr);
    com::Ptr<IDispatch> proxy;
    EXPECT_EQ(CoUnmarshalInterface(stream.get(), IID_IDispatch, proxy.putVoid()), S_OK);
    return com::import(proxy.get());
  }

  com::LastingInterfaces lasting_;
  PROCESS_INFORMATION process_{};
  String path_;
  LateBound remote_;
};

TEST_F(Processes, CallsErrorsReferencesAndEnumeration_WorkAcross) {
  Variant number = 21;
  Variant text = u"ab";
  Variant arguments[] = {Variant::byRef(number), Variant::byRef(text)};
  remote_.invoke(u"Twice", Access::Call, arguments);
  EXPECT_EQ(number, Variant(42));
  EXPECT_EQ(text, Variant(u"abab"));

  const auto error = testing_support::errorOf([&] { remote_.call(u"Fail"); });
  ASSERT_TRUE(error);
  EXPECT_EQ(error->number, 17);
  EXPECT_EQ(error->source, u"Afar");
  EXPECT_EQ(error->description, u"Cannot");
  EXPECT_EQ(testing_support::errorNumberOf([&] { remote_.call(u"Nope"); }), 438);

  const auto elements = remote_.enumerate();
  std::int32_t sum = 0;
  for (Variant element; elements->next(element);) sum += platform::CLng(element);
  EXPECT_EQ(sum, 6);
}

TEST_F(Processes, AnObjectOfOursThatComesBack_IsItself) {
  const auto gadget = make<Gadget>();
  com::recogniseOwn = true;
  remote_.set(u"Partner", gadget->object());
  EXPECT_EQ(platform::nativeOf<Gadget>(remote_.get<Object>(u"Partner")), gadget.get());
  remote_.set(u"Partner", Object());
}

TEST_F(Processes, EventsArriveHere_AndByReferenceArgumentsGoBack) {
  const auto counter = make<Counter>();
  counter->field = PokedFacade(remote_.automation());
  remote_.call(u"Poke", 7);
  EXPECT_EQ(counter->sum, 7);
  EXPECT_TRUE(remote_.call<bool>(u"Close"));
  counter->field = nullptr;
  EXPECT_EQ(com::liveExports(), 0) << "the sink is gone";
  EXPECT_FALSE(remote_.call<bool>(u"Close"));
}

TEST_F(Processes, EventsOfOurs_ArriveThere) {
  const auto gadget = make<Gadget>();
  remote_.call(u"Listen", gadget->object());
  gadget->fire(Poked, 5, u"");
  gadget->fire(Poked, 6, u"");
  EXPECT_EQ(remote_.call<std::int32_t>(u"Heard"), 11);
  remote_.call(u"Listen", Object());
  EXPECT_EQ(gadget->listenerCount(), 0u);
}

TEST_F(Processes, KilledSource_CallsFail_AndTheSubscriptionIsReleasedWithoutWaiting) {
  const auto counter = make<Counter>();
  counter->field = PokedFacade(remote_.automation());
  kill();
  EXPECT_NE(testing_support::errorNumberOf([&] { remote_.call(u"Poke", 1); }), 0);
  const DWORD start = GetTickCount();
  counter->field = nullptr;
  EXPECT_LT(GetTickCount() - start, 5000u);
  EXPECT_EQ(com::liveExports(), 0) << "what the dead process held of the sink is given up";
  EXPECT_NE(testing_support::errorNumberOf([&] { counter->field = PokedFacade(remote_.automation()); }), 0);
}

// What a dead process held of an object nobody else gives back.
void giveUp(Gadget& gadget) {
  const auto face = com::exported(gadget.object());
  com::Ptr<IConnectionPoint> point;
  ASSERT_EQ(face.as<IConnectionPointContainer>()->FindConnectionPoint(com::iidOf(gadgetEvents), point.put()), S_OK);
  CoDisconnectObject(face.get(), 0);
  CoDisconnectObject(point.get(), 0);
}

TEST_F(Processes, KilledListener_IsDroppedAtTheNextEvent) {
  const auto gadget = make<Gadget>();
  const auto here = make<Counter>();
  remote_.call(u"Listen", gadget->object());
  here->field = PokedFacade(throughCom(gadget->object()).automation());
  EXPECT_EQ(gadget->listenerCount(), 2u);
  kill();
  gadget->fire(Poked, 1, u"");
  EXPECT_EQ(here->sum, 1);
  EXPECT_EQ(gadget->listenerCount(), 1u);
  here->field = nullptr;
  giveUp(*gadget);
}

}  // namespace
}  // namespace bridge_test

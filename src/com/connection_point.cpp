#include "com/connection_point.h"

#include <algorithm>
#include <array>
#include <map>
#include <vector>

#include "com/arguments.h"
#include "com/snapshot_enumerator.h"

namespace com {

using platform::Ref;

namespace {

class OutsideSink;

struct Connection {
  CONNECTDATA give() const { return {Ptr<IDispatch>(sink).detach(), cookie}; }

  DWORD cookie;
  Ptr<IDispatch> sink;
};

}  // namespace

// The sinks that are connected at the moment. A sink that turns out to be gone leaves by itself.
class Connections final : public platform::Counted {
 public:
  explicit Connections(platform::NativeObject& source) noexcept : source_(source) {}
  ~Connections() override;

  // Returns the connection's cookie, which is never 0.
  DWORD add(Ptr<IDispatch> sink);
  // False when there is no such connection.
  bool remove(DWORD cookie);
  std::vector<Connection> list() const;

 private:
  struct Entry {
    Ref<OutsideSink> sink;
    Ref<platform::Counted> subscription;
  };

  platform::NativeObject& source_;  // kept by its face, which owns this
  std::map<DWORD, Entry> entries_;
  DWORD last_ = 0;
};

namespace {

// An outside sink as a listener of ours. What it makes of an event is its own affair: a failure ends here.
class OutsideSink final : public platform::EventSink {
 public:
  OutsideSink(Ptr<IDispatch> sink, Connections& all, DWORD cookie) noexcept
      : sink_(std::move(sink)), all_(&all), cookie_(cookie) {}

  const Ptr<IDispatch>& sink() const noexcept { return sink_; }
  void leaveAlone() noexcept { all_ = nullptr; }

  void onEvent(std::int32_t dispid, platform::Args args) override {
    OutgoingArguments arguments(args, platform::Access::Call);
    ExceptionInfo info;
    UINT bad = 0;
    const HRESULT hr = sink_->Invoke(dispid, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_METHOD, arguments.params(),
                                     nullptr, info.get(), &bad);
    arguments.tryWriteBack();
    if (isGone(hr) && all_) all_->remove(cookie_);
  }

 private:
  static bool isGone(HRESULT hr) noexcept {
    constexpr std::array<HRESULT, 7> ends{RPC_E_DISCONNECTED,
                                          RPC_E_SERVER_DIED,
                                          RPC_E_SERVER_DIED_DNE,
                                          CO_E_OBJNOTCONNECTED,
                                          static_cast<HRESULT>(0x800706BA),   // RPC_S_SERVER_UNAVAILABLE
                                          static_cast<HRESULT>(0x800706BE),   // RPC_S_CALL_FAILED
                                          static_cast<HRESULT>(0x800706BF)};  // RPC_S_CALL_FAILED_DNE
    return std::find(ends.begin(), ends.end(), hr) != ends.end();
  }

  Ptr<IDispatch> sink_;
  Connections* all_;
  DWORD cookie_;
};

}  // namespace

Connections::~Connections() {
  for (const auto& [cookie, entry] : entries_) entry.sink->leaveAlone();
}

DWORD Connections::add(Ptr<IDispatch> sink) {
  const DWORD cookie = ++last_;
  auto listener = platform::make<OutsideSink>(std::move(sink), *this, cookie);
  auto subscription = source_.subscribe(source_.events(), listener);
  entries_[cookie] = {listener, subscription};
  return cookie;
}

bool Connections::remove(DWORD cookie) {
  const auto at = entries_.find(cookie);
  if (at == entries_.end()) return false;
  const Entry goes = std::move(at->second);  // released after it has left the list
  entries_.erase(at);
  goes.sink->leaveAlone();
  return true;
}

std::vector<Connection> Connections::list() const {
  std::vector<Connection> all;
  for (const auto& [cookie, entry] : entries_) all.push_back({cookie, entry.sink->sink()});
  return all;
}

namespace {

struct PointReference {
  explicit PointReference(IConnectionPoint& point) : point_(&point) {}
  IConnectionPoint* give() const { return Ptr<IConnectionPoint>(point_).detach(); }

 private:
  Ptr<IConnectionPoint> point_;
};

}  // namespace

ConnectionPoint::ConnectionPoint(IConnectionPointContainer& face, platform::NativeObject& source)
    : face_(face), source_(source), connections_(platform::make<Connections>(source)) {}

ConnectionPoint::~ConnectionPoint() = default;

STDMETHODIMP ConnectionPoint::QueryInterface(REFIID iid, void** result) {
  if (!result) return E_POINTER;
  *result = iid == IID_IUnknown || iid == IID_IConnectionPoint ? this : nullptr;
  if (!*result) return E_NOINTERFACE;
  AddRef();
  return S_OK;
}

STDMETHODIMP ConnectionPoint::GetConnectionInterface(IID* iid) {
  if (!iid) return E_POINTER;
  *iid = iidOf(source_.events());
  return S_OK;
}

STDMETHODIMP ConnectionPoint::GetConnectionPointContainer(IConnectionPointContainer** result) {
  if (!result) return E_POINTER;
  *result = Ptr<IConnectionPointContainer>(&face_).detach();
  return S_OK;
}

STDMETHODIMP ConnectionPoint::Advise(IUnknown* sink, DWORD* cookie) {
  if (!cookie) return E_POINTER;
  *cookie = 0;
  if (!sink) return E_POINTER;
  const Ptr<ConnectionPoint> keep(this);
  return guarded([&] {
    // A proxy refuses the event interface, which it has never heard of; every such sink is an IDispatch.
    const Ptr<IUnknown> given(sink);
    auto dispatch = given.as<IDispatch>(iidOf(source_.events()));
    if (!dispatch) dispatch = given.as<IDispatch>();
    if (!dispatch) return CONNECT_E_CANNOTCONNECT;
    *cookie = connections_->add(std::move(dispatch));
    return S_OK;
  });
}

STDMETHODIMP ConnectionPoint::Unadvise(DWORD cookie) {
  const Ptr<ConnectionPoint> keep(this);
  return guarded([&] { return connections_->remove(cookie) ? S_OK : CONNECT_E_NOCONNECTION; });
}

STDMETHODIMP ConnectionPoint::EnumConnections(IEnumConnections** result) {
  if (!result) return E_POINTER;
  *result = nullptr;
  return guarded([&] {
    using All = SnapshotEnumerator<IEnumConnections, CONNECTDATA, Connection>;
    *result = makeCom<All>(connections_->list()).detach();
    return S_OK;
  });
}

Ptr<IEnumConnectionPoints> enumerateOne(ConnectionPoint& point) {
  using All = SnapshotEnumerator<IEnumConnectionPoints, IConnectionPoint*, PointReference>;
  return makeCom<All>(std::vector{PointReference(point)});
}

}  // namespace com

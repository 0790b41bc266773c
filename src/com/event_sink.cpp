#include "com/event_sink.h"

#include "com/arguments.h"
#include "com/com_object.h"

namespace com {
namespace {

using platform::Counted;
using platform::EventSink;
using platform::Ref;

class DispatchSink final : public DispatchObject<> {
 public:
  DispatchSink(const IID& events, const Ref<EventSink>& sink) : events_(events), sink_(sink) {}

  // From here on events find nobody, even those that are on their way.
  void deafen() noexcept { sink_ = nullptr; }

  STDMETHODIMP Invoke(DISPID id, REFIID /*reserved*/, LCID /*locale*/, WORD /*flags*/, DISPPARAMS* params,
                      VARIANT* result, EXCEPINFO* info, UINT* /*bad*/) override {
    if (result) VariantInit(result);
    const Ref<EventSink> sink = sink_;  // the event may end the subscription, and this object with it
    if (!sink) return S_OK;
    if (const HRESULT hr = checkParams(params, false); FAILED(hr)) return hr;
    return guarded(
        [&] {
          IncomingArguments arguments(*params);
          try {
            sink->onEvent(id, arguments.args());
          } catch (...) {
            arguments.tryWriteBack();
            throw;
          }
          arguments.writeBack();
          return S_OK;
        },
        info);
  }

 protected:
  void* find(REFIID iid) override { return iid == events_ ? static_cast<IDispatch*>(this) : DispatchObject::find(iid); }

 private:
  IID events_;
  Ref<EventSink> sink_;
};

class Advised final : public Counted {
 public:
  Advised(Ptr<IConnectionPoint> point, DWORD cookie, Ptr<DispatchSink> sink) noexcept
      : point_(std::move(point)), cookie_(cookie), sink_(std::move(sink)) {}

 protected:
  // A source whose process is dead answers with a failure, which changes nothing here. What such a process held of the
  // sink nobody gives back, hence the disconnecting.
  void terminate() noexcept override {
    sink_->deafen();
    point_->Unadvise(cookie_);
    CoDisconnectObject(sink_.get(), 0);
    point_ = nullptr;
    sink_ = nullptr;
  }

 private:
  Ptr<IConnectionPoint> point_;
  DWORD cookie_;
  Ptr<DispatchSink> sink_;
};

// Error 459 when the source says that it lacks something, its own error when it fails.
void checkEvents(HRESULT result, HRESULT lack) {
  if (result == lack) platform::raiseError(459);
  check(result);
}

}  // namespace

Ref<Counted> advise(IUnknown& source, const platform::Guid& events, const Ref<EventSink>& sink) {
  const IID iid = iidOf(events);
  Ptr<IConnectionPointContainer> container;
  checkEvents(source.QueryInterface(IID_IConnectionPointContainer, container.putVoid()), E_NOINTERFACE);
  Ptr<IConnectionPoint> point;
  checkEvents(container->FindConnectionPoint(iid, point.put()), CONNECT_E_NOCONNECTION);
  const auto face = makeCom<DispatchSink>(iid, sink);
  DWORD cookie = 0;
  checkEvents(point->Advise(face.get(), &cookie), CONNECT_E_CANNOTCONNECT);
  return platform::make<Advised>(std::move(point), cookie, face);
}

}  // namespace com

// Our sinks, called from outside by sources of every temper.
#include <functional>
#include <vector>

#include "addin/platform/object.h"
#include "bridge_fixture.h"
#include "gadget.h"
#include "support/errors.h"

namespace bridge_test {
namespace {

using platform::Args;
using platform::Counted;
using platform::EventSink;
using platform::make;
using platform::Ref;
using platform::Variant;
using testing_support::errorNumberOf;

// A source whose sink a test calls by itself.
struct SourceDouble final : IConnectionPointContainer, IConnectionPoint {
  STDMETHODIMP QueryInterface(REFIID iid, void** result) override {
    *result = nullptr;
    if (iid == IID_IUnknown || iid == IID_IConnectionPointContainer)
      *result = static_cast<IConnectionPointContainer*>(this);
    if (*result) AddRef();
    return *result ? S_OK : E_NOINTERFACE;
  }
  STDMETHODIMP_(ULONG) AddRef() override { return ++references; }
  STDMETHODIMP_(ULONG) Release() override { return --references; }
  STDMETHODIMP EnumConnectionPoints(IEnumConnectionPoints**) override { return E_NOTIMPL; }
  STDMETHODIMP FindConnectionPoint(REFIID, IConnectionPoint** result) override {
    *result = this;
    AddRef();
    return S_OK;
  }
  STDMETHODIMP GetConnectionInterface(IID*) override { return E_NOTIMPL; }
  STDMETHODIMP GetConnectionPointContainer(IConnectionPointContainer**) override { return E_NOTIMPL; }
  STDMETHODIMP Advise(IUnknown* given, DWORD* cookie) override {
    if (FAILED(answer)) return answer;
    sink = com::Ptr<IUnknown>(given);
    *cookie = 5;
    return S_OK;
  }
  STDMETHODIMP Unadvise(DWORD cookie) override {
    unadvised.push_back(cookie);
    if (whenUnadvised) whenUnadvised();
    if (SUCCEEDED(answer)) sink = nullptr;
    return answer;
  }
  STDMETHODIMP EnumConnections(IEnumConnections**) override { return E_NOTIMPL; }

  ULONG references = 0;
  HRESULT answer = S_OK;
  com::Ptr<IUnknown> sink;
  std::vector<DWORD> unadvised;
  std::function<void()> whenUnadvised;
};

class OurSink : public BridgeTest {
 protected:
  struct Deafening final : EventSink {
    explicit Deafening(int& count) : heard(count) {}
    void onEvent(std::int32_t, Args args) override {
      ++heard;
      for (Variant& argument : args)
        if (Variant* const target = argument.target()) *target = true;
      if (number) platform::raiseError(number);
    }
    int& heard;
    std::int32_t number = 0;
  };

  Ref<Counted> subscribe() { return com::import(&front_).subscribe(gadgetEvents, sink_); }

  // An IDispatch with connection points.
  struct Front final : IDispatch {
    explicit Front(SourceDouble& s) : source(s) {}
    STDMETHODIMP QueryInterface(REFIID iid, void** result) override {
      if (iid == IID_IConnectionPointContainer) return source.QueryInterface(iid, result);
      *result = iid == IID_IUnknown || iid == IID_IDispatch ? this : nullptr;
      if (*result) AddRef();
      return *result ? S_OK : E_NOINTERFACE;
    }
    STDMETHODIMP_(ULONG) AddRef() override { return ++references; }
    STDMETHODIMP_(ULONG) Release() override { return --references; }
    STDMETHODIMP GetTypeInfoCount(UINT*) override { return E_NOTIMPL; }
    STDMETHODIMP GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
    STDMETHODIMP GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) override { return E_NOTIMPL; }
    STDMETHODIMP Invoke(DISPID, REFIID, LCID, WORD, DISPPARAMS*, VARIANT*, EXCEPINFO*, UINT*) override {
      return E_NOTIMPL;
    }
    SourceDouble& source;
    ULONG references = 0;
  };

  com::Ptr<IDispatch> advised() const { return source_.sink.as<IDispatch>(); }

  int heard_ = 0;
  SourceDouble source_;
  Front front_{source_};
  Ref<Deafening> sink_ = make<Deafening>(heard_);
};

TEST_F(OurSink, AnswersForIUnknownIDispatchAndTheEventInterface) {
  const auto subscription = subscribe();
  EXPECT_TRUE(source_.sink.as<IUnknown>());
  EXPECT_TRUE(source_.sink.as<IDispatch>());
  EXPECT_TRUE(source_.sink.as<IDispatch>(com::iidOf(gadgetEvents)));
  EXPECT_FALSE(source_.sink.as<IDispatch>(IID_IMalloc));
}

TEST_F(OurSink, WritesThroughByReferenceArguments_InTheirOwnType) {
  const auto subscription = subscribe();
  VARIANT_BOOL cancel = VARIANT_FALSE;
  VARIANT argument;
  VariantInit(&argument);
  argument.vt = VT_BYREF | VT_BOOL;
  argument.pboolVal = &cancel;
  DISPPARAMS params{&argument, nullptr, 1, 0};
  EXPECT_EQ(advised()->Invoke(4, IID_NULL, 0, DISPATCH_METHOD, &params, nullptr, nullptr, nullptr), S_OK);
  EXPECT_EQ(cancel, VARIANT_TRUE);
}

TEST_F(OurSink, FailureOfTheListener_IsTheResult_AndWhatItWroteStays) {
  const auto subscription = subscribe();
  sink_->number = 70;
  VARIANT_BOOL cancel = VARIANT_FALSE;
  VARIANT argument;
  VariantInit(&argument);
  argument.vt = VT_BYREF | VT_BOOL;
  argument.pboolVal = &cancel;
  DISPPARAMS params{&argument, nullptr, 1, 0};
  com::ExceptionInfo info;
  EXPECT_EQ(advised()->Invoke(4, IID_NULL, 0, DISPATCH_METHOD, &params, nullptr, info.get(), nullptr),
            DISP_E_EXCEPTION);
  EXPECT_EQ(info.get()->scode, static_cast<SCODE>(0x800A0046));
  EXPECT_EQ(cancel, VARIANT_TRUE);
}

TEST_F(OurSink, HostileArguments_AreRefused) {
  const auto subscription = subscribe();
  DISPPARAMS params{nullptr, nullptr, 1, 0};
  EXPECT_EQ(advised()->Invoke(4, IID_NULL, 0, DISPATCH_METHOD, &params, nullptr, nullptr, nullptr), E_INVALIDARG);
  EXPECT_EQ(advised()->Invoke(4, IID_NULL, 0, DISPATCH_METHOD, nullptr, nullptr, nullptr, nullptr), E_INVALIDARG);
  VARIANT argument;
  VariantInit(&argument);
  argument.vt = VT_RECORD;
  params.rgvarg = &argument;
  EXPECT_EQ(advised()->Invoke(4, IID_NULL, 0, DISPATCH_METHOD, &params, nullptr, nullptr, nullptr),
            static_cast<HRESULT>(0x800A01CA));
  EXPECT_EQ(heard_, 0);
}

TEST_F(OurSink, IsDeafFromTheMomentOfUnsubscribing_EvenWhenTheSourceKeepsIt) {
  auto subscription = subscribe();
  const auto kept = advised();
  DISPPARAMS none{};
  source_.whenUnadvised = [&] {  // an event that is on its way
    EXPECT_EQ(kept->Invoke(3, IID_NULL, 0, DISPATCH_METHOD, &none, nullptr, nullptr, nullptr), S_OK);
  };
  subscription = nullptr;
  EXPECT_EQ(kept->Invoke(3, IID_NULL, 0, DISPATCH_METHOD, &none, nullptr, nullptr, nullptr), S_OK);
  EXPECT_EQ(heard_, 0);
  EXPECT_EQ(source_.unadvised, std::vector<DWORD>{5});
}

TEST_F(OurSink, SourceThatFailsToUnadvise_ChangesNothing) {
  auto subscription = subscribe();
  source_.answer = RPC_E_DISCONNECTED;
  subscription = nullptr;
  EXPECT_EQ(source_.references, 0u);
  source_.sink = nullptr;
}

TEST_F(OurSink, SourceThatRefuses_IsError459_AndOneThatFails_ItsOwnError) {
  source_.answer = CONNECT_E_CANNOTCONNECT;
  EXPECT_EQ(errorNumberOf([&] { subscribe(); }), 459);
  source_.answer = E_ACCESSDENIED;
  EXPECT_EQ(errorNumberOf([&] { subscribe(); }), E_ACCESSDENIED);
  EXPECT_EQ(source_.references, 0u);
}

}  // namespace
}  // namespace bridge_test

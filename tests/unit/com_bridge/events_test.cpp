// Events across the border, both ways: a native source, its outside face, a listener of ours that subscribes there.
#include <utility>
#include <vector>

#include "addin/platform/with_events.h"
#include "bridge_fixture.h"
#include "dispatch_double.h"
#include "gadget.h"
#include "support/errors.h"

namespace bridge_test {
namespace {

using platform::Args;
using platform::Counted;
using platform::EventSink;
using platform::make;
using platform::Object;
using platform::on;
using platform::Ref;
using platform::String;
using platform::WithEvents;
using testing_support::errorNumberOf;

struct GadgetFacade : Object {
  using Object::Object;
  struct Events {
    static constexpr platform::Guid iid = gadgetEvents;
  };
};

struct Listener final : Counted {
  void field_Poked(std::int32_t number, const String& text) {
    heard.emplace_back(number, text);
    if (whenPoked) whenPoked();
  }
  void field_Closing(const Object& object, bool& cancel) {
    closing = object;
    cancel = answer;
  }

  std::vector<std::pair<std::int32_t, String>> heard;
  Object closing;
  bool answer = true;
  std::function<void()> whenPoked;
  WithEvents<GadgetFacade> field{this, on<Poked, &Listener::field_Poked>, on<Closing, &Listener::field_Closing>};
};

class Events : public BridgeTest {
 protected:
  GadgetFacade outside() { return GadgetFacade(throughCom(gadget_->object()).automation()); }

  Ref<Gadget> gadget_ = make<Gadget>();
  Ref<Listener> listener_ = make<Listener>();
};

TEST_F(Events, ReachTheListener_WithTheirArguments) {
  listener_->field = outside();
  gadget_->fire(Poked, 7, u"seven");
  gadget_->fire(Poked, 8, u"");
  EXPECT_EQ(listener_->heard, (std::vector<std::pair<std::int32_t, String>>{{7, u"seven"}, {8, u""}}));
}

TEST_F(Events, ByReferenceBoolean_ComesBack) {
  listener_->field = outside();
  bool cancel = false;
  gadget_->fire(Closing, gadget_->object(), cancel);
  EXPECT_TRUE(cancel);
  EXPECT_EQ(platform::nativeOf<Gadget>(listener_->closing), gadget_.get());
  listener_->answer = false;
  gadget_->fire(Closing, Object(), cancel);
  EXPECT_FALSE(cancel);
  EXPECT_FALSE(listener_->closing);
}

TEST_F(Events, UndeclaredEvent_IsNotHeard) {
  listener_->field = outside();
  constexpr platform::Event<std::int32_t> Unknown{u"Unknown", 99};
  gadget_->fire(Unknown, 1);
  EXPECT_TRUE(listener_->heard.empty());
}

TEST_F(Events, EmptyingTheField_Disconnects_AndReleasesEverything) {
  listener_->field = outside();
  EXPECT_EQ(gadget_->listenerCount(), 1u);
  EXPECT_EQ(com::liveExports(), 2) << "the face and the sink";
  listener_->field = nullptr;
  EXPECT_EQ(gadget_->listenerCount(), 0u);
  EXPECT_EQ(com::liveExports(), 0);
}

TEST_F(Events, EndOfTheOwner_Disconnects) {
  listener_->field = outside();
  listener_ = nullptr;
  EXPECT_EQ(gadget_->listenerCount(), 0u);
  EXPECT_EQ(com::liveExports(), 0);
  gadget_->fire(Poked, 1, u"");
}

TEST_F(Events, EndedOwner_HearsNothingMore) {
  struct Owner final : Counted {
    explicit Owner(int& count) : heard(count) {}
    void field_Poked(std::int32_t, const String&) { ++heard; }
    void terminate() noexcept override { source->fire(Poked, 2, u"while it ends"); }
    int& heard;
    Ref<Gadget> source;
    WithEvents<GadgetFacade> field{this, on<Poked, &Owner::field_Poked>};
  };
  int heard = 0;
  auto owner = make<Owner>(heard);
  owner->source = gadget_;
  owner->field = outside();
  gadget_->fire(Poked, 1, u"");
  EXPECT_EQ(heard, 1);
  owner = nullptr;
  EXPECT_EQ(heard, 1);
}

TEST_F(Events, UnsubscribingInsideAnEvent_IsSafe_AndHeardOnce) {
  listener_->field = outside();
  listener_->whenPoked = [&] { listener_->field = nullptr; };
  gadget_->fire(Poked, 1, u"");
  gadget_->fire(Poked, 2, u"");
  EXPECT_EQ(listener_->heard.size(), 1u);
  EXPECT_EQ(com::liveExports(), 0);
}

TEST_F(Events, LettingGoOfOwnerAndSourceInsideAnEvent_IsSafe) {
  listener_->field = outside();
  Gadget* const source = gadget_.get();
  bool ended = false;
  gadget_->whenTerminated = [&] { ended = true; };
  listener_->whenPoked = [&] {
    gadget_ = nullptr;
    listener_ = nullptr;
  };
  source->fire(Poked, 1, u"");
  EXPECT_TRUE(ended);
}

TEST_F(Events, SubscribingInsideAnEvent_HearsFromTheNextOn) {
  const auto second = make<Listener>();
  listener_->field = outside();
  listener_->whenPoked = [&] {
    if (!second->field) second->field = outside();
  };
  gadget_->fire(Poked, 1, u"");
  EXPECT_EQ(second->heard.size(), 0u);
  gadget_->fire(Poked, 2, u"");
  EXPECT_EQ(second->heard.size(), 1u);
}

TEST_F(Events, EventInsideAnEvent_IsDelivered) {
  listener_->field = outside();
  listener_->whenPoked = [&] {
    if (listener_->heard.size() < 3) gadget_->fire(Poked, 0, u"again");
  };
  gadget_->fire(Poked, 1, u"");
  EXPECT_EQ(listener_->heard.size(), 3u);
}

TEST_F(Events, FailingListener_StopsNoOther) {
  const auto second = make<Listener>();
  listener_->field = outside();
  second->field = outside();
  listener_->whenPoked = [] { platform::raiseError(70); };
  gadget_->fire(Poked, 1, u"");
  gadget_->raiseEvent(Poked, 2, u"");
  EXPECT_EQ(listener_->heard.size(), 2u);
  EXPECT_EQ(second->heard.size(), 2u);
}

TEST_F(Events, ObjectWithoutEvents_IsError459) {
  gadget_->hasEvents = false;
  EXPECT_EQ(errorNumberOf([&] { listener_->field = outside(); }), 459);
  EXPECT_FALSE(listener_->field);
}

TEST_F(Events, AnotherInterface_IsError459) {
  struct Deaf final : EventSink {
    void onEvent(std::int32_t, Args) override {}
  };
  const auto sink = make<Deaf>();
  const GadgetFacade object = outside();
  EXPECT_EQ(errorNumberOf([&] { object.subscribe({1, 2, 3, {}}, sink); }), 459);
}

// ---- outside sinks --------------------------------------------------------------------------------------------------

class OutsideSinks : public Events {
 protected:
  com::Ptr<IConnectionPoint> point() {
    const auto container = com::exported(gadget_->object()).as<IConnectionPointContainer>();
    com::Ptr<IConnectionPoint> found;
    EXPECT_EQ(container->FindConnectionPoint(com::iidOf(gadgetEvents), found.put()), S_OK);
    return found;
  }
};

TEST_F(OutsideSinks, AreAskedForTheEventInterface_AndTakenAsIDispatchWhenTheyRefuse) {
  DispatchDouble plain;
  DispatchDouble knowing;
  knowing.alsoKnownAs = com::iidOf(gadgetEvents);
  const auto p = point();
  DWORD cookies[2] = {};
  EXPECT_EQ(p->Advise(&plain, &cookies[0]), S_OK);
  EXPECT_EQ(p->Advise(&knowing, &cookies[1]), S_OK);
  EXPECT_NE(cookies[0], 0u);
  EXPECT_NE(cookies[0], cookies[1]);
  gadget_->fire(Poked, 1, u"");
  EXPECT_EQ(plain.calls, 1);
  EXPECT_EQ(knowing.calls, 1);
  EXPECT_EQ(p->Unadvise(cookies[0]), S_OK);
  EXPECT_EQ(plain.references, 0);
  EXPECT_EQ(p->Unadvise(cookies[0]), CONNECT_E_NOCONNECTION);
  EXPECT_EQ(p->Unadvise(cookies[1]), S_OK);
  EXPECT_EQ(p->Unadvise(12345), CONNECT_E_NOCONNECTION);
}

TEST_F(OutsideSinks, GetTheEventAsAMethodCall_WithTheArgumentsReversed) {
  DispatchDouble sink([](DISPID id, WORD flags, DISPPARAMS& params, VARIANT* result, EXCEPINFO* info) {
    EXPECT_EQ(id, 4);
    EXPECT_EQ(flags, DISPATCH_METHOD);
    EXPECT_EQ(params.cArgs, 2u);
    EXPECT_EQ(params.cNamedArgs, 0u);
    EXPECT_EQ(params.rgvarg[1].vt, VT_DISPATCH);
    EXPECT_EQ(params.rgvarg[0].vt, VT_BYREF | VT_BOOL);
    EXPECT_EQ(result, nullptr);
    EXPECT_NE(info, nullptr);
    *params.rgvarg[0].pboolVal = VARIANT_TRUE;
    return S_OK;
  });
  const auto p = point();
  DWORD cookie = 0;
  ASSERT_EQ(p->Advise(&sink, &cookie), S_OK);
  bool cancel = false;
  gadget_->fire(Closing, gadget_->object(), cancel);
  EXPECT_TRUE(cancel);
  EXPECT_EQ(p->Unadvise(cookie), S_OK);
}

TEST_F(OutsideSinks, ThatFail_StopNoOther_AndThoseWhoseProcessIsGone_AreDropped) {
  HRESULT answer = E_FAIL;
  DispatchDouble failing([&](DISPID, WORD, DISPPARAMS&, VARIANT*, EXCEPINFO* info) {
    info->bstrDescription = SysAllocString(L"must be freed");
    return answer;
  });
  DispatchDouble other;
  const auto p = point();
  DWORD cookie = 0;
  ASSERT_EQ(p->Advise(&failing, &cookie), S_OK);
  ASSERT_EQ(p->Advise(&other, &cookie), S_OK);
  gadget_->fire(Poked, 1, u"");
  EXPECT_EQ(other.calls, 1);
  EXPECT_EQ(gadget_->listenerCount(), 2u) << "a failure alone is no reason to leave";
  answer = RPC_E_DISCONNECTED;
  gadget_->fire(Poked, 2, u"");
  EXPECT_EQ(other.calls, 2);
  EXPECT_EQ(gadget_->listenerCount(), 1u);
  EXPECT_EQ(failing.references, 0);
  gadget_->fire(Poked, 3, u"");
  EXPECT_EQ(failing.calls, 2);
  EXPECT_EQ(other.calls, 3);
}

TEST_F(OutsideSinks, UnadvisedInsideTheEvent_BySomebodyElse_AreNotCalled) {
  const auto p = point();
  DWORD first = 0;
  DWORD second = 0;
  DispatchDouble leaving([&](DISPID, WORD, DISPPARAMS&, VARIANT*, EXCEPINFO*) {
    EXPECT_EQ(p->Unadvise(first), S_OK);
    EXPECT_EQ(p->Unadvise(second), S_OK);
    return S_OK;
  });
  DispatchDouble late;
  ASSERT_EQ(p->Advise(&leaving, &first), S_OK);
  ASSERT_EQ(p->Advise(&late, &second), S_OK);
  gadget_->fire(Poked, 1, u"");
  EXPECT_EQ(leaving.calls, 1);
  EXPECT_EQ(late.calls, 0);
  EXPECT_EQ(late.references, 0);
}

TEST_F(OutsideSinks, LeftConnected_GoWithTheFace) {
  DispatchDouble sink;
  DWORD cookie = 0;
  ASSERT_EQ(point()->Advise(&sink, &cookie), S_OK);
  EXPECT_EQ(sink.references, 0) << "nobody held the connection point any more";
  EXPECT_EQ(gadget_->listenerCount(), 0u);
}

TEST_F(OutsideSinks, WithoutIDispatch_AreRefused) {
  const auto p = point();
  DWORD cookie = 5;
  const auto noDispatch = p.as<IUnknown>();
  EXPECT_EQ(p->Advise(noDispatch.get(), &cookie), CONNECT_E_CANNOTCONNECT);
  EXPECT_EQ(cookie, 0u);
  EXPECT_EQ(p->Advise(nullptr, &cookie), E_POINTER);
  EXPECT_EQ(p->Advise(noDispatch.get(), nullptr), E_POINTER);
}

TEST_F(OutsideSinks, CanBeListed) {
  DispatchDouble sinks[3];
  const auto p = point();
  DWORD cookies[3] = {};
  for (int i = 0; i < 3; ++i) ASSERT_EQ(p->Advise(&sinks[i], &cookies[i]), S_OK);
  {
    com::Ptr<IEnumConnections> all;
    ASSERT_EQ(p->EnumConnections(all.put()), S_OK);
    EXPECT_EQ(p->Unadvise(cookies[1]), S_OK);  // the list was taken before
    CONNECTDATA data[4] = {};
    ULONG fetched = 0;
    EXPECT_EQ(all->Next(1, data, nullptr), S_OK);
    com::Ptr<IEnumConnections> rest;
    ASSERT_EQ(all->Clone(rest.put()), S_OK);
    EXPECT_EQ(rest->Next(3, data + 1, &fetched), S_FALSE);
    EXPECT_EQ(fetched, 2u);
    for (int i = 0; i < 3; ++i) {
      EXPECT_EQ(data[i].dwCookie, cookies[i]);
      EXPECT_EQ(data[i].pUnk, &sinks[i]);
      data[i].pUnk->Release();
    }
    EXPECT_EQ(all->Skip(2), S_OK);
    EXPECT_EQ(all->Skip(1), S_FALSE);
    EXPECT_EQ(all->Reset(), S_OK);
    EXPECT_EQ(all->Next(2, data, nullptr), E_POINTER);
    EXPECT_EQ(all->Next(1, nullptr, &fetched), E_POINTER);
  }
  EXPECT_EQ(sinks[1].references, 0);
  EXPECT_EQ(p->Unadvise(cookies[0]), S_OK);
  EXPECT_EQ(p->Unadvise(cookies[2]), S_OK);
}

TEST_F(OutsideSinks, Container_ListsItsOnePoint_WhichKnowsItsPlace) {
  const auto container = com::exported(gadget_->object()).as<IConnectionPointContainer>();
  com::Ptr<IEnumConnectionPoints> all;
  ASSERT_EQ(container->EnumConnectionPoints(all.put()), S_OK);
  com::Ptr<IConnectionPoint> listed;
  ULONG fetched = 0;
  ASSERT_EQ(all->Next(1, listed.put(), &fetched), S_OK);
  EXPECT_EQ(listed, point());
  IConnectionPoint* more = nullptr;
  EXPECT_EQ(all->Next(1, &more, &fetched), S_FALSE);
  EXPECT_EQ(fetched, 0u);

  IID iid{};
  EXPECT_EQ(listed->GetConnectionInterface(&iid), S_OK);
  EXPECT_EQ(com::guidOf(iid), gadgetEvents);
  com::Ptr<IConnectionPointContainer> home;
  EXPECT_EQ(listed->GetConnectionPointContainer(home.put()), S_OK);
  EXPECT_EQ(home, container);
  com::Ptr<IConnectionPoint> none;
  EXPECT_EQ(container->FindConnectionPoint(IID_IMalloc, none.put()), CONNECT_E_NOCONNECTION);
  EXPECT_EQ(container->FindConnectionPoint(IID_IDispatch, none.put()), S_OK);
}

TEST_F(OutsideSinks, ObjectWithoutEvents_IsNoContainer) {
  gadget_->hasEvents = false;
  EXPECT_FALSE(com::exported(gadget_->object()).as<IConnectionPointContainer>());
}

}  // namespace
}  // namespace bridge_test

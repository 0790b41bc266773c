// The add-in object, driven through its vtable and through IDispatch, by friendly and by hostile callers.

#include <array>

#include "com/arguments.h"
#include "connection.h"
#include "support/errors.h"

namespace addin_dll_tests {
namespace {

using platform::LateBound;
using platform::Object;
using platform::Variant;

class Connect : public Connection {
 protected:
  LateBound lateBound() const { return LateBound(com::import(connect_.get())); }

  // Invoke with arguments as they stand, in declared order.
  template <std::size_t N>
  HRESULT invoke(DISPID id, std::array<VARIANT, N> arguments, WORD flags = DISPATCH_METHOD) {
    std::reverse(arguments.begin(), arguments.end());
    DISPPARAMS params{arguments.data(), nullptr, N, 0};
    com::ExceptionInfo info;
    return connect_->Invoke(id, IID_NULL, LOCALE_USER_DEFAULT, flags, &params, nullptr, info.get(), nullptr);
  }

  static VARIANT number(LONG value) {
    VARIANT v{};
    v.vt = VT_I4;
    v.lVal = value;
    return v;
  }
  static VARIANT object(const com::Ptr<IDispatch>& value) {
    VARIANT v{};
    v.vt = VT_DISPATCH;
    v.pdispVal = value.get();
    return v;
  }

  const AddInLibrary addIn_;
  com::Ptr<com::IDTExtensibility2> connect_ = addIn_.connect();
};

TEST_F(Connect, Vtable_TheFiveMethodsDoWhatTheyAreNamedFor) {
  EXPECT_EQ(connect_->OnConnection(application().get(), 1, addInInst().get(), nullptr), S_OK);
  EXPECT_EQ(viewer_.take(), startUpLines());
  EXPECT_EQ(connect_->OnStartupComplete(nullptr), S_OK);
  EXPECT_EQ(connect_->OnAddInsUpdate(nullptr), S_OK);
  EXPECT_EQ(connect_->OnBeginShutdown(nullptr), S_OK);
  EXPECT_EQ(connect_->OnDisconnection(1, nullptr), S_OK);
  EXPECT_EQ(viewer_.take(), (Lines{"OnStartupComplete", "OnAddInsUpdate", "OnBeginShutdown", "OnDisconnection",
                                   "OnDisconnection - RemoveMode = ext_dm_UserClosed!!!!!!!!!!!!!!!!!!!!"}));
}

TEST_F(Connect, Vtable_ArrayOfCustomValues_IsNotLookedAt) {
  SAFEARRAY* custom = SafeArrayCreateVector(VT_VARIANT, 0, 2);
  EXPECT_EQ(connect_->OnConnection(application().get(), 1, addInInst().get(), &custom), S_OK);
  EXPECT_EQ(connect_->OnDisconnection(0, &custom), S_OK);
  ASSERT_NE(custom, nullptr);
  SafeArrayDestroy(custom);
}

TEST_F(Connect, Vtable_MailClientWithoutAWindow_IsLeftAlone) {
  application_.get()->hasWindow = false;
  EXPECT_EQ(connect_->OnConnection(application().get(), 0, addInInst().get(), nullptr), S_OK);
  EXPECT_EQ(viewer_.take(), (Lines{"<==== MRKTXTMSG Version 1.0.0", "Connectmode:0", "ActiveWindow is nothing"}));
  EXPECT_EQ(application_.get()->listenerCount(), 0u);
  EXPECT_EQ(connect_->OnDisconnection(0, nullptr), S_OK);
  EXPECT_EQ(viewer_.take(), Lines{"OnDisconnection"});
}

TEST_F(Connect, Vtable_NullApplicationOrAddInInst_IsSuccessAndALine) {
  EXPECT_EQ(connect_->OnConnection(nullptr, 1, nullptr, nullptr), S_OK);
  EXPECT_EQ(viewer_.take(), (Lines{"<==== MRKTXTMSG Version 1.0.0", "Connectmode:1",
                                   "Error:91, Object variable or With block variable not set, mrktxtmsg"}));
  EXPECT_EQ(connect_->OnConnection(application().get(), 1, nullptr, nullptr), S_OK);
  EXPECT_EQ(viewer_.take(), (Lines{"<==== MRKTXTMSG Version 1.0.0", "Connectmode:1", "ActiveWindow is something",
                                   "Error:91, Object variable or With block variable not set, mrktxtmsg"}));
  EXPECT_EQ(connect_->OnDisconnection(-77, nullptr), S_OK);
}

TEST_F(Connect, Vtable_ObjectsThatAreNotWhatTheyShouldBe_AreSuccessAndALine) {
  EXPECT_EQ(connect_->OnConnection(addInInst().get(), 1, application().get(), nullptr), S_OK);
  EXPECT_EQ(viewer_.take(), (Lines{"<==== MRKTXTMSG Version 1.0.0", "Connectmode:1",
                                   "Error:438, Object doesn't support this property or method, mrktxtmsg"}));
}

TEST_F(Connect, Vtable_ApplicationThatFails_IsSuccessAndALine) {
  application_.get()->whenAskedForItsWindow = [] { platform::raiseError(70, u"mail client", u"Not now"); };
  EXPECT_EQ(connect_->OnConnection(application().get(), 1, addInInst().get(), nullptr), S_OK);
  EXPECT_EQ(viewer_.take(),
            (Lines{"<==== MRKTXTMSG Version 1.0.0", "Connectmode:1", "Error:70, Not now, mail client"}));
}

TEST_F(Connect, Vtable_LetGoOfInsideItsOwnCall_LivesUntilTheCallIsOver) {
  application_.get()->whenAskedForItsWindow = [this] {
    if (!connect_) return;
    connect_->OnDisconnection(0, nullptr);
    connect_ = nullptr;
    EXPECT_EQ(addIn_.canUnloadNow(), S_FALSE);
  };
  const auto app = application();
  const auto inst = addInInst();
  EXPECT_EQ(connect_.get()->OnConnection(app.get(), 1, inst.get(), nullptr), S_OK);
  EXPECT_FALSE(connect_);
}

TEST_F(Connect, Dispatch_NamesInAnyCase_HaveTheIdentifiersOneToFive) {
  DISPID next = 1;
  for (const wchar_t* name :
       {L"OnConnection", L"onDISCONNECTION", L"OnAddInsUpdate", L"OnStartupComplete", L"OnBeginShutdown"}) {
    auto* asked = const_cast<LPOLESTR>(name);
    DISPID id = 0;
    EXPECT_EQ(connect_->GetIDsOfNames(IID_NULL, &asked, 1, LOCALE_USER_DEFAULT, &id), S_OK);
    EXPECT_EQ(id, next++);
  }
  auto* unknown = const_cast<LPOLESTR>(L"Connect");
  DISPID id = 0;
  EXPECT_EQ(connect_->GetIDsOfNames(IID_NULL, &unknown, 1, LOCALE_USER_DEFAULT, &id), DISP_E_UNKNOWNNAME);
}

TEST_F(Connect, Dispatch_CustomLeftOut_DoesTheSameAsTheVtable) {
  const LateBound connect = lateBound();
  connect.call<void>(u"OnConnection", com::import(application().get()), 1, com::import(addInInst().get()));
  EXPECT_EQ(viewer_.take(), startUpLines());
  connect.call<void>(u"OnStartupComplete");
  connect.call<void>(u"OnAddInsUpdate");
  connect.call<void>(u"OnBeginShutdown");
  connect.call<void>(u"OnDisconnection", 0);
  EXPECT_EQ(viewer_.take(), (Lines{"OnStartupComplete", "OnAddInsUpdate", "OnBeginShutdown", "OnDisconnection"}));
}

TEST_F(Connect, Dispatch_CustomAsAnArrayOfAnyShape_DoesTheSameAsTheVtable) {
  SAFEARRAY* array = SafeArrayCreateVector(VT_VARIANT, 0, 1);
  VARIANT byValue{};
  byValue.vt = VT_ARRAY | VT_VARIANT;
  byValue.parray = array;
  VARIANT byReference{};
  byReference.vt = VT_BYREF | VT_ARRAY | VT_VARIANT;
  byReference.pparray = &array;
  VARIANT variable{};
  variable.vt = VT_BYREF | VT_VARIANT;
  variable.pvarVal = &byValue;
  const auto app = application();
  const auto inst = addInInst();
  for (const VARIANT& custom : {byValue, byReference, variable}) {
    EXPECT_EQ(invoke<4>(1, {object(app), number(1), object(inst), custom}), S_OK);
    EXPECT_EQ(viewer_.take(), startUpLines());
    EXPECT_EQ(invoke<2>(2, {number(0), custom}), S_OK);
    EXPECT_EQ(invoke<1>(4, {custom}), S_OK);
    EXPECT_EQ(viewer_.take(), (Lines{"OnDisconnection", "OnStartupComplete"}));
  }
  EXPECT_EQ(byValue.vt, VT_ARRAY | VT_VARIANT);  // the caller's values are the caller's
  SafeArrayDestroy(array);
}

TEST_F(Connect, Dispatch_WrongArguments_AreRefusedAndDoNothing) {
  EXPECT_NE(invoke<4>(1, {number(7), number(1), number(7), number(0)}), S_OK);
  EXPECT_NE(invoke<1>(2, {object(application())}), S_OK);
  EXPECT_NE(invoke<5>(1, {number(1), number(2), number(3), number(4), number(5)}), S_OK);
  EXPECT_NE(invoke<0>(2, {}), S_OK);
  EXPECT_EQ(invoke<0>(99, {}), DISP_E_MEMBERNOTFOUND);
  EXPECT_NE(invoke<1>(1, {number(1)}, DISPATCH_PROPERTYPUT), S_OK);
  EXPECT_NE(connect_->Invoke(4, IID_NULL, 0, DISPATCH_METHOD, nullptr, nullptr, nullptr, nullptr), S_OK);
  DISPPARAMS lying{nullptr, nullptr, 3, 0};
  EXPECT_NE(connect_->Invoke(4, IID_NULL, 0, DISPATCH_METHOD, &lying, nullptr, nullptr, nullptr), S_OK);
  EXPECT_EQ(viewer_.take(), Lines{});
}

TEST_F(Connect, Dispatch_EmptyApplication_IsSuccessAndALine) {
  EXPECT_EQ(invoke<3>(1, {object({}), number(1), object({})}), S_OK);
  EXPECT_EQ(viewer_.take(), (Lines{"<==== MRKTXTMSG Version 1.0.0", "Connectmode:1",
                                   "Error:91, Object variable or With block variable not set, mrktxtmsg"}));
}

TEST_F(Connect, TwoOfThem_HaveConnectionsOfTheirOwn) {
  const auto other = addIn_.connect();
  EXPECT_EQ(connect_->OnConnection(application().get(), 1, addInInst().get(), nullptr), S_OK);
  EXPECT_EQ(other->OnConnection(application().get(), 1, addInInst().get(), nullptr), S_OK);
  EXPECT_EQ(application_.get()->listenerCount(), 2u);
  EXPECT_EQ(other->OnDisconnection(0, nullptr), S_OK);
  EXPECT_EQ(application_.get()->listenerCount(), 1u);
  EXPECT_EQ(connect_->OnDisconnection(0, nullptr), S_OK);
  EXPECT_EQ(application_.get()->listenerCount(), 0u);
}

}  // namespace
}  // namespace addin_dll_tests

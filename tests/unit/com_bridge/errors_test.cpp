// Failures: which run-time error a foreign failure is, what ours look like outside, and that nothing else gets through.
#include "support/errors.h"

#include "addin/platform/object.h"
#include "bridge_fixture.h"
#include "dispatch_double.h"
#include "gadget.h"

namespace bridge_test {
namespace {

using platform::LateBound;
using platform::make;
using platform::RuntimeError;
using platform::standardText;
using platform::String;
using platform::StringView;
using testing_support::errorNumberOf;

void expectError(const RuntimeError& error, std::int32_t number, StringView source, StringView description) {
  EXPECT_EQ(error.number, number);
  EXPECT_EQ(error.source, source);
  EXPECT_EQ(error.description, description);
}

class Errors : public BridgeTest {
 protected:
  // What a caller of ours gets when a foreign member answers so.
  RuntimeError answered(DispatchDouble::Answer answer) {
    DispatchDouble foreign(std::move(answer));
    const LateBound object(com::import(&foreign));
    const auto error = testing_support::errorOf([&] { object.call(u"Do"); });
    return error ? *error : RuntimeError(0, u"", u"");
  }
};

TEST_F(Errors, FailuresOfAutomation_AreTheRunTimeErrorsThatSayTheSame) {
  const std::pair<HRESULT, std::int32_t> expected[] = {
      {DISP_E_TYPEMISMATCH, 13}, {DISP_E_OVERFLOW, 6},        {DISP_E_MEMBERNOTFOUND, 438},
      {DISP_E_UNKNOWNNAME, 438}, {DISP_E_BADPARAMCOUNT, 450}, {DISP_E_PARAMNOTOPTIONAL, 449},
      {DISP_E_NONAMEDARGS, 446}, {DISP_E_PARAMNOTFOUND, 448}, {DISP_E_BADINDEX, 9},
      {DISP_E_BADVARTYPE, 458},  {REGDB_E_CLASSNOTREG, 429},  {CO_E_CLASSSTRING, 429}};
  for (const auto& [failure, number] : expected)
    expectError(com::errorOf(failure), number, u"mrktxtmsg", standardText(number));
}

TEST_F(Errors, RunTimeErrorsFromOutside_AreTheirLowWord) {
  expectError(com::errorOf(static_cast<HRESULT>(0x800A01B6)), 438, u"mrktxtmsg", standardText(438));
  expectError(com::errorOf(static_cast<HRESULT>(0x800AFFFF)), 65535, u"mrktxtmsg",
              u"Application-defined or object-defined error");
  EXPECT_EQ(com::errorOf(static_cast<HRESULT>(0x800A0000)).number, static_cast<std::int32_t>(0x800A0000))
      << "never 0, which would be no error";
}

TEST_F(Errors, OtherFailures_AreTheSignedNumber_WithTheSystemsTextOnOneLine) {
  for (const HRESULT failure : {E_FAIL, E_ACCESSDENIED, E_NOTIMPL, E_OUTOFMEMORY, HRESULT_FROM_WIN32(2),
                                HRESULT_FROM_WIN32(RPC_S_SERVER_UNAVAILABLE)}) {
    const RuntimeError error = com::errorOf(failure);
    EXPECT_EQ(error.number, failure);
    EXPECT_EQ(error.source, u"mrktxtmsg");
    EXPECT_FALSE(error.description.empty());
    EXPECT_NE(error.description, standardText(440)) << "the system has a text for it";
    EXPECT_EQ(error.description.find_first_of(u"\r\n\t"), String::npos);
    EXPECT_NE(error.description.back(), u' ');
  }
  EXPECT_EQ(com::errorOf(E_ACCESSDENIED).description, u"Access denied.");
  EXPECT_EQ(com::errorOf(HRESULT_FROM_WIN32(2)).description,
            com::errorOf(static_cast<HRESULT>(0x80070002)).description);
  expectError(com::errorOf(static_cast<HRESULT>(0x8BADF00D)), static_cast<std::int32_t>(0x8BADF00D), u"mrktxtmsg",
              standardText(440));
}

TEST_F(Errors, ExceptionWithARecord_SaysEverythingItself) {
  expectError(answered([](DISPID, WORD, DISPPARAMS&, VARIANT*, EXCEPINFO* info) {
                info->scode = static_cast<SCODE>(0x80040107);
                info->bstrSource = SysAllocString(L"Their Source");
                info->bstrDescription = SysAllocString(L"It went wrong.\r\nTwice.");
                info->bstrHelpFile = SysAllocString(L"help.hlp");
                return DISP_E_EXCEPTION;
              }),
              static_cast<std::int32_t>(0x80040107), u"Their Source", u"It went wrong.\r\nTwice.");
}

TEST_F(Errors, ExceptionWithARunTimeError_IsItsLowWord) {
  expectError(answered([](DISPID, WORD, DISPPARAMS&, VARIANT*, EXCEPINFO* info) {
                info->scode = static_cast<SCODE>(0x800A005B);
                return DISP_E_EXCEPTION;
              }),
              91, u"mrktxtmsg", standardText(91));
}

TEST_F(Errors, ExceptionWithAShortCode_IsThatNumber) {
  expectError(answered([](DISPID, WORD, DISPPARAMS&, VARIANT*, EXCEPINFO* info) {
                info->wCode = 1004;
                info->bstrDescription = SysAllocString(L"Short");
                return DISP_E_EXCEPTION;
              }),
              1004, u"mrktxtmsg", u"Short");
}

TEST_F(Errors, ExceptionThatSaysNothing_IsStillAnError) {
  EXPECT_EQ(answered([](DISPID, WORD, DISPPARAMS&, VARIANT*, EXCEPINFO*) { return DISP_E_EXCEPTION; }).number,
            DISP_E_EXCEPTION);
}

HRESULT STDMETHODCALLTYPE fillIn(EXCEPINFO* info) {
  info->scode = static_cast<SCODE>(0x800A0046);
  info->bstrDescription = SysAllocString(L"Filled in late");
  return S_OK;
}

TEST_F(Errors, RecordThatIsFilledInLate_IsFilledIn) {
  expectError(answered([](DISPID, WORD, DISPPARAMS&, VARIANT*, EXCEPINFO* info) {
                info->pfnDeferredFillIn = fillIn;
                return DISP_E_EXCEPTION;
              }),
              70, u"mrktxtmsg", u"Filled in late");
}

TEST_F(Errors, PlainFailureOfAMember_IsTheError) {
  EXPECT_EQ(answered([](DISPID, WORD, DISPPARAMS&, VARIANT*, EXCEPINFO*) { return DISP_E_BADINDEX; }).number, 9);
}

TEST_F(Errors, OurError_GoesOutAndComesBackAsItWas) {
  const LateBound outside(throughCom(make<Gadget>()->object()));
  const std::int32_t numbers[] = {1, 5, 70, 65535, -1, static_cast<std::int32_t>(0x80040107), 70000};
  for (const std::int32_t number : numbers) {
    const auto error =
        testing_support::errorOf([&] { outside.call(u"Fail", number, u"Our Source", u"What, \u00e5?"); });
    ASSERT_TRUE(error);
    expectError(*error, number, u"Our Source", u"What, \u00e5?");
  }
}

TEST_F(Errors, OurError_IsAnExceptionWithARecord) {
  com::ExceptionInfo info;
  EXPECT_EQ(com::resultOf(RuntimeError(91, u"Source", u"Text"), info.get()), DISP_E_EXCEPTION);
  EXPECT_EQ(info.get()->scode, static_cast<SCODE>(0x800A005B));
  EXPECT_EQ(info.get()->wCode, 0);
  EXPECT_EQ(com::textOf(info.get()->bstrSource), u"Source");
  EXPECT_EQ(com::textOf(info.get()->bstrDescription), u"Text");
  EXPECT_EQ(info.get()->pfnDeferredFillIn, nullptr);
}

TEST_F(Errors, OurError_WithoutARecord_IsAlwaysAFailure) {
  const auto resultOf = [](std::int32_t number) { return com::resultOf(RuntimeError(number, u"", u""), nullptr); };
  EXPECT_EQ(resultOf(91), static_cast<HRESULT>(0x800A005B));
  EXPECT_EQ(resultOf(E_ACCESSDENIED), E_ACCESSDENIED);
  EXPECT_EQ(resultOf(0), E_FAIL);
  EXPECT_EQ(resultOf(70000), E_FAIL);
}

TEST_F(Errors, ForeignExceptions_StopAtTheBorder) {
  const auto face = com::exported(make<Gadget>()->object());
  DISPPARAMS none{};
  EXPECT_EQ(face->Invoke(0x29, IID_NULL, 0, DISPATCH_METHOD, &none, nullptr, nullptr, nullptr), E_UNEXPECTED);
}

TEST_F(Errors, Guarded_TurnsEveryExceptionIntoAResult) {
  EXPECT_EQ(com::guarded([]() -> HRESULT { return S_FALSE; }), S_FALSE);
  EXPECT_EQ(com::guarded([]() -> HRESULT { throw std::bad_alloc(); }), E_OUTOFMEMORY);
  EXPECT_EQ(com::guarded([]() -> HRESULT { throw "text"; }), E_UNEXPECTED);
  EXPECT_EQ(com::guarded([]() -> HRESULT { platform::raiseError(13); }), static_cast<HRESULT>(0x800A000D));
  EXPECT_EQ(com::guardedOr(LRESULT{-1}, []() -> LRESULT { throw 1; }), -1);
  EXPECT_EQ(com::guardedOr(LRESULT{-1}, []() -> LRESULT { return 3; }), 3);
}

}  // namespace
}  // namespace bridge_test

// Callers from outside that keep no rule of automation.
#include <cstring>

#include "bridge_fixture.h"
#include "gadget.h"

namespace bridge_test {
namespace {

using platform::make;

class Hostile : public BridgeTest {
 protected:
  HRESULT invoke(DISPID id, WORD flags, DISPPARAMS* params, VARIANT* result = nullptr, EXCEPINFO* info = nullptr) {
    return face_->Invoke(id, IID_NULL, 0, flags, params, result, info, nullptr);
  }

  platform::Ref<Gadget> gadget_ = make<Gadget>();
  com::Ptr<IDispatch> face_ = com::exported(gadget_->object());
};

constexpr DISPID nameId = 0;
constexpr DISPID addId = 0x20;
constexpr DISPID echoId = 0x24;
constexpr DISPID levelId = 0x31;

VARIANT number(LONG n) {
  VARIANT v;
  VariantInit(&v);
  v.vt = VT_I4;
  v.lVal = n;
  return v;
}

TEST_F(Hostile, NullPointers_AreRefused) {
  DISPPARAMS none{};
  EXPECT_EQ(invoke(nameId, DISPATCH_PROPERTYGET, nullptr), E_INVALIDARG);
  EXPECT_EQ(invoke(nameId, DISPATCH_PROPERTYGET, &none), S_OK) << "nobody needs the result";
  DISPPARAMS noArguments{nullptr, nullptr, 2, 0};
  EXPECT_EQ(invoke(addId, DISPATCH_METHOD, &noArguments), E_INVALIDARG);
  VARIANT one = number(1);
  DISPPARAMS noNames{&one, nullptr, 1, 1};
  EXPECT_EQ(invoke(levelId, DISPATCH_PROPERTYPUT, &noNames), E_INVALIDARG);
  EXPECT_EQ(face_->QueryInterface(IID_IUnknown, nullptr), E_POINTER);
  EXPECT_EQ(face_->GetTypeInfoCount(nullptr), E_POINTER);
  EXPECT_EQ(face_->GetTypeInfo(0, 0, nullptr), E_POINTER);
}

TEST_F(Hostile, NullNames_AreRefused) {
  DISPID id = 5;
  wchar_t name[] = L"Add";
  LPOLESTR names[2] = {name, name};
  EXPECT_EQ(face_->GetIDsOfNames(IID_NULL, nullptr, 1, 0, &id), E_POINTER);
  EXPECT_EQ(face_->GetIDsOfNames(IID_NULL, names, 1, 0, nullptr), E_POINTER);
  EXPECT_EQ(face_->GetIDsOfNames(IID_NULL, names, 0, 0, &id), E_INVALIDARG);
  LPOLESTR noName = nullptr;
  EXPECT_EQ(face_->GetIDsOfNames(IID_NULL, &noName, 1, 0, &id), E_INVALIDARG);
  wchar_t empty[] = L"";
  LPOLESTR emptyName = empty;
  EXPECT_EQ(face_->GetIDsOfNames(IID_NULL, &emptyName, 1, 0, &id), DISP_E_UNKNOWNNAME);
  EXPECT_EQ(id, DISPID_UNKNOWN);
  DISPID two[2] = {5, 5};
  EXPECT_EQ(face_->GetIDsOfNames(IID_NULL, names, 2, 0, two), DISP_E_UNKNOWNNAME) << "arguments have no names";
  EXPECT_EQ(two[0], addId);
  EXPECT_EQ(two[1], DISPID_UNKNOWN);
}

TEST_F(Hostile, NamedArguments_AreRefused_ExceptTheValueOfAPut) {
  VARIANT two[2] = {number(1), number(2)};
  DISPID names[2] = {DISPID_PROPERTYPUT, 0};
  DISPPARAMS params{two, names, 2, 1};
  EXPECT_EQ(invoke(addId, DISPATCH_METHOD, &params), DISP_E_NONAMEDARGS);
  params.cNamedArgs = 2;
  EXPECT_EQ(invoke(levelId, DISPATCH_PROPERTYPUT, &params), DISP_E_NONAMEDARGS);
  params.cNamedArgs = 3;
  EXPECT_EQ(invoke(levelId, DISPATCH_PROPERTYPUT, &params), E_INVALIDARG);
  params.cArgs = 1;
  params.cNamedArgs = 1;
  EXPECT_EQ(invoke(levelId, DISPATCH_PROPERTYPUT, &params), S_OK);
  EXPECT_EQ(gadget_->level(), 1);
  names[0] = 17;
  EXPECT_EQ(invoke(levelId, DISPATCH_PROPERTYPUT, &params), DISP_E_NONAMEDARGS);
  params.cNamedArgs = 0;
  two[0] = number(3);
  EXPECT_EQ(invoke(levelId, DISPATCH_PROPERTYPUT, &params), S_OK) << "who forgets the name is understood";
  EXPECT_EQ(gadget_->level(), 3);
}

TEST_F(Hostile, Flags_DecideWhatIsMeant) {
  VARIANT one = number(4);
  DISPID name = DISPID_PROPERTYPUT;
  DISPPARAMS put{&one, &name, 1, 1};
  DISPPARAMS none{};
  EXPECT_EQ(invoke(levelId, 0, &none), E_INVALIDARG);
  EXPECT_EQ(invoke(levelId, DISPATCH_PROPERTYPUT | DISPATCH_PROPERTYPUTREF, &put), S_OK) << "as scripts do for objects";
  EXPECT_EQ(gadget_->level(), 4);
  EXPECT_EQ(invoke(addId, DISPATCH_PROPERTYPUT, &put), DISP_E_MEMBERNOTFOUND);
  EXPECT_EQ(invoke(0x30, DISPATCH_PROPERTYGET, &none), DISP_E_MEMBERNOTFOUND) << "write only";
  EXPECT_EQ(invoke(0x7777, DISPATCH_METHOD, &none), DISP_E_MEMBERNOTFOUND);
  EXPECT_EQ(invoke(DISPID_NEWENUM, DISPATCH_PROPERTYPUT, &put), DISP_E_MEMBERNOTFOUND);
}

TEST_F(Hostile, MoreArgumentsThanAnyCallHas_AreRefusedUnread) {
  DISPPARAMS params{reinterpret_cast<VARIANT*>(std::uintptr_t{0x10}), nullptr, 61, 0};
  EXPECT_EQ(invoke(addId, DISPATCH_METHOD, &params), DISP_E_BADPARAMCOUNT);
  params.cArgs = 0xFFFFFFFF;
  EXPECT_EQ(invoke(addId, DISPATCH_METHOD, &params), DISP_E_BADPARAMCOUNT);
  std::vector<VARIANT> hundred(100, number(1));
  params = {hundred.data(), nullptr, 100, 0};
  EXPECT_EQ(invoke(addId, DISPATCH_METHOD, &params), DISP_E_BADPARAMCOUNT);
}

TEST_F(Hostile, ArgumentsOfUnknownTypes_AreError458) {
  for (const VARTYPE type : {VARTYPE{VT_RECORD}, VARTYPE{VT_ARRAY | VT_VARIANT}, VARTYPE{VT_BYREF | VT_RECORD},
                             VARTYPE{VT_BYREF | VT_ARRAY | VT_I4}, VARTYPE{0x7654}}) {
    VARIANT v;
    VariantInit(&v);
    v.vt = type;
    v.byref = reinterpret_cast<void*>(std::uintptr_t{0x10});
    DISPPARAMS params{&v, nullptr, 1, 0};
    com::ExceptionInfo info;
    com::OwnedVariant result;
    EXPECT_EQ(invoke(echoId, DISPATCH_METHOD, &params, &result.get(), info.get()), DISP_E_EXCEPTION);
    EXPECT_EQ(info.get()->scode, static_cast<SCODE>(0x800A01CA)) << type;
    EXPECT_EQ(result.get().vt, VT_EMPTY);
  }
}

TEST_F(Hostile, ResultThatWasNeverInitialised_IsNotLookedAt) {
  VARIANT result;
  std::memset(&result, 0xCC, sizeof result);
  DISPPARAMS none{};
  EXPECT_EQ(invoke(0x7777, DISPATCH_METHOD, &none, &result), DISP_E_MEMBERNOTFOUND);
  EXPECT_EQ(result.vt, VT_EMPTY);
  std::memset(&result, 0xCC, sizeof result);
  EXPECT_EQ(invoke(nameId, DISPATCH_PROPERTYGET, &none, &result), S_OK);
  EXPECT_EQ(com::textOf(result.bstrVal), u"gadget");
  VariantClear(&result);
}

TEST_F(Hostile, CurrencyByReference_ThatNobodyWrites_KeepsItsLastDigit) {
  CY amount{};
  amount.int64 = 9007199254740993;  // one more than a double can tell apart
  VARIANT v;
  VariantInit(&v);
  v.vt = VT_BYREF | VT_CY;
  v.pcyVal = &amount;
  DISPPARAMS params{&v, nullptr, 1, 0};
  EXPECT_EQ(invoke(echoId, DISPATCH_METHOD, &params), S_OK);
  EXPECT_EQ(amount.int64, 9007199254740993);
}

TEST_F(Hostile, Face_HasNoTypesAndNoOtherInterfaces) {
  UINT count = 5;
  EXPECT_EQ(face_->GetTypeInfoCount(&count), S_OK);
  EXPECT_EQ(count, 0u);
  ITypeInfo* types = reinterpret_cast<ITypeInfo*>(std::uintptr_t{0x10});
  EXPECT_EQ(face_->GetTypeInfo(0, 0, &types), DISP_E_BADINDEX);
  EXPECT_EQ(types, nullptr);
  void* other = &types;
  EXPECT_EQ(face_->QueryInterface(IID_IMalloc, &other), E_NOINTERFACE);
  EXPECT_EQ(other, nullptr);
}

}  // namespace
}  // namespace bridge_test

#include "com/arguments.h"

namespace com {
namespace {

using platform::Variant;

// Objects of ours arrive as themselves; a test that wants real calls wants them on the caller's side only.
class RecogniseOwnHere {
 public:
  RecogniseOwnHere() noexcept : before_(std::exchange(recogniseOwn, true)) {}
  RecogniseOwnHere(const RecogniseOwnHere&) = delete;
  RecogniseOwnHere& operator=(const RecogniseOwnHere&) = delete;
  ~RecogniseOwnHere() { recogniseOwn = before_; }

 private:
  bool before_;
};

}  // namespace

OutgoingArguments::OutgoingArguments(platform::Args args, platform::Access access) : OutgoingArguments(args) {
  if (args.size() > mostArguments) throw errorOf(DISP_E_BADPARAMCOUNT);
  for (std::size_t i = 0; i < args.size(); ++i) fill(i);
  params_.rgvarg = list_;
  params_.cArgs = static_cast<UINT>(args.size());
  if (isPut(access)) {
    params_.rgdispidNamedArgs = &putName_;
    params_.cNamedArgs = 1;
  }
}

OutgoingArguments::~OutgoingArguments() {
  for (std::size_t i = 0; i < ready_; ++i) {
    VariantClear(&listed(i));
    VariantClear(&store_[i]);
  }
}

void OutgoingArguments::fill(std::size_t i) {
  const Variant& argument = args_[i];
  VARIANT& slot = listed(i);
  VARIANT& store = store_[i];
  VariantInit(&slot);
  VariantInit(&store);
  ++ready_;
  const Variant* const target = argument.target();
  if (!target || target->isMissing()) return toVariant(argument, slot);
  toVariant(*target, store);
  const bool hasNoType = store.vt == VT_EMPTY || store.vt == VT_NULL;
  slot.vt = static_cast<VARTYPE>(VT_BYREF | (hasNoType ? VARTYPE{VT_VARIANT} : store.vt));
  slot.byref = hasNoType ? static_cast<void*>(&store) : &store.byref;
}

void OutgoingArguments::writeBack() {
  for (std::size_t i = 0; i < ready_; ++i) {
    Variant* const target = args_[i].target();
    if (target && (listed(i).vt & VT_BYREF)) *target = fromVariant(store_[i]);
  }
}

void OutgoingArguments::tryWriteBack() noexcept {
  try {
    writeBack();
  } catch (...) {  // the call's own failure is told
  }
}

HRESULT checkParams(const DISPPARAMS* params, bool put) noexcept {
  if (!params) return E_INVALIDARG;
  if (params->cArgs > 0 && !params->rgvarg) return E_INVALIDARG;
  if (params->cArgs > mostArguments) return DISP_E_BADPARAMCOUNT;
  if (params->cNamedArgs == 0) return S_OK;
  if (!params->rgdispidNamedArgs || params->cNamedArgs > params->cArgs) return E_INVALIDARG;
  const bool onlyValue = put && params->cNamedArgs == 1 && params->rgdispidNamedArgs[0] == DISPID_PROPERTYPUT;
  return onlyValue ? S_OK : DISP_E_NONAMEDARGS;
}

IncomingArguments::IncomingArguments(const DISPPARAMS& params)
    : params_(params), count_(params.cArgs), slots_(count_ * 2) {
  const RecogniseOwnHere recognise;
  for (std::size_t i = 0; i < count_; ++i) {
    const VARIANT& v = listed(i);
    if (v.vt & VT_BYREF) {
      target(i) = fromVariant(v);
      slots_[i] = Variant::byRef(target(i));
    } else {
      slots_[i] = fromVariant(v);
    }
  }
}

void IncomingArguments::writeBack() {
  const RecogniseOwnHere recognise;
  for (std::size_t i = 0; i < count_; ++i) {
    VARIANT& v = listed(i);
    if ((v.vt & VT_BYREF) && !(fromVariant(v) == target(i))) assignByRef(v, target(i));
  }
}

void IncomingArguments::tryWriteBack() noexcept {
  try {
    writeBack();
  } catch (...) {  // the call's own failure is told
  }
}

}  // namespace com

#include "com/foreign_object.h"

#include "com/arguments.h"
#include "com/dispid_cache.h"
#include "com/enumerators.h"
#include "com/event_sink.h"

namespace com {
namespace {

using platform::Access;
using platform::Args;
using platform::Automation;
using platform::Ref;
using platform::StringView;
using platform::Variant;

class ForeignObject final : public Automation {
 public:
  explicit ForeignObject(IDispatch* foreign) : dispatch_(foreign) {}

  Variant invoke(StringView member, Access access, Args args) override {
    OwnedVariant result;
    invoke(idOf(member), access, args, result);
    return fromVariant(result.get());
  }

  Ref<platform::Counted> subscribe(const platform::Guid& events, const Ref<platform::EventSink>& sink) override {
    return advise(*dispatch_.get(), events, sink);
  }

  Ref<platform::Enumerator> enumerate() override {
    OwnedVariant result;
    invoke(DISPID_NEWENUM, Access::Get, {}, result);
    return importedEnumerator(result.get());
  }

  const void* identity() noexcept override {
    if (!canonical_) canonical_ = dispatch_.as<IUnknown>();
    return canonical_.get();
  }

  IDispatch* dispatch() const noexcept { return dispatch_.get(); }

 private:
  DISPID idOf(StringView member) {
    if (member.empty()) return DISPID_VALUE;
    if (const auto known = ids_.find(member)) return *known;
    std::array<OLECHAR, 64> name;
    if (member.size() >= name.size()) platform::raiseError(438);
    std::memcpy(name.data(), member.data(), member.size() * sizeof(char16_t));
    name[member.size()] = 0;
    LPOLESTR names = name.data();
    DISPID id = DISPID_UNKNOWN;
    check(dispatch_->GetIDsOfNames(IID_NULL, &names, 1, LOCALE_USER_DEFAULT, &id));
    ids_.remember(member, id);
    return id;
  }

  void invoke(DISPID id, Access access, Args args, OwnedVariant& result) {
    // A late-bound caller cannot tell a method from a property, so the object is offered both.
    const auto flags = isPut(access) ? static_cast<WORD>(access) : WORD{DISPATCH_METHOD | DISPATCH_PROPERTYGET};
    OutgoingArguments arguments(args, access);
    ExceptionInfo info;
    UINT bad = 0;
    const HRESULT hr = dispatch_->Invoke(id, IID_NULL, LOCALE_USER_DEFAULT, flags, arguments.params(),
                                         isPut(access) ? nullptr : &result.get(), info.get(), &bad);
    if (FAILED(hr)) {
      arguments.tryWriteBack();
      throw errorOf(hr, info.get());
    }
    arguments.writeBack();
  }

  Ptr<IDispatch> dispatch_;
  Ptr<IUnknown> canonical_;  // asked for at the first comparison
  DispidCache ids_;
};

}  // namespace

Ref<Automation> importForeign(IDispatch* foreign) { return platform::make<ForeignObject>(foreign); }

IDispatch* foreignDispatch(Automation& object) {
  const auto* const foreign = dynamic_cast<ForeignObject*>(&object);
  return foreign ? foreign->dispatch() : nullptr;
}

}  // namespace com

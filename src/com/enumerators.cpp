#include "com/enumerators.h"

#include "com/com_object.h"

namespace com {
namespace {

using platform::Automation;
using platform::Enumerator;
using platform::Ref;
using platform::Variant;

class ExportedEnumerator final : public ComObject<IEnumVARIANT> {
 public:
  explicit ExportedEnumerator(Automation& collection) : collection_(&collection), elements_(collection.enumerate()) {}

  // On a failure the elements of this round are lost, and none is handed over.
  STDMETHODIMP Next(ULONG count, VARIANT* to, ULONG* fetched) override {
    if (fetched) *fetched = 0;
    if ((!to && count > 0) || (!fetched && count != 1)) return E_INVALIDARG;
    const Ptr<ExportedEnumerator> keep(this);
    ULONG done = 0;
    const HRESULT hr = guarded([&] {
      for (Variant element; done < count && elements_->next(element); ++done) toVariant(element, to[done]);
      return done == count ? S_OK : S_FALSE;
    });
    if (FAILED(hr))
      while (done > 0) VariantClear(&to[--done]);
    if (fetched) *fetched = done;
    return hr;
  }

  STDMETHODIMP Skip(ULONG count) override {
    const Ptr<ExportedEnumerator> keep(this);
    return guarded([&] {
      for (Variant element; count > 0 && elements_->next(element);) --count;
      return count == 0 ? S_OK : S_FALSE;
    });
  }

  STDMETHODIMP Reset() override {
    return guarded([&] {
      elements_ = collection_->enumerate();
      return S_OK;
    });
  }

  // An Enumerator cannot tell where it stands.
  STDMETHODIMP Clone(IEnumVARIANT** result) override {
    if (!result) return E_POINTER;
    *result = nullptr;
    return E_NOTIMPL;
  }

 private:
  LiveExport live_;
  Ref<Automation> collection_;
  Ref<Enumerator> elements_;
};

class ForeignEnumerator final : public Enumerator {
 public:
  explicit ForeignEnumerator(Ptr<IEnumVARIANT> elements) noexcept : elements_(std::move(elements)) {}

  bool next(Variant& element) override {
    OwnedVariant fetchedElement;
    ULONG fetched = 0;
    const HRESULT hr = elements_->Next(1, &fetchedElement.get(), &fetched);
    check(hr);
    if (hr != S_OK || fetched != 1) return false;
    element = fromVariant(fetchedElement.get());
    return true;
  }

 private:
  Ptr<IEnumVARIANT> elements_;
};

}  // namespace

Ptr<IEnumVARIANT> exportedEnumerator(Automation& collection) { return makeCom<ExportedEnumerator>(collection); }

Ref<Enumerator> importedEnumerator(const VARIANT& result) {
  const bool isReference = result.vt == VT_UNKNOWN || result.vt == VT_DISPATCH;
  auto elements = Ptr<IUnknown>(isReference ? result.punkVal : nullptr).as<IEnumVARIANT>();
  if (!elements) platform::raiseError(438);
  return platform::make<ForeignEnumerator>(std::move(elements));
}

}  // namespace com

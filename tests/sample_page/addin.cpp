#include "addin/platform/outlook.h"
#include "addin/platform/with_events.h"
#include "com/com_object.h"
#include "com/extensibility2.h"
#include "sample_page/sample_page.h"

namespace sample_page {
namespace {

namespace outlook = platform::outlook;
using platform::Object;

// Offers the pages by their ProgIDs when the Options dialog asks.
class Offer final : public platform::Counted {
 public:
  platform::WithEvents<outlook::Application> application{
      this, platform::on<outlook::ApplicationEvents::OptionsPagesAdd, &Offer::pagesAdded>};

  void pagesAdded(Object given) {
    const platform::LateBound pages(given);
    pages.call<void>(u"Add", progIdOfNothing, u"Nothing");
    pages.call<void>(u"Add", progIdPage, title);
  }
};

class AddIn final : public com::ComObject<com::IDTExtensibility2> {
 public:
  STDMETHODIMP GetTypeInfoCount(UINT* count) override {
    *count = 0;
    return S_OK;
  }
  STDMETHODIMP GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
  STDMETHODIMP GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) override { return DISP_E_UNKNOWNNAME; }
  STDMETHODIMP Invoke(DISPID, REFIID, LCID, WORD, DISPPARAMS*, VARIANT*, EXCEPINFO*, UINT*) override {
    return DISP_E_MEMBERNOTFOUND;
  }

  STDMETHODIMP OnConnection(IDispatch* application, LONG, IDispatch*, SAFEARRAY**) override {
    return com::guarded([&] {
      offer_ = platform::make<Offer>();
      offer_->application = platform::as<outlook::Application>(com::import(application));
      return S_OK;
    });
  }
  STDMETHODIMP OnDisconnection(LONG, SAFEARRAY**) override {
    return com::guarded([&] {
      offer_->application = nullptr;
      offer_ = nullptr;
      return S_OK;
    });
  }
  STDMETHODIMP OnAddInsUpdate(SAFEARRAY**) override { return S_OK; }
  STDMETHODIMP OnStartupComplete(SAFEARRAY**) override { return S_OK; }
  STDMETHODIMP OnBeginShutdown(SAFEARRAY**) override { return S_OK; }

 protected:
  void* find(REFIID iid) override {
    return iid == IID_IDispatch ? static_cast<com::IDTExtensibility2*>(this) : ComObject::find(iid);
  }

 private:
  com::LiveExport live_;
  platform::Ref<Offer> offer_;
};

}  // namespace

com::Ptr<IUnknown> createAddIn() { return com::makeCom<AddIn>(); }

}  // namespace sample_page

#include "addin/platform/outlook.h"
#include "addin/platform/with_events.h"
#include "com/extensibility2.h"
#include "sample_page/sample_page.h"
#include "sample_page/vtable_object.h"

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

class AddIn final : public VtableObject<com::IDTExtensibility2> {
 public:
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

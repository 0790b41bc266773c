#include "mailclient/win/property_page_host.h"

#include "com/bridge.h"
#include "com/com_object.h"
#include "com/create_object.h"
#include "com/property_page.h"
#include "mailclient/application.h"

namespace mailclient::win {
namespace {

// The frame of an in-place active control: a window without menus and tools of its own.
class Frame final : public com::ComObject<IOleInPlaceFrame> {
 public:
  explicit Frame(HWND window) : window_(window) {}

  STDMETHODIMP GetWindow(HWND* window) override {
    *window = window_;
    return S_OK;
  }
  STDMETHODIMP ContextSensitiveHelp(BOOL) override { return E_NOTIMPL; }
  STDMETHODIMP GetBorder(LPRECT) override { return INPLACE_E_NOTOOLSPACE; }
  STDMETHODIMP RequestBorderSpace(LPCBORDERWIDTHS) override { return INPLACE_E_NOTOOLSPACE; }
  STDMETHODIMP SetBorderSpace(LPCBORDERWIDTHS) override { return S_OK; }
  STDMETHODIMP SetActiveObject(IOleInPlaceActiveObject*, LPCOLESTR) override { return S_OK; }
  STDMETHODIMP InsertMenus(HMENU, LPOLEMENUGROUPWIDTHS) override { return E_NOTIMPL; }
  STDMETHODIMP SetMenu(HMENU, HOLEMENU, HWND) override { return E_NOTIMPL; }
  STDMETHODIMP RemoveMenus(HMENU) override { return E_NOTIMPL; }
  STDMETHODIMP SetStatusText(LPCOLESTR) override { return E_NOTIMPL; }
  STDMETHODIMP EnableModeless(BOOL) override { return S_OK; }
  STDMETHODIMP TranslateAccelerator(LPMSG, WORD) override { return S_FALSE; }

 protected:
  void* find(REFIID iid) override {
    const bool known =
        iid == IID_IUnknown || iid == IID_IOleWindow || iid == IID_IOleInPlaceUIWindow || iid == IID_IOleInPlaceFrame;
    return known ? static_cast<IOleInPlaceFrame*>(this) : nullptr;
  }

 private:
  HWND window_;
};

// Where the control lives: its client site, its place in the window, and the mail client's site for pages.
class Site final : public com::ComObject<IOleClientSite, IOleInPlaceSite, com::PropertyPageSite> {
 public:
  Site(HWND window, const RECT& area, MailClient& client, std::function<void()> statusChangedThen)
      : statusChanged(std::move(statusChangedThen)),
        window_(window),
        area_(area),
        client_(client),
        frame_(com::makeCom<Frame>(window)) {}

  std::function<void()> statusChanged;

  // IOleClientSite
  STDMETHODIMP SaveObject() override { return S_OK; }
  STDMETHODIMP GetMoniker(DWORD, DWORD, IMoniker** moniker) override {
    *moniker = nullptr;
    return E_NOTIMPL;
  }
  STDMETHODIMP GetContainer(IOleContainer** container) override {
    *container = nullptr;
    return E_NOINTERFACE;
  }
  STDMETHODIMP ShowObject() override { return S_OK; }
  STDMETHODIMP OnShowWindow(BOOL) override { return S_OK; }
  STDMETHODIMP RequestNewObjectLayout() override { return E_NOTIMPL; }

  // IOleInPlaceSite
  STDMETHODIMP GetWindow(HWND* window) override {
    *window = window_;
    return S_OK;
  }
  STDMETHODIMP ContextSensitiveHelp(BOOL) override { return E_NOTIMPL; }
  STDMETHODIMP CanInPlaceActivate() override { return S_OK; }
  STDMETHODIMP OnInPlaceActivate() override { return S_OK; }
  STDMETHODIMP OnUIActivate() override { return S_OK; }
  STDMETHODIMP GetWindowContext(IOleInPlaceFrame** frame, IOleInPlaceUIWindow** document, LPRECT position, LPRECT clip,
                                LPOLEINPLACEFRAMEINFO info) override {
    *document = nullptr;
    *position = *clip = area_;
    info->fMDIApp = FALSE;
    info->hwndFrame = window_;
    info->haccel = nullptr;
    info->cAccelEntries = 0;
    return frame_->QueryInterface(IID_IOleInPlaceFrame, reinterpret_cast<void**>(frame));
  }
  STDMETHODIMP Scroll(SIZE) override { return E_NOTIMPL; }
  STDMETHODIMP OnUIDeactivate(BOOL) override { return S_OK; }
  STDMETHODIMP OnInPlaceDeactivate() override { return S_OK; }
  STDMETHODIMP DiscardUndoState() override { return E_NOTIMPL; }
  STDMETHODIMP DeactivateAndUndo() override { return E_NOTIMPL; }
  STDMETHODIMP OnPosRectChange(LPCRECT) override { return S_OK; }

  // IDispatch and PropertyPageSite
  STDMETHODIMP GetTypeInfoCount(UINT* count) override {
    *count = 0;
    return S_OK;
  }
  STDMETHODIMP GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
  STDMETHODIMP GetIDsOfNames(REFIID, LPOLESTR* names, UINT count, LCID, DISPID* ids) override {
    if (count != 1 || !sameName(view(names[0]), u"OnStatusChange")) return DISP_E_UNKNOWNNAME;
    ids[0] = com::onStatusChangeId;
    return S_OK;
  }
  STDMETHODIMP Invoke(DISPID id, REFIID, LCID, WORD, DISPPARAMS*, VARIANT*, EXCEPINFO*, UINT*) override {
    return id == com::onStatusChangeId ? OnStatusChange() : DISP_E_MEMBERNOTFOUND;
  }
  STDMETHODIMP get_Application(IDispatch** application) override {
    return com::guarded([&]() -> HRESULT {
      *application = com::exported(client_.application()->object()).detach();
      return S_OK;
    });
  }
  STDMETHODIMP get_Class(LONG* number) override {
    *number = 70;  // olPropertyPageSite
    return S_OK;
  }
  STDMETHODIMP get_Session(IDispatch** session) override {
    return com::guarded([&]() -> HRESULT {
      *session = com::exported(client_.nameSpace()->object()).detach();
      return S_OK;
    });
  }
  STDMETHODIMP get_Parent(IDispatch** parent) override { return get_Application(parent); }
  STDMETHODIMP OnStatusChange() override {
    return com::guarded([&]() -> HRESULT {
      if (statusChanged) statusChanged();
      return S_OK;
    });
  }

 protected:
  void* find(REFIID iid) override {
    if (iid == IID_IOleWindow) return static_cast<IOleInPlaceSite*>(this);
    if (iid == IID_IDispatch) return static_cast<com::PropertyPageSite*>(this);
    return ComObject::find(iid);
  }

 private:
  HWND window_;
  RECT area_;
  MailClient& client_;
  com::Ptr<Frame> frame_;
};

class ControlHost final : public PropertyPageHost {
 public:
  ControlHost(com::Ptr<IOleObject> control, com::Ptr<com::PropertyPage> page, MailClient& client)
      : control_(std::move(control)), page_(std::move(page)), client_(client) {}
  ~ControlHost() override { close(); }

  String helpFile() override {
    BSTR file = nullptr;
    LONG context = 0;
    if (FAILED(page_->GetPageInfo(&file, &context))) return {};
    String text = com::textOf(file);
    SysFreeString(file);
    return text;
  }

  void show(HWND parent, const RECT& area, std::function<void()> statusChanged) override {
    site_ = com::makeCom<Site>(parent, area, client_, std::move(statusChanged));
    com::check(control_->SetClientSite(site_.get()));
    if (const auto start = control_.as<IPersistStreamInit>()) start->InitNew();
    com::check(control_->DoVerb(OLEIVERB_INPLACEACTIVATE, nullptr, site_.get(), 0, parent, &area));
    if (const auto inPlace = control_.as<IOleInPlaceObject>()) inPlace->SetObjectRects(&area, &area);
  }

  // A page that cannot say whether it was changed is asked to store all the same.
  bool isDirty() override {
    VARIANT_BOOL dirty = VARIANT_TRUE;
    return FAILED(page_->get_Dirty(&dirty)) || dirty != VARIANT_FALSE;
  }

  void apply() override {
    if (site_ && isDirty()) com::check(page_->Apply());
  }

  void close() override {
    if (!site_) return;
    const auto site = std::exchange(site_, nullptr);
    if (const auto inPlace = control_.as<IOleInPlaceObject>()) inPlace->InPlaceDeactivate();
    control_->Close(OLECLOSE_NOSAVE);
    control_->SetClientSite(nullptr);
    site->statusChanged = nullptr;  // whoever still holds the site calls into nothing
  }

 private:
  com::Ptr<IOleObject> control_;
  com::Ptr<com::PropertyPage> page_;
  MailClient& client_;
  com::Ptr<Site> site_;  // while it is shown
};

com::Ptr<IDispatch> pageObject(const Variant& page) {
  if (const Object* const object = page.as<Object>()) return com::exported(*object);
  com::Ptr<IDispatch> made;
  CLSID clsid{};
  const String* const progId = page.as<String>();
  if (progId && SUCCEEDED(CLSIDFromProgID(wide(*progId), &clsid))) com::createObject(clsid, made);
  return made;
}

}  // namespace

std::unique_ptr<PropertyPageHost> PropertyPageHost::create(const Variant& page, MailClient& client) {
  try {
    const com::Ptr<IDispatch> object = pageObject(page);
    auto control = object.as<IOleObject>();
    auto propertyPage = object.as<com::PropertyPage>();
    if (!control || !propertyPage) return nullptr;
    return std::make_unique<ControlHost>(std::move(control), std::move(propertyPage), client);
  } catch (const RuntimeError&) {
    return nullptr;
  }
}

}  // namespace mailclient::win

#include "com/property_page.h"
#include "sample_page/sample_page.h"
#include "sample_page/vtable_object.h"

namespace sample_page {
namespace {

using platform::String;

String digitsOf(long number) {
  const std::string text = std::to_string(number);
  return {text.begin(), text.end()};
}

// One edit control; what is typed there makes the page dirty. Of the many interfaces of a control it has those through
// which a host makes one visible, and says no to everything that it does not need.
class Page final : public VtableObject<com::PropertyPage, IOleObject, IOleInPlaceObject, IPersistStreamInit> {
 public:
  Page() { log(u"made"); }

  // PropertyPage
  STDMETHODIMP GetPageInfo(BSTR* helpFile, LONG* helpContext) override {
    *helpFile = com::newBstr(u"no such sample_page.chm");
    *helpContext = 7;
    return S_OK;
  }
  STDMETHODIMP get_Dirty(VARIANT_BOOL* dirty) override {
    *dirty = dirty_ ? VARIANT_TRUE : VARIANT_FALSE;
    return S_OK;
  }
  STDMETHODIMP Apply() override {
    wchar_t text[100] = L"";
    GetWindowTextW(edit_, text, 100);
    const String said(reinterpret_cast<const char16_t*>(text));
    log(u"Apply " + said);
    if (lstrcmpW(text, refused) == 0) return E_INVALIDARG;
    dirty_ = false;
    return S_OK;
  }

  // IOleObject
  STDMETHODIMP SetClientSite(IOleClientSite* site) override {
    log(site ? u"SetClientSite" : u"SetClientSite nothing");
    clientSite_ = com::Ptr<IOleClientSite>(site);
    pageSite_ = clientSite_.as<com::PropertyPageSite>();
    if (pageSite_) logApplication();
    return S_OK;
  }
  STDMETHODIMP GetClientSite(IOleClientSite** site) override {
    *site = com::Ptr<IOleClientSite>(clientSite_).detach();
    return S_OK;
  }
  STDMETHODIMP DoVerb(LONG verb, MSG*, IOleClientSite* active, LONG, HWND, const RECT*) override {
    log(u"DoVerb " + digitsOf(verb));
    return verb == OLEIVERB_INPLACEACTIVATE ? activate(active) : E_NOTIMPL;
  }
  STDMETHODIMP Close(DWORD option) override {
    log(u"Close " + digitsOf(static_cast<long>(option)));
    return S_OK;
  }
  STDMETHODIMP SetHostNames(LPCOLESTR, LPCOLESTR) override { return S_OK; }
  STDMETHODIMP SetMoniker(DWORD, IMoniker*) override { return E_NOTIMPL; }
  STDMETHODIMP GetMoniker(DWORD, DWORD, IMoniker**) override { return E_NOTIMPL; }
  STDMETHODIMP InitFromData(IDataObject*, BOOL, DWORD) override { return E_NOTIMPL; }
  STDMETHODIMP GetClipboardData(DWORD, IDataObject**) override { return E_NOTIMPL; }
  STDMETHODIMP EnumVerbs(IEnumOLEVERB**) override { return E_NOTIMPL; }
  STDMETHODIMP Update() override { return S_OK; }
  STDMETHODIMP IsUpToDate() override { return S_OK; }
  STDMETHODIMP GetUserClassID(CLSID* clsid) override { return GetClassID(clsid); }
  STDMETHODIMP GetUserType(DWORD, LPOLESTR*) override { return E_NOTIMPL; }
  STDMETHODIMP SetExtent(DWORD, SIZEL*) override { return S_OK; }
  STDMETHODIMP GetExtent(DWORD, SIZEL*) override { return E_NOTIMPL; }
  STDMETHODIMP Advise(IAdviseSink*, DWORD*) override { return E_NOTIMPL; }
  STDMETHODIMP Unadvise(DWORD) override { return E_NOTIMPL; }
  STDMETHODIMP EnumAdvise(IEnumSTATDATA**) override { return E_NOTIMPL; }
  STDMETHODIMP GetMiscStatus(DWORD, DWORD* status) override {
    *status = OLEMISC_SETCLIENTSITEFIRST;
    return S_OK;
  }
  STDMETHODIMP SetColorScheme(LOGPALETTE*) override { return E_NOTIMPL; }

  // IOleInPlaceObject
  STDMETHODIMP GetWindow(HWND* window) override {
    *window = window_;
    return window_ ? S_OK : E_FAIL;
  }
  STDMETHODIMP ContextSensitiveHelp(BOOL) override { return E_NOTIMPL; }
  STDMETHODIMP InPlaceDeactivate() override {
    log(u"InPlaceDeactivate");
    if (window_) DestroyWindow(window_);
    window_ = edit_ = nullptr;
    return S_OK;
  }
  STDMETHODIMP UIDeactivate() override { return S_OK; }
  STDMETHODIMP SetObjectRects(LPCRECT place, LPCRECT) override {
    return MoveWindow(window_, place->left, place->top, place->right - place->left, place->bottom - place->top, TRUE)
               ? S_OK
               : E_FAIL;
  }
  STDMETHODIMP ReactivateAndUndo() override { return E_NOTIMPL; }

  // IPersistStreamInit
  STDMETHODIMP GetClassID(CLSID* clsid) override {
    *clsid = com::iidOf(clsidPage);
    return S_OK;
  }
  STDMETHODIMP IsDirty() override { return S_FALSE; }
  STDMETHODIMP Load(IStream*) override { return E_NOTIMPL; }
  STDMETHODIMP Save(IStream*, BOOL) override { return E_NOTIMPL; }
  STDMETHODIMP GetSizeMax(ULARGE_INTEGER*) override { return E_NOTIMPL; }
  STDMETHODIMP InitNew() override {
    log(u"InitNew");
    return S_OK;
  }

 protected:
  ~Page() override {
    if (window_) DestroyWindow(window_);
    log(u"gone");
  }
  void* find(REFIID iid) override {
    if (iid == IID_IDispatch) return static_cast<com::PropertyPage*>(this);
    if (iid == IID_IOleWindow) return static_cast<IOleInPlaceObject*>(this);
    return ComObject::find(iid);
  }

 private:
  // What the site is for.
  void logApplication() {
    com::Ptr<IDispatch> application;
    LONG number = 0;
    pageSite_->get_Application(application.put());
    pageSite_->get_Class(&number);
    log(u"site " + digitsOf(number) + u" of " +
        platform::LateBound(com::import(application.get())).get<String>(u"Name"));
  }

  HRESULT activate(IOleClientSite* active) {
    const auto site = com::Ptr<IOleClientSite>(active).as<IOleInPlaceSite>();
    HWND parent = nullptr;
    if (!site || site->CanInPlaceActivate() != S_OK || FAILED(site->OnInPlaceActivate()) ||
        FAILED(site->GetWindow(&parent)))
      return E_FAIL;
    com::Ptr<IOleInPlaceFrame> frame;
    com::Ptr<IOleInPlaceUIWindow> document;
    RECT place{};
    RECT clip{};
    OLEINPLACEFRAMEINFO information{};
    information.cb = sizeof information;
    if (FAILED(site->GetWindowContext(frame.put(), document.put(), &place, &clip, &information))) return E_FAIL;
    return open(parent, place);
  }

  HRESULT open(HWND parent, const RECT& place) {
    const HINSTANCE program = GetModuleHandleW(nullptr);
    WNDCLASSW look{};
    look.lpfnWndProc = &Page::procedure;
    look.hInstance = program;
    look.lpszClassName = windowClass;
    look.hbrBackground = GetSysColorBrush(COLOR_BTNFACE);
    RegisterClassW(&look);  // the second time it is there already
    window_ = CreateWindowExW(WS_EX_CONTROLPARENT, windowClass, L"", WS_CHILD | WS_VISIBLE, place.left, place.top,
                              place.right - place.left, place.bottom - place.top, parent, nullptr, program, nullptr);
    if (!window_) return E_FAIL;
    SetWindowLongPtrW(window_, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
    edit_ = CreateWindowExW(WS_EX_CLIENTEDGE, L"EDIT", L"", WS_CHILD | WS_VISIBLE | WS_TABSTOP, 10, 10, 200, 24,
                            window_, nullptr, program, nullptr);
    return edit_ ? S_OK : E_FAIL;
  }

  static LRESULT CALLBACK procedure(HWND window, UINT message, WPARAM wide, LPARAM extra) {
    auto* const self = reinterpret_cast<Page*>(GetWindowLongPtrW(window, GWLP_USERDATA));
    if (self && message == WM_COMMAND && HIWORD(wide) == EN_CHANGE) {
      self->dirty_ = GetWindowTextLengthW(self->edit_) != 0;
      if (self->pageSite_) self->pageSite_->OnStatusChange();
      return 0;
    }
    return DefWindowProcW(window, message, wide, extra);
  }

  com::LiveExport live_;
  com::Ptr<IOleClientSite> clientSite_;
  com::Ptr<com::PropertyPageSite> pageSite_;
  HWND window_ = nullptr;
  HWND edit_ = nullptr;
  bool dirty_ = false;
};

}  // namespace

com::Ptr<IUnknown> createPage() {
  return com::Ptr<IUnknown>(static_cast<com::PropertyPage*>(com::makeCom<Page>().get()));
}

}  // namespace sample_page

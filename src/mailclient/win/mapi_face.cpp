#include "mailclient/win/mapi_face.h"

#include "com/com_object.h"
#include "mailclient/mapi_message.h"

// After our own windows header on purpose: it needs what <ole2.h> declares.
#include <mapidefs.h>

__CRT_UUID_DECL(IMessage, 0x00020307, 0, 0, 0xC0, 0, 0, 0, 0, 0, 0, 0x46)

namespace mailclient::win {
namespace {

constexpr IID iidMapiProp{0x00020303, 0, 0, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};

Date dateOf(const FILETIME& time) {
  // 100-nanosecond units since 1 January 1601, which is day -109205.
  const double units =
      static_cast<double>(time.dwHighDateTime) * 4294967296.0 + static_cast<double>(time.dwLowDateTime);
  return Date{units / 864e9 - 109205.0};
}

String ansiText(const char* text) {
  const int units = MultiByteToWideChar(CP_ACP, 0, text, -1, nullptr, 0);
  String result(static_cast<std::size_t>(units), u'\0');
  MultiByteToWideChar(CP_ACP, 0, text, -1, reinterpret_cast<wchar_t*>(result.data()), units);
  result.pop_back();
  return result;
}

void setProperty(MapiMessage& message, const SPropValue& value) {
  switch (PROP_TYPE(value.ulPropTag)) {
    case PT_STRING8:
      if (!value.Value.lpszA) raiseError(E_INVALIDARG, productName, u"A text is missing.");
      message.setString(value.ulPropTag, ansiText(value.Value.lpszA));
      break;
    case PT_UNICODE:
      if (!value.Value.lpszW) raiseError(E_INVALIDARG, productName, u"A text is missing.");
      message.setString(value.ulPropTag, StringView(reinterpret_cast<const char16_t*>(value.Value.lpszW)));
      break;
    case PT_SYSTIME:
      message.setTime(value.ulPropTag, dateOf(value.Value.ft));
      break;
    case PT_LONG:
      message.setLong(value.ulPropTag, value.Value.l);
      break;
    default:
      fail(failure::unknownTag, u"This property type is not supported.");
  }
}

// What nobody asks of this mail client says so: MAPI_E_NO_SUPPORT.
constexpr HRESULT notSupported = static_cast<HRESULT>(0x80040102);

class MessageFace final : public com::ComObject<IMessage> {
 public:
  explicit MessageFace(Ref<MapiMessage> message) : message_(std::move(message)) {}

  STDMETHODIMP SetProps(ULONG count, LPSPropValue values, LPSPropProblemArray* problems) override {
    return com::guarded([&]() -> HRESULT {
      if (problems) *problems = nullptr;
      if (!values) return E_INVALIDARG;
      for (ULONG i = 0; i < count; ++i) setProperty(*message_, values[i]);
      return S_OK;
    });
  }
  STDMETHODIMP SaveChanges(ULONG) override {
    return com::guarded([&]() -> HRESULT {
      message_->saveChanges();
      return S_OK;
    });
  }

  STDMETHODIMP GetLastError(HRESULT, ULONG, LPMAPIERROR* error) override {
    if (error) *error = nullptr;
    return S_OK;
  }
  STDMETHODIMP GetProps(LPSPropTagArray, ULONG, ULONG*, LPSPropValue*) override { return notSupported; }
  STDMETHODIMP GetPropList(ULONG, LPSPropTagArray*) override { return notSupported; }
  STDMETHODIMP OpenProperty(ULONG, LPCIID, ULONG, ULONG, LPUNKNOWN*) override { return notSupported; }
  STDMETHODIMP DeleteProps(LPSPropTagArray, LPSPropProblemArray*) override { return notSupported; }
  STDMETHODIMP CopyTo(ULONG, LPCIID, LPSPropTagArray, ULONG, LPMAPIPROGRESS, LPCIID, LPVOID, ULONG,
                      LPSPropProblemArray*) override {
    return notSupported;
  }
  STDMETHODIMP CopyProps(LPSPropTagArray, ULONG, LPMAPIPROGRESS, LPCIID, LPVOID, ULONG, LPSPropProblemArray*) override {
    return notSupported;
  }
  STDMETHODIMP GetNamesFromIDs(LPSPropTagArray*, LPGUID, ULONG, ULONG*, LPMAPINAMEID**) override {
    return notSupported;
  }
  STDMETHODIMP GetIDsFromNames(ULONG, LPMAPINAMEID*, ULONG, LPSPropTagArray*) override { return notSupported; }
  STDMETHODIMP GetAttachmentTable(ULONG, LPMAPITABLE*) override { return notSupported; }
  STDMETHODIMP OpenAttach(ULONG, LPCIID, ULONG, LPATTACH*) override { return notSupported; }
  STDMETHODIMP CreateAttach(LPCIID, ULONG, ULONG*, LPATTACH*) override { return notSupported; }
  STDMETHODIMP DeleteAttach(ULONG, ULONG, LPMAPIPROGRESS, ULONG) override { return notSupported; }
  STDMETHODIMP GetRecipientTable(ULONG, LPMAPITABLE*) override { return notSupported; }
  STDMETHODIMP ModifyRecipients(ULONG, LPADRLIST) override { return notSupported; }
  STDMETHODIMP SubmitMessage(ULONG) override { return notSupported; }
  STDMETHODIMP SetReadFlag(ULONG) override { return notSupported; }

 protected:
  void* find(REFIID iid) override {
    return iid == IID_IUnknown || iid == iidMapiProp || iid == __uuidof(IMessage) ? static_cast<IMessage*>(this)
                                                                                  : nullptr;
  }

 private:
  Ref<MapiMessage> message_;
  com::LiveExport live_;
};

}  // namespace

com::Ptr<IUnknown> mapiFace(platform::Counted& thing) {
  auto* const message = dynamic_cast<MapiMessage*>(&thing);
  if (!message) return nullptr;
  return com::makeCom<MessageFace>(Ref<MapiMessage>(message));
}

}  // namespace mailclient::win

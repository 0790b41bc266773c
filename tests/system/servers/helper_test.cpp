// mrktxtmsghelper.dll through COM, with a mail client whose items offer MAPI properties as the real one's do.

#include <algorithm>

#include "addin/platform/date.h"
#include "addin/platform/native.h"
#include "addin/platform/txtmsghelper.h"
#include "registered_servers.h"
#include "support/errors.h"

// After Windows' own headers, which it builds on.
#include <mapidefs.h>

namespace servers_tests {
namespace {

using namespace platform;
using Lines = std::vector<std::string>;

constexpr HRESULT noSupport = static_cast<HRESULT>(0x80040102);  // MAPI_E_NO_SUPPORT

// Writes down what is set; everything else a client may ask of it is not there.
class Properties final : public IMAPIProp {
 public:
  STDMETHODIMP QueryInterface(REFIID iid, void** result) override {
    constexpr IID mapiProp{0x00020303, 0, 0, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};
    *result = iid == IID_IUnknown || iid == mapiProp ? this : nullptr;
    return *result ? (AddRef(), S_OK) : E_NOINTERFACE;
  }
  STDMETHODIMP_(ULONG) AddRef() override { return ++references; }
  STDMETHODIMP_(ULONG) Release() override { return --references; }

  STDMETHODIMP SetProps(ULONG count, LPSPropValue values, LPSPropProblemArray* problems) override {
    if (problems) *problems = nullptr;
    for (ULONG i = 0; i < count; ++i) {
      const HRESULT hr = note(values[i]);
      if (FAILED(hr)) return hr;
    }
    return S_OK;
  }

  STDMETHODIMP GetLastError(HRESULT, ULONG, LPMAPIERROR*) override { return noSupport; }
  STDMETHODIMP SaveChanges(ULONG) override { return noSupport; }
  STDMETHODIMP GetProps(LPSPropTagArray, ULONG, ULONG*, LPSPropValue*) override { return noSupport; }
  STDMETHODIMP GetPropList(ULONG, LPSPropTagArray*) override { return noSupport; }
  STDMETHODIMP OpenProperty(ULONG, LPCIID, ULONG, ULONG, LPUNKNOWN*) override { return noSupport; }
  STDMETHODIMP DeleteProps(LPSPropTagArray, LPSPropProblemArray*) override { return noSupport; }
  STDMETHODIMP CopyTo(ULONG, LPCIID, LPSPropTagArray, ULONG, LPMAPIPROGRESS, LPCIID, LPVOID, ULONG,
                      LPSPropProblemArray*) override {
    return noSupport;
  }
  STDMETHODIMP CopyProps(LPSPropTagArray, ULONG, LPMAPIPROGRESS, LPCIID, LPVOID, ULONG, LPSPropProblemArray*) override {
    return noSupport;
  }
  STDMETHODIMP GetNamesFromIDs(LPSPropTagArray*, LPGUID, ULONG, ULONG*, LPMAPINAMEID**) override { return noSupport; }
  STDMETHODIMP GetIDsFromNames(ULONG, LPMAPINAMEID*, ULONG, LPSPropTagArray*) override { return noSupport; }

  ULONG references = 1;
  Lines log;
  bool knowsUnicode = true;
  ULONG refused = 0;

 private:
  HRESULT note(const SPropValue& value) {
    if (value.ulPropTag == refused) return noSupport;
    char tag[16];
    std::snprintf(tag, sizeof tag, "%08lX=", value.ulPropTag);
    switch (PROP_TYPE(value.ulPropTag)) {
      case PT_STRING8:
        log.push_back(tag + std::string(value.Value.lpszA));
        return S_OK;
      case PT_UNICODE: {
        if (!knowsUnicode) return noSupport;
        std::string units;
        for (const wchar_t* c = value.Value.lpszW; *c; ++c)
          units += *c < 128 ? std::string(1, static_cast<char>(*c)) : "?";
        log.push_back(tag + units);
        return S_OK;
      }
      case PT_SYSTIME: {
        SYSTEMTIME time{};
        FileTimeToSystemTime(&value.Value.ft, &time);
        char text[32];
        std::snprintf(text, sizeof text, "%04d-%02d-%02d %02d:%02d:%02d", time.wYear, time.wMonth, time.wDay,
                      time.wHour, time.wMinute, time.wSecond);
        log.push_back(tag + std::string(text));
        return S_OK;
      }
      case PT_LONG:
        log.push_back(tag + std::to_string(value.Value.l));
        return S_OK;
      default:
        return noSupport;
    }
  }
};

constinit Properties* current = nullptr;

struct PropertiesOfAnItem final : Counted {};

// One object plays all parts of the mail client, down to the item.
struct MailClient final : NativeObject {
  std::span<const Member> members() const override {
    static constexpr Member table[] = {
        method<&MailClient::itself>(u"GetNamespace", 1),
        method<&MailClient::itself>(u"GetDefaultFolder", 2),
        readOnly<&MailClient::items>(u"Items", 3),
        method<&MailClient::itself>(u"Add", 4),
        writeOnly<&MailClient::setTo>(u"To", 5),
        writeOnly<&MailClient::setBody>(u"Body", 6),
        method<&MailClient::mapiObject>(u"MAPIOBJECT", 0xF100),
        method<&MailClient::Save>(u"Save", 7),
        readOnly<&MailClient::entryId>(u"EntryID", 8),
    };
    return table;
  }
  Object itself(const Variant&) { return object(); }
  void setTo(const String& text) { to = text; }
  void setBody(const String& text) { body = text; }
  Opaque mapiObject() { return {make<PropertiesOfAnItem>()}; }
  void Save() { ++saves; }

  Object items;
  String to;
  String body;
  String entryId = u"0042";
  int saves = 0;
};

class HelperServer : public RegisteredServers {
 protected:
  HelperServer() {
    current = &properties_;
    com::opaqueConverter = [](Counted& thing) {
      return dynamic_cast<PropertiesOfAnItem*>(&thing) ? com::Ptr<IUnknown>(current) : com::Ptr<IUnknown>();
    };
    client_.get()->items = client_.get()->object();
  }
  ~HelperServer() override {
    client_.get()->items = nullptr;
    com::opaqueConverter = nullptr;
    EXPECT_EQ(properties_.references, 1u);
  }

  String createMessage(const String& subject, const String& body = u"body") {
    return helper_.CreateMessage(as<outlook::Application>(client_.get()->object()), u"IPM.Note.TxtMsg", u"Me [+46701]",
                                 u"Sender [+46702]", subject, body, *dateFromParts({2001, 2, 3, 4, 5, 6}),
                                 *dateFromParts({2001, 7, 8, 9, 10, 11}), u"010203040506");
  }
  // What this machine's clock calls universal time at that local one.
  static std::string universal(const DateParts& local) {
    std::tm time{};
    time.tm_year = local.year - 1900;
    time.tm_mon = local.month - 1;
    time.tm_mday = local.day;
    time.tm_hour = local.hour;
    time.tm_min = local.minute;
    time.tm_sec = local.second;
    time.tm_isdst = -1;
    const std::time_t seconds = std::mktime(&time);
    char text[32];
    std::strftime(text, sizeof text, "%Y-%m-%d %H:%M:%S", std::gmtime(&seconds));
    return text;
  }

  Properties properties_;
  Ref<MailClient> client_ = make<MailClient>();
  txtmsghelper::TxtMsg helper_ = as<txtmsghelper::TxtMsg>(create(txtmsghelper::clsidTxtMsg));
};

TEST_F(HelperServer, CreateMessage_SetsMapiPropertiesAndSavesOnce) {
  EXPECT_EQ(createMessage(u"subject"), u"0042");
  EXPECT_EQ(properties_.log, (Lines{
                                 "0037001E=subject",
                                 "0C1A001E=Sender [+46702]",
                                 "0042001E=Sender [+46702]",
                                 "00390040=" + universal({2001, 2, 3, 4, 5, 6}),
                                 "0E060040=" + universal({2001, 7, 8, 9, 10, 11}),
                                 "0E070003=0",
                                 "0070001E=Me [+46701]\x01"
                                 "010203040506",
                             }));
  EXPECT_EQ(client_.get()->to, u"Me [+46701]");
  EXPECT_EQ(client_.get()->body, u"body");
  EXPECT_EQ(client_.get()->saves, 1);
}

TEST_F(HelperServer, TextOutsideTheCodePage_IsSetAsUnicode) {
  createMessage(u"\u4E2D\u6587");
  EXPECT_EQ(properties_.log.at(0), "0037001F=??");
  EXPECT_EQ(properties_.log.at(1), "0C1A001E=Sender [+46702]");
}

TEST_F(HelperServer, StoreWithoutUnicode_GetsTheNearestAnsiText) {
  properties_.knowsUnicode = false;
  createMessage(u"a\u4E2D");
  EXPECT_EQ(properties_.log.at(0), "0037001E=a?");
}

TEST_F(HelperServer, RefusedProperty_IsTheCallersErrorAndSavesNothing) {
  properties_.refused = 0x0E070003;
  EXPECT_EQ(testing_support::errorNumberOf([&] { createMessage(u"subject"); }), noSupport);
  EXPECT_EQ(client_.get()->saves, 0);
}

}  // namespace
}  // namespace servers_tests

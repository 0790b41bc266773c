// What the wizard shows when it opens, and what it writes when it is finished.

#include "addin/common/basapi.h"
#include "addin/common/basdelimited.h"
#include "addin/common/bastext.h"
#include "addin/platform/on_error.h"
#include "addin/settings/basRegistry.h"
#include "addin/settings/frmwizard.h"
#include "addin/settings/modwinversion.h"
#include "addin/settings/options.h"

namespace addin {
namespace {

constexpr std::int32_t defaultInterval = 2;  // minutes
constexpr std::int32_t pollByDefault = 1;
constexpr std::int32_t offByDefault = 0;

// The list begins with its heading, which is no service centre.
constexpr std::int32_t firstServiceCentre = 1;

void save(StringView name, const Variant& value, std::int32_t type) {
  onErrorResumeNext([&] {
    RootKey root = rootCurrentUser;
    String key(KEY_OPTIONS);
    SetRegValue(root, key, name, value, type);
  });
}

void save(StringView name, const String& text) { save(name, text, REG_TYPE_SZ); }
void save(StringView name, bool ticked) { save(name, std::int32_t{ticked ? 1 : 0}, REG_TYPE_DWORD); }

}  // namespace

void frmwizard::LoadServiceCentreList() {
  onErrorResumeNext([&] {
    const String path = CStr(GetRegValue(rootLocalMachine, KEY_INSTALLATION, u"SMSCPath"));
    cboSCAddress.Clear();
    // Whatever ends the reading early, the entries so far stay.
    DelimitedText list([&](const std::string& item) { cboSCAddress.AddItem(system().locale.fromAnsi(item)); });
    system().files.read(path, [&](std::string_view piece) { return list.add(piece); });
    list.end();
  });
}

void frmwizard::SelectServiceCentre(StringView text) {
  onErrorResumeNext([&] {
    std::int32_t chosen = firstServiceCentre;  // when none is equal
    for (std::int32_t i = firstServiceCentre; i < cboSCAddress.ListCount(); ++i) {
      if (cboSCAddress.List(i) != text) continue;
      chosen = i;
      break;
    }
    cboSCAddress.ListIndex(chosen);  // fails without such an entry: the selection stays as it was
  });
}

// Each line by itself: a stored text that does not convert leaves its box as it was designed.
void frmwizard::LoadSettings() {
  LoadServiceCentreList();
  onErrorResumeNext(
      [&] {
        if (cboSCAddress.ListCount() > 0) cboSCAddress.ListIndex(firstServiceCentre);
      },
      [&] { SelectServiceCentre(OptionText(u"SCAddress")); },
      [&] { txtOwnSCAddress.Text(NumberInParentheses(OptionText(u"SCAddress_Own"))); },
      [&] { chkOwnSCAddress.Value(OptionNumber(u"SCAddress_UseOwn", offByDefault) != 0); },
      [&] { chkAutoPoll.Value(OptionNumber(u"SendReceive_UseAuto", pollByDefault) != 0); },
      [&] { txtPollIntervall.Text(concat(OptionNumber(u"SendReceive_AutoIntervall", defaultInterval))); },
      [&] { chkAutoRemove.Value(OptionNumber(u"SendReceive_AutoRemove", offByDefault) != 0); },
      [&] {
        const String name = OptionText(u"My_FullName");
        txtName.Text(name.empty() ? GetRegisteredOwner() : name);
      },
      [&] { txtPhoneNo.Text(OptionText(u"My_PhoneNo")); }, [&] { EnableOwnSCAddress(chkOwnSCAddress.Value()); },
      [&] { EnablePolling(chkAutoPoll.Value()); });
}

String frmwizard::GetRegisteredOwner() {
  String owner;
  onErrorResumeNext([&] {
    owner = CStr(GetRegValue(rootLocalMachine,
                             IsWindowsNT() ? StringView(u"SOFTWARE\\Microsoft\\Windows NT\\CurrentVersion")
                                           : StringView(u"SOFTWARE\\Microsoft\\Windows\\CurrentVersion"),
                             u"RegisteredOwner"));
  });
  return owner;
}

void frmwizard::SaveSettings() {
  // The heading and an empty selection are no choice; an earlier one stays.
  if (cboSCAddress.ListIndex() >= firstServiceCentre) save(u"SCAddress", cboSCAddress.List(cboSCAddress.ListIndex()));
  save(u"SCAddress_Own", concat(u"(", txtOwnSCAddress.Text(), u")"));  // so that it reads like an entry of the list
  save(u"SCAddress_UseOwn", chkOwnSCAddress.Value());
  save(u"SendReceive_UseAuto", chkAutoPoll.Value());
  onErrorResumeNext([&] {
    const String& interval = txtPollIntervall.Text();
    save(u"SendReceive_AutoIntervall", interval.empty() ? defaultInterval : CLng(interval), REG_TYPE_DWORD);
  });
  save(u"SendReceive_AutoRemove", chkAutoRemove.Value());
  save(u"My_FullName", txtName.Text());
  save(u"My_PhoneNo", txtPhoneNo.Text());
  save(u"WizardDone", true);
}

}  // namespace addin

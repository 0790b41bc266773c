// The mail client's events, the published form and the options page.

#include "addin/common/basapi.h"
#include "addin/diag/basDbgOut.h"
#include "addin/diag/basDebug.h"
#include "addin/host/OutAddIn.h"
#include "addin/host/basOutlook.h"
#include "addin/platform/optionspage.h"
#include "addin/settings/basresourceid.h"

namespace addin {

// In a Close event the closing window is still counted.
void OutAddIn::objExpl_Close() {
  onErrorLog([&] {
    if (objOutlook->Explorers().Count() < 2) UnInitHandler();
  });
}

void OutAddIn::objInsp_Close() {
  onErrorLog([&] {
    const std::int32_t explorers = objOutlook->Explorers().Count();
    const std::int32_t inspectors = objOutlook->Inspectors().Count();
    if (explorers == 0 && inspectors < 2) UnInitHandler();
  });
}

void OutAddIn::objExpl_SelectionChange() {
  onErrorLog([&] {
    if (objExpl->Selection().Count() != 1) {
      m_objMailItem = nullptr;
      return;
    }
    // A single item that is no text message leaves the watched one as it is: only that one's own events are heard.
    const Object item = objExpl->Selection().Item(1);
    if (LateBound(item).get<String>(u"MessageClass") == MESSAGE_CLASS) m_objMailItem = as<outlook::MailItem>(item);
  });
}

void OutAddIn::colExpl_NewExplorer(const Object& /*Explorer*/) {}

void OutAddIn::colInsp_NewInspector(const Object& Inspector) {
  onErrorLog([&] {
    objInsp = as<outlook::Inspector>(Inspector);
    // The kind of item is asked for, but every kind is treated alike.
    [[maybe_unused]] const auto kind = LateBound(objInsp->CurrentItem()).get<outlook::OlObjectClass>(u"Class");
  });
}

void OutAddIn::m_objMailItem_Forward(const Object& Forward, bool& /*Cancel*/) {
  onErrorLog([&] { LateBound(Forward).let(u"BillingInformation", concat(u"F;", m_objMailItem->EntryID(), u";")); });
}

void OutAddIn::m_objMailItem_Reply(const Object& Response, bool& /*Cancel*/) {
  onErrorLog([&] { LateBound(Response).let(u"BillingInformation", concat(u"R;", m_objMailItem->EntryID(), u";")); });
}

// A reply to all is not marked.
void OutAddIn::m_objMailItem_ReplyAll(const Object& /*Response*/, bool& /*Cancel*/) {}

bool OutAddIn::PublishForm() {
  return onErrorLog<bool>([&](bool& result) {
    const String path = concat(system().module.folder(), FORM_TEMPLATE);
    outlook::MailItem item = ModuleApplication().CreateItemFromTemplate(path);
    const outlook::FormDescription form = item.FormDescription();
    form.DisplayName(u"TxtMsg");
    form.Name(u"TxtMsg");
    form.PublishForm(outlook::olPersonalRegistry);  // replaces the copy of the last start-up
    item = nullptr;
    result = true;
  });
}

void OutAddIn::objOutlook_OptionsPagesAdd(const Object& Pages) {
  onErrorLog([&] {
    String caption = u"Text Messages";
    if (const auto texts = Localizer()) caption = texts.getlocalizedresstring(IDS_OPTIONS_PAGE, caption);
    const Object page = CreateObject(optionspage::progIdPage);
    as<outlook::PropertyPages>(Pages).Add(page, caption);
  });
}

}  // namespace addin

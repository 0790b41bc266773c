#include "mailclient/addins.h"

#include <algorithm>

#include "mailclient/client.h"

namespace mailclient {

AddInPtr AddIns::add(StringView progId, StringView description) {
  auto entry = std::make_shared<AddInEntry>();
  entry->progId = progId;
  entry->description = description;
  entries.push_back(entry);
  return entry;
}

AddInPtr AddIns::find(StringView progId) const {
  const auto at =
      std::find_if(entries.begin(), entries.end(), [&](const auto& e) { return sameName(e->progId, progId); });
  return at == entries.end() ? nullptr : *at;
}

std::span<const Member> COMAddIns::members() const {
  static constexpr std::array table{
      method<&COMAddIns::item>(u"Item", 0),
      method<&COMAddIns::count>(u"Count", 1),
      method<&ModelObject::application>(u"Application", 0x60020000),
  };
  return table;
}

std::int32_t COMAddIns::count() { return static_cast<std::int32_t>(client().addIns().entries.size()); }

Ref<COMAddIn> COMAddIns::item(const Variant& index) {
  const AddIns& all = client().addIns();
  const String* const progId = index.as<String>();
  const AddInPtr entry = progId ? all.find(*progId) : all.entries[positionOf(index, all.entries.size())];
  if (!entry) raiseError(9);
  return entry->view.get(clientPtr(), entry);
}

std::span<const Member> COMAddIn::members() const {
  static constexpr std::array table{
      property<&COMAddIn::connect, &COMAddIn::putConnect>(u"Connect", 6),
      method<&COMAddIn::description>(u"Description", 0),
      property<&COMAddIn::shown, &COMAddIn::putShown>(u"Object", 7),
      method<&COMAddIn::progId>(u"ProgId", 3),
      method<&ModelObject::application>(u"Application", 0x60020000),
      method<&ModelObject::parent>(u"Parent", 8),
  };
  return table;
}

void COMAddIn::putConnect(bool connect) {
  const auto wire = entry_->wire;  // who connects add-ins may set it anew
  if (connect != entry_->connected && wire) wire(connect);
}

}  // namespace mailclient

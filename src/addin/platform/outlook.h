// The mail client's object model, as far as the add-in calls it (Outlook 2000, type library 9.0).
#pragma once

#include "addin/platform/object.h"
#include "addin/platform/office.h"

namespace platform::outlook {

// Outlook's interface identifiers differ in their first number only.
constexpr Guid outlookGuid(std::uint16_t n) { return {0x00060000u | n, 0, 0, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}}; }

struct ApplicationEvents {
  static constexpr Guid iid = outlookGuid(0x304E);
  static constexpr Event<Object> OptionsPagesAdd{u"OptionsPagesAdd", 0xF005};
};
struct NameSpaceEvents {
  static constexpr Guid iid = outlookGuid(0x308C);
};
struct ExplorersEvents {
  static constexpr Guid iid = outlookGuid(0x3078);
  static constexpr Event<Object> NewExplorer{u"NewExplorer", 0xF001};
};
struct ExplorerEvents {
  static constexpr Guid iid = outlookGuid(0x304F);
  static constexpr Event<> SelectionChange{u"SelectionChange", 0xF007};
  static constexpr Event<> Close{u"Close", 0xF008};
};
struct InspectorsEvents {
  static constexpr Guid iid = outlookGuid(0x3079);
  static constexpr Event<Object> NewInspector{u"NewInspector", 0xF001};
};
struct InspectorEvents {
  static constexpr Guid iid = outlookGuid(0x307D);
  static constexpr Event<> Close{u"Close", 0xF008};
};
struct ItemsEvents {
  static constexpr Guid iid = outlookGuid(0x3077);
  static constexpr Event<Object> ItemAdd{u"ItemAdd", 0xF001};
  static constexpr Event<Object> ItemChange{u"ItemChange", 0xF002};
  static constexpr Event<> ItemRemove{u"ItemRemove", 0xF003};
};
struct ItemEvents {
  static constexpr Guid iid = outlookGuid(0x303A);
  static constexpr Event<Object, bool&> Reply{u"Reply", 0xF466};
  static constexpr Event<Object, bool&> ReplyAll{u"ReplyAll", 0xF467};
  static constexpr Event<Object, bool&> Forward{u"Forward", 0xF468};
};

enum OlDefaultFolders : std::int32_t {
  olFolderDeletedItems = 3,
  olFolderOutbox = 4,
  olFolderSentMail = 5,
  olFolderInbox = 6,
  olFolderContacts = 10
};
enum OlObjectClass : std::int32_t {
  olAppointment = 26,
  olContact = 40,
  olDocument = 41,
  olJournal = 42,
  olMail = 43,
  olPost = 45,
  olTask = 48,
  olDistributionList = 69
};
enum OlFormRegistry : std::int32_t { olPersonalRegistry = 2 };

class Application;
class Folders;
class MAPIFolder;

class FormDescription : public Object {
 public:
  using Object::Object;
  void DisplayName(StringView text) const { let(u"DisplayName", text); }
  void Name(StringView text) const { let(u"Name", text); }
  void PublishForm(OlFormRegistry registry) const { call(u"PublishForm", registry); }
};

class MailItem : public Object {
 public:
  using Object::Object;
  using Events = ItemEvents;
  String BillingInformation() const { return get<String>(u"BillingInformation"); }
  void BillingInformation(StringView text) const { let(u"BillingInformation", text); }
  String Body() const { return get<String>(u"Body"); }
  OlObjectClass Class() const { return get<OlObjectClass>(u"Class"); }
  String ConversationTopic() const { return get<String>(u"ConversationTopic"); }
  void Delete() const { call(u"Delete"); }
  void Display() const { call(u"Display"); }  // not modal
  String EntryID() const { return get<String>(u"EntryID"); }
  outlook::FormDescription FormDescription() const { return get<outlook::FormDescription>(u"FormDescription"); }
  String MessageClass() const { return get<String>(u"MessageClass"); }
  String Mileage() const { return get<String>(u"Mileage"); }
  void Mileage(StringView text) const { let(u"Mileage", text); }
  MailItem Move(const MAPIFolder& target) const;
  void Save() const { call(u"Save"); }
  String SenderName() const { return get<String>(u"SenderName"); }
  Date SentOn() const { return get<Date>(u"SentOn"); }
  String To() const { return get<String>(u"To"); }
  void UnRead(bool on) const { let(u"UnRead", on); }
};

class ContactItem : public Object {
 public:
  using Object::Object;
  String FullName() const { return get<String>(u"FullName"); }
  String MobileTelephoneNumber() const { return get<String>(u"MobileTelephoneNumber"); }
};

// Positions count from 1; an item is whatever class the caller expects at that place.
class Items : public Object {
 public:
  using Object::Object;
  using Events = ItemsEvents;
  MailItem Add(StringView messageClass) const { return call<MailItem>(u"Add", messageClass); }
  std::int32_t Count() const { return get<std::int32_t>(u"Count"); }
  template <std::derived_from<Object> T = MailItem>
  T Item(std::int32_t position) const {
    return call<T>(u"Item", position);
  }
  Items Restrict(StringView filter) const { return call<Items>(u"Restrict", filter); }
};

class MAPIFolder : public Object {
 public:
  using Object::Object;
  outlook::Application Application() const;
  outlook::Folders Folders() const;
  outlook::Items Items() const { return get<outlook::Items>(u"Items"); }
  String StoreID() const { return get<String>(u"StoreID"); }
};
inline MailItem MailItem::Move(const MAPIFolder& target) const { return call<MailItem>(u"Move", target); }

class Folders : public Object {
 public:
  using Object::Object;
  std::int32_t Count() const { return get<std::int32_t>(u"Count"); }
  MAPIFolder Item(std::int32_t position) const { return call<MAPIFolder>(u"Item", position); }
};
inline outlook::Folders MAPIFolder::Folders() const { return get<outlook::Folders>(u"Folders"); }

class NameSpace : public Object {
 public:
  using Object::Object;
  using Events = NameSpaceEvents;
  MAPIFolder GetDefaultFolder(OlDefaultFolders type) const { return call<MAPIFolder>(u"GetDefaultFolder", type); }
  MailItem GetItemFromID(StringView entryId, StringView storeId) const {
    return call<MailItem>(u"GetItemFromID", entryId, storeId);
  }
};

class Selection : public Object {
 public:
  using Object::Object;
  std::int32_t Count() const { return get<std::int32_t>(u"Count"); }
  Object Item(std::int32_t position) const { return call<Object>(u"Item", position); }
};

class Explorer : public Object {
 public:
  using Object::Object;
  using Events = ExplorerEvents;
  office::CommandBars CommandBars() const { return get<office::CommandBars>(u"CommandBars"); }
  MAPIFolder CurrentFolder() const { return get<MAPIFolder>(u"CurrentFolder"); }
  outlook::Selection Selection() const { return get<outlook::Selection>(u"Selection"); }
};

class Explorers : public Object {
 public:
  using Object::Object;
  using Events = ExplorersEvents;
  std::int32_t Count() const { return get<std::int32_t>(u"Count"); }
};

class Inspector : public Object {
 public:
  using Object::Object;
  using Events = InspectorEvents;
  Object CurrentItem() const { return get<Object>(u"CurrentItem"); }
};

class Inspectors : public Object {
 public:
  using Object::Object;
  using Events = InspectorsEvents;
  std::int32_t Count() const { return get<std::int32_t>(u"Count"); }
};

class PropertyPages : public Object {
 public:
  using Object::Object;
  void Add(const Object& page, StringView caption) const { call(u"Add", page, caption); }
};

class Application : public Object {
 public:
  using Object::Object;
  using Events = ApplicationEvents;
  Explorer ActiveExplorer() const { return call<Explorer>(u"ActiveExplorer"); }  // Nothing when none is open
  Object ActiveWindow() const { return call<Object>(u"ActiveWindow"); }          // an Explorer, an Inspector or Nothing
  office::Assistant Assistant() const { return get<office::Assistant>(u"Assistant"); }
  MailItem CreateItemFromTemplate(StringView path) const { return call<MailItem>(u"CreateItemFromTemplate", path); }
  outlook::Explorers Explorers() const { return get<outlook::Explorers>(u"Explorers"); }
  NameSpace GetNamespace(StringView type) const { return call<NameSpace>(u"GetNamespace", type); }
  outlook::Inspectors Inspectors() const { return get<outlook::Inspectors>(u"Inspectors"); }
};
inline outlook::Application MAPIFolder::Application() const { return get<outlook::Application>(u"Application"); }

}  // namespace platform::outlook

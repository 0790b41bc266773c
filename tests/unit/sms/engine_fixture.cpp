#include "unit/sms/engine_fixture.h"

#include <algorithm>

#include "addin/diag/basDbgOut.h"
#include "support/text.h"
#include "support/trace_levels.h"

namespace sms_tests {

using testing_support::fake;
using testing_support::utf8;

namespace {

constexpr std::int32_t notFound = static_cast<std::int32_t>(0x8004010F);  // MAPI_E_NOT_FOUND

Variant elementAt(const std::vector<Ref<FakeObject>>& elements, Args args, std::int32_t first) {
  const std::int32_t position = CLng(args[0]) - first;
  if (position < 0 || position >= static_cast<std::int32_t>(elements.size())) raiseError(9);
  return elements[static_cast<std::size_t>(position)]->object();
}

std::int32_t countOf(const std::vector<Ref<FakeObject>>& elements) {
  return static_cast<std::int32_t>(elements.size());
}

FakeObject::Script readOnly(std::function<Variant()> read) {
  return [read = std::move(read)](Access access, Args) {
    if (access == Access::Let || access == Access::Set) raiseError(438);
    return read();
  };
}

}  // namespace

// ---- folders --------------------------------------------------------------------------------------------------------

FakeFolder::FakeFolder(EngineWorld& world, const std::string& name)
    : folder(fake(name)), items(fake(name + ".Items")), folders(fake(name + ".Folders")), world_(world) {
  const String text(name.begin(), name.end());
  items->script(u"Count", readOnly([this] { return countOf(contents); }))
      .method(u"Item", [this](Args args) { return elementAt(contents, args, 1); })
      .method(u"Restrict", [this](Args args) { return restricted(to<String>(args[0])); });
  folders->script(u"Count", readOnly([this] { return static_cast<std::int32_t>(subfolders.size()); }))
      .method(u"Item", [this](Args args) -> Variant {
        return subfolders.at(static_cast<std::size_t>(CLng(args[0]) - 1))->folder->object();
      });
  folder->value(u"", text)
      .value(u"Name", text)
      .value(u"StoreID", u"Store")
      .script(u"Items", readOnly([this] { return items->object(); }))
      .script(u"Folders", readOnly([this] { return folders->object(); }))
      .script(u"Application", readOnly([this] { return world_.application->object(); }));
}

Variant FakeFolder::restricted(const String& filter) const {
  const bool ofClass = filter == u"[MessageClass] = 'IPM.Note.TxtMsg'";
  if (!ofClass && filter != u"[MobileTelephoneNumber] > ''") raiseError(5);
  auto found = std::make_shared<std::vector<Ref<FakeObject>>>();
  for (const auto& item : contents) {
    const Variant value = item->valueOf(ofClass ? u"MessageClass" : u"MobileTelephoneNumber");
    const String text = to<String>(value);
    if (ofClass ? sameName(text, MESSAGE_CLASS) : !text.empty()) found->push_back(item);
  }
  const auto result = fake(items->label() + " restricted");
  result->script(u"Count", readOnly([found] { return countOf(*found); })).method(u"Item", [found](Args args) {
    return elementAt(*found, args, 1);
  });
  return result->object();
}

bool FakeFolder::has(const Ref<FakeObject>& item) const {
  return std::find(contents.begin(), contents.end(), item) != contents.end();
}

std::vector<std::string> FakeFolder::entryIds() const {
  std::vector<std::string> result;
  for (const auto& item : contents) result.push_back(utf8(to<String>(item->valueOf(u"EntryID"))));
  return result;
}

std::vector<std::string> FakeFolder::bodies() const {
  std::vector<std::string> result;
  for (const auto& item : contents) result.push_back(utf8(to<String>(item->valueOf(u"Body"))));
  return result;
}

FakeFolder& FakeFolder::addSubfolder(const std::string& name) {
  return *subfolders.emplace_back(std::make_unique<FakeFolder>(world_, name));
}

// ---- the world ------------------------------------------------------------------------------------------------------

EngineWorld::EngineWorld()
    : application(fake("Application")),
      nameSpace(fake("NameSpace")),
      assistant(fake("Assistant")),
      balloon(fake("Balloon")),
      balloonLabel(fake("BalloonLabel")),
      inbox(*this, "Inbox"),
      deletedItems(*this, "Deleted Items"),
      outbox(*this, "Outbox"),
      sentMail(*this, "Sent Items"),
      contacts(*this, "Contacts"),
      helper(fake("Helper")),
      worker(fake("Worker")),
      phones(fake("Phones")),
      owner(make<Owner>()) {
  dbgChannel = {};
  dbgChannel.Level = 2;
  PROCESS_NAME.copy(dbgChannel.ProcessName, PROCESS_NAME.size());
  dbgChannel.ProcessNameLength = static_cast<std::uint16_t>(PROCESS_NAME.size());
  system.windows.openViewer();

  sms = newSmsObject("SMS");
  phone = newPhone("Phone", true, sms->object());
  attached = {phone};
  makeMailClient();
  makeAssistant();
  makeHelper();
  makeWorker();
  provideObjects();
  owner->m_objSMSHandler = make<clsSMSHandler>();
}

EngineWorld::~EngineWorld() {
  expectLevels();
  dbgChannel = {};
}

void EngineWorld::makeMailClient() {
  application->method(u"GetNamespace", [this](Args) -> Variant { return nameSpace->object(); })
      .script(u"Assistant", readOnly([this] { return assistant->object(); }));
  nameSpace->method(u"GetItemFromID",
                    [this](Args args) { return itemFromId(to<String>(args[0]), to<String>(args[1])); });
}

void EngineWorld::makeAssistant() {
  assistant->value(u"On", false)
      .value(u"Visible", false)
      .value(u"MoveWhenInTheWay", false)
      .value(u"Animation", 0)
      .script(u"NewBalloon", readOnly([this] { return balloon->object(); }));
  const auto labels = fake("BalloonLabels");
  labels->method(u"Item", [label = balloonLabel](Args) -> Variant { return label->object(); });
  balloonLabel->value(u"Text", u"");
  balloon->value(u"BalloonType", 0)
      .value(u"Heading", u"")
      .value(u"Text", u"")
      .value(u"Button", 0)
      .value(u"Icon", 0)
      .value(u"Labels", labels->object())
      .method(u"Show", [](Args) -> Variant { return -1; });
}

void EngineWorld::makeHelper() {
  helper->method(u"CreateMessage", [this](Args args) { return createMessage(args); });
}

void EngineWorld::makeWorker() {
  phones->script(u"Count", readOnly([this] { return countOf(attached); })).method(u"Item", [this](Args args) {
    return elementAt(attached, args, 0);
  });
  worker->script(u"CellPhones", readOnly([this] { return phones->object(); })).value(u"IsConnected", true);
}

void EngineWorld::provideObjects() {
  system.objects.provide(timermm::progIdTimer, [this] {
    const auto timer = fake(timers.empty() ? "SendTimer" : "GuardTimer");
    timer->value(u"Enabled", false).value(u"Interval", 0).value(u"Resolution", 0).value(u"Periodic", 0);
    timers.push_back(timer);
    return timer->object();
  });
  system.objects.provide(txtmsghelper::progIdTxtMsg, [this] { return helper->object(); });
  system.objects.provide(dvmworkerlib::progIdWorker, [this] { return worker->object(); });
}

void EngineWorld::giveFolders() {
  clsSMSHandler& engine = handler();
  engine.Inbox(inbox.facade());
  engine.DeletedItems(deletedItems.facade());
  engine.Outbox(outbox.facade());
  engine.SentMail(sentMail.facade());
  engine.Contacts(contacts.facade());
  engine.OutlookApplication(application->as<outlook::Application>());
}

void EngineWorld::start() {
  handler().InitCAPIObjects();
  giveFolders();
  clear();
}

// Tests look at the texts of the trace; the levels go with the texts, so they are looked at here for all of them.
void EngineWorld::expectLevels() const {
  for (const auto& line : system.windows.traceLines())
    EXPECT_EQ(line.level, testing_support::levelOf(line.text)) << line.text;
}

void EngineWorld::clear() {
  expectLevels();
  system.windows.clearTrace();
  system.journal.clear();
  owner->notices.clear();
  for (const auto& object : {application, nameSpace, assistant, balloon, helper, worker, phones, phone, sms})
    object->clearCalls();
  for (const auto& timer : timers) timer->clearCalls();
  for (FakeFolder* const f : allFolders()) {
    f->folder->clearCalls();
    f->items->clearCalls();
  }
}

// ---- the mail client ------------------------------------------------------------------------------------------------

Ref<FakeObject> EngineWorld::newItem(StringView topic, StringView body, StringView messageClass) {
  const std::string id = "ID-" + std::to_string(++lastItem_);
  const auto item = fake("Item " + id);
  item->value(u"EntryID", String(id.begin(), id.end()))
      .value(u"Class", outlook::olMail)
      .value(u"MessageClass", messageClass)
      .value(u"ConversationTopic", topic)
      .value(u"Body", body)
      .value(u"Mileage", u"")
      .value(u"To", u"")
      .value(u"SenderName", u"")
      .value(u"Subject", u"")
      .value(u"SentOn", system.time.now())
      .value(u"UnRead", true)
      .method(u"Save", [](Args) { return Variant(); });
  FakeObject* const self = item.get();
  item->method(u"Delete", [this, self](Args) {
    moveTo(Ref<FakeObject>(self), deletedItems);
    return Variant();
  });
  item->method(u"Move", [this, self](Args args) -> Variant {
    moveTo(Ref<FakeObject>(self), *folderOf(to<Object>(args[0])));
    return self->object();
  });
  return item;
}

Ref<FakeObject> EngineWorld::addItem(FakeFolder& where, StringView topic, StringView body, StringView messageClass) {
  return where.contents.emplace_back(newItem(topic, body, messageClass));
}

void EngineWorld::arrive(FakeFolder& where, const Ref<FakeObject>& item) {
  where.contents.push_back(item);
  where.items->raiseEvent(outlook::ItemsEvents::ItemAdd, item->object());
}

void EngineWorld::moveTo(const Ref<FakeObject>& item, FakeFolder& target) {
  FakeFolder* const source = folderOf(item);
  if (!source) raiseError(notFound, u"Mail client", u"The item is in no folder.");
  std::erase(source->contents, item);
  arrive(target, item);
}

Ref<FakeObject> EngineWorld::addContact(FakeFolder& where, StringView fullName, StringView mobileNumber) {
  const auto contact = fake("Contact " + utf8(fullName));
  contact->value(u"Class", outlook::olContact)
      .value(u"MessageClass", u"IPM.Contact")
      .value(u"FullName", fullName)
      .value(u"MobileTelephoneNumber", mobileNumber);
  return where.contents.emplace_back(contact);
}

FakeFolder* EngineWorld::folderOf(const Ref<FakeObject>& item) {
  const auto all = allFolders();
  const auto at = std::find_if(all.begin(), all.end(), [&](const FakeFolder* f) { return f->has(item); });
  return at == all.end() ? nullptr : *at;
}

FakeFolder* EngineWorld::folderOf(const Object& folder) {
  const auto all = allFolders();
  const auto at =
      std::find_if(all.begin(), all.end(), [&](const FakeFolder* f) { return f->folder->object() == folder; });
  if (at == all.end()) raiseError(notFound, u"Mail client", u"There is no such folder.");
  return *at;
}

Variant EngineWorld::itemFromId(const String& entryId, const String& storeId) {
  for (const FakeFolder* const f : allFolders())
    for (const auto& item : f->contents)
      if (storeId == u"Store" && f != &contacts && to<String>(item->valueOf(u"EntryID")) == entryId)
        return item->object();
  raiseError(notFound, u"Mail client", u"The item is in no folder.");
}

Variant EngineWorld::createMessage(Args args) {
  if (args.size() != 9) raiseError(450);
  const String to_ = to<String>(args[2]);
  const auto item = newItem(to_ + u"\x01" + to<String>(args[8]), to<String>(args[5]), to<String>(args[1]));
  item->value(u"To", to_).value(u"SenderName", args[3]).value(u"Subject", args[4]).value(u"SentOn", args[6]);
  arrive(outbox, item);
  return item->valueOf(u"EntryID");
}

// ---- the phone ------------------------------------------------------------------------------------------------------

void EngineWorld::answer(std::int32_t transaction, std::int32_t status, const Object& message) {
  const Ref<FakeObject> source = sms;
  source->raiseEvent(sms_objectlib::SMSEvents::OnNotifyResponse, transaction, status, message);
}

void EngineWorld::notifyConnected(std::int32_t bConnected, const Object& cellPhone) {
  worker->raiseEvent(dvmworkerlib::WorkerEvents::OnNotifyCellPhoneConnected, bConnected, cellPhone);
}

Ref<FakeObject> EngineWorld::newPhone(const std::string& name, bool connected, const Object& smsObject) {
  const auto result = fake(name);
  result->value(u"IsConnected", connected).value(u"SMS", smsObject).value(u"Name", String(name.begin(), name.end()));
  return result;
}

Ref<FakeObject> EngineWorld::newSmsObject(const std::string& name) {
  const auto result = fake(name);
  FakeObject* const self = result.get();
  result->method(u"CreateShortMessage", [this](Args) -> Variant {
    const auto message = fake("ShortMessage");
    message->value(u"ServiceCentre", u"").value(u"Destination", u"").value(u"Text", u"");
    message->method(u"Send", [this](Args) -> Variant { return nextTransaction++; });
    created.push_back(message);
    return message->object();
  });
  result->method(u"ListMessages", [this, self](Args args) { return listMessages(CLng(args[0]), CLng(args[1]), *self); })
      .method(u"DeleteMessage", [this, self](Args args) { return deleteMessage(CLng(args[0]), CLng(args[1]), *self); })
      .method(u"IsStorageSupported", [](Args args) -> Variant { return CLng(args[0]) == 1 || CLng(args[0]) == 2; })
      .method(u"StorageCapacity", [](Args) -> Variant { return std::int16_t{10}; })
      .method(u"StorageUsed",
              [this](Args args) -> Variant { return static_cast<std::int16_t>(stored[CLng(args[0])].size()); });
  return result;
}

Ref<FakeObject> EngineWorld::newShortMessage(const StoredMessage& m) {
  const auto message = fake("ShortMessage " + std::to_string(m.store) + ":" + std::to_string(m.index));
  message->value(u"Originator", m.originator)
      .value(u"Text", m.text)
      .value(u"TimeStamp", m.timeStamp)
      .value(u"Store", m.store)
      .value(u"Index", m.index)
      .value(u"Status", m.status);
  return message;
}

Ref<FakeObject> EngineWorld::store(const StoredMessage& message) {
  return stored[message.store].emplace_back(newShortMessage(message));
}

// One answer per message with "more data", then one without a message; each is work of its own.
Variant EngineWorld::listMessages(std::int32_t from, std::int32_t filter, FakeObject& source) {
  const std::int32_t id = nextTransaction++;
  if (!answersListings) return id;
  const Ref<FakeObject> sender(&source);
  const auto post = [&](std::int32_t status, const Object& message) {
    system.time.post([sender, id, status, message] {
      sender->raiseEvent(sms_objectlib::SMSEvents::OnNotifyResponse, id, status, message);
    });
  };
  for (const auto& message : stored[from])
    if (filter == sms_objectlib::statusAll || CLng(message->valueOf(u"Status")) == filter)
      post(sms_objectlib::resultMoreData, message->object());
  post(sms_objectlib::resultSuccess, {});
  return id;
}

Variant EngineWorld::deleteMessage(std::int32_t from, std::int32_t index, FakeObject& source) {
  const std::int32_t id = nextTransaction++;
  const auto gone = std::erase_if(stored[from], [&](const auto& m) { return CLng(m->valueOf(u"Index")) == index; });
  if (!answersDeletions) return id;
  const Ref<FakeObject> sender(&source);
  const std::int32_t status = gone ? deletionStatus : sms_objectlib::resultEmptySlot;
  system.time.post(
      [sender, id, status] { sender->raiseEvent(sms_objectlib::SMSEvents::OnNotifyResponse, id, status, Object()); });
  return id;
}

}  // namespace sms_tests

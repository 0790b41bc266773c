// The engine with everything around it made of fakes: a mail client of a few folders, a phone, timers and the helper.
//
// Fakes do at once what the real ones do, events included: an item that comes into a folder raises its Items' ItemAdd
// inside the call that moved, created or deleted it. Listings and deletions are answered as work of the message pump.
// Real sources ignore what their listeners let out; these pass it on, so that an error that escapes is seen.
//
//   class SendAll : public EngineFixture {};
//   TEST_F(SendAll, …) {
//     start();                                           // engine initialised, folders given, trace cleared
//     addItem(outbox, u"Anna [+46 1]\x01", u"Hello");    // silently; arrive() raises ItemAdd
//     handler().SendAll();
//     tick(sendTimer(), 500);
//     answer(17, 0);
//     EXPECT_EQ(trace(), …);
//   }
//
// Order of calls over several objects: make a Recorder (support/seam_recorder.h) in the test.
#pragma once

#include <algorithm>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "addin/sms/clsSMSHandler.h"
#include "support/fake_object.h"
#include "support/native_system.h"
#include "support/seam_recorder.h"
#include "unit/sms/sms_handler_probe.h"

namespace sms_tests {

using namespace addin;
using testing_support::FakeObject;
using Lines = std::vector<std::string>;

// The first or last lines of a list; a list that has not so many, whole.
inline Lines firstOf(const Lines& lines, std::size_t count) {
  return {lines.begin(), lines.begin() + static_cast<std::ptrdiff_t>(std::min(count, lines.size()))};
}
inline Lines lastOf(const Lines& lines, std::size_t count) {
  return {lines.end() - static_cast<std::ptrdiff_t>(std::min(count, lines.size())), lines.end()};
}

class EngineWorld;

// A folder with its Items, found again by "Restrict" and walked by position. Its default member is its name.
class FakeFolder {
 public:
  FakeFolder(EngineWorld& world, const std::string& name);

  outlook::MAPIFolder facade() const { return folder->as<outlook::MAPIFolder>(); }
  bool has(const Ref<FakeObject>& item) const;
  std::vector<std::string> entryIds() const;
  std::vector<std::string> bodies() const;
  FakeFolder& addSubfolder(const std::string& name);

  Ref<FakeObject> folder;
  Ref<FakeObject> items;    // what Items gives, the same object each time; the source of ItemAdd
  Ref<FakeObject> folders;  // the subfolders as a collection
  std::vector<Ref<FakeObject>> contents;
  std::vector<std::unique_ptr<FakeFolder>> subfolders;

 private:
  Variant restricted(const String& filter) const;
  EngineWorld& world_;
};

// The add-in object, as far as the engine sees it: who holds the engine and hears its event.
class Owner final : public Counted {
 public:
  void m_objSMSHandler_OnPhoneConnected(bool bConnected) {
    notices.push_back(bConnected);
    if (whenNoticed) whenNoticed(bConnected);
  }

  WithEvents<Ref<clsSMSHandler>> m_objSMSHandler{
      this, on<clsSMSHandler::Events::OnPhoneConnected, &Owner::m_objSMSHandler_OnPhoneConnected>};
  std::vector<bool> notices;
  std::function<void(bool)> whenNoticed;
};

struct StoredMessage {
  StringView originator = u"+46701111111";
  StringView text = u"Hello";
  StringView timeStamp = u"010203040506";
  std::int32_t store = sms_objectlib::cpSMSSIMMessageStore;
  std::int16_t index = 1;
  std::int32_t status = sms_objectlib::receivedUnread;
};

class EngineWorld {
 public:
  EngineWorld();
  ~EngineWorld();
  EngineWorld(const EngineWorld&) = delete;
  EngineWorld& operator=(const EngineWorld&) = delete;

  // The engine
  // ---------------------------------------------------------------------------------------------------------

  clsSMSHandler& handler() { return *owner->m_objSMSHandler.get(); }
  SMSHandlerProbe probe() { return SMSHandlerProbe(handler()); }
  void giveFolders();  // Inbox, DeletedItems, Outbox, SentMail, Contacts, OutlookApplication
  void start();        // InitCAPIObjects, giveFolders; then trace, calls and the owner's notices are cleared
  void letGo() { owner->m_objSMSHandler = nullptr; }  // the owner's tear-down
  void clear();

  Lines trace() const { return system.trace(); }

  // The mail client
  // ----------------------------------------------------------------------------------------------------

  Ref<FakeObject> newItem(StringView topic, StringView body, StringView messageClass = MESSAGE_CLASS);
  Ref<FakeObject> addItem(FakeFolder& where, StringView topic, StringView body,
                          StringView messageClass = MESSAGE_CLASS);
  void arrive(FakeFolder& where, const Ref<FakeObject>& item);  // appended, and the folder raises ItemAdd
  void moveTo(const Ref<FakeObject>& item, FakeFolder& target);
  Ref<FakeObject> addContact(FakeFolder& where, StringView fullName, StringView mobileNumber);
  FakeFolder* folderOf(const Ref<FakeObject>& item);
  FakeFolder* folderOf(const Object& folder);

  // The phone
  // ----------------------------------------------------------------------------------------------------------

  FakeObject& sendTimer() { return *timers.at(0); }
  FakeObject& guardTimer() { return *timers.at(1); }
  void tick(FakeObject& timer, std::int32_t milliseconds) {
    timer.raiseEvent(timermm::TimerEvents::Timer, milliseconds);
  }
  // The SMS object's answer, at once.
  void answer(std::int32_t transaction, std::int32_t status, const Object& message = {});
  void notifyConnected(std::int32_t bConnected, const Object& cellPhone);
  Ref<FakeObject> newPhone(const std::string& name, bool connected, const Object& smsObject);
  Ref<FakeObject> newSmsObject(const std::string& name);
  Ref<FakeObject> newShortMessage(const StoredMessage& message);
  // Lies in its store, is listed as the phone does and is gone when it is deleted.
  Ref<FakeObject> store(const StoredMessage& message);

  testing_support::Census census;
  testing_support::NativeSystem system;

  std::int32_t nextTransaction = 17;
  bool answersListings = true;
  bool answersDeletions = true;
  std::int32_t deletionStatus = 0;
  std::map<std::int32_t, std::vector<Ref<FakeObject>>> stored;  // by store
  std::vector<Ref<FakeObject>> created;                         // what CreateShortMessage gave
  std::vector<Ref<FakeObject>> timers;                          // in the order of their making: send, guard

  Ref<FakeObject> application, nameSpace, assistant, balloon, balloonLabel;
  FakeFolder inbox, deletedItems, outbox, sentMail, contacts;
  Ref<FakeObject> helper, worker, phones, phone, sms;
  std::vector<Ref<FakeObject>> attached;  // the worker's list of phones

  Ref<Owner> owner;

 private:
  void expectLevels() const;
  void makeMailClient();
  void makeAssistant();
  void makeHelper();
  void makeWorker();
  void provideObjects();
  Variant itemFromId(const String& entryId, const String& storeId);
  Variant createMessage(Args args);
  Variant listMessages(std::int32_t store, std::int32_t filter, FakeObject& source);
  Variant deleteMessage(std::int32_t store, std::int32_t index, FakeObject& source);
  std::vector<FakeFolder*> allFolders() { return {&inbox, &deletedItems, &outbox, &sentMail, &contacts}; }

  int lastItem_ = 0;
};

class EngineFixture : public ::testing::Test, protected EngineWorld {};

}  // namespace sms_tests

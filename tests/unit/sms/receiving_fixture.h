// The user's settings, and the trace that receiving owes, put together from its parts.
#pragma once

#include "support/text.h"
#include "unit/sms/engine_fixture.h"

namespace sms_tests {

inline Lines joined(std::initializer_list<Lines> parts) {
  Lines all;
  for (const Lines& part : parts) all.insert(all.end(), part.begin(), part.end());
  return all;
}

inline std::string number(std::int32_t n) { return std::to_string(n); }

inline constexpr const char* optionsKey = "Software\\Microsoft\\Office\\9.0\\Outlook\\Options\\TextMessage";

// The lines that each procedure owes.
class ReceivingTrace {
 protected:
  static constexpr std::int32_t phoneMemory = sms_objectlib::cpSMSMEMessageStore;
  static constexpr std::int32_t sim = sms_objectlib::cpSMSSIMMessageStore;
  static constexpr std::int32_t moreData = sms_objectlib::resultMoreData;

  static Lines answered(std::int32_t id, std::int32_t status, std::int32_t state) {
    return {
        "m_objSMS_OnNotifyResponse - TransID:" + number(id) + ", Status:" + number(status) + ", State:" + number(state),
        "disablar guard timer"};
  }

  // CreateMessage

  static Lines creationBegins(std::int32_t remove = 0) {
    return {"Inside Function CreateMessage",
            "Check if text message should be deleted from SIM when the same found in the Inbox",
            "Delete from SIM when displayed in Inbox:" + number(remove), "Get short message properties",
            "Check for duplicate messages in Inbox"};
  }
  // A search; `build` is the trace of filling the cache, `walk` that of the records.
  static Lines searched(const Lines& build, const Lines& walk, bool result) {
    return joined({{"Inside Function FindTextMessage", "Inside Function FindInFolderCollection",
                    "Inside Function GetFolderCollection"},
                   build,
                   {"GetFolderCollection called"},
                   walk,
                   {result ? "FindInFolderCollection = True" : "FindInFolderCollection = False"}});
  }
  static Lines builtInbox(std::size_t records = 0) {
    return built(records, "Case FOLDER_INBOX - BuildFolderCollection called");
  }
  static Lines builtDeletedItems(std::size_t records = 0) {
    return built(records, "Case FOLDER_DELETEDITEMS -  BuildFolderCollection called");
  }
  static Lines sameMessage() { return {"YES,SAME DATE", "YES,SAME RECIPIENT", "FOUND DUPLICATE!"}; }
  static Lines notInInbox() { return {"No duplicate message in Inbox - Check in Deleted Items folder"}; }
  static Lines queuedAsDeleted() {
    return {"The same message fond on the SIM and in Deleted Items folder",
            "instaed to delete the SMS, put it in the m_smsToDeleteCollection"};
  }
  static Lines queuedByTheUser() {
    return {"User wants to remove message from the SIM card when readed in outlook",
            "instaed to delete the SMS, put it in the m_smsToDeleteCollection"};
  }
  static Lines dupe(bool yes) { return {yes ? "DupeFound:True" : "DupeFound:False"}; }
  static Lines itemMade(const std::string& entryId) { return {"CreateMessage:" + entryId}; }
  // Of a message that is nowhere yet, with both caches there.
  static Lines createdNew(const std::string& entryId) {
    return joined({creationBegins(), searched({}, {}, false), notInInbox(), searched({}, {}, false), dupe(false),
                   itemMade(entryId)});
  }

  // MoveMessage

  static Lines moved(const std::string& entryId, const std::string& from, const std::string& to) {
    return joined({moveBegins(entryId, from, to),
                   {"MoveMessage - restrict folder items to TextMessage's", "MoveMessage = True", "To folder = " + to,
                    "MoveMessage - bMoved: True"}});
  }
  static Lines moveBegins(const std::string& entryId, const std::string& from, const std::string& to) {
    return {"Inside Function MoveMessage", "MoveMessage - EntryId: " + entryId + " From: " + from + " To: " + to};
  }

  // Listings

  // One listed message with more to follow; `creation` is the trace of its CreateMessage.
  static Lines listedOne(std::int32_t id, const Lines& creation, const std::string& entryId) {
    return joined(
        {answered(id, moreData, STATE_LIST),
         {"STATE_LIST - Got one message, tranid: " + number(id) + " status: " + number(moreData)},
         creation,
         {"CreateMessage called - message will be created in outbox",
          "Return from CreateMessage call - strEntryId = " + entryId, "Check if message lengt is larger than 0"},
         entryId.empty() ? Lines{}
                         : joined({{"YES, Move message to Inbox: " + entryId}, moved(entryId, "Outbox", "Inbox")}),
         {"More data to come, don't remove transaction from collection", "Extend timeout"}});
  }
  static Lines listingBegins() { return {"List Message - InitTimeOut 5000ms", "Wait for async operation to complete"}; }
  static Lines listed(std::int32_t id, const Lines& messages = {}) {
    return joined(
        {listingBegins(), messages, answered(id, 0, STATE_LIST), {"No message, tranid: " + number(id) + " status: 0"}});
  }

  // ReceiveAll

  static Lines runBegins(bool full) {
    return {"Inside Function ReceiveAll", "Create m_smsToDelete collection",
            full ? "Inside ReceiveAll Function - m_bReceiveAll = True"
                 : "Inside ReceiveAll Function - m_bReceiveAll = False"};
  }
  static Lines phoneMemoryListed(bool result) {
    return {result ? "ListMessage - cpSMSMEMessageStore - bRet = True"
                   : "ListMessage - cpSMSMEMessageStore - bRet = False"};
  }
  static Lines simListed(bool result) {
    return {result ? "ListMessage - cpSMSSIMMessageStore - bRet = True"
                   : "ListMessage - cpSMSSIMMessageStore - bRet = False"};
  }
  static Lines runEnds(std::int32_t count, const Lines& deletions = {}) {
    return joined({{"ListMessage function called", "Go through collection and delete SMSs from the SIM card",
                    "The number of the SMSs in collection = " + number(count)},
                   deletions,
                   {"Clear the m_smsToDelete collection"}});
  }
  // A run over both memories, whose listings write these lines.
  static Lines run(bool full, const Lines& first, const Lines& second, std::int32_t count = 0,
                   const Lines& deletions = {}) {
    return joined(
        {runBegins(full), first, phoneMemoryListed(true), second, simListed(true), runEnds(count, deletions)});
  }

  // Deletions

  static Lines deletedFromPhone(std::int32_t id, std::int32_t status, bool result) {
    return joined({{"Inside Function DeleteSMSFromPhone", "DeleteSMSFromPhone - IsStorageSupported = True",
                    "Delete SMS in phone: transaction id: " + number(id)},
                   answered(id, status, STATE_DELETE),
                   {"STATE_DELETE - Response from delete SMS: " + number(id) + " status: " + number(status),
                    result ? "DeleteSMSFromPhone = True" : "DeleteSMSFromPhone = False"}});
  }
  static Lines deletedInRun(std::int32_t id, std::int32_t index, std::int32_t store, std::int32_t status = 0) {
    return joined({{"Delete SMS - IsStorageSupported = True"},
                   deletedFromPhone(id, status, status == 0 || status == sms_objectlib::resultEmptySlot),
                   {"Delete from SIM - index = " + number(index), "Delete from SIM - storage = " + number(store)}});
  }

 private:
  static Lines built(std::size_t records, const std::string& last) {
    return joined({{"Inside Function BuildFolderCollection", "Restrict folder items to TextMessage's"},
                   Lines(records, "colfolder.Add called"),
                   {last}});
  }
};

class ReceivingFixture : public EngineFixture, protected ReceivingTrace {
 protected:
  static constexpr StringView me = u"Me [+4670]";  // the user's own address
  static constexpr StringView sentAt = u"010203040506";

  ReceivingFixture() {
    option("My_FullName", "Me");
    option("My_PhoneNo", "+4670");
    start();
  }

  void option(const std::string& name, const std::string& text) {
    system.registry.setString(rootCurrentUser, optionsKey, name, text);
  }
  void option(const std::string& name, std::uint32_t value) {
    system.registry.setDword(rootCurrentUser, optionsKey, name, value);
  }
  void autoRemove() { option("SendReceive_AutoRemove", 1u); }

  // A listed message from somebody, as the events deliver it.
  sms_objectlib::ShortMessage shortMessage(const StoredMessage& message) {
    return newShortMessage(message)->as<sms_objectlib::ShortMessage>();
  }
};

}  // namespace sms_tests

// What the tests look at and call inside the engine.
#pragma once

#include "addin/sms/clsSMSHandler.h"

namespace addin {

class SMSHandlerProbe {
 public:
  using TransactionCollection = clsSMSHandler::TransactionCollection;
  using MessageCollection = clsSMSHandler::MessageCollection;

  explicit SMSHandlerProbe(clsSMSHandler& handler) : h(handler) {}

  // Fields.
  std::int32_t& state() const { return h.m_nState; }
  String& entryId() const { return h.m_strEntryID; }
  Ref<TransactionCollection>& transactions() const { return h.m_colTransactions; }
  dvmworkerlib::CellPhone& cellPhone() const { return h.m_objCellPhone; }
  outlook::Application& application() const { return h.m_objOutlookApp; }
  outlook::NameSpace& nameSpace() const { return h.m_objNameSpace; }
  outlook::MAPIFolder& inbox() const { return h.m_objInbox; }
  outlook::MAPIFolder& deletedItems() const { return h.m_objDeletedItems; }
  outlook::MAPIFolder& outbox() const { return h.m_objOutbox; }
  outlook::MAPIFolder& sentMail() const { return h.m_objSentMail; }
  outlook::MAPIFolder& contacts() const { return h.m_objContacts; }
  bool& assistantOn() const { return h.m_bAssistantOn; }
  bool& assistantVisible() const { return h.m_bAssistantVisible; }
  std::int32_t& deleteStatus() const { return h.m_lDeleteStatus; }
  txtmsghelper::TxtMsg& mapiHelper() const { return h.m_objMapiHelper; }
  Ref<clstimeout>& timeOut() const { return h.m_objTimeOut; }
  std::int32_t& guardParts() const { return h.m_nGuardParts; }
  bool& receiveAllFlag() const { return h.m_bReceiveAll; }
  std::int32_t& phoneConnected() const { return h.m_bPhoneConnected; }
  std::int32_t& usedSimMemory() const { return h.m_usedSimMemory; }
  std::int32_t& maxSimCapacity() const { return h.m_maxSimCapacity; }
  const String& assistantTitle() const { return h.m_strAssistantTitle; }
  const String& assistantHeading() const { return h.m_strAssistantHeading; }
  const String& assistantLabel() const { return h.m_strAssistantLabel; }
  Ref<MessageCollection>& smsToDelete() const { return h.m_smsToDelete; }
  Ref<coltextmessage>& colInbox() const { return h.m_colInbox; }
  Ref<coltextmessage>& colDeletedItems() const { return h.m_colDeletedItems; }
  WithEvents<sms_objectlib::SMS>& sms() const { return h.m_objSMS; }
  WithEvents<dvmworkerlib::Worker>& capi() const { return h.m_objCAPI; }
  WithEvents<timermm::Timer>& timer() const { return h.m_objTimer; }
  WithEvents<timermm::Timer>& guardTimer() const { return h.m_objGuardTimer; }
  WithEvents<outlook::Items>& outboxItems() const { return h.m_objOutboxItems; }
  WithEvents<outlook::Items>& deletedItemsItems() const { return h.m_objDeletedItemsItems; }

  // Transactions and sending.
  void AddTransaction(std::int32_t id, StringView item, enTransactionType type) const {
    h.AddTransaction(id, item, type);
  }
  bool SetupSendMessage() const { return h.SetupSendMessage(); }
  bool SendMessage(StringView item, StringView to, StringView text) const { return h.SendMessage(item, to, text); }
  bool SetupGuard(std::int32_t parts) const { return h.SetupGuard(parts); }
  void HandleSendFailure(StringView item) const { h.HandleSendFailure(item); }
  bool CreateErrorReport(StringView to, StringView sender, StringView body, Date sentOn) const {
    return h.CreateErrorReport(to, sender, body, sentOn);
  }
  void StartAssistantAnimation() const { h.StartAssistantAnimation(); }
  void StopAssistantAnimation() const { h.StopAssistantAnimation(); }
  void ShowAssistantBalloon(StringView heading, StringView text, StringView label) const {
    h.ShowAssistantBalloon(heading, text, label);
  }

  // Receiving, duplicates and addresses.
  bool ListMessage(std::int32_t store, std::int32_t status) const { return h.ListMessage(store, status); }
  String CreateMessage(const sms_objectlib::ShortMessage& sms) const { return h.CreateMessage(sms); }
  bool MoveMessage(StringView item, const outlook::MAPIFolder& from, const outlook::MAPIFolder& to) const {
    return h.MoveMessage(item, from, to);
  }
  bool MoveMessage(StringView item, const outlook::MAPIFolder& from, const outlook::MAPIFolder& to,
                   bool markRead) const {
    return h.MoveMessage(item, from, to, markRead);
  }
  bool FindTextMessage(std::int32_t folder, StringView recipient, StringView subject, String& body,
                       const String& sentOn) const {
    return h.FindTextMessage(folder, recipient, subject, body, sentOn);
  }
  bool FindInFolderCollection(std::int32_t folder, StringView recipient, StringView subject, String& body,
                              const String& sentOn) const {
    return h.FindInFolderCollection(folder, recipient, subject, body, sentOn);
  }
  Ref<coltextmessage> GetFolderCollection(std::int32_t folder) const { return h.GetFolderCollection(folder); }
  bool BuildFolderCollection(const outlook::MAPIFolder& folder, const Ref<coltextmessage>& records) const {
    return h.BuildFolderCollection(folder, records);
  }
  static String BuildSubject(StringView text) { return clsSMSHandler::BuildSubject(text); }
  static String TrimTrailingLineBreaks(StringView text) { return clsSMSHandler::TrimTrailingLineBreaks(text); }
  void CompareStrings(StringView s1, StringView s2) const { h.CompareStrings(s1, s2); }
  static String ExtractPhoneNumber(StringView address) { return clsSMSHandler::ExtractPhoneNumber(address); }
  static String ExtractParenthesisedNumber(StringView text) { return clsSMSHandler::ExtractParenthesisedNumber(text); }
  String GetServiceCentreAddress() const { return h.GetServiceCentreAddress(); }
  String GetOwnAddress() const { return h.GetOwnAddress(); }
  String BuildFromAddress(StringView number) const { return h.BuildFromAddress(number); }

 private:
  clsSMSHandler& h;
};

}  // namespace addin

// The transport engine: hands text messages to the phone, and brings in those that lie on the phone and its SIM card.
//
// The owner creates one, gives it the mail client's folders and Application, calls InitCAPIObjects, and from then on
// calls SendAll and ReceiveAll and listens for OnPhoneConnected.
//
// One phone operation is outstanding at a time: m_nState is the only guard. Everything runs on the mail client's
// user-interface thread and is re-entered from its own waits: timers, replies, folder events, and the owner's tear-down
// may arrive inside ListMessage and DeleteSMSFromPhone. A torn-down handler has let go of everything; its waits end
// with False, and its memory stays until the stack has unwound.
//
// Sources: clsSMSHandler.cpp (start, phone, end), clsSMSHandler_sending.cpp, clsSMSHandler_assistant.cpp,
// clsSMSHandler_response.cpp, clsSMSHandler_receiving.cpp, clsSMSHandler_duplicates.cpp, clsSMSHandler_addresses.cpp.
#pragma once

#include "addin/common/basGlobal.h"
#include "addin/platform/collection.h"
#include "addin/platform/dvmworkerlib.h"
#include "addin/platform/event_source.h"
#include "addin/platform/outlook.h"
#include "addin/platform/sms_objectlib.h"
#include "addin/platform/timermm.h"
#include "addin/platform/txtmsghelper.h"
#include "addin/platform/with_events.h"
#include "addin/sms/clsTransaction.h"
#include "addin/sms/clstimeout.h"
#include "addin/sms/coltextmessage.h"

namespace addin {

// Values of m_nState.
enum enHandlerState : std::int32_t { IDLE = 0, STATE_LIST = 1, STATE_SEND = 2, STATE_DELETE = 3 };

// Folder selectors of the duplicate check.
enum enFolder : std::int32_t { FOLDER_INBOX = 0, FOLDER_DELETEDITEMS = 1 };

// A general-purpose collection that can be handed around and outlive the field that holds it.
template <class T>
class SharedCollection final : public Counted, public Collection<T> {};

class clsSMSHandler final : public Counted, public EventSource {
 public:
  struct Events {
    static constexpr Event<bool> OnPhoneConnected{u"OnPhoneConnected", 1};
  };
  Ref<Counted> subscribe(const Ref<EventSink>& sink) { return addListener(this, sink); }

  void SetAssistantTitle(StringView text) { m_strAssistantTitle = text; }
  void SetAssistantHeading(StringView text) { m_strAssistantHeading = text; }
  void SetAssistantLabel(StringView text) { m_strAssistantLabel = text; }

  // True while an SMS object is bound, whatever the worker said last.
  bool IsPhoneConnected() const { return bool(m_objSMS); }

  void Contacts(const outlook::MAPIFolder& folder) { m_objContacts = folder; }
  void Inbox(const outlook::MAPIFolder& folder) { m_objInbox = folder; }
  outlook::MAPIFolder Inbox() const { return m_objInbox; }
  void DeletedItems(const outlook::MAPIFolder& folder);
  outlook::MAPIFolder DeletedItems();  // deliberately lopsided, see there
  void OutlookApplication(const outlook::Application& application);
  outlook::Application OutlookApplication() const { return m_objOutlookApp; }
  void Outbox(const outlook::MAPIFolder& folder);
  outlook::MAPIFolder Outbox() const { return m_objOutbox; }
  void SentMail(const outlook::MAPIFolder& folder) { m_objSentMail = folder; }
  outlook::MAPIFolder SentMail() const { return m_objSentMail; }

  // Lists phone memory and SIM, brings new messages into the Inbox and deletes the marked ones from the SIM. The result
  // of the SIM's listing.
  bool ReceiveAll();
  // Starts draining the Outbox.
  bool SendAll();
  // Deletes one message on the phone and waits for the answer. An unsupported memory becomes the SIM, in the caller's
  // variable too. Errors of the SMS object go to the caller.
  bool DeleteSMSFromPhone(std::int32_t& mem, const std::int16_t& index);
  // 1: the SIM is full; 0: it is not, or its capacity is not known; -1: no SMS object, or the phone failed to answer.
  std::int16_t isSimFull();
  // Creates timers, helper and phone connection. True unless an error occurred: no phone is no error.
  bool InitCAPIObjects();

 protected:
  void terminate() noexcept override;

 private:
  friend class SMSHandlerProbe;  // what tests look through
  using TransactionCollection = SharedCollection<Ref<clsTransaction>>;
  using MessageCollection = SharedCollection<sms_objectlib::ShortMessage>;

  void Class_Terminate() noexcept;

  // Events.
  void m_objCAPI_OnNotifyCellPhoneConnected(std::int32_t bConnected, const Object& CellPhone);
  void m_objSMS_OnNotifyResponse(std::int32_t TransactionID, std::int32_t status, const Object& ShortMessage);
  void m_objTimer_Timer(std::int32_t Milliseconds);
  void m_objGuardTimer_Timer(std::int32_t Milliseconds);
  void m_objOutboxItems_ItemAdd(const Object& Item);
  void m_objDeletedItemsItems_ItemAdd(const Object& Item);

  // Transactions.
  static String TransactionKey(std::int32_t lTransactionID);
  void AddTransaction(std::int32_t lTransactionID, StringView strEntryID, enTransactionType enType);
  Ref<clsTransaction> FindTransaction(std::int32_t lTransactionID) const;

  // Sending.
  bool SetupSendMessage();
  bool SendMessage(StringView strEntryID, StringView To, StringView MessageText);
  bool SetupGuard(std::int32_t nParts);
  void HandleSendFailure(StringView strEntryID);
  bool CreateErrorReport(StringView To, StringView SenderName, StringView Body, Date SentOn);

  // Feedback through the Office Assistant. Later mail clients have none: that counts as off, everywhere.
  bool AssistantOn() const;
  void SaveAssistantState() noexcept;
  void StartAssistantAnimation();
  void StopAssistantAnimation();
  void ShowAssistantBalloon(StringView Heading, StringView Text, StringView Label);

  // Replies, by state.
  void ResponseWhileListing(std::int32_t TransactionID, std::int32_t status, const sms_objectlib::ShortMessage& sms);
  void ResponseWhileSending(std::int32_t TransactionID, std::int32_t status);
  void CompleteSend(const clsTransaction& transaction);

  // Receiving.
  bool WaitForMessages(std::int32_t milliseconds);
  void ListStores(sms_objectlib::StatusFilter status, bool& simResult);
  bool ListMessage(const std::int32_t& store, const std::int32_t& status);
  String CreateMessage(const sms_objectlib::ShortMessage& sms);
  bool MoveMessage(StringView entryId, const outlook::MAPIFolder& fromFolder, const outlook::MAPIFolder& toFolder,
                   bool markRead = false);
  void DeleteCollectedMessages();

  // Duplicates.
  bool FindTextMessage(std::int32_t folder, StringView recipient, StringView subject, String body,
                       const String& sentOn);
  bool FindInFolderCollection(std::int32_t folder, StringView recipient, StringView subject, String& body,
                              const String& sentOn);
  Ref<coltextmessage> GetFolderCollection(std::int32_t folder);
  bool BuildFolderCollection(const outlook::MAPIFolder& folder, const Ref<coltextmessage>& colFolder);
  static String BuildSubject(StringView text);
  static String TrimTrailingLineBreaks(StringView text);
  static void NormaliseBody(String& body);
  void CompareStrings(StringView s1, StringView s2);

  // Addresses.
  static String ExtractPhoneNumber(StringView address);
  static String ExtractParenthesisedNumber(StringView text);
  String GetServiceCentreAddress();
  String GetOwnAddress();
  String BuildFromAddress(StringView number);

  Ref<TransactionCollection> m_colTransactions;
  dvmworkerlib::CellPhone m_objCellPhone;
  outlook::Application m_objOutlookApp;
  outlook::NameSpace m_objNameSpace;
  outlook::MAPIFolder m_objInbox;
  outlook::MAPIFolder m_objDeletedItems;
  outlook::MAPIFolder m_objOutbox;
  outlook::MAPIFolder m_objSentMail;
  outlook::MAPIFolder m_objContacts;
  String m_strEntryID;  // the Outbox item whose send is in progress
  bool m_bAssistantOn = false;
  bool m_bAssistantVisible = false;
  std::int32_t m_lDeleteStatus = 0;
  txtmsghelper::TxtMsg m_objMapiHelper;
  std::int32_t m_nState = IDLE;
  Ref<clstimeout> m_objTimeOut;
  std::int32_t m_nGuardParts = 0;
  bool m_bReceiveAll = false;
  std::int32_t m_bPhoneConnected = 0;
  std::int32_t m_usedSimMemory = 0;
  std::int32_t m_maxSimCapacity = 0;
  String m_strAssistantTitle = u"Text Message Service";
  String m_strAssistantHeading = u"No phone is available to send text messages.";
  String m_strAssistantLabel = u"The text message has been put in your outbox.";
  Ref<MessageCollection> m_smsToDelete;
  Ref<coltextmessage> m_colInbox;
  Ref<coltextmessage> m_colDeletedItems;
  // Records of the items that the present ReceiveAll has created. The Inbox cache deliberately does not follow them,
  // but the same message may lie in phone memory and on the SIM.
  Ref<coltextmessage> m_colCreated;

  WithEvents<sms_objectlib::SMS> m_objSMS{
      this, on<sms_objectlib::SMSEvents::OnNotifyResponse, &clsSMSHandler::m_objSMS_OnNotifyResponse>};
  WithEvents<dvmworkerlib::Worker> m_objCAPI{
      this,
      on<dvmworkerlib::WorkerEvents::OnNotifyCellPhoneConnected, &clsSMSHandler::m_objCAPI_OnNotifyCellPhoneConnected>};
  WithEvents<timermm::Timer> m_objTimer{this, on<timermm::TimerEvents::Timer, &clsSMSHandler::m_objTimer_Timer>};
  WithEvents<timermm::Timer> m_objGuardTimer{this,
                                             on<timermm::TimerEvents::Timer, &clsSMSHandler::m_objGuardTimer_Timer>};
  WithEvents<outlook::Items> m_objOutboxItems{
      this, on<outlook::ItemsEvents::ItemAdd, &clsSMSHandler::m_objOutboxItems_ItemAdd>};
  WithEvents<outlook::Items> m_objDeletedItemsItems{
      this, on<outlook::ItemsEvents::ItemAdd, &clsSMSHandler::m_objDeletedItemsItems_ItemAdd>};
};

}  // namespace addin

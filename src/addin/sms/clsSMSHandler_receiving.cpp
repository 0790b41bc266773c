// Receiving and SIM housekeeping.
//
// Listing is asynchronous on the phone's side: ReceiveAll asks the SMS object to list a memory, and the answers arrive
// as events, one message each, inside ListMessage's wait. Nothing is deleted while a listing runs: what is to go is
// collected in m_smsToDelete and deleted at the end.

#include "addin/common/basapi.h"
#include "addin/common/bastext.h"
#include "addin/diag/basDbgOut.h"
#include "addin/diag/basDebug.h"
#include "addin/settings/options.h"
#include "addin/sms/clsSMSHandler.h"

namespace addin {
namespace {

using sms_objectlib::cpSMSMEMessageStore;
using sms_objectlib::cpSMSSIMMessageStore;

constexpr std::int32_t listingTimeOut = 5000;  // milliseconds from one answer to the next
constexpr std::int32_t longWait = 60000;       // of a wait that only an answer ends; it is resumed for ever
constexpr std::int32_t capacityUnknown = -1;

// A folder as text: its default member; a folder without one gives its name, and no folder gives nothing.
String folderText(const outlook::MAPIFolder& folder) {
  String text;
  if (!folder) return text;
  const LateBound late(folder);
  try {
    text = late.get<String>(u"");
  } catch (const RuntimeError&) {
    onErrorResumeNext([&] { text = late.get<String>(u"Name"); });
  }
  return text;
}

// The store to ask for a deletion: an unsupported one becomes the SIM.
bool storageNotSupported(bool supported, std::int32_t store) {
  if (supported) return false;
  DbgOut(2, u"Storage not supported");
  if (store == cpSMSSIMMessageStore) return false;
  DbgOut(2, u"Storage not SM - change it to SM");
  return true;
}

}  // namespace

bool clsSMSHandler::ReceiveAll() {
  // A run that starts inside another one's wait shares the records of created items.
  const bool outermost = !m_colCreated;
  const bool result = onErrorLog<bool>([&](bool& simResult) {
    DbgOut(2, u"Inside Function ReceiveAll");
    DbgOut(2, u"Create m_smsToDelete collection");
    m_smsToDelete = make<MessageCollection>();
    if (m_nState != IDLE) raiseError(-1, u"ReceiveAll", u"Not idle!");

    if (AssistantOn()) StartAssistantAnimation();
    DbgOut(2, u"Inside ReceiveAll Function - m_bReceiveAll = ", m_bReceiveAll);
    if (m_bReceiveAll) {
      m_colInbox = nullptr;
      m_colDeletedItems = nullptr;
      m_colCreated = make<coltextmessage>();  // what was created so far is in the Inbox, which is read afresh
      ListStores(sms_objectlib::statusAll, simResult);
      m_bReceiveAll = false;
    } else {
      if (outermost) m_colCreated = make<coltextmessage>();
      ListStores(sms_objectlib::statusUnread, simResult);
    }
    DbgOut(2, u"ListMessage function called");
    if (AssistantOn()) StopAssistantAnimation();

    DbgOut(2, u"Go through collection and delete SMSs from the SIM card");
    DeleteCollectedMessages();
    DbgOut(2, u"Clear the m_smsToDelete collection");
    m_smsToDelete = nullptr;
  });
  if (outermost) m_colCreated = nullptr;
  return result;
}

void clsSMSHandler::ListStores(sms_objectlib::StatusFilter status, bool& simResult) {
  bool bRet = ListMessage(cpSMSMEMessageStore, status);
  DbgOut(2, u"ListMessage - cpSMSMEMessageStore - bRet = ", bRet);
  if (!bRet) raiseError(3, u"ReceiveAll", u"Error during ListMessage, Store:1");
  bRet = ListMessage(cpSMSSIMMessageStore, status);
  DbgOut(2, u"ListMessage - cpSMSSIMMessageStore - bRet = ", bRet);
  if (!bRet) raiseError(3, u"ReceiveAll", u"Error during ListMessage, Store:2");
  simResult = bRet;
}

void clsSMSHandler::DeleteCollectedMessages() {
  // Held: a run that starts while a deletion waits replaces the field.
  const Ref<MessageCollection> messages = m_smsToDelete;
  DbgOut(2, u"The number of the SMSs in collection = ", messages->Count());
  for (std::int32_t i = 1; i <= messages->Count(); ++i) {
    const sms_objectlib::ShortMessage sms = messages->Item(i);
    const bool supported = m_objSMS->IsStorageSupported(sms.Store());
    DbgOut(2, u"Delete SMS - IsStorageSupported = ", supported);
    if (storageNotSupported(supported, sms.Store())) sms.Store(cpSMSSIMMessageStore);
    std::int32_t store = sms.Store();
    const std::int16_t index = sms.Index();
    // One that fails does not stop the others. Nor does a quit message that ends its wait: the rest is asked for
    // without waiting. Left on the SIM, it would stay there, since the next run finds it in the Inbox.
    DeleteSMSFromPhone(store, index);
    DbgOut(2, u"Delete from SIM - index = ", index);
    DbgOut(2, u"Delete from SIM - storage = ", sms.Store());
  }
}

// Sleeps until there is something to do and serves it. False when the wait is over for good: the mail client quits, or
// this object was torn down from inside the wait.
bool clsSMSHandler::WaitForMessages(std::int32_t milliseconds) {
  return system().pump.wait(milliseconds) && !hasEnded();
}

bool clsSMSHandler::ListMessage(const std::int32_t& store, const std::int32_t& status) {
  return onErrorLog<bool>([&](bool& result) {
    if (m_nState != IDLE) {
      DbgOut(2, u"Error:5, Not in a IDLE state, ListMessage");
      return;
    }
    if (!m_objCAPI || !m_objCAPI->IsConnected() || !m_objSMS) return;
    m_objTimeOut->InitTimeOut(listingTimeOut);
    DbgOut(2, u"List Message - InitTimeOut 5000ms");
    m_nState = STATE_LIST;
    m_objSMS->ListMessages(store, status);
    DbgOut(2, u"Wait for async operation to complete");
    while (m_nState != IDLE) {
      if (m_objTimeOut->TimeOut()) raiseError(6, u"ListMessage", u"Operation Timed Out");
      if (!WaitForMessages(m_objTimeOut->MillisecondsLeft())) return;
    }
    result = true;
  });
}

String clsSMSHandler::CreateMessage(const sms_objectlib::ShortMessage& sms) {
  return onErrorLog<String>([&](String& entryId) {
    DbgOut(2, u"Inside Function CreateMessage");
    DbgOut(2, u"Check if text message should be deleted from SIM when the same found in the Inbox");
    const std::int32_t autoRemove = OptionNumber(u"SendReceive_AutoRemove", 0);
    DbgOut(2, u"Delete from SIM when displayed in Inbox:", autoRemove);

    DbgOut(2, u"Get short message properties");
    const String recipient = GetOwnAddress();
    const String sender = BuildFromAddress(sms.Originator());
    const String body = sms.Text();
    const String subject = BuildSubject(body);
    const String timeStamp = sms.TimeStamp();
    Date date;
    if (!ParseTimeStamp(timeStamp, date)) date = Now();

    DbgOut(2, u"Check for duplicate messages in Inbox");
    bool dupeFound = FindTextMessage(FOLDER_INBOX, recipient, subject, body, timeStamp);
    if (!dupeFound) {
      DbgOut(2, u"No duplicate message in Inbox - Check in Deleted Items folder");
      dupeFound = FindTextMessage(FOLDER_DELETEDITEMS, recipient, subject, body, timeStamp);
      if (dupeFound) {  // deleted in the mail client: it goes from the SIM too, whatever auto-remove says
        DbgOut(2, u"The same message fond on the SIM and in Deleted Items folder");
        DbgOut(2, u"instaed to delete the SMS, put it in the m_smsToDeleteCollection");
        m_smsToDelete->Add(sms);
      }
    }
    DbgOut(2, u"DupeFound:", dupeFound);
    if (dupeFound || !m_objMapiHelper) return;

    entryId = m_objMapiHelper.CreateMessage(m_objOutlookApp, MESSAGE_CLASS, recipient, sender, subject, body, date,
                                            date, timeStamp);
    if (!entryId.empty() && m_colCreated) {
      String normalised = body;
      NormaliseBody(normalised);
      m_colCreated->Add(recipient, timeStamp, normalised);
    }
    DbgOut(2, u"CreateMessage:", entryId);
    // Whatever EntryID came: a helper that raises no error has taken the message over.
    if (autoRemove != 0) {
      DbgOut(2, u"User wants to remove message from the SIM card when readed in outlook");
      DbgOut(2, u"instaed to delete the SMS, put it in the m_smsToDeleteCollection");
      m_smsToDelete->Add(sms);
    }
  });
}

bool clsSMSHandler::DeleteSMSFromPhone(std::int32_t& mem, const std::int16_t& index) {
  DbgOut(2, u"Inside Function DeleteSMSFromPhone");
  m_nState = STATE_DELETE;  // whatever it was: this operation does not ask
  const bool supported = m_objSMS->IsStorageSupported(mem);
  DbgOut(2, u"DeleteSMSFromPhone - IsStorageSupported = ", supported);
  if (storageNotSupported(supported, mem)) mem = cpSMSSIMMessageStore;
  const std::int32_t transactionId = m_objSMS->DeleteMessage(mem, index);
  DbgOut(2, u"Delete SMS in phone: transaction id: ", transactionId);

  // No time-out, by design: an answer that never comes keeps this wait going.
  bool answered = true;
  while (answered && m_nState != IDLE) answered = WaitForMessages(longWait);

  const bool result = answered && (m_lDeleteStatus == sms_objectlib::resultSuccess ||
                                   m_lDeleteStatus == sms_objectlib::resultEmptySlot);
  DbgOut(2, u"DeleteSMSFromPhone = ", result);
  return result;
}

std::int16_t clsSMSHandler::isSimFull() {
  std::int16_t result = -1;
  onErrorLog([&] {
    DbgOut(2, u"Inside Function isSimFull");
    if (m_objSMS) {
      if (m_maxSimCapacity == capacityUnknown) {
        m_maxSimCapacity = m_objSMS->StorageCapacity(cpSMSSIMMessageStore);
        DbgOut(2, u"Max SIM Capacity = ", m_maxSimCapacity);
      }
      m_usedSimMemory = m_objSMS->StorageUsed(cpSMSSIMMessageStore);
      DbgOut(2, u"Used SIM Memory = ", m_usedSimMemory);
      result = 0;
      if (m_maxSimCapacity <= 0) {
        DbgOut(2, u"m_maxSimCapacity is less or equal than zero (error code) - do not compare it with m_usedSimMemory");
      } else {
        DbgOut(2, u"m_maxSimCapacity is larger than zero - compare it with m_usedSimMemory");
        if (m_usedSimMemory < m_maxSimCapacity) {
          DbgOut(2, u"UsedMemory is less than SimCapacity");
        } else {
          result = 1;
        }
      }
    }
    DbgOut(2, u"isSimFull=", result);
  });
  return result;
}

bool clsSMSHandler::MoveMessage(StringView entryId, const outlook::MAPIFolder& fromFolder,
                                const outlook::MAPIFolder& toFolder, bool markRead) {
  // Copies: moving raises events, and those may empty the fields that these came from.
  const String id(entryId);
  const outlook::MAPIFolder from = fromFolder;
  const outlook::MAPIFolder to = toFolder;
  return onErrorLog<bool>([&](bool& bMoved) {
    DbgOut(2, u"Inside Function MoveMessage");
    const String fromText = folderText(from);
    const String toText = folderText(to);
    DbgOut(2, u"MoveMessage - EntryId: ", id, u" From: ", fromText, u" To: ", toText);
    outlook::Items items;
    if (from && to) {
      DbgOut(2, u"MoveMessage - restrict folder items to TextMessage's");
      items = from.Items().Restrict(MESSAGE_CLASS_FILTER);
    }
    const std::int32_t count = from && to ? items.Count() : 0;
    for (std::int32_t i = 1; i <= count; ++i) {
      const outlook::MailItem item = items.Item(i);
      if (item.EntryID() != id) continue;
      if (markRead) item.UnRead(false);
      item.Move(to);
      bMoved = true;
      DbgOut(2, u"MoveMessage = True");
      DbgOut(2, u"To folder = ", folderText(to));
      break;
    }
    DbgOut(2, u"MoveMessage - bMoved: ", bMoved);
  });
}

void clsSMSHandler::m_objDeletedItemsItems_ItemAdd(const Object& Item) {
  onErrorLog([&] {
    DbgOut(2, u"Item added to Deleted Items folder");
    if (LateBound(Item).get<String>(u"MessageClass") != MESSAGE_CLASS) return;
    const bool connected = m_bPhoneConnected != 0;  // the worker's word, not the SMS object's presence
    DbgOut(2, u"YES, the item is our mail item - check if phone connected");
    DbgOut(2, u"m_bPhoneConnected = ", connected ? std::int32_t{-1} : std::int32_t{0});
    if (!connected) return;
    DbgOut(2, u"YES, the phone is connected");
    m_bReceiveAll = true;
    ReceiveAll();
    DbgOut(2, u"ReceiveAll function called.");
  });
}

}  // namespace addin

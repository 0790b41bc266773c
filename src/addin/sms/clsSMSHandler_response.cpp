// Response dispatch. The engine does not ask what kind of transaction an answer belongs to: it looks at its own state,
// since only one request is ever outstanding.

#include "addin/diag/basDbgOut.h"
#include "addin/diag/basDebug.h"
#include "addin/sms/clsSMSHandler.h"

namespace addin {
namespace {

constexpr std::int32_t listingGap = 5000;  // milliseconds between two answers of a listing

}  // namespace

void clsSMSHandler::m_objSMS_OnNotifyResponse(std::int32_t TransactionID, std::int32_t status,
                                              const Object& ShortMessage) {
  onErrorLog([&] {
    DbgOut(2, u"m_objSMS_OnNotifyResponse - TransID:", TransactionID, u", Status:", status, u", State:", m_nState);
    if (m_objGuardTimer) {  // whatever the state, and whatever was asked
      DbgOut(2, u"disablar guard timer");
      m_objGuardTimer->Enabled(false);
    }
    switch (m_nState) {
      case STATE_LIST:
        ResponseWhileListing(TransactionID, status, as<sms_objectlib::ShortMessage>(ShortMessage));
        break;
      case STATE_SEND:
        ResponseWhileSending(TransactionID, status);
        break;
      case STATE_DELETE:
        m_lDeleteStatus = status;
        m_nState = IDLE;
        DbgOut(2, u"STATE_DELETE - Response from delete SMS: ", TransactionID, u" status: ", status);
        break;
      default:  // a late answer, for instance after the guard ran out: dropped
        break;
    }
  });
}

void clsSMSHandler::ResponseWhileListing(std::int32_t TransactionID, std::int32_t status,
                                         const sms_objectlib::ShortMessage& sms) {
  if (!sms) {
    DbgOut(2, u"No message, tranid: ", TransactionID, u" status: ", status);
    m_nState = IDLE;
    return;
  }
  DbgOut(2, u"STATE_LIST - Got one message, tranid: ", TransactionID, u" status: ", status);
  const sms_objectlib::MessageStatus stored = sms.Status();
  if (stored == sms_objectlib::receivedUnread || stored == sms_objectlib::receivedRead) {
    const String entryId = CreateMessage(sms);
    DbgOut(2, u"CreateMessage called - message will be created in outbox");
    DbgOut(2, u"Return from CreateMessage call - strEntryId = ", entryId);
    DbgOut(2, u"Check if message lengt is larger than 0");
    if (!entryId.empty()) {
      DbgOut(2, u"YES, Move message to Inbox: ", entryId);
      MoveMessage(entryId, m_objOutbox, m_objInbox);
    }
  }
  if (status == sms_objectlib::resultMoreData) {
    DbgOut(2, u"More data to come, don't remove transaction from collection");
    DbgOut(2, u"Extend timeout");
    m_objTimeOut->InitTimeOut(listingGap);
  } else {
    m_nState = IDLE;
  }
}

void clsSMSHandler::ResponseWhileSending(std::int32_t TransactionID, std::int32_t status) {
  if (status != sms_objectlib::resultSuccess) {
    DbgOut(2, u"SendMessage Failed!!! TransactionID: ", TransactionID, u" Status: ", status);
    HandleSendFailure(m_strEntryID);  // counted on the item in progress, whatever ID the answer carries
  } else {
    DbgOut(2, u"STATE_SEND - Send went well, remove transaction and move message to sent items folder");
    if (m_colTransactions && m_colTransactions->Count() > 0) {
      const Ref<clsTransaction> transaction = FindTransaction(TransactionID);
      if (transaction && transaction->TransactionID == TransactionID) CompleteSend(*transaction);
    }
  }
  m_nState = IDLE;
}

void clsSMSHandler::CompleteSend(const clsTransaction& transaction) {
  if (transaction.TransactionType == enTransactionType::Send) {
    DbgOut(2, u"Move message to sent items, and change status to read - EntryID = ", transaction.EntryID);
    MoveMessage(transaction.EntryID, m_objOutbox, m_objSentMail, true);
  }
  DbgOut(2, u"Remove from transaction collection - TransactionID = ", transaction.TransactionID);
  m_colTransactions->Remove(TransactionKey(transaction.TransactionID));
  m_nState = IDLE;
  if (AssistantOn()) StopAssistantAnimation();
  SetupSendMessage();  // the next text message of the Outbox goes out
}

}  // namespace addin

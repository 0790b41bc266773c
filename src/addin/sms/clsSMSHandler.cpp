// Start, phone connection, properties, transactions and end of the engine.

#include "addin/sms/clsSMSHandler.h"

#include "addin/common/basapi.h"
#include "addin/diag/basDbgOut.h"
#include "addin/diag/basDebug.h"

namespace addin {
namespace {

// The position of the first phone that says it is connected; -1 when none does.
std::int32_t firstConnectedPhone(const dvmworkerlib::CellPhones& phones, std::int32_t count) {
  for (std::int32_t i = 0; i < count; ++i)
    if (phones.Item(i).IsConnected()) return i;
  return -1;
}

}  // namespace

bool clsSMSHandler::InitCAPIObjects() {
  return onErrorLog<bool>([&](bool& result) {
    DbgOut(2, u"Inside Function InitCAPIObjects");
    m_objCellPhone = nullptr;
    m_objSMS = nullptr;
    m_bReceiveAll = true;
    m_usedSimMemory = -1;
    m_maxSimCapacity = -1;

    DbgOut(2, u"Create timer");
    m_objTimer = as<timermm::Timer>(CreateObject(timermm::progIdTimer));
    m_objGuardTimer = as<timermm::Timer>(CreateObject(timermm::progIdTimer));
    m_nState = IDLE;

    DbgOut(2, u"Create timeout object");
    m_objTimeOut = make<clstimeout>();
    DbgOut(2, u"Create transaction collection");
    m_colTransactions = make<TransactionCollection>();
    DbgOut(2, u"Create MAPI helper object");
    m_objMapiHelper = as<txtmsghelper::TxtMsg>(CreateObject(txtmsghelper::progIdTxtMsg));

    DbgOut(2, u"Create CAPI objects");
    Object worker;
    onErrorResumeNext([&] { worker = CreateObject(dvmworkerlib::progIdWorker); });  // without one: no phone support
    m_objCAPI = as<dvmworkerlib::Worker>(worker);
    if (!m_objCAPI) {
      result = true;
      return;
    }

    const dvmworkerlib::CellPhones phones = m_objCAPI->CellPhones();
    const std::int32_t count = phones.Count();
    const std::int32_t connected = count > 0 ? firstConnectedPhone(phones, count) : -1;
    if (connected >= 0) {
      m_bPhoneConnected = 1;
      DbgOut(2, u"If phone connected - Get reference to CellPhone object");
      m_objCellPhone = phones.Item(connected);
      DbgOut(2, u"If phone connected - Get reference to SMS object");
      m_objSMS = m_objCellPhone.SMS();
      DbgOut(2, u"If phone connected - Notify add in that cell phone is connected");
      raiseEvent(Events::OnPhoneConnected, true);
    }
    result = true;
  });
}

void clsSMSHandler::m_objCAPI_OnNotifyCellPhoneConnected(std::int32_t bConnected, const Object& CellPhone) {
  onErrorLog([&] {
    m_bPhoneConnected = bConnected;
    DbgOut(2, u"m_bPhoneConnected = ", m_bPhoneConnected);
    if (bConnected != 0) {
      m_nState = IDLE;  // an operation in progress is forgotten; its transaction stays in the collection
      m_bReceiveAll = true;
      DbgOut(2, u"New phone connected!");
      if (m_objCellPhone && m_objCellPhone.IsConnected()) {
        DbgOut(2, u"Old phone still connected, use this");
      } else {
        DbgOut(2, u"Use new phone");
        m_objSMS = nullptr;
        m_objCellPhone = nullptr;
        m_objCellPhone = as<dvmworkerlib::CellPhone>(CellPhone);
        m_objSMS = m_objCellPhone.SMS();
      }
    } else {
      DbgOut(2, u"Phone disconnected!");  // m_nState stays: the guard timer or the next connect notice ends a send
      m_objSMS = nullptr;
      m_objCellPhone = nullptr;
    }
    raiseEvent(Events::OnPhoneConnected, bConnected != 0);
  });
}

void clsSMSHandler::DeletedItems(const outlook::MAPIFolder& folder) {
  onErrorLog([&] {
    m_objDeletedItems = folder;
    m_objDeletedItemsItems = folder.Items();
  });
}

// Lopsided on purpose: reading the property gives no object, and its only effect is that the Inbox becomes the Deleted
// Items folder. The engine's own code uses the member directly.
outlook::MAPIFolder clsSMSHandler::DeletedItems() {
  m_objInbox = m_objDeletedItems;
  return {};
}

void clsSMSHandler::OutlookApplication(const outlook::Application& application) {
  onErrorLog([&] {
    m_objOutlookApp = application;
    m_objNameSpace = m_objOutlookApp.GetNamespace(u"MAPI");
    SaveAssistantState();  // later mail clients have no Assistant: that counts as off
  });
}

void clsSMSHandler::Outbox(const outlook::MAPIFolder& folder) {
  onErrorLog([&] {
    m_objOutbox = folder;
    m_objOutboxItems = folder.Items();
  });
}

String clsSMSHandler::TransactionKey(std::int32_t lTransactionID) { return concat(u"Key:", lTransactionID); }

void clsSMSHandler::AddTransaction(std::int32_t lTransactionID, StringView strEntryID, enTransactionType enType) {
  DbgOut(2, u"Add transaction, tranid: ", lTransactionID, u" type: ", std::int32_t{enType});
  if (!m_colTransactions) return;
  const auto transaction = make<clsTransaction>();
  transaction->TransactionID = lTransactionID;
  DbgOut(2, u"Transaction ID = ", lTransactionID);
  transaction->EntryID = strEntryID;
  DbgOut(2, u"strEntryID = ", strEntryID);
  transaction->TransactionType = enType;
  DbgOut(2, u"Transaction type = ", std::int32_t{enType});
  m_colTransactions->Add(transaction, TransactionKey(lTransactionID));
}

Ref<clsTransaction> clsSMSHandler::FindTransaction(std::int32_t lTransactionID) const {
  Ref<clsTransaction> found;
  onErrorResumeNext([&] { found = m_colTransactions->Item(TransactionKey(lTransactionID)); });
  return found;
}

void clsSMSHandler::terminate() noexcept {
  Class_Terminate();
  // The rest goes with the object. It goes here already, because memory may be held by a wait further down the stack
  // while the mail client must not be.
  onErrorResumeNext([&] { m_smsToDelete = nullptr; }, [&] { m_colInbox = nullptr; },
                    [&] { m_colDeletedItems = nullptr; }, [&] { m_objContacts = nullptr; });
}

void clsSMSHandler::Class_Terminate() noexcept {
  onErrorResumeNext(
      [&] {
        if (m_objGuardTimer) m_objGuardTimer->Enabled(false);
      },
      [&] { m_objGuardTimer = nullptr; },
      [&] {
        if (m_objTimer) m_objTimer->Enabled(false);
      },
      [&] { m_objTimer = nullptr; }, [&] { m_colTransactions = nullptr; }, [&] { m_objInbox = nullptr; },
      [&] { m_objDeletedItemsItems = nullptr; }, [&] { m_objDeletedItems = nullptr; },
      [&] { m_objOutboxItems = nullptr; }, [&] { m_objOutbox = nullptr; }, [&] { m_objSentMail = nullptr; },
      [&] { m_objMapiHelper = nullptr; }, [&] { m_objSMS = nullptr; }, [&] { m_objCellPhone = nullptr; },
      [&] { m_objCAPI = nullptr; }, [&] { m_objNameSpace = nullptr; }, [&] { m_objOutlookApp = nullptr; });
}

}  // namespace addin

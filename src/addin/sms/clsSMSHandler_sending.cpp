// Sending: the send timer picks the first text message of the Outbox, SendMessage hands it to the phone, and the guard
// timer gives up when the phone does not answer.

#include "addin/common/basapi.h"
#include "addin/diag/basDbgOut.h"
#include "addin/diag/basDebug.h"
#include "addin/platform/arithmetic.h"
#include "addin/sms/clsSMSHandler.h"

namespace addin {
namespace {

constexpr std::int32_t sendInterval = 500;
constexpr std::int32_t sendResolution = 100;
constexpr std::int32_t guardInterval = 25000;  // a guard part: what the phone is given for 160 characters
constexpr std::int32_t guardResolution = 1000;
constexpr std::int32_t charactersPerPart = 160;
constexpr std::int32_t failuresUntilReport = 3;

void arm(const timermm::Timer& timer, std::int32_t periodic, std::int32_t interval, std::int32_t resolution) {
  timer.Enabled(false);
  timer.Periodic(periodic);
  timer.Interval(interval);
  timer.Resolution(resolution);
  timer.Enabled(true);
}

bool isMailItem(const outlook::MailItem& item) { return item.Class() == outlook::olMail; }

}  // namespace

bool clsSMSHandler::SendAll() {
  return onErrorLog<bool>([&](bool& result) {
    DbgOut(2, u"Inside Function SendAll");
    if (m_nState != IDLE) {
      DbgOut(0, u"SendAll - Not Idle");
      return;
    }
    const bool armed = SetupSendMessage();
    DbgOut(2, u"SendAll = ", armed);
    result = SetupSendMessage();  // twice on purpose: the second call restarts the one-shot timer
  });
}

// No handler of its own: errors go to the caller.
bool clsSMSHandler::SetupSendMessage() {
  if (!IsPhoneConnected()) raiseError(-1, u"SetupSendMessage", u"No phone connected");
  DbgOut(2, u"SetupSendMessage: ", GetTickCount());
  if (!m_objTimer) raiseError(6, u"SetupSendMessage", u"No timer object");
  arm(m_objTimer, 0, sendInterval, sendResolution);
  return true;
}

void clsSMSHandler::m_objTimer_Timer(std::int32_t /*Milliseconds*/) {
  onErrorLog([&] {
    DbgOut(2, u"m_objTimer_Timer: ", GetTickCount());
    const outlook::Items items = m_objOutbox.Items().Restrict(MESSAGE_CLASS_FILTER);
    const std::int32_t count = items.Count();
    for (std::int32_t i = 1; i <= count; ++i) {
      const outlook::MailItem item = items.Item(i);
      if (!isMailItem(item) || !m_objMapiHelper || item.MessageClass() != MESSAGE_CLASS) continue;
      const String messageText = item.Body();
      const String topic = item.ConversationTopic();
      const String recipient = topic.substr(0, topic.find(TOPIC_SEPARATOR));
      const String entryId = item.EntryID();  // SendMessage's calls may serve another tick, which replaces the field
      m_strEntryID = entryId;
      // The state is SendMessage's business: a refused one counts as a failure of the item like any other.
      if (!SendMessage(entryId, recipient, messageText)) HandleSendFailure(m_strEntryID);
      return;
    }
  });
}

bool clsSMSHandler::SendMessage(StringView strEntryID, StringView To, StringView MessageText) {
  return onErrorLog<bool>([&](bool& result) {
    DbgOut(2, u"Inside Function SendMessage");
    if (m_nState != IDLE) {
      DbgOut(2, u"Error:5, Not in a IDLE state, SendMessage");
      return;
    }
    if (!m_objCellPhone || !m_objCellPhone.IsConnected()) return;

    const String number = ExtractPhoneNumber(To);
    DbgOut(2, u"[SendMessage]EntryID:", strEntryID);
    DbgOut(2, u"[SendMessage]To:", number);
    DbgOut(2, u"[SendMessage]MessageText:", MessageText);
    if (number.empty() || !m_objSMS) return;
    const sms_objectlib::ShortMessage message = m_objSMS->CreateShortMessage();
    if (!message) return;

    if (AssistantOn()) StartAssistantAnimation();
    m_nState = STATE_SEND;
    const std::int32_t parts = static_cast<std::int32_t>(MessageText.size()) / charactersPerPart + 1;
    DbgOut(2, u"Guard timmer set to [", parts, u"] parts");
    SetupGuard(parts);

    message.ServiceCentre(GetServiceCentreAddress());
    message.Destination(number);
    message.Text(MessageText);
    const std::int32_t transactionId = message.Send();
    AddTransaction(transactionId, strEntryID, enTransactionType::Send);
    DbgOut(2, u"Inside SendMessage Function - AddTransaction called");
    result = true;
  });
}

// No handler of its own: errors go to the caller.
bool clsSMSHandler::SetupGuard(std::int32_t nParts) {
  DbgOut(2, u"SetupGuard [", checkedMultiply(nParts, guardInterval), u"]ms");
  DbgOut(2, u"SetupGuard ", Now());
  if (!m_objGuardTimer) raiseError(6, u"SetupGuard", u"No guard timer object");
  m_nGuardParts = nParts;
  arm(m_objGuardTimer, 1, guardInterval, guardResolution);
  return true;
}

void clsSMSHandler::m_objGuardTimer_Timer(std::int32_t Milliseconds) {
  onErrorLog([&] {
    DbgOut(2, u"Guard time passed! ", Now());
    DbgOut(2, u"Guard time passed ms: ", Milliseconds);
    m_nGuardParts = checkedAdd(m_nGuardParts, -1);
    DbgOut(2, u"Number of parts left:", m_nGuardParts);
    if (m_nGuardParts >= 1) return;
    m_objGuardTimer->Enabled(false);
    HandleSendFailure(m_strEntryID);
    m_nState = IDLE;  // only now; and the send timer is not armed again
  });
}

void clsSMSHandler::HandleSendFailure(StringView strEntryID) {
  const String entryId(strEntryID);  // the caller's is m_strEntryID, which a nested send may replace
  outlook::MailItem item;
  bool isOther = false;  // stays so when the question fails: only an item that says it is no mail item is let off
  onErrorResumeNext(
      [&] {
        if (AssistantOn()) StopAssistantAnimation();
      },
      [&] { item = m_objOutbox.Application().GetNamespace(u"MAPI").GetItemFromID(entryId, m_objOutbox.StoreID()); },
      [&] { isOther = !isMailItem(item); });
  if (!item || isOther) return;

  std::int32_t failures = 0;
  onErrorResumeNext([&] { failures = CLng(item.Mileage()); }, [&] { DbgOut(2, u"Failed count:", failures); },
                    [&] { failures = checkedAdd(failures, 1); }, [&] { item.Mileage(concat(failures)); },
                    [&] { item.Save(); });
  if (failures < failuresUntilReport) return;

  // A report that fails is deliberately not looked at: the item goes in any case, or it would be tried for ever.
  onErrorResumeNext(
      [&] {
        const String to = item.To();
        const String senderName = item.SenderName();
        const String body = item.Body();
        CreateErrorReport(to, senderName, body, item.SentOn());
      },
      [&] { item.Delete(); });
}

// No handler of its own: errors go to the caller.
bool clsSMSHandler::CreateErrorReport(StringView To, StringView SenderName, StringView Body, Date SentOn) {
  const auto fail = [](StringView description) { raiseError(-1, u"CreateErrorReport", description); };
  if (!m_objMapiHelper) fail(u"No m_objMapiHelper object");
  const String body = concat(u"The TextMessage Service was unable to deliver the following message.", CRLF, CRLF, Body);
  const String entryId = m_objMapiHelper.CreateMessage(m_objOutlookApp, MESSAGE_CLASS, To, SenderName,
                                                       u"TextMessage Service - Error Report", body, SentOn, Now(), u"");
  DbgOut(2, u"CreateMessage:", entryId);
  if (entryId.empty()) fail(u"Failed to create error report");
  if (!MoveMessage(entryId, m_objOutbox, m_objInbox)) fail(u"Failed to move error report");
  return true;
}

void clsSMSHandler::m_objOutboxItems_ItemAdd(const Object& Item) {
  onErrorLog([&] {
    if (m_nState != IDLE || !Item) return;
    DbgOut(2, u"m_objOutboxItems_ItemAdd, trigger a sendall");
    if (LateBound(Item).get<String>(u"MessageClass") == MESSAGE_CLASS && !IsPhoneConnected() && AssistantOn())
      ShowAssistantBalloon(m_strAssistantTitle, m_strAssistantHeading, m_strAssistantLabel);
    if (IsPhoneConnected()) SendAll();  // asked again: the balloon pumps messages
  });
}

}  // namespace addin

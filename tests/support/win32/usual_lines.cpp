// What the trace says while all is well; see installed_product.h.

#include "support/win32/installed_product.h"

namespace installed_product {

Lines connectingLines(Start start) {
  const Lines header{"mrktxtmsg (255) : *********** ProcessName: mrktxtmsg - Level: 2 - Time: #"};
  const bool first = start == Start::OfTheMailClient;
  return (first ? header : Lines{}) +
         Lines{"<==== MRKTXTMSG Version 1.0.0", first ? "Connectmode:1" : "Connectmode:0",
               "ActiveWindow is something"} +
         noLocalizer +
         Lines{"Added textmessage to new menu", "Added send&receive to tools menu", "Added about to help menu",
               "Added Help button to Help menu"};
}

Lines engineLines() {
  return {"Inside Function InitCAPIObjects",
          "Create timer",
          "Create timeout object",
          "Create transaction collection",
          "Create MAPI helper object",
          "Create CAPI objects",
          "If phone connected - Get reference to CellPhone object",
          "If phone connected - Get reference to SMS object",
          "If phone connected - Notify add in that cell phone is connected",
          "m_objSMSHandler_OnPhoneConnected: True"};
}

Lines startLines(Start start) {
  const Lines last = start == Start::OfTheMailClient ? Lines{"OnStartupComplete"} : Lines{};
  return connectingLines(start) + engineLines() + noLocalizer + last;
}

Lines disconnectedByUserLines() {
  return {"OnDisconnection",
          "Removed new button",
          "Removed send&receive button",
          "Removed delete button",
          "Removed Help button",
          "OnDisconnection - RemoveMode = ext_dm_UserClosed!!!!!!!!!!!!!!!!!!!!"};
}

Lines listingBegins() { return {"List Message - InitTimeOut 5000ms", "Wait for async operation to complete"}; }

Lines nothingListed(int state) {
  return {"m_objSMS_OnNotifyResponse - TransID:#, Status:0, State:" + std::to_string(state), "disablar guard timer",
          "No message, tranid: # status: 0"};
}

Lines storeListed(const char* store, bool listed) {
  return {"ListMessage - cpSMS" + std::string(store) + "MessageStore - bRet = " + (listed ? "True" : "False")};
}

Lines receivedNothing(bool everything) {
  return Lines{"Inside Function ReceiveAll", "Create m_smsToDelete collection",
               std::string("Inside ReceiveAll Function - m_bReceiveAll = ") + (everything ? "True" : "False")} +
         listingBegins() + nothingListed() + storeListed("ME", true) + listingBegins() + nothingListed() +
         storeListed("SIM", true) +
         Lines{"ListMessage function called", "Go through collection and delete SMSs from the SIM card",
               "The number of the SMSs in collection = 0", "Clear the m_smsToDelete collection"};
}

Lines messageBegins(const std::string& status) {
  return {"m_objSMS_OnNotifyResponse - TransID:#, Status:" + status + ", State:1", "disablar guard timer",
          "STATE_LIST - Got one message, tranid: # status: " + status, "Inside Function CreateMessage",
          "Check if text message should be deleted from SIM when the same found in the Inbox"};
}

Lines messageChecked(std::size_t inInbox, std::size_t inDeletedItems) {
  const Lines search{"Inside Function FindTextMessage", "Inside Function FindInFolderCollection",
                     "Inside Function GetFolderCollection", "Inside Function BuildFolderCollection",
                     "Restrict folder items to TextMessage's"};
  const Lines notFound{"GetFolderCollection called", "FindInFolderCollection = False"};
  return Lines{"Get short message properties", "Check for duplicate messages in Inbox"} + search +
         Lines(inInbox, "colfolder.Add called") + Lines{"Case FOLDER_INBOX - BuildFolderCollection called"} + notFound +
         Lines{"No duplicate message in Inbox - Check in Deleted Items folder"} + search +
         Lines(inDeletedItems, "colfolder.Add called") +
         Lines{"Case FOLDER_DELETEDITEMS -  BuildFolderCollection called"} + notFound + Lines{"DupeFound:False"};
}

Lines messageMoved() {
  return {"CreateMessage called - message will be created in outbox",
          "Return from CreateMessage call - strEntryId = #",
          "Check if message lengt is larger than 0",
          "YES, Move message to Inbox: #",
          "Inside Function MoveMessage",
          "MoveMessage - EntryId: # From: Outbox To: Inbox",
          "MoveMessage - restrict folder items to TextMessage's",
          "MoveMessage = True",
          "To folder = Inbox",
          "MoveMessage - bMoved: True"};
}

Lines sendTimerArmed() {
  return {"Inside Function SendAll", "SetupSendMessage: #", "SendAll = True", "SetupSendMessage: #"};
}

Lines reportMovedAndItemDeleted() {
  return {"CreateMessage:#",
          "Inside Function MoveMessage",
          "MoveMessage - EntryId: # From: Outbox To: Inbox",
          "MoveMessage - restrict folder items to TextMessage's",
          "MoveMessage = True",
          "To folder = Inbox",
          "MoveMessage - bMoved: True",
          "Item added to Deleted Items folder",
          "YES, the item is our mail item - check if phone connected",
          "m_bPhoneConnected = -1",
          "YES, the phone is connected"};
}

Lines simChecked(int used, int capacity) {
  return {"Inside Function isSimFull",
          "Max SIM Capacity = " + std::to_string(capacity),
          "Used SIM Memory = " + std::to_string(used),
          "m_maxSimCapacity is larger than zero - compare it with m_usedSimMemory",
          "UsedMemory is less than SimCapacity",
          "isSimFull=0"};
}

Lines messageHandedOver(const std::string& number, const std::string& text, int parts) {
  return {"m_objTimer_Timer: #",
          "Inside Function SendMessage",
          "[SendMessage]EntryID:#",
          "[SendMessage]To:" + number,
          "[SendMessage]MessageText:" + text,
          "Guard timmer set to [" + std::to_string(parts) + "] parts",
          "SetupGuard [" + std::to_string(parts * 25000) + "]ms",
          "SetupGuard #",
          "Add transaction, tranid: # type: 1",
          "Transaction ID = #",
          "strEntryID = #",
          "Transaction type = 1",
          "Inside SendMessage Function - AddTransaction called"};
}

Lines messageSent() {
  return {"m_objSMS_OnNotifyResponse - TransID:#, Status:0, State:2",
          "disablar guard timer",
          "STATE_SEND - Send went well, remove transaction and move message to sent items folder",
          "Move message to sent items, and change status to read - EntryID = #",
          "Inside Function MoveMessage",
          "MoveMessage - EntryId: # From: Outbox To: Sent Items",
          "MoveMessage - restrict folder items to TextMessage's",
          "MoveMessage = True",
          "To folder = Sent Items",
          "MoveMessage - bMoved: True",
          "Remove from transaction collection - TransactionID = #",
          "SetupSendMessage: #"};
}

}  // namespace installed_product

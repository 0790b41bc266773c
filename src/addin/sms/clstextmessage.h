// The record of one text-message item, as the duplicate check sees it.
#pragma once

#include "addin/common/basGlobal.h"

namespace addin {

class coltextmessage;
class SentOnIndex;

class clstextmessage : public Counted {
 public:
  const String& Recipient() const { return m_strRecipient; }
  void Recipient(StringView text) { m_strRecipient = text; }

  const String& SentOn() const { return m_strSentOn; }
  void SentOn(StringView text);  // the collection that holds the record follows

  const String& MessageBody() const { return m_strMessageBody; }
  void MessageBody(StringView text) { m_strMessageBody = text; }

 private:
  friend class coltextmessage;
  friend class SentOnIndex;

  String m_strRecipient;
  String m_strSentOn;
  String m_strMessageBody;
  coltextmessage* m_colOwner = nullptr;  // the collection whose index lists this record
  std::uint64_t m_nOrder = 0;            // place in the order of adding
  clstextmessage* m_objNext = nullptr;   // the next one of its time stamp, in that order
};

}  // namespace addin

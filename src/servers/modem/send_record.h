// What became of messages that were handed over to be sent. Who asks waits for a limited time, counts what is not
// answered in it as a failure, and asks again with the same number and text, three times in all
// (clsSMSHandler::HandleSendFailure). Here is why such a message is not sent twice:
//
//   still open                        the new request waits for the result of the first
//   sent, but told too late           the next request is told so
//   not known whether it was sent     it is not sent again: the requests that are still to come fail, so that the user
//                                     gets a report; after that, the same text is a new message
//   refused in the middle             the parts that were sent are not sent again
//
// That leaves one risk: a message that was sent, though its user was told that this is not known, and who therefore
// writes it again.
#pragma once

#include <functional>
#include <list>
#include <memory>
#include <vector>

#include "phone/line/clock.h"
#include "phone/modem/modem.h"
#include "servers/handset/phone.h"

namespace servers::modem {

// How long the asker waits for the answer: 25 seconds for each 160 characters.
phone::Milliseconds patienceFor(const handset::OutgoingMessage& message);

class SendRecord {
 public:
  static constexpr int attempts = 3;        // after which the asker gives a message up
  static constexpr std::size_t most = 100;  // messages remembered

  struct Entry {
    platform::String destination;
    platform::String text;
    int asked = 0;  // since it last was a new message
    bool open = false;
    bool toldTooLate = false;
    bool unknown = false;
    std::shared_ptr<phone::Sending> sending{};  // parts that are still to go
  };

  // The entry for a request. What was asked for often enough is a new message again.
  Entry& request(const handset::OutgoingMessage& message);

  // The outcome of what was open. `told`: somebody still waited for it.
  void ended(Entry& entry, const phone::Outcome& outcome, bool told);

  // Whatever was open was not done, or was answered before.
  void lost();

  Entry* find(platform::StringView destination, platform::StringView text);

 private:
  std::list<Entry> entries_;  // the oldest first
};

}  // namespace servers::modem

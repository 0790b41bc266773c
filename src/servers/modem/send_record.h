// What became of messages that were handed over to be sent. Who asks waits for a limited time, counts what is not
// answered in it as a failure, and asks again with the same number and text, three times in all
// (clsSMSHandler::HandleSendFailure). Here is why such a message is not sent twice:
//
//   still open                        the new request waits for the result of the first, whichever phones they were
//                                     asked of
//   sent, but told too late           the next request is told so
//   not known whether it was sent     it is not sent again: the requests that are still to come fail, so that the user
//                                     gets a report; after that, the same text is a new message
//   refused in the middle             the parts that were sent are not sent again
//
// That leaves one risk: a message that was sent, though its user was told that this is not known, and who therefore
// writes it again.
//
// All phones of a server share one record: a modem that was plugged in somewhere else is another phone. It outlives the
// server, whose end may come at any moment: a message is noted before the modem has it, and what is noted as open when
// the server begins is something of which nobody knows what became. Notes hold no text and no number, only a number
// that is computed from both.
//
// The same text may also be meant as a new message. So what was asked for often enough is forgotten, and so is what
// nobody has asked for again while phones were there for `window`. Time without a phone does not count: the asker, too,
// waits for one, overnight or longer.
#pragma once

#include <cstdint>
#include <list>
#include <memory>
#include <string>
#include <vector>

#include "phone/line/clock.h"
#include "phone/modem/outcome.h"
#include "servers/common/scheduler.h"
#include "servers/handset/phone.h"

namespace servers::modem {

// How long the asker waits for the answer: 25 seconds for each 160 characters.
phone::Milliseconds patienceFor(const handset::OutgoingMessage& message);

// What outlives the process. What cannot be kept is lost with it.
class SendNotes {
 public:
  virtual ~SendNotes() = default;
  virtual std::string load() = 0;
  // An empty text: nothing is to be left. False when it could not be done.
  virtual bool save(const std::string& text) noexcept = 0;
  virtual std::int64_t today() const = 0;  // as a number of days
};

class SendRecord {
 public:
  static constexpr int attempts = 3;        // after which the asker gives a message up
  static constexpr std::size_t most = 100;  // messages remembered
  static constexpr phone::Milliseconds window = std::chrono::hours(1);
  static constexpr std::int64_t mostDays = 7;
  static constexpr std::int32_t settling = 1000;  // milliseconds that an answer may take to its asker

  enum class State : std::uint8_t {
    Unsent,   // refused, or never tried; but `partsSent` of it were sent
    Open,     // on its way
    Unknown,  // sent, or not
    Untold,   // sent, and its asker does not know
    Settled,  // sent, and an answer is on its way to the asker: the same text is a new message
  };
  struct Entry {
    std::uint64_t key = 0;  // of number and text
    State state = State::Unsent;
    int asked = 0;               // since it last was a new message, and counted as a failure or still open
    std::uint8_t reference = 0;  // which the parts have in common
    std::size_t partsSent = 0;
    phone::Instant since{};  // the last that happened to it
    std::int64_t day = 0;
  };

  // Somebody who has asked for a message that is open, of this phone or another one, and waits for how it ends.
  class Asker : public platform::Counted {
   public:
    enum class Hears : std::uint8_t {
      Yes,
      TooLate,  // has counted a failure; what is said now would be taken for the answer to something else
      Gone,     // and counts no failure
    };
    virtual Hears hears() = 0;
    // Null for one that does not hear. Nothing more comes then.
    virtual void ended(const phone::Outcome* outcome) = 0;

   protected:
    // From then on; until it is let go.
    Asker(std::shared_ptr<SendRecord> record, std::uint64_t key);
    void terminate() noexcept override;

   private:
    friend class SendRecord;
    std::shared_ptr<SendRecord> record_;
    std::uint64_t key_;
  };

  SendRecord(Scheduler& scheduler, const phone::Clock& clock, std::unique_ptr<SendNotes> notes);

  static std::uint64_t keyOf(const handset::OutgoingMessage& message) noexcept;

  // The entry for a request. What was asked for often enough is a new message again.
  Entry& request(const handset::OutgoingMessage& message);
  Entry* find(std::uint64_t key);

  // It is about to be handed in.
  void begins(Entry& entry, std::uint8_t reference);
  // How it ended, which its askers are told; `told`: somebody else is. Telling them may do anything: the entry may be
  // gone afterwards.
  void ended(Entry& entry, const phone::Outcome& outcome, std::size_t partsSent, bool told = false);
  // So many who had asked for it will not count a failure: they are gone.
  void left(Entry& entry, int askers);

  void phoneFound();
  void phoneLost() { --phones_; }

 private:
  void touch(Entry& entry);
  void expire();
  void tidy();
  void tidyLater();
  void save();
  void load(std::string_view text);

  Scheduler& scheduler_;
  const phone::Clock& clock_;
  std::unique_ptr<SendNotes> notes_;
  std::list<Entry> entries_;  // the oldest first
  std::string saved_;         // as the notes have it
  int phones_ = 0;
  platform::Ref<platform::Counted> tidying_;
  std::vector<Asker*> askers_;
};

}  // namespace servers::modem

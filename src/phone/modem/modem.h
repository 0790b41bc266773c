// A GSM modem or phone that is driven by AT commands (3GPP TS 27.005 and 27.007): its memories and its way to the
// network. Calls block, on the thread that owns the line; each has its limits, and after each the dialogue is in step
// again, or it throws PhoneGone.
//
// Modems differ. What is refused is done in the next best way or done without, as far as there is a way; what a modem
// accepted once is asked in the same way from then on. A modem that began anew without its line breaking (or that did
// not answer, for which this may be the reason) is set up again before the next command.
#pragma once

#include <array>
#include <cstdint>
#include <map>
#include <span>
#include <string>
#include <vector>

#include "phone/at/dialogue.h"
#include "phone/joining/stored.h"
#include "phone/modem/entry.h"
#include "phone/modem/outcome.h"
#include "phone/pdu/submit.h"

namespace phone {

enum class SimState : std::uint8_t { Ready, NeedsPin, Missing, Unknown };

// <stat> of +CREG (3GPP TS 27.007, 7.2); the later ones say what else there is, or is not, besides messages.
enum class Registration : std::uint8_t { No = 0, Home = 1, Searching = 2, Denied = 3, Unknown = 4, Roaming = 5 };

struct MemoryState {
  std::string name;  // under which the modem knows it; empty: there is none
  int capacity = 0;  // 0: the modem does not tell
  int used = 0;      // as it said when the memory was chosen: the count may lag behind, or always be 0
};

// Something that the modem said of itself.
struct Notice {
  enum class Kind : std::uint8_t {
    Stored,      // a message has arrived; in `slot`, if the modem's name for the memory is one of those in use. Without
                 // it, one may have arrived anywhere: the modem began anew, and announced nothing meanwhile
    Direct,      // a message that is stored nowhere, in `pdu`
    MemoryFull,  // more messages wait in the network
  };
  Kind kind = Kind::Stored;
  std::optional<Slot> slot{};
  std::string pdu{};
  friend bool operator==(const Notice&, const Notice&) = default;
};

struct Listing {
  Outcome outcome;
  std::vector<StoredPdu> messages;  // all that could be read, also when the outcome is a failure
};

struct Reading {
  Outcome outcome;
  StoredPdu message;
  bool whole = true;  // false: as it came, and it came twice with the wrong length
};

// A message on its way. Asked to send it again, the modem goes on where it was refused.
struct Sending {
  std::vector<EncodedPdu> parts;
  std::size_t sent = 0;
  std::vector<int> references{};  // the message references of the parts that were sent; -1: not told
};

class Modem {
 public:
  // `trace` may be null.
  Modem(Line& line, const Clock& clock, at::Trace* trace = nullptr);

  // First contact; everything else comes after it. NotAnswering when nobody is there.
  void connect();

  const std::string& name() const noexcept { return name_; }  // maker and model
  SimState simState() const noexcept { return simState_; }
  const MemoryState& memory(Memory memory) const { return memories_[static_cast<std::size_t>(memory)]; }
  // It says so when a message has arrived.
  bool announces() const noexcept { return announces_; }
  bool isSupported(Memory which) const { return !memory(which).name.empty(); }

  // Everything in the memory. Unread messages are read ones from then on.
  Listing list(Memory memory);
  Reading read(Slot slot);
  // Deletes what is in the slot if it is `expected` (in hexadecimal); a slot that holds something else by now is Empty.
  Outcome remove(Slot slot, std::string_view expected);

  // Numbers as people write them; an empty service centre is the SIM's own. `reference` marks the parts of a long
  // message as belonging together.
  static Outcome prepare(std::u16string_view serviceCentre, std::u16string_view destination, std::u16string_view text,
                         std::uint8_t reference, Sending& sending);
  // Done, or why not: sending.sent parts have gone. Unknown is of the part behind them.
  Outcome send(Sending& sending);

  // Waits for the modem to say something, until `deadline` or until the line is woken.
  void listen(Instant deadline);
  // Is it still there, and does it still know what it was told? To be asked from time to time.
  void check();
  std::vector<Notice> takeNotices() { return std::exchange(notices_, {}); }

  // Information for people; nothing when the modem does not tell.
  std::optional<std::string> serviceCentre();  // the SIM's own; empty: there is none
  std::optional<Registration> registration();
  std::optional<int> signal();  // 0 to 31

 private:
  // A memory while it is being read, by index.
  struct Contents {
    std::map<int, StoredPdu> whole;
    std::map<int, StoredPdu> doubtful;  // as far as known
    bool complete = false;
    int listings = 0;

    void take(const at::Answer& answer);
    void doubtUnseen(int last);
  };

  void hear(const at::Unsolicited& unsolicited);
  void hearStored(std::string_view text);
  void beganAnew();

  // set_up.cpp
  void ensureSetUp();
  void setUp();
  void awaitSim();
  void chooseFormat();
  void chooseNotices();
  std::string identity(const std::string& command, const std::string& twin);
  void identify();
  void findMemories();
  std::vector<std::string> offeredMemories();
  bool offers(std::string_view name) const;
  bool find(Memory memory, const char* name, Milliseconds patience);
  void lookForMissing();
  std::optional<at::Result> choose(Memory memory);
  std::optional<at::Result> chooseByName(const std::string& name, MemoryState& state,
                                         Milliseconds patience = usualPatience);
  void takeCounts(const at::Answer& answer, MemoryState& state);

  at::Answer run(const at::Command& command);
  at::Answer runPatiently(const at::Command& command, Milliseconds patience = usualPatience);
  bool accepts(const std::string& setting);
  void pause(Milliseconds time);

  at::Answer askListing();
  void readDoubtful(Memory memory, Contents& contents, Listing& listing);
  Reading readForSure(Slot slot);
  Outcome removeChecked(Slot slot, std::string_view expected, bool& asked);

  // sending.cpp
  Outcome sendPart(Sending& sending);
  Outcome handIn(const EncodedPdu& part, int& reference);
  void keepRadioOn();

  static constexpr Milliseconds usualPatience{20000};
  static constexpr Milliseconds busyPause{1000};

  const Clock& clock_;
  at::Dialogue dialogue_;
  std::vector<Notice> notices_;
  std::string name_;
  SimState simState_ = SimState::Unknown;
  std::array<MemoryState, 2> memories_;
  std::vector<std::string> offered_;  // names of memories
  bool setUp_ = false;
  bool announces_ = false;
  bool numbersErrors_ = false;       // +CMEE was accepted
  std::string chosen_;               // the memory that commands are about
  std::string arrivals_;             // where the modem puts what arrives; empty: unknown
  std::optional<std::size_t> rung_;  // the form of +CPMS that it accepts
  bool refusesRadio_ = false;        // +CMMS
};

}  // namespace phone

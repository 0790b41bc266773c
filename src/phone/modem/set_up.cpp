// Getting to know a modem, and telling it how it will be talked to.
#include <algorithm>

#include "phone/at/characters.h"
#include "phone/at/fields.h"
#include "phone/modem/modem.h"

namespace phone {

using at::after;
using at::Answer;
using at::Command;
using at::Result;

namespace {

constexpr int greetings = 5;

// A text of the modem that may be in quotes.
std::string unquoted(std::string_view text) {
  if (text.size() >= 2 && text.front() == '"' && text.back() == '"') text = text.substr(1, text.size() - 2);
  return std::string(at::trimmed(text));
}

}  // namespace

void Modem::connect() {
  dialogue_.greet(greetings);
  setUp();
  identify();
  findMemories();
}

void Modem::ensureSetUp() {
  if (dialogue_.takeReset()) beganAnew();
  if (!setUp_) setUp();
}

// It has announced nothing since then. Not so when it is set up again only to make sure: what it then does wrong it may
// do each time that it is looked at, and would be looked at for ever.
void Modem::beganAnew() {
  setUp_ = false;
  notices_.push_back({Notice::Kind::Stored, {}, {}});
}

// Whatever a modem that began anew has still to do, it is told at once to announce messages.
void Modem::listen(Instant deadline) {
  if (!dialogue_.heardReset()) dialogue_.listen(deadline);
  if (dialogue_.heardReset()) ensureSetUp();
}

// Refusals are no failures here, but for the format.
void Modem::setUp() {
  dialogue_.takeReset();
  chosen_.clear();
  accepts("ATE0");
  accepts("ATV1");
  // As a number, else in words; without either, errors say nothing.
  numbersErrors_ = accepts("AT+CMEE=1") || accepts("AT+CMEE=2");
  awaitSim();
  accepts("AT+CSMS=0");
  chooseFormat();
  if (!accepts("AT+CSCS=\"GSM\"")) accepts("AT+CSCS=\"IRA\"");
  chooseNotices();
  setUp_ = true;
}

// True when the modem said OK. A setting may be repeated: a modem that has just been switched on is busy.
bool Modem::accepts(const std::string& setting) { return runPatiently({setting, {}}).ok(); }

// While the SIM is being read, everything that has to do with it is refused.
void Modem::awaitSim() {
  const Answer answer = runPatiently({"AT+CPIN?", "+CPIN"});
  simState_ = SimState::Unknown;
  if (!answer.information.empty())
    simState_ = at::sameWord(answer.information.back().text, "READY") ? SimState::Ready : SimState::NeedsPin;
  else if (answer.result && (answer.result->isCme(10) || answer.result->isCms(310)))
    simState_ = SimState::Missing;
  else if (answer.result && (answer.result->isCme(11) || answer.result->isCme(12) || answer.result->isCms(311)))
    simState_ = SimState::NeedsPin;
}

void Modem::chooseFormat() {
  if (accepts("AT+CMGF=0")) return;
  // Refused, but perhaps because there is no other.
  const Answer answer = run({"AT+CMGF?", "+CMGF"});
  if (answer.information.empty() || answer.information.back().text != "0")
    throw at::NotAnswering("the modem has no PDU mode");
}

// Messages are to be stored and announced; status reports are not asked for.
void Modem::chooseNotices() {
  static constexpr std::array settings{"AT+CNMI=2,1,0,0,0", "AT+CNMI=1,1,0,0,0", "AT+CNMI=2,1", "AT+CNMI=1,1"};
  announces_ = std::any_of(settings.begin(), settings.end(), [this](const char* setting) { return accepts(setting); });
}

std::string Modem::identity(const std::string& command, const std::string& twin) {
  for (const std::string& one : {command, twin}) {
    const Answer answer = run({"AT" + one, one, false, true});
    if (answer.ok() && !answer.information.empty()) return unquoted(answer.information.front().text);
  }
  return {};
}

void Modem::identify() {
  const std::string maker = identity("+CGMI", "+GMI");
  const std::string model = identity("+CGMM", "+GMM");
  // Some models begin with the name of the maker.
  const bool repeats = model.size() >= maker.size() && at::sameWord(model.substr(0, maker.size()), maker);
  name_ = repeats || maker.empty() ? model : model.empty() ? maker : maker + " " + model;
  if (name_.empty()) name_ = "GSM modem";
}

// Those of the first list, which is what listing, reading and deleting choose from.
std::vector<std::string> Modem::offeredMemories() {
  const Answer answer = runPatiently({"AT+CPMS=?", "+CPMS"});
  if (!answer.ok() || answer.information.empty()) return {};
  auto lists = at::fieldsOf(answer.information.back().text);
  // Some put one more pair of brackets around all of it.
  if (const std::string& all = lists.front().text; lists.size() == 1 && all.starts_with("(("))
    lists = at::fieldsOf(std::string_view(all).substr(1, all.size() - 2));
  return at::wordsOf(lists.front().text);
}

void Modem::findMemories() {
  // Where arriving messages go stays as it is; that this can be asked at all is not certain.
  if (const Answer answer = runPatiently({"AT+CPMS?", "+CPMS"}); !answer.information.empty())
    if (const auto words = at::wordsOf(answer.information.back().text); words.size() == 3) arrivals_ = words[2];

  offered_ = offeredMemories();
  if (offered_.empty()) offered_ = {"ME", "SM"};
  memories_ = {};
  const bool phone = offers("ME") && find(Memory::Phone, "ME", usualPatience);
  const bool sim = offers("SM") && find(Memory::Sim, "SM", usualPatience);
  // Both seen as one: stands in for the memory that has no name of its own. What is then seen twice is joined later.
  if (!offers("MT") || (phone && sim)) return;
  find(sim ? Memory::Phone : Memory::Sim, "MT", usualPatience);
}

bool Modem::offers(std::string_view name) const {
  return std::find(offered_.begin(), offered_.end(), name) != offered_.end();
}

bool Modem::find(Memory memory, const char* name, Milliseconds patience) {
  MemoryState state;
  const auto result = chooseByName(name, state, patience);
  if (!result || !result->ok()) return false;
  state.name = name;
  memories_[static_cast<std::size_t>(memory)] = state;
  return true;
}

// A SIM may have been unlocked, or have been busy for too long. A memory that is there stays as it is, and nobody waits
// for one that is busy: it is looked for again.
void Modem::lookForMissing() {
  if (!isSupported(Memory::Phone) && !isSupported(Memory::Sim)) return findMemories();
  constexpr Milliseconds none{0};
  if (!isSupported(Memory::Phone) && offers("ME")) find(Memory::Phone, "ME", none);
  // Some offer it only when it is ready.
  if (!isSupported(Memory::Sim) && (offers("SM") || simState_ != SimState::Ready)) find(Memory::Sim, "SM", none);
}

std::optional<Result> Modem::choose(Memory which) {
  MemoryState& state = memories_[static_cast<std::size_t>(which)];
  if (chosen_ == state.name) return Result{};
  return chooseByName(state.name, state);
}

// The memory for reading, for writing and for what arrives: three names, for modems that refuse that two, or one.
std::optional<Result> Modem::chooseByName(const std::string& name, MemoryState& state, Milliseconds patience) {
  chosen_.clear();
  const std::string quoted = "\"" + name + "\"";
  const std::string arrivals = arrivals_.empty() ? quoted : "\"" + arrivals_ + "\"";
  const std::array<std::string, 4> rungs{quoted + "," + quoted + "," + arrivals, quoted + "," + quoted + "," + quoted,
                                         quoted + "," + quoted, quoted};
  std::optional<Result> result;
  for (std::size_t rung = rung_.value_or(0); rung < rungs.size(); ++rung) {
    if (rung == 1 && rungs[1] == rungs[0]) continue;
    const Answer answer = runPatiently({"AT+CPMS=" + rungs[rung], "+CPMS"}, patience);
    result = answer.result;
    if (answer.ok()) {
      rung_ = rung;
      chosen_ = name;
      takeCounts(answer, state);
    }
    if (answer.ok() || !answer.result || rung_) break;
  }
  return result;
}

// "<used1>,<total1>,...". What has no slot number that could be told is no capacity.
void Modem::takeCounts(const Answer& answer, MemoryState& state) {
  if (answer.information.empty()) return;
  auto fields = at::fieldsOf(answer.information.back().text);
  std::erase_if(fields, [](const at::Field& field) { return field.quoted; });
  if (fields.size() < 2) return;
  state.used = fields[0].number().value_or(0);
  state.capacity = std::clamp(fields[1].number().value_or(0), 0, mostIndex + 1);
}

Answer Modem::run(const Command& command) {
  Answer answer = dialogue_.run(command);
  // It may have begun anew, unseen.
  if (!answer.result) setUp_ = false;
  return answer;
}

// Repeats what is refused only because the modem is busy with itself. Messages that it gave all the same are read from
// then on, so only this answer knows which were unread; and one that begins anew forgets which memory was chosen.
Answer Modem::runPatiently(const Command& command, Milliseconds patience) {
  const Instant end = clock_.now() + patience;
  for (;;) {
    Answer answer = run(command);
    if (!answer.result || !isBusy(*answer.result) || clock_.now() + busyPause > end) return answer;
    if (command.hasData && !answer.information.empty()) return answer;
    pause(busyPause);
    if (command.hasData && dialogue_.heardReset()) return answer;
  }
}

void Modem::pause(Milliseconds time) {
  for (const Instant end = clock_.now() + time; clock_.now() < end;) dialogue_.listen(end);
}

void Modem::check() {
  ensureSetUp();
  lookForMissing();
  if (!numbersErrors_) {
    run({"AT", {}});
    return;
  }
  const Answer answer = run({"AT+CMEE?", "+CMEE"});
  if (!answer.information.empty() && answer.information.back().text == "0") beganAnew();
  ensureSetUp();
}

}  // namespace phone

#include "servers/modem/line_worker.h"

#include <utility>

#include "servers/modem/description.h"

namespace servers::modem {

using phone::Memory;
using phone::PhoneGone;

struct LineWorker::Link {
  Link(std::unique_ptr<phone::Line> l, const phone::Clock& clock, phone::at::Trace* trace)
      : line(std::move(l)), modem(*line, clock, trace) {}

  std::unique_ptr<phone::Line> line;
  phone::Modem modem;
  bool found = false;  // the other thread knows of it, and of these memories
  std::array<bool, 2> supported{};
  std::span<const Particular> untold = particulars();  // of this modem, in the trace
};

LineWorker::LineWorker(Opener opener, const phone::Clock& clock, Mailbox& mailbox, WireEvents events,
                       phone::at::Trace* trace)
    : opener_(std::move(opener)), clock_(clock), mailbox_(mailbox), events_(std::move(events)), trace_(trace) {}

LineWorker::~LineWorker() { mailbox_.lineIs(nullptr); }

bool LineWorker::step() {
  try {
    if (!link_) return find();
    serve();
    return true;
  } catch (const std::exception& failure) {
    // Mostly PhoneGone; whatever else it is, beginning anew is all that can be done about it.
    lose(failure.what());
    return false;
  }
}

// A modem is found when its memories have been read, so that listings are answered at once from then on.
bool LineWorker::find() {
  link_ = std::make_unique<Link>(opener_(), clock_, trace_);
  mailbox_.lineIs(link_->line.get());
  phone::Modem& modem = link_->modem;
  modem.connect();
  Presence presence;
  presence.name = modem.name();
  presence.life = ++life_;
  presence.announces = modem.announces();
  for (const Memory memory : {Memory::Phone, Memory::Sim}) {
    const auto at = static_cast<std::size_t>(memory);
    presence.supported[at] = modem.isSupported(memory);
    presence.capacity[at] = modem.memory(memory).capacity;
    if (presence.supported[at]) presence.listings[at] = modem.list(memory);
  }
  link_->found = true;
  lastLoss_.clear();
  link_->supported = presence.supported;
  nextCheck_ = clock_.now() + checkInterval;
  mailbox_.give([found = events_.found, presence = std::move(presence)] { found(presence); });
  tellNotices();
  return true;
}

void LineWorker::serve() {
  phone::Modem& modem = link_->modem;
  if (auto letter = mailbox_.take()) {
    if (letter->life == life_)
      if (Wire::Answer answer = letter->deed(modem)) mailbox_.give(std::move(answer));
  } else if (clock_.now() >= nextCheck_) {
    check();
  } else if (trace_ && !shy_ && !link_->untold.empty()) {
    describe();
  } else {
    modem.listen(nextCheck_);
  }
  tellNotices();
}

void LineWorker::check() {
  phone::Modem& modem = link_->modem;
  const auto known = link_->supported;
  modem.check();
  nextCheck_ = clock_.now() + checkInterval;
  // A SIM that was unlocked, or is no longer busy: whoever uses the phone begins anew, too.
  if (known[0] != modem.isSupported(Memory::Phone) || known[1] != modem.isSupported(Memory::Sim))
    throw PhoneGone("the modem has other memories than before");
}

// Only for somebody who reads it, only when nothing else is to be done, and one at a time: nobody waits for these.
void LineWorker::describe() {
  const Particular particular = link_->untold.front();
  link_->untold = link_->untold.subspan(1);
  try {
    trace_->noteAbout(particular(link_->modem));
  } catch (const phone::at::NotAnswering&) {
    // A phone that is used without a trace must be one with it.
    shy_ = true;
    throw;
  }
}

void LineWorker::tellNotices() {
  for (phone::Notice& notice : link_->modem.takeNotices())
    mailbox_.give([noticed = events_.noticed, notice = std::move(notice)] { noticed(notice); });
}

void LineWorker::lose(const char* why) {
  // Once: the search for a port that is not there would fill the trace.
  if (trace_ && lastLoss_ != why) trace_->note(why);
  lastLoss_ = why;
  mailbox_.lineIs(nullptr);
  const bool known = link_ && link_->found;
  link_.reset();
  if (!known) return;
  while (mailbox_.take()) {
  }
  mailbox_.give(events_.lost);
}

}  // namespace servers::modem

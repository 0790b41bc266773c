// The line's thread: finds the modem, serves it, and finds it again.
#pragma once

#include <memory>
#include <optional>

#include "phone/line/line.h"
#include "servers/modem/wire.h"

namespace servers::modem {

// What the two threads put down for each other. Called on the line's thread.
class Mailbox {
 public:
  struct Letter {
    std::uint32_t life;
    Wire::Deed deed;
  };
  virtual std::optional<Letter> take() = 0;
  virtual void give(Wire::Answer answer) = 0;  // to the phone's thread
  // Whom to wake when there is a letter; null when there is nobody any more.
  virtual void lineIs(phone::Line* line) noexcept = 0;

 protected:
  ~Mailbox() = default;
};

class LineWorker {
 public:
  using Opener = std::function<std::unique_ptr<phone::Line>()>;  // throws LineLost

  // `trace` may be null.
  LineWorker(Opener opener, const phone::Clock& clock, Mailbox& mailbox, WireEvents events,
             phone::at::Trace* trace = nullptr);
  ~LineWorker();

  // Does the next thing: finds the modem; or serves one letter; or, for a trace, asks a modem that was just found about
  // its network; or waits until there is a letter, the modem says something or it is time to see whether it is still
  // there. False when there is no modem: it is worth trying again after a while.
  bool step();

 private:
  struct Link;

  bool find();
  void serve();
  void check();
  void describe();
  void tellNotices();
  void lose(const char* why);

  static constexpr phone::Milliseconds checkInterval{60000};

  Opener opener_;
  const phone::Clock& clock_;
  Mailbox& mailbox_;
  WireEvents events_;
  phone::at::Trace* trace_;
  std::string lastLoss_;
  bool shy_ = false;  // fell silent when it was asked about its network
  std::unique_ptr<Link> link_;
  std::uint32_t life_ = 0;
  phone::Instant nextCheck_{};
};

}  // namespace servers::modem

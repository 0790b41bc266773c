// When the server, which nobody uses any more, may end. It is looked at once a second.
//
// A message that is on its way has an outcome, which its user ought to hear of some day: the server waits for it,
// though not for ever. What is not known by then stays noted as such (servers/modem/send_record.h).
#pragma once

namespace servers::dvmworker {

class Idleness {
 public:
  static constexpr int mostLooks = 4;
  static constexpr int mostLooksWhileSending = 600;

  // Whether it is time.
  bool look(bool hasClients, bool isSending) {
    looks_ = hasClients ? 0 : looks_ + 1;
    return looks_ >= (isSending ? mostLooksWhileSending : mostLooks);
  }

 private:
  int looks_ = 0;
};

}  // namespace servers::dvmworker

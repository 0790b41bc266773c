// The network between simulators. Each one that takes part listens for the others; who has which number is told on the
// command line or by a folder, in which each writes a file that is named after its number and holds its HOST:PORT, or
// nothing after an orderly end.
//
// One message is one connection: the line "message MARK PDU", answered "ok". What cannot be handed over is tried again
// until it can; the mark is the same then, so that a message whose "ok" was lost is not taken twice.
#pragma once

#include <deque>
#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "phonesim/handset/state.h"
#include "phonesim/line/tcp.h"

namespace phonesim {

class Exchange {
 public:
  struct Options {
    std::string folder;                     // empty: none
    std::map<std::string, Endpoint> peers;  // by number
    Endpoint listen{"127.0.0.1", 0};
  };
  // Takes a message that another simulator has sent; it must be safe when this returns.
  using OnMessage = std::function<void(const std::string& mark, Octets pdu)>;
  // Tells that an attempt to hand over has ended; nextWork() is another one then, and other messages may be due.
  using OnAttempt = std::function<void(const std::string& mark, bool arrived)>;

  Exchange(EventLoop& loop, Options options, const std::string& number, OnMessage onMessage, OnAttempt onAttempt);
  ~Exchange();
  Exchange(const Exchange&) = delete;
  Exchange& operator=(const Exchange&) = delete;

  Endpoint endpoint() const { return listener_.endpoint(); }
  // Whether a simulator has the number, be it running or not.
  bool knows(const std::string& number) const;
  // Tries to hand over the first of these that is due; onAttempt tells of it. Does nothing while one is on its way.
  void work(const std::deque<Travelling>& messages);
  // When work() should be called again without anything having happened.
  std::optional<std::chrono::milliseconds> nextWork() const;

 private:
  std::optional<Endpoint> find(const std::string& number) const;
  std::vector<std::filesystem::path> filesFor(const std::string& number) const;
  void answerCall(std::shared_ptr<Stream> stream);
  void talk(std::shared_ptr<Stream> stream);
  void end(bool arrived);
  std::string fileOf(const std::string& number) const;

  EventLoop& loop_;
  Options options_;
  std::string number_;
  OnMessage onMessage_;
  OnAttempt onAttempt_;
  TcpListener listener_;
  Alarm alarm_;
  std::deque<std::shared_ptr<Stream>> incoming_;
  std::optional<Travelling> underway_;
  unsigned attempts_ = 0;
  std::shared_ptr<Stream> outgoing_;
  std::map<std::string, std::chrono::milliseconds> restsUntil_;  // numbers that could not be reached
};

// Whether two ways of writing a number mean the same line: +46 70..., 0046 70..., 070...
bool sameNumber(std::string_view one, std::string_view other);

}  // namespace phonesim

// The program: a handset, its ports to the world, the network, the consoles and the memory file, on one thread.
#pragma once

#include <deque>
#include <list>
#include <memory>
#include <optional>
#include <random>
#include <string>

#include "phonesim/console/console.h"
#include "phonesim/handset/port.h"
#include "phonesim/line/system.h"
#include "phonesim/options.h"

namespace phonesim {

class Simulator final : public Network, public ConsoleHost {
 public:
  explicit Simulator(Options options);
  ~Simulator();
  Simulator(const Simulator&) = delete;
  Simulator& operator=(const Simulator&) = delete;

  // Until somebody says quit. Throws when it cannot begin.
  void run();
  void stop() { loop_.stop(); }

 private:
  // A program at one of the handset's ports.
  struct Line {
    Line(Handset& handset, std::shared_ptr<Stream> s) : port(handset), stream(std::move(s)) {}
    ~Line() { stream->close(); }
    Port port;
    std::shared_ptr<Stream> stream;
    bool used = false;
  };
  // Somebody who gives commands.
  struct Operator {
    std::unique_ptr<Console> console;
    std::shared_ptr<Stream> stream;  // null: standard input and output
    std::string answers;
  };
  using Lines = std::list<Line>;
  using Operators = std::list<Operator>;

  // Network
  phone::TimeStamp time() override;
  void take(const Submission& message) override;
  void stored(Slot slot) override;
  void directly(const Octets& pdu) override;
  // ConsoleHost
  void setPlugged(bool plugged) override;
  bool isPlugged() const override { return plugged_; }
  bool hasHost() const override;
  void quit() override { quits_ = true; }
  const std::vector<Submission>& sent() const override { return sent_; }
  void clearSent() override { sent_.clear(); }

  void openLines();
  void addLine(std::shared_ptr<Stream> stream, const std::string& name);
  Operator& addOperator(std::shared_ptr<Stream> stream);
  void readScript();
  void readConsole();
  void travel();
  void pump();
  void settle();
  void save();
  void wakeLater();
  void notice(const std::string& text) { notices_ += "* " + text + '\n'; }
  std::string newMark();

  Options options_;
  EventLoop loop_;
  std::string loadNotice_;
  Handset handset_;
  std::random_device random_;
  bool plugged_ = true;
  bool quits_ = false;
  std::vector<Submission> sent_;
  std::string notices_;
  std::optional<TcpListener> listener_;
  std::optional<TcpListener> controlListener_;
  std::optional<Exchange> exchange_;
  Lines lines_;
  Operators operators_;
  Alarm alarm_;
};

}  // namespace phonesim

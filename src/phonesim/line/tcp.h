// TCP: being called, and calling.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include <asio/ip/tcp.hpp>

#include "phonesim/line/event_loop.h"
#include "phonesim/line/stream.h"

namespace phonesim {

struct Endpoint {
  std::string host;
  std::uint16_t port = 0;  // 0, to be called at: any that is free
};

// "HOST:PORT"; throws std::runtime_error for anything else.
Endpoint parseEndpoint(const std::string& text);
std::string toText(const Endpoint& endpoint);

class TcpListener {
 public:
  using OnCall = std::function<void(std::shared_ptr<Stream>)>;
  // Listens at once; throws std::system_error when it cannot.
  TcpListener(EventLoop& loop, const Endpoint& endpoint, OnCall onCall);

  Endpoint endpoint() const { return endpoint_; }  // with the port that was chosen
  // Nobody gets through any more; calls that were answered go on.
  void close();
  void reopen();

 private:
  void open();
  void accept();

  EventLoop& loop_;
  Endpoint endpoint_;
  OnCall onCall_;
  asio::ip::tcp::acceptor acceptor_;
  Alarm retry_;
};

// Calls, and tells the stream, or null when nobody answers.
void callTcp(EventLoop& loop, const Endpoint& endpoint, std::function<void(std::shared_ptr<Stream>)> done);

}  // namespace phonesim

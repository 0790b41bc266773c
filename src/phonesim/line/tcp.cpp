#include "phonesim/line/tcp.h"

#include <charconv>
#include <stdexcept>

#include "phonesim/line/asio_stream.h"
#include "phonesim/line/system.h"

namespace phonesim {

using asio::ip::tcp;

namespace {

std::shared_ptr<Stream> streamOf(tcp::socket socket) {
  std::error_code ignored;
  // Characters are answered one by one.
  socket.set_option(tcp::no_delay(true), ignored);
  return std::make_shared<AsioStream<tcp::socket>>(std::move(socket));
}

}  // namespace

Endpoint parseEndpoint(const std::string& text) {
  const auto colon = text.rfind(':');
  Endpoint endpoint;
  if (colon != text.npos) {
    endpoint.host = text.substr(0, colon);
    const char* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data() + colon + 1, end, endpoint.port);
    if (error == std::errc() && stop == end && !endpoint.host.empty()) return endpoint;
  }
  throw std::runtime_error("\"" + text + "\" is not HOST:PORT");
}

std::string toText(const Endpoint& endpoint) { return endpoint.host + ':' + std::to_string(endpoint.port); }

TcpListener::TcpListener(EventLoop& loop, const Endpoint& endpoint, OnCall onCall)
    : loop_(loop), endpoint_(endpoint), onCall_(std::move(onCall)), acceptor_(loop.context()), retry_(loop, [this] {
        reopen();
      }) {
  open();
}

void TcpListener::open() {
  const tcp::endpoint address(asio::ip::make_address(endpoint_.host == "localhost" ? "127.0.0.1" : endpoint_.host),
                              endpoint_.port);
  acceptor_.open(address.protocol());
  acceptor_.set_option(tcp::acceptor::reuse_address(connectionsKeepPorts()));
  acceptor_.bind(address);
  acceptor_.listen();
  endpoint_.port = acceptor_.local_endpoint().port();
  accept();
}

void TcpListener::close() {
  retry_.cancel();
  std::error_code ignored;
  acceptor_.close(ignored);
}

// Somebody else may have the port for a moment.
void TcpListener::reopen() {
  if (acceptor_.is_open()) return;
  try {
    open();
  } catch (const std::system_error&) {
    close();
    retry_.set(EventLoop::now() + std::chrono::milliseconds(200));
  }
}

void TcpListener::accept() {
  acceptor_.async_accept([this](std::error_code error, tcp::socket socket) {
    if (error) return;
    onCall_(streamOf(std::move(socket)));
    if (acceptor_.is_open()) accept();
  });
}

void callTcp(EventLoop& loop, const Endpoint& endpoint, std::function<void(std::shared_ptr<Stream>)> done) {
  std::error_code error;
  const auto address = asio::ip::make_address(endpoint.host == "localhost" ? "127.0.0.1" : endpoint.host, error);
  if (error) {
    done(nullptr);
    return;
  }
  const auto socket = std::make_shared<tcp::socket>(loop.context());
  socket->async_connect(tcp::endpoint(address, endpoint.port), [socket, done](std::error_code refused) {
    done(refused ? nullptr : streamOf(std::move(*socket)));
  });
}

}  // namespace phonesim

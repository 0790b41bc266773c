#include "phone/line/tcp_line.h"

namespace phone {

TcpLine::TcpLine(const std::string& host, const std::string& port, Instant deadline) {
  using asio::ip::tcp;
  try {
    bool done = false;
    asio::error_code failure;
    const auto found = tcp::resolver(context_).resolve(host, port);
    asio::async_connect(stream_, found, [&](const asio::error_code& error, const tcp::endpoint&) {
      done = true;
      failure = error;
    });
    while (!done && runOne(deadline)) {
    }
    if (!done) {
      stream_.close();
      while (!done) runOne(never());
      failure = asio::error::timed_out;
    }
    if (failure) throw asio::system_error(failure);
    // Commands are small and wait for their answers: each goes at once.
    stream_.set_option(tcp::no_delay(true));
    // A peer that vanished without a word is noticed some day.
    stream_.set_option(asio::socket_base::keep_alive(true));
  } catch (const std::exception& error) {
    throw LineLost(host + ":" + port + ": " + error.what());
  }
}

}  // namespace phone

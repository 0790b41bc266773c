#include "phone/line/tcp_line.h"

#include <gtest/gtest.h>

#include "phone/line/open_line.h"
#include "phone/line/steady_clock.h"

namespace {

using asio::ip::tcp;
using phone::Instant;
using phone::LineLost;
using phone::Milliseconds;

class TcpLineTest : public testing::Test {
 protected:
  Instant in(int milliseconds) const { return clock_.now() + Milliseconds(milliseconds); }
  std::string port() const { return std::to_string(acceptor_.local_endpoint().port()); }
  std::unique_ptr<phone::Line> connected() {
    auto line = phone::openLine({phone::LineName::Kind::Tcp, "127.0.0.1", port()}, in(5000));
    acceptor_.accept(peer_);
    return line;
  }
  std::string received(std::size_t count) {
    std::string octets(count, '\0');
    asio::read(peer_, asio::buffer(octets));
    return octets;
  }
  // What comes before the time is up, or until that much has come.
  std::string readAll(phone::Line& line, std::size_t count) const {
    std::string octets;
    for (const Instant end = in(5000); octets.size() < count && clock_.now() < end;) octets += line.read(end);
    return octets;
  }

  phone::SteadyClock clock_;
  asio::io_context context_;
  tcp::acceptor acceptor_{context_, tcp::endpoint(asio::ip::address_v4::loopback(), 0)};
  tcp::socket peer_{context_};
};

TEST_F(TcpLineTest, Octets_GoBothWaysUnchanged) {
  const auto line = connected();
  std::string every;
  for (int i = 0; i < 256; ++i) every += static_cast<char>(i);
  line->write(every, in(5000));
  EXPECT_EQ(received(256), every);
  asio::write(peer_, asio::buffer(every));
  EXPECT_EQ(readAll(*line, 256), every);
}

TEST_F(TcpLineTest, NothingByTheDeadline_IsNothingAndLosesNothing) {
  const auto line = connected();
  const Instant deadline = in(30);
  EXPECT_EQ(line->read(deadline), "");
  EXPECT_GE(clock_.now(), deadline);
  EXPECT_EQ(line->read(clock_.now()), "");
  asio::write(peer_, asio::buffer("late", 4));
  EXPECT_EQ(readAll(*line, 4), "late");
}

TEST_F(TcpLineTest, ReadWithoutWaiting_SeesWhatIsThere) {
  const auto line = connected();
  EXPECT_EQ(line->read(clock_.now()), "");
  asio::write(peer_, asio::buffer("there", 5));
  std::string octets;
  // The loopback is quick, but not at once.
  for (const Instant end = in(5000); octets.empty() && clock_.now() < end;) octets = line->read(clock_.now());
  EXPECT_EQ(octets, "there");
}

TEST_F(TcpLineTest, Woken_ReturnsWithNothingOnce) {
  const auto line = connected();
  line->wake();
  EXPECT_EQ(line->read(in(60000)), "");
  asio::write(peer_, asio::buffer("x", 1));
  EXPECT_EQ(line->read(in(5000)), "x");
}

TEST_F(TcpLineTest, PeerThatCloses_LeavesWhatItSaidAndThenALostLine) {
  const auto line = connected();
  asio::write(peer_, asio::buffer("bye", 3));
  peer_.close();
  EXPECT_EQ(readAll(*line, 3), "bye");
  EXPECT_THROW(line->read(in(5000)), LineLost);
  EXPECT_THROW(line->read(in(0)), LineLost);
  EXPECT_THROW(line->write("AT\r", in(5000)), LineLost);
}

TEST_F(TcpLineTest, Ended_IsLost) {
  const auto line = connected();
  line->end();
  EXPECT_THROW(line->read(in(60000)), LineLost);
  EXPECT_THROW(line->write("AT\r", in(5000)), LineLost);
}

TEST_F(TcpLineTest, PeerThatTakesNothing_IsLostAtTheDeadline) {
  const auto line = connected();
  const std::string much(64 << 20, 'x');
  EXPECT_THROW(line->write(much, in(50)), LineLost);
  EXPECT_THROW(line->read(in(0)), LineLost);
}

TEST_F(TcpLineTest, NobodyThere_IsLost) {
  const std::string nobody = port();
  acceptor_.close();
  EXPECT_THROW(phone::TcpLine("127.0.0.1", nobody, in(5000)), LineLost);
}

}  // namespace

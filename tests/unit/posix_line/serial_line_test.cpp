// A serial port is played by a pseudo-terminal: the test is at its other end.
#include "phone/line/serial_line.h"

#include <thread>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <stdlib.h>
#include <termios.h>
#include <unistd.h>

#include "phone/line/open_line.h"
#include "phone/line/steady_clock.h"

namespace {

using phone::Instant;
using phone::LineLost;
using phone::Milliseconds;

class SerialLineTest : public testing::Test {
 protected:
  void SetUp() override {
    master_ = posix_openpt(O_RDWR | O_NOCTTY);
    ASSERT_GE(master_, 0);
    ASSERT_EQ(grantpt(master_), 0);
    ASSERT_EQ(unlockpt(master_), 0);
    line_ = phone::openLine(*phone::parseLineName(std::string(ptsname(master_)) + "@19200"), in(5000));
  }
  void TearDown() override { unplug(); }
  void unplug() {
    if (master_ >= 0) close(master_);
    master_ = -1;
  }
  Instant in(int milliseconds) const { return clock_.now() + Milliseconds(milliseconds); }

  phone::SteadyClock clock_;
  int master_ = -1;
  std::unique_ptr<phone::Line> line_;
};

TEST_F(SerialLineTest, Port_IsRawAndAtItsSpeed) {
  termios settings{};
  ASSERT_EQ(tcgetattr(master_, &settings), 0);
  EXPECT_EQ(cfgetospeed(&settings), static_cast<speed_t>(B19200));
  EXPECT_EQ(settings.c_lflag & (ICANON | ECHO | ISIG), 0u);
  EXPECT_EQ(settings.c_iflag & (ICRNL | INLCR | IXON | IXOFF), 0u);
  EXPECT_EQ(settings.c_cflag & (CSIZE | PARENB | CSTOPB), static_cast<tcflag_t>(CS8));
}

TEST_F(SerialLineTest, Octets_GoBothWaysUnchanged) {
  const std::string command("AT+CMGS=3\r0001\x1A\x1B\x03\x11\x13\n\0\xFF", 22);
  line_->write(command, in(5000));
  std::string got(command.size(), '\0');
  std::size_t count = 0;
  while (count < got.size()) {
    const ssize_t some = read(master_, got.data() + count, got.size() - count);
    ASSERT_GT(some, 0);
    count += static_cast<std::size_t>(some);
  }
  EXPECT_EQ(got, command);

  ASSERT_EQ(write(master_, command.data(), command.size()), static_cast<ssize_t>(command.size()));
  std::string back;
  for (const Instant end = in(5000); back.size() < command.size() && clock_.now() < end;) back += line_->read(end);
  EXPECT_EQ(back, command);
}

TEST_F(SerialLineTest, NothingByTheDeadline_IsNothing) {
  const Instant deadline = in(30);
  EXPECT_EQ(line_->read(deadline), "");
  EXPECT_GE(clock_.now(), deadline);
}

TEST_F(SerialLineTest, PulledOut_IsLost) {
  EXPECT_EQ(line_->read(in(0)), "");
  unplug();
  EXPECT_THROW(line_->read(in(5000)), LineLost);
  EXPECT_THROW(line_->write("AT\r", in(5000)), LineLost);
}

TEST_F(SerialLineTest, WokenByAnotherThread_ReturnsEarly) {
  std::thread other([this] { line_->wake(); });
  EXPECT_EQ(line_->read(in(60000)), "");
  other.join();
  EXPECT_EQ(line_->read(in(0)), "");
}

TEST_F(SerialLineTest, EndedByAnotherThread_IsLost) {
  std::thread other([this] { line_->end(); });
  EXPECT_THROW(line_->read(in(60000)), LineLost);
  other.join();
  EXPECT_THROW(line_->read(in(60000)), LineLost);
}

}  // namespace

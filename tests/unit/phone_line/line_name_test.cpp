#include "phone/line/line_name.h"

#include <gtest/gtest.h>

#include "phone/line/open_line.h"
#include "phone/line/steady_clock.h"

namespace {

using phone::LineName;
using phone::parseLineName;
using phone::parseLineNames;
using Kind = LineName::Kind;

TEST(LineName, SerialPort_HasASpeed) {
  EXPECT_EQ(parseLineName("COM3"), (LineName{Kind::Serial, "COM3", "", 115200}));
  EXPECT_EQ(parseLineName("/dev/ttyUSB0@9600"), (LineName{Kind::Serial, "/dev/ttyUSB0", "", 9600}));
}

TEST(LineName, TcpAddress_HasHostAndPort) {
  EXPECT_EQ(parseLineName("tcp:modem.example:7001"), (LineName{Kind::Tcp, "modem.example", "7001"}));
  EXPECT_EQ(parseLineName("TCP:127.0.0.1:65535"), (LineName{Kind::Tcp, "127.0.0.1", "65535"}));
  EXPECT_EQ(parseLineName("tcp:[::1]:7001"), (LineName{Kind::Tcp, "::1", "7001"}));
}

TEST(LineName, SimulatedHandset_IsAWordOfItsOwn) {
  EXPECT_EQ(parseLineName("sim"), (LineName{Kind::Simulated, "", ""}));
  EXPECT_EQ(parseLineName("SIM"), (LineName{Kind::Simulated, "", ""}));
  EXPECT_EQ(parseLineName("sim2"), (LineName{Kind::Serial, "sim2", ""}));
}

TEST(LineName, Mistakes_AreNoNames) {
  for (const char* word : {"", "tcp:", "tcp:host", "tcp::7001", "tcp:host:0", "tcp:host:65536", "tcp:host:x",
                           "tcp:::1:7001", "COM3@", "COM3@fast", "COM3@0", "@9600", "udp:host:1"})
    EXPECT_FALSE(parseLineName(word)) << word;
}

TEST(LineName, List_IsSeparatedByCommasSemicolonsOrSpace) {
  const auto list = parseLineNames(" COM3, tcp:a:1;sim\tCOM4\r\n,,tcp:oops");
  EXPECT_EQ(
      list.names,
      (std::vector<LineName>{
          {Kind::Serial, "COM3", ""}, {Kind::Tcp, "a", "1"}, {Kind::Simulated, "", ""}, {Kind::Serial, "COM4", ""}}));
  EXPECT_EQ(list.unreadable, std::vector<std::string>{"tcp:oops"});
  EXPECT_EQ(parseLineNames(" ,").names, std::vector<LineName>());
}

TEST(OpenLine, PortThatDoesNotExist_IsLost) {
  const auto soon = phone::SteadyClock().now() + phone::Milliseconds(2000);
  EXPECT_THROW(phone::openLine({Kind::Serial, "no-such-port", ""}, soon), phone::LineLost);
  EXPECT_THROW(phone::openLine({Kind::Simulated, "", ""}, soon), phone::LineLost);
}

}  // namespace

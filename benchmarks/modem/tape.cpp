#include "modem/tape.h"

#include <array>

#include <fcntl.h>
#include <netdb.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>
#include <termios.h>
#include <unistd.h>

#include "measure.h"
#include "modem/handset.h"

namespace bench {
namespace {

Descriptor openTerminal(const std::string& path) {
  Descriptor terminal(open(path.c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC));
  termios settings{};
  require(tcgetattr(terminal.get(), &settings) == 0, "the terminal opens");
  cfmakeraw(&settings);
  require(tcsetattr(terminal.get(), TCSANOW, &settings) == 0, "the terminal becomes a line");
  return terminal;
}

Descriptor openTcp(const std::string& host, const std::string& port) {
  addrinfo* found = nullptr;
  addrinfo wanted{};
  wanted.ai_flags = AI_NUMERICHOST;
  wanted.ai_socktype = SOCK_STREAM;
  require(getaddrinfo(host.c_str(), port.c_str(), &wanted, &found) == 0, "the address is one");
  const std::unique_ptr<addrinfo, decltype(&freeaddrinfo)> address(found, freeaddrinfo);
  Descriptor connection(socket(address->ai_family, address->ai_socktype | SOCK_CLOEXEC, 0));
  require(connect(connection.get(), address->ai_addr, address->ai_addrlen) == 0, "the connection opens");
  const int on = 1;
  setsockopt(connection.get(), IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
  return connection;
}

// A result, or the prompt.
std::string_view endOf(std::string_view answer) {
  const std::string_view prompt = "> ", result = "OK\r\n";
  require(answer.ends_with(prompt) || answer.ends_with(result), "an answer ends as expected");
  return answer.ends_with(prompt) ? prompt : result;
}

}  // namespace

double secondsOfReplay(const phone::LineName& line, const Tape& tape, std::size_t begin) {
  const bool tcp = line.kind == phone::LineName::Kind::Tcp;
  const Descriptor open = tcp ? openTcp(line.device, line.port) : openTerminal(line.device);
  std::array<char, 65536> buffer;
  std::string received;
  double since = 0;
  for (std::size_t i = 0; i < tape.size(); ++i) {
    if (i == begin) since = wallClock();
    const auto& [sent, answer] = tape[i];
    require(write(open.get(), sent.data(), sent.size()) == static_cast<ssize_t>(sent.size()), "the replay is heard");
    const std::string_view end = endOf(answer);
    for (received.clear(); !received.ends_with(end);) {
      const ssize_t count = read(open.get(), buffer.data(), buffer.size());
      require(count > 0, "the replay is answered");
      received.append(buffer.data(), static_cast<std::size_t>(count));
    }
    // The number of a message that was sent grows, by two digits at most.
    if (i >= begin)
      require(received.size() + 2 >= answer.size() && received.size() <= answer.size() + 2,
              "the replay is answered alike");
  }
  return wallClock() - since;
}

}  // namespace bench

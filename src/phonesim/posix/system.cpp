#include "phonesim/line/system.h"

#include <array>
#include <system_error>

#include <asio/posix/stream_descriptor.hpp>
#include <fcntl.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <termios.h>
#include <unistd.h>

#include "phonesim/line/asio_stream.h"

namespace phonesim {

namespace {

using asio::posix::stream_descriptor;

[[noreturn]] void fail(const std::string& what) { throw std::system_error(errno, std::generic_category(), what); }

// Owns the terminal's other end too: with nobody at it, reading would fail until somebody comes.
class TerminalDevice : public stream_descriptor {
 public:
  TerminalDevice(stream_descriptor master, stream_descriptor slave)
      : stream_descriptor(std::move(master)), slave_(std::move(slave)) {}

 private:
  stream_descriptor slave_;
};

void makeRaw(int terminal) {
  termios settings{};
  if (tcgetattr(terminal, &settings) != 0) fail("terminal settings");
  cfmakeraw(&settings);
  if (tcsetattr(terminal, TCSANOW, &settings) != 0) fail("terminal settings");
}

// A regular file (or /dev/null) is always readable, which the loop cannot wait for.
void readAll(int descriptor, const std::function<void(std::string_view)>& receive) {
  std::array<char, 4096> buffer;
  for (ssize_t count; (count = ::read(descriptor, buffer.data(), buffer.size())) > 0;)
    receive({buffer.data(), static_cast<std::size_t>(count)});
}

}  // namespace

Terminal openTerminal(EventLoop& loop) {
  stream_descriptor master(loop.context()), slave(loop.context());
  const int descriptor = posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC);
  if (descriptor < 0) fail("no pseudo-terminal");
  master.assign(descriptor);
  std::array<char, 128> path;
  if (grantpt(descriptor) != 0 || unlockpt(descriptor) != 0 || ptsname_r(descriptor, path.data(), path.size()) != 0)
    fail("no pseudo-terminal");
  const int other = ::open(path.data(), O_RDWR | O_NOCTTY | O_CLOEXEC);
  if (other < 0) fail(path.data());
  slave.assign(other);
  makeRaw(other);
  return {std::make_shared<AsioStream<TerminalDevice>>(TerminalDevice(std::move(master), std::move(slave))),
          path.data()};
}

void linkTerminal(const std::string& link, const std::string& path) {
  struct stat info {};
  if (lstat(link.c_str(), &info) == 0 && S_ISLNK(info.st_mode)) removeLink(link);
  if (symlink(path.c_str(), link.c_str()) != 0) fail(link);
}

void removeLink(const std::string& link) noexcept { ::unlink(link.c_str()); }

bool connectionsKeepPorts() { return true; }

void readStandardInput(EventLoop& loop, std::function<void(std::string_view)> receive) {
  struct stat info {};
  if (fstat(STDIN_FILENO, &info) != 0 || S_ISREG(info.st_mode) ||
      (S_ISCHR(info.st_mode) && isatty(STDIN_FILENO) == 0)) {
    loop.post([receive = std::move(receive)] {
      readAll(STDIN_FILENO, receive);
      receive({});
    });
    return;
  }
  const auto stream =
      std::make_shared<AsioStream<stream_descriptor>>(stream_descriptor(loop.context(), ::dup(STDIN_FILENO)));
  stream->onOctets = receive;
  stream->onClosed = [receive] { receive({}); };
  stream->start();
}

}  // namespace phonesim

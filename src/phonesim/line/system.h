// What each system does in its own way: see posix/ and win/.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <string_view>

#include "phonesim/line/event_loop.h"
#include "phonesim/line/stream.h"

namespace phonesim {

// A pseudo-terminal: a program opens `path` as if it were a serial port.
struct Terminal {
  std::shared_ptr<Stream> stream;
  std::string path;
};

// Throws std::system_error, or std::runtime_error where there is no such thing.
Terminal openTerminal(EventLoop& loop);
// A name of its own for it. Takes the place of an earlier link; throws when something else has that name.
void linkTerminal(const std::string& link, const std::string& path);
void removeLink(const std::string& link) noexcept;

// Whether a port is kept for a while by connections that it had. Where it is not, reuse_address() would let two
// programs have the same port at a time.
bool connectionsKeepPorts();

// Standard input, as it comes; an empty text is its end. `receive` is called by the loop.
void readStandardInput(EventLoop& loop, std::function<void(std::string_view)> receive);

}  // namespace phonesim

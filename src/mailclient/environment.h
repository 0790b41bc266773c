// What the mail client asks of the machine: the time, the time zone, and that a file is really on the disk.
#pragma once

#include <filesystem>

#include "mailclient/types.h"

namespace mailclient {

// The defaults suit tests: a clock that stands still until it is moved, a zone without offset, no waiting for disks.
class Environment {
 public:
  virtual ~Environment() = default;
  virtual Date utcNow() { return now; }
  virtual Date toLocal(Date utc) { return utc; }
  virtual Date toUtc(Date local) { return local; }
  // Returns when the file's content would survive a power failure.
  virtual void flushToDisk(const std::filesystem::path& /*file*/) {}

  Date now{36925.5};  // 3 February 2001, noon
};

}  // namespace mailclient

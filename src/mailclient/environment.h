// What the mail client asks of the machine: the time, the time zone, and what is on the disk, and since when.
#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <vector>

#include "mailclient/types.h"

namespace mailclient {

// Tells a file's content from what it was before. The unit of the time is the machine's finest.
struct FileStamp {
  std::uint64_t size = 0;
  std::int64_t modified = 0;

  friend bool operator==(const FileStamp&, const FileStamp&) = default;
};

struct FileEntry {
  std::filesystem::path name;
  FileStamp stamp;
};

// The defaults suit tests: a clock that stands still until it is moved, a zone without offset, no waiting for disks,
// nobody else at work on the files.
class Environment {
 public:
  virtual ~Environment() = default;
  virtual Date utcNow() { return now; }
  virtual Date toLocal(Date utc) { return utc; }
  virtual Date toUtc(Date local) { return local; }
  // Returns when the file's content would survive a power failure.
  virtual void flushToDisk(const std::filesystem::path& /*file*/) {}
  // Keeps every other process from this file while the answer lives; null when another one has it already.
  virtual std::shared_ptr<void> lockFile(const std::filesystem::path& file);
  // The regular files of a directory, in no order; none when it cannot be read.
  virtual std::vector<FileEntry> filesIn(const std::filesystem::path& directory);
  // Nothing when there is no such file.
  virtual FileStamp stampOf(const std::filesystem::path& file);

  Date now{36925.5};  // 3 February 2001, noon
};

}  // namespace mailclient

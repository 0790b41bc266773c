// The machine under the stand-in mail client: Windows' clock, time zone and disks.
#pragma once

#include "mailclient/environment.h"

namespace mailclient::win {

class WindowsEnvironment final : public Environment {
 public:
  Date utcNow() override;
  Date toLocal(Date utc) override;
  Date toUtc(Date local) override;
  std::shared_ptr<void> lockFile(const std::filesystem::path& file) override;
  void flushToDisk(const std::filesystem::path& file) override;
  // The run time asks for each file by itself and tells whole seconds; the listing has both at once, and finer.
  std::vector<FileEntry> filesIn(const std::filesystem::path& directory) override;
  FileStamp stampOf(const std::filesystem::path& file) override;
};

}  // namespace mailclient::win

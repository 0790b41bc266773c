#include "mailclient/environment.h"

namespace mailclient {

std::shared_ptr<void> Environment::lockFile(const std::filesystem::path& /*file*/) { return std::make_shared<int>(0); }

std::vector<FileEntry> Environment::filesIn(const std::filesystem::path& directory) {
  std::vector<FileEntry> files;
  std::error_code error;
  for (const auto& entry : std::filesystem::directory_iterator(directory, error))
    if (entry.is_regular_file(error)) files.push_back({entry.path().filename(), stampOf(entry.path())});
  return files;
}

FileStamp Environment::stampOf(const std::filesystem::path& file) {
  std::error_code error;
  const std::uintmax_t size = std::filesystem::file_size(file, error);
  if (error) return {};
  const auto modified = std::filesystem::last_write_time(file, error);
  if (error) return {};
  return {size, static_cast<std::int64_t>(modified.time_since_epoch().count())};
}

}  // namespace mailclient

#include "servers/dvmworker/win/memory_file.h"

#include <string>

#include "com/errors.h"
#include "com/windows.h"
#include "servers/common/win/settings.h"

namespace servers::dvmworker {

using platform::String;

namespace {

constexpr DWORD longestFile = 16 * 1024 * 1024;  // two full memories are smaller by far

const wchar_t* wide(const String& text) { return reinterpret_cast<const wchar_t*>(text.c_str()); }

class File {
 public:
  explicit File(HANDLE handle) : handle_(handle) {}
  File(const File&) = delete;
  File& operator=(const File&) = delete;
  ~File() {
    if (*this) CloseHandle(handle_);
  }
  explicit operator bool() const { return handle_ != INVALID_HANDLE_VALUE; }
  HANDLE get() const { return handle_; }

 private:
  HANDLE handle_;
};

String inApplicationData() {
  String folder(MAX_PATH, u'\0');
  const DWORD length =
      GetEnvironmentVariableW(L"APPDATA", reinterpret_cast<wchar_t*>(folder.data()), static_cast<DWORD>(folder.size()));
  if (length == 0 || length >= folder.size()) return {};
  folder.resize(length);
  folder += u"\\Marrick";
  CreateDirectoryW(wide(folder), nullptr);
  return folder + u"\\handset.txt";
}

bool write(const String& path, const std::string& text) {
  const File file(CreateFileW(wide(path), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr));
  DWORD written = 0;
  return file && WriteFile(file.get(), text.data(), static_cast<DWORD>(text.size()), &written, nullptr) &&
         written == text.size();
}

}  // namespace

MemoryFile::MemoryFile() {
  const auto named = settings::text(settings::workerKey, u"StateFile");
  path_ = named && !named->empty() ? *named : inApplicationData();
}

handset::Memories MemoryFile::load() const {
  const File file(
      CreateFileW(wide(path_), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
  const DWORD size = file ? GetFileSize(file.get(), nullptr) : 0;
  if (size == 0 || size > longestFile) return {};  // INVALID_FILE_SIZE is among the longer ones
  std::string text(size, '\0');
  DWORD read = 0;
  if (!ReadFile(file.get(), text.data(), size, &read, nullptr)) return {};
  text.resize(read);
  return handset::Memories::fromText(text);
}

void MemoryFile::save(const handset::Memories& memories) const noexcept {
  if (path_.empty()) return;
  com::guardedOr(false, [&] {
    const String fresh = path_ + u".new";
    return write(fresh, memories.toText()) && MoveFileExW(wide(fresh), wide(path_), MOVEFILE_REPLACE_EXISTING);
  });
}

}  // namespace servers::dvmworker

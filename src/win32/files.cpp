#include "win32/files.h"

#include <array>

#include "addin/platform/runtime_error.h"
#include "win32/text.h"

namespace win32 {
namespace {

constexpr std::size_t pieceSize = 32768;

class OpenFile {
 public:
  explicit OpenFile(const platform::String& path)
      : handle_(CreateFileW(wide(path), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING,
                            FILE_FLAG_SEQUENTIAL_SCAN, nullptr)) {
    if (handle_ != INVALID_HANDLE_VALUE) return;
    const DWORD code = GetLastError();
    platform::raiseError(code == ERROR_ACCESS_DENIED || code == ERROR_SHARING_VIOLATION ? 75 : 53);
  }
  OpenFile(const OpenFile&) = delete;
  OpenFile& operator=(const OpenFile&) = delete;
  ~OpenFile() { CloseHandle(handle_); }

  HANDLE handle() const { return handle_; }

 private:
  HANDLE handle_;
};

}  // namespace

void Files::read(platform::StringView path, const std::function<bool(std::string_view piece)>& take) {
  const OpenFile file{platform::String(path)};
  std::array<char, pieceSize> buffer;
  while (true) {
    DWORD count = 0;
    if (!ReadFile(file.handle(), buffer.data(), static_cast<DWORD>(buffer.size()), &count, nullptr))
      platform::raiseError(75);
    if (count == 0 || !take(std::string_view(buffer.data(), count))) return;
  }
}

}  // namespace win32

// A file of the system's that is open, or none.
#pragma once

#include <string_view>
#include <utility>

#include "com/windows.h"

namespace servers::dvmworker {

class File {
 public:
  File() = default;
  explicit File(HANDLE handle) noexcept : handle_(handle) {}
  File(File&& other) noexcept : handle_(std::exchange(other.handle_, INVALID_HANDLE_VALUE)) {}
  File& operator=(File other) noexcept {
    std::swap(handle_, other.handle_);
    return *this;
  }
  ~File() {
    if (*this) CloseHandle(handle_);
  }
  explicit operator bool() const noexcept { return handle_ != INVALID_HANDLE_VALUE; }
  HANDLE get() const noexcept { return handle_; }

  // Where the file stands; false when not all of it could be written.
  bool write(std::string_view text) const noexcept {
    DWORD written = 0;
    return WriteFile(handle_, text.data(), static_cast<DWORD>(text.size()), &written, nullptr) != FALSE &&
           written == text.size();
  }

 private:
  HANDLE handle_ = INVALID_HANDLE_VALUE;
};

}  // namespace servers::dvmworker

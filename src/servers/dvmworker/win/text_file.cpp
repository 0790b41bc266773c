#include "servers/dvmworker/win/text_file.h"

#include "com/errors.h"
#include "servers/common/win/wide.h"
#include "servers/dvmworker/win/file.h"

namespace servers::dvmworker {

using platform::String;

namespace {

bool write(const String& path, const std::string& text, Outlives what) {
  const File file(CreateFileW(wide(path), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr));
  return file && file.write(text) && (what == Outlives::TheProcess || FlushFileBuffers(file.get()));
}

}  // namespace

String inApplicationData(platform::StringView name) {
  String folder(MAX_PATH, u'\0');
  const DWORD length =
      GetEnvironmentVariableW(L"APPDATA", reinterpret_cast<wchar_t*>(folder.data()), static_cast<DWORD>(folder.size()));
  if (length == 0 || length >= folder.size()) return {};
  folder.resize(length);
  folder += u"\\Marrick";
  CreateDirectoryW(wide(folder), nullptr);
  return folder + u"\\" + String(name);
}

std::string readTextFile(const String& path, std::size_t longest) {
  const File file(
      CreateFileW(wide(path), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
  const DWORD size = file ? GetFileSize(file.get(), nullptr) : 0;
  if (size == 0 || size > longest) return {};  // INVALID_FILE_SIZE is among the longer ones
  std::string text(size, '\0');
  DWORD read = 0;
  if (!ReadFile(file.get(), text.data(), size, &read, nullptr)) return {};
  text.resize(read);
  return text;
}

bool replaceTextFile(const String& path, const std::string& text, Outlives what) noexcept {
  if (path.empty()) return false;
  return com::guardedOr(false, [&] {
    const String fresh = path + u".new";
    const DWORD how = MOVEFILE_REPLACE_EXISTING | (what == Outlives::APowerFailure ? MOVEFILE_WRITE_THROUGH : 0u);
    return write(fresh, text, what) && MoveFileExW(wide(fresh), wide(path), how);
  });
}

bool removeTextFile(const String& path) noexcept {
  if (DeleteFileW(wide(path))) return true;
  const DWORD error = GetLastError();
  return path.empty() || error == ERROR_FILE_NOT_FOUND || error == ERROR_PATH_NOT_FOUND;
}

}  // namespace servers::dvmworker

#include "mailclient/win/windows_environment.h"

#include <ctime>

#include "addin/platform/date.h"
#include "com/windows.h"

namespace mailclient::win {
namespace {

constexpr double epoch = 25569;  // 1 January 1970
constexpr double secondsPerDay = 86400;

Date dateOf(SYSTEMTIME time) {
  Date date{};
  SystemTimeToVariantTime(&time, &date.days);
  return date;
}

// Days to add to local time to get UTC, as they are now.
double biasNow() {
  TIME_ZONE_INFORMATION zone{};
  const DWORD season = GetTimeZoneInformation(&zone);
  const LONG minutes = zone.Bias + (season == TIME_ZONE_ID_DAYLIGHT ? zone.DaylightBias : zone.StandardBias);
  return static_cast<double>(minutes) / 1440.0;
}

// The run time's calendar knows the season of a date; outside these years the present one has to do.
bool hasSeasons(std::int32_t year) { return year >= 1970 && year <= 2037; }

std::uint64_t joined(DWORD high, DWORD low) { return std::uint64_t{high} << 32 | low; }

FileStamp fileStamp(DWORD sizeHigh, DWORD sizeLow, const FILETIME& time) {
  return {joined(sizeHigh, sizeLow), static_cast<std::int64_t>(joined(time.dwHighDateTime, time.dwLowDateTime))};
}

}  // namespace

Date WindowsEnvironment::utcNow() {
  SYSTEMTIME time{};
  GetSystemTime(&time);
  return dateOf(time);
}

Date WindowsEnvironment::toLocal(Date utc) {
  if (hasSeasons(platform::partsOf(utc).year)) {
    const auto seconds = static_cast<std::time_t>((utc.days - epoch) * secondsPerDay + 0.5);
    if (const std::tm* const t = std::localtime(&seconds)) {
      const auto local = platform::dateFromParts(
          {t->tm_year + 1900, t->tm_mon + 1, t->tm_mday, t->tm_hour, t->tm_min, t->tm_sec > 59 ? 59 : t->tm_sec});
      if (local) return *local;
    }
  }
  return Date{utc.days - biasNow()};
}

Date WindowsEnvironment::toUtc(Date local) {
  const platform::DateParts parts = platform::partsOf(local);
  std::tm time{};
  time.tm_year = parts.year - 1900;
  time.tm_mon = parts.month - 1;
  time.tm_mday = parts.day;
  time.tm_hour = parts.hour;
  time.tm_min = parts.minute;
  time.tm_sec = parts.second;
  time.tm_isdst = -1;
  if (hasSeasons(parts.year)) {
    const std::time_t seconds = std::mktime(&time);
    if (seconds != static_cast<std::time_t>(-1)) return Date{epoch + static_cast<double>(seconds) / secondsPerDay};
  }
  return Date{local.days + biasNow()};
}

void WindowsEnvironment::flushToDisk(const std::filesystem::path& file) {
  const HANDLE handle = CreateFileW(file.c_str(), GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                                    OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
  if (handle == INVALID_HANDLE_VALUE) return;
  FlushFileBuffers(handle);
  CloseHandle(handle);
}

// Where no file can be made (in a folder that is only read), there is nothing to fight for either.
std::shared_ptr<void> WindowsEnvironment::lockFile(const std::filesystem::path& file) {
  const HANDLE handle =
      CreateFileW(file.c_str(), GENERIC_WRITE, 0, nullptr, OPEN_ALWAYS, FILE_ATTRIBUTE_HIDDEN, nullptr);
  if (handle == INVALID_HANDLE_VALUE && GetLastError() == ERROR_SHARING_VIOLATION) return nullptr;
  if (handle == INVALID_HANDLE_VALUE) return std::make_shared<int>(0);
  return {handle, [](void* held) { CloseHandle(held); }};
}

std::vector<FileEntry> WindowsEnvironment::filesIn(const std::filesystem::path& directory) {
  std::vector<FileEntry> files;
  WIN32_FIND_DATAW found{};
  const HANDLE search = FindFirstFileW((directory / L"*").c_str(), &found);
  if (search == INVALID_HANDLE_VALUE) return files;
  do {
    if (found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) continue;
    files.push_back({found.cFileName, fileStamp(found.nFileSizeHigh, found.nFileSizeLow, found.ftLastWriteTime)});
  } while (FindNextFileW(search, &found));
  FindClose(search);
  return files;
}

FileStamp WindowsEnvironment::stampOf(const std::filesystem::path& file) {
  WIN32_FILE_ATTRIBUTE_DATA data{};
  if (!GetFileAttributesExW(file.c_str(), GetFileExInfoStandard, &data)) return {};
  return fileStamp(data.nFileSizeHigh, data.nFileSizeLow, data.ftLastWriteTime);
}

}  // namespace mailclient::win

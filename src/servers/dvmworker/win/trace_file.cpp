#include "servers/dvmworker/win/trace_file.h"

#include <array>
#include <cstdio>

#include "servers/common/win/settings.h"
#include "servers/common/win/wide.h"
#include "servers/dvmworker/win/file.h"
#include "servers/modem/trace_log.h"

namespace servers::dvmworker {

using platform::String;

namespace {

// Nothing that means something in a path; and COM3.txt would be the port itself, in whatever folder.
String fileNameOf(const phone::LineName& name) {
  const bool tcp = name.kind == phone::LineName::Kind::Tcp;
  const std::string text = tcp ? "tcp_" + name.device + "_" + name.port : "port_" + name.device;
  String result;
  for (const char c : text) {
    const bool plain = (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == '-';
    result += plain || c == '.' ? static_cast<char16_t>(c) : u'_';
  }
  return result;
}

class FilesOfPort final : public modem::TraceFiles {
 public:
  explicit FilesOfPort(const String& path) : paths_{path + u".txt", path + u".1.txt", path + u".2.txt"} {}

  std::optional<std::uint64_t> open() noexcept override {
    // Others may read it meanwhile.
    if (!file_)
      file_ = File(CreateFileW(wide(paths_[0]), GENERIC_WRITE, FILE_SHARE_READ, nullptr, OPEN_ALWAYS,
                               FILE_ATTRIBUTE_NORMAL, nullptr));
    LARGE_INTEGER end{};
    if (!file_ || !SetFilePointerEx(file_.get(), {}, &end, FILE_END)) return std::nullopt;
    return static_cast<std::uint64_t>(end.QuadPart);
  }
  void append(std::string_view text) noexcept override { file_.write(text); }
  bool shift(int number) noexcept override {
    if (number == 0) file_ = File();
    const auto at = static_cast<std::size_t>(number);
    return MoveFileExW(wide(paths_[at]), wide(paths_[at + 1]), MOVEFILE_REPLACE_EXISTING) != FALSE;
  }

 private:
  std::array<String, modem::TraceLog::older + 1> paths_;
  File file_;
};

std::string stampOfNow() {
  SYSTEMTIME now;
  GetLocalTime(&now);
  char text[32];
  std::snprintf(text, sizeof text, "%04u-%02u-%02u %02u:%02u:%02u.%03u", now.wYear, now.wMonth, now.wDay, now.wHour,
                now.wMinute, now.wSecond, now.wMilliseconds);
  return text;
}

}  // namespace

std::unique_ptr<phone::at::Trace> traceOf(const phone::LineName& name) {
  const String folder = settings::text(settings::workerKey, u"TraceFolder").value_or(String());
  if (folder.empty()) return nullptr;
  const bool everything = settings::number(settings::workerKey, u"TraceTexts").value_or(0) != 0;
  CreateDirectoryW(wide(folder), nullptr);
  auto log = std::make_shared<modem::TraceLog>(std::make_unique<FilesOfPort>(folder + u'\\' + fileNameOf(name)));
  return std::make_unique<phone::at::Trace>([log](std::string_view line) { log->write(stampOfNow(), line); },
                                            everything);
}

}  // namespace servers::dvmworker

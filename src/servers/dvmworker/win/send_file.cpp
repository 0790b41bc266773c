#include "servers/dvmworker/win/send_file.h"

#include <ctime>

#include "servers/common/win/settings.h"
#include "servers/dvmworker/win/text_file.h"

namespace servers::dvmworker {

namespace {

constexpr std::size_t longestNotes = 64 * 1024;  // as many messages as are remembered need a tenth of that

}  // namespace

SendFile::SendFile() {
  const auto named = settings::text(settings::workerKey, u"SendFile");
  path_ = named && !named->empty() ? *named : inApplicationData(u"sends.txt");
}

std::string SendFile::load() { return readTextFile(path_, longestNotes); }

bool SendFile::save(const std::string& text) noexcept {
  return text.empty() ? removeTextFile(path_) : replaceTextFile(path_, text, Outlives::APowerFailure);
}

std::int64_t SendFile::today() const { return std::time(nullptr) / (24 * 60 * 60); }

}  // namespace servers::dvmworker

#include "servers/dvmworker/win/memory_file.h"

#include "com/errors.h"
#include "servers/common/win/settings.h"
#include "servers/dvmworker/win/text_file.h"

namespace servers::dvmworker {

namespace {

constexpr std::size_t longestFile = 16 * 1024 * 1024;  // two full memories are smaller by far

}  // namespace

MemoryFile::MemoryFile() {
  const auto named = settings::text(settings::workerKey, u"StateFile");
  path_ = named && !named->empty() ? *named : inApplicationData(u"handset.txt");
}

handset::Memories MemoryFile::load() const { return handset::Memories::fromText(readTextFile(path_, longestFile)); }

void MemoryFile::save(const handset::Memories& memories) const noexcept {
  com::guardedOr(false, [&] { return replaceTextFile(path_, memories.toText(), Outlives::TheProcess); });
}

}  // namespace servers::dvmworker

#include "mailclient/store_cache.h"

#include <charconv>
#include <fstream>

namespace mailclient {
namespace {

constexpr std::string_view firstLine = "mailclient-cache 1\n";

}  // namespace

void StoreCache::begin(std::string& content) { content = firstLine; }

void StoreCache::append(std::string& content, const std::string& key, std::string_view message) {
  content += key + ' ' + std::to_string(message.size()) + '\n';
  content += message;
  content += '\n';
}

void StoreCache::read(const std::filesystem::path& file) {
  entries_.clear();
  std::ifstream stream(file, std::ios::binary | std::ios::ate);
  if (!stream) return;
  const auto size = static_cast<std::streamoff>(stream.tellg());
  content_.resize(size > 0 ? static_cast<std::size_t>(size) : 0);
  stream.seekg(0);
  stream.read(content_.data(), static_cast<std::streamsize>(content_.size()));
  std::string_view rest = content_;
  if (!stream || !rest.starts_with(firstLine)) return;
  rest.remove_prefix(firstLine.size());
  while (!rest.empty()) {
    const std::size_t end = rest.find('\n');
    const std::string_view line = rest.substr(0, end);
    const std::size_t blank = line.rfind(' ');
    std::size_t length = 0;
    if (end == std::string_view::npos || blank == std::string_view::npos ||
        std::from_chars(line.data() + blank + 1, line.data() + line.size(), length).ec != std::errc() ||
        length >= rest.size() - end - 1) {
      entries_.clear();
      return;
    }
    entries_[line.substr(0, blank)] = rest.substr(end + 1, length);
    rest.remove_prefix(end + 1 + length + 1);
  }
}

std::optional<std::string_view> StoreCache::find(const std::string& key) const {
  const auto at = entries_.find(key);
  return at == entries_.end() ? std::nullopt : std::optional(at->second);
}

}  // namespace mailclient

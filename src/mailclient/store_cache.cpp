#include "mailclient/store_cache.h"

#include <charconv>

#include "mailclient/text_coding.h"

namespace mailclient {
namespace {

constexpr std::string_view cacheMark = "mailclient-cache 2 ";
constexpr std::size_t headLength = cacheMark.size() + 16 + 1;

std::string headOf(std::string_view entries) {
  std::string head(cacheMark);
  const std::uint64_t print = fingerprint(entries);
  for (int shift = 60; shift >= 0; shift -= 4) head += "0123456789abcdef"[print >> shift & 15];
  return head + '\n';
}

// Takes a number and the blank behind it off the front of a line.
template <class T>
bool takeNumber(std::string_view& line, T& number) {
  const auto [end, error] = std::from_chars(line.data(), line.data() + line.size(), number);
  if (error != std::errc() || end == line.data() + line.size() || *end != ' ') return false;
  line.remove_prefix(static_cast<std::size_t>(end - line.data()) + 1);
  return true;
}

}  // namespace

void StoreCache::Writer::add(const std::string& key, const FileStamp& stamp, std::string_view message) {
  entries_ += std::to_string(message.size()) + ' ' + std::to_string(stamp.size) + ' ' + std::to_string(stamp.modified);
  entries_ += ' ' + key + '\n';
  entries_ += message;
  entries_ += '\n';
  ++size_;
}

std::string StoreCache::Writer::content() const { return headOf(entries_) + entries_; }

void StoreCache::read(std::string content) {
  entries_.clear();
  content_ = std::move(content);
  std::string_view rest = content_;
  if (rest.size() < headLength) return;
  const std::string_view head = rest.substr(0, headLength);
  rest.remove_prefix(headLength);
  if (head != headOf(rest)) return;
  while (!rest.empty())
    if (!readEntry(rest)) {
      entries_.clear();
      return;
    }
}

bool StoreCache::readEntry(std::string_view& rest) {
  const std::size_t end = rest.find('\n');
  if (end == std::string_view::npos) return false;
  std::string_view line = rest.substr(0, end);
  rest.remove_prefix(end + 1);
  std::size_t length = 0;
  Entry entry;
  const bool isWhole =
      takeNumber(line, length) && takeNumber(line, entry.stamp.size) && takeNumber(line, entry.stamp.modified);
  if (!isWhole || length >= rest.size() || rest[length] != '\n') return false;
  entry.message = rest.substr(0, length);
  rest.remove_prefix(length + 1);
  return entries_.emplace(line, entry).second;
}

std::optional<std::string_view> StoreCache::find(const std::string& key, const FileStamp& stamp) const {
  const auto at = entries_.find(key);
  if (at == entries_.end() || at->second.stamp != stamp) return std::nullopt;
  return at->second.message;
}

}  // namespace mailclient

// A copy of many message files in one, because opening thousands of files takes longer than reading them.
//
// It is written when the mail client ends in good order, and removed before a file whose name it holds is written anew;
// so as long as it is there it is true. New files are never given an old name, and a file that is not in it is read
// from its own place. Losing it costs time and nothing else.
//
//   mailclient-cache 1
//   <folder's directory>/<name without flags> <bytes>
//   <content>
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>

namespace mailclient {

class StoreCache {
 public:
  // Empty when there is none, or when it is damaged.
  void read(const std::filesystem::path& file);
  bool isEmpty() const { return entries_.empty(); }
  std::size_t size() const { return entries_.size(); }
  std::optional<std::string_view> find(const std::string& key) const;

  // For the writer: the content of a new cache file.
  static void begin(std::string& content);
  static void append(std::string& content, const std::string& key, std::string_view message);

 private:
  std::string content_;
  std::unordered_map<std::string_view, std::string_view> entries_;
};

}  // namespace mailclient

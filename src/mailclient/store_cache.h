// A copy of many message files in one, because opening thousands of files takes longer than reading them.
//
// It is written when the mail client ends in good order, and removed before a file of it is written anew. A copy
// holds as long as its file's size and time are those it was made from; a file that is not in it, or is another one
// by now, is read from its own place. Losing it costs time and nothing else, so one that is damaged in any way counts
// as lost.
//
//   mailclient-cache 2 <fingerprint of the rest, 16 hexadecimal digits>
//   <bytes of content> <file's size> <file's time> <folder's directory>/<file's name without flags>
//   <content>
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>

#include "mailclient/environment.h"

namespace mailclient {

class StoreCache {
 public:
  // `content` is what write() gave; empty when it is anything else.
  void read(std::string content);
  bool isEmpty() const { return entries_.empty(); }
  std::size_t size() const { return entries_.size(); }
  // The copy of the file with this stamp.
  std::optional<std::string_view> find(const std::string& key, const FileStamp& stamp) const;

  // Collects a new one.
  class Writer {
   public:
    void add(const std::string& key, const FileStamp& stamp, std::string_view message);
    std::size_t size() const { return size_; }
    std::string content() const;

   private:
    std::string entries_;
    std::size_t size_ = 0;
  };

 private:
  struct Entry {
    FileStamp stamp;
    std::string_view message;
  };
  // False when it is damaged.
  bool readEntry(std::string_view& rest);

  std::string content_;
  std::unordered_map<std::string_view, Entry> entries_;  // views of content_
};

}  // namespace mailclient

// Reads compound files (the structured storage of OLE: .oft, .msg), as far as finding a stream of the root storage
// goes.
//
// Format: [MS-CFB] of Microsoft's open specifications. A file is an array of sectors; a table (FAT) links them to
// chains. Streams below a limit lie in the mini stream, an array of smaller sectors with a table of its own. A
// directory of 128-byte entries names storages and streams; siblings form a binary tree. Nothing in a file is believed:
// sectors outside the file, chains that turn in circles and absurd sizes are a damaged file.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "mailclient/types.h"

namespace mailclient {

class CompoundFile {
 public:
  // Nothing when the bytes are no compound file.
  static std::optional<CompoundFile> read(std::string bytes);

  // The content of a stream of the root storage; nothing when there is none, or when its chain is damaged.
  std::optional<std::string> stream(StringView name) const;

 private:
  using Chain = std::vector<std::uint32_t>;

  bool readHeader();
  bool readDirectory();
  std::uint32_t number(std::size_t offset, std::size_t bytes) const;
  std::optional<std::string> follow(std::uint32_t first, const Chain& table, const std::string& from,
                                    std::size_t offset, std::size_t sectorSize) const;
  std::optional<std::size_t> findEntry(StringView name) const;

  std::string bytes_;
  std::size_t sectorSize_ = 0;
  std::size_t miniSectorSize_ = 0;
  std::uint32_t miniLimit_ = 0;
  Chain table_;
  Chain miniTable_;
  std::string directory_;
  std::string miniStream_;
};

}  // namespace mailclient

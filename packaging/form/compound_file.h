// Writes compound files (OLE structured storage) of version 3, as the Compound File Binary Format describes them. Made
// for small files: streams below 4,096 bytes each.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

namespace form {

using Bytes = std::vector<std::uint8_t>;

struct Stream {
  std::u16string name;  // at most 31 units
  Bytes content;
};

struct Storage {
  std::u16string name;                   // the root's is not looked at
  std::array<std::uint8_t, 16> clsid{};  // in the memory layout of Windows' GUID
  std::vector<Stream> streams;
  std::vector<Storage> storages;
};

// The whole file. The same storage gives the same bytes. std::length_error for a name or a stream that is too long.
Bytes compoundFile(const Storage& root);

}  // namespace form

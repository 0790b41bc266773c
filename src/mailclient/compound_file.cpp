#include "mailclient/compound_file.h"

namespace mailclient {
namespace {

constexpr StringView::size_type headerSize = 512;
constexpr std::size_t entrySize = 128;
constexpr std::uint32_t lastRegularSector = 0xFFFFFFFA;  // above it: free, end of chain, table sectors
constexpr std::uint32_t noEntry = 0xFFFFFFFF;
constexpr unsigned char streamType = 2;
constexpr unsigned char rootType = 5;

std::uint32_t littleEndian(const std::string& bytes, std::size_t offset, std::size_t count) {
  std::uint32_t value = 0;
  for (std::size_t i = count; i-- > 0;) value = value << 8 | static_cast<unsigned char>(bytes[offset + i]);
  return value;
}

std::vector<std::uint32_t> numbersOf(const std::string& bytes) {
  std::vector<std::uint32_t> numbers;
  for (std::size_t at = 0; at + 4 <= bytes.size(); at += 4) numbers.push_back(littleEndian(bytes, at, 4));
  return numbers;
}

}  // namespace

std::optional<CompoundFile> CompoundFile::read(std::string bytes) {
  CompoundFile file;
  file.bytes_ = std::move(bytes);
  if (!file.readHeader() || !file.readDirectory()) return std::nullopt;
  return file;
}

std::uint32_t CompoundFile::number(std::size_t offset, std::size_t bytes) const {
  return littleEndian(bytes_, offset, bytes);
}

bool CompoundFile::readHeader() {
  static const std::string signature("\xD0\xCF\x11\xE0\xA1\xB1\x1A\xE1");
  if (bytes_.size() < headerSize || bytes_.compare(0, signature.size(), signature) != 0) return false;
  const std::uint32_t shift = number(30, 2);
  const std::uint32_t miniShift = number(32, 2);
  if ((shift != 9 && shift != 12) || miniShift != 6) return false;
  sectorSize_ = std::size_t{1} << shift;
  miniSectorSize_ = std::size_t{1} << miniShift;
  miniLimit_ = number(56, 4);

  // The sectors of the FAT: 109 of them in the header, more in a chain of their own, each ending in the next one's
  // number.
  Chain tableSectors;
  for (std::size_t i = 0; i < 109; ++i) tableSectors.push_back(number(76 + i * 4, 4));
  const std::size_t sectors = bytes_.size() / sectorSize_;
  std::uint32_t next = number(68, 4);
  for (std::size_t steps = 0; next < lastRegularSector && steps < sectors; ++steps) {
    const std::size_t at = (std::size_t{next} + 1) * sectorSize_;
    if (at + sectorSize_ > bytes_.size()) return false;
    for (std::size_t i = 0; i + 4 < sectorSize_; i += 4) tableSectors.push_back(number(at + i, 4));
    next = number(at + sectorSize_ - 4, 4);
  }
  for (const std::uint32_t sector : tableSectors) {
    if (sector >= lastRegularSector) continue;
    const std::size_t at = (std::size_t{sector} + 1) * sectorSize_;
    if (at + sectorSize_ > bytes_.size()) return false;
    for (std::size_t i = 0; i < sectorSize_; i += 4) table_.push_back(number(at + i, 4));
  }
  return true;
}

bool CompoundFile::readDirectory() {
  const auto directory = follow(number(48, 4), table_, bytes_, sectorSize_, sectorSize_);
  if (!directory || directory->size() < entrySize || static_cast<unsigned char>((*directory)[66]) != rootType)
    return false;
  directory_ = *directory;
  const auto miniTable = follow(number(60, 4), table_, bytes_, sectorSize_, sectorSize_);
  const auto miniStream = follow(littleEndian(directory_, 116, 4), table_, bytes_, sectorSize_, sectorSize_);
  if (miniTable) miniTable_ = numbersOf(*miniTable);
  if (miniStream) miniStream_ = *miniStream;
  return true;
}

// The sectors of a chain, joined. Sector n of `from` starts at `offset` + n * `sectorSize`.
std::optional<std::string> CompoundFile::follow(std::uint32_t first, const Chain& table, const std::string& from,
                                                std::size_t offset, std::size_t sectorSize) const {
  std::string content;
  std::uint32_t sector = first;
  for (std::size_t steps = 0; sector < lastRegularSector; ++steps) {
    const std::size_t at = offset + std::size_t{sector} * sectorSize;
    if (steps > table.size() || sector >= table.size() || at >= from.size()) return std::nullopt;
    content.append(from, at, sectorSize);
    sector = table[sector];
  }
  return content;
}

// A walk over the whole tree below the root: files are not always sorted as they should be.
std::optional<std::size_t> CompoundFile::findEntry(StringView name) const {
  const std::size_t entries = directory_.size() / entrySize;
  std::vector<bool> seen(entries, false);
  Chain waiting{littleEndian(directory_, 76, 4)};
  while (!waiting.empty()) {
    const std::uint32_t entry = waiting.back();
    waiting.pop_back();
    if (entry == noEntry || entry >= entries || seen[entry]) continue;
    seen[entry] = true;
    const std::size_t at = entry * entrySize;
    const std::size_t length = littleEndian(directory_, at + 64, 2);
    if (static_cast<unsigned char>(directory_[at + 66]) == streamType && length == (name.size() + 1) * 2 &&
        length <= 64) {
      String found;
      for (std::size_t i = 0; i < name.size(); ++i)
        found += static_cast<char16_t>(littleEndian(directory_, at + i * 2, 2));
      if (sameName(found, name)) return at;
    }
    waiting.push_back(littleEndian(directory_, at + 68, 4));
    waiting.push_back(littleEndian(directory_, at + 72, 4));
  }
  return std::nullopt;
}

std::optional<std::string> CompoundFile::stream(StringView name) const {
  const auto at = findEntry(name);
  if (!at) return std::nullopt;
  const std::uint32_t first = littleEndian(directory_, *at + 116, 4);
  const std::uint32_t size = littleEndian(directory_, *at + 120, 4);
  auto content = size < miniLimit_ ? follow(first, miniTable_, miniStream_, 0, miniSectorSize_)
                                   : follow(first, table_, bytes_, sectorSize_, sectorSize_);
  if (!content || content->size() < size) return std::nullopt;
  content->resize(size);
  return content;
}

}  // namespace mailclient

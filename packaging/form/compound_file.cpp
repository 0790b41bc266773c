#include "compound_file.h"

#include <algorithm>
#include <stdexcept>
#include <tuple>

namespace form {
namespace {

constexpr std::size_t sectorSize = 512;
constexpr std::size_t miniSectorSize = 64;
constexpr std::size_t entrySize = 128;
constexpr std::size_t streamLimit = 4096;  // streams from this size on do not live in the mini stream
constexpr std::size_t idsPerSector = sectorSize / 4;
constexpr std::size_t idsInHeader = 109;

constexpr std::uint32_t freeSector = 0xFFFFFFFF;
constexpr std::uint32_t endOfChain = 0xFFFFFFFE;
constexpr std::uint32_t allocationTable = 0xFFFFFFFD;  // marks the sectors of the table itself
constexpr std::uint32_t noEntry = 0xFFFFFFFF;

enum Kind : std::uint8_t { storageKind = 1, streamKind = 2, rootKind = 5 };
enum Colour : std::uint8_t { red = 0, black = 1 };

template <class Number>
void append(Bytes& to, Number number) {
  for (std::size_t i = 0; i < sizeof number; ++i) to.push_back(static_cast<std::uint8_t>(number >> (8 * i)));
}

void append(Bytes& to, const Bytes& bytes) { to.insert(to.end(), bytes.begin(), bytes.end()); }

std::size_t unitsFor(std::size_t size, std::size_t unit) { return (size + unit - 1) / unit; }

void pad(Bytes& bytes, std::size_t unit, std::uint8_t with = 0) {
  bytes.resize(unitsFor(bytes.size(), unit) * unit, with);
}

struct Entry {
  std::u16string name;
  Kind kind;
  Colour colour = black;
  std::uint32_t left = noEntry;
  std::uint32_t right = noEntry;
  std::uint32_t child = noEntry;
  std::array<std::uint8_t, 16> clsid{};
  std::uint32_t start = 0;
  std::uint32_t size = 0;
};

// The order of siblings: shorter names first, then by their upper-case letters (names here are ASCII).
auto order(const std::u16string& name) {
  std::u16string upper = name;
  std::transform(upper.begin(), upper.end(), upper.begin(),
                 [](char16_t c) { return c >= u'a' && c <= u'z' ? static_cast<char16_t>(c - 32) : c; });
  return std::make_tuple(name.size(), upper);
}

class Writer {
 public:
  explicit Writer(const Storage& root) {
    entries_.push_back({u"Root Entry", rootKind});
    entries_[0].clsid = root.clsid;
    addChildren(0, root);
    entries_[0].start = endOfChain;
    entries_[0].size = static_cast<std::uint32_t>(miniStream_.size());
  }

  Bytes file() {
    const std::size_t directory = unitsFor(entries_.size() * entrySize, sectorSize);
    const std::size_t miniTable = unitsFor(miniTable_.size(), idsPerSector);
    const std::size_t miniStream = unitsFor(miniStream_.size(), sectorSize);
    std::size_t tables = 1;
    while (tables * idsPerSector < tables + directory + miniTable + miniStream) ++tables;
    if (tables > idsInHeader) throw std::length_error("too much for a small compound file");

    // The sectors, in this order: allocation table, directory, allocation table of the mini stream, mini stream.
    std::vector<std::uint32_t> table(tables, allocationTable);
    const std::uint32_t directoryStart = chain(table, directory);
    const std::uint32_t miniTableStart = chain(table, miniTable);
    entries_[0].start = chain(table, miniStream);

    Bytes bytes = header(tables, directoryStart, miniTableStart, miniTable);
    appendTable(bytes, table);
    for (const Entry& e : entries_) appendEntry(bytes, e);
    while (bytes.size() % sectorSize != 0) appendEntry(bytes, {u"", {}, red});
    appendTable(bytes, miniTable_);
    append(bytes, miniStream_);
    pad(bytes, sectorSize);
    return bytes;
  }

 private:
  // One chain of so many sectors at the table's end. Its first sector, or the end when there is none.
  static std::uint32_t chain(std::vector<std::uint32_t>& table, std::size_t sectors) {
    if (sectors == 0) return endOfChain;
    const auto first = static_cast<std::uint32_t>(table.size());
    for (std::size_t i = 1; i < sectors; ++i) table.push_back(static_cast<std::uint32_t>(table.size() + 1));
    table.push_back(endOfChain);
    return first;
  }

  std::uint32_t addEntry(const std::u16string& name, Kind kind) {
    if (name.size() > 31) throw std::length_error("a name has at most 31 characters");
    entries_.push_back({name, kind});
    return static_cast<std::uint32_t>(entries_.size() - 1);
  }

  void addChildren(std::uint32_t parent, const Storage& storage) {
    std::vector<std::uint32_t> children;
    for (const Stream& stream : storage.streams) {
      children.push_back(addEntry(stream.name, streamKind));
      store(entries_.back(), stream.content);
    }
    for (const Storage& inner : storage.storages) {
      children.push_back(addEntry(inner.name, storageKind));
      entries_.back().clsid = inner.clsid;
      addChildren(children.back(), inner);
    }
    std::sort(children.begin(), children.end(),
              [&](std::uint32_t a, std::uint32_t b) { return order(entries_[a].name) < order(entries_[b].name); });
    std::size_t levels = 0;
    while ((std::size_t{1} << levels) <= children.size()) ++levels;
    entries_[parent].child = tree(children.data(), children.size(), levels);
  }

  // A balanced tree of the sorted siblings; its lowest level is red, so that every way down meets as many black ones.
  std::uint32_t tree(const std::uint32_t* sorted, std::size_t count, std::size_t levels, bool top = true) {
    if (count == 0) return noEntry;
    const std::size_t middle = count / 2;
    Entry& e = entries_[sorted[middle]];
    e.colour = levels == 1 && !top ? red : black;
    e.left = tree(sorted, middle, levels - 1, false);
    e.right = tree(sorted + middle + 1, count - middle - 1, levels - 1, false);
    return sorted[middle];
  }

  void store(Entry& entry, const Bytes& content) {
    if (content.size() >= streamLimit) throw std::length_error("a stream has less than 4,096 bytes");
    entry.size = static_cast<std::uint32_t>(content.size());
    entry.start = chain(miniTable_, unitsFor(content.size(), miniSectorSize));
    append(miniStream_, content);
    pad(miniStream_, miniSectorSize);
  }

  static Bytes header(std::size_t tables, std::uint32_t directory, std::uint32_t miniTable, std::size_t miniTables) {
    Bytes h{0xD0, 0xCF, 0x11, 0xE0, 0xA1, 0xB1, 0x1A, 0xE1};
    h.resize(24);                      // no class
    append(h, std::uint16_t{0x3E});    // minor version
    append(h, std::uint16_t{3});       // version
    append(h, std::uint16_t{0xFFFE});  // little-endian
    append(h, std::uint16_t{9});       // sectors of 2^9 bytes
    append(h, std::uint16_t{6});       // mini sectors of 2^6 bytes
    h.resize(44);                      // reserved; directory sectors are not counted in this version
    append(h, static_cast<std::uint32_t>(tables));
    append(h, directory);
    append(h, std::uint32_t{0});  // no transactions
    append(h, static_cast<std::uint32_t>(streamLimit));
    append(h, miniTable);
    append(h, static_cast<std::uint32_t>(miniTables));
    append(h, endOfChain);  // no table sectors beyond those listed here
    append(h, std::uint32_t{0});
    for (std::uint32_t i = 0; i < idsInHeader; ++i) append(h, i < tables ? i : freeSector);
    return h;
  }

  static void appendTable(Bytes& to, const std::vector<std::uint32_t>& table) {
    for (const std::uint32_t id : table) append(to, id);
    pad(to, sectorSize, 0xFF);
  }

  static void appendEntry(Bytes& to, const Entry& e) {
    const std::size_t end = to.size() + 64;
    for (const char16_t unit : e.name) append(to, static_cast<std::uint16_t>(unit));
    to.resize(end);
    append(to, static_cast<std::uint16_t>(e.name.empty() ? 0 : (e.name.size() + 1) * 2));
    to.push_back(e.kind);
    to.push_back(e.colour);
    for (const std::uint32_t id : {e.left, e.right, e.child}) append(to, id);
    to.insert(to.end(), e.clsid.begin(), e.clsid.end());
    to.resize(to.size() + 4 + 8 + 8);  // state and times
    append(to, e.start);
    append(to, std::uint64_t{e.size});
  }

  std::vector<Entry> entries_;
  std::vector<std::uint32_t> miniTable_;
  Bytes miniStream_;
};

}  // namespace

Bytes compoundFile(const Storage& root) { return Writer(root).file(); }

}  // namespace form

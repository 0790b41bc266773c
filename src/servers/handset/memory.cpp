#include "servers/handset/memory.h"

#include <optional>
#include <vector>

#include "servers/common/fields.h"

namespace handset {

using platform::String;
using platform::StringView;
using servers::numberIn;
using servers::split;

namespace {

constexpr std::int16_t phoneCapacity = 100;
constexpr std::int16_t simCapacity = 20;

void appendEscaped(std::string& line, StringView text) {
  static constexpr char digits[] = "0123456789ABCDEF";
  for (const char16_t c : text) {
    if (c == u'\\') {
      line += "\\\\";
    } else if (c >= 0x20 && c < 0x7F) {
      line += static_cast<char>(c);
    } else {
      line += "\\u";
      for (int shift = 12; shift >= 0; shift -= 4) line += digits[(c >> shift) & 0xF];
    }
  }
}

std::optional<String> unescaped(std::string_view field) {
  String text;
  for (std::size_t i = 0; i < field.size(); ++i) {
    if (field[i] != '\\') {
      text += static_cast<char16_t>(static_cast<unsigned char>(field[i]));
    } else if (field.substr(i, 2) == "\\\\") {
      text += u'\\';
      i += 1;
    } else {
      const auto unit =
          numberIn<std::uint16_t>(field.substr(i).substr(0, 6).size() == 6 ? field.substr(i + 2, 4) : "", 16);
      if (!unit || field[i + 1] != 'u') return std::nullopt;
      text += static_cast<char16_t>(*unit);
      i += 5;
    }
  }
  return text;
}

void readMemory(Memories& memories, const std::vector<std::string_view>& fields) {
  if (fields.size() != 4) return;
  const auto store = numberIn<std::int32_t>(fields[1]);
  const auto capacity = numberIn<std::int16_t>(fields[2]);
  Memory* const memory = store ? memories.find(static_cast<Store>(*store)) : nullptr;
  if (!memory || !capacity) return;
  memory->capacity = *capacity;
  memory->supported = fields[3] != "0";
}

void readMessage(Memories& memories, const std::vector<std::string_view>& fields) {
  if (fields.size() != 7) return;
  const auto store = numberIn<std::int32_t>(fields[1]);
  const auto slot = numberIn<std::int16_t>(fields[2]);
  const auto status = numberIn<std::int32_t>(fields[3]);
  const auto number = unescaped(fields[4]);
  const auto timeStamp = unescaped(fields[5]);
  const auto text = unescaped(fields[6]);
  Memory* const memory = store ? memories.find(static_cast<Store>(*store)) : nullptr;
  if (!memory || !slot || *slot < 1 || !status || *status < 0 || *status > 3) return;
  if (!number || !timeStamp || !text) return;
  memory->slots[*slot] = {static_cast<Store>(*store), *slot, static_cast<Status>(*status), *number, *text, *timeStamp};
}

}  // namespace

std::int16_t Memory::add(StoredMessage message) {
  std::int16_t slot = 1;
  if (!slots.empty() && slots.rbegin()->first == used()) {
    slot = static_cast<std::int16_t>(used() + 1);  // without a gap
  } else {
    for (const auto& taken : slots) {
      if (taken.first != slot) break;
      ++slot;
    }
  }
  if (slot < 1 || slot > capacity) return 0;
  message.index = slot;
  slots.emplace(slot, std::move(message));
  return slot;
}

Memories::Memories() {
  phone().capacity = phoneCapacity;
  sim().capacity = simCapacity;
}

Memory* Memories::find(Store store) {
  if (store == Store::Phone) return &phone();
  return store == Store::Sim ? &sim() : nullptr;
}

std::string Memories::toText() const {
  std::string text;
  std::int32_t store = 1;
  for (const Memory& memory : memories_) {
    text += "memory\t" + std::to_string(store++) + '\t' + std::to_string(memory.capacity) + '\t' +
            (memory.supported ? "1\n" : "0\n");
    for (const auto& [slot, message] : memory.slots) text += "message\t" + lineOf(message) + '\n';
  }
  return text;
}

Memories Memories::fromText(std::string_view text) {
  Memories memories;
  for (std::string_view line : split(text, '\n')) {
    if (line.ends_with('\r')) line.remove_suffix(1);
    const auto fields = split(line, '\t');
    if (fields[0] == "memory") readMemory(memories, fields);
    if (fields[0] == "message") readMessage(memories, fields);
  }
  return memories;
}

std::string lineOf(const StoredMessage& message) {
  std::string line = std::to_string(static_cast<std::int32_t>(message.store)) + '\t' + std::to_string(message.index) +
                     '\t' + std::to_string(static_cast<std::int32_t>(message.status)) + '\t';
  appendEscaped(line, message.number);
  line += '\t';
  appendEscaped(line, message.timeStamp);
  line += '\t';
  appendEscaped(line, message.text);
  return line;
}

}  // namespace handset

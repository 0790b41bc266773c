// The dispatch identifiers that one foreign object was asked for: an object never changes them.
#pragma once

#include <array>
#include <cstring>
#include <optional>

#include "addin/platform/text.h"
#include "com/windows.h"

namespace com {

// A fixed block without a constructor to speak of: filling it at a name's first use costs no allocation, so it pays
// from the second. Names are copied, because a caller's text may have changed behind the same address. When it is full,
// the oldest name makes room.
class DispidCache {
 public:
  std::optional<DISPID> find(platform::StringView name) const noexcept {
    for (std::size_t i = 0; i < used_; ++i) {
      const Entry& e = entries_[i];
      if (e.length == name.size() && std::memcmp(e.name, name.data(), e.length * sizeof(char16_t)) == 0) return e.id;
    }
    return std::nullopt;
  }

  void remember(platform::StringView name, DISPID id) noexcept {
    if (name.size() > longest) return;
    Entry& e = entries_[next_];
    e.id = id;
    e.length = name.size();
    std::memcpy(e.name, name.data(), name.size() * sizeof(char16_t));
    next_ = (next_ + 1) % room;
    if (used_ < room) ++used_;
  }

 private:
  static constexpr std::size_t room = 12;
  static constexpr std::size_t longest = 24;

  struct Entry {
    std::size_t length;
    DISPID id;
    char16_t name[longest];
  };

  std::size_t used_ = 0;
  std::size_t next_ = 0;
  std::array<Entry, room> entries_;  // the first used_ are filled
};

}  // namespace com

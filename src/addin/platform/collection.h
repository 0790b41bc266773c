// The run time's general-purpose collection: elements in the order of adding, positions from 1, optional text keys.
//
// Keys are unique and ignore case. Errors: 9 for a position that is not there, 5 for a key that is not there, 457 for a
// key that is there already.
#pragma once

#include <algorithm>
#include <vector>

#include "addin/platform/convert.h"

namespace platform {

template <class T>
class Collection {
 public:
  // An empty key adds the element without one.
  void Add(T element, StringView key = {}) {
    if (!key.empty() && findKey(key) != entries_.end()) raiseError(457);
    entries_.push_back({String(key), std::move(element)});
  }

  std::int32_t Count() const { return static_cast<std::int32_t>(entries_.size()); }

  // `indexKey` is a text (the key) or a number (the position).
  const T& Item(const Variant& indexKey) const { return entries_[place(indexKey)].element; }
  // The element goes last, when the collection is whole again: its end may run code that looks at it.
  void Remove(const Variant& indexKey) {
    const auto at = entries_.begin() + static_cast<std::ptrdiff_t>(place(indexKey));
    const Entry gone = std::move(*at);
    entries_.erase(at);
  }

 private:
  struct Entry {
    String key;
    T element;
  };
  using Entries = std::vector<Entry>;

  typename Entries::const_iterator findKey(StringView key) const {
    return std::find_if(entries_.begin(), entries_.end(),
                        [&](const Entry& e) { return !e.key.empty() && sameName(e.key, key); });
  }

  std::size_t place(const Variant& indexKey) const {
    if (const String* const key = indexKey.as<String>()) {
      const auto at = findKey(*key);
      if (at == entries_.end()) raiseError(5);
      return static_cast<std::size_t>(at - entries_.begin());
    }
    const std::int32_t position = CLng(indexKey);
    if (position < 1 || position > Count()) raiseError(9);
    return static_cast<std::size_t>(position) - 1;
  }

  Entries entries_;
};

}  // namespace platform

// Who wants to know when a phone is plugged in or out.
#pragma once

#include <vector>

#include "servers/handset/phone.h"

namespace handset {

class Watchers {
 public:
  // Until the result is let go; the result keeps `owner`, the object that this list is part of.
  [[nodiscard]] platform::Ref<platform::Counted> add(platform::Counted* owner, Phone::OnConnection changed) {
    return platform::make<Watcher>(this, owner, std::move(changed));
  }

  // Tells those who watch now and still do when their turn comes.
  void tell(bool connected) {
    std::vector<platform::Hold<Watcher>> now;
    for (Watcher* const watcher : watchers_) now.emplace_back(watcher);
    for (const auto& watcher : now)
      if (!watcher->hasEnded()) watcher->changed(connected);
  }

 private:
  struct Watcher final : platform::Counted {
    Watcher(Watchers* l, platform::Counted* o, Phone::OnConnection c) : list(l), owner(o), changed(std::move(c)) {
      list->watchers_.push_back(this);
    }
    void terminate() noexcept override { std::erase(list->watchers_, this); }

    Watchers* list;
    platform::Ref<platform::Counted> owner;
    Phone::OnConnection changed;
  };

  std::vector<Watcher*> watchers_;
};

}  // namespace handset

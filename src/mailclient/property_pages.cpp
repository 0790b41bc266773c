#include "mailclient/property_pages.h"

namespace mailclient {

std::span<const Member> PropertyPages::members() const {
  static constexpr auto table = withCommon({
      method<&PropertyPages::add>(u"Add", 0x5F),
      method<&PropertyPages::count>(u"Count", 0x50),
      method<&PropertyPages::item>(u"Item", 0x51),
      method<&PropertyPages::remove>(u"Remove", 0x54),
  });
  return table;
}

void PropertyPages::add(const Variant& page, std::optional<String> title) {
  const Object* const object = page.as<Object>();
  if (object ? !*object : page.as<String>() == nullptr) raiseError(13);
  pages_.push_back({page, title.value_or(String())});
}

Variant PropertyPages::item(const Variant& index) { return pages_[positionOf(index, pages_.size())].page; }

void PropertyPages::remove(const Variant& index) {
  pages_.erase(pages_.begin() + static_cast<std::ptrdiff_t>(positionOf(index, pages_.size())));
}

}  // namespace mailclient

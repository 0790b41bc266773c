#include "mailclient/items.h"

#include "addin/platform/outlook.h"
#include "mailclient/client.h"
#include "mailclient/folders.h"
#include "mailclient/item.h"

namespace mailclient {

using platform::outlook::ItemsEvents;

std::span<const Member> Items::members() const {
  static constexpr auto table = withCommon({
      method<&Items::item>(u"Item", 0x51),
      method<&Items::count>(u"Count", 0x50),
      method<&Items::add>(u"Add", 0x5F),
      method<&Items::find>(u"Find", 0x62),
      method<&Items::findNext>(u"FindNext", 0x63),
      method<&Items::getFirst>(u"GetFirst", 0x56),
      method<&Items::getLast>(u"GetLast", 0x58),
      method<&Items::getNext>(u"GetNext", 0x57),
      method<&Items::getPrevious>(u"GetPrevious", 0x59),
      method<&Items::remove>(u"Remove", 0x54),
      method<&Items::restrict>(u"Restrict", 0x64),
  });
  return table;
}

Items::Items(ClientPtr client, std::shared_ptr<Folder> folder)
    : ModelObject(std::move(client), u"Items"), folder_(std::move(folder)) {
  folder_->addObserver(*this);
}

Items::Items(ClientPtr client, std::shared_ptr<Folder> folder, std::vector<MessagePtr> snapshot)
    : ModelObject(std::move(client), u"Items"), folder_(std::move(folder)), snapshot_(std::move(snapshot)) {}

Guid Items::events() const { return ItemsEvents::iid; }
void Items::terminate() noexcept { folder_->removeObserver(*this); }
Object Items::parent() const { return client().folderObject(folder_).get()->object(); }

Ref<Item> Items::add(const Variant& type) {
  String messageClass(messageClassOf(folder_->type()));
  if (const String* const text = type.as<String>()) {
    messageClass = *text;
  } else if (!type.isMissing()) {
    messageClass = messageClassOf(static_cast<ItemType>(platform::CLng(type)));
  }
  return client().itemObject(client().createItem(*folder_, messageClass));
}

std::int32_t Items::count() { return static_cast<std::int32_t>(messages().size()); }

Ref<Item> Items::item(const Variant& index) {
  const auto& all = messages();
  if (const String* const subject = index.as<String>()) {
    for (const MessagePtr& message : all)
      if (sameName((*message)[Text::Subject], *subject)) return client().itemObject(message);
    fail(failure::notFound, u"The operation failed. An object could not be found.");
  }
  return client().itemObject(all[positionOf(index, all.size())]);
}

Object Items::current() {
  const auto& all = messages();
  return cursor_ < all.size() ? client().itemObject(all[cursor_]).get()->object() : Object();
}

Object Items::getFirst() {
  cursor_ = 0;
  return current();
}

Object Items::getNext() {
  if (cursor_ < messages().size()) ++cursor_;
  return current();
}

Object Items::getLast() {
  cursor_ = messages().empty() ? 0 : messages().size() - 1;
  return current();
}

Object Items::getPrevious() {
  if (cursor_ == 0) return {};
  --cursor_;
  return current();
}

Object Items::find(const String& filter) {
  sought_.emplace(filter);
  cursor_ = static_cast<std::size_t>(-1);
  return findNext();
}

Object Items::findNext() {
  if (!sought_) return {};
  const auto& all = messages();
  for (++cursor_; cursor_ < all.size(); ++cursor_)
    if (sought_->matches(*all[cursor_])) return current();
  cursor_ = all.size();
  return {};
}

void Items::remove(std::int32_t index) {
  const MessagePtr message = messages()[positionOf(index, messages().size())];
  client().store().remove(message);
}

Ref<Items> Items::restrict(const String& text) {
  const Filter filter(text);
  std::vector<MessagePtr> found;
  for (const MessagePtr& message : messages())
    if (filter.matches(*message)) found.push_back(message);
  return make<Items>(clientPtr(), folder_, std::move(found));
}

// The object keeps itself: a listener may drop the reference that it listens through.
void Items::itemAdded(const MessagePtr& message) {
  const Ref<Items> self(this);
  if (listenerCount() != 0) fire(ItemsEvents::ItemAdd, client().itemObject(message).get()->object());
}

void Items::itemChanged(const MessagePtr& message) {
  const Ref<Items> self(this);
  if (listenerCount() != 0) fire(ItemsEvents::ItemChange, client().itemObject(message).get()->object());
}

void Items::itemRemoved() {
  const Ref<Items> self(this);
  fire(ItemsEvents::ItemRemove);
}

}  // namespace mailclient

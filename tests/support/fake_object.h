// An automation object that a test writes down member by member.
//
//   const auto item = fake("Item 7");
//   item->value(u"Body", u"Hello").method(u"Save", [](Args) { return Variant(); }).fails(u"Delete", 70);
//   outlook::MailItem mail = item->as<outlook::MailItem>();
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "addin/platform/event_source.h"
#include "addin/platform/object.h"
#include "support/seam_text.h"

namespace testing_support {

class FakeObject final : public platform::Automation, public platform::EventSource, public Labelled {
 public:
  using Script = std::function<platform::Variant(platform::Access access, platform::Args args)>;
  using Method = std::function<platform::Variant(platform::Args args)>;

  explicit FakeObject(std::string label) : label_(std::move(label)) {}
  ~FakeObject() override;

  // How the object answers. A later line for the same member replaces the earlier one; "" is the default member.
  // Members that are not written down are error 438.
  FakeObject& value(platform::StringView member,
                    platform::Variant value);                      // get and call read it, let and set write it
  FakeObject& method(platform::StringView member, Method method);  // get and call
  FakeObject& script(platform::StringView member, Script script);  // every access
  FakeObject& fails(platform::StringView member, std::int32_t number);
  FakeObject& fails(platform::StringView member, platform::RuntimeError error);
  FakeObject& removed(platform::StringView member);
  FakeObject& elements(std::vector<platform::Variant> elements);  // what enumerating gives, in order

  // Without this, any source interface can be subscribed to.
  FakeObject& hasEvents(const platform::Guid& events);
  FakeObject& failsToSubscribe(std::optional<std::int32_t> number);  // nothing: it works again

  // Events: fire(WorkerEvents::OnNotify…, 1, phone) and raiseEvent, of EventSource. One that is not declared anywhere:
  // fire(Event<String>{u"Any", 17}, text).
  std::size_t listeners() const { return listenerCount(); }

  // What a member holds now; a test failure and Empty when it is no value.
  platform::Variant valueOf(platform::StringView member) const;
  // Every use in order, in the form of lineOf without the object: Body, Mileage = "2", Save(), and "connect".
  const std::vector<std::string>& calls() const { return calls_; }
  void clearCalls() { calls_.clear(); }

  std::string label() const override { return label_; }
  platform::Object object() { return platform::Object(platform::Ref<platform::Automation>(this)); }
  template <std::derived_from<platform::Object> Facade>
  Facade as() {
    return Facade(platform::Ref<platform::Automation>(this));
  }

  // Run when the last reference has gone, and when the memory goes.
  std::function<void()> whenTerminated;
  std::function<void()> whenDestroyed;

  platform::Variant invoke(platform::StringView member, platform::Access access, platform::Args args) override;
  platform::Ref<platform::Counted> subscribe(const platform::Guid& events,
                                             const platform::Ref<platform::EventSink>& sink) override;
  platform::Ref<platform::Enumerator> enumerate() override;

 protected:
  void terminate() noexcept override;

 private:
  struct Entry {
    platform::String member;
    bool isValue;
    platform::Variant value;
    Script script;
  };
  Entry& entryOf(platform::StringView member);
  const Entry* find(platform::StringView member) const;

  std::string label_;
  std::vector<Entry> entries_;
  std::vector<std::string> calls_;
  std::optional<std::vector<platform::Variant>> elements_;
  std::optional<platform::Guid> events_;
  std::optional<std::int32_t> subscribeError_;
};

inline platform::Ref<FakeObject> fake(std::string label) { return platform::make<FakeObject>(std::move(label)); }

}  // namespace testing_support

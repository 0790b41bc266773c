// A native object with a member of every kind, and events.
#pragma once

#include <functional>

#include "addin/platform/native.h"

namespace bridge_test {

inline constexpr platform::Guid gadgetEvents{
    0x7C9F3A10, 0x5B1D, 0x4E0C, {0x91, 0x22, 0x3D, 0x0E, 0x5A, 0x77, 0x10, 0x01}};
inline constexpr platform::Event<std::int32_t, platform::String> Poked{u"Poked", 3};
inline constexpr platform::Event<platform::Object, bool&> Closing{u"Closing", 4};

class Numbers final : public platform::Enumerator {
 public:
  explicit Numbers(std::int32_t count) : count_(count) {}
  bool next(platform::Variant& element) override {
    if (at_ == failAt) platform::raiseError(70);
    if (at_ == count_) return false;
    element = platform::Variant(++at_);
    return true;
  }
  static inline std::int32_t failAt = -1;  // the enumeration fails behind so many elements

 private:
  std::int32_t count_;
  std::int32_t at_ = 0;
};

class Gadget final : public platform::NativeObject {
 public:
  std::span<const platform::Member> members() const override {
    using platform::field, platform::method, platform::property, platform::readOnly, platform::writeOnly;
    static constexpr platform::Member table[] = {
        readOnly<&Gadget::name>(u"Name", 0),
        field<&Gadget::anything>(u"Anything", 0x10),
        field<&Gadget::partner>(u"Partner", 0x12),
        method<&Gadget::add>(u"Add", 0x20),
        method<&Gadget::describe>(u"Describe", 0x21),
        method<&Gadget::change>(u"Change", 0x22),
        method<&Gadget::self>(u"Self", 0x23),
        method<&Gadget::echo>(u"Echo", 0x24),
        method<&Gadget::fail>(u"Fail", 0x26),
        method<&Gadget::changeAndFail>(u"ChangeAndFail", 0x27),
        method<&Gadget::letGo>(u"LetGo", 0x28),
        method<&Gadget::breakDown>(u"BreakDown", 0x29),
        writeOnly<&Gadget::setSecret>(u"Secret", 0x30),
        property<&Gadget::level, &Gadget::setLevel>(u"Level", 0x31),
        property<&Gadget::element, &Gadget::setElement>(u"Element", 0x32),
        method<&Gadget::nine>(u"Nine", 0x33),
    };
    return table;
  }
  platform::Guid events() const override { return hasEvents ? gadgetEvents : platform::Guid{}; }
  platform::Ref<platform::Enumerator> enumerate() override {
    if (count < 0) platform::raiseError(438);
    return platform::make<Numbers>(count);
  }

  std::int32_t add(std::int32_t a, std::int16_t b) { return a + b; }
  platform::String describe(const platform::String& text, std::optional<std::int32_t> times,
                            const platform::Variant& third) const {
    return platform::concat(text, u" x ", times.value_or(-1), third.isMissing() ? u" alone" : u" and more");
  }
  void change(platform::Variant& value) {
    arrived = value;
    value = replacement;
  }
  void changeAndFail(platform::Variant& value) {
    value = replacement;
    platform::raiseError(70);
  }
  platform::Ref<Gadget> self() { return platform::Ref<Gadget>(this); }
  platform::Variant echo(const platform::Variant& value) { return value; }
  void fail(std::int32_t number, const platform::String& source, const platform::String& text) {
    platform::raiseError(number, source, text);
  }
  void letGo() {
    if (whenLetGo) whenLetGo();
    name = u"still there";  // touches the memory behind the last reference
  }
  void breakDown() { throw 42; }
  void setSecret(const platform::String& text) { secret = text; }
  std::int32_t level() const { return level_; }
  void setLevel(std::int32_t value) { level_ = value; }
  std::int32_t element(std::int32_t index) const { return elements[static_cast<std::size_t>(index)]; }
  void setElement(std::int32_t index, std::int32_t value) { elements[static_cast<std::size_t>(index)] = value; }
  platform::String nine(const platform::Object& a, const platform::String& b, const platform::String& c,
                        const platform::String& d, const platform::String& e, const platform::String& f,
                        platform::Date g, platform::Date h, const platform::String& i) {
    return platform::concat(a ? u"object" : u"nothing", b, c, d, e, f, static_cast<std::int32_t>(g.days),
                            static_cast<std::int32_t>(h.days), i);
  }

  platform::String name = u"gadget";
  platform::Variant anything;
  platform::Object partner;
  platform::Variant arrived;
  platform::Variant replacement;
  platform::String secret;
  std::array<std::int32_t, 3> elements{10, 20, 30};
  std::int32_t count = -1;  // of the elements that enumerating gives; -1: no collection
  bool hasEvents = true;
  std::function<void()> whenLetGo;
  std::function<void()> whenTerminated;

 protected:
  void terminate() noexcept override {
    if (whenTerminated) whenTerminated();
    partner = nullptr;
  }

 private:
  std::int32_t level_ = 0;
};

}  // namespace bridge_test

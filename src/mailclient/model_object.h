// What every object of the mail client's object model shares: the mail client behind it, and the members Application,
// Class, Session and Parent.
//
// An object is a view of some state (a message, a folder, a control) and exists only while somebody holds it: asked for
// again, the same state gives the same live object, and when the last reference goes the object goes. So the objects
// that are alive are exactly those that are referenced from outside, which is how leaked references are found.
#pragma once

#include <array>
#include <map>
#include <memory>

#include "mailclient/types.h"

namespace mailclient {

class MailClient;
using ClientPtr = std::shared_ptr<MailClient>;

// Live objects by class name.
using Census = std::map<StringView, std::int32_t>;

class ModelObject : public platform::NativeObject {
 public:
  ModelObject(ClientPtr client, StringView className);
  ~ModelObject() override;

  MailClient& client() const { return *client_; }
  const ClientPtr& clientPtr() const { return client_; }
  StringView className() const { return className_; }

  Object application() const;
  Object session() const;
  virtual Object parent() const { return application(); }
  virtual std::int32_t objectClass() const { return 0; }  // an OlObjectClass

 private:
  ClientPtr client_;
  StringView className_;
};

// A table of a class's own members with the four that every Outlook object has.
template <std::size_t N>
constexpr std::array<Member, N + 4> withCommon(const Member (&own)[N]) {
  std::array<Member, N + 4> all{};
  for (std::size_t i = 0; i < N; ++i) all[i] = own[i];
  all[N] = method<&ModelObject::application>(u"Application", 0xF000);
  all[N + 1] = method<&ModelObject::parent>(u"Parent", 0xF001);
  all[N + 2] = method<&ModelObject::objectClass>(u"Class", 0xF00A);
  all[N + 3] = method<&ModelObject::session>(u"Session", 0xF00B);
  return all;
}

// The live object of a piece of state, remembered without keeping it. The object leaves in its terminate().
template <class T>
class View {
 public:
  template <class... A>
  Ref<T> get(A&&... arguments) {
    if (live_) return Ref<T>(live_);
    Ref<T> fresh = make<T>(std::forward<A>(arguments)...);
    live_ = fresh.get();
    return fresh;
  }
  T* live() const { return live_; }
  void leave() { live_ = nullptr; }

 private:
  T* live_ = nullptr;
};

// The position that an index argument means, from 0; the mail client's own error when there is no such element.
std::size_t positionOf(const Variant& index, std::size_t count);

}  // namespace mailclient

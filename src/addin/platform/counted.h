// Counted objects and the references that hold them.
//
// Everything runs on one thread (the mail client's user-interface thread), so the counts are plain integers. An object
// counts two things:
//
// * references (`Ref`): who owns it. When the last one goes, `terminate()` runs at once: the object lets go of
// everything.
// * holds (`Hold`): who is running inside it. Its memory stays until the last hold has gone as well.
//
// The two differ when an object is torn down from inside one of its own calls (a call that pumps messages may deliver
// the mail client's "disconnect"): its references into the mail client are released at that moment, as the mail client
// expects, while the frames below it on the stack still find valid memory.
#pragma once

#include <cstdint>
#include <utility>

#include "addin/platform/runtime_error.h"

namespace platform {

class Counted {
 public:
  Counted() noexcept { ++census; }
  Counted(const Counted&) = delete;
  Counted& operator=(const Counted&) = delete;

  void addRef() const noexcept { ++refs_; }
  void release() const noexcept {
    if (--refs_ > 0) return;
    if (phase_ == Phase::Alive) {
      phase_ = Phase::Ended;
      ++holds_;
      const_cast<Counted*>(this)->terminate();
      --holds_;
    }
    destroyWhenUnused();
  }

  void hold() const noexcept { ++holds_; }
  void unhold() const noexcept {
    --holds_;
    destroyWhenUnused();
  }

  // True from the moment the last reference went: the object hears no more events and starts nothing new.
  bool hasEnded() const noexcept { return phase_ != Phase::Alive; }

  static inline std::int32_t census = 0;  // live counted objects of this module

 protected:
  virtual ~Counted() { --census; }
  // Runs once, when the last reference has gone. References taken meanwhile are harmless.
  virtual void terminate() noexcept {}

 private:
  enum class Phase : std::uint8_t { Alive, Ended, Destroying };

  void destroyWhenUnused() const noexcept {
    if (refs_ > 0 || holds_ > 0 || phase_ != Phase::Ended) return;
    phase_ = Phase::Destroying;  // a reference that the destructor itself takes and drops must not end up here again
    delete this;
  }

  mutable std::int32_t refs_ = 1;  // adopted by make()
  mutable std::int32_t holds_ = 0;
  mutable Phase phase_ = Phase::Alive;
};

// Keeps an object's memory for as long as somebody runs inside it.
template <class T>
class Hold {
 public:
  explicit Hold(T* p) noexcept : p_(p) { p_->hold(); }
  Hold(const Hold& other) noexcept : Hold(other.p_) {}
  Hold& operator=(const Hold&) = delete;
  ~Hold() { p_->unhold(); }
  T* operator->() const noexcept { return p_; }
  T& operator*() const noexcept { return *p_; }

 private:
  T* p_;
};

// An owning reference. Empty is Nothing; a call through Nothing is run-time error 91.
template <class T>
class Ref {
 public:
  Ref() = default;
  Ref(std::nullptr_t) {}
  explicit Ref(T* p) noexcept : p_(p) {
    if (p_) p_->addRef();
  }
  Ref(const Ref& other) noexcept : Ref(other.p_) {}
  Ref(Ref&& other) noexcept : p_(std::exchange(other.p_, nullptr)) {}
  template <class U>
  Ref(const Ref<U>& other) noexcept : Ref(other.get()) {}
  ~Ref() {
    if (p_) p_->release();
  }

  // The new object is in place before the old one goes: the old one's end may run code that looks at this reference.
  Ref& operator=(Ref other) noexcept {
    std::swap(p_, other.p_);
    return *this;
  }

  // Takes over a reference that is already counted.
  static Ref adopt(T* p) noexcept {
    Ref r;
    r.p_ = p;
    return r;
  }

  T* get() const noexcept { return p_; }
  explicit operator bool() const noexcept { return p_ != nullptr; }
  friend bool operator==(const Ref& a, const Ref& b) noexcept { return a.p_ == b.p_; }

  // A call through a reference holds its object until the full expression ends, because the call may pump messages
  // and let go of the very field it came through.
  Hold<T> operator->() const {
    if (!p_) raiseError(91);
    return Hold<T>(p_);
  }
  T& operator*() const {
    if (!p_) raiseError(91);
    return *p_;
  }

 private:
  T* p_ = nullptr;
};

template <class T, class... A>
Ref<T> make(A&&... args) {
  return Ref<T>::adopt(new T(std::forward<A>(args)...));
}

}  // namespace platform

// The argument block of one Invoke, in both directions: automation passes arguments in reverse order, and by-reference
// ones as pointers to variables of the caller's own type.
#pragma once

#include <span>
#include <vector>

#include "com/bridge.h"

namespace com {

// More than that are refused with error 450, as by the automation run time.
inline constexpr std::size_t mostArguments = 60;

constexpr bool isPut(platform::Access access) {
  return access == platform::Access::Let || access == platform::Access::Set;
}

// Arguments of ours on their way out. The storage of by-reference ones lives here.
class OutgoingArguments {
 public:
  OutgoingArguments(platform::Args args, platform::Access access);
  OutgoingArguments(const OutgoingArguments&) = delete;
  OutgoingArguments& operator=(const OutgoingArguments&) = delete;
  ~OutgoingArguments();

  DISPPARAMS* params() noexcept { return &params_; }

  // After the call: by-reference values go to their targets.
  void writeBack();
  // The same after a failed call, whose own error is the one to tell.
  void tryWriteBack() noexcept;

 private:
  explicit OutgoingArguments(platform::Args args) noexcept : args_(args) {}
  void fill(std::size_t i);

  static inline constinit DISPID putName_ = DISPID_PROPERTYPUT;

  VARIANT& listed(std::size_t i) noexcept { return list_[args_.size() - 1 - i]; }
  platform::Args args_;
  std::size_t ready_ = 0;  // so many of list_ (from its end) and store_ are initialised
  DISPPARAMS params_{};
  VARIANT list_[mostArguments];
  VARIANT store_[mostArguments];
};

// Whether a caller's argument block can be read: S_OK, or what Invoke is to return. A put may name its value
// DISPID_PROPERTYPUT; no other argument has a name.
HRESULT checkParams(const DISPPARAMS* params, bool put) noexcept;

// A caller's arguments on their way in, after checkParams().
class IncomingArguments {
 public:
  explicit IncomingArguments(const DISPPARAMS& params);

  platform::Args args() noexcept { return {slots_.data(), count_}; }

  // After the call: those by-reference variables whose value has changed are written, each in its own type. Others are
  // left alone, since their type may be finer than ours (a currency).
  void writeBack();
  void tryWriteBack() noexcept;

 private:
  VARIANT& listed(std::size_t i) const noexcept { return params_.rgvarg[count_ - 1 - i]; }
  platform::Variant& target(std::size_t i) noexcept { return slots_[count_ + i]; }

  const DISPPARAMS& params_;
  std::size_t count_;
  std::vector<platform::Variant> slots_;  // the arguments, then the targets of the by-reference ones
};

}  // namespace com

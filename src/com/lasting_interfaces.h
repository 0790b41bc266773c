// The interfaces that others call in a process that serves, kept known to the run time.
//
// COM knows an interface of a process for as long as one object of it is held outside. When the last one is let go,
// Wine's rpcrt4 forgets the interface, and before that waits until its calls have returned; one that returns in that
// very moment goes unnoticed (RpcServerUnregisterIf and the counting of the calls have no lock in common), and the
// process waits for ever, and so does whoever let go. The last object is mostly one that has just been called: a class
// factory, a connection point. What is held for as long as the process serves is never the last.
#pragma once

#include "com/pointers.h"

namespace com {

// Those of native objects and of the factories that make them. COM must be initialised, and stay so. What cannot be
// kept is not.
class LastingInterfaces {
 public:
  LastingInterfaces() noexcept;
  LastingInterfaces(const LastingInterfaces&) = delete;
  LastingInterfaces& operator=(const LastingInterfaces&) = delete;
  ~LastingInterfaces();

  // How many could be kept, of six.
  int count() const noexcept { return count_; }

 private:
  Ptr<IStream> references_;
  int count_ = 0;
};

}  // namespace com

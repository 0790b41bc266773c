// A phone-connection worker whose calls fail, in place of dvmworker.exe: this program serves it to other processes.
#pragma once

#include <cstdint>
#include <memory>

namespace failures_tests {

enum class Fails : std::uint8_t {
  Nothing,  // one phone is connected
  Calls,    // every call of every object
  Notices,  // the worker raises no events
};

inline constexpr const char* failedCall = "Error:-2147467259, The phone is broken, Broken phone";

// Stands in the registry, and on a thread of its own, for as long as it lives.
class FailingWorker {
 public:
  explicit FailingWorker(Fails what);
  FailingWorker(const FailingWorker&) = delete;
  FailingWorker& operator=(const FailingWorker&) = delete;
  ~FailingWorker();

  // False when it could not be offered.
  bool isServing() const;
  void fail(Fails what);

 private:
  class Server;
  std::unique_ptr<Server> server_;
};

}  // namespace failures_tests

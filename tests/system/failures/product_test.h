// The installed product, with the handset that dvmworker.exe itself simulates: it fails in ways that no phone behind a
// line does.
#pragma once

#include "support/win32/installed_product.h"

namespace failures_tests {

using namespace installed_product;
using installed_product::operator+;
using testing_support::Handset;

inline constexpr std::int32_t phoneMemory = 1;
inline constexpr std::int32_t sim = 2;

class ProductTest : public InstalledProduct {
 protected:
  ProductTest();
  ~ProductTest() override;

  // A simulated handset, plugged in, with empty memories.
  void startHandset();
  // The same server after a crash: it is started again and keeps what was stored.
  void restartHandset() { handset_ = Handset::connect(); }
  // As a crash of dvmworker.exe.
  void killWorker();

  Handset handset_;
};

}  // namespace failures_tests

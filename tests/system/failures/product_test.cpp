#include "product_test.h"

namespace failures_tests {

[[maybe_unused]] static const auto* const registration = testing::AddGlobalTestEnvironment(new Registration);

ProductTest::ProductTest() { testing_support::setHandsetStateFile(folder_ + L"\\handset.txt"); }
ProductTest::~ProductTest() { handset_ = nullptr; }

void ProductTest::startHandset() {
  handset_ = Handset::connect();
  handset_.Plug();
  ASSERT_EQ(handset_.StoredCount(phoneMemory) + handset_.StoredCount(sim), 0);
}

void ProductTest::killWorker() {
  const auto id = static_cast<std::uint32_t>(handset_.ProcessId());
  ASSERT_TRUE(testing_support::killProcess(id));
  handset_ = nullptr;
}

}  // namespace failures_tests

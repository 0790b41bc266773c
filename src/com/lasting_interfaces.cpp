#include "com/lasting_interfaces.h"

#include <algorithm>
#include <array>

#include "com/com_object.h"

namespace com {
namespace {

const std::array kept{IID_IUnknown,         IID_IDispatch,   IID_IClassFactory, IID_IConnectionPointContainer,
                      IID_IConnectionPoint, IID_IEnumVARIANT};

// Says that it has them all. Nobody can call them: what refers to it never leaves this process.
class Anchor final : public ComObject<IUnknown> {
 protected:
  void* find(REFIID iid) override {
    const bool known = std::find(kept.begin(), kept.end(), iid) != kept.end();
    return known ? static_cast<IUnknown*>(this) : nullptr;
  }
};

}  // namespace

LastingInterfaces::LastingInterfaces() noexcept {
  guarded([this] {
    const auto anchor = makeCom<Anchor>();
    check(CreateStreamOnHGlobal(nullptr, TRUE, references_.put()));
    for (const IID& iid : kept) {
      check(CoMarshalInterface(references_.get(), iid, anchor.get(), MSHCTX_LOCAL, nullptr, MSHLFLAGS_TABLESTRONG));
      ++count_;
    }
    return S_OK;
  });
}

LastingInterfaces::~LastingInterfaces() {
  if (!references_) return;
  references_->Seek({}, STREAM_SEEK_SET, nullptr);
  for (; count_ > 0; --count_) CoReleaseMarshalData(references_.get());
}

}  // namespace com

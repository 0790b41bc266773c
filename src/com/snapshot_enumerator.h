// COM's enumerators over a list that was taken when the walk began.
#pragma once

#include <vector>

#include "com/com_object.h"

namespace com {

// `Interface` enumerates `Element`; Owner keeps what one element is made of, and its give() hands out a counted one.
template <class Interface, class Element, class Owner>
class SnapshotEnumerator final : public ComObject<Interface> {
 public:
  explicit SnapshotEnumerator(std::vector<Owner> list, std::size_t at = 0) : list_(std::move(list)), at_(at) {}

  STDMETHODIMP Next(ULONG count, Element* to, ULONG* fetched) override {
    if (fetched) *fetched = 0;
    if ((!to && count > 0) || (!fetched && count != 1)) return E_POINTER;
    ULONG done = 0;
    for (; done < count && at_ < list_.size(); ++done) to[done] = list_[at_++].give();
    if (fetched) *fetched = done;
    return done == count ? S_OK : S_FALSE;
  }

  STDMETHODIMP Skip(ULONG count) override {
    const std::size_t left = list_.size() - at_;
    at_ += count < left ? count : left;
    return count <= left ? S_OK : S_FALSE;
  }

  STDMETHODIMP Reset() override {
    at_ = 0;
    return S_OK;
  }

  STDMETHODIMP Clone(Interface** result) override {
    if (!result) return E_POINTER;
    *result = nullptr;
    return guarded([&] {
      *result = makeCom<SnapshotEnumerator>(list_, at_).detach();
      return S_OK;
    });
  }

 private:
  LiveExport live_;
  std::vector<Owner> list_;
  std::size_t at_;
};

}  // namespace com

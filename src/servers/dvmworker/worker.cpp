#include "servers/dvmworker/worker.h"

#include <algorithm>

namespace servers::dvmworker {

using namespace platform;

std::span<const Member> CellPhone::members() const {
  namespace id = dvmworkerlib::dispid;
  static constexpr Member table[] = {
      method<&CellPhone::IsConnected>(u"IsConnected", id::phoneIsConnected),
      readOnly<&CellPhone::sms_>(u"SMS", id::phoneSMS),
      method<&CellPhone::Name>(u"Name", id::phoneName),
  };
  return table;
}

std::span<const Member> CellPhones::members() const {
  namespace id = dvmworkerlib::dispid;
  static constexpr Member table[] = {
      method<&CellPhones::Count>(u"Count", id::phonesCount),
      method<&CellPhones::Item>(u"Item", id::phonesItem),
  };
  return table;
}

Ref<CellPhone> CellPhones::Item(std::int32_t index) const {
  if (index < 0 || index >= Count()) raiseError(9);
  return phones_[static_cast<std::size_t>(index)];
}

void CellPhones::add(const Ref<CellPhone>& phone) {
  phones_.push_back(phone);
  for (Worker* const worker : workers_) worker->watch(phone);
}

Worker::Worker(Scheduler& scheduler, Ref<CellPhones> phones) : scheduler_(scheduler), phones_(std::move(phones)) {
  for (const auto& phone : phones_->all()) watch(phone);
  phones_->workerBegins(*this);
}

void Worker::watch(const Ref<CellPhone>& phone) {
  watching_.push_back(phone->phone()->watch([this, phone](bool connected) { notice(phone, connected); }));
}

void Worker::terminate() noexcept {
  phones_->workerEnds(*this);
  watching_.clear();
  notices_.clear();
}

std::span<const Member> Worker::members() const {
  namespace id = dvmworkerlib::dispid;
  static constexpr Member table[] = {
      readOnly<&Worker::phones_>(u"CellPhones", id::workerCellPhones),
      method<&Worker::IsConnected>(u"IsConnected", id::workerIsConnected),
  };
  return table;
}

bool Worker::IsConnected() const {
  const auto& phones = phones_->all();
  return std::any_of(phones.begin(), phones.end(), [](const Ref<CellPhone>& phone) { return phone->IsConnected(); });
}

void Worker::notice(const Ref<CellPhone>& phone, bool connected) {
  notices_.push_back(scheduler_.after(0, [this, phone, connected] {
    const Hold<Worker> keep(this);
    const Ref<CellPhone> which = phone;
    const std::int32_t flag = connected ? 1 : 0;
    const auto done = std::move(notices_.front());
    notices_.pop_front();
    fire(dvmworkerlib::WorkerEvents::OnNotifyCellPhoneConnected, flag, which->object());
  }));
}

}  // namespace servers::dvmworker

// The phone-connection worker: the list of phones, and notices when one is plugged in or out.
//
//   Worker      CellPhones, IsConnected (any of them), [event] OnNotifyCellPhoneConnected(bConnected, CellPhone)
//   CellPhones  Count, Item(index) from 0; error 9 for a position that is not there
//   CellPhone   IsConnected, SMS, Name
//
// Notices are work of their own, never part of another call; one may arrive while a listener is still busy with the one
// before, because a listener that waits for something must hear that the phone is gone.
#pragma once

#include <deque>
#include <vector>

#include "addin/platform/dvmworkerlib.h"
#include "addin/platform/native.h"
#include "servers/common/scheduler.h"
#include "servers/handset/phone.h"

namespace servers::dvmworker {

class CellPhone final : public platform::NativeObject {
 public:
  // `sms` is the phone's SMS object, here or in sms_object.dll.
  CellPhone(platform::Ref<handset::Phone> phone, platform::Object sms)
      : phone_(std::move(phone)), sms_(std::move(sms)) {}

  std::span<const platform::Member> members() const override;

  bool IsConnected() { return phone_->isConnected(); }
  const platform::Ref<handset::Phone>& phone() const { return phone_; }

 private:
  platform::String Name() { return phone_->name(); }

  platform::Ref<handset::Phone> phone_;
  platform::Object sms_;
};

class Worker;

class CellPhones final : public platform::NativeObject {
 public:
  explicit CellPhones(std::vector<platform::Ref<CellPhone>> phones = {}) : phones_(std::move(phones)) {}

  std::span<const platform::Member> members() const override;

  const std::vector<platform::Ref<CellPhone>>& all() const { return phones_; }

  // One more, behind the others; the workers hear of it from then on.
  void add(const platform::Ref<CellPhone>& phone);
  void workerBegins(Worker& worker) { workers_.push_back(&worker); }
  void workerEnds(Worker& worker) noexcept { std::erase(workers_, &worker); }

 private:
  std::int32_t Count() const { return static_cast<std::int32_t>(phones_.size()); }
  platform::Ref<CellPhone> Item(std::int32_t index) const;

  std::vector<platform::Ref<CellPhone>> phones_;
  std::vector<Worker*> workers_;
};

class Worker final : public platform::NativeObject {
 public:
  Worker(Scheduler& scheduler, platform::Ref<CellPhones> phones);

  std::span<const platform::Member> members() const override;
  platform::Guid events() const override { return platform::dvmworkerlib::WorkerEvents::iid; }

  bool IsConnected() const;
  void watch(const platform::Ref<CellPhone>& phone);

 private:
  void terminate() noexcept override;
  void notice(const platform::Ref<CellPhone>& phone, bool connected);

  Scheduler& scheduler_;
  platform::Ref<CellPhones> phones_;
  std::vector<platform::Ref<platform::Counted>> watching_;
  std::deque<platform::Ref<platform::Counted>> notices_;  // not yet delivered, in order
};

}  // namespace servers::dvmworker

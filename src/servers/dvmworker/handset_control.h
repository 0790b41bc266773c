// DVMWorker.Handset: what the outside world does to the simulated handset, for tests, demonstrations and scripts.
//
//   Set h = CreateObject("DVMWorker.Handset")
//   h.Deliver "+46701234567", "Hello", "010203040506"
//
// Stores are 1 (phone memory) and 2 (SIM card), statuses 0 to 3, time stamps twelve digits YYMMDDhhmmss. Operations are
// "list", "delete" and "send". Positions count from 0, slots from 1. Error 5 for what is none of these, 9 for a
// position that is not there.
//
//   Name, IsConnected, ProcessId
//   Plug, Unplug
//   Deliver(originator, text, timeStamp) -> slot        arrives from the network: on the SIM, else in the phone memory;
//                                                        0 when both are full
//   Put(store, status, number, text, timeStamp) -> slot  0 when the store is full
//   Remove(store, slot), Clear(store), Fill(store) -> how many old, read messages it took
//   StoredCount(store), Stored(store)                    text, one line per message: store, slot, status, number, time
//                                                        stamp and text with tabs between, as in the state file
//   SetCapacity(store, capacity), SetSupported(store, supported), FailCapacity(fails)
//   AnswerNext(operation, result, [milliseconds])        the next request of that kind ends with this result, that late
//   SilenceNext(operation)                               it is never answered
//   ForgetOutcomes                                       takes back what was said of requests that have not come
//   SentCount, SentServiceCentre(i), SentDestination(i), SentText(i), ClearSent
#pragma once

#include "addin/platform/native.h"
#include "servers/handset/simulated_phone.h"

namespace servers::dvmworker {

inline constexpr platform::StringView progIdHandset = u"DVMWorker.Handset";
inline constexpr platform::Guid clsidHandset{
    0xA68F4E95, 0x2E7B, 0x4732, {0xAC, 0xB3, 0x83, 0x4F, 0x31, 0x8B, 0xC5, 0x76}};

class HandsetControl final : public platform::NativeObject {
 public:
  HandsetControl(platform::Ref<handset::SimulatedPhone> phone, std::int32_t processId)
      : phone_(std::move(phone)), processId_(processId) {}

  std::span<const platform::Member> members() const override;

 private:
  platform::String Name() { return phone_->name(); }
  bool IsConnected() { return phone_->isConnected(); }
  void Plug() { phone_->plug(); }
  void Unplug() { phone_->unplug(); }
  std::int16_t Deliver(const platform::String& originator, const platform::String& text,
                       const platform::String& timeStamp);
  std::int16_t Put(std::int32_t store, std::int32_t status, const platform::String& number,
                   const platform::String& text, const platform::String& timeStamp);
  bool Remove(std::int32_t store, std::int16_t slot);
  void Clear(std::int32_t store);
  std::int16_t Fill(std::int32_t store);
  std::int32_t StoredCount(std::int32_t store);
  platform::String Stored(std::int32_t store);
  void SetCapacity(std::int32_t store, std::int16_t capacity);
  void SetSupported(std::int32_t store, bool supported);
  void FailCapacity(bool fails) { phone_->failCapacity(fails); }
  void AnswerNext(const platform::String& operation, std::int32_t result, const std::optional<std::int32_t>& delay);
  void SilenceNext(const platform::String& operation);
  void ForgetOutcomes() { phone_->forgetScripts(); }
  std::int32_t SentCount() { return static_cast<std::int32_t>(phone_->sent().size()); }
  platform::String SentServiceCentre(std::int32_t position) { return sent(position).serviceCentre; }
  platform::String SentDestination(std::int32_t position) { return sent(position).destination; }
  platform::String SentText(std::int32_t position) { return sent(position).text; }
  void ClearSent() { phone_->clearSent(); }
  handset::OutgoingMessage sent(std::int32_t position);

  platform::Ref<handset::SimulatedPhone> phone_;
  std::int32_t processId_;
};

}  // namespace servers::dvmworker

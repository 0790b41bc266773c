// What the tests of the servers listen with: a field like the add-in's own, and a list of what arrived.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "addin/platform/dvmworkerlib.h"
#include "addin/platform/sms_objectlib.h"
#include "addin/platform/timermm.h"
#include "addin/platform/with_events.h"
#include "support/text.h"

namespace servers_testing {

// Answers of an SMS object, as "transaction status[ text]".
class AnswerRecorder final : public platform::Counted {
 public:
  explicit AnswerRecorder(const platform::Object& sms) { m_objSMS = platform::as<platform::sms_objectlib::SMS>(sms); }

  std::vector<std::string> lines;
  std::vector<platform::sms_objectlib::ShortMessage> messages;  // of the answers that carried one
  std::function<void()> inside;                                 // runs in the event

 private:
  void m_objSMS_OnNotifyResponse(std::int32_t transaction, std::int32_t status, const platform::Object& message) {
    std::string line = std::to_string(transaction) + ' ' + std::to_string(static_cast<std::uint32_t>(status));
    if (message) {
      messages.push_back(platform::as<platform::sms_objectlib::ShortMessage>(message));
      line += ' ' + testing_support::utf8(messages.back().Text());
    }
    lines.push_back(line);
    if (inside) inside();
  }

  platform::WithEvents<platform::sms_objectlib::SMS> m_objSMS{
      this,
      platform::on<platform::sms_objectlib::SMSEvents::OnNotifyResponse, &AnswerRecorder::m_objSMS_OnNotifyResponse>};
};

// Notices of a worker.
class NoticeRecorder final : public platform::Counted {
 public:
  explicit NoticeRecorder(const platform::Object& worker) {
    m_objCAPI = platform::as<platform::dvmworkerlib::Worker>(worker);
  }

  struct Notice {
    std::int32_t connected;
    platform::Object phone;
    friend bool operator==(const Notice&, const Notice&) = default;
  };
  std::vector<Notice> notices;
  std::function<void()> inside;

 private:
  void m_objCAPI_OnNotifyCellPhoneConnected(std::int32_t connected, const platform::Object& phone) {
    notices.push_back({connected, phone});
    if (inside) inside();
  }

  platform::WithEvents<platform::dvmworkerlib::Worker> m_objCAPI{
      this, platform::on<platform::dvmworkerlib::WorkerEvents::OnNotifyCellPhoneConnected,
                         &NoticeRecorder::m_objCAPI_OnNotifyCellPhoneConnected>};
};

// A timer and the milliseconds that its events brought.
class TickRecorder final : public platform::Counted {
 public:
  explicit TickRecorder(const platform::Object& timer) { m_objTimer = platform::as<platform::timermm::Timer>(timer); }

  platform::timermm::Timer timer() const { return m_objTimer.get(); }
  void releaseTimer() { m_objTimer = nullptr; }

  std::vector<std::int32_t> ticks;
  std::function<void()> inside;

 private:
  void m_objTimer_Timer(std::int32_t milliseconds) {
    ticks.push_back(milliseconds);
    if (inside) inside();
  }

  platform::WithEvents<platform::timermm::Timer> m_objTimer{
      this, platform::on<platform::timermm::TimerEvents::Timer, &TickRecorder::m_objTimer_Timer>};
};

}  // namespace servers_testing

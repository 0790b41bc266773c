// DVMWORKERLib, the phone-connection worker (dvmworker.exe): the list of phones, and a phone's SMS object.
#pragma once

#include "addin/platform/object.h"
#include "addin/platform/sms_objectlib.h"

namespace platform::dvmworkerlib {

inline constexpr StringView progIdWorker = u"DVMWorker.Worker";
inline constexpr Guid clsidWorker{0x47EAA099, 0x2CB6, 0x416D, {0x86, 0xDC, 0x28, 0x3C, 0xF0, 0x48, 0x0F, 0xF9}};

struct WorkerEvents {
  static constexpr Guid iid{0x1509BB0A, 0x9BF1, 0x4331, {0x8A, 0x11, 0x87, 0x83, 0x59, 0x39, 0x42, 0xA4}};
  // A phone was attached (bConnected non-zero) or detached (zero).
  static constexpr Event<std::int32_t, Object> OnNotifyCellPhoneConnected{u"OnNotifyCellPhoneConnected", 1};
};

// Dispatch identifiers of the members, for who serves them.
namespace dispid {
inline constexpr std::int32_t workerCellPhones = 1, workerIsConnected = 2;
inline constexpr std::int32_t phonesCount = 1, phonesItem = 2;
inline constexpr std::int32_t phoneIsConnected = 1, phoneSMS = 2, phoneName = 3;
}  // namespace dispid

class CellPhone : public Object {
 public:
  using Object::Object;
  bool IsConnected() const { return get<bool>(u"IsConnected"); }
  String Name() const { return get<String>(u"Name"); }
  sms_objectlib::SMS SMS() const { return get<sms_objectlib::SMS>(u"SMS"); }
};

// Positions count from 0.
class CellPhones : public Object {
 public:
  using Object::Object;
  std::int32_t Count() const { return get<std::int32_t>(u"Count"); }
  CellPhone Item(std::int32_t index) const { return call<CellPhone>(u"Item", index); }
};

class Worker : public Object {
 public:
  using Object::Object;
  using Events = WorkerEvents;
  dvmworkerlib::CellPhones CellPhones() const { return get<dvmworkerlib::CellPhones>(u"CellPhones"); }
  bool IsConnected() const { return get<bool>(u"IsConnected"); }  // true while any phone is
};

}  // namespace platform::dvmworkerlib

#include "oracle/phone/gsmlib_oracle.h"

#include <gsmlib/gsm_error.h>
#include <gsmlib/gsm_sms.h>

namespace oracle {
namespace {

std::string shown(const gsmlib::Address& address) {
  return (address._type == gsmlib::Address::International ? "+" : "") + address._number;
}

}  // namespace

GsmlibMessage gsmlibDecode(const std::string& hex, bool received) {
  GsmlibMessage result;
  try {
    const gsmlib::SMSMessageRef message = gsmlib::SMSMessage::decode(hex, received);
    result.number = shown(message->address());
    result.serviceCentre = shown(message->serviceCentreAddress());
    result.text = message->userData();
    const gsmlib::Timestamp stamp = message->serviceCentreTimestamp();
    result.year = stamp._year;
    result.month = stamp._month;
    result.day = stamp._day;
    result.hour = stamp._hour;
    result.minute = stamp._minute;
    result.second = stamp._seconds;
    result.decoded = true;
  } catch (const gsmlib::GsmException& error) {
    result.error = error.what();
  }
  return result;
}

}  // namespace oracle

// gsmlib releases an array as if it were none, which is harmless and none of our doing.
extern "C" const char* __asan_default_options() { return "alloc_dealloc_mismatch=0"; }

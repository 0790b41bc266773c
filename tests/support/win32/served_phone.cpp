#include "support/win32/served_phone.h"

#include "com/bridge.h"
#include "com/create_object.h"
#include "phone/pdu/deliver.h"
#include "phone/pdu/hex.h"
#include "support/win32/product.h"

namespace testing_support {

namespace lib = platform::dvmworkerlib;

namespace {

constexpr std::int32_t phoneMemory = 1;
constexpr std::int32_t simCard = 2;

lib::Worker newWorker() {
  startWorker();
  com::Ptr<IDispatch> dispatch;
  if (FAILED(com::createObject(com::iidOf(lib::clsidWorker), dispatch))) platform::raiseError(429);
  return platform::as<lib::Worker>(com::import(dispatch.get()));
}

phone::TimeStamp stampOf(std::string_view twelve) {
  const auto pair = [&](std::size_t i) { return (twelve[2 * i] - '0') * 10 + (twelve[2 * i + 1] - '0'); };
  return {2000 + pair(0), pair(1), pair(2), pair(3), pair(4), pair(5), {}};
}

}  // namespace

ServedPhone::ServedPhone(const std::wstring& memoryFile, const std::wstring& arguments)
    : command_(L"--memory \"" + memoryFile + L"\" " + arguments + L" --listen ") {
  start();
}

ServedPhone::~ServedPhone() {
  worker_ = nullptr;
  endWorker();
  setPorts(std::nullopt);
}

bool ServedPhone::serve() {
  endWorker();
  setPorts(L"tcp:" + std::wstring(address_.begin(), address_.end()));
  worker_ = newWorker();
  return awaitConnected();
}

void ServedPhone::start() {
  phonesim_.emplace(command_ + std::wstring(address_.begin(), address_.end()));
  address_ = phonesim_->awaitLine("* tcp ").value_or(address_);
}

bool ServedPhone::awaitConnected(bool connected) const {
  return waitUntil([&] { return worker_.IsConnected() == connected; });
}

std::vector<std::string> ServedPhone::commands(const std::string& command, const std::string& number,
                                               const platform::String& text, std::string_view stamp) {
  static std::uint8_t reference = 0;
  const phone::Deliver like{.originator = phone::parseNumber(std::u16string(number.begin(), number.end())).value(),
                            .timeStamp = stampOf(stamp)};
  std::vector<std::string> all;
  for (const phone::EncodedPdu& part : phone::encodeDeliver(like, text, ++reference))
    all.push_back(command + ' ' + phone::toHex(part.octets));
  return all;
}

bool ServedPhone::receives(const std::string& number, const platform::String& text, std::string_view stamp) {
  for (const std::string& command : commands("deliver-pdu", number, text, stamp))
    if (!ask(command).ok) return false;
  return awaitCopy();
}

bool ServedPhone::awaitCopy() {
  const auto sms = worker_.CellPhones().Item(0).SMS();
  const auto agree = [&](const char* memory, std::int32_t store) {
    return stored(memory).size() == static_cast<std::size_t>(sms.StorageUsed(store));
  };
  return waitUntil([&] { return agree("ME", phoneMemory) && agree("SM", simCard); });
}

}  // namespace testing_support

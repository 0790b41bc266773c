// The installed product and its phone: the add-in in a mail client, the COM servers, and phonesim at the end of a line.
#pragma once

#include <string>

#include "support/win32/installed_product.h"
#include "support/win32/served_phone.h"

namespace phone_tests {

using namespace installed_product;
using installed_product::operator+;
using testing_support::ServedPhone;

inline constexpr const char* addressOfAnna = "Anna Berg [+46701112233]";

class PhoneTest : public InstalledProduct {
 protected:
  PhoneTest();
  ~PhoneTest() override;

  // A phone of this test's own, known to the server; then the mail client, with a contact Anna Berg.
  void start(const std::wstring& arguments = L"") {
    startPhone(arguments);
    ASSERT_TRUE(phone_->serve());
    startClient();
  }
  void startPhone(const std::wstring& arguments = L"") {
    phone_ = std::make_unique<ServedPhone>(folder_ + L"\\phone", arguments);
  }
  void startClient();
  // A command at the phone's console, which must be understood; its answer's lines.
  Lines phone(const std::string& command);
  Lines sent() { return phone("sent"); }
  // Waits until the phone has handed so many messages to the network.
  bool awaitSent(std::size_t count);
  void arrives(const std::string& text, const std::string& number = "+46701112233");

  // The phone is gone, or there again, and the add-in has been told.
  void awaitGone(std::size_t from) { EXPECT_TRUE(waitForTrace("m_objSMSHandler_OnPhoneConnected: False", from)); }
  void awaitBack(std::size_t from) { EXPECT_TRUE(waitForTrace("m_objSMSHandler_OnPhoneConnected: True", from)); }

  // The bodies of a folder's items, as `list` shows them.
  Lines bodies(const std::string& folder);
  // Those lines of the trace that begin with one of these.
  Lines tracedOf(std::size_t from, const Lines& beginnings) const;

  std::unique_ptr<ServedPhone> phone_;
};

inline const Lines goneLines{"m_bPhoneConnected = 0", "Phone disconnected!", "m_objSMSHandler_OnPhoneConnected: False"};
inline const Lines backLines{"m_bPhoneConnected = 1", "New phone connected!", "Use new phone",
                             "m_objSMSHandler_OnPhoneConnected: True"};
// A message that failed, with the answer's status and the failures before this one.
Lines failedLines(std::int32_t status, int before);

}  // namespace phone_tests

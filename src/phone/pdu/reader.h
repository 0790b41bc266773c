// Octets read one after the other. Nobody reads past their end: what comes from the air or a memory is never trusted.
#pragma once

#include <cstddef>
#include <stdexcept>

#include "phone/text/octets.h"

namespace phone {

// A PDU that ends too early or contradicts itself. Stays inside this folder: decodePdu() turns it into a message that
// can be shown.
class BadPdu : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

class OctetReader {
 public:
  explicit OctetReader(OctetsView octets) : rest_(octets) {}

  std::size_t left() const { return rest_.size(); }
  std::uint8_t octet() { return take(1).front(); }

  OctetsView take(std::size_t count) {
    if (count > rest_.size()) throw BadPdu("it ends too early");
    const OctetsView taken = rest_.first(count);
    rest_ = rest_.subspan(count);
    return taken;
  }

 private:
  OctetsView rest_;
};

}  // namespace phone

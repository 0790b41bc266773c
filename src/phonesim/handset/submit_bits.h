// A Submit's first octet (3GPP TS 23.040, 9.2.2.2).
#pragma once

namespace phonesim::submit_bits {

inline constexpr int type = 0x03;
inline constexpr int deliver = 0x00;  // of a message that was received (9.2.2.1)
inline constexpr int submit = 0x01;
inline constexpr int validity = 0x18;
inline constexpr int relativeValidity = 0x10;
inline constexpr int statusReport = 0x20;  // is asked for
inline constexpr int header = 0x40;

}  // namespace phonesim::submit_bits

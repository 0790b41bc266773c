#include "phonesim/handset/errors.h"

#include <algorithm>
#include <array>

namespace phonesim {

namespace {

struct NumberedWords {
  int number;
  std::string_view words;
};

constexpr auto messageErrors = std::to_array<NumberedWords>({
    {1, "Unassigned (unallocated) number"},
    {8, "Operator determined barring"},
    {10, "Call barred"},
    {21, "Short message transfer rejected"},
    {27, "Destination out of service"},
    {28, "Unidentified subscriber"},
    {29, "Facility rejected"},
    {30, "Unknown subscriber"},
    {38, "Network out of order"},
    {41, "Temporary failure"},
    {42, "Congestion"},
    {47, "Resources unavailable, unspecified"},
    {50, "Requested facility not subscribed"},
    {69, "Requested facility not implemented"},
    {81, "Invalid short message transfer reference value"},
    {95, "Invalid message, unspecified"},
    {96, "Invalid mandatory information"},
    {97, "Message type non-existent or not implemented"},
    {98, "Message not compatible with short message protocol state"},
    {99, "Information element non-existent or not implemented"},
    {111, "Protocol error, unspecified"},
    {127, "Interworking, unspecified"},
    {192, "SC busy"},
    {208, "SIM SMS storage full"},
    {211, "Memory capacity exceeded"},
    {300, "ME failure"},
    {301, "SMS service of ME reserved"},
    {302, "Operation not allowed"},
    {303, "Operation not supported"},
    {304, "Invalid PDU mode parameter"},
    {305, "Invalid text mode parameter"},
    {310, "SIM not inserted"},
    {311, "SIM PIN required"},
    {312, "PH-SIM PIN required"},
    {313, "SIM failure"},
    {314, "SIM busy"},
    {315, "SIM wrong"},
    {316, "SIM PUK required"},
    {317, "SIM PIN2 required"},
    {318, "SIM PUK2 required"},
    {320, "Memory failure"},
    {321, "Invalid memory index"},
    {322, "Memory full"},
    {330, "SMSC address unknown"},
    {331, "No network service"},
    {332, "Network timeout"},
    {340, "No +CNMA acknowledgement expected"},
    {500, "Unknown error"},
});

constexpr auto equipmentErrors = std::to_array<NumberedWords>({
    {0, "phone failure"},
    {1, "no connection to phone"},
    {2, "phone-adaptor link reserved"},
    {3, "operation not allowed"},
    {4, "operation not supported"},
    {10, "SIM not inserted"},
    {11, "SIM PIN required"},
    {12, "SIM PUK required"},
    {13, "SIM failure"},
    {14, "SIM busy"},
    {15, "SIM wrong"},
    {16, "incorrect password"},
    {20, "memory full"},
    {21, "invalid index"},
    {22, "not found"},
    {23, "memory failure"},
    {24, "text string too long"},
    {25, "invalid characters in text string"},
    {26, "dial string too long"},
    {27, "invalid characters in dial string"},
    {30, "no network service"},
    {31, "network timeout"},
    {32, "network not allowed - emergency calls only"},
    {50, "incorrect parameters"},
    {100, "unknown"},
});

template <std::size_t N>
std::string wordsFor(const std::array<NumberedWords, N>& list, int number) {
  const auto found = std::ranges::find(list, number, &NumberedWords::number);
  return found == list.end() ? std::to_string(number) : std::string(found->words);
}

}  // namespace

std::string errorLine(ErrorFamily family, int number, ErrorStyle style) {
  if (style == ErrorStyle::Plain) return "ERROR";
  const bool message = family == ErrorFamily::Message;
  const std::string what = style == ErrorStyle::Number ? std::to_string(number)
                           : message                   ? wordsFor(messageErrors, number)
                                                       : wordsFor(equipmentErrors, number);
  return (message ? "+CMS ERROR: " : "+CME ERROR: ") + what;
}

}  // namespace phonesim

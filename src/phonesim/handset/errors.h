// The error numbers that the handset answers with, and their words: 3GPP TS 27.005, 3.2.5, and TS 27.007, 9.2.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace phonesim {

namespace cms {
inline constexpr int operationNotAllowed = 302;
inline constexpr int operationNotSupported = 303;
inline constexpr int invalidPduParameter = 304;
inline constexpr int invalidTextParameter = 305;
inline constexpr int simNotInserted = 310;
inline constexpr int simPinRequired = 311;
inline constexpr int simPukRequired = 316;
inline constexpr int memoryFailure = 320;
inline constexpr int invalidMemoryIndex = 321;
inline constexpr int memoryFull = 322;
inline constexpr int centreAddressUnknown = 330;
inline constexpr int noNetworkService = 331;
inline constexpr int networkTimeout = 332;
inline constexpr int noAcknowledgementExpected = 340;
}  // namespace cms

namespace cme {
inline constexpr int operationNotAllowed = 3;
inline constexpr int operationNotSupported = 4;
inline constexpr int simNotInserted = 10;
inline constexpr int simPinRequired = 11;
inline constexpr int simPukRequired = 12;
inline constexpr int incorrectPassword = 16;
inline constexpr int memoryFull = 20;
inline constexpr int invalidIndex = 21;
inline constexpr int notFound = 22;
inline constexpr int textTooLong = 24;
inline constexpr int invalidText = 25;
inline constexpr int numberTooLong = 26;
inline constexpr int invalidNumber = 27;
inline constexpr int noNetworkService = 30;
inline constexpr int incorrectParameters = 50;
}  // namespace cme

enum class ErrorFamily { Message, Equipment };  // +CMS ERROR, +CME ERROR

// What +CMEE chooses.
enum class ErrorStyle { Plain = 0, Number = 1, Words = 2 };

// The line that tells a host of the error. A number without words is told as a number in the style of words too.
std::string errorLine(ErrorFamily family, int number, ErrorStyle style);

}  // namespace phonesim

// Settings of the servers, under HKEY_CURRENT_USER. They are read when they are needed, so a change counts at once.
//
//   Software\Marrick\timermm     ShortenMinute (DWORD)    test setting: milliseconds that a minute lasts for intervals
//                                                         of at least a minute; missing or 0: 60000
//   Software\Marrick\DVMWorker   Ports (text)             which phones there are, see servers/dvmworker/win/ports.h;
//                                                         missing: those at the serial ports
//                                StateFile (text)         where the simulated handset keeps its memories; missing:
//                                                         %APPDATA%\Marrick\handset.txt
//                                SendFile (text)          where it is noted which messages may have been sent; missing:
//                                                         %APPDATA%\Marrick\sends.txt
//                                TraceFolder (text)       where the dialogues with modems are traced; missing: nowhere
//                                TraceTexts (DWORD)       1: with texts and numbers in it
//                                NextTransaction (DWORD)  written by sms_object.dll, see TransactionIds
#pragma once

#include <cstdint>
#include <optional>

#include "addin/platform/text.h"

namespace servers::settings {

inline constexpr platform::StringView timerKey = u"Software\\Marrick\\timermm";
inline constexpr platform::StringView workerKey = u"Software\\Marrick\\DVMWorker";

// Nothing when the value is missing or of another type.
std::optional<std::uint32_t> number(platform::StringView key, platform::StringView name);
std::optional<platform::String> text(platform::StringView key, platform::StringView name);

// False when it could not be written.
bool setNumber(platform::StringView key, platform::StringView name, std::uint32_t value) noexcept;

}  // namespace servers::settings

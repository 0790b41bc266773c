// Reads an installation value from HKEY_CURRENT_USER, and when it is missing or empty there, from HKEY_LOCAL_MACHINE.
#pragma once

#include "addin/common/basGlobal.h"

namespace addin {

class clsReg {
 public:
  // The text found, or strDefault.
  String GetRegString(const String& strKeyName, const String& strValueName, const String& strDefault);

  // The number found, or nDefault; 16 bits wide, despite its name. A value that is no such number is 0, not the
  // default.
  std::int16_t GetRegDword(const String& strKeyName, const String& strValueName, const std::int16_t& nDefault);
};

}  // namespace addin

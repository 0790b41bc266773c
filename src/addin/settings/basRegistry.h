// Low-level registry access. Every call opens and closes its own key; nothing is cached, nothing is logged.
#pragma once

#include "addin/common/basGlobal.h"

namespace addin {

// The value as text (REG_SZ, one trailing NUL dropped), as a 32-bit number (REG_DWORD), or Empty when the key or value
// is missing, unreadable or of any other type.
Variant GetRegValue(RootKey root, StringView keyPath, StringView valueName);

// Reads one value of an open key into `result`. Returns the Win32 status of reading the data, or -1 when the value is
// missing or of another type; `result` is Empty then.
std::int32_t ReadValueFromKey(KeyHandle key, StringView valueName, Variant& result);

// Writes a value as REG_SZ (1) or REG_DWORD (4), creating the key path when needed. True when the write was attempted;
// False for an empty key path. A leading "\" is dropped from the caller's own text. Error 13 or 6 when the value does
// not convert.
bool SetRegValue(RootKey& root, String& keyPath, StringView valueName, const Variant& value, std::int32_t& valueType);

// Writes to an open key. Returns the Win32 status, or 0 for a type that is neither 1 nor 4 (nothing is written).
std::int32_t WriteValueToKey(KeyHandle key, StringView valueName, std::int32_t& valueType, const Variant& value);

}  // namespace addin

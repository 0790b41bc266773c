// The add-in's text in the shape that the W functions take.
#pragma once

#include "addin/platform/text.h"
#include "com/windows.h"

namespace win32 {

static_assert(sizeof(wchar_t) == sizeof(char16_t));

// Ends with a NUL; lives as long as the text does, unchanged.
inline const wchar_t* wide(const platform::String& text) noexcept {
  return reinterpret_cast<const wchar_t*>(text.c_str());
}
inline wchar_t* wide(platform::String& text) noexcept { return reinterpret_cast<wchar_t*>(text.data()); }

}  // namespace win32

// The run-time error: what a failing call throws, here and across the seam.
#pragma once

#include <cstdint>
#include <exception>
#include <string>

#include "addin/platform/text.h"

namespace platform {

// Number, source and description, as the automation world reports a failure. Numbers 1 to 65535 are run-time errors
// (see standardText); negative ones are the product's own -1 or an HRESULT.
struct RuntimeError final : std::exception {
  RuntimeError(std::int32_t n, StringView src, StringView text);
  // "number description", for whoever knows no more of it than that it is an exception; other characters than ASCII
  // are question marks.
  const char* what() const noexcept override { return what_.c_str(); }

  std::int32_t number;
  String source;
  String description;

 private:
  std::string what_;
};

// Raises an error with the caller's own source and description.
[[noreturn]] void raiseError(std::int32_t number, StringView source, StringView description);

// Raises one of the run time's own errors: standard text, source "mrktxtmsg".
[[noreturn]] void raiseError(std::int32_t number);

// The run time's text for an error number; "Application-defined or object-defined error" for one it does not know.
StringView standardText(std::int32_t number) noexcept;

}  // namespace platform

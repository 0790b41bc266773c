// The final result of a command: ITU-T V.250, 5.7; 3GPP TS 27.005, 3.2.5; 3GPP TS 27.007, 9.2.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace phone::at {

struct Result {
  enum class Kind : std::uint8_t { Ok, Error, CmsError, CmeError };
  Kind kind = Kind::Ok;
  // Of a CmsError or CmeError, also when the modem said it in words. Words that nobody knows are `unknownWords`.
  int code = 0;
  std::string text;  // as the modem said it

  bool ok() const noexcept { return kind == Kind::Ok; }
  bool isCms(int wanted) const noexcept { return kind == Kind::CmsError && code == wanted; }
  bool isCme(int wanted) const noexcept { return kind == Kind::CmeError && code == wanted; }
  friend bool operator==(const Result&, const Result&) = default;
};

inline constexpr int unknownWords = -1;

// Nothing when the line is no final result. The results of calls ("NO CARRIER", "BUSY") are none here: nobody calls, so
// they can only be the end of somebody else's call.
std::optional<Result> parseResult(std::string_view line);

// Nothing is wrong but the moment: the SIM or the modem is still busy with itself. 500, "unknown", is not among them:
// it is what some modems say of an empty slot.
bool isBusy(const Result& result) noexcept;

}  // namespace phone::at

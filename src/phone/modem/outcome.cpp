#include "phone/modem/outcome.h"

#include <algorithm>

namespace phone {

namespace {

std::int32_t codeOfError(const at::Result& error) noexcept {
  using at::Result;
  using namespace result_codes;
  if (error.kind != Result::Kind::CmsError && error.kind != Result::Kind::CmeError) return plainError;
  const std::int32_t family = error.kind == Result::Kind::CmsError ? cmsError : cmeError;
  return family + (error.code < 0 ? anyError : std::min(error.code, anyError));
}

}  // namespace

std::int32_t resultCode(const Outcome& outcome) noexcept {
  using namespace result_codes;
  switch (outcome.kind) {
    case Outcome::Kind::Done:
      return done;
    case Outcome::Kind::Refused:
      return codeOfError(outcome.error);
    case Outcome::Kind::Empty:
      return emptySlot;
    case Outcome::Kind::NoMemory:
      return noMemory;
    case Outcome::Kind::NoAnswer:
      return noAnswer;
    case Outcome::Kind::Unknown:
      return unknown;
    case Outcome::Kind::BadNumber:
      return badNumber;
    case Outcome::Kind::TooLong:
      break;
  }
  return tooLong;
}

Outcome outcomeOf(const std::optional<at::Result>& result) {
  if (!result) return {Outcome::Kind::NoAnswer};
  if (result->ok()) return {};
  return {Outcome::Kind::Refused, *result};
}

bool saysEmpty(const at::Result& result) noexcept { return result.isCms(321) || result.isCme(21) || result.isCme(22); }

}  // namespace phone

// Settings that are one number, from 0 on: +X? tells it, +X=? its limits, +X=<n> sets it.
#pragma once

#include <optional>
#include <string_view>

#include "phonesim/handset/commands.h"

namespace phonesim {

struct NumberSetting {
  int most;
  std::optional<int> absent = {};  // what it means to leave the number out, where that is allowed
  std::string_view behind = "";    // what the read form tells besides
};

struct Refusals {
  Result unknownForm;
  Result wrongValue;
};

inline constexpr Refusals equipmentRefusals{
    {Result::Kind::Error, ErrorFamily::Equipment, cme::operationNotSupported},
    {Result::Kind::Error, ErrorFamily::Equipment, cme::incorrectParameters},
};

Result settle(const Call& call, int& value, const NumberSetting& setting, const Refusals& refusals = equipmentRefusals);

}  // namespace phonesim

#include "phonesim/handset/number_setting.h"

namespace phonesim {

namespace {

std::string rangeTo(int most) {
  if (most == 0) return "(0)";
  return most == 1 ? "(0,1)" : "(0-" + std::to_string(most) + ')';
}

}  // namespace

Result settle(const Call& call, int& value, const NumberSetting& setting, const Refusals& refusals) {
  const std::string name = call.command.name + ": ";
  switch (call.command.form) {
    case Form::Test:
      call.answer.line(name + rangeTo(setting.most));
      return Result::ok();
    case Form::Read:
      call.answer.line(name + std::to_string(value) + std::string(setting.behind));
      return Result::ok();
    case Form::Execute:
      if (!setting.absent) return refusals.unknownForm;
      break;
    case Form::Set:
      break;
  }
  const auto wanted = setting.absent ? call.command.numberAt(0, 0, setting.most, *setting.absent)
                                     : call.command.numberAt(0, 0, setting.most);
  if (!wanted || call.command.count() > 1) return refusals.wrongValue;
  value = *wanted;
  return Result::ok();
}

}  // namespace phonesim

#include "addin/sms/clstimeout.h"

#include <algorithm>
#include <limits>

#include "addin/common/basapi.h"
#include "addin/platform/arithmetic.h"

namespace addin {

void clstimeout::InitTimeOut(std::int32_t Waitms) {
  m_lStart = GetTickCount();
  m_bTimedOut = false;
  m_lWaitms = Waitms;
}

bool clstimeout::TimeOut() {
  m_bTimedOut = checkedAdd(m_lStart, m_lWaitms) < GetTickCount();
  return m_bTimedOut;
}

std::int32_t clstimeout::MillisecondsLeft() const {
  // The end itself still counts as in time, hence one millisecond more. Ticks that went round in between make the
  // difference large or negative: then the next look comes soon or late, but never beyond one whole wait.
  const std::int64_t left = std::int64_t{m_lStart} + m_lWaitms + 1 - GetTickCount();
  const std::int64_t whole =
      std::min<std::int64_t>(std::int64_t{m_lWaitms} + 1, std::numeric_limits<std::int32_t>::max());
  return static_cast<std::int32_t>(std::clamp<std::int64_t>(left, 1, std::max<std::int64_t>(whole, 1)));
}

}  // namespace addin

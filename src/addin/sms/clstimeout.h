// A time-out by the system's tick count.
#pragma once

#include "addin/common/basGlobal.h"

namespace addin {

class clstimeout : public Counted {
 public:
  void InitTimeOut(std::int32_t Waitms);

  // True when more than the wait has passed since InitTimeOut. Ticks are signed 32-bit numbers, so error 6 when start
  // plus wait leaves their range.
  bool TimeOut();

  // Milliseconds to wait until TimeOut can become True; at least 1. For waits that sleep.
  std::int32_t MillisecondsLeft() const;

 private:
  std::int32_t m_lStart = 0;
  std::int32_t m_lWaitms = 0;
  bool m_bTimedOut = false;
};

}  // namespace addin

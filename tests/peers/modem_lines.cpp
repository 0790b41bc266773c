// Preloaded into programs that insist on a serial port's control lines, which a pseudo-terminal has not: setting them
// succeeds, and the other side is there.
#include <cstdarg>

#include <dlfcn.h>
#include <sys/ioctl.h>

extern "C" int ioctl(int descriptor, unsigned long request, ...) noexcept {
  va_list list;
  va_start(list, request);
  void* const argument = va_arg(list, void*);
  va_end(list);
  switch (request) {
    case TIOCMBIC:
    case TIOCMBIS:
    case TIOCMSET:
      return 0;
    case TIOCMGET:
      *static_cast<int*>(argument) = TIOCM_DTR | TIOCM_RTS | TIOCM_CTS | TIOCM_DSR | TIOCM_CAR;
      return 0;
    default:
      break;
  }
  using Ioctl = int (*)(int, unsigned long, void*);
  static const auto next = reinterpret_cast<Ioctl>(dlsym(RTLD_NEXT, "ioctl"));
  return next(descriptor, request, argument);
}

// The line's thread on Windows.
#pragma once

#include "servers/modem/line_worker.h"

namespace servers::modem {

// A wire with a thread of its own. The phone's thread is the one that makes it; it has a message loop, which brings the
// events and the answers. Letting the wire go ends the line and the thread.
// `trace`, which may be null, is the line's thread's from then on.
std::unique_ptr<Wire> makeLineThread(LineWorker::Opener opener, const phone::Clock& clock,
                                     std::unique_ptr<phone::at::Trace> trace);

}  // namespace servers::modem

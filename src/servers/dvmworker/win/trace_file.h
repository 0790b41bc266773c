// The trace of a phone's dialogue, where the user wants one: see settings.h for the folder. The file is named after the
// port, port_COM3.txt, and the older ones port_COM3.1.txt and port_COM3.2.txt.
#pragma once

#include <memory>

#include "phone/at/trace.h"
#include "phone/line/line_name.h"

namespace servers::dvmworker {

// Null when none is wanted. Belongs to the line's thread.
std::unique_ptr<phone::at::Trace> traceOf(const phone::LineName& name);

}  // namespace servers::dvmworker

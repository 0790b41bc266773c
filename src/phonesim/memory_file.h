// The file in which a handset's memory lives between two runs.
#pragma once

#include <string>

#include "phonesim/handset/state.h"

namespace phonesim {

// What the file has, over the defaults; these alone when there is no file. A file that cannot be understood as a whole
// is left as it is under a name of its own, which `setAside` tells: it is never overwritten.
State loadState(const std::string& path, State defaults, std::string& setAside);

// In one step: whenever the program ends, the file is the old one or the new one. Throws when it cannot be written.
void saveState(const std::string& path, const State& state);

}  // namespace phonesim

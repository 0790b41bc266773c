// Where the simulated handset keeps its memories between two runs of the server (see settings.h for the name).
#pragma once

#include "servers/handset/memory.h"

namespace servers::dvmworker {

class MemoryFile {
 public:
  MemoryFile();

  // Memories as they are on a new phone when there is no file, or no sensible one.
  handset::Memories load() const;
  // Writes a new file and puts it in the old one's place. What cannot be written is lost with the process.
  void save(const handset::Memories& memories) const noexcept;

 private:
  platform::String path_;  // empty: nowhere
};

}  // namespace servers::dvmworker

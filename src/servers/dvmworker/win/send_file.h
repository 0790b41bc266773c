// Where it is noted which messages may have been sent (servers/modem/send_record.h), see settings.h for the name. It is
// the user's own file, holds nothing that can be read, and is there only while there is something to note.
#pragma once

#include "servers/modem/send_record.h"

namespace servers::dvmworker {

class SendFile final : public modem::SendNotes {
 public:
  SendFile();

  std::string load() override;
  bool save(const std::string& text) noexcept override;
  std::int64_t today() const override;

 private:
  platform::String path_;  // empty: nowhere
};

}  // namespace servers::dvmworker
